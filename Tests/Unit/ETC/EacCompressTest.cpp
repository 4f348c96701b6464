#include <algorithm>
#include <gtest/gtest.h>

#include "Codecs/ETC/EacBlock.h"
#include "EtcTestSupport.h"
#include "Simd/SimdLevels.h"

namespace zortexture
{
namespace
{
constexpr ESimdLevel kLevels[] = {eSimdPlain, eSimdSse2, eSimdAvx2};

int modifier(int table, int index)
{
	return index < 4 ? alphaBase[table][3 - index] : -alphaBase[table][7 - index] - 1;
}

// ---- 16 bits: the search against one without any short cut, ties included.

using Values16 = std::array<std::uint16_t, 16>;

int value11(int base, int table, int multiplier, int index, bool isSigned)
{
	const int offset = modifier(table, index) * std::max(multiplier * 8, 1);
	if (!isSigned)
	{
		const int value = std::clamp(base * 8 + 4 + offset, 0, 2047);
		return value * 32 + value / 64;
	}
	const int value = std::clamp(std::max(base * 8 - 1024, -1016) + offset, -1023, 1023);
	return value < 0 ? -(-value * 32 + -value / 32) : value * 32 + value / 32;
}

/// The error of a parameter set, as far as it is below `limit`. A difference is a 16-bit number that wraps: its distance from 0 is at
/// most 32768.
std::int64_t wrappingError(const Values16& texels, const int (&candidates)[8], std::int64_t limit)
{
	std::int64_t sum = 0;
	for (const int texel : texels)
	{
		std::int64_t least = INT64_MAX;
		for (const int candidate : candidates)
		{
			const int distance = std::abs((texel & 0xFFFF) - (candidate & 0xFFFF));
			const std::int64_t wrapped = std::min(distance, 65536 - distance);
			least = std::min(least, wrapped * wrapped);
		}
		sum += least;
		if (sum >= limit)
		{
			break;
		}
	}
	return sum;
}

std::array<unsigned char, 8> bruteForce16(const Values16& texels, bool isSigned)
{
	std::int64_t least = INT64_MAX;
	int best[3] = {0, 0, 0};
	int candidates[8];
	const auto decode = [&](int base, int table, int multiplier)
	{
		for (int index = 0; index < 8; ++index)
		{
			candidates[index] = value11(base, table, multiplier, index, isSigned);
		}
	};
	for (int set = 0; set < 65536; ++set)
	{
		decode(set >> 8, (set >> 4) & 15, set & 15);
		const std::int64_t error = wrappingError(texels, candidates, least);
		if (error < least)
		{
			least = error;
			best[0] = set >> 8;
			best[1] = (set >> 4) & 15;
			best[2] = set & 15;
		}
	}

	decode(best[0], best[1], best[2]);
	std::array<unsigned char, 8> block{};
	block[0] = static_cast<unsigned char>(isSigned ? best[0] - 128 : best[0]);
	block[1] = static_cast<unsigned char>(best[2] * 16 + best[1]);
	for (unsigned int number = 0; number < 16; ++number)
	{
		const std::uint16_t pattern = texels[number % 4 * 4 + number / 4];
		const int texel = isSigned ? static_cast<std::int16_t>(pattern) : pattern;
		unsigned int nearest = 0;
		for (unsigned int index = 1; index < 8; ++index)
		{
			// The choice of an index does not wrap; distances of 65025 and more do not count.
			const int distance = std::min(std::abs(texel - candidates[index]), 65025);
			nearest = distance < std::min(std::abs(texel - candidates[nearest]), 65025) ? index : nearest;
		}
		for (unsigned int bit = 0; bit < 3; ++bit)
		{
			const unsigned int position = number * 3 + bit;
			block[2 + position / 8] |= static_cast<unsigned char>(((nearest >> (2 - bit)) & 1) << (7 - position % 8));
		}
	}
	return block;
}

TEST(EacCompress16, GivesTheBlockOfTheSearchWithoutShortCuts)
{
	std::mt19937 random(11);
	const auto value = [&]
	{
		return static_cast<std::uint16_t>(random());
	};
	std::vector<Values16> blocks;
	for (int round = 0; round < 4; ++round)
	{
		Values16 noise;
		std::generate(noise.begin(), noise.end(), value);
		blocks.push_back(noise);
		for (const int top : {65535, 3000, 300})
		{
			blocks.push_back(etctest::smoothBlock<std::uint16_t>(random, top));
		}
		Values16 flat;
		flat.fill(value());
		blocks.push_back(flat);

		const std::uint16_t colours[2] = {value(), value()};
		Values16 edge;
		std::generate(edge.begin(), edge.end(), [&] { return colours[random() % 2]; });
		blocks.push_back(edge);

		// Across the wrap of unsigned and of signed values, where the middle of signed ones lies at 0.
		for (const unsigned int centre : {0x0000U, 0x8000U})
		{
			const unsigned int spread = 100 + random() % 10000;
			Values16 wrapping;
			std::generate(wrapping.begin(), wrapping.end(),
			              [&] { return static_cast<std::uint16_t>(centre + random() % (2 * spread) - spread); });
			blocks.push_back(wrapping);
		}
	}
	// Near one end of the range, but for two texels just across the wrap: far below (above) all values that fit the others, and yet near.
	for (const int top : {0xFFFF, 0x0000, 0x7FFF, 0x8000})
	{
		const int inwards = top == 0xFFFF || top == 0x7FFF ? -1 : 1;
		Values16 across;
		for (int i = 0; i < 16; ++i)
		{
			across[static_cast<unsigned int>(i)] = static_cast<std::uint16_t>(top + inwards * (i % 8 == 5 ? -1 - i : i * 257));
		}
		blocks.push_back(across);
	}
	const std::uint16_t extremes[4] = {0x0000, 0xFFFF, 0x8000, 0x7FFF};
	Values16 ends;
	for (unsigned int i = 0; i < 16; ++i)
	{
		ends[i] = extremes[i * 7 / 3 % 4];
	}
	blocks.push_back(ends);
	for (const std::uint16_t extreme : extremes)
	{
		Values16 flat;
		flat.fill(extreme);
		blocks.push_back(flat);
	}

	for (const Values16& texels : blocks)
	{
		// The second channel of a larger image.
		std::vector<std::uint16_t> image(std::size_t{7} * 6 * 2, 12345);
		for (unsigned int i = 0; i < 16; ++i)
		{
			image[((1 + i / 4) * 7 + 3 + i % 4) * 2 + 1] = texels[i];
		}
		for (const bool isSigned : {false, true})
		{
			const std::array<unsigned char, 8> expected = bruteForce16(texels, isSigned);
			for (const ESimdLevel level : kLevels)
			{
				const ForcedSimdLevel forced(level);
				std::array<unsigned char, 8> block{};
				compressBlockAlpha16(image.data() + 1, 2, 3, 1, 7, block.data(), isSigned,
				                     isSigned ? valueTableSigned() : valueTableUnsigned());
				ASSERT_EQ(block, expected) << "level " << level << ", signed " << isSigned << ", first texel " << texels[0];
			}
		}
	}
}

TEST(EacCompress16, ErrorsWrapAndStopAtTheBound)
{
	// Base 0, table 0, multiplier 15 holds the values 0 and 53914, among others; 65535 is one step below 0.
	Values16 texels;
	texels.fill(65535);
	EXPECT_EQ(calcError(texels.data(), 1, 0, 0, 4, 0, 0, 15, 1e12, valueTableUnsigned(), false), 16.0);
	EXPECT_EQ(calcError(texels.data(), 1, 0, 0, 4, 0, 0, 15, 16.0, valueTableUnsigned(), false), 16.0 + 1073741824.0);
	EXPECT_EQ(calcError(texels.data(), 1, 0, 0, 4, 0, 0, 15, 17.0, valueTableUnsigned(), false), 16.0);
}

// ---- 8 bits: the passes told plainly.

using Values8 = std::array<unsigned char, 16>;

int entry(int row, int index)
{
	return modifier(row & 15, index) * (row >> 4);
}

int squareOf(int base, int row, int index, int texel)
{
	const int difference = std::clamp(base + entry(row, index), 0, 255) - texel;
	return difference * difference;
}

/// The texel's error as a search step sees it: a walk outwards in, down one side of the sorted entries.
int walkedError(int base, int row, int texel, bool slow)
{
	const bool below = base >= texel;
	const std::array<int, 4> order = below ? std::array<int, 4>{0, 1, 2, 3} : std::array<int, 4>{7, 6, 5, 4};
	int error = squareOf(base, row, order[0], texel);
	for (unsigned int step = 1; step < 4; ++step)
	{
		const int next = squareOf(base, row, order[step], texel);
		if (below ? next >= error : next > error)
		{
			break;
		}
		error = next;
	}
	return below && slow ? std::min(error, squareOf(base, row, 4, texel)) : error;
}

std::array<unsigned char, 8> passes8(const Values8& texels, bool slow)
{
	int total = 0;
	for (const int texel : texels)
	{
		total += texel;
	}
	const int average = (total + 8) / 16;
	int spread = 0;
	for (const int texel : texels)
	{
		spread = std::max(spread, std::abs(texel - average));
	}
	const int middle = std::min(spread * 255 / 160 - 4, 255);
	const int first = slow ? 0 : std::max(middle - 15, 0);
	const int end = slow ? 256 : std::min(middle + 15, 255);

	int bestSum = 1000000000;
	int bestBase = 128;
	int bestRow = -3;
	for (int row = first; row < end && bestSum > 0; ++row)
	{
		int rowSum = 1000000000;
		int centre = average;
		int rowBase = average;
		for (int pass = 0; pass < 3; ++pass)
		{
			const int scale = pass == 0 ? (slow ? 32 : 16) : (pass == 1 ? 4 : 1);
			const int reach = (slow || pass == 0 ? 4 : 2) * scale;
			const int last = std::clamp(centre + reach, 0, 255);
			for (int base = std::clamp(centre - reach, 0, 255); base <= last; base += scale)
			{
				int sum = 0;
				for (const int texel : texels)
				{
					sum += walkedError(base, row, texel, slow);
				}
				// In the fast search a sum above the best of all rows so far was given up before its end.
				if (sum < rowSum && (slow || sum <= bestSum))
				{
					rowSum = sum;
					rowBase = base;
				}
			}
			centre = rowBase;
		}
		if (rowSum < bestSum)
		{
			bestSum = rowSum;
			bestBase = rowBase;
			bestRow = row;
		}
	}

	std::array<unsigned char, 8> block{static_cast<unsigned char>(bestBase), static_cast<unsigned char>(bestRow)};
	std::uint64_t packed = 0;
	for (unsigned int number = 0; number < 16; ++number)
	{
		int nearest = 0;
		for (int index = 1; index < 8; ++index)
		{
			const int texel = texels[number % 4 * 4 + number / 4];
			nearest = squareOf(bestBase, bestRow, index, texel) < squareOf(bestBase, bestRow, nearest, texel) ? index : nearest;
		}
		packed = packed * 8 + static_cast<unsigned int>(nearest);
	}
	for (unsigned int byte = 0; byte < 6; ++byte)
	{
		block[7 - byte] = static_cast<unsigned char>(packed >> (8 * byte));
	}
	return block;
}

TEST(EacCompress8, FollowsThePasses)
{
	std::mt19937 random(13);
	for (int round = 0; round < 120; ++round)
	{
		Values8 texels = etctest::smoothBlock<unsigned char>(random, 255);
		const auto low = static_cast<unsigned char>(random());
		const auto high = static_cast<unsigned char>(random());
		switch (round % 6)
		{
		case 0:
			std::generate(texels.begin(), texels.end(), [&] { return static_cast<unsigned char>(random()); });
			break;
		case 1: // a cut-out: two values with an edge between them
		{
			const unsigned int edge = random() % 17;
			std::fill(texels.begin(), texels.begin() + edge, low);
			std::fill(texels.begin() + edge, texels.end(), high);
			break;
		}
		case 2: // one value, but for one texel at times
			texels.fill(low);
			texels[high % 16] = round % 2 == 0 ? low : high;
			break;
		case 3: // both ends
			std::generate(texels.begin(), texels.end(), [&] { return static_cast<unsigned char>(random() % 2 == 0 ? 0 : 255); });
			break;
		case 4: // a narrow range, where rows are many and alike
			std::generate(texels.begin(), texels.end(),
			              [&] { return static_cast<unsigned char>(std::min(low + int(random() % 24), 255)); });
			break;
		default:
			break;
		}
		for (const bool slow : {false, true})
		{
			const std::array<unsigned char, 8> expected = passes8(texels, slow);
			for (const ESimdLevel level : kLevels)
			{
				const ForcedSimdLevel forced(level);
				std::array<unsigned char, 8> block{};
				(slow ? compressBlockAlphaSlow : compressBlockAlphaFast)(texels.data(), 0, 0, 4, block.data(), alphaTable);
				ASSERT_EQ(block, expected) << "level " << level << ", slow " << slow << ", round " << round;
			}
		}
	}
}
} // namespace
} // namespace zortexture
