#include "BatchProgress.h"

#include <cmath>
#include <iostream>
#include <unistd.h>

#include "../Text.h"

namespace zortex
{
BatchProgress::BatchProgress(std::size_t files, unsigned long long inputBytes, bool isQuiet)
    : m_files(files), m_inputBytes(inputBytes), m_isQuiet(isQuiet), m_isTerminal(isatty(STDERR_FILENO) != 0),
      m_start(std::chrono::steady_clock::now())
{
}

BatchProgress::~BatchProgress()
{
	clearLine();
}

void BatchProgress::addFile(unsigned long long inputBytes, double megapixels)
{
	++m_filesDone;
	m_bytesDone += inputBytes;
	m_megapixels += megapixels;
}

void BatchProgress::log(const std::string& text)
{
	if (!m_isQuiet && !m_isTerminal)
	{
		std::cerr << "zortex: [" << m_filesDone << "/" << m_files << "] " << text << "\n" << std::flush;
	}
}

void BatchProgress::complain(const std::string& text)
{
	clearLine();
	std::cerr << "zortex: " << text << "\n" << std::flush;
}

void BatchProgress::refresh()
{
	if (m_isQuiet || !m_isTerminal)
	{
		return;
	}
	const double elapsed = seconds();
	std::string line =
	    "\r\033[K" + std::to_string(m_filesDone) + "/" + std::to_string(m_files) + " files  " + fixedNumber(m_megapixels, 1) + " MP";
	if (m_bytesDone > 0 && elapsed > 0.0)
	{
		const double left = elapsed * static_cast<double>(m_inputBytes - m_bytesDone) / static_cast<double>(m_bytesDone);
		line += "  " + fixedNumber(m_megapixels / elapsed, 2) + " MP/s  " + clockTime(left) + " left";
	}
	std::cerr << line << std::flush;
	m_isLineShown = true;
}

double BatchProgress::seconds() const
{
	return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
}

double BatchProgress::megapixels() const
{
	return m_megapixels;
}

void BatchProgress::clearLine()
{
	if (m_isLineShown)
	{
		std::cerr << "\r\033[K" << std::flush;
		m_isLineShown = false;
	}
}

std::string clockTime(double seconds)
{
	const auto whole = static_cast<unsigned long long>(std::lround(std::fmax(seconds, 0.0)));
	const auto twoDigits = [](unsigned long long number)
	{
		return (number < 10 ? "0" : "") + std::to_string(number);
	};
	const std::string minutes =
	    whole >= 3600 ? std::to_string(whole / 3600) + ":" + twoDigits(whole / 60 % 60) : std::to_string(whole / 60);
	return minutes + ":" + twoDigits(whole % 60);
}
} // namespace zortex
