// The numbers of old native files against tables of another form, over every number and every combination near those in use.

#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "FormatText.h"
#include "LegacyFormatTables.h"
#include "LegacyTexture.h"

using namespace zortexture;

namespace
{
/// Calls `visit(column, number, format)` for every number=format of a text; `column[i]` are the words ahead of them.
template<typename Visit>
void forEachEntry(const char* text, std::size_t columns, Visit visit)
{
	std::istringstream lines(text);
	std::string line;
	while (std::getline(lines, line))
	{
		std::istringstream words(line);
		std::vector<std::string> column(columns);
		for (std::string& word : column)
		{
			words >> word;
		}
		std::string item;
		while (words >> item)
		{
			const std::size_t equals = item.find('=');
			std::istringstream numbers(item.substr(0, equals));
			std::string number;
			while (std::getline(numbers, number, ','))
			{
				visit(column, static_cast<unsigned int>(std::stoul(number)), item.substr(equals + 1));
			}
		}
	}
}

using Meaning = std::tuple<unsigned long long, unsigned int, unsigned int, bool>; // format, type, colour space, premultiplied

Meaning meaningOf(unsigned int number)
{
	unsigned long long format = 0xABCDEF;
	auto space = static_cast<EZORTColourSpace>(7);
	auto type = static_cast<EZORTVariableType>(77);
	bool preMultiplied = true;
	ZORTMapLegacyTextureEnumToNewFormat(static_cast<ZORTPixelType>(number), format, space, type, preMultiplied);
	return {format, type, space, preMultiplied};
}

unsigned int numberOf(const Meaning& meaning, unsigned int api)
{
	const auto& [format, type, space, preMultiplied] = meaning;
	return MapNewFormatToLegacyEnum(PixelType(format), static_cast<EZORTColourSpace>(space), static_cast<EZORTVariableType>(type),
	                                preMultiplied, static_cast<ELegacyApi>(api));
}

TEST(LegacyFormats, EveryNumberMeansWhatItDid)
{
	std::map<unsigned int, Meaning> expected;
	forEachEntry(kLegacyReadText, 3,
	             [&](const std::vector<std::string>& column, unsigned int number, const std::string& format)
	             {
		             const Meaning meaning{parseFormat(format), std::stoul(column[0]), std::stoul(column[1]), column[2] == "1"};
		             EXPECT_TRUE(expected.emplace(number, meaning).second) << number;
	             });
	ASSERT_EQ(expected.size(), 139u);
	std::set<unsigned int> numbers = {0x100, 0x112, 0xFFFFFFFF};
	for (unsigned int number = 0; number < 256; ++number)
	{
		numbers.insert(number);
	}
	for (const unsigned int number : numbers)
	{
		const auto entry = expected.find(number);
		EXPECT_EQ(meaningOf(number), entry == expected.end() ? Meaning(51, 14, 0, false) : entry->second) << number;
	}
}

TEST(LegacyFormats, EveryCombinationHasItsNumberOrNone)
{
	std::map<std::pair<Meaning, unsigned int>, unsigned int> expected;
	std::set<unsigned long long> formats;
	for (unsigned long long id = 0; id < 60; ++id)
	{
		formats.insert(id);
	}
	const auto serves = [](const std::string& allowed, unsigned int value)
	{
		return allowed == "*" || allowed.find(static_cast<char>('0' + value)) != std::string::npos;
	};
	forEachEntry(kLegacyReadText, 3,
	             [&](const std::vector<std::string>&, unsigned int, const std::string& format) { formats.insert(parseFormat(format)); });
	forEachEntry(kLegacyWriteText, 4,
	             [&](const std::vector<std::string>& column, unsigned int number, const std::string& format)
	             {
		             formats.insert(parseFormat(format));
		             for (unsigned int rest = 0; rest < 9 * 16 * 3 * 2; ++rest)
		             {
			             const unsigned int api = rest / 96;
			             const unsigned int type = rest / 6 % 16;
			             const Meaning meaning{parseFormat(format), type, rest / 2 % 3, rest % 2 == 1};
			             if (serves(column[0], api) && (column[1] == "*" || column[1] == std::to_string(type)) &&
			                 serves(column[2], rest / 2 % 3) && serves(column[3], rest % 2))
			             {
				             EXPECT_TRUE(expected.emplace(std::pair(meaning, api), number).second) << number;
			             }
		             }
	             });
	for (const unsigned long long format : formats)
	{
		for (unsigned int rest = 0; rest < 9 * 16 * 3 * 2; ++rest)
		{
			const unsigned int api = rest / 96;
			const Meaning meaning{format, rest / 6 % 16, rest / 2 % 3, rest % 2 == 1};
			const auto entry = expected.find({meaning, api});
			EXPECT_EQ(numberOf(meaning, api), entry == expected.end() ? 0xFFFFFFFFu : entry->second)
			    << std::hex << format << " " << api << " " << rest;
		}
	}
}
} // namespace
