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

struct KnownBlock
{
	const char* name;
	unsigned int format;
	unsigned int words[2];
	unsigned int expected[5]; ///< the first column from the top, then the bottom right texel, as R << 24 | G << 16 | B << 8 | A
};

// Worked out by hand from the published layouts. The index word 000C000A gives the first column the indices 0, 1, 2, 3 and all other
// texels index 0.
const KnownBlock kKnownBlocks[] = {
    {"individual", ePF_ETC1, {0xA53CF028, 0xC000A}, {0xAF38FFFF, 0xBB44FFFF, 0xA52EFAFF, 0x9922EEFF, 0x5ED509FF}},
    {"flipped differential", ePF_ETC2_RGB, {0xA553001F, 0xC000A}, {0xA75402FF, 0xAD5A08FF, 0x5D3C00FF, 0x000000FF, 0xBB9A2FFF}},
    {"T", ePF_ETC2_RGB, {0x0523F807, 0xC000A}, {0x112233FF, 0xFF9810FF, 0xFF8800FF, 0xEF7800FF, 0x112233FF}},
    {"H", ePF_ETC2_RGB, {0x8905A2B6, 0xC000A}, {0x28394AFF, 0x000B1CFF, 0x5B6C7DFF, 0x2D3E4FFF, 0x28394AFF}},
    {"planar", ePF_ETC2_RGB, {0x8080047F, 0xFE00003F}, {0x000000FF, 0x000040FF, 0x000080FF, 0x0000BFFF, 0xBFBFBFFF}},
    {"punch-through", ePF_ETC2_RGB_A1, {0xA553001D, 0xC000A}, {0xA55200FF, 0xAD5A08FF, 0, 0x000000FF, 0x8C6B00FF}},
    {"opaque", ePF_ETC2_RGB_A1, {0xA553001F, 0xC000A}, {0xA75402FF, 0xAD5A08FF, 0x5D3C00FF, 0x000000FF, 0xBB9A2FFF}},
    {"transparent T", ePF_ETC2_RGB_A1, {0x0523F805, 0xC000A}, {0x112233FF, 0xFF9810FF, 0, 0xEF7800FF, 0x112233FF}},
    {"opaque T", ePF_ETC2_RGB_A1, {0x0523F807, 0xC000A}, {0x112233FF, 0xFF9810FF, 0xFF8800FF, 0xEF7800FF, 0x112233FF}},
    {"transparent H", ePF_ETC2_RGB_A1, {0x8905A2B4, 0xC000A}, {0x28394AFF, 0x000B1CFF, 0, 0x2D3E4FFF, 0x28394AFF}},
    {"planar, opaque bit 0", ePF_ETC2_RGB_A1, {0x8080047D, 0xFE00003F}, {0x000000FF, 0x000040FF, 0x000080FF, 0x0000BFFF, 0xBFBFBFFF}},
};

TEST(EtcDecoder, DecodesEveryModeAsWorkedOutByHand)
{
	for (const KnownBlock& known : kKnownBlocks)
	{
		const unsigned int bytes = known.format == ePF_ETC2_RGB_A1 ? 4 : 3;
		const std::array<unsigned char, 8> block = etctest::storedWords(known.words[0], known.words[1]);
		unsigned char pixels[64];
		ASSERT_EQ(ETCDecompress(block.data(), pixels, 4, 4, known.format, false), 16 * bytes);
		for (unsigned int i = 0; i < 5; ++i)
		{
			const unsigned char* pixel = pixels + (i < 4 ? i * 4 : 15) * bytes;
			const unsigned int alpha = bytes == 4 ? pixel[3] : 255;
			EXPECT_EQ((pixel[0] << 24U) | (pixel[1] << 16U) | (pixel[2] << 8U) | alpha, known.expected[i]) << known.name << ", texel " << i;
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
