#include <cmath>
#include <gtest/gtest.h>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcTables.h"
#include "EtcSearchTestSupport.h"

using namespace zortexture;
using namespace etctest;

namespace
{
/// A half of a block with what a search found for it.
template<typename Error>
struct HalfResult
{
	Error error;
	unsigned int table;
	unsigned int highBits;
	unsigned int lowBits;
	bool operator==(const HalfResult&) const = default;
};

float fractionalSquare(const unsigned char* texel, const int (&colour)[3])
{
	const float r = static_cast<float>(texel[0] - colour[0]);
	const float g = static_cast<float>(texel[1] - colour[1]);
	const float b = static_cast<float>(texel[2] - colour[2]);
	return 0.299F * r * r + 0.587F * g * g + 0.114F * b * b;
}

template<const int (&Weights)[3]>
unsigned int squareOf(const unsigned char* texel, const int (&colour)[3])
{
	int error = 0;
	for (int k = 0; k < 3; ++k)
	{
		error += Weights[k] * (texel[k] - colour[k]) * (texel[k] - colour[k]);
	}
	return static_cast<unsigned int>(error);
}

/// All tables from `firstTable` to `lastTable` in full.
template<typename Error, typename Square>
HalfResult<Error> tryTables(const Rgb16& block, unsigned int halfWidth, const unsigned char (&base)[3], unsigned int firstTable,
                            unsigned int lastTable, const Square& squareError)
{
	constexpr unsigned int kIndexOfColumn[4] = {3, 2, 0, 1};
	HalfResult<Error> best{static_cast<Error>(3121200) * 400, 0, 0, 0};
	for (unsigned int table = firstTable; table <= lastTable; ++table)
	{
		HalfResult<Error> result{0, table, 0, 0};
		for (unsigned int x = 0; x < halfWidth; ++x)
		{
			for (unsigned int y = 0; y < 8 / halfWidth; ++y)
			{
				Error errors[4];
				unsigned int nearest = 0;
				for (unsigned int column = 0; column < 4; ++column)
				{
					int colour[3];
					for (int k = 0; k < 3; ++k)
					{
						colour[k] = std::min(std::max(base[k] + compressParamsFast[table][column], 0), 255);
					}
					errors[column] = squareError(&block[(y * 4 + x) * 3], colour);
					nearest = errors[column] < errors[nearest] ? column : nearest;
				}
				result.error += errors[nearest];
				result.highBits |= (kIndexOfColumn[nearest] >> 1) << (x * 4 + y);
				result.lowBits |= (kIndexOfColumn[nearest] & 1) << (x * 4 + y);
			}
		}
		if (result.error < best.error)
		{
			best = result;
		}
	}
	return best;
}

/// Compares the four searches of one scale with trying everything.
template<typename Error, typename Square, typename TryAll, typename WithTable>
void expectTableSearches(TryAll tryAll2x4, TryAll tryAll4x2, WithTable with2x4, WithTable with4x2, const Square& squareError)
{
	std::mt19937 random(51);
	for (unsigned int turn = 0; turn < 400; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		const unsigned int row = below(random, 8) * 2;
		unsigned char base[3];
		for (unsigned int k = 0; k < 3; ++k)
		{
			base[k] = turn % 2 == 0 ? block[below(random, 16) * 3 + k] : static_cast<unsigned char>(below(random, 256));
		}
		for (const unsigned int halfWidth : {2U, 4U})
		{
			HalfResult<Error> found{};
			found.error = (halfWidth == 2 ? tryAll2x4 : tryAll4x2)(block.data(), 4, 0, 0, base, found.table, found.highBits, found.lowBits);
			ASSERT_EQ(found, tryTables<Error>(block, halfWidth, base, 0, 7, squareError)) << "turn " << turn;
			found.table = row / 2;
			found.error =
			    (halfWidth == 2 ? with2x4 : with4x2)(block.data(), 4, 0, 0, base, static_cast<int>(row), found.highBits, found.lowBits);
			ASSERT_EQ(found, tryTables<Error>(block, halfWidth, base, row / 2, row / 2, squareError)) << "turn " << turn;
		}
	}
}

TEST(EtcTableSearch, EqualsTryingEverything)
{
	expectTableSearches<unsigned int>(tryalltables_3bittable2x4, tryalltables_3bittable4x2, compressBlockWithTable2x4,
	                                  compressBlockWithTable4x2, squareOf<kPlainWeights>);
	expectTableSearches<unsigned int>(tryalltables_3bittable2x4percep1000, tryalltables_3bittable4x2percep1000,
	                                  compressBlockWithTable2x4percep1000, compressBlockWithTable4x2percep1000,
	                                  squareOf<kPerceptualWeights>);
	expectTableSearches<float>(tryalltables_3bittable2x4percep, tryalltables_3bittable4x2percep, compressBlockWithTable2x4percep,
	                           compressBlockWithTable4x2percep, fractionalSquare);
}

TEST(EtcQuantise, KnownMeans)
{
	using Levels = std::array<int, 3>;
	struct Case
	{
		float mean[3];
		Levels plain4, perceptual4, plain5, perceptual5;
	};
	// Half way between two levels, where both have no tint at all: the lower. Where rounding to 4 bits would tint: not. Where a
	// tint of green and blue, or of red and green, weighs less to the eye. At the top, above which there is no level.
	constexpr Case kCases[] = {{{8.5F, 8.5F, 8.5F}, {0, 0, 0}, {0, 0, 0}, {1, 1, 1}, {1, 1, 1}},
	                           {{9.0F, 8.0F, 8.0F}, {0, 0, 0}, {0, 0, 0}, {1, 1, 1}, {1, 1, 1}},
	                           {{1.0F, 7.0F, 13.0F}, {0, 0, 1}, {0, 0, 0}, {0, 1, 2}, {0, 1, 2}},
	                           {{1.0F, 7.0F, 4.0F}, {0, 0, 0}, {0, 0, 0}, {0, 1, 0}, {0, 1, 1}},
	                           {{255.0F, 255.0F, 255.0F}, {15, 15, 15}, {15, 15, 15}, {31, 31, 31}, {31, 31, 31}}};
	for (const Case& test : kCases)
	{
		const auto run = [&test](auto* quantiser)
		{
			int levels[3];
			quantiser(test.mean, levels);
			return Levels{levels[0], levels[1], levels[2]};
		};
		EXPECT_EQ(run(quantize444ColorCombined), test.plain4) << test.mean[0];
		EXPECT_EQ(run(quantize444ColorCombinedPerceptual), test.perceptual4) << test.mean[0];
		EXPECT_EQ(run(quantize555ColorCombined), test.plain5) << test.mean[0];
		EXPECT_EQ(run(quantize555ColorCombinedPerceptual), test.perceptual5) << test.mean[0];
	}
}

using DiffFlipSearch = void (*)(const unsigned char*, unsigned int, unsigned int, unsigned int, unsigned int&, unsigned int&);
constexpr DiffFlipSearch kDiffFlipSearches[] = {compressBlockDiffFlipAverage, compressBlockDiffFlipCombined,
                                                compressBlockDiffFlipAveragePerceptual, compressBlockDiffFlipCombinedPerceptual};

/// The block that a quantiser's bases and a table search's choices make, assembled from the named functions.
template<typename TryAll, typename To5Bits, typename To4Bits>
std::pair<unsigned int, unsigned int> assemble(const unsigned char* image, TryAll tryAll2x4, TryAll tryAll4x2, To5Bits to5Bits,
                                               To4Bits to4Bits)
{
	double leastError = 0.0;
	std::pair<unsigned int, unsigned int> best;
	for (unsigned int flip = 0; flip < 2; ++flip)
	{
		const unsigned int x2 = flip == 0 ? 2 : 0;
		const unsigned int y2 = flip == 0 ? 0 : 2;
		auto* const average = flip == 0 ? computeAverageColor2x4noQuantFloat : computeAverageColor4x2noQuantFloat;
		float means[2][3];
		average(image, 4, 0, 0, means[0]);
		average(image, 4, x2, y2, means[1]);
		int colours[2][3];
		to5Bits(means[0], colours[0]);
		to5Bits(means[1], colours[1]);
		bool isDifferential = true;
		for (int k = 0; k < 3; ++k)
		{
			const int shifted = colours[1][k] - colours[0][k] + 4;
			isDifferential = isDifferential && shifted >= 0 && shifted <= 7;
		}
		if (!isDifferential)
		{
			to4Bits(means[0], colours[0]);
			to4Bits(means[1], colours[1]);
		}
		unsigned int word1 = flip | (isDifferential ? 2 : 0);
		unsigned char bases[2][3];
		for (unsigned int k = 0; k < 3; ++k)
		{
			const auto first = static_cast<unsigned int>(colours[0][k]);
			const auto second = static_cast<unsigned int>(colours[1][k]);
			word1 |= (isDifferential ? first << 3 | ((second - first) & 7) : first << 4 | second) << (24 - 8 * k);
			bases[0][k] = static_cast<unsigned char>(isDifferential ? first << 3 | first >> 2 : first * 17);
			bases[1][k] = static_cast<unsigned char>(isDifferential ? second << 3 | second >> 2 : second * 17);
		}
		unsigned int tables[2];
		unsigned int high[2];
		unsigned int low[2];
		const TryAll tryAll = flip == 0 ? tryAll2x4 : tryAll4x2;
		const auto error1 = tryAll(image, 4, 0, 0, bases[0], tables[0], high[0], low[0]);
		const auto error2 = tryAll(image, 4, x2, y2, bases[1], tables[1], high[1], low[1]);
		const double error = error1 + error2;
		if (flip == 0 || leastError > error)
		{
			const unsigned int shift = flip == 0 ? 8 : 2;
			leastError = error;
			best = {word1 | tables[0] << 5 | tables[1] << 2, (high[0] | high[1] << shift) << 16 | low[0] | low[1] << shift};
		}
	}
	return best;
}

TEST(EtcDiffFlipSearch, BlocksAreAssembledFromTheBestTables)
{
	const auto rounded5 = [](const float(&mean)[3], int(&level)[3])
	{
		std::transform(mean, mean + 3, level, [](float value) { return static_cast<int>(std::lround(value * 31.0 / 255.0)); });
	};
	const auto rounded4 = [](const float(&mean)[3], int(&level)[3])
	{
		std::transform(mean, mean + 3, level, [](float value) { return static_cast<int>(std::lround(value / 17.0)); });
	};
	std::mt19937 random(53);
	for (unsigned int turn = 0; turn < 300; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		const unsigned char* const image = block.data();
		const std::pair<unsigned int, unsigned int> expected[] = {
		    assemble(image, tryalltables_3bittable2x4, tryalltables_3bittable4x2, rounded5, rounded4),
		    assemble(image, tryalltables_3bittable2x4, tryalltables_3bittable4x2, quantize555ColorCombined, quantize444ColorCombined),
		    assemble(image, tryalltables_3bittable2x4percep, tryalltables_3bittable4x2percep, rounded5, rounded4),
		    assemble(image, tryalltables_3bittable2x4percep, tryalltables_3bittable4x2percep, quantize555ColorCombinedPerceptual,
		             quantize444ColorCombinedPerceptual)};
		for (std::size_t i = 0; i < 4; ++i)
		{
			std::pair<unsigned int, unsigned int> words;
			kDiffFlipSearches[i](image, 4, 0, 0, words.first, words.second);
			EXPECT_EQ(words, expected[i]) << "turn " << turn << " search " << i;
		}
	}
}
} // namespace
