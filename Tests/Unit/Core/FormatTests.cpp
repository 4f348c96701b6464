#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "ZORTextureHeader.h"

using namespace zortexture;

namespace
{
constexpr unsigned long long kR8 = PixelType('r', 0, 0, 0, 8, 0, 0, 0).id;
constexpr unsigned long long kRgb111 = PixelType('r', 'g', 'b', 0, 1, 1, 1, 0).id;
constexpr unsigned long long kRgba8 = ZORStandard8PixelType.id;

using Figures = std::vector<unsigned int>;

Figures figuresOf(unsigned long long format)
{
	unsigned int x = 99;
	unsigned int y = 99;
	unsigned int z = 99;
	ZORTGetFormatMinDims(format, x, y, z);
	return {ZORTGetBitsPerPixel(format), x, y, z};
}

TEST(Formats, HaveTheFiguresOfTheirFamily)
{
	const struct
	{
		Figures figures;
		std::set<unsigned int> formats;
	} families[] = {
	    {{2, 16, 8, 1}, {ePF_TesselI_2bpp_RGB, ePF_TesselI_2bpp_RGBA}},
	    {{4, 8, 8, 1}, {ePF_TesselI_4bpp_RGB, ePF_TesselI_4bpp_RGBA}},
	    {{2, 8, 4, 1}, {ePF_TesselII_2bpp}},
	    {{4, 4, 4, 1}, {ePF_TesselII_4bpp, ePF_ETC1, ePF_DXT1, ePF_BC4, ePF_ETC2_RGB, ePF_ETC2_RGB_A1, ePF_EAC_R11}},
	    {{8, 4, 4, 1}, {ePF_DXT2, ePF_DXT3, ePF_DXT4, ePF_DXT5, ePF_BC5, ePF_ETC2_RGBA, ePF_EAC_RG11}},
	    {{16, 2, 1, 1}, {ePF_UYVY, ePF_YUY2, ePF_RGBG8888, ePF_GRGB8888}},
	    {{1, 8, 1, 1}, {ePF_BW1bpp}},
	    {{32, 1, 1, 1}, {ePF_R9G9B9E5}},
	    {{0, 1, 1, 1}, {ePF_BC6, ePF_BC7, ePF_NumCompressedPFs, 52, 1000, 0xFFFFFFFFu}},
	};
	std::set<unsigned int> seen;
	for (const auto& family : families)
	{
		for (const unsigned int format : family.formats)
		{
			EXPECT_EQ(figuresOf(format), family.figures) << format;
			seen.insert(format);
		}
	}
	EXPECT_EQ(seen.size(), 27u + 4u) << "all but ASTC, and four numbers of no format";
	EXPECT_EQ(figuresOf(PixelType('b', 'g', 'r', 0, 10, 11, 11, 0).id), (Figures{32, 1, 1, 1}));
	EXPECT_EQ(figuresOf(0xFFFFFFFF00000005ull), (Figures{1020, 1, 1, 1}));
}

TEST(Formats, CountASTCInBlocks)
{
	std::istringstream sizes("4x4x1 5x4x1 5x5x1 6x5x1 6x6x1 8x5x1 8x6x1 8x8x1 10x5x1 10x6x1 10x8x1 10x10x1 12x10x1 12x12x1 "
	                         "3x3x3 4x3x3 4x4x3 4x4x4 5x4x4 5x5x4 5x5x5 6x5x5 6x6x5 6x6x6");
	unsigned int format = ePF_ASTC_4x4;
	unsigned int x = 0;
	unsigned int y = 0;
	unsigned int z = 0;
	for (char separator = 0; sizes >> x >> separator >> y >> separator >> z; ++format)
	{
		EXPECT_EQ(figuresOf(format), (Figures{0, x, y, z})) << format;
		EXPECT_EQ(CZORTextureHeader(format, y, 2 * x + 1, z + 1).getDataSize(), 6u * 16u) << format;
		EXPECT_EQ(CZORTextureHeader(format, y, x, z, 2).getDataSize(), 2u * 16u) << format;
		EXPECT_EQ(CZORTextureHeader(format, y, x, z).getTextureSize(), 0u) << format;
	}
	EXPECT_EQ(format, 51u);
}

struct SizeCase
{
	unsigned long long format;
	unsigned int width, height, depth, levels, surfaces, faces;
	int level;
	unsigned int size;
};

TEST(DataSize, IsWhatTheFormatTakes)
{
	const unsigned int maximum = 0xFFFFFFFFu;
	const SizeCase cases[] = {
	    {kRgba8, 3, 5, 7, 1, 1, 1, -1, 420},
	    {kRgba8, 0, 0, 0, 1, 1, 1, -1, 4}, // nothing counts as one pixel
	    {ePF_TesselI_2bpp_RGB, 1, 1, 1, 1, 1, 1, -1, 32},
	    {ePF_TesselI_4bpp_RGBA, 9, 1, 1, 1, 1, 1, -1, 64},
	    {ePF_TesselII_2bpp, 1, 5, 1, 1, 1, 1, -1, 16},
	    {ePF_ETC2_RGBA, 5, 5, 2, 1, 1, 1, -1, 128},
	    {ePF_BW1bpp, 9, 3, 1, 1, 1, 1, -1, 6},
	    {ePF_UYVY, 3, 3, 1, 1, 1, 1, -1, 24},
	    {ePF_BC7, 100, 100, 1, 1, 1, 1, -1, 0},
	    {51, 100, 100, 1, 1, 1, 1, -1, 0},
	    // Levels: bits are added before they are rounded down, each level on its own is rounded by itself.
	    {kRgb111, 3, 1, 1, 1, 1, 1, -1, 1},
	    {kRgb111, 7, 1, 1, 3, 1, 1, -1, 4},
	    {kRgb111, 7, 1, 1, 3, 1, 1, 1, 1},
	    {kR8, 5, 3, 1, 3, 1, 1, -1, 18},
	    {kR8, 5, 3, 1, 3, 2, 6, -1, 216},
	    {kR8, 5, 3, 1, 1, 1, 1, 1, 2}, // a level that the texture does not have
	    {kR8, 5, 3, 1, 1, 1, 1, 32, 15},
	    {kR8, 5, 3, 1, 0, 1, 1, -1, 0},
	    {kR8, 5, 3, 1, 0, 1, 1, 0, 15},
	    {kR8, 2, 1, 1, 33, 1, 1, -1, 35},
	    {kR8, 1, 1, 1, maximum, 1, 1, -1, maximum},
	    // Wrapping.
	    {kR8, 65536, 65536, 1, 1, 1, 1, -1, 0},
	    {kR8, 65537, 65536, 1, 1, 1, 1, -1, 65536},
	    {kR8, 65536, 32768, 1, 1, 1, 3, -1, 0x80000000u},
	    {kR8, 1, 1, 1, 1, 65536, 65537, -1, 65536},
	    {ePF_ASTC_4x4, 32768, 16384, 1, 1, 1, 1, -1, 0},
	    {ePF_ASTC_4x4, 32772, 16384, 1, 1, 1, 1, -1, 65536},
	};
	for (const SizeCase& c : cases)
	{
		const CZORTextureHeader header(c.format, c.height, c.width, c.depth, c.levels, c.surfaces, c.faces);
		EXPECT_EQ(header.getDataSize(c.level), c.size) << c.format << ": " << c.width << " x " << c.height << ", level " << c.level;
	}
	const CZORTextureHeader cube(kR8, 2, 3, 1, 1, 5, 6);
	EXPECT_EQ(cube.getDataSize(0, false, false), 6u);
	EXPECT_EQ(cube.getDataSize(0, true, false), 30u);
	EXPECT_EQ(cube.getDataSize(0, false, true), 36u);
	EXPECT_EQ(CZORTextureHeader(kRgba8, 3, 5, 1, 2, 2).getTextureSize(), 34u);
}

TEST(Formats, NameTheirChannels)
{
	const std::string letters = "rgbalix";
	for (unsigned int byte = 0; byte < 256; ++byte)
	{
		const std::size_t position = letters.find(static_cast<char>(byte));
		const unsigned int expected = position == std::string::npos ? 0 : static_cast<unsigned int>(position) + 1;
		EXPECT_EQ(MapCharToEnum(static_cast<unsigned char>(byte)), expected) << byte;
		const unsigned char letter = byte >= 1 && byte <= 7 ? static_cast<unsigned char>(letters[byte - 1]) : 0;
		EXPECT_EQ(MapEnumToChar(static_cast<EChannelName>(byte)), letter) << byte;
	}
	unsigned int signedTypes = 0;
	for (unsigned int type = 0; type < 32; ++type)
	{
		signedTypes |= isSigned(static_cast<EZORTVariableType>(type)) ? 1u << type : 0u;
	}
	EXPECT_EQ(signedTypes, 0b1'1010'1010'1010u);
	const PixelType bgr(0x000808080072'6762ull);
	EXPECT_EQ(bgr.channelName[0], 'b');
	EXPECT_EQ(bgr.channelBits[2], 8);
	EXPECT_EQ(bgr.channelBits[3], 0);
	EXPECT_EQ(kRgba8, 0x0808080861626772ull);
	EXPECT_EQ(PixelType('r', 'g', 'b', 'a', 8, 8, 8, 8).id, kRgba8);
}
} // namespace
