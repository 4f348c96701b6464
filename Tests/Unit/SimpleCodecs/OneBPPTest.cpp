#include <gtest/gtest.h>
#include <vector>

#include "SimpleCodecs.h"

using namespace zortexture;

namespace
{
TEST(OneBPP, ThresholdsTheIntegerMeanOfTheColours)
{
	struct
	{
		unsigned char r, g, b, a;
		bool white;
	} const cases[] = {
	    {127, 127, 127, 255, false}, {127, 128, 128, 255, false}, {128, 128, 128, 0, true},
	    {255, 129, 0, 0, true},      {255, 128, 0, 255, false},   {255, 255, 255, 0, true},
	};
	for (const auto& c : cases)
	{
		// The pixel under test at every position of the group, black around it.
		for (unsigned int position = 0; position < 8; ++position)
		{
			unsigned char pixels[8 * 4] = {};
			pixels[position * 4 + 0] = c.r;
			pixels[position * 4 + 1] = c.g;
			pixels[position * 4 + 2] = c.b;
			pixels[position * 4 + 3] = c.a;
			unsigned char byte = 0xAA;
			EXPECT_EQ(OneBPPCompress(pixels, &byte, 4, 2), 1u);
			EXPECT_EQ(byte, c.white ? 1u << position : 0u) << int(c.r) << " " << int(c.g) << " " << int(c.b);
		}
	}
}

TEST(OneBPP, EveryPairOfBytesSurvivesARoundTrip)
{
	for (unsigned int bits = 0; bits < 0x10000; ++bits)
	{
		const unsigned char coded[2] = {static_cast<unsigned char>(bits), static_cast<unsigned char>(bits >> 8)};
		unsigned char pixels[16 * 4];
		ASSERT_EQ(OneBPPDecompress(coded, pixels, 2, 8), 64u);
		for (unsigned int i = 0; i < 16; ++i)
		{
			const unsigned char grey = (bits >> i & 1u) != 0 ? 255 : 0;
			ASSERT_TRUE(pixels[i * 4] == grey && pixels[i * 4 + 1] == grey && pixels[i * 4 + 2] == grey && pixels[i * 4 + 3] == 255);
		}
		unsigned char again[2] = {};
		ASSERT_EQ(OneBPPCompress(pixels, again, 8, 2), 2u);
		ASSERT_TRUE(again[0] == coded[0] && again[1] == coded[1]);
	}
}

TEST(OneBPP, SizesThatAreNoWholeBytes)
{
	const std::vector<unsigned char> white(9 * 4, 255);
	unsigned char coded[3] = {7, 7, 7};
	EXPECT_EQ(OneBPPCompress(white.data(), coded, 2, 2), 0u);
	EXPECT_EQ(coded[0], 7);
	EXPECT_EQ(OneBPPCompress(white.data(), coded, 0, 5), 0u);
	EXPECT_EQ(coded[0], 7);
	EXPECT_EQ(OneBPPCompress(white.data(), coded, 3, 3), 1u); // the ninth pixel is lost
	EXPECT_EQ(coded[0], 255);
	EXPECT_EQ(coded[1], 7);

	// Decoding stops at the last pixel, not at the last bit.
	const std::vector<unsigned char> bytes = {0xFF, 0x01};
	std::vector<unsigned char> pixels(9 * 4);
	EXPECT_EQ(OneBPPDecompress(bytes.data(), pixels.data(), 9, 1), 36u);
	EXPECT_EQ(pixels, white);
}

TEST(OneBPP, NullPointersAskForTheSize)
{
	unsigned char buffer[4] = {1, 2, 3, 4};
	EXPECT_EQ(OneBPPCompress(nullptr, buffer, 24, 3), 9u);
	EXPECT_EQ(OneBPPCompress(buffer, nullptr, 3, 3), 1u);
	EXPECT_EQ(OneBPPDecompress(nullptr, buffer, 5, 3), 60u);
	EXPECT_EQ(OneBPPDecompress(buffer, nullptr, 5, 0), 0u);
	EXPECT_EQ(buffer[0], 1);
}
} // namespace
