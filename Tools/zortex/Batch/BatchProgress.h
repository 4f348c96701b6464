/// @file BatchProgress.h
/// What a batch tells while it runs: one line that renews itself on a terminal, lines of a log elsewhere.
#ifndef ZORTEX_BATCH_PROGRESS_H
#define ZORTEX_BATCH_PROGRESS_H

#include <chrono>
#include <string>

namespace zortex
{
class BatchProgress
{
public:
	/// @param inputBytes  of all files, for the time that is left.
	BatchProgress(std::size_t files, unsigned long long inputBytes, bool isQuiet);
	BatchProgress(const BatchProgress&) = delete;
	BatchProgress& operator=(const BatchProgress&) = delete;
	~BatchProgress();

	/// A file is through, well or not.
	void addFile(unsigned long long inputBytes, double megapixels);

	/// A line of the log, about a file that is through; not shown when quiet or on a terminal.
	void log(const std::string& text);

	/// A failure or a warning: always shown.
	void complain(const std::string& text);

	/// Renews the line on a terminal.
	void refresh();

	/// Takes the line away, before other output.
	void clearLine();

	double seconds() const;
	double megapixels() const;

private:
	std::size_t m_files;
	unsigned long long m_inputBytes;
	bool m_isQuiet;
	bool m_isTerminal;
	bool m_isLineShown = false;
	std::size_t m_filesDone = 0;
	unsigned long long m_bytesDone = 0;
	double m_megapixels = 0.0;
	std::chrono::steady_clock::time_point m_start;
};

/// "0:42", "3:05:09".
std::string clockTime(double seconds);
} // namespace zortex

#endif // ZORTEX_BATCH_PROGRESS_H
