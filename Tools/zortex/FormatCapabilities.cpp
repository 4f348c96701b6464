#include "FormatCapabilities.h"

#include <algorithm>

namespace zortex
{
using namespace zortexture;

namespace
{
// Decodes, encodes, best quality, the four named qualities, size rule. A codec that arrives changes its row here.
constexpr Codec kTesselI = {"Tessel I", true, true, 8, {0, 2, 3, 4}, SizeRule::powersOfTwo};
constexpr Codec kTesselII = {"Tessel II", true, true, 8, {0, 2, 3, 4}, SizeRule::any};
constexpr Codec kETC = {"ETC", true, true, 3, {0, 1, 1, 2}, SizeRule::any};
constexpr Codec kEAC = {"EAC", true, true, 0, {0, 0, 0, 0}, SizeRule::any};
constexpr Codec kDXT = {"DXT", true, true, 0, {0, 0, 0, 0}, SizeRule::any};
constexpr Codec kBC = {"BC", false, false, 0, {0, 0, 0, 0}, SizeRule::any};
constexpr Codec kYUV = {"YUV 4:2:2", true, true, 0, {0, 0, 0, 0}, SizeRule::wholeUnits};
constexpr Codec kRGBG = {"RGBG", true, true, 0, {0, 0, 0, 0}, SizeRule::wholeUnits};
constexpr Codec kOneBPP = {"one bit", true, true, 0, {0, 0, 0, 0}, SizeRule::wholeUnits};
constexpr Codec kASTC = {"ASTC", true, true, 4, {1, 2, 3, 4}, SizeRule::any};
constexpr Codec kSharedExponent = {"shared exponent", true, true, 0, {0, 0, 0, 0}, SizeRule::any};

constexpr CompressedFormat kFormats[] = {
    {ePF_TesselI_2bpp_RGB, "tessel1-2bpp-rgb", "rgb", &kTesselI},
    {ePF_TesselI_2bpp_RGBA, "tessel1-2bpp-rgba", "rgba", &kTesselI},
    {ePF_TesselI_4bpp_RGB, "tessel1-4bpp-rgb", "rgb", &kTesselI},
    {ePF_TesselI_4bpp_RGBA, "tessel1-4bpp-rgba", "rgba", &kTesselI},
    {ePF_TesselII_2bpp, "tessel2-2bpp", "rgba", &kTesselII},
    {ePF_TesselII_4bpp, "tessel2-4bpp", "rgba", &kTesselII},
    {ePF_ETC1, "etc1", "rgb", &kETC},
    {ePF_ETC2_RGB, "etc2-rgb", "rgb", &kETC},
    {ePF_ETC2_RGBA, "etc2-rgba", "rgba", &kETC},
    {ePF_ETC2_RGB_A1, "etc2-rgb-a1", "rgba", &kETC},
    {ePF_EAC_R11, "eac-r11", "r", &kEAC},
    {ePF_EAC_RG11, "eac-rg11", "rg", &kEAC},
    {ePF_DXT1, "dxt1", "rgba", &kDXT},
    {ePF_DXT2, "dxt2", "rgba", &kDXT},
    {ePF_DXT3, "dxt3", "rgba", &kDXT},
    {ePF_DXT4, "dxt4", "rgba", &kDXT},
    {ePF_DXT5, "dxt5", "rgba", &kDXT},
    {ePF_BC4, "bc4", "r", &kBC},
    {ePF_BC5, "bc5", "rg", &kBC},
    {ePF_BC6, "bc6", "rgb", &kBC},
    {ePF_BC7, "bc7", "rgba", &kBC},
    {ePF_UYVY, "uyvy", "rgb", &kYUV},
    {ePF_YUY2, "yuy2", "rgb", &kYUV},
    {ePF_RGBG8888, "rgbg8888", "rgb", &kRGBG},
    {ePF_GRGB8888, "grgb8888", "rgb", &kRGBG},
    {ePF_BW1bpp, "bw1bpp", "rgb", &kOneBPP},
    {ePF_R9G9B9E5, "r9g9b9e5", "rgb", &kSharedExponent},
    {ePF_ASTC_4x4, "astc-4x4", "rgba", &kASTC},
    {ePF_ASTC_5x4, "astc-5x4", "rgba", &kASTC},
    {ePF_ASTC_5x5, "astc-5x5", "rgba", &kASTC},
    {ePF_ASTC_6x5, "astc-6x5", "rgba", &kASTC},
    {ePF_ASTC_6x6, "astc-6x6", "rgba", &kASTC},
    {ePF_ASTC_8x5, "astc-8x5", "rgba", &kASTC},
    {ePF_ASTC_8x6, "astc-8x6", "rgba", &kASTC},
    {ePF_ASTC_8x8, "astc-8x8", "rgba", &kASTC},
    {ePF_ASTC_10x5, "astc-10x5", "rgba", &kASTC},
    {ePF_ASTC_10x6, "astc-10x6", "rgba", &kASTC},
    {ePF_ASTC_10x8, "astc-10x8", "rgba", &kASTC},
    {ePF_ASTC_10x10, "astc-10x10", "rgba", &kASTC},
    {ePF_ASTC_12x10, "astc-12x10", "rgba", &kASTC},
    {ePF_ASTC_12x12, "astc-12x12", "rgba", &kASTC},
    {ePF_ASTC_3x3x3, "astc-3x3x3", "rgba", &kASTC},
    {ePF_ASTC_4x3x3, "astc-4x3x3", "rgba", &kASTC},
    {ePF_ASTC_4x4x3, "astc-4x4x3", "rgba", &kASTC},
    {ePF_ASTC_4x4x4, "astc-4x4x4", "rgba", &kASTC},
    {ePF_ASTC_5x4x4, "astc-5x4x4", "rgba", &kASTC},
    {ePF_ASTC_5x5x4, "astc-5x5x4", "rgba", &kASTC},
    {ePF_ASTC_5x5x5, "astc-5x5x5", "rgba", &kASTC},
    {ePF_ASTC_6x5x5, "astc-6x5x5", "rgba", &kASTC},
    {ePF_ASTC_6x6x5, "astc-6x6x5", "rgba", &kASTC},
    {ePF_ASTC_6x6x6, "astc-6x6x6", "rgba", &kASTC},
};
static_assert(std::size(kFormats) == ePF_NumCompressedPFs, "every compressed format has one row");

bool isPowerOfTwo(unsigned int value)
{
	return value != 0 && (value & (value - 1)) == 0;
}

/// The power of two nearest to a size, the larger of two that are equally near.
unsigned int nearestPowerOfTwo(unsigned int value)
{
	unsigned int power = 1;
	while (power < 0x40000000u && power * 2 <= value)
	{
		power *= 2;
	}
	return value - power >= power * 2 - value ? power * 2 : power;
}

std::string dimensions(unsigned int width, unsigned int height)
{
	return std::to_string(width) + "x" + std::to_string(height);
}
} // namespace

std::span<const CompressedFormat> compressedFormats()
{
	return kFormats;
}

const CompressedFormat* findCompressedFormat(PixelType format)
{
	const auto* const found =
	    std::find_if(std::begin(kFormats), std::end(kFormats), [format](const CompressedFormat& row) { return row.id == format.id; });
	return found != std::end(kFormats) ? found : nullptr;
}

const CompressedFormat* findCompressedFormat(std::string_view name)
{
	const auto* const found =
	    std::find_if(std::begin(kFormats), std::end(kFormats), [name](const CompressedFormat& row) { return row.name == name; });
	return found != std::end(kFormats) ? found : nullptr;
}

bool canDecode(PixelType format)
{
	if (!format.isCompressed())
	{
		return true;
	}
	const CompressedFormat* row = findCompressedFormat(format);
	return row != nullptr && row->codec->decodes;
}

bool canEncode(PixelType format)
{
	if (!format.isCompressed())
	{
		return true;
	}
	const CompressedFormat* row = findCompressedFormat(format);
	return row != nullptr && row->codec->encodes;
}

bool canHoldVolume(PixelType format)
{
	const CompressedFormat* row = findCompressedFormat(format);
	return row == nullptr || row->codec == &kASTC;
}

void blockSize(const CompressedFormat& format, unsigned int& x, unsigned int& y, unsigned int& z)
{
	ZORTGetFormatMinDims(format.id, x, y, z);
	if (format.codec == &kTesselI)
	{
		// The unit of this generation is two by two blocks.
		x /= 2;
		y /= 2;
	}
}

double bitsPerTexel(const CompressedFormat& format)
{
	if (format.codec != &kASTC)
	{
		return ZORTGetBitsPerPixel(format.id);
	}
	unsigned int x = 0;
	unsigned int y = 0;
	unsigned int z = 0;
	blockSize(format, x, y, z);
	return 128.0 / (static_cast<double>(x) * y * z);
}

std::string sizeProblem(const CZORTextureHeader& header, PixelType format)
{
	const CompressedFormat* row = findCompressedFormat(format);
	if (row == nullptr)
	{
		return {};
	}
	const std::string name(row->name);
	const unsigned int width = header.getWidth();
	const unsigned int height = header.getHeight();
	unsigned int unitX = 1;
	unsigned int unitY = 1;
	unsigned int unitZ = 1;
	ZORTGetFormatMinDims(format.id, unitX, unitY, unitZ);

	if (header.getDepth() > 1 && !canHoldVolume(format))
	{
		return name + " cannot hold a volume of depth " + std::to_string(header.getDepth());
	}
	if (row->codec->sizeRule == SizeRule::powersOfTwo && !(isPowerOfTwo(width) && isPowerOfTwo(height)))
	{
		return name + " needs sides that are powers of two, not " + dimensions(width, height) + "; try --resize " +
		       dimensions(nearestPowerOfTwo(width), nearestPowerOfTwo(height));
	}
	if (row->codec->sizeRule == SizeRule::wholeUnits)
	{
		for (unsigned int level = 0; level < header.getNumMIPLevels(); ++level)
		{
			const unsigned int levelWidth = header.getWidth(level);
			if (levelWidth > unitX && levelWidth % unitX != 0)
			{
				const unsigned int whole = std::max(unitX, (width + unitX / 2) / unitX * unitX);
				return name + " needs widths that are multiples of " + std::to_string(unitX) + ", not " + std::to_string(levelWidth) +
				       (level != 0 ? " (at level " + std::to_string(level) + ")" : "") + "; try --resize " + dimensions(whole, height);
			}
		}
	}
	return {};
}
} // namespace zortex
