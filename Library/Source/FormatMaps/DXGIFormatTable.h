/// @file DXGIFormatTable.h
/// The DXGI_FORMAT numbers of formats, in both directions.
#pragma once

#include "FormatConstants.h"
#include "FormatRows.h"

namespace zortexture
{
/// Block formats have their numbers with 32-bit channel types only, which is what loaded files carry.
inline constexpr ForwardRow kDXGIFormats[] = {
    {ePF_BW1bpp, kAnyType, DXGI_FORMAT_R1_UNORM, kNoConstant},
    {ePF_RGBG8888, kAnyType, DXGI_FORMAT_R8G8_B8G8_UNORM, kNoConstant},
    {ePF_GRGB8888, kAnyType, DXGI_FORMAT_G8R8_G8B8_UNORM, kNoConstant},
    {ePF_BC4, eVT_SignedIntegerNorm, DXGI_FORMAT_BC4_SNORM, kNoConstant},
    {ePF_BC5, eVT_SignedIntegerNorm, DXGI_FORMAT_BC5_SNORM, kNoConstant},
    {ePF_DXT1, eVT_UnsignedIntegerNorm, DXGI_FORMAT_BC1_UNORM, DXGI_FORMAT_BC1_UNORM_SRGB},
    {ePF_DXT3, eVT_UnsignedIntegerNorm, DXGI_FORMAT_BC2_UNORM, DXGI_FORMAT_BC2_UNORM_SRGB},
    {ePF_DXT5, eVT_UnsignedIntegerNorm, DXGI_FORMAT_BC3_UNORM, DXGI_FORMAT_BC3_UNORM_SRGB},
    {ePF_BC4, eVT_UnsignedIntegerNorm, DXGI_FORMAT_BC4_UNORM, kNoConstant},
    {ePF_BC5, eVT_UnsignedIntegerNorm, DXGI_FORMAT_BC5_UNORM, kNoConstant},
    {layout("rgba", 8, 8, 8, 8), eVT_UnsignedByteNorm, DXGI_FORMAT_R8G8B8A8_UNORM, DXGI_FORMAT_R8G8B8A8_UNORM_SRGB},
    {layout("bgra", 8, 8, 8, 8), eVT_UnsignedByteNorm, DXGI_FORMAT_B8G8R8A8_UNORM, DXGI_FORMAT_B8G8R8A8_UNORM_SRGB},
    {layout("bgrx", 8, 8, 8, 8), eVT_UnsignedByteNorm, DXGI_FORMAT_B8G8R8X8_UNORM, DXGI_FORMAT_B8G8R8X8_UNORM_SRGB},
    {layout("a", 8), eVT_UnsignedByteNorm, DXGI_FORMAT_A8_UNORM, kNoConstant},
    {layout("r", 8), eVT_UnsignedByteNorm, DXGI_FORMAT_R8_UNORM, kNoConstant},
    {layout("rg", 8, 8), eVT_UnsignedByteNorm, DXGI_FORMAT_R8G8_UNORM, kNoConstant},
    {layout("r", 8), eVT_SignedByteNorm, DXGI_FORMAT_R8_SNORM, kNoConstant},
    {layout("rgba", 8, 8, 8, 8), eVT_SignedByteNorm, DXGI_FORMAT_R8G8B8A8_SNORM, kNoConstant},
    {layout("rg", 8, 8), eVT_SignedByteNorm, DXGI_FORMAT_R8G8_SNORM, kNoConstant},
    {layout("r", 8), eVT_UnsignedByte, DXGI_FORMAT_R8_UINT, kNoConstant},
    {layout("rgba", 8, 8, 8, 8), eVT_UnsignedByte, DXGI_FORMAT_R8G8B8A8_UINT, kNoConstant},
    {layout("rg", 8, 8), eVT_UnsignedByte, DXGI_FORMAT_R8G8_UINT, kNoConstant},
    {layout("r", 8), eVT_SignedByte, DXGI_FORMAT_R8_SINT, kNoConstant},
    {layout("rgba", 8, 8, 8, 8), eVT_SignedByte, DXGI_FORMAT_R8G8B8A8_SINT, kNoConstant},
    {layout("rg", 8, 8), eVT_SignedByte, DXGI_FORMAT_R8G8_SINT, kNoConstant},
    {layout("r", 16), eVT_UnsignedShortNorm, DXGI_FORMAT_R16_UNORM, kNoConstant},
    {layout("rg", 16, 16), eVT_UnsignedShortNorm, DXGI_FORMAT_R16G16_UNORM, kNoConstant},
    {layout("rgb", 5, 6, 5), eVT_UnsignedShortNorm, DXGI_FORMAT_B5G6R5_UNORM, kNoConstant},
    {layout("argb", 4, 4, 4, 4), eVT_UnsignedShortNorm, DXGI_FORMAT_B4G4R4A4_UNORM, kNoConstant},
    {layout("argb", 1, 5, 5, 5), eVT_UnsignedShortNorm, DXGI_FORMAT_B5G5R5A1_UNORM, kNoConstant},
    {layout("rgba", 16, 16, 16, 16), eVT_UnsignedShortNorm, DXGI_FORMAT_R16G16B16A16_UNORM, kNoConstant},
    {layout("r", 16), eVT_SignedShortNorm, DXGI_FORMAT_R16_SNORM, kNoConstant},
    {layout("rgba", 16, 16, 16, 16), eVT_SignedShortNorm, DXGI_FORMAT_R16G16B16A16_SNORM, kNoConstant},
    {layout("rg", 16, 16), eVT_SignedShortNorm, DXGI_FORMAT_R16G16_SNORM, kNoConstant},
    {layout("r", 16), eVT_UnsignedShort, DXGI_FORMAT_R16_UINT, kNoConstant},
    {layout("rgba", 16, 16, 16, 16), eVT_UnsignedShort, DXGI_FORMAT_R16G16B16A16_UINT, kNoConstant},
    {layout("rg", 16, 16), eVT_UnsignedShort, DXGI_FORMAT_R16G16_UINT, kNoConstant},
    {layout("r", 16), eVT_SignedShort, DXGI_FORMAT_R16_SINT, kNoConstant},
    {layout("rgba", 16, 16, 16, 16), eVT_SignedShort, DXGI_FORMAT_R16G16B16A16_SINT, kNoConstant},
    {layout("rg", 16, 16), eVT_SignedShort, DXGI_FORMAT_R16G16_SINT, kNoConstant},
    {layout("rgba", 10, 10, 10, 2), eVT_UnsignedIntegerNorm, DXGI_FORMAT_R10G10B10A2_UNORM, kNoConstant},
    {layout("r", 32), eVT_UnsignedInteger, DXGI_FORMAT_R32_UINT, kNoConstant},
    {layout("rg", 32, 32), eVT_UnsignedInteger, DXGI_FORMAT_R32G32_UINT, kNoConstant},
    {layout("rgba", 32, 32, 32, 32), eVT_UnsignedInteger, DXGI_FORMAT_R32G32B32A32_UINT, kNoConstant},
    {layout("rgba", 10, 10, 10, 2), eVT_UnsignedInteger, DXGI_FORMAT_R10G10B10A2_UINT, kNoConstant},
    {layout("rgb", 32, 32, 32), eVT_UnsignedInteger, DXGI_FORMAT_R32G32B32_UINT, kNoConstant},
    {layout("rgba", 32, 32, 32, 32), eVT_SignedInteger, DXGI_FORMAT_R32G32B32A32_SINT, kNoConstant},
    {layout("rgb", 32, 32, 32), eVT_SignedInteger, DXGI_FORMAT_R32G32B32_SINT, kNoConstant},
    {layout("r", 32), eVT_SignedInteger, DXGI_FORMAT_R32_SINT, kNoConstant},
    {layout("rg", 32, 32), eVT_SignedInteger, DXGI_FORMAT_R32G32_SINT, kNoConstant},
    {layout("rg", 16, 16), eVT_SignedFloat, DXGI_FORMAT_R16G16_FLOAT, kNoConstant},
    {layout("rg", 32, 32), eVT_SignedFloat, DXGI_FORMAT_R32G32_FLOAT, kNoConstant},
    {layout("r", 16), eVT_SignedFloat, DXGI_FORMAT_R16_FLOAT, kNoConstant},
    {layout("r", 32), eVT_SignedFloat, DXGI_FORMAT_R32_FLOAT, kNoConstant},
    {layout("bgr", 10, 11, 11), eVT_SignedFloat, DXGI_FORMAT_R11G11B10_FLOAT, kNoConstant},
    {layout("rgb", 32, 32, 32), eVT_SignedFloat, DXGI_FORMAT_R32G32B32_FLOAT, kNoConstant},
    {layout("rgba", 16, 16, 16, 16), eVT_SignedFloat, DXGI_FORMAT_R16G16B16A16_FLOAT, kNoConstant},
    {layout("rgba", 32, 32, 32, 32), eVT_SignedFloat, DXGI_FORMAT_R32G32B32A32_FLOAT, kNoConstant},
};

/// Numbers that come back as something else than the row they went out with, or that never went out. BC4 in sRGB and
/// the half-float BC6H as BC7 are what readers of these files have always been given.
inline constexpr ReverseRow kDXGIReverseExceptions[] = {
    {DXGI_FORMAT_A8_UNORM, layout("r", 8), eVT_UnsignedByteNorm, eCS_lRGB},
    {DXGI_FORMAT_R9G9B9E5_SHAREDEXP, ePF_R9G9B9E5, eVT_SignedFloat, eCS_lRGB},
    {DXGI_FORMAT_R11G11B10_FLOAT, layout("bgr", 10, 11, 11), eVT_UnsignedFloat, eCS_lRGB},
    {DXGI_FORMAT_BC4_UNORM, ePF_BC4, eVT_UnsignedIntegerNorm, eCS_sRGB},
    {DXGI_FORMAT_BC6H_SF16, ePF_BC7, eVT_SignedFloat, eCS_sRGB},
    {DXGI_FORMAT_BC7_UNORM, ePF_BC7, eVT_UnsignedIntegerNorm, eCS_lRGB},
    {DXGI_FORMAT_BC7_UNORM_SRGB, ePF_BC7, eVT_UnsignedIntegerNorm, eCS_sRGB},
    {DXGI_FORMAT_YUY2, ePF_YUY2, eVT_UnsignedIntegerNorm, eCS_lRGB},
    {DXGI_FORMAT_AI44, layout("ai", 4, 4), eVT_UnsignedByteNorm, eCS_lRGB},
    {DXGI_FORMAT_IA44, layout("ia", 4, 4), eVT_UnsignedByteNorm, eCS_lRGB},
};
} // namespace zortexture
