/// @file messages.h
/// What the high-quality compressor prints.
#pragma once

#include <cstdio>

/// Where progress messages go; null, as at the start, for nowhere.
extern std::FILE* GlobDebugOutput;

/// Prints and flushes; nothing on a null stream.
__attribute__((format(printf, 2, 3))) void fprintf_flush(std::FILE* stream, const char* format, ...);
