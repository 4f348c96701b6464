#include "DDSFormat.h"

#include <algorithm>
#include <iterator>

#include "FormatMaps/Direct3DFormatTable.h"

namespace zortexture
{
namespace dds
{
namespace
{
/// A column that is not compared.
constexpr long long kAny = -1;

enum AlphaFlag
{
	eAlphaFlagSet,
	eAlphaFlagClear,
	eAlphaFlagAny
};

struct ReadRow
{
	unsigned int flag; ///< the flag that picks this group of rows
	unsigned int bitCount;
	AlphaFlag alphaFlag;
	long long red;
	long long green;
	long long blue;
	long long alpha;
	unsigned int d3dFormat;
};

/// The flags that pick a group, the first one set winning; a group whose rows do not match is not followed by another.
constexpr unsigned int kGroupFlags[] = {kPixelRGB, kPixelBumpLuminance, kPixelBump, kPixelLuminance, kPixelAlphaOnly};

constexpr ReadRow kReadRows[] = {
    {kPixelRGB, 8, eAlphaFlagAny, 0xE0, 0x1C, 0x03, kAny, D3DFMT_R3G3B2},
    {kPixelRGB, 16, eAlphaFlagSet, 0x7C00, 0x03E0, 0x1F, 0x8000, D3DFMT_A1R5G5B5},
    {kPixelRGB, 16, eAlphaFlagSet, 0xE0, 0x1C, 0x03, 0xFF00, D3DFMT_A8R3G3B2},
    {kPixelRGB, 16, eAlphaFlagSet, 0x0F00, 0xF0, 0x0F, 0xF000, D3DFMT_A4R4G4B4},
    {kPixelRGB, 16, eAlphaFlagClear, 0x7C00, 0x03E0, 0x1F, kAny, D3DFMT_X1R5G5B5},
    {kPixelRGB, 16, eAlphaFlagClear, 0xF800, 0x07E0, 0x1F, kAny, D3DFMT_R5G6B5},
    {kPixelRGB, 24, eAlphaFlagAny, 0xFF0000, 0xFF00, 0xFF, kAny, D3DFMT_R8G8B8},
    {kPixelRGB, 32, eAlphaFlagSet, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000, D3DFMT_A2B10G10R10},
    {kPixelRGB, 32, eAlphaFlagSet, 0x3FF, 0xFFC00, 0x3FF00000, 0xC0000000, D3DFMT_A2R10G10B10},
    {kPixelRGB, 32, eAlphaFlagSet, 0xFF0000, 0xFF00, 0xFF, 0xFF000000, D3DFMT_A8R8G8B8},
    {kPixelRGB, 32, eAlphaFlagClear, 0xFFFF, 0xFFFF0000, kAny, kAny, D3DFMT_G16R16},
    {kPixelBumpLuminance, 16, eAlphaFlagAny, 0x1F, 0x3E0, 0xFC00, kAny, D3DFMT_L6V5U5},
    {kPixelBumpLuminance, 32, eAlphaFlagAny, 0xFF, 0xFF00, 0xFF0000, kAny, D3DFMT_X8L8V8U8},
    {kPixelBump, 16, eAlphaFlagAny, 0xFF, 0xFF00, kAny, kAny, D3DFMT_V8U8},
    {kPixelBump, 32, eAlphaFlagAny, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000, D3DFMT_A2W10V10U10},
    {kPixelBump, 32, eAlphaFlagAny, 0xFF, 0xFF00, 0xFF0000, 0xFF000000, D3DFMT_Q8W8V8U8},
    {kPixelBump, 32, eAlphaFlagAny, 0xFFFF, 0xFFFF0000, kAny, kAny, D3DFMT_V16U16},
    {kPixelLuminance, 8, eAlphaFlagAny, 0xFF, kAny, kAny, kAny, D3DFMT_L8},
    {kPixelLuminance, 8, eAlphaFlagSet, 0x0F, kAny, kAny, 0xF0, D3DFMT_A4L4},
    {kPixelLuminance, 16, eAlphaFlagSet, 0xFF, kAny, kAny, 0xFF00, D3DFMT_A8L8},
    {kPixelLuminance, 16, eAlphaFlagAny, 0xFFFF, kAny, kAny, kAny, D3DFMT_L16},
    {kPixelAlphaOnly, 8, eAlphaFlagAny, kAny, kAny, kAny, 0xFF, D3DFMT_A8},
};

struct WriteRow
{
	unsigned int d3dFormat;
	unsigned int flags;
	unsigned int red;
	unsigned int green;
	unsigned int blue;
	unsigned int alpha;
};

constexpr WriteRow kWriteRows[] = {
    {D3DFMT_R8G8B8, kPixelRGB, 0xFF0000, 0xFF00, 0xFF, 0},
    {D3DFMT_A8R8G8B8, kPixelRGB | kPixelAlpha, 0xFF0000, 0xFF00, 0xFF, 0xFF000000},
    {D3DFMT_R5G6B5, kPixelRGB, 0xF800, 0x07E0, 0x1F, 0},
    {D3DFMT_X1R5G5B5, kPixelRGB, 0x7C00, 0x03E0, 0x1F, 0},
    {D3DFMT_A1R5G5B5, kPixelRGB | kPixelAlpha, 0x7C00, 0x03E0, 0x1F, 0x8000},
    {D3DFMT_A4R4G4B4, kPixelRGB | kPixelAlpha, 0x0F00, 0xF0, 0x0F, 0xF000},
    {D3DFMT_R3G3B2, kPixelRGB, 0xE0, 0x1C, 0x03, 0},
    {D3DFMT_A8, kPixelAlphaOnly, 0, 0, 0, 0xFF},
    {D3DFMT_A8R3G3B2, kPixelRGB | kPixelAlpha, 0xE0, 0x1C, 0x03, 0xFF00},
    {D3DFMT_A2B10G10R10, kPixelRGB | kPixelAlpha, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000},
    {D3DFMT_G16R16, kPixelRGB, 0xFFFF, 0xFFFF0000, 0, 0},
    {D3DFMT_A2R10G10B10, kPixelRGB | kPixelAlpha, 0x3FF, 0xFFC00, 0x3FF00000, 0xC0000000},
    {D3DFMT_L8, kPixelLuminance, 0xFF, 0, 0, 0},
    {D3DFMT_A8L8, kPixelLuminance | kPixelAlpha, 0xFF, 0, 0, 0xFF00},
    {D3DFMT_A4L4, kPixelLuminance | kPixelAlpha, 0x0F, 0, 0, 0xF0},
    {D3DFMT_V8U8, kPixelBump, 0xFF, 0xFF00, 0, 0},
    {D3DFMT_L6V5U5, kPixelBumpLuminance, 0x1F, 0x3E0, 0xFC00, 0},
    {D3DFMT_X8L8V8U8, kPixelBumpLuminance, 0xFF, 0xFF00, 0xFF0000, 0},
    {D3DFMT_Q8W8V8U8, kPixelBump, 0xFF, 0xFF00, 0xFF0000, 0xFF000000},
    {D3DFMT_V16U16, kPixelBump, 0xFFFF, 0xFFFF0000, 0, 0},
    {D3DFMT_A2W10V10U10, kPixelBump | kPixelAlpha, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000},
    {D3DFMT_L16, kPixelLuminance, 0xFFFF, 0, 0, 0},
};

/// Formats that stand in the FourCC field of the classic header, some as plain numbers.
constexpr unsigned int kFourCCFormats[] = {
    fourCC("DXT1"),       fourCC("DXT2"), fourCC("DXT3"), fourCC("DXT4"),       fourCC("DXT5"), fourCC("YUY2"),
    fourCC("UYVY"),       fourCC("TSL2"), fourCC("TSL4"), D3DFMT_A16B16G16R16,  D3DFMT_R16F,    D3DFMT_G16R16F,
    D3DFMT_A16B16G16R16F, D3DFMT_R32F,    D3DFMT_G32R32F, D3DFMT_A32B32G32R32F,
};

bool matches(const ReadRow& row, const PixelFormat& pixelFormat)
{
	const auto same = [](long long wanted, unsigned int mask)
	{
		return wanted == kAny || wanted == mask;
	};
	const bool hasAlpha = (pixelFormat.flags & kPixelAlpha) != 0;
	return row.bitCount == pixelFormat.bitCount && (row.alphaFlag == eAlphaFlagAny || (row.alphaFlag == eAlphaFlagSet) == hasAlpha) &&
	       same(row.red, pixelFormat.redMask) && same(row.green, pixelFormat.greenMask) && same(row.blue, pixelFormat.blueMask) &&
	       same(row.alpha, pixelFormat.alphaMask);
}
} // namespace

unsigned int recognise(const PixelFormat& pixelFormat)
{
	if ((pixelFormat.flags & kPixelFourCC) != 0)
	{
		return pixelFormat.fourCC;
	}
	for (const unsigned int flag : kGroupFlags)
	{
		if ((pixelFormat.flags & flag) == 0)
		{
			continue;
		}
		const auto* row = std::find_if(std::begin(kReadRows), std::end(kReadRows),
		                               [&](const ReadRow& candidate) { return candidate.flag == flag && matches(candidate, pixelFormat); });
		return row == std::end(kReadRows) ? 0 : row->d3dFormat;
	}
	return 0;
}

bool describe(unsigned int d3dFormat, unsigned int bitsPerPixel, PixelFormat& pixelFormat)
{
	if (std::find(std::begin(kFourCCFormats), std::end(kFourCCFormats), d3dFormat) != std::end(kFourCCFormats))
	{
		pixelFormat.flags = kPixelFourCC;
		pixelFormat.fourCC = d3dFormat;
		return true;
	}
	const auto* row = std::find_if(std::begin(kWriteRows), std::end(kWriteRows),
	                               [&](const WriteRow& candidate) { return candidate.d3dFormat == d3dFormat; });
	if (row == std::end(kWriteRows))
	{
		return false;
	}
	pixelFormat.flags = row->flags;
	pixelFormat.fourCC = kFourCCExtended; // without its flag; readers go by the masks
	pixelFormat.bitCount = bitsPerPixel;
	pixelFormat.redMask = row->red;
	pixelFormat.greenMask = row->green;
	pixelFormat.blueMask = row->blue;
	pixelFormat.alphaMask = row->alpha;
	return true;
}
} // namespace dds
} // namespace zortexture
