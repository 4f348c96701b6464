#include <gtest/gtest.h>

#include "Codecs/ETC/EtcFastSearch.h"
#include "EtcSearchTestSupport.h"

using namespace zortexture;
using namespace etctest;

namespace
{
struct Result
{
	unsigned int error;
	unsigned int word1;
	unsigned int word2;
	bool operator==(const Result&) const = default;
};

Result search(bool isTransparent, const Rgb16& block, const unsigned char (&alpha)[16])
{
	Result result{};
	result.error = static_cast<unsigned int>(
	    compressBlockDifferentialWithAlpha(isTransparent, block.data(), alpha, 4, 0, 0, result.word1, result.word2));
	return result;
}

void randomAlpha(std::mt19937& random, unsigned char (&alpha)[16], unsigned int oneInSo)
{
	for (unsigned char& value : alpha)
	{
		value = static_cast<unsigned char>(below(random, oneInSo) == 0 ? below(random, 128) : 128 + below(random, 128));
	}
}

/// Bit i for texel i in raster order, set from an alpha of 128 on.
unsigned int opaqueMask(const unsigned char (&alpha)[16])
{
	unsigned int mask = 0;
	for (unsigned int i = 0; i < 16; ++i)
	{
		mask |= static_cast<unsigned int>(alpha[i] >= 128) << i;
	}
	return mask;
}

/// For the colours and the split of a block: the first best table of each half and the first best index of each texel in the order of
/// rising modifiers, by decoding blocks of one index each.
Result bestIndices(bool isTransparent, const Rgb16& block, unsigned int opaque, unsigned int word1)
{
	Result best{0, word1 & ~0xFCU, 0};
	for (unsigned int half = 0; half < 2; ++half)
	{
		const unsigned int tableShift = half == 0 ? 5 : 2;
		Result bestOfHalf{0xFFFFFFFF, 0, 0};
		for (unsigned int table = 0; table < 8; ++table)
		{
			Result result{0, table << tableShift, 0};
			for (unsigned int number = 0; number < 16; ++number)
			{
				const unsigned int x = number / 4;
				const unsigned int y = number % 4;
				if (((word1 & 1) != 0 ? y / 2 : x / 2) != half)
				{
					continue;
				}
				unsigned int chosen = 2;
				unsigned int least = 0xFFFFFFFF;
				const bool isOpaque = (opaque >> (y * 4 + x) & 1) != 0;
				for (const unsigned int index : {3U, 2U, 0U, 1U})
				{
					if (!isOpaque || (isTransparent && index == 2))
					{
						continue;
					}
					Rgb16 decoded;
					unsigned char decodedAlpha[16];
					decompressBlockDifferentialWithAlpha((word1 & ~0xFCU) | table << tableShift,
					                                     (index >> 1) << (16 + number) | (index & 1) << number, decoded.data(),
					                                     decodedAlpha, 4, 0, 0);
					const unsigned int error = weightedError(block, decoded, kPlainWeights, 1U << (y * 4 + x));
					if (error < least)
					{
						least = error;
						chosen = index;
					}
				}
				result.error += isOpaque ? least : 0;
				result.word2 |= (chosen >> 1) << (16 + number) | (chosen & 1) << number;
			}
			if (result.error < bestOfHalf.error)
			{
				bestOfHalf = result;
			}
		}
		best.error += bestOfHalf.error;
		best.word1 |= bestOfHalf.word1;
		best.word2 |= bestOfHalf.word2;
	}
	return best;
}

TEST(EtcPunchThrough, TablesAndIndicesAreTheBestForTheColours)
{
	std::mt19937 random(71);
	for (unsigned int turn = 0; turn < 120; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		unsigned char alpha[16];
		randomAlpha(random, alpha, turn % 3 == 0 ? 1000 : 3);
		for (const bool isTransparent : {false, true})
		{
			const Result result = search(isTransparent, block, alpha);
			EXPECT_EQ(result.word1 & 2, isTransparent ? 0U : 2U);
			EXPECT_EQ(result, bestIndices(isTransparent, block, opaqueMask(alpha), result.word1));
		}
	}
}

TEST(EtcPunchThrough, ColoursOfTransparentTexelsHardlyCount)
{
	// Opaque texels of one grey (8 bits of level 16) among transparent red ones: both bases are the grey, at 5 bits.
	Rgb16 block;
	unsigned char alpha[16];
	for (unsigned int i = 0; i < 16; ++i)
	{
		const bool isOpaque = i % 3 == 0;
		const unsigned char colours[2][3] = {{255, 0, 0}, {132, 132, 132}};
		std::copy_n(colours[isOpaque ? 1 : 0], 3, &block[i * 3]);
		alpha[i] = isOpaque ? 255 : 0;
	}
	const Result result = search(true, block, alpha);
	EXPECT_EQ(result.error, 0U);
	EXPECT_EQ(result.word1 >> 8, 0x808080U);
	EXPECT_EQ(result.word1 & 1, 0U); // the splits tie

	// Without an opaque texel the mean is that of the texels themselves.
	std::fill(std::begin(alpha), std::end(alpha), static_cast<unsigned char>(0));
	block.fill(132);
	const Result empty = search(true, block, alpha);
	EXPECT_EQ(empty.error, 0U);
	EXPECT_EQ(empty.word1, 0x80808000U);
	EXPECT_EQ(empty.word2, 0xFFFF0000U);
}

TEST(EtcPunchThrough, DistantHalvesAreBroughtNear)
{
	for (const bool isFlipped : {false, true})
	{
		Rgb16 block;
		for (unsigned int i = 0; i < 16; ++i)
		{
			const bool isSecond = (isFlipped ? i / 4 : i % 4) >= 2;
			const unsigned char colours[2][3] = {{0, 255, 132}, {255, 0, 132}};
			std::copy_n(colours[isSecond ? 1 : 0], 3, &block[i * 3]);
		}
		unsigned char alpha[16];
		std::fill(std::begin(alpha), std::end(alpha), static_cast<unsigned char>(255));
		const Result result = search(true, block, alpha);
		// 0 + 3, 31 - 4, 16 + 0 if that split is taken; both halves of the other one have the same mean.
		const bool isSplitTaken = (result.word1 & 1) == (isFlipped ? 1U : 0U);
		EXPECT_TRUE(!isSplitTaken || result.word1 >> 8 == 0x03FC80U) << std::hex << result.word1;
		EXPECT_TRUE(isSplitTaken || (result.word1 & 0x07070700) == 0) << std::hex << result.word1;
	}
}
} // namespace
