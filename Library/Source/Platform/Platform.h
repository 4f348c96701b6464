/// @file Platform.h
/// What the library asks of the operating system: names for temporary files, and child processes.
#pragma once

#include <string>

namespace zortexture::platform
{
/// The size of the path buffers that the functions below fill, terminator included.
constexpr unsigned int maxPath()
{
	return 1024;
}

/// The folder for temporary files: TMPDIR, by default "/tmp/". It ends in a slash unless it is empty, which is the current folder.
/// Returns its length; 0, with an empty path, when it does not fit into the buffer.
unsigned int getTempDir(char* path);

/// A path in that folder that no other thread of any process gets: "ZORTexLib_<process>_<thread>.<extension>". One thread gets the
/// same path each time. Returns its length; 0, with an empty path, when it does not fit.
unsigned int getTempFile(char* path, const char* extension);

/// Runs a program of the search path with its output thrown away, and waits for its end.
/// @param arguments  ended by a null pointer; without the program's name.
/// @param exitCode  takes the program's exit code; may be null.
/// @return false, with `exitCode` unchanged, when the program cannot be started, does not end by itself, or ends with 127, which
///         stands for one that could not be started.
bool executeProcess(const char* fileName, const char* const* arguments, int* exitCode);

/// The file name of a program: the same as its name here.
std::string executableName(const std::string& name);
} // namespace zortexture::platform
