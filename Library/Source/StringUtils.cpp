#include "StringUtils.h"

namespace zortexture
{
std::vector<std::string> StringUtils::splitString(const std::string& text, const std::set<char>& delimiters)
{
	std::vector<std::string> pieces(1);
	for (const char* letter = text.c_str(); *letter != 0; ++letter)
	{
		if (delimiters.count(*letter) != 0)
		{
			pieces.emplace_back();
		}
		else
		{
			pieces.back() += *letter;
		}
	}
	return pieces;
}

std::string StringUtils::getFileName(const std::string& path)
{
	return splitString(path, {'/', '\\'}).back();
}
} // namespace zortexture
