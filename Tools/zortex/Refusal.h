/// @file Refusal.h
/// The two ways in which a command ends early.
#ifndef ZORTEX_REFUSAL_H
#define ZORTEX_REFUSAL_H

#include <stdexcept>
#include <string>

namespace zortex
{
/// Something about a file stops the work: exit code 1, one line that names the file and the reason.
class Refusal : public std::runtime_error
{
public:
	Refusal(const std::string& file, const std::string& reason) : std::runtime_error(file + ": " + reason)
	{
	}
};

/// The command line asks for what cannot be: exit code 2.
class UsageError : public std::runtime_error
{
public:
	using std::runtime_error::runtime_error;
};
} // namespace zortex

#endif // ZORTEX_REFUSAL_H
