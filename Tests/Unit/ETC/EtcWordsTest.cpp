#include <algorithm>
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

TEST(EtcWords, TheFirstSumOutOfRangeSelectsTheMode)
{
	std::mt19937 random(2);
	for (int round = 0; round < 4000; ++round)
	{
		const unsigned int word1 = static_cast<unsigned int>(random()) | 2;
		const auto word2 = static_cast<unsigned int>(random());
		unsigned int packed1 = 0;
		unsigned int packed2 = 0;
		unsigned char expected[48];
		unsigned char selected[48];
		switch (modeBySums(word1))
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
		ASSERT_TRUE(std::equal(selected, selected + 48, expected)) << std::hex << word1;
	}
}
} // namespace
} // namespace zortexture
