#include <cstring>
#include <gtest/gtest.h>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcTables.h"
#include "ETCCodec.h"
#include "EtcSearchTestSupport.h"

using namespace zortexture;
using namespace etctest;

namespace
{
struct Choice
{
	unsigned int error = 0xFFFFFFFF;
	unsigned int distance = 0;
	unsigned int indices = 0;
	unsigned int first = 0;
	unsigned int second = 0;
	bool operator==(const Choice&) const = default;
};

void unpack(unsigned int packed, unsigned char (&colour)[3])
{
	colour[0] = static_cast<unsigned char>(packed >> 8);
	colour[1] = static_cast<unsigned char>(packed >> 4 & 15);
	colour[2] = static_cast<unsigned char>(packed & 15);
}

unsigned int pack(const unsigned char (&colour)[3])
{
	return static_cast<unsigned int>(colour[0] << 8 | colour[1] << 4 | colour[2]);
}

/// How a search treats one texel: left out with an index, or matched with all indices but one (4: with all).
struct TexelRule
{
	bool isLeftOut;
	unsigned int reserved;
};

/// Every distance, every index: paint colours are taken from decoded blocks of one index each. `isH` reads the colours as an
/// H block whose order is the other one where the distance asks for it.
template<typename RuleOf>
void tryEverything(const Rgb16& block, unsigned int first, unsigned int second, bool isH, const int (&weights)[3], const RuleOf& ruleOf,
                   Choice& best)
{
	for (unsigned int distance = 0; distance < 8; ++distance)
	{
		const bool isExchanged = isH && (distance & 1) != static_cast<unsigned int>(first >= second);
		const unsigned int a = isExchanged ? second : first;
		const unsigned int b = isExchanged ? first : second;
		Rgb16 paint[4];
		for (unsigned int index = 0; index < 4; ++index)
		{
			const unsigned int stored = isExchanged ? index ^ 2 : index;
			const unsigned int word2 = (stored >> 1) * 0xFFFF0000U | (stored & 1) * 0xFFFFU;
			paint[index] = isH ? decodeWith(decompressBlockTHUMB58H, a << 14 | b << 2 | distance >> 1, word2)
			                   : decodeWith(decompressBlockTHUMB59T, a << 15 | b << 3 | distance, word2);
		}
		Choice choice{0, distance, 0, first, second};
		for (unsigned int i = 0; i < 16; ++i)
		{
			const TexelRule rule = ruleOf(i, distance);
			unsigned int least = 0xFFFFFFFF;
			unsigned int bestIndex = rule.reserved;
			for (unsigned int index = 0; index < 4 && !rule.isLeftOut; ++index)
			{
				const unsigned int error = weightedError(block, paint[index], weights, 1U << i);
				if (index != rule.reserved && error < least)
				{
					least = error;
					bestIndex = index;
				}
			}
			choice.error += rule.isLeftOut ? 0 : least;
			choice.indices = choice.indices << 2 | bestIndex;
		}
		if (choice.error < best.error)
		{
			best = choice;
		}
	}
}

constexpr auto kNoRule = [](unsigned int, unsigned int)
{
	return TexelRule{false, 4};
};

/// Runs a search for given colours and gathers what it gave.
template<typename Search>
Choice runGiven(unsigned int first, unsigned int second, const Search& search)
{
	EtcColourPair colours;
	unpack(first, colours[0]);
	unpack(second, colours[1]);
	Choice choice;
	choice.error = search(colours, choice.distance, choice.indices);
	choice.first = pack(colours[0]);
	choice.second = pack(colours[1]);
	return choice;
}

/// Colours that fit the block to some degree, so that neither order nor distance is settled from the start.
unsigned int colourNear(std::mt19937& random, const Rgb16& block)
{
	const std::size_t texel = below(random, 16) * 3;
	return static_cast<unsigned int>(block[texel] >> 4 << 8 | block[texel + 1] >> 4 << 4 | block[texel + 2] >> 4);
}

TEST(EtcThSearch, ColoursGetTheBestDistanceAndIndices)
{
	std::mt19937 random(41);
	for (unsigned int turn = 0; turn < 300; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		const unsigned char* const source = block.data();
		const unsigned int first = colourNear(random, block);
		const unsigned int second = turn % 10 == 0 ? first : colourNear(random, block);
		for (const bool isPerceptual : {false, true})
		{
			const auto& weights = isPerceptual ? kPerceptualWeights : kPlainWeights;
			Choice expected;
			tryEverything(block, first, second, false, weights, kNoRule, expected);
			auto* const noSwap = isPerceptual ? calculateError59TnoSwapPerceptual1000 : calculateError59TnoSwap;
			ASSERT_EQ(expected, runGiven(first, second,
			                             [&](EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
			                             { return noSwap(source, 4, 0, 0, colours, distance, indices); }));

			tryEverything(block, second, first, false, weights, kNoRule, expected);
			auto* const bothOrders = isPerceptual ? calculateError59Tperceptual1000 : calculateError59T;
			ASSERT_EQ(expected, runGiven(first, second,
			                             [&](EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
			                             { return bothOrders(source, 4, 0, 0, colours, distance, indices); }));

			if (first < second)
			{
				Choice expectedH;
				tryEverything(block, first, second, true, weights, kNoRule, expectedH);
				auto* const h = isPerceptual ? calculateErrorAndCompress58Hperceptual1000 : calculateErrorAndCompress58H;
				ASSERT_EQ(expectedH, runGiven(first, second,
				                              [&](EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
				                              { return h(source, 4, 0, 0, colours, distance, indices); }));
			}
		}
	}
}

TEST(EtcThSearch, AlphaLeavesTexelsOut)
{
	std::mt19937 random(42);
	for (unsigned int turn = 0; turn < 200; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		unsigned char alpha[16];
		for (unsigned char& value : alpha)
		{
			value = below(random, 3) == 0 ? 0 : 255;
		}
		unsigned int first = colourNear(random, block);
		unsigned int second = (first + 1 + colourNear(random, block) % 4095) % 4096;

		Choice expected;
		const auto transparent = [&alpha](unsigned int i, unsigned int)
		{
			return TexelRule{alpha[i] == 0, 2};
		};
		tryEverything(block, first, second, false, kPlainWeights, transparent, expected);
		tryEverything(block, second, first, false, kPlainWeights, transparent, expected);
		EXPECT_EQ(expected, runGiven(first, second,
		                             [&](EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
		                             { return calculateError59TAlpha(block.data(), alpha, 4, 0, 0, colours, distance, indices); }));

		// H has it the other way round; colours are sorted, so the flag of their order is 0.
		if (first > second)
		{
			std::swap(first, second);
		}
		const auto opaque = [&alpha](unsigned int i, unsigned int distance)
		{
			return TexelRule{alpha[i] != 0, distance % 2 == 0 ? 2U : 0U};
		};
		Choice expectedH;
		tryEverything(block, first, second, true, kPlainWeights, opaque, expectedH);
		EXPECT_EQ(expectedH,
		          runGiven(first, second,
		                   [&](EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
		                   { return calculateErrorAndCompress58HAlpha(block.data(), alpha, 4, 0, 0, colours, distance, indices); }));
	}
}

TEST(EtcThSearch, AlphaBlocksDecodeWithTheTexelsToldTransparent)
{
	std::mt19937 random(43);
	for (unsigned int turn = 0; turn < 200; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		unsigned char alpha[16];
		unsigned int zeros = 0;
		for (unsigned int i = 0; i < 16; ++i)
		{
			alpha[i] = below(random, 2) == 0 ? 0 : 255;
			zeros |= static_cast<unsigned int>(alpha[i] == 0) << i;
		}
		Rgb16 decoded;
		unsigned char decodedAlpha[16];
		unsigned int words[2];
		double error = compressBlockTHUMB59TAlpha(block.data(), alpha, 4, 0, 0, words[0], words[1]);
		decompressBlockTHUMB59TAlpha(words[0], words[1], decoded.data(), decodedAlpha, 4, 0, 0);
		EXPECT_EQ(error, weightedError(block, decoded, kPlainWeights, ~zeros));
		EXPECT_EQ(0, std::memcmp(alpha, decodedAlpha, 16));

		error = compressBlockTHUMB58HAlpha(block.data(), alpha, 4, 0, 0, words[0], words[1]);
		decompressBlockTHUMB58HAlpha(words[0], words[1], decoded.data(), decodedAlpha, 4, 0, 0);
		EXPECT_EQ(error, weightedError(block, decoded, kPlainWeights, zeros));
		for (unsigned int i = 0; i < 16; ++i)
		{
			EXPECT_EQ(decodedAlpha[i], 255 - alpha[i]);
		}
	}
}

TEST(EtcThSearch, BlocksDecodeToTheErrorReturned)
{
	using Search = unsigned int (*)(const unsigned char*, unsigned int, unsigned int, unsigned int, unsigned int&, unsigned int&);
	using SearchDouble = double (*)(const unsigned char*, unsigned int, unsigned int, unsigned int, unsigned int&, unsigned int&);
	// A texel to the left of and above the block, to see that position and width are heeded.
	constexpr unsigned int kWidth = 5;
	std::mt19937 random(44);
	for (unsigned int turn = 0; turn < 300; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		std::vector<unsigned char> image(kWidth * 5 * 3, 99);
		for (std::size_t i = 0; i < 48; ++i)
		{
			image[((i / 12 + 1) * kWidth + 1) * 3 + i % 12] = block[i];
		}
		unsigned int words[2];
		const auto expectError = [&](double error, bool isH, bool isPerceptual)
		{
			const Rgb16 decoded = decodeWith(isH ? decompressBlockTHUMB58H : decompressBlockTHUMB59T, words[0], words[1]);
			EXPECT_EQ(error, weightedError(block, decoded, isPerceptual ? kPerceptualWeights : kPlainWeights)) << "turn " << turn;
		};
		for (const bool isH : {false, true})
		{
			const SearchDouble fastest = isH ? compressBlockTHUMB58HFastest : compressBlockTHUMB59TFastest;
			const SearchDouble fast = isH ? compressBlockTHUMB58HFast : compressBlockTHUMB59TFast;
			const Search perceptual = isH ? compressBlockTHUMB58HFastestPerceptual1000 : compressBlockTHUMB59TFastestPerceptual1000;
			const unsigned int perceptualError = perceptual(image.data(), kWidth, 1, 1, words[0], words[1]);
			const unsigned int perceptualColours = words[0] >> 3;
			expectError(perceptualError, isH, true);
			const double fastError = fast(image.data(), kWidth, 1, 1, words[0], words[1]);
			expectError(fastError, isH, false);
			const double fastestError = fastest(image.data(), kWidth, 1, 1, words[0], words[1]);
			expectError(fastestError, isH, false);
			if (!isH)
			{
				EXPECT_LE(fastError, fastestError); // whose clustering is one of the three
				unsigned int colour0 = 0;
				unsigned int colour1 = 0;
				EXPECT_EQ(compressBlockTHUMB59TFastestOnlyColor(image.data(), kWidth, 1, 1, colour0, colour1), fastestError);
				EXPECT_EQ(colour0 << 12 | colour1, words[0] >> 3);
				EXPECT_EQ(compressBlockTHUMB59TFastestOnlyColorPerceptual1000(image.data(), kWidth, 1, 1, colour0, colour1),
				          perceptualError);
				EXPECT_EQ(colour0 << 12 | colour1, perceptualColours);
			}
		}
	}
}

TEST(EtcThSearch, WiderSearchesTakeTheirBestClustering)
{
	std::mt19937 random(45);
	for (unsigned int turn = 0; turn < 200; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		const unsigned char* const source = block.data();
		const auto leastOver = [source](auto clusterings, bool isH)
		{
			unsigned int least = kBlockErrorCeiling;
			for (auto* clustering : clusterings)
			{
				EtcColourPair colours;
				unsigned int distance = 0;
				unsigned int indices = 0;
				clustering(source, 4, 0, 0, colours);
				compressColor(4, 4, 4, colours, colours);
				if (isH)
				{
					sortColorsRGB444(colours);
				}
				auto* const search = isH ? calculateErrorAndCompress58H : calculateError59TnoSwap;
				unsigned int error = search(source, 4, 0, 0, colours, distance, indices);
				swapColors(colours);
				error = std::min(error, isH ? error : search(source, 4, 0, 0, colours, distance, indices));
				least = std::min(least, error);
			}
			return least;
		};
		unsigned int words[2];
		EXPECT_EQ(compressBlockTHUMB59TFast(source, 4, 0, 0, words[0], words[1]),
		          leastOver(std::array{computeColorLBGNotIntensityFast, computeColorLBGHalfIntensityFast, computeColorLBGfast}, false));
		EXPECT_EQ(compressBlockTHUMB58HFast(source, 4, 0, 0, words[0], words[1]),
		          leastOver(std::array{computeColorLBGNotIntensity, computeColorLBG}, true));
	}
}

TEST(EtcTwoColours, SortingPullsEqualColoursApart)
{
	constexpr unsigned int kCases[][4] = {{0x123, 0x124, 0x123, 0x124}, {0x124, 0x123, 0x123, 0x124},
	                                      {0x555, 0x555, 0x554, 0x555}, {0, 0, 0, 1},
	                                      {0x100, 0x100, 0x0FF, 0x100}, {0xFFF, 0xFFF, 0xFFE, 0xFFF}};
	for (const auto& [first, second, low, high] : kCases)
	{
		EtcColourPair colours;
		unpack(first, colours[0]);
		unpack(second, colours[1]);
		sortColorsRGB444(colours);
		EXPECT_EQ(pack(colours[0]), low);
		EXPECT_EQ(pack(colours[1]), high);
	}
}

TEST(EtcTwoColours, IndexWordTurnsRowsIntoColumns)
{
	// The first texel stands in the top bits and becomes number 0, texel 1 (x = 1, y = 0) number 4, texel 4 (0, 1) number 1.
	EXPECT_EQ(indexConversion(3U << 30), 0x00010001U);
	EXPECT_EQ(indexConversion(2U << 28), 0x00100000U);
	EXPECT_EQ(indexConversion(1U << 22), 0x00000002U);
	EXPECT_EQ(indexConversion(1U), 0x00008000U);
}

TEST(EtcTwoColours, AForeignPatternSetsTheFourthColourAlone)
{
	const EtcColourPair colours = {{10, 20, 30}, {100, 110, 2}};
	EtcPaintColours paint = {};
	testing::internal::CaptureStdout();
	calculatePaintColors59T(1, kEtcPatternH, colours, paint);
	calculatePaintColors58H(1, kEtcPatternT, colours, paint);
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "Invalid pattern. TerminatingInvalid pattern. Terminating");
	const EtcPaintColours expected = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}, {94, 104, 0}};
	EXPECT_EQ(0, std::memcmp(paint, expected, sizeof(paint)));
}

TEST(EtcThSearch, PartialAlphaIsReported)
{
	const Rgb16 block = {};
	unsigned char alpha[16] = {0, 255, 128};
	unsigned int words[2];
	testing::internal::CaptureStdout();
	compressBlockTHUMB58HAlpha(block.data(), alpha, 4, 0, 0, words[0], words[1]);
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "INVALID ALPHA DATA!!");
}
} // namespace
