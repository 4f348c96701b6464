#include "AtomicOutput.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <vector>

#include "Refusal.h"

namespace zortex
{
namespace fs = std::filesystem;

namespace
{
constexpr const char* kMark = ".zortex-tmp";

/// The name of the machine, without dots.
std::string machineName()
{
	char name[256] = {};
	if (gethostname(name, sizeof(name) - 1) != 0)
	{
		return "machine";
	}
	std::string text(name);
	std::replace(text.begin(), text.end(), '.', '-');
	return text;
}

/// "stem.machine.process.zortex-tmp.ext" beside the target. The stem stays in front: a C header names its array after the file name
/// up to the first dot.
fs::path temporaryFor(const fs::path& target, pid_t process)
{
	fs::path temporary(target);
	temporary.replace_filename(target.stem().string() + "." + machineName() + "." + std::to_string(process) + kMark +
	                           target.extension().string());
	return temporary;
}

/// Whether the temporary file of this name and age can have nobody who works on it.
bool isStale(const fs::path& path)
{
	const std::string name = path.filename().string();
	const std::size_t mark = name.rfind(kMark);
	const std::size_t number = name.rfind('.', mark - 1);
	const std::size_t machine = number == std::string::npos || number == 0 ? std::string::npos : name.rfind('.', number - 1);
	if (machine == std::string::npos)
	{
		return false;
	}
	if (name.substr(machine + 1, number - machine - 1) == machineName())
	{
		const long process = std::strtol(name.c_str() + number + 1, nullptr, 10);
		return process > 0 && kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH;
	}
	std::error_code error;
	const fs::file_time_type written = fs::last_write_time(path, error);
	return !error && fs::file_time_type::clock::now() - written > std::chrono::hours(24);
}
} // namespace

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

	const fs::path temporary(m_final);
	m_temporary = temporaryFor(temporary, getpid()).string();

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

bool isTemporaryName(const std::string& name)
{
	return name.find(kMark) != std::string::npos;
}

void removeTemporaryOf(const std::string& target, pid_t process)
{
	std::error_code error;
	fs::remove(temporaryFor(target, process), error);
}

void removeStaleTemporaries(const std::string& folder)
{
	std::error_code error;
	std::vector<fs::path> stale;
	for (fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error), end; !error && entry != end;
	     entry.increment(error))
	{
		if (isTemporaryName(entry->path().filename().string()) && isStale(entry->path()))
		{
			stale.push_back(entry->path());
		}
	}
	for (const fs::path& path : stale)
	{
		fs::remove(path, error);
	}
}
} // namespace zortex
