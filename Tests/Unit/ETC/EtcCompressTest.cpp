#include <algorithm>
#include <gtest/gtest.h>

#include "ETCCodec.h"
#include "EtcTestSupport.h"

namespace zortexture
{
namespace
{
using etctest::Bytes;

struct FormatCase
{
	unsigned int format;
	unsigned int texelBytes;
	unsigned int blockBytes;
};

const FormatCase kColourFormats[] = {{ePF_ETC1, 3, 8}, {ePF_ETC2_RGB, 3, 8}, {ePF_ETC2_RGBA, 4, 16}, {ePF_ETC2_RGB_A1, 4, 8}};
const FormatCase kEacFormats[] = {{ePF_EAC_R11, 2, 8}, {ePF_EAC_RG11, 4, 16}};

/// A soft pattern with opaque and fully transparent texels, so that no search has anything to report.
Bytes makeImage(std::mt19937& random, unsigned int width, unsigned int height, unsigned int texelBytes)
{
	Bytes image(static_cast<std::size_t>(width) * height * texelBytes);
	for (std::size_t i = 0; i < image.size(); ++i)
	{
		const std::size_t texel = i / texelBytes;
		image[i] = static_cast<unsigned char>(texel % width * 23 + texel / width * 31 + i % texelBytes * 40 + (random() & 15));
		if (texelBytes == 4 && i % 4 == 3)
		{
			image[i] = (texel & 4) != 0 ? 255 : 0;
		}
	}
	return image;
}

/// The blocks of every size are those of its texels one block at a time, where a pad position p takes p + side - padded side.
void expectPaddedByShifting(const FormatCase& format, unsigned int width, unsigned int height, int quality)
{
	SCOPED_TRACE(testing::Message() << "format " << format.format << ", " << width << " x " << height);
	std::mt19937 random(width * 16 + height);
	const Bytes image = makeImage(random, width, height, format.texelBytes);
	const unsigned int padX = (width + 3) / 4 * 4 - width;
	const unsigned int padY = (height + 3) / 4 * 4 - height;
	Bytes blocks(static_cast<std::size_t>(width + padX) * (height + padY) / 16 * format.blockBytes);
	ASSERT_EQ(ETCCompress(image.data(), blocks.data(), width, height, quality, format.format, false), blocks.size());
	ASSERT_EQ(ETCCompress(nullptr, blocks.data(), width, height, quality, format.format, false), blocks.size());
	ASSERT_EQ(ETCCompress(image.data(), nullptr, width, height, quality, format.format, false), blocks.size());
	if (width == 1 || height == 1)
	{
		return; // what such a pad holds is open
	}
	Bytes expected(blocks.size());
	unsigned char* block = expected.data();
	for (unsigned int blockY = 0; blockY < height; blockY += 4)
	{
		for (unsigned int blockX = 0; blockX < width; blockX += 4, block += format.blockBytes)
		{
			unsigned char texels[64];
			for (unsigned int i = 0; i < 16; ++i)
			{
				const unsigned int x = blockX + i % 4;
				const unsigned int y = blockY + i / 4;
				const std::size_t texel = static_cast<std::size_t>(y < height ? y : y - padY) * width + (x < width ? x : x - padX);
				std::copy_n(&image[texel * format.texelBytes], format.texelBytes, texels + i * format.texelBytes);
			}
			ETCCompress(texels, block, 4, 4, quality, format.format, false);
		}
	}
	ASSERT_EQ(blocks, expected);
}

TEST(EtcCompress, PadsEverySizeByShiftingTheLastTexels)
{
	for (const FormatCase& format : kColourFormats)
	{
		for (unsigned int size = 0; size < 81; ++size)
		{
			expectPaddedByShifting(format, size % 9 + 1, size / 9 + 1, static_cast<int>(size & 1));
		}
	}
	for (const FormatCase& format : kEacFormats)
	{
		for (const auto& [width, height] : {std::pair{1U, 1U}, {3U, 1U}, {2U, 3U}, {5U, 4U}, {7U, 6U}})
		{
			expectPaddedByShifting(format, width, height, 0);
		}
	}
}

TEST(EtcCompress, TheRealTexelsOfASideOfOneAreEncoded)
{
	Bytes blocks(8);
	Bytes decoded(9);
	const unsigned char column[9] = {200, 30, 40, 200, 30, 40, 200, 30, 40};
	ASSERT_EQ(ETCCompress(column, blocks.data(), 1, 3, 0, ePF_ETC2_RGB, false), 8U);
	ETCDecompress(blocks.data(), decoded.data(), 1, 3, ePF_ETC2_RGB, false);
	for (std::size_t i = 0; i < 9; ++i)
	{
		EXPECT_NEAR(decoded[i], column[i], 6);
	}
}

TEST(EtcCompress, RefusesWhatItCannotEncode)
{
	const unsigned char image[64] = {};
	const struct
	{
		int quality;
		unsigned int format;
		bool isSigned;
		unsigned int expected;
	} cases[] = {
	    {6, ePF_ETC1, false, 0},       {6, ePF_EAC_R11, false, 0},        {6, ePF_ETC2_RGB_A1, false, 0}, {0, ePF_ETC1, true, 0},
	    {2, ePF_ETC1, true, 0},        {-1, ePF_ETC2_RGBA, true, 0},      {3, ePF_ETC2_RGB_A1, true, 0},  {4, ePF_ETC2_RGB_A1, true, 8},
	    {5, ePF_ETC2_RGB_A1, true, 8}, {-3, ePF_EAC_R11, true, 8},        {3, ePF_EAC_RG11, true, 16},    {0, ePF_DXT1, false, 0},
	    {0, ePF_ASTC_4x4, false, 0},   {4, ePF_TesselI_4bpp_RGB, true, 0}};
	for (const auto& testCase : cases)
	{
		unsigned char block[16] = {};
		EXPECT_EQ(ETCCompress(image, block, 4, 4, testCase.quality, testCase.format, testCase.isSigned), testCase.expected)
		    << "quality " << testCase.quality << ", format " << testCase.format;
	}
}

TEST(EtcCompress, ASizeQueryRefusesNothing)
{
	const unsigned char byte[1] = {};
	unsigned char out[1] = {};
	EXPECT_EQ(ETCCompress(nullptr, out, 6, 6, 99, ePF_ETC1, true), 32U);
	EXPECT_EQ(ETCCompress(nullptr, nullptr, 5, 9, 0, ePF_EAC_RG11, false), 96U);
	EXPECT_EQ(ETCCompress(nullptr, nullptr, 5, 9, 0, ePF_EAC_R11, false), 48U);
	EXPECT_EQ(ETCCompress(nullptr, nullptr, 5, 9, 0, ePF_ASTC_4x4, false), 96U);
	EXPECT_EQ(ETCCompress(nullptr, nullptr, 5, 9, 0, ePF_DXT1, false), 96U);
	EXPECT_EQ(ETCCompress(byte, out, 0, 9, 0, ePF_ETC1, false), 0U);
	EXPECT_EQ(ETCCompress(byte, out, 9, 0, 0, ePF_ETC2_RGBA, false), 0U);
}

TEST(EtcCompress, ANegativeQualityOnlyTurnsTheWordsInTheDestination)
{
	std::mt19937 random(31);
	const Bytes image = makeImage(random, 4, 4, 4);
	Bytes block(16);
	for (unsigned int i = 0; i < 16; ++i)
	{
		block[i] = static_cast<unsigned char>(i);
	}
	ASSERT_EQ(ETCCompress(image.data(), block.data(), 4, 4, -1, ePF_ETC2_RGBA, false), 16U);
	EXPECT_EQ(block, (Bytes{0, 1, 2, 3, 4, 5, 6, 7, 11, 10, 9, 8, 15, 14, 13, 12}));
	ASSERT_EQ(ETCCompress(image.data(), block.data(), 4, 4, -2, ePF_ETC1, false), 8U);
	EXPECT_EQ(block, (Bytes{3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12}));
}

TEST(EtcCompress, EacChannelsAreEncodedApartAndInTheirSign)
{
	// Values that both signednesses represent exactly at base 100 and -28: the green channel must not see the red one.
	std::uint16_t texels[32];
	for (unsigned int i = 0; i < 16; ++i)
	{
		texels[2 * i] = 25708; // 803 << 5 | 803 >> 6
		texels[2 * i + 1] = i < 8 ? 0 : 65535;
	}
	std::uint16_t decoded[32] = {};
	unsigned char blocks[16];
	ASSERT_EQ(ETCCompress(texels, blocks, 4, 4, 0, ePF_EAC_RG11, false), 16U);
	ETCDecompress(blocks, decoded, 4, 4, ePF_EAC_RG11, false);
	for (unsigned int i = 0; i < 16; ++i)
	{
		EXPECT_EQ(decoded[2 * i], 25708);
		EXPECT_LE(static_cast<std::uint16_t>(decoded[2 * i + 1] - texels[2 * i + 1] + 1), 2); // a step of 1 across the wrap counts as near
	}

	std::uint16_t negative[16];
	std::fill(negative, negative + 16, static_cast<std::uint16_t>(-32639));
	ASSERT_EQ(ETCCompress(negative, blocks, 4, 4, 0, ePF_EAC_R11, true), 8U);
	ETCDecompress(blocks, decoded, 4, 4, ePF_EAC_R11, true);
	EXPECT_TRUE(std::equal(negative, negative + 16, decoded));
}

TEST(EtcExpandWidth, RepeatsTheLastPixelOfEveryRow)
{
	auto* image = new unsigned char[2 * 5 * 3];
	for (unsigned char i = 0; i < 30; ++i)
	{
		image[i] = i;
	}
	int width = 0;
	int height = 0;
	ASSERT_TRUE(expandToWidthDivByFour(image, 5, 2, width, height, 8));
	EXPECT_EQ(width, 8);
	EXPECT_EQ(height, 2);
	for (unsigned int i = 0; i < 48; ++i)
	{
		const unsigned int column = std::min(i % 24 / 3, 4U);
		EXPECT_EQ(image[i], i / 24 * 15 + column * 3 + i % 3);
	}

	unsigned char* const kept = image;
	testing::internal::CaptureStdout();
	EXPECT_FALSE(expandToWidthDivByFour(image, 8, 2, width, height, 8));
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "Image already of even width");
	EXPECT_EQ(image, kept);
	EXPECT_EQ(width, 8);
	testing::internal::CaptureStdout();
	EXPECT_FALSE(expandToWidthDivByFour(image, 2147483647, 2147483647, width, height, 2147483647));
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "Could not allocate memory to expand width");
	EXPECT_EQ(image, kept);
	delete[] image;
}
} // namespace
} // namespace zortexture
