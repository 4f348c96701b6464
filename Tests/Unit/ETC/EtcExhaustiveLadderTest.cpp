#include <gtest/gtest.h>

#include "Codecs/ETC/EacBlock.h"
#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "ETCCodec.h"
#include "EtcExhaustiveSupport.h"
#include "EtcTestSupport.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;
using namespace etctest;

namespace
{
Bytes encode(const Bytes& texels, int quality, unsigned int format)
{
	Bytes block(format == ePF_ETC2_RGBA ? 16 : 8);
	EXPECT_EQ(ETCCompress(texels.data(), block.data(), 4, 4, quality, format, false), block.size());
	return block;
}

/// Error of a stored block in the measure of its quality, the perceptual one in thousandths.
unsigned int errorOf(const Rgb16& source, const Bytes& stored, int quality)
{
	Rgb16 decoded;
	ETCDecompress(stored.data(), decoded.data(), 4, 4, ePF_ETC2_RGB, false);
	return weightedError(source, decoded, quality % 2 == 0 ? kPlainWeights : kPerceptualWeights);
}

/// What the searches of all modes find without a bound from each other.
unsigned int leastError(const Rgb16& block, bool isPlain, bool isEtc2)
{
	const unsigned char* source = block.data();
	const Measure& measure = isPlain ? kPlain : kPerceptual;
	const unsigned int ceiling = measure.ceiling;
	unsigned int word1 = 0;
	unsigned int word2 = 0;
	const auto run = [&](auto* search, auto... bounds)
	{
		return search(source, 4, 0, 0, word1, word2, bounds..., searchSpace());
	};
	unsigned int least =
	    std::min(run(isPlain ? compressBlockIndividualExhaustive : compressBlockIndividualExhaustivePerceptual, ceiling),
	             run(isPlain ? compressBlockDifferentialExhaustive : compressBlockDifferentialExhaustivePerceptual, ceiling));
	if (isEtc2)
	{
		const unsigned int noSeed[3] = {ceiling, ceiling, ceiling};
		unsigned int planar = 0;
		if (isPlain)
		{
			planar = compressBlockPlanar57Exhaustive(source, 4, 0, 0, word1, word2, ceiling, noSeed);
		}
		else
		{
			planar = compressBlockPlanar57ExhaustivePerceptual(source, 4, 0, 0, word1, word2, ceiling, noSeed);
		}
		least =
		    std::min({least, planar, run(isPlain ? compressBlockTHUMB59TExhaustive : compressBlockTHUMB59TExhaustivePerceptual, ceiling),
		              run(isPlain ? compressBlockTHUMB58HExhaustive : compressBlockTHUMB58HExhaustivePerceptual, ceiling)});
	}
	return least;
}

/// Smooth blocks in which several planes cost the same: the first of them is taken, also where the bound that the fast levels leave was
/// measured 1 too small (here 4529 for an error of 4530).
TEST(EtcExhaustiveLadder, FirstOfEqualPlanes)
{
	const std::pair<Bytes, Bytes> blocks[] = {
	    {{0xC6, 0x44, 0xD5, 0x97, 0x33, 0xA2, 0x67, 0x22, 0x6F, 0x38, 0x11, 0x3C, 0xBE, 0x5B, 0xD8, 0x8F,
	      0x4A, 0xA5, 0x5F, 0x39, 0x72, 0x30, 0x28, 0x3F, 0xB6, 0x73, 0xDB, 0x87, 0x62, 0xA8, 0x57, 0x51,
	      0x75, 0x28, 0x40, 0x42, 0xAE, 0x8A, 0xDE, 0x7F, 0x79, 0xAB, 0x4F, 0x68, 0x78, 0x20, 0x57, 0x45},
	     {0x62, 0x45, 0xF2, 0x06, 0x00, 0x15, 0x34, 0x38}},
	    {{0x00, 0x2B, 0xA0, 0x37, 0x50, 0x93, 0x6E, 0x75, 0x86, 0xA5, 0x9A, 0x79, 0x00, 0x21, 0x92, 0x37,
	      0x46, 0x85, 0x6E, 0x6B, 0x78, 0xA5, 0x90, 0x6B, 0x00, 0x16, 0x83, 0x37, 0x3B, 0x76, 0x6E, 0x60,
	      0x69, 0xA5, 0x85, 0x5C, 0x00, 0x0B, 0x75, 0x37, 0x30, 0x68, 0x6E, 0x55, 0x5B, 0xA5, 0x7A, 0x4E},
	     {0x80, 0xAD, 0x07, 0xEE, 0xBE, 0xD8, 0x00, 0x19}},
	};
	for (const auto& [texels, stored] : blocks)
	{
		EXPECT_EQ(encode(texels, 3, ePF_ETC2_RGB), stored);
	}
}

/// The exhaustive levels give the least error that any block of the format has, and so never more than the fast levels.
TEST(EtcExhaustiveLadder, TheBestBlockOfAllModes)
{
	std::mt19937 random(81);
	for (const unsigned int turn : {1U, 2U, 4U, 6U, 7U}) // noise takes long
	{
		const Rgb16 block = anyBlock(random, turn);
		const Bytes texels(block.begin(), block.end());
		for (const unsigned int format : {ePF_ETC1, ePF_ETC2_RGB})
		{
			for (const int quality : {2, 3})
			{
				SCOPED_TRACE(testing::Message() << "turn " << turn << ", format " << format << ", quality " << quality);
				const Bytes found = encode(texels, quality, format);
				EXPECT_EQ(errorOf(block, found, quality), leastError(block, quality == 2, format == ePF_ETC2_RGB));
				EXPECT_LE(errorOf(block, found, quality), errorOf(block, encode(texels, quality - 2, format), quality));
				if (turn == 1)
				{
					EXPECT_EQ(encode(texels, quality + 2, format), found);
				}
			}
		}
	}
}

/// A block of a photograph, made darker or lighter and given a little noise.
Rgb16 naturalBlock(std::mt19937& random)
{
	Rgb16 block = kNaturalBlocks[below(random, 2)];
	const int contrast = static_cast<int>(below(random, 160));
	const int offset = static_cast<int>(below(random, 160)) - 60;
	for (unsigned char& value : block)
	{
		value = clamp(value * contrast / 100 + offset + static_cast<int>(below(random, 5)));
	}
	return block;
}

TEST(EtcExhaustiveLadder, EveryVectorUnitGivesTheBytesOfThePlainForm)
{
	std::mt19937 random(83);
	Bytes texels;
	for (unsigned int turn = 0; turn < 24; ++turn)
	{
		Rgb16 block = turn < 14 ? naturalBlock(random) : anyBlock(random, turn % 5 + 1);
		if (turn == 23)
		{
			std::generate(block.begin(), block.end(), [&random] { return static_cast<unsigned char>(below(random, 100)); });
		}
		texels.insert(texels.end(), block.begin(), block.end());
	}
	for (const unsigned int format : {ePF_ETC1, ePF_ETC2_RGB})
	{
		for (const int quality : {2, 3})
		{
			const auto compress = [&]
			{
				Bytes blocks(24 * 8);
				EXPECT_EQ(ETCCompress(texels.data(), blocks.data(), 4, 24 * 4, quality, format, false), blocks.size());
				return blocks;
			};
			const Bytes plain = atSimdLevel(eSimdPlain, compress);
			for (const ESimdLevel level : kVectorLevels)
			{
				EXPECT_EQ(atSimdLevel(level, compress), plain) << "level " << level << ", format " << format << ", quality " << quality;
			}
		}
	}
}

/// Where the fast search is exact nothing is better, and its words stand.
TEST(EtcExhaustiveLadder, AnExactFastBlockStands)
{
	unsigned int exact = 0;
	for (unsigned int value = 0; value < 256; value += 3)
	{
		Rgb16 block;
		block.fill(static_cast<unsigned char>(value));
		const Bytes texels(block.begin(), block.end());
		for (const auto& [quality, format] : {std::pair{2, ePF_ETC2_RGB}, {3, ePF_ETC1}, {3, ePF_ETC2_RGB}})
		{
			const Bytes fast = encode(texels, quality - 2, ePF_ETC1);
			if (errorOf(block, fast, quality) == 0)
			{
				++exact;
				EXPECT_EQ(encode(texels, quality, format), fast) << value;
			}
		}
	}
	EXPECT_GT(exact, 20U);
}

/// Where the exhaustive searches of ETC1 reach what the fast one has and no more, the plain twin takes their words and the perceptual twin
/// the fast ones. The individual block of 17 * 9 - 8 is exact as the fast differential one is.
TEST(EtcExhaustiveLadder, TiesOfEtc1DependOnTheTwin)
{
	const Bytes texels(48, 145);
	const Bytes fast = encode(texels, 0, ePF_ETC1);
	ASSERT_EQ(fast, encode(texels, 1, ePF_ETC1));
	EXPECT_EQ(encode(texels, 3, ePF_ETC1), fast);
	EXPECT_EQ(encode(texels, 2, ePF_ETC1), (Bytes{0x99, 0x99, 0x99, 0x00, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(EtcExhaustiveLadder, AlphaFormatsShareTheColourBlock)
{
	std::mt19937 random(82);
	for (unsigned int turn = 4; turn < 7; ++turn)
	{
		const Rgb16 block = anyBlock(random, turn);
		const Bytes colours(block.begin(), block.end());
		Bytes texels(64);
		unsigned char alphas[16];
		for (unsigned int i = 0; i < 16; ++i)
		{
			std::copy_n(&block[i * 3], 3, &texels[i * 4]);
			texels[i * 4 + 3] = alphas[i] = static_cast<unsigned char>(i * 11 + below(random, 40));
		}
		const int quality = 2 + static_cast<int>(turn % 2);
		Bytes expected(8);
		compressBlockAlphaSlow(alphas, 0, 0, 4, expected.data(), alphaTable);
		const Bytes colourWords = encode(colours, quality, ePF_ETC2_RGB);
		expected.insert(expected.end(), colourWords.begin(), colourWords.end());
		EXPECT_EQ(encode(texels, quality, ePF_ETC2_RGBA), expected) << "turn " << turn;
	}
}
} // namespace
