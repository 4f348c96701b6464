#include <gtest/gtest.h>

#include "Codecs/ETC/EtcBlock.h"
#include "EtcTestSupport.h"

namespace zortexture
{
namespace
{
using Convert = void (*)(unsigned int, unsigned int, unsigned int&, unsigned int&);

/// The mode by the sums of bases and deltas, as the published layout signals it.
char modeBySums(unsigned int word1)
{
	const char names[3] = {'T', 'H', 'P'};
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const unsigned int byte = (word1 >> (24 - 8 * channel)) & 0xFF;
		const int delta = static_cast<int>(byte & 7) - ((byte & 4) != 0 ? 8 : 0);
		const int sum = static_cast<int>(byte >> 3) + delta;
		if (sum < 0 || sum > 31)
		{
			return names[channel];
		}
	}
	return 'D';
}

struct FormCase
{
	const char* name;
	char mode;
	Convert stuff;
	Convert unstuff;
	unsigned int mask1; ///< the bits that the packed form uses
	unsigned int mask2;
	unsigned int deciding; ///< the packed bits that decide the wasted ones
	unsigned int diffBit;
};

const FormCase kForms[] = {
    {"T", 'T', stuff59bits, unstuff59bits, 0x07FFFFFF, 0xFFFFFFFF, 0x07800000, 2},
    {"T with transparency", 'T', stuff59bitsDiffFalse, unstuff59bits, 0x07FFFFFF, 0xFFFFFFFF, 0x07800000, 0},
    {"H", 'H', stuff58bits, unstuff58bits, 0x03FFFFFF, 0xFFFFFFFF, 0x03F78000, 2},
    {"H with transparency", 'H', stuff58bitsDiffFalse, unstuff58bits, 0x03FFFFFF, 0xFFFFFFFF, 0x03F78000, 0},
    {"planar", 'P', stuff57bits, unstuff57bits, 0xFFFFFFFF, 0xFFFFFF80, 0xFFFBE000, 2},
};

TEST(EtcWords, StuffedBlocksSignalTheirModeAndUnstuffToThemselves)
{
	std::mt19937 random(1);
	for (const FormCase& form : kForms)
	{
		SCOPED_TRACE(form.name);
		// Every pattern of the deciding bits (walked as the subsets of a mask), the other bits at random.
		unsigned int pattern = 0;
		do
		{
			const unsigned int packed1 = pattern | (static_cast<unsigned int>(random()) & form.mask1 & ~form.deciding);
			const unsigned int packed2 = static_cast<unsigned int>(random()) & form.mask2;
			unsigned int word1 = 0;
			unsigned int word2 = 0;
			unsigned int back1 = 0;
			unsigned int back2 = 0;
			form.stuff(packed1, packed2, word1, word2);
			form.unstuff(word1, word2, back1, back2);
			ASSERT_EQ(modeBySums(word1), form.mode) << std::hex << packed1;
			ASSERT_EQ(word1 & 2, form.diffBit);
			ASSERT_EQ(back1, packed1);
			ASSERT_EQ(back2, packed2);
			pattern = (pattern - form.deciding) & form.deciding;
		} while (pattern != 0);
	}
}

TEST(EtcWords, TheSelectorDecodesStuffedBlocksAsTheirPackedForms)
{
	std::mt19937 random(2);
	for (int round = 0; round < 2000; ++round)
	{
		const auto packed1 = static_cast<unsigned int>(random());
		const auto packed2 = static_cast<unsigned int>(random());
		unsigned char direct[48];
		unsigned char selected[48];
		unsigned int word1 = 0;
		unsigned int word2 = 0;
		switch (round % 3)
		{
		case 0:
			stuff59bits(packed1 & 0x07FFFFFF, packed2, word1, word2);
			decompressBlockTHUMB59T(packed1 & 0x07FFFFFF, packed2, direct, 4, 0, 0);
			break;
		case 1:
			stuff58bits(packed1 & 0x03FFFFFF, packed2, word1, word2);
			decompressBlockTHUMB58H(packed1 & 0x03FFFFFF, packed2, direct, 4, 0, 0);
			break;
		default:
			stuff57bits(packed1, packed2, word1, word2);
			decompressBlockPlanar57(packed1, packed2, direct, 4, 0, 0);
			break;
		}
		decompressBlockETC2(word1, word2, selected, 4, 0, 0);
		ASSERT_TRUE(std::equal(direct, direct + 48, selected)) << round;
	}
}

TEST(EtcWords, RedDecidesBeforeGreenAndGreenBeforeBlue)
{
	const struct
	{
		unsigned int word1;
		char mode;
	} cases[] = {
	    {0xFAFAFA7A, 'T'}, // red 31 + 2, green and blue overflow too
	    {0x0480007A, 'T'}, // red 0 - 4
	    {0x807BFFFF, 'D'}, // blue 31 - 1 with a green of 15 + 3
	    {0x80FEFF02, 'D'}, // no channel leaves its range
	    {0x80FC0402, 'P'}, // blue 0 - 4
	    {0x80F90102, 'H'}, // green 31 + 1
	};
	for (const auto& testCase : cases)
	{
		SCOPED_TRACE(testCase.word1);
		unsigned char selected[48];
		unsigned char expected[48];
		unsigned int packed1 = 0;
		unsigned int packed2 = 0;
		const unsigned int word1 = testCase.word1 | 2;
		const unsigned int word2 = 0x1B2D93C6;
		switch (testCase.mode)
		{
		case 'T':
			unstuff59bits(word1, word2, packed1, packed2);
			decompressBlockTHUMB59T(packed1, packed2, expected, 4, 0, 0);
			break;
		case 'H':
			unstuff58bits(word1, word2, packed1, packed2);
			decompressBlockTHUMB58H(packed1, packed2, expected, 4, 0, 0);
			break;
		case 'P':
			unstuff57bits(word1, word2, packed1, packed2);
			decompressBlockPlanar57(packed1, packed2, expected, 4, 0, 0);
			break;
		default:
			decompressBlockDiffFlip(word1, word2, expected, 4, 0, 0);
			break;
		}
		decompressBlockETC2(word1, word2, selected, 4, 0, 0);
		EXPECT_TRUE(std::equal(selected, selected + 48, expected));
	}
}
} // namespace
} // namespace zortexture
