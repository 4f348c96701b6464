// The encoder: blocks worked out by hand for each of its rules, and whole images.

#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "DXTCodec.h"

using namespace zortexture;

namespace
{
using Texel = Pixel<unsigned char>;
using Bytes = std::vector<unsigned char>;

/// The texels of a palette by their letters, 'a' being the first. Upper-case letters are the same colours with alpha 127.
std::vector<Texel> texelsOf(const std::string& letters, const std::vector<Texel>& palette)
{
	std::vector<Texel> texels;
	for (const char letter : letters)
	{
		Texel texel = palette.at(static_cast<std::size_t>((letter | 32) - 'a'));
		texel.a = letter < 'a' ? 127 : texel.a;
		texels.push_back(texel);
	}
	return texels;
}

std::vector<Texel> randomTexels(std::size_t count, unsigned int seed)
{
	std::mt19937 random(seed);
	std::vector<Texel> texels(count);
	for (Texel& texel : texels)
	{
		const auto bits = static_cast<unsigned int>(random());
		texel = {static_cast<unsigned char>(bits), static_cast<unsigned char>(bits >> 8), static_cast<unsigned char>(bits >> 16),
		         static_cast<unsigned char>(bits >> 24)};
	}
	return texels;
}

Bytes compress(const std::vector<Texel>& texels, unsigned int width, unsigned int height, unsigned int number)
{
	const unsigned int area = (width + 3) / 4 * ((height + 3) / 4) * 16;
	Bytes blocks(number == 1 ? area / 2 : area);
	EXPECT_EQ(DXTCompress(texels.data(), blocks.data(), width, height, number), blocks.size());
	return blocks;
}

constexpr Texel kBlack = {0, 0, 0, 255};
constexpr Texel kWhite = {255, 255, 255, 255};
constexpr Texel kRed = {255, 0, 0, 255};

TEST(DXTCompress, ColourBlocks)
{
	// 5:6:5 numbers: red F800, (8, 4, 8) 0821, (22, 22, 22) 10A2, (142, 142, 142) 8C71, (100, 100, 100) 632C.
	const std::vector<Texel> dim = {{8, 4, 8, 255}, {15, 7, 15, 128}};
	const std::vector<Texel> greys = {{22, 22, 22, 255}, {62, 62, 62, 255}, {102, 102, 102, 255}, {142, 142, 142, 255}};
	const std::vector<Texel> halves = {{22, 22, 22, 255}, {82, 82, 82, 255}, {142, 142, 142, 255}};
	// The mean, and two colours that differ from it at right angles to the first guess of the axis.
	const std::vector<Texel> crosswise = {{116, 84, 100, 255}, {84, 116, 100, 255}, {100, 100, 100, 255}};
	struct
	{
		const char* what;
		unsigned int number;
		std::vector<Texel> texels;
		Bytes expected;
	} const cases[] = {
	    {"one colour", 1, texelsOf("aaaaaaaaaaaaaaaa", {kRed}), {0x00, 0xF8, 0, 0, 0, 0, 0, 0}},
	    {"one colour after its low bits are cut", 1, texelsOf("abababababababab", dim), {0x21, 0x08, 0, 0, 0, 0, 0, 0}},
	    {"one colour, cut out", 1, texelsOf("aaaaaAaaaaaaaaaa", dim), {0, 0, 0x21, 0x08, 0x55, 0x5D, 0x55, 0x55}},
	    {"two colours", 1, texelsOf("aaaabbbbabababbb", {kBlack, kWhite}), {0xFF, 0xFF, 0, 0, 0x55, 0x00, 0x11, 0x01}},
	    {"two colours, cut out", 1, texelsOf("aaaabbbbaBabABbb", {kBlack, kWhite}), {0, 0, 0xFF, 0xFF, 0x00, 0x55, 0x4C, 0x5F}},
	    {"four on a line", 1, texelsOf("aaaabbbbccccdddd", greys), {0x71, 0x8C, 0xA2, 0x10, 0x55, 0xFF, 0xAA, 0x00}},
	    {"three on a line, cut out", 1, texelsOf("aaaabbbbccccccAB", halves), {0xA2, 0x10, 0x71, 0x8C, 0x00, 0xAA, 0x55, 0xF5}},
	    {"no axis", 1, texelsOf("aaaabbbbcccccccC", crosswise), {0x2C, 0x63, 0x2C, 0x63, 0, 0, 0, 0}},
	};
	for (const auto& test : cases)
	{
		EXPECT_EQ(compress(test.texels, 4, 4, test.number), test.expected) << test.what;
	}
	// No other number cuts out.
	for (const unsigned int number : {2, 3, 4, 5})
	{
		const Bytes blocks = compress(texelsOf("aAaAbBbBabABabAB", {kBlack, kWhite}), 4, 4, number);
		EXPECT_EQ(Bytes(blocks.begin() + 8, blocks.end()), (Bytes{0xFF, 0xFF, 0, 0, 0x55, 0x00, 0x11, 0x11})) << number;
	}
}

// Blocks of noise, of low contrast and of the extremes alone, whose clamped end points leave texels beyond them. The checksums are of
// what a separate program, in another language, makes of them operation by operation.
TEST(DXTCompress, FitsToTheBit)
{
	constexpr unsigned int kBlocks = 600;
	std::vector<unsigned char> channels;
	unsigned int noise = 1;
	for (unsigned int i = 0; i < kBlocks * 64; ++i)
	{
		noise = noise * 1664525 + 1013904223;
		const unsigned int byte = noise >> 24;
		const unsigned int values[] = {byte, 112 + byte % 32, byte >= 128 ? 255U : 0U};
		channels.push_back(static_cast<unsigned char>(values[i / 64 % 3]));
	}
	for (const auto& [number, expected] : {std::pair(1U, 0xB0AC0B57U), std::pair(5U, 0xEFA2C659U)})
	{
		Bytes blocks(kBlocks * (number == 1 ? 8 : 16));
		DXTCompress(channels.data(), blocks.data(), 4, kBlocks * 4, number);
		unsigned int checksum = 2166136261; // 32-bit FNV-1a
		for (const unsigned char byte : blocks)
		{
			checksum = (checksum ^ byte) * 16777619;
		}
		EXPECT_EQ(checksum, expected) << number;
	}
}

TEST(DXTCompress, AlphaBlocks)
{
	struct
	{
		unsigned int number;
		Bytes alphas;
		Bytes expected;
	} const cases[] = {
	    // The top four bits, the first texel lowest.
	    {2,
	     {0x0F, 0x10, 0x2F, 0x3F, 0x40, 0x5F, 0x6F, 0x7F, 0x80, 0x9F, 0xAF, 0xBF, 0xC0, 0xDF, 0xEF, 0xFF},
	     {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}},
	    {5, Bytes(16, 200), {200, 200, 0, 0, 0, 0, 0, 0}},
	    // All steps twice: indices 1 7 6 5 4 3 2 0 from the smallest up.
	    {5, {9, 19, 29, 39, 49, 59, 69, 79, 9, 19, 29, 39, 49, 59, 69, 79}, {79, 9, 0xB9, 0xCB, 0x09, 0xB9, 0xCB, 0x09}},
	    // Halfway between two steps the upper one: of a range of 14 the odd alphas.
	    {4, {0, 1, 3, 5, 7, 9, 11, 13, 14, 12, 10, 8, 6, 4, 2, 0}, {14, 0, 0xB9, 0xCB, 0x09, 0xD0, 0x58, 0x3F}},
	};
	for (const auto& test : cases)
	{
		std::vector<Texel> texels(16, kRed);
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			texels[texel].a = test.alphas[texel];
		}
		const Bytes blocks = compress(texels, 4, 4, test.number);
		EXPECT_EQ(Bytes(blocks.begin(), blocks.begin() + 8), test.expected) << test.number;
		EXPECT_EQ(compress(texels, 4, 4, test.number ^ 1), blocks); // its twin

		// The same texels in rows of 7.
		std::vector<Texel> wide(7 * 4);
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			wide[texel / 4 * 7 + texel % 4] = texels[texel];
		}
		Bytes strided(8);
		(test.number == 2 ? storeAlpha : storeInterpolatedAlpha)(wide.data(), strided.data(), 7);
		EXPECT_EQ(strided, test.expected);
	}
}

TEST(DXTCompress, PartialBlocksTakeTheLastTexelsShifted)
{
	// Which column (or row) stands at the positions from the side on, by the side modulo 4.
	const int shifts[] = {0, 3, 2, 1};
	for (const unsigned int width : {1U, 2U, 3U, 4U, 5U, 6U, 7U, 11U})
	{
		for (const unsigned int height : {1U, 2U, 3U, 5U, 8U})
		{
			const std::vector<Texel> texels = randomTexels(std::size_t{width} * height, width * 16 + height);
			const unsigned int paddedWidth = (width + 3) / 4 * 4;
			const unsigned int paddedHeight = (height + 3) / 4 * 4;
			const auto source = [&](unsigned int position, unsigned int side)
			{
				const int shifted = static_cast<int>(position) - shifts[side % 4];
				return position < side ? position : static_cast<unsigned int>(std::max(shifted, 0));
			};
			std::vector<Texel> padded;
			for (unsigned int y = 0; y < paddedHeight; ++y)
			{
				for (unsigned int x = 0; x < paddedWidth; ++x)
				{
					padded.push_back(texels[std::size_t{source(y, height)} * width + source(x, width)]);
				}
			}
			for (const unsigned int number : {1U, 3U, 5U})
			{
				EXPECT_EQ(compress(texels, width, height, number), compress(padded, paddedWidth, paddedHeight, number))
				    << width << " x " << height;
			}
		}
	}
}

TEST(DXTCompress, SizesAndRefusals)
{
	const std::vector<Texel> texels(25, kRed);
	Bytes blocks(64, 77);
	EXPECT_EQ(DXTCompress(nullptr, blocks.data(), 5, 5, 1), 12U);
	EXPECT_EQ(DXTCompress(texels.data(), nullptr, 5, 5, 5), 25U);
	EXPECT_EQ(DXTCompress(nullptr, nullptr, 0x10000, 0x10001, 2), 0x10000U); // wraps
	EXPECT_EQ(DXTCompress(texels.data(), blocks.data(), 0, 5, 3), 0U);
	for (const unsigned int number : {0U, 6U, ~0U})
	{
		EXPECT_EQ(DXTCompress(texels.data(), blocks.data(), 5, 5, number), 0U);
		EXPECT_EQ(DXTDecompress(blocks.data(), nullptr, 5, 5, number), 0U);
	}
	EXPECT_EQ(blocks, Bytes(64, 77));
	EXPECT_EQ(DXTCompress(texels.data(), blocks.data(), 5, 5, 1), 32U);
	EXPECT_EQ(DXTCompress(texels.data(), blocks.data(), 5, 5, 5), 64U);
}

TEST(DXTCompress, CountingColours)
{
	unsigned char bytes[16] = {};
	unsigned short colours[3] = {};
	bytes[5] = 7; // below the five bits of red and blue, not below the six of green
	EXPECT_EQ(countColours(bytes, bytes, bytes, colours), 2U);
	bytes[9] = 255;
	bytes[10] = 80;
	EXPECT_EQ(countColours(bytes, bytes, bytes, colours), 3U);
	EXPECT_EQ(std::vector<unsigned short>(colours, colours + 3), (std::vector<unsigned short>{0, 1 << 5, 0xFFFF}));
	EXPECT_TRUE(canHavePunchThrough(bytes));
	EXPECT_FALSE(canHavePunchThrough(Bytes(16, 128).data()));
}
} // namespace
