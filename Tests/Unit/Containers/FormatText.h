/// @file FormatText.h
/// Formats as the tables of the tests write them: "rgba8.8.8.8" for a layout, "#7" for a format of a number.
#pragma once

#include <sstream>
#include <string>

namespace zortexture
{
inline unsigned long long parseFormat(const std::string& text)
{
	if (text[0] == '#')
	{
		return std::stoull(text.substr(1));
	}
	const std::size_t digits = text.find_first_of("0123456789");
	unsigned long long id = 0;
	for (std::size_t i = 0; i < digits; ++i)
	{
		id |= static_cast<unsigned long long>(text[i]) << (8 * i);
	}
	std::istringstream widths(text.substr(digits));
	std::string width;
	for (unsigned int i = 4; std::getline(widths, width, '.'); ++i)
	{
		id |= std::stoull(width) << (8 * i);
	}
	return id;
}
} // namespace zortexture
