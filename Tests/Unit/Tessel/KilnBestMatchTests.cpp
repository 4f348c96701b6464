#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <vector>

#include "Codecs/Tessel/kiln/bestmatch.h"
#include "Codecs/Tessel/kiln/representable.h"

namespace
{
constexpr std::array<int, 8> kWeights = {0, 3, 4, 5, 8, 3, 4, 5};

int mix(int a, int b, int weight)
{
	return (a * (8 - weight) + b * weight) >> 3;
}

} // namespace

TEST(KilnBestMatch, EveryEntryIsTheBestOfThePairsItMayTake)
{
	std::vector<int> five;
	for (int value = 0; value < 32; ++value)
	{
		five.push_back(value * 8 + value / 4);
	}
	const std::vector<int> four = {0, 16, 33, 49, 66, 82, 99, 115, 140, 156, 173, 189, 206, 222, 239, 255};
	const std::vector<int> three = {0, 33, 74, 107, 148, 181, 222, 255};
	const std::vector<int> even = {0, 34, 68, 102, 136, 170, 204, 238};
	const std::vector<int> evenAndOpaque = {0, 34, 68, 102, 136, 170, 204, 238, 255};
	const std::vector<int> odd = {17, 51, 85, 119, 153, 187, 221, 255};
	const KilnMatchTables& tables = kilnMatchTables();
	struct Case
	{
		const KilnMatchTable& table;
		const std::vector<int>& levelsA;
		const std::vector<int>& levelsB;
		int close;
	};
	const std::vector<Case> cases = {
	    {tables.BestMatches_RGB_5_5, five, five, 15},     {tables.BestMatches_RGB_4_5, four, five, 15},
	    {tables.BestMatches_RGB_3_5, three, five, 15},    {tables.BestMatches_RGB_4_4, four, four, 15},
	    {tables.BestMatches_RGB_3_4, three, four, 15},    {tables.BestMatches_Alpha_TC1_3_3, even, evenAndOpaque, 15},
	    {tables.BestMatches_Alpha_TC2_3_3, even, odd, 17}};
	for (std::size_t i = 0; i < cases.size(); ++i)
	{
		const Case& test = cases[i];
		for (unsigned entry = 0; entry < 8; ++entry)
		{
			const int limit = entry % 4 == 0 ? 255 : (entry < 4 ? test.close : 32);
			std::set<int> values;
			for (const int a : test.levelsA)
			{
				for (const int b : test.levelsB)
				{
					if (std::abs(a - b) <= limit)
					{
						values.insert(mix(a, b, kWeights[entry]));
					}
				}
			}
			for (int target = 0; target < 256; ++target)
			{
				const KilnMatch match = test.table[target][entry];
				const auto where = ::testing::Message() << "table " << i << " target " << target << " entry " << entry;
				const int difference = target - mix(match.a, match.b, kWeights[entry]);
				ASSERT_EQ(match.error, std::min(difference * difference, 255)) << where;
				ASSERT_LE(std::abs(match.a - match.b), limit) << where;
				ASSERT_EQ(std::count(test.levelsA.begin(), test.levelsA.end(), match.a), 1) << where;
				ASSERT_EQ(std::count(test.levelsB.begin(), test.levelsB.end(), match.b), 1) << where;
				int best = 255;
				for (const int value : values)
				{
					best = std::min(best, std::abs(target - value));
				}
				ASSERT_EQ(match.error, std::min(best * best, 255)) << where;
			}
		}
	}
}

TEST(KilnBestMatch, SelectsAnEntryBySums)
{
	// Errors of the ends and the inner entries (of the close or the wide group) of one channel; all else is free of cost. A is
	// 10 * entry and B 100 + 10 * entry.
	struct Case
	{
		std::array<std::uint8_t, 5> errors;
		bool punchThrough;
		bool first;
		int index;
		int entry;
	};
	const Case cases[] = {
	    {{5, 9, 9, 9, 5}, false, true, 3, 4}, // ends equal: the upper
	    {{4, 9, 9, 9, 5}, false, true, 0, 0},
	    {{5, 5, 0, 5, 5}, false, true, 3, 4}, // the middle is for punch-through only, and equal is
	                                          // not better
	    {{5, 3, 0, 4, 5}, false, true, 1, 1},
	    {{5, 4, 0, 3, 5}, false, true, 2, 3},
	    {{5, 3, 0, 3, 5}, false, true, 2, 3}, // equal in all
	    {{5, 3, 0, 4, 5}, false, false, 1, 5},
	    {{5, 4, 0, 3, 5}, false, false, 2, 7},
	    {{5, 0, 4, 0, 5}, true, true, 1, 2},
	    {{5, 0, 4, 0, 5}, true, false, 1, 6},
	    {{5, 0, 5, 0, 9}, true, true, 0, 0},
	};
	for (const Case& test : cases)
	{
		KilnMatchRow row;
		KilnMatchRow free;
		for (unsigned entry = 0; entry < 8; ++entry)
		{
			const auto a = static_cast<std::uint8_t>(10 * entry);
			const auto b = static_cast<std::uint8_t>(100 + 10 * entry);
			const bool ofTheGroup = entry % 4 == 0 || (entry < 4) == test.first;
			row[entry] = {ofTheGroup ? test.errors[entry > 4 ? entry - 4 : entry] : std::uint8_t{0}, a, b};
			free[entry] = {0, a, b};
		}
		KilnPair pair;
		const auto where = ::testing::PrintToString(test.errors);
		EXPECT_EQ(SelectBestGivenTables({&free, &row, &free, &free}, test.punchThrough, test.first, pair), test.index) << where;
		EXPECT_EQ(pair.a[0], 10 * test.entry) << where;
		EXPECT_EQ(pair.b[3], 100 + 10 * test.entry) << where;
	}
}

TEST(KilnBestMatch, SingleColoursKeepTheirQuality)
{
	constexpr std::array<int, 4> kStandard = {0, 3, 5, 8};
	constexpr std::array<int, 4> kPunchThrough = {0, 4, -1, 8};
	for (const bool tessel2 : {false, true})
	{
		for (const bool punchThrough : {false, true})
		{
			std::array<double, 2> means = {};
			for (const bool first : {true, false})
			{
				const auto errorOf = [&](const KilnColour& colour)
				{
					KilnPair pair;
					const int index = GetSingleColourBestMatchReps(colour, punchThrough, tessel2, first, pair);
					if ((pair.a[3] == 255) == (pair.b[3] == 255))
					{
						EXPECT_EQ(MapToRepresentableColoursInt(tessel2, pair.a, pair.b), pair) << ::testing::PrintToString(colour);
					}
					const int weight = (punchThrough ? kPunchThrough : kStandard)[static_cast<unsigned>(index)];
					EXPECT_GE(weight, 0);
					int error = 0;
					for (unsigned c = 0; c < 4; ++c)
					{
						const int difference = colour[c] - mix(pair.a[c], pair.b[c], weight);
						error += difference * difference;
					}
					return error;
				};
				std::mt19937 random(21);
				const auto byte = [&random]
				{
					return static_cast<std::uint8_t>(random());
				};
				constexpr int kColours = 2000;
				for (int i = 0; i < kColours; ++i)
				{
					means[first ? 0 : 1] += errorOf({byte(), byte(), byte(), byte()}) / (4.0 * kColours);
				}
				int worstGrey = 0;
				for (int grey = 0; grey < 256; ++grey)
				{
					const auto level = static_cast<std::uint8_t>(grey);
					worstGrey = std::max(worstGrey, errorOf({level, level, level, 255}));
				}
				// A step of 1 a channel, but where blue has no level at hand.
				EXPECT_LE(worstGrey, first ? 48 : (punchThrough ? 12 : 6));
			}
			// 32 dB close together; wide is never worse.
			EXPECT_LT(means[0], 65025 / 1584.9);
			EXPECT_LT(means[1], means[0]);
		}
	}
}
