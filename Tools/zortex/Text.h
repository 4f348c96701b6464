/// @file Text.h
/// Small text helpers of the reports and messages.
#ifndef ZORTEX_TEXT_H
#define ZORTEX_TEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace zortex
{
std::string lowerCase(std::string_view text);

/// The extension of a path's last component in lower case, without the dot; empty when there is none.
std::string extensionOf(const std::string& path);

/// A number with `digits` places after the point.
std::string fixedNumber(double value, int digits);

/// A whole number as such, any other with two places after the point.
std::string shortNumber(double value);

/// "1 face", "6 faces".
std::string counted(unsigned long long count, const std::string& noun);

/// Text from a file, fit for a terminal: bytes that are no printable ASCII become '?'.
std::string printable(std::string_view text);

/// Bytes as hexadecimal digits.
std::string hexBytes(const unsigned char* bytes, std::size_t count);

/// Rows of columns as lines, each column as wide as its widest entry.
std::string alignedTable(const std::vector<std::vector<std::string>>& rows);
} // namespace zortex

#endif // ZORTEX_TEXT_H
