#include <algorithm>
#include <gtest/gtest.h>

#include "Codecs/ETC/EtcBlock.h"
#include "ETCCodec.h"
#include "EtcTestSupport.h"

namespace zortexture
{
namespace
{
using etctest::Bytes;

struct Texel
{
	unsigned int x, y;
	std::array<int, 4> rgba;
};

struct KnownBlock
{
	const char* name;
	unsigned int format;
	std::array<unsigned char, 8> block;
	std::vector<Texel> texels;
};

// Worked out by hand from the published layouts. The index word 000C000A gives the first column the indices 0, 1, 2, 3 from the top and
// all other texels index 0.
const KnownBlock kKnownBlocks[] = {
    {"individual",
     ePF_ETC1,
     {0xA5, 0x3C, 0xF0, 0x28, 0x08, 0x40, 0x10, 0x40},
     {{0, 0, {175, 56, 255, 255}},
      {1, 2, {153, 34, 238, 255}},
      {2, 0, {94, 213, 9, 255}},
      {3, 0, {114, 233, 29, 255}},
      {2, 3, {76, 195, 0, 255}}}},
    {"differential, flipped",
     ePF_ETC2_RGB,
     {0xA5, 0x53, 0x00, 0x1F, 0x00, 0x00, 0x00, 0x00},
     {{0, 0, {167, 84, 2, 255}}, {3, 1, {167, 84, 2, 255}}, {0, 2, {187, 154, 47, 255}}, {3, 3, {187, 154, 47, 255}}}},
    {"T",
     ePF_ETC2_RGB,
     {0x05, 0x23, 0xF8, 0x07, 0x00, 0x0C, 0x00, 0x0A},
     {{0, 0, {17, 34, 51, 255}}, {0, 1, {255, 152, 16, 255}}, {0, 2, {255, 136, 0, 255}}, {0, 3, {239, 120, 0, 255}}}},
    {"H, distance index even by the order of the colours",
     ePF_ETC2_RGB,
     {0x89, 0x05, 0xA2, 0xB6, 0x00, 0x0C, 0x00, 0x0A},
     {{0, 0, {40, 57, 74, 255}}, {0, 1, {0, 11, 28, 255}}, {0, 2, {91, 108, 125, 255}}, {0, 3, {45, 62, 79, 255}}}},
    {"planar",
     ePF_ETC2_RGB,
     {0x80, 0x80, 0x04, 0x7F, 0xFE, 0x00, 0x00, 0x3F},
     {{0, 0, {0, 0, 0, 255}}, {1, 0, {64, 64, 0, 255}}, {3, 0, {191, 191, 0, 255}}, {2, 3, {128, 128, 191, 255}}}},
    {"one-bit alpha, differential with transparency",
     ePF_ETC2_RGB_A1,
     {0xA5, 0x53, 0x00, 0x1D, 0x00, 0x0C, 0x00, 0x0A},
     {{0, 0, {165, 82, 0, 255}}, {0, 1, {173, 90, 8, 255}}, {0, 2, {0, 0, 0, 0}}, {0, 3, {0, 0, 0, 255}}, {1, 3, {140, 107, 0, 255}}}},
    {"one-bit alpha, differential, opaque",
     ePF_ETC2_RGB_A1,
     {0xA5, 0x53, 0x00, 0x1F, 0x00, 0x0C, 0x00, 0x0A},
     {{0, 0, {167, 84, 2, 255}}, {0, 2, {93, 60, 0, 255}}, {1, 3, {187, 154, 47, 255}}}},
    {"one-bit alpha, T with transparency",
     ePF_ETC2_RGB_A1,
     {0x05, 0x23, 0xF8, 0x05, 0x00, 0x0C, 0x00, 0x0A},
     {{0, 0, {17, 34, 51, 255}}, {0, 1, {255, 152, 16, 255}}, {0, 2, {0, 0, 0, 0}}, {0, 3, {239, 120, 0, 255}}}},
    {"one-bit alpha, T, opaque", ePF_ETC2_RGB_A1, {0x05, 0x23, 0xF8, 0x07, 0x00, 0x0C, 0x00, 0x0A}, {{0, 2, {255, 136, 0, 255}}}},
    {"one-bit alpha, H with transparency",
     ePF_ETC2_RGB_A1,
     {0x89, 0x05, 0xA2, 0xB4, 0x00, 0x0C, 0x00, 0x0A},
     {{0, 1, {0, 11, 28, 255}}, {0, 2, {0, 0, 0, 0}}, {0, 3, {45, 62, 79, 255}}}},
    {"one-bit alpha, planar is opaque without the opaque bit too",
     ePF_ETC2_RGB_A1,
     {0x80, 0x80, 0x04, 0x7D, 0xFE, 0x00, 0x00, 0x3F},
     {{0, 0, {0, 0, 0, 255}}, {2, 3, {128, 128, 191, 255}}}},
};

TEST(EtcDecoder, DecodesEveryModeAsWorkedOutByHand)
{
	for (const KnownBlock& known : kKnownBlocks)
	{
		const unsigned int bytes = known.format == ePF_ETC2_RGB_A1 ? 4 : 3;
		unsigned char pixels[64];
		ASSERT_EQ(ETCDecompress(known.block.data(), pixels, 4, 4, known.format, false), 16 * bytes);
		for (const Texel& texel : known.texels)
		{
			for (unsigned int channel = 0; channel < bytes; ++channel)
			{
				EXPECT_EQ(pixels[(texel.y * 4 + texel.x) * bytes + channel], texel.rgba[channel])
				    << known.name << " at " << texel.x << "," << texel.y << " channel " << channel;
			}
		}
	}
}

TEST(EtcDecoder, TheOrderOfTheColoursOfHIsTheLowBitOfTheDistance)
{
	const struct
	{
		unsigned int packed;
		int first; ///< red of index 0
	} cases[] = {
	    {(0x123U << 14) | (0x456U << 2) | 2, 17 + 23}, // distance index 4
	    {(0x456U << 14) | (0x123U << 2) | 2, 68 + 32}, // 5
	    {(0x456U << 14) | (0x456U << 2) | 3, 68 + 64}, // equal colours count as 1: index 7
	};
	for (const auto& testCase : cases)
	{
		unsigned char decoded[48];
		decompressBlockTHUMB58H(testCase.packed, 0, decoded, 4, 0, 0);
		EXPECT_EQ(decoded[0], testCase.first);
	}
}

TEST(EtcDecoder, PlanarSumsClampAtBothEnds)
{
	unsigned char decoded[48];
	// Red falls from 255 at the origin, green rises from 0, blue stays at 255.
	const unsigned int packed1 = (63U << 26) | (63U << 13) | 127U;
	const unsigned int packed2 = (63U << 26) | (127U << 13) | (63U << 7);
	decompressBlockPlanar57(packed1, packed2, decoded, 4, 0, 0);
	EXPECT_EQ(decoded[0], 255);
	EXPECT_EQ(decoded[15 * 3], 0);
	EXPECT_EQ(decoded[15 * 3 + 1], 255);
	EXPECT_EQ(decoded[(1 * 4 + 1) * 3], 128); // 1020 - 510 + 2 over 4
	EXPECT_EQ(decoded[15 * 3 + 2], 255);

	unsigned char source[9 * 6 * 3] = {};
	unsigned int errors[3] = {9, 9, 9};
	decompressBlockPlanar57errorPerComponent(0, 0, decoded, 9, 5, 2, source, errors[0], errors[1], errors[2]);
	EXPECT_EQ(errors[0] + errors[1] + errors[2], 0U);
	source[(2 * 9 + 5) * 3] = 3;
	source[(5 * 9 + 8) * 3 + 1] = 5;
	source[(5 * 9 + 7) * 3 + 2] = 7;
	source[(5 * 9 + 4) * 3] = 99; // left of the block
	decompressBlockPlanar57errorPerComponent(0, 0, decoded, 9, 5, 2, source, errors[0], errors[1], errors[2]);
	EXPECT_EQ(errors[0], 9U);
	EXPECT_EQ(errors[1], 25U);
	EXPECT_EQ(errors[2], 49U);
}

struct FormatCase
{
	unsigned int format;
	unsigned int texelBytes;
	unsigned int blockBytes;
};

const FormatCase kFormats[] = {{ePF_ETC1, 3, 8},        {ePF_ETC2_RGB, 3, 8}, {ePF_ETC2_RGBA, 4, 16},
                               {ePF_ETC2_RGB_A1, 4, 8}, {ePF_EAC_R11, 2, 8},  {ePF_EAC_RG11, 4, 16}};

TEST(EtcDecoder, CutsWholeBlocksToEverySizeAndWritesNothingElse)
{
	std::mt19937 random(3);
	for (const FormatCase& format : kFormats)
	{
		for (unsigned int size = 0; size < 81; ++size)
		{
			const unsigned int width = size % 9 + 1;
			const unsigned int height = size / 9 + 1;
			SCOPED_TRACE(testing::Message() << "format " << format.format << ", " << width << " x " << height);
			const unsigned int blocksX = (width + 3) / 4;
			// Exactly the bytes that belong to the image, so that a sanitizer sees any step outside.
			const Bytes source = etctest::randomBytes(random, static_cast<std::size_t>(blocksX) * ((height + 3) / 4) * format.blockBytes);
			Bytes pixels(static_cast<std::size_t>(width) * height * format.texelBytes);
			const bool isSigned = (size & 1) != 0;
			ASSERT_EQ(ETCDecompress(source.data(), pixels.data(), width, height, format.format, isSigned), pixels.size());
			ASSERT_EQ(ETCDecompress(nullptr, pixels.data(), width, height, format.format, isSigned), pixels.size());
			ASSERT_EQ(ETCDecompress(source.data(), nullptr, width, height, format.format, isSigned), pixels.size());
			for (unsigned int y = 0; y < height; ++y)
			{
				for (unsigned int x = 0; x < width; ++x)
				{
					unsigned char block[64];
					ETCDecompress(source.data() + (y / 4 * blocksX + x / 4) * format.blockBytes, block, 4, 4, format.format, isSigned);
					const unsigned char* expected = block + (y % 4 * 4 + x % 4) * format.texelBytes;
					ASSERT_TRUE(std::equal(expected, expected + format.texelBytes, &pixels[(y * width + x) * format.texelBytes]));
				}
			}
		}
	}
}

TEST(EtcDecoder, RefusesFormatsOfOtherFamilies)
{
	unsigned char bytes[64] = {};
	for (const unsigned int format : {0U, 7U, 21U, 27U, 51U, 0xFFFFFFFFU})
	{
		EXPECT_EQ(ETCDecompress(bytes, bytes, 4, 4, format, false), 0U);
		EXPECT_EQ(ETCDecompress(nullptr, nullptr, 4, 4, format, false), 0U);
	}
}

/// A block of individual or differential mode whose sums stay in range, at random.
Bytes plainBlock(std::mt19937& random)
{
	for (;;)
	{
		Bytes block = etctest::randomBytes(random, 8);
		const auto inRange = [&](unsigned int channel)
		{
			const int sum = (block[channel] >> 3) + signedDelta(block[channel], 0);
			return sum >= 0 && sum <= 31;
		};
		if ((block[3] & 2) == 0 || (inRange(0) && inRange(1) && inRange(2)))
		{
			return block;
		}
	}
}

TEST(EtcRgbaDecoder, AgreesWithTheFullDecoderOnPlainBlocks)
{
	std::mt19937 random(4);
	for (unsigned int size = 0; size < 64; ++size)
	{
		const unsigned int width = size % 8 + 1;
		const unsigned int height = size / 8 + 1;
		if ((width > 4 && width % 4 != 0) || (height > 4 && height % 4 != 0))
		{
			continue; // these need room for whole blocks and are laid out otherwise
		}
		SCOPED_TRACE(testing::Message() << width << " x " << height);
		Bytes source;
		for (unsigned int block = 0; block < (width + 3) / 4 * ((height + 3) / 4); ++block)
		{
			const Bytes bytes = plainBlock(random);
			source.insert(source.end(), bytes.begin(), bytes.end());
		}
		Bytes rgba(static_cast<std::size_t>(width) * height * 4);
		Bytes rgb(static_cast<std::size_t>(width) * height * 3);
		const int consumed = ZORTDecompressETC(source.data(), width, height, rgba.data(), 0);
		EXPECT_EQ(consumed, static_cast<int>(std::max(width, 4U) * std::max(height, 4U) / 2));
		ETCDecompress(source.data(), rgb.data(), width, height, ePF_ETC1, false);
		for (std::size_t texel = 0; texel < static_cast<std::size_t>(width) * height; ++texel)
		{
			ASSERT_TRUE(std::equal(&rgb[texel * 3], &rgb[texel * 3] + 3, &rgba[texel * 4])) << texel;
			ASSERT_EQ(rgba[texel * 4 + 3], 255);
		}
		Bytes again(rgba.size());
		EXPECT_EQ(ZORTDecompressETC(source.data(), width, height, again.data(), 77), consumed);
		EXPECT_EQ(again, rgba);
	}
}

TEST(EtcRgbaDecoder, ReadsAnOverflowingBlockAsDifferential)
{
	// Red 31 + 3 = 34 expands as (34 >> 2) + 34 * 8 cut to a byte, 24; red of the left half is 255. Modifier 2 in both.
	const unsigned char block[8] = {0xFB, 0x00, 0x00, 0x02, 0, 0, 0, 0};
	unsigned char pixels[64];
	ZORTDecompressETC(block, 4, 4, pixels, 0);
	EXPECT_EQ(pixels[0], 255);
	EXPECT_EQ(pixels[3 * 4], 26);
	EXPECT_EQ(pixels[3 * 4 + 1], 2);
}

TEST(EtcRgbaDecoder, PartialBlocksKeepTheRowLengthOfTheImage)
{
	std::mt19937 random(5);
	// One side below 4, the other no whole number of blocks: still exactly width * height texels.
	for (const auto& [width, height] : {std::pair{5U, 2U}, {2U, 5U}, {9U, 3U}, {1U, 7U}, {3U, 6U}})
	{
		const Bytes source = etctest::randomBytes(random, 8 * ((width + 3) / 4) * ((height + 3) / 4));
		Bytes pixels(static_cast<std::size_t>(width) * height * 4);
		const int expected = static_cast<int>(std::max(width, 4U) * std::max(height, 4U)) / 2;
		EXPECT_EQ(ZORTDecompressETC(source.data(), width, height, pixels.data(), 0), expected);
	}

	// 5 x 4 into room for 8 x 4: the second block's columns 1 to 3 land at the start of the following rows.
	const Bytes first = plainBlock(random);
	const Bytes second = plainBlock(random);
	Bytes source(first);
	source.insert(source.end(), second.begin(), second.end());
	Bytes pixels(8 * 4 * 4);
	Bytes secondTexels(64);
	EXPECT_EQ(ZORTDecompressETC(source.data(), 5, 4, pixels.data(), 0), 10);
	ZORTDecompressETC(second.data(), 4, 4, secondTexels.data(), 0);
	for (std::size_t column = 1; column < 4; ++column)
	{
		EXPECT_TRUE(std::equal(&secondTexels[column * 4], &secondTexels[column * 4] + 4, &pixels[(5 + column - 1) * 4]));
	}
}
} // namespace
} // namespace zortexture
