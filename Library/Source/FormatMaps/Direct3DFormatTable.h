/// @file Direct3DFormatTable.h
/// The D3DFORMAT numbers of formats, in both directions. The directions differ in most channel types, so each has a
/// table of its own.
#pragma once

#include "FormatConstants.h"
#include "FormatRows.h"

namespace zortexture
{
/// A FourCC code: the first character in the lowest byte.
constexpr unsigned int fourCC(const char (&text)[5])
{
	return static_cast<unsigned int>(text[0]) | static_cast<unsigned int>(text[1]) << 8 | static_cast<unsigned int>(text[2]) << 16 |
	       static_cast<unsigned int>(text[3]) << 24;
}

inline constexpr ForwardRow kDirect3DFormats[] = {
    {ePF_TesselI_2bpp_RGB, kAnyType, fourCC("TSL2"), kNoConstant},
    {ePF_TesselI_2bpp_RGBA, kAnyType, fourCC("TSL2"), kNoConstant},
    {ePF_TesselI_4bpp_RGB, kAnyType, fourCC("TSL4"), kNoConstant},
    {ePF_TesselI_4bpp_RGBA, kAnyType, fourCC("TSL4"), kNoConstant},
    {ePF_DXT1, kAnyType, fourCC("DXT1"), kNoConstant},
    {ePF_DXT2, kAnyType, fourCC("DXT2"), kNoConstant},
    {ePF_DXT3, kAnyType, fourCC("DXT3"), kNoConstant},
    {ePF_DXT4, kAnyType, fourCC("DXT4"), kNoConstant},
    {ePF_DXT5, kAnyType, fourCC("DXT5"), kNoConstant},
    {ePF_UYVY, kAnyType, fourCC("UYVY"), kNoConstant},
    {ePF_YUY2, kAnyType, fourCC("YUY2"), kNoConstant},
    {ePF_RGBG8888, kAnyType, fourCC("RGBG"), kNoConstant},
    {ePF_GRGB8888, kAnyType, fourCC("GRGB"), kNoConstant},
    {layout("rgb", 3, 3, 2), eVT_UnsignedByteNorm, D3DFMT_R3G3B2, kNoConstant},
    {layout("rgb", 8, 8, 8), eVT_UnsignedByteNorm, D3DFMT_R8G8B8, kNoConstant},
    {layout("xrgb", 8, 8, 8, 8), eVT_UnsignedByteNorm, D3DFMT_X8R8G8B8, kNoConstant},
    {layout("argb", 8, 8, 8, 8), eVT_UnsignedByteNorm, D3DFMT_A8R8G8B8, kNoConstant},
    {layout("a", 8), eVT_UnsignedByteNorm, D3DFMT_A8, kNoConstant},
    {layout("l", 8), eVT_UnsignedByteNorm, D3DFMT_L8, kNoConstant},
    {layout("al", 4, 4), eVT_UnsignedByteNorm, D3DFMT_A4L4, kNoConstant},
    {layout("al", 8, 8), eVT_UnsignedByteNorm, D3DFMT_A8L8, kNoConstant},
    {layout("xrgb", 1, 5, 5, 5), eVT_UnsignedShortNorm, D3DFMT_X1R5G5B5, kNoConstant},
    {layout("abgr", 16, 16, 16, 16), eVT_UnsignedShortNorm, D3DFMT_A16B16G16R16, kNoConstant},
    {layout("argb", 4, 4, 4, 4), eVT_UnsignedShortNorm, D3DFMT_A4R4G4B4, kNoConstant},
    {layout("argb", 1, 5, 5, 5), eVT_UnsignedShortNorm, D3DFMT_A1R5G5B5, kNoConstant},
    {layout("rgb", 5, 6, 5), eVT_UnsignedShortNorm, D3DFMT_R5G6B5, kNoConstant},
    {layout("argb", 8, 3, 3, 2), eVT_UnsignedShortNorm, D3DFMT_A8R3G3B2, kNoConstant},
    {layout("l", 16), eVT_UnsignedShortNorm, D3DFMT_L16, kNoConstant},
    {layout("gr", 16, 16), eVT_UnsignedShortNorm, D3DFMT_G16R16, kNoConstant},
    {layout("argb", 1, 5, 5, 5), eVT_UnsignedIntegerNorm, D3DFMT_A1R5G5B5, kNoConstant},
    {layout("xrgb", 1, 5, 5, 5), eVT_UnsignedIntegerNorm, D3DFMT_X1R5G5B5, kNoConstant},
    {layout("argb", 8, 3, 3, 2), eVT_UnsignedIntegerNorm, D3DFMT_A8R3G3B2, kNoConstant},
    {layout("argb", 4, 4, 4, 4), eVT_UnsignedIntegerNorm, D3DFMT_A4R4G4B4, kNoConstant},
    {layout("argb", 8, 8, 8, 8), eVT_UnsignedIntegerNorm, D3DFMT_A8R8G8B8, kNoConstant},
    {layout("xrgb", 8, 8, 8, 8), eVT_UnsignedIntegerNorm, D3DFMT_X8R8G8B8, kNoConstant},
    {layout("argb", 2, 10, 10, 10), eVT_UnsignedIntegerNorm, D3DFMT_A2R10G10B10, kNoConstant},
    {layout("abgr", 2, 10, 10, 10), eVT_UnsignedIntegerNorm, D3DFMT_A2B10G10R10, kNoConstant},
    {layout("abgr", 16, 16, 16, 16), eVT_UnsignedIntegerNorm, D3DFMT_A16B16G16R16, kNoConstant},
    {layout("a", 8), eVT_UnsignedIntegerNorm, D3DFMT_A8, kNoConstant},
    {layout("l", 8), eVT_UnsignedIntegerNorm, D3DFMT_L8, kNoConstant},
    {layout("l", 16), eVT_UnsignedIntegerNorm, D3DFMT_L16, kNoConstant},
    {layout("al", 4, 4), eVT_UnsignedIntegerNorm, D3DFMT_A4L4, kNoConstant},
    {layout("rgb", 3, 3, 2), eVT_UnsignedIntegerNorm, D3DFMT_R3G3B2, kNoConstant},
    {layout("rgb", 5, 6, 5), eVT_UnsignedIntegerNorm, D3DFMT_R5G6B5, kNoConstant},
    {layout("rgb", 8, 8, 8), eVT_UnsignedIntegerNorm, D3DFMT_R8G8B8, kNoConstant},
    {layout("al", 8, 8), eVT_UnsignedIntegerNorm, D3DFMT_A8L8, kNoConstant},
    {layout("gr", 16, 16), eVT_UnsignedIntegerNorm, D3DFMT_G16R16, kNoConstant},
    {layout("abgr", 8, 8, 8, 8), eVT_SignedIntegerNorm, D3DFMT_Q8W8V8U8, kNoConstant},
    {layout("abgr", 2, 10, 10, 10), eVT_SignedIntegerNorm, D3DFMT_A2W10V10U10, kNoConstant},
    {layout("xlgr", 8, 8, 8, 8), eVT_SignedIntegerNorm, D3DFMT_X8L8V8U8, kNoConstant},
    {layout("gr", 8, 8), eVT_SignedIntegerNorm, D3DFMT_V8U8, kNoConstant},
    {layout("gr", 16, 16), eVT_SignedIntegerNorm, D3DFMT_V16U16, kNoConstant},
    {layout("lgr", 6, 5, 5), eVT_SignedIntegerNorm, D3DFMT_L6V5U5, kNoConstant},
    {layout("rg", 32, 32), eVT_SignedFloat, D3DFMT_G32R32F, kNoConstant},
    {layout("rgba", 16, 16, 16, 16), eVT_SignedFloat, D3DFMT_A16B16G16R16F, kNoConstant},
    {layout("abgr", 32, 32, 32, 32), eVT_SignedFloat, D3DFMT_A32B32G32R32F, kNoConstant},
    {layout("r", 16), eVT_SignedFloat, D3DFMT_R16F, kNoConstant},
    {layout("r", 32), eVT_SignedFloat, D3DFMT_R32F, kNoConstant},
    {layout("gr", 16, 16), eVT_SignedFloat, D3DFMT_G16R16F, kNoConstant},
};

struct Direct3DReverseRow
{
	unsigned int constant;
	unsigned long long pixelFormat;
	EZORTVariableType channelType;
	bool preMultiplied;
};

inline constexpr Direct3DReverseRow kDirect3DReverse[] = {
    {D3DFMT_R8G8B8, layout("rgb", 8, 8, 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A8R8G8B8, layout("argb", 8, 8, 8, 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_X8R8G8B8, layout("xrgb", 8, 8, 8, 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_R5G6B5, layout("rgb", 5, 6, 5), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_X1R5G5B5, layout("xrgb", 1, 5, 5, 5), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A1R5G5B5, layout("argb", 1, 5, 5, 5), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A4R4G4B4, layout("argb", 4, 4, 4, 4), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_R3G3B2, layout("rgb", 3, 3, 2), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A8, layout("a", 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A8R3G3B2, layout("argb", 8, 3, 3, 2), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_X4R4G4B4, layout("argb", 4, 4, 4, 4), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A2B10G10R10, layout("abgr", 2, 10, 10, 10), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A8B8G8R8, layout("abgr", 8, 8, 8, 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_X8B8G8R8, layout("xbgr", 8, 8, 8, 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_G16R16, layout("gr", 16, 16), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A2R10G10B10, layout("argb", 2, 10, 10, 10), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A16B16G16R16, layout("abgr", 16, 16, 16, 16), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_L8, layout("l", 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A8L8, layout("al", 8, 8), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_A4L4, layout("al", 4, 4), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_V8U8, layout("gr", 8, 8), eVT_SignedIntegerNorm, false},
    {D3DFMT_L6V5U5, layout("lgr", 6, 5, 5), eVT_SignedIntegerNorm, false},
    {D3DFMT_X8L8V8U8, layout("xlgr", 8, 8, 8, 8), eVT_SignedIntegerNorm, false},
    {D3DFMT_Q8W8V8U8, layout("abgr", 8, 8, 8, 8), eVT_SignedIntegerNorm, false},
    {D3DFMT_V16U16, layout("gr", 16, 16), eVT_SignedIntegerNorm, false},
    {D3DFMT_A2W10V10U10, layout("abgr", 2, 10, 10, 10), eVT_SignedIntegerNorm, false},
    {D3DFMT_L16, layout("l", 16), eVT_UnsignedIntegerNorm, false},
    {D3DFMT_Q16W16V16U16, layout("abgr", 16, 16, 16, 16), eVT_SignedIntegerNorm, false},
    {D3DFMT_R16F, layout("r", 32), eVT_SignedFloat, false},
    {D3DFMT_G16R16F, layout("gr", 16, 16), eVT_SignedFloat, false},
    {D3DFMT_A16B16G16R16F, layout("rgba", 16, 16, 16, 16), eVT_SignedFloat, false},
    {D3DFMT_R32F, layout("r", 32), eVT_SignedFloat, false},
    {D3DFMT_G32R32F, layout("gr", 32, 32), eVT_SignedFloat, false},
    {D3DFMT_A32B32G32R32F, layout("abgr", 32, 32, 32, 32), eVT_SignedFloat, false},
    {fourCC("DXT1"), ePF_DXT1, eVT_UnsignedByteNorm, false},
    {fourCC("DXT2"), ePF_DXT2, eVT_UnsignedByteNorm, true},
    {fourCC("DXT3"), ePF_DXT3, eVT_UnsignedByteNorm, false},
    {fourCC("DXT4"), ePF_DXT4, eVT_UnsignedByteNorm, true},
    {fourCC("DXT5"), ePF_DXT5, eVT_UnsignedByteNorm, false},
    {fourCC("TSL2"), ePF_TesselI_2bpp_RGBA, eVT_UnsignedByteNorm, false},
    {fourCC("TSL4"), ePF_TesselI_4bpp_RGBA, eVT_UnsignedByteNorm, false},
    {fourCC("UYVY"), ePF_UYVY, eVT_UnsignedByteNorm, false},
    {fourCC("YUY2"), ePF_YUY2, eVT_UnsignedByteNorm, false},
    {fourCC("RGBG"), ePF_RGBG8888, eVT_UnsignedByteNorm, false},
    {fourCC("GRGB"), ePF_GRGB8888, eVT_UnsignedByteNorm, false},
};
} // namespace zortexture
