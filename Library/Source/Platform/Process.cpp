#include <cerrno>
#include <fcntl.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "Platform.h"

namespace zortexture::platform
{
namespace
{
/// What a shell, too, reports for a program that it cannot start.
constexpr int kCannotStart = 127;

/// The child's part. Other threads may have held any lock at the fork, so that it calls nothing that takes one.
[[noreturn]] void runInChild(const char* fileName, char* const* arguments)
{
	const int nowhere = open("/dev/null", O_WRONLY);
	if (nowhere >= 0)
	{
		dup2(nowhere, STDOUT_FILENO);
		dup2(nowhere, STDERR_FILENO);
		// With those two closed in the parent, the descriptor may be one of them.
		if (nowhere != STDOUT_FILENO && nowhere != STDERR_FILENO)
		{
			close(nowhere);
		}
	}
	execvp(fileName, arguments);
	_exit(kCannotStart);
}
} // namespace

bool executeProcess(const char* fileName, const char* const* arguments, int* exitCode)
{
	std::vector<char*> all = {const_cast<char*>(fileName)}; // which execvp does not write to
	for (; arguments != nullptr && *arguments != nullptr; ++arguments)
	{
		all.push_back(const_cast<char*>(*arguments));
	}
	all.push_back(nullptr);

	const pid_t child = fork();
	if (child < 0)
	{
		return false;
	}
	if (child == 0)
	{
		runInChild(fileName, all.data());
	}
	int status = 0;
	pid_t ended = 0;
	do
	{
		ended = waitpid(child, &status, 0);
	} while (ended < 0 && errno == EINTR);
	if (ended != child || !WIFEXITED(status) || WEXITSTATUS(status) == kCannotStart)
	{
		return false;
	}
	if (exitCode != nullptr)
	{
		*exitCode = WEXITSTATUS(status);
	}
	return true;
}

std::string executableName(const std::string& name)
{
	return name;
}
} // namespace zortexture::platform
