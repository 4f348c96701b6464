#include "messages.h"

#include <cstdarg>

std::FILE* GlobDebugOutput = nullptr;

void fprintf_flush(std::FILE* stream, const char* format, ...)
{
	if (stream == nullptr)
	{
		return;
	}
	va_list arguments;
	va_start(arguments, format);
	std::vfprintf(stream, format, arguments); // NOLINT(clang-analyzer-valist.Uninitialized): it does not see va_start
	va_end(arguments);
	std::fflush(stream);
}
