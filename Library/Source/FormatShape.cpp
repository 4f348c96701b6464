#include "FormatShape.h"

#include "ZORTUtilities.h"

namespace zortexture
{
namespace
{
/// In the order of EZORTPixelFormat. Tessel I needs two by two blocks at least; ASTC has no whole number of bits per
/// pixel; BC6 and BC7 are named but have no storage.
constexpr FormatShape kFormatShapes[ePF_NumCompressedPFs] = {
    {2, 16, 8, 1},  // TesselI_2bpp_RGB
    {2, 16, 8, 1},  // TesselI_2bpp_RGBA
    {4, 8, 8, 1},   // TesselI_4bpp_RGB
    {4, 8, 8, 1},   // TesselI_4bpp_RGBA
    {2, 8, 4, 1},   // TesselII_2bpp
    {4, 4, 4, 1},   // TesselII_4bpp
    {4, 4, 4, 1},   // ETC1
    {4, 4, 4, 1},   // DXT1
    {8, 4, 4, 1},   // DXT2
    {8, 4, 4, 1},   // DXT3
    {8, 4, 4, 1},   // DXT4
    {8, 4, 4, 1},   // DXT5
    {4, 4, 4, 1},   // BC4
    {8, 4, 4, 1},   // BC5
    {0, 1, 1, 1},   // BC6
    {0, 1, 1, 1},   // BC7
    {16, 2, 1, 1},  // UYVY
    {16, 2, 1, 1},  // YUY2
    {1, 8, 1, 1},   // BW1bpp
    {32, 1, 1, 1},  // R9G9B9E5
    {16, 2, 1, 1},  // RGBG8888
    {16, 2, 1, 1},  // GRGB8888
    {4, 4, 4, 1},   // ETC2_RGB
    {8, 4, 4, 1},   // ETC2_RGBA
    {4, 4, 4, 1},   // ETC2_RGB_A1
    {4, 4, 4, 1},   // EAC_R11
    {8, 4, 4, 1},   // EAC_RG11
    {0, 4, 4, 1},   // ASTC_4x4
    {0, 5, 4, 1},   // ASTC_5x4
    {0, 5, 5, 1},   // ASTC_5x5
    {0, 6, 5, 1},   // ASTC_6x5
    {0, 6, 6, 1},   // ASTC_6x6
    {0, 8, 5, 1},   // ASTC_8x5
    {0, 8, 6, 1},   // ASTC_8x6
    {0, 8, 8, 1},   // ASTC_8x8
    {0, 10, 5, 1},  // ASTC_10x5
    {0, 10, 6, 1},  // ASTC_10x6
    {0, 10, 8, 1},  // ASTC_10x8
    {0, 10, 10, 1}, // ASTC_10x10
    {0, 12, 10, 1}, // ASTC_12x10
    {0, 12, 12, 1}, // ASTC_12x12
    {0, 3, 3, 3},   // ASTC_3x3x3
    {0, 4, 3, 3},   // ASTC_4x3x3
    {0, 4, 4, 3},   // ASTC_4x4x3
    {0, 4, 4, 4},   // ASTC_4x4x4
    {0, 5, 4, 4},   // ASTC_5x4x4
    {0, 5, 5, 4},   // ASTC_5x5x4
    {0, 5, 5, 5},   // ASTC_5x5x5
    {0, 6, 5, 5},   // ASTC_6x5x5
    {0, 6, 6, 5},   // ASTC_6x6x5
    {0, 6, 6, 6},   // ASTC_6x6x6
};

constexpr FormatShape kOnePixel = {0, 1, 1, 1};
} // namespace

bool isASTCFormat(std::uint64_t pixelFormat)
{
	return pixelFormat >= ePF_ASTC_4x4 && pixelFormat <= ePF_ASTC_6x6x6;
}

const FormatShape& formatShape(std::uint64_t pixelFormat)
{
	return pixelFormat < ePF_NumCompressedPFs ? kFormatShapes[pixelFormat] : kOnePixel;
}
} // namespace zortexture

unsigned int ZORTGetBitsPerPixel(unsigned long long pixelFormat)
{
	if (zortexture::isNumberedFormat(pixelFormat))
	{
		return zortexture::formatShape(pixelFormat).bitsPerPixel;
	}
	unsigned int sum = 0;
	for (unsigned int shift = 32; shift < 64; shift += 8)
	{
		sum += static_cast<unsigned int>(pixelFormat >> shift) & 0xFFu;
	}
	return sum;
}

void ZORTGetFormatMinDims(unsigned long long pixelFormat, unsigned int& minX, unsigned int& minY, unsigned int& minZ)
{
	const zortexture::FormatShape& shape = zortexture::formatShape(pixelFormat);
	minX = shape.minX;
	minY = shape.minY;
	minZ = shape.minZ;
}
