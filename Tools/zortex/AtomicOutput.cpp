#include "AtomicOutput.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

#include "Refusal.h"

namespace zortex
{
namespace fs = std::filesystem;

AtomicOutput::AtomicOutput(const std::string& target) : m_target(target), m_final(target)
{
	std::error_code error;
	const fs::file_status status = fs::status(target, error);
	if (fs::exists(status) && !fs::is_regular_file(status))
	{
		throw Refusal(target, fs::is_directory(status) ? "is a directory" : "is no regular file");
	}
	if (fs::exists(status) && fs::is_symlink(fs::symlink_status(target, error)))
	{
		m_final = fs::canonical(target, error).string();
	}

	// The stem stays in front: a C header names its array after the file name up to the first dot.
	fs::path temporary(m_final);
	const std::string mark = "." + std::to_string(getpid()) + ".zortex-tmp";
	temporary.replace_filename(temporary.stem().string() + mark + temporary.extension().string());
	m_temporary = temporary.string();

	const int descriptor = open(m_temporary.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
	if (descriptor < 0)
	{
		throw Refusal(target, std::string("cannot be written: ") + std::strerror(errno));
	}
	close(descriptor);
	m_isPending = true;
}

AtomicOutput::~AtomicOutput()
{
	if (m_isPending)
	{
		std::error_code error;
		fs::remove(m_temporary, error);
	}
}

const std::string& AtomicOutput::path() const
{
	return m_temporary;
}

unsigned long long AtomicOutput::size() const
{
	std::error_code error;
	const std::uintmax_t bytes = fs::file_size(m_temporary, error);
	return error ? 0 : bytes;
}

void AtomicOutput::commit()
{
	std::error_code error;
	fs::rename(m_temporary, m_final, error);
	if (error)
	{
		throw Refusal(m_target, "cannot be replaced: " + error.message());
	}
	m_isPending = false;
}
} // namespace zortex
