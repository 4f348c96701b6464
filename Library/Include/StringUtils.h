/// @file StringUtils.h
/// Pieces of paths.
#ifndef ZORT_STRING_UTILS_H
#define ZORT_STRING_UTILS_H

#include <set>
#include <string>
#include <vector>

#include "ZORTExport.h"

namespace zortexture
{
class ZORT_API StringUtils
{
public:
	/// The pieces of a text between delimiters, up to its first zero byte: one piece more than delimiters, empty ones included.
	static std::vector<std::string> splitString(const std::string& text, const std::set<char>& delimiters);

	/// What follows the last '/' or '\' of a path; empty when the path ends there.
	static std::string getFileName(const std::string& path);
};
} // namespace zortexture

#endif // ZORT_STRING_UTILS_H
