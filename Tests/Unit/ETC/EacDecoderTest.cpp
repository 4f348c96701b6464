#include <cstdint>
#include <gtest/gtest.h>

#include "ETCCodec.h"

namespace zortexture
{
namespace
{
// The first column has the indices 0, 3, 4, 7 from the top, all other texels index 0. All blocks use table 0: -3, -6, -9, -15 and
// 2, 5, 8, 14.
struct Known16
{
	unsigned char base;
	unsigned char multiplierAndTable;
	bool isSigned;
	int column[4];
};

TEST(EacDecoder, DecodesSixteenBitsAsWorkedOutByHand)
{
	const Known16 cases[] = {
	    {100, 0x20, false, {24203, 18056, 26765, 32912}},     // 804 + modifier * 16: 756, 564, 836, 1028
	    {100, 0x00, false, {25644, 25260, 25804, 26188}},     // 804 + modifier: 801, 789, 806, 818
	    {0, 0xF0, false, {0, 0, 7811, 53914}},                // 4 + modifier * 120: clamped, clamped, 244, 1684 with its high bits repeated
	    {255, 0xF0, false, {53914, 7811, 65535, 65535}},      // 2044 + modifier * 120: 1684, 244, clamped, clamped
	    {0x00, 0x10, true, {-768, -3843, 512, 3587}},         // modifier * 8: -24, -120, 16, 112
	    {0x81, 0x00, true, {-32639, -32767, -32479, -32095}}, // -1016 + modifier: -1019, -1023 (clamped), -1014, -1002
	    {0x80, 0x00, true, {-32639, -32767, -32479, -32095}}, // the most negative base counts as the one above
	    {0x7F, 0x00, true, {32447, 32063, 32607, 32767}},     // 1016 + modifier: 1013, 1001, 1018, 1023 (clamped)
	};
	for (const Known16& known : cases)
	{
		const unsigned char block[8] = {known.base, known.multiplierAndTable, 0x0E, 0x70, 0, 0, 0, 0};
		std::uint16_t values[16];
		ASSERT_EQ(ETCDecompress(block, values, 4, 4, ePF_EAC_R11, known.isSigned), 32U);
		for (unsigned int y = 0; y < 4; ++y)
		{
			const int value = known.isSigned ? static_cast<std::int16_t>(values[y * 4]) : values[y * 4];
			EXPECT_EQ(value, known.column[y]) << "base " << int(known.base) << " row " << y;
			EXPECT_EQ(values[y * 4 + 1], values[0]);
		}
	}
}

TEST(EacDecoder, DecodesAlphaOfEtc2AndBothChannelsOfRg11)
{
	const unsigned char rgba[16] = {100, 0x20, 0x0E, 0x70, 0, 0, 0, 0, 0xA5, 0x3C, 0xF0, 0x28, 0, 0, 0, 0};
	unsigned char pixels[64];
	ASSERT_EQ(ETCDecompress(rgba, pixels, 4, 4, ePF_ETC2_RGBA, false), 64U);
	const int alphas[4] = {94, 70, 104, 128};
	for (unsigned int y = 0; y < 4; ++y)
	{
		EXPECT_EQ(pixels[y * 16 + 3], alphas[y]);
		EXPECT_EQ(pixels[y * 16], 175);
		EXPECT_EQ(pixels[y * 16 + 7], 94);
	}

	const unsigned char rg[16] = {100, 0x20, 0x0E, 0x70, 0, 0, 0, 0, 100, 0x00, 0x0E, 0x70, 0, 0, 0, 0};
	std::uint16_t values[32];
	ASSERT_EQ(ETCDecompress(rg, values, 4, 4, ePF_EAC_RG11, false), 64U);
	EXPECT_EQ(values[8], 18056);
	EXPECT_EQ(values[9], 25260);
}
} // namespace
} // namespace zortexture
