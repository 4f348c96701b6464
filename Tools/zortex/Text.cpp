#include "Text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace zortex
{
std::string lowerCase(std::string_view text)
{
	std::string lower(text);
	for (char& c : lower)
	{
		c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
	}
	return lower;
}

std::string extensionOf(const std::string& path)
{
	const std::string extension = lowerCase(std::filesystem::path(path).extension().string());
	return extension.empty() ? extension : extension.substr(1);
}

std::string fixedNumber(double value, int digits)
{
	char text[64];
	std::snprintf(text, sizeof(text), "%.*f", digits, value);
	return text;
}

std::string shortNumber(double value)
{
	return fixedNumber(value, value == std::floor(value) ? 0 : 2);
}

std::string counted(unsigned long long count, const std::string& noun)
{
	return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string printable(std::string_view text)
{
	std::string clean(text);
	std::replace_if(
	    clean.begin(), clean.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
	return clean;
}

std::string hexBytes(const unsigned char* bytes, std::size_t count)
{
	static constexpr char kDigits[] = "0123456789abcdef";
	std::string hex;
	hex.reserve(count * 2);
	for (std::size_t i = 0; i < count; ++i)
	{
		hex += kDigits[bytes[i] >> 4];
		hex += kDigits[bytes[i] & 15];
	}
	return hex;
}

std::string alignedTable(const std::vector<std::vector<std::string>>& rows)
{
	std::vector<std::size_t> widths;
	for (const std::vector<std::string>& row : rows)
	{
		widths.resize(std::max(widths.size(), row.size()));
		for (std::size_t i = 0; i < row.size(); ++i)
		{
			widths[i] = std::max(widths[i], row[i].size());
		}
	}
	std::string text;
	for (const std::vector<std::string>& row : rows)
	{
		std::string line;
		for (std::size_t i = 0; i < row.size(); ++i)
		{
			line += row[i];
			line.append(widths[i] - row[i].size() + 2, ' ');
		}
		text += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
	}
	return text;
}
} // namespace zortex
