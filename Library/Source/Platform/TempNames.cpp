#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <unistd.h>

#include "Platform.h"

namespace zortexture::platform
{
namespace
{
std::string tempDir()
{
	const char* const variable = std::getenv("TMPDIR");
	std::string folder = variable != nullptr ? variable : "/tmp/";
	if (!folder.empty() && folder.back() != '/')
	{
		folder += '/';
	}
	return folder;
}

/// Fills a path buffer; leaves it empty where the text does not fit.
unsigned int toBuffer(const std::string& text, char* path)
{
	const std::size_t length = text.size() < maxPath() ? text.size() : 0;
	std::memcpy(path, text.data(), length);
	path[length] = '\0';
	return static_cast<unsigned int>(length);
}

/// The calling thread's identity as a number, whatever type the system gives it.
unsigned long long threadNumber()
{
	const pthread_t self = pthread_self();
	unsigned long long number = 0;
	std::memcpy(&number, &self, std::min(sizeof(number), sizeof(self)));
	return number;
}
} // namespace

unsigned int getTempDir(char* path)
{
	return toBuffer(tempDir(), path);
}

unsigned int getTempFile(char* path, const char* extension)
{
	const auto process = static_cast<unsigned long long>(getpid());
	return toBuffer(tempDir() + "ZORTexLib_" + std::to_string(process) + "_" + std::to_string(threadNumber()) + "." + extension, path);
}
} // namespace zortexture::platform
