// The decoder against the tables of its palettes, and DXT textures in the pipeline.

#include <array>
#include <cstring>
#include <gtest/gtest.h>

#include "Conversion/TextureTools.h"
#include "DXTCodec.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;

namespace
{
using Texel = std::array<unsigned int, 4>;

/// One texel of a block, by the words of the format: slow, and by another road than the decoder.
Texel texelOf(const unsigned char* block, unsigned int number, unsigned int texel)
{
	const unsigned char* colours = number == 1 ? block : block + 8;
	const unsigned int words[2] = {colours[0] + colours[1] * 256U, colours[2] + colours[3] * 256U};
	const unsigned int index = colours[4 + texel / 4] >> (texel % 4 * 2) & 3;
	const bool isThreeColours = (number == 1 || number > 3) && words[0] <= words[1];
	// Sixty-fourths of the first colour by index.
	const unsigned int weights[2][4] = {{64, 0, 42, 22}, {64, 0, 32, 0}};
	const unsigned int tops[3] = {11, 5, 0};
	Texel result = {0, 0, 0, number == 1 && isThreeColours && index == 3 ? 0U : 255U};
	for (unsigned int channel = 0; channel < 3 && !(isThreeColours && index == 3); ++channel)
	{
		unsigned int values[2];
		for (unsigned int end = 0; end < 2; ++end)
		{
			const unsigned int bits = channel == 1 ? 6 : 5;
			const unsigned int value = words[end] / (1U << tops[channel]) % (1U << bits);
			values[end] = value * (1U << (8 - bits)) + value / (1U << (2 * bits - 8));
		}
		const unsigned int weight = weights[isThreeColours][index];
		result[channel] = (weight * values[0] + (64 - weight) * values[1]) / 64;
	}
	if (number == 2 || number == 3)
	{
		result[3] = (block[texel / 2] >> (texel % 2 * 4) & 15) * 17;
	}
	else if (number != 1)
	{
		unsigned int alphaIndex = 0;
		for (unsigned int bit = 0; bit < 3; ++bit)
		{
			const unsigned int position = 16 + texel * 3 + bit;
			alphaIndex |= (block[position / 8] >> (position % 8) & 1U) << bit;
		}
		const unsigned int a = block[0];
		const unsigned int b = block[1];
		const unsigned int few[8] = {a, b, (4 * a + b) / 5, (3 * a + 2 * b) / 5, (2 * a + 3 * b) / 5, (a + 4 * b) / 5, 0, 255};
		const unsigned int many[8] = {
		    a, b, (6 * a + b) / 7, (5 * a + 2 * b) / 7, (4 * a + 3 * b) / 7, (3 * a + 4 * b) / 7, (2 * a + 5 * b) / 7, (a + 6 * b) / 7};
		result[3] = a <= b ? few[alphaIndex] : many[alphaIndex];
	}
	return result;
}

Bytes randomBytes(std::size_t count, unsigned int seed)
{
	std::mt19937 random(seed);
	Bytes bytes(count);
	for (unsigned char& byte : bytes)
	{
		byte = static_cast<unsigned char>(random());
	}
	return bytes;
}

TEST(DXTDecompress, BlocksByHand)
{
	struct
	{
		unsigned int number;
		Bytes block;
		Bytes firstRow;
	} const cases[] = {
	    // Red and blue, indices 0 1 2 3: 255 * 42 / 64 is 167.3, 255 * 22 / 64 is 87.7.
	    {1, {0x00, 0xF8, 0x1F, 0x00, 0xE4, 0, 0, 0}, {255, 0, 0, 255, 0, 0, 255, 255, 167, 0, 87, 255, 87, 0, 167, 255}},
	    // The same two the other way round, and twice the same: half of each, and nothing.
	    {1, {0x1F, 0x00, 0x00, 0xF8, 0xE4, 0, 0, 0}, {0, 0, 255, 255, 255, 0, 0, 255, 127, 0, 127, 255, 0, 0, 0, 0}},
	    {1, {0x00, 0xF8, 0x00, 0xF8, 0xE4, 0, 0, 0}, {255, 0, 0, 255, 255, 0, 0, 255, 255, 0, 0, 255, 0, 0, 0, 0}},
	    // Alphas 0 1 14 15 of 15, and the order of the colours of no matter.
	    {3,
	     {0x10, 0xFE, 0, 0, 0, 0, 0, 0, 0x1F, 0x00, 0x00, 0xF8, 0xE4, 0, 0, 0},
	     {0, 0, 255, 0, 255, 0, 0, 17, 87, 0, 167, 238, 167, 0, 87, 255}},
	    // Alpha indices 0 1 2 7 of 70 and 0: seven steps of ten. Black in the three-colour mode is no hole.
	    {5,
	     {70, 0, 0x88, 0x0E, 0, 0, 0, 0, 0x1F, 0x00, 0x00, 0xF8, 0xE4, 0, 0, 0},
	     {0, 0, 255, 70, 255, 0, 0, 0, 127, 0, 127, 60, 0, 0, 0, 10}},
	    // Indices 2 5 6 7 of 0 and 50: five steps of ten, then nothing and all.
	    {4, {0, 50, 0xAA, 0x0F, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, {0, 0, 0, 10, 0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 255}},
	};
	for (const auto& test : cases)
	{
		Bytes pixels(64);
		EXPECT_EQ(DXTDecompress(test.block.data(), pixels.data(), 4, 4, test.number), 64U);
		EXPECT_EQ(Bytes(pixels.begin(), pixels.begin() + 16), test.firstRow) << test.number;
	}
}

TEST(DXTDecompress, RandomBlocksAtAnySizeAndLevel)
{
	for (unsigned int round = 0; round < 15; ++round)
	{
		const unsigned int number = 1 + round % 5;
		const ForcedSimdLevel forced(static_cast<ESimdLevel>(round / 5));
		for (const unsigned int width : {1U, 3U, 4U, 5U, 8U, 64U})
		{
			for (const unsigned int height : {1U, 2U, 4U, 7U, 33U})
			{
				const unsigned int blockBytes = number == 1 ? 8 : 16;
				const unsigned int blocksX = (width + 3) / 4;
				Bytes blocks = randomBytes(std::size_t{blocksX} * ((height + 3) / 4) * blockBytes, width * height + number);
				std::copy_n(blocks.data() + blockBytes - 8, 2, blocks.data() + blockBytes - 6); // equal colours
				if (number != 1)
				{
					blocks[1] = blocks[0]; // and alphas
				}
				Bytes pixels(std::size_t{width} * height * 4 + 1, 99);
				EXPECT_EQ(DXTDecompress(nullptr, pixels.data(), width, height, number), width * height * 4);
				EXPECT_EQ(DXTDecompress(blocks.data(), pixels.data(), width, height, number), width * height * 4);
				EXPECT_EQ(pixels.back(), 99);
				for (unsigned int i = 0; i < width * height; ++i)
				{
					const unsigned int x = i % width;
					const unsigned int y = i / width;
					const unsigned char* block = blocks.data() + (y / 4 * blocksX + x / 4) * blockBytes;
					const Texel got = {pixels[i * 4], pixels[i * 4 + 1], pixels[i * 4 + 2], pixels[i * 4 + 3]};
					ASSERT_EQ(got, texelOf(block, number, y % 4 * 4 + x % 4)) << number << ": " << x << ", " << y;
				}
			}
		}
	}
}

// A level below a block is decoded at the block's size; its texels are the first of these, and the count of bytes betrays it.
TEST(DXTPipeline, DecodesLevelsOfAnySize)
{
	for (unsigned int number = 1; number <= 5; ++number)
	{
		const unsigned int format = ePF_DXT1 + number - 1;
		CZORTexture whole = randomTexture(CZORTextureHeader(format, 6, 9, 1, 1, 2, 6), number);
		CZORTexture small = randomTexture(CZORTextureHeader(format, 2, 2), number);
		Bytes pixels(64);
		DXTDecompress(small.getDataPtr(), pixels.data(), 4, 4, number);
		Bytes last(9 * 6 * 4);
		DXTDecompress(whole.getDataPtr(0, 1, 5), last.data(), 9, 6, number);

		EXPECT_TRUE(Transcode(whole, ZORStandard8PixelType, eVT_UnsignedByteNorm, eCS_lRGB));
		EXPECT_EQ(std::memcmp(whole.getDataPtr(0, 1, 5), last.data(), last.size()), 0) << number;
		EXPECT_FALSE(Transcode(small, ZORStandard8PixelType, eVT_UnsignedByteNorm, eCS_lRGB));
		EXPECT_EQ(bytesOf(small), Bytes(pixels.begin(), pixels.begin() + 16)) << number;
	}
}
} // namespace
