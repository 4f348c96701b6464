/// @file OpenGLFormatTable.h
/// The OpenGL names of formats, in both directions.
#pragma once

#include "FormatConstants.h"
#include "FormatRows.h"

namespace zortexture
{
struct OpenGLCompressedRow
{
	unsigned long long pixelFormat;
	unsigned int channelType; ///< EZORTVariableType, or a class of them
	unsigned int baseInternalFormat;
	unsigned int internalFormat;
	unsigned int internalFormatSRGB; ///< kNoConstant: the linear one serves
};

/// Formats without a row have no OpenGL name. The packed format ePF_R9G9B9E5 stands apart, in kOpenGLSharedExponent.
inline constexpr OpenGLCompressedRow kOpenGLCompressed[] = {
    {ePF_TesselI_2bpp_RGB, kAnyType, GL_RGB, GL_COMPRESSED_RGB_TESSEL_2BPP, GL_COMPRESSED_SRGB_TESSEL_2BPP},
    {ePF_TesselI_2bpp_RGBA, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_TESSEL_2BPP, GL_COMPRESSED_SRGB_ALPHA_TESSEL_2BPP},
    {ePF_TesselI_4bpp_RGB, kAnyType, GL_RGB, GL_COMPRESSED_RGB_TESSEL_4BPP, GL_COMPRESSED_SRGB_TESSEL_4BPP},
    {ePF_TesselI_4bpp_RGBA, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_TESSEL_4BPP, GL_COMPRESSED_SRGB_ALPHA_TESSEL_4BPP},
    {ePF_TesselII_2bpp, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_TESSEL_II_2BPP, GL_COMPRESSED_SRGB_ALPHA_TESSEL_II_2BPP},
    {ePF_TesselII_4bpp, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_TESSEL_II_4BPP, GL_COMPRESSED_SRGB_ALPHA_TESSEL_II_4BPP},
    {ePF_ETC1, kAnyType, GL_RGB, GL_ETC1_RGB8_OES, kNoConstant},
    {ePF_DXT1, kAnyType, GL_RGB, GL_COMPRESSED_RGB_S3TC_DXT1_EXT, kNoConstant},
    {ePF_DXT2, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, kNoConstant},
    {ePF_DXT3, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, kNoConstant},
    {ePF_DXT4, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, kNoConstant},
    {ePF_DXT5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, kNoConstant},
    {ePF_ETC2_RGB, kAnyType, GL_RGB, GL_COMPRESSED_RGB8_ETC2, GL_COMPRESSED_SRGB8_ETC2},
    {ePF_ETC2_RGBA, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA8_ETC2_EAC, GL_COMPRESSED_SRGB8_ALPHA8_ETC2_EAC},
    {ePF_ETC2_RGB_A1, kAnyType, GL_RGBA, GL_COMPRESSED_RGB8_PUNCHTHROUGH_ALPHA1_ETC2, GL_COMPRESSED_SRGB8_PUNCHTHROUGH_ALPHA1_ETC2},
    {ePF_EAC_R11, kAnySignedType, GL_RED, GL_COMPRESSED_SIGNED_R11_EAC, kNoConstant},
    {ePF_EAC_R11, kAnyUnsignedType, GL_RED, GL_COMPRESSED_R11_EAC, kNoConstant},
    {ePF_EAC_RG11, kAnySignedType, GL_RG, GL_COMPRESSED_SIGNED_RG11_EAC, kNoConstant},
    {ePF_EAC_RG11, kAnyUnsignedType, GL_RG, GL_COMPRESSED_RG11_EAC, kNoConstant},
    {ePF_ASTC_4x4, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_4x4_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_4x4_KHR},
    {ePF_ASTC_5x4, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_5x4_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_5x4_KHR},
    {ePF_ASTC_5x5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_5x5_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_5x5_KHR},
    {ePF_ASTC_6x5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_6x5_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_6x5_KHR},
    {ePF_ASTC_6x6, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_6x6_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_6x6_KHR},
    {ePF_ASTC_8x5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_8x5_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_8x5_KHR},
    {ePF_ASTC_8x6, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_8x6_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_8x6_KHR},
    {ePF_ASTC_8x8, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_8x8_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_8x8_KHR},
    {ePF_ASTC_10x5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_10x5_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x5_KHR},
    {ePF_ASTC_10x6, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_10x6_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x6_KHR},
    {ePF_ASTC_10x8, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_10x8_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x8_KHR},
    {ePF_ASTC_10x10, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_10x10_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_10x10_KHR},
    {ePF_ASTC_12x10, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_12x10_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_12x10_KHR},
    {ePF_ASTC_12x12, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_12x12_KHR, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_12x12_KHR},
    {ePF_ASTC_3x3x3, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_3x3x3_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_3x3x3_OES},
    {ePF_ASTC_4x3x3, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_4x3x3_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_4x3x3_OES},
    {ePF_ASTC_4x4x3, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_4x4x3_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_4x4x3_OES},
    {ePF_ASTC_4x4x4, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_4x4x4_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_4x4x4_OES},
    {ePF_ASTC_5x4x4, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_5x4x4_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_5x4x4_OES},
    {ePF_ASTC_5x5x4, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_5x5x4_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_5x5x4_OES},
    {ePF_ASTC_5x5x5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_5x5x5_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_5x5x5_OES},
    {ePF_ASTC_6x5x5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_6x5x5_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_6x5x5_OES},
    {ePF_ASTC_6x6x5, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_6x6x5_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_6x6x5_OES},
    {ePF_ASTC_6x6x6, kAnyType, GL_RGBA, GL_COMPRESSED_RGBA_ASTC_6x6x6_OES, GL_COMPRESSED_SRGB8_ALPHA8_ASTC_6x6x6_OES},
};

struct OpenGLUncompressedRow
{
	EZORTVariableType channelType;
	unsigned long long pixelFormat;
	unsigned int format; ///< also the base internal format
	unsigned int internalFormat;
	unsigned int internalFormatSRGB; ///< kNoConstant: the linear one serves
	unsigned int type;
	unsigned int typeSize; ///< bytes
};

/// The one packed format that has an OpenGL format and type. Its channel type is the one that it comes back with.
inline constexpr OpenGLUncompressedRow kOpenGLSharedExponent = {
    eVT_UnsignedFloat, ePF_R9G9B9E5, GL_RGB, GL_RGB9_E5, kNoConstant, GL_UNSIGNED_INT_5_9_9_9_REV, 4};

/// rgba 4.4.4.4 stands twice: with byte channels it keeps the byte type, which is what existing files hold.
inline constexpr OpenGLUncompressedRow kOpenGLUncompressed[] = {
    {eVT_UnsignedByteNorm, layout("a", 8), GL_ALPHA, GL_ALPHA8, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("l", 8), GL_LUMINANCE, GL_LUMINANCE8, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("r", 8), GL_RED, GL_R8, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("la", 8, 8), GL_LUMINANCE_ALPHA, GL_LUMINANCE8_ALPHA8, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("rg", 8, 8), GL_RG, GL_RG8, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("rgb", 3, 3, 2), GL_RGB, GL_R3_G3_B2, kNoConstant, GL_UNSIGNED_BYTE_3_3_2, 1},
    {eVT_UnsignedByteNorm, layout("rgb", 8, 8, 8), GL_RGB, GL_RGB8, GL_SRGB8, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("rgba", 4, 4, 4, 4), GL_RGBA, GL_RGBA4, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("bgra", 8, 8, 8, 8), GL_BGRA, GL_BGRA, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByteNorm, layout("rgba", 8, 8, 8, 8), GL_RGBA, GL_RGBA8, GL_SRGB8_ALPHA8, GL_UNSIGNED_BYTE, 1},
    {eVT_SignedByteNorm, layout("a", 8), GL_ALPHA, GL_ALPHA8_SNORM, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByteNorm, layout("l", 8), GL_LUMINANCE, GL_LUMINANCE8_SNORM, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByteNorm, layout("r", 8), GL_RED, GL_R8_SNORM, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByteNorm, layout("la", 8, 8), GL_LUMINANCE_ALPHA, GL_LUMINANCE8_ALPHA8_SNORM, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByteNorm, layout("rg", 8, 8), GL_RG, GL_RG8_SNORM, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByteNorm, layout("rgb", 8, 8, 8), GL_RGB, GL_RGB8_SNORM, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByteNorm, layout("rgba", 8, 8, 8, 8), GL_RGBA, GL_RGBA8_SNORM, kNoConstant, GL_BYTE, 1},
    {eVT_UnsignedByte, layout("r", 8), GL_RED_INTEGER, GL_R8UI, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByte, layout("rg", 8, 8), GL_RG_INTEGER, GL_RG8UI, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByte, layout("rgb", 8, 8, 8), GL_RGB_INTEGER, GL_RGB8UI, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_UnsignedByte, layout("rgba", 8, 8, 8, 8), GL_RGBA_INTEGER, GL_RGBA8UI, kNoConstant, GL_UNSIGNED_BYTE, 1},
    {eVT_SignedByte, layout("r", 8), GL_RED_INTEGER, GL_R8I, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByte, layout("rg", 8, 8), GL_RG_INTEGER, GL_RG8I, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByte, layout("rgb", 8, 8, 8), GL_RGB_INTEGER, GL_RGB8I, kNoConstant, GL_BYTE, 1},
    {eVT_SignedByte, layout("rgba", 8, 8, 8, 8), GL_RGBA_INTEGER, GL_RGBA8I, kNoConstant, GL_BYTE, 1},
    {eVT_UnsignedShortNorm, layout("a", 16), GL_ALPHA, GL_ALPHA16, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShortNorm, layout("l", 16), GL_LUMINANCE, GL_LUMINANCE16, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShortNorm, layout("r", 16), GL_RED, GL_R16, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShortNorm, layout("la", 16, 16), GL_LUMINANCE_ALPHA, GL_LUMINANCE16_ALPHA16, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShortNorm, layout("rg", 16, 16), GL_RG, GL_RG16, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShortNorm, layout("rgb", 5, 6, 5), GL_RGB, GL_RGB565, kNoConstant, GL_UNSIGNED_SHORT_5_6_5, 2},
    {eVT_UnsignedShortNorm, layout("rgb", 16, 16, 16), GL_RGB, GL_RGB16, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShortNorm, layout("rgba", 4, 4, 4, 4), GL_RGBA, GL_RGBA4, kNoConstant, GL_UNSIGNED_SHORT_4_4_4_4, 2},
    {eVT_UnsignedShortNorm, layout("rgba", 5, 5, 5, 1), GL_RGBA, GL_RGB5_A1, kNoConstant, GL_UNSIGNED_SHORT_5_5_5_1, 2},
    {eVT_UnsignedShortNorm, layout("rgba", 16, 16, 16, 16), GL_RGBA, GL_RGBA16, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_SignedShortNorm, layout("a", 16), GL_ALPHA, GL_ALPHA16_SNORM, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShortNorm, layout("l", 16), GL_LUMINANCE, GL_LUMINANCE16_SNORM, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShortNorm, layout("r", 16), GL_RED, GL_R16_SNORM, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShortNorm, layout("la", 16, 16), GL_LUMINANCE_ALPHA, GL_LUMINANCE16_ALPHA16_SNORM, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShortNorm, layout("rg", 16, 16), GL_RG, GL_RG16_SNORM, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShortNorm, layout("rgb", 16, 16, 16), GL_RGB, GL_RGB16_SNORM, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShortNorm, layout("rgba", 16, 16, 16, 16), GL_RGBA, GL_RGBA16_SNORM, kNoConstant, GL_SHORT, 2},
    {eVT_UnsignedShort, layout("r", 16), GL_RED_INTEGER, GL_R16UI, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShort, layout("rg", 16, 16), GL_RG_INTEGER, GL_RG16UI, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShort, layout("rgb", 16, 16, 16), GL_RGB_INTEGER, GL_RGB16UI, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_UnsignedShort, layout("rgba", 16, 16, 16, 16), GL_RGBA_INTEGER, GL_RGBA16UI, kNoConstant, GL_UNSIGNED_SHORT, 2},
    {eVT_SignedShort, layout("r", 16), GL_RED_INTEGER, GL_R16I, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShort, layout("rg", 16, 16), GL_RG_INTEGER, GL_RG16I, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShort, layout("rgb", 16, 16, 16), GL_RGB_INTEGER, GL_RGB16I, kNoConstant, GL_SHORT, 2},
    {eVT_SignedShort, layout("rgba", 16, 16, 16, 16), GL_RGBA_INTEGER, GL_RGBA16I, kNoConstant, GL_SHORT, 2},
    {eVT_UnsignedIntegerNorm, layout("xbgr", 2, 10, 10, 10), GL_RGB, GL_RGB10, kNoConstant, GL_UNSIGNED_INT_2_10_10_10_REV, 4},
    {eVT_UnsignedIntegerNorm, layout("abgr", 2, 10, 10, 10), GL_RGBA, GL_RGB10_A2, kNoConstant, GL_UNSIGNED_INT_2_10_10_10_REV, 4},
    {eVT_UnsignedInteger, layout("r", 32), GL_RED_INTEGER, GL_R32UI, kNoConstant, GL_UNSIGNED_INT, 4},
    {eVT_UnsignedInteger, layout("rg", 32, 32), GL_RG_INTEGER, GL_RG32UI, kNoConstant, GL_UNSIGNED_INT, 4},
    {eVT_UnsignedInteger, layout("rgb", 32, 32, 32), GL_RGB_INTEGER, GL_RGB32UI, kNoConstant, GL_UNSIGNED_INT, 4},
    {eVT_UnsignedInteger, layout("abgr", 2, 10, 10, 10), GL_RGBA_INTEGER, GL_RGB10_A2UI, kNoConstant, GL_UNSIGNED_INT_2_10_10_10_REV, 4},
    {eVT_UnsignedInteger, layout("rgba", 32, 32, 32, 32), GL_RGBA_INTEGER, GL_RGBA32UI, kNoConstant, GL_UNSIGNED_INT, 4},
    {eVT_SignedInteger, layout("r", 32), GL_RED_INTEGER, GL_R32I, kNoConstant, GL_INT, 4},
    {eVT_SignedInteger, layout("rg", 32, 32), GL_RG_INTEGER, GL_RG32I, kNoConstant, GL_INT, 4},
    {eVT_SignedInteger, layout("rgb", 32, 32, 32), GL_RGB_INTEGER, GL_RGB32I, kNoConstant, GL_INT, 4},
    {eVT_SignedInteger, layout("rgba", 32, 32, 32, 32), GL_RGBA_INTEGER, GL_RGBA32I, kNoConstant, GL_INT, 4},
    {eVT_SignedFloat, layout("a", 16), GL_ALPHA, GL_ALPHA16F_ARB, kNoConstant, GL_HALF_FLOAT, 2},
    {eVT_SignedFloat, layout("l", 16), GL_LUMINANCE, GL_LUMINANCE16F_ARB, kNoConstant, GL_HALF_FLOAT, 2},
    {eVT_SignedFloat, layout("r", 16), GL_RED, GL_R16F, kNoConstant, GL_HALF_FLOAT, 2},
    {eVT_SignedFloat, layout("la", 16, 16), GL_LUMINANCE_ALPHA, GL_LUMINANCE_ALPHA16F_ARB, kNoConstant, GL_HALF_FLOAT, 2},
    {eVT_SignedFloat, layout("rg", 16, 16), GL_RG, GL_RG16F, kNoConstant, GL_HALF_FLOAT, 2},
    {eVT_SignedFloat, layout("rgb", 16, 16, 16), GL_RGB, GL_RGB16F, kNoConstant, GL_HALF_FLOAT, 2},
    {eVT_SignedFloat, layout("rgba", 16, 16, 16, 16), GL_RGBA, GL_RGBA16F, kNoConstant, GL_HALF_FLOAT, 2},
    {eVT_SignedFloat, layout("a", 32), GL_ALPHA, GL_ALPHA32F_ARB, kNoConstant, GL_FLOAT, 4},
    {eVT_SignedFloat, layout("l", 32), GL_LUMINANCE, GL_LUMINANCE32F_ARB, kNoConstant, GL_FLOAT, 4},
    {eVT_SignedFloat, layout("r", 32), GL_RED, GL_R32F, kNoConstant, GL_FLOAT, 4},
    {eVT_SignedFloat, layout("la", 32, 32), GL_LUMINANCE_ALPHA, GL_LUMINANCE_ALPHA32F_ARB, kNoConstant, GL_FLOAT, 4},
    {eVT_SignedFloat, layout("rg", 32, 32), GL_RG, GL_RG32F, kNoConstant, GL_FLOAT, 4},
    {eVT_SignedFloat, layout("rgb", 32, 32, 32), GL_RGB, GL_RGB32F, kNoConstant, GL_FLOAT, 4},
    {eVT_SignedFloat, layout("rgba", 32, 32, 32, 32), GL_RGBA, GL_RGBA32F, kNoConstant, GL_FLOAT, 4},
    {eVT_UnsignedFloat, layout("bgr", 10, 11, 11), GL_RGB, GL_R11F_G11F_B10F, kNoConstant, GL_UNSIGNED_INT_10F_11F_11F_REV, 4},
};

/// Internal formats that come back as something else than the row they went out with.
inline constexpr ReverseRow kOpenGLReverseExceptions[] = {
    {GL_ALPHA16, layout("a", 16), eVT_UnsignedByteNorm, eCS_lRGB},
    {GL_LUMINANCE16, layout("l", 16), eVT_UnsignedByteNorm, eCS_lRGB},
    {GL_ALPHA16_SNORM, layout("a", 16), eVT_SignedByteNorm, eCS_lRGB},
    {GL_LUMINANCE16_SNORM, layout("l", 16), eVT_SignedByteNorm, eCS_lRGB},
    {GL_RGBA32UI, layout("rgba", 32, 32, 32, 32), eVT_SignedInteger, eCS_lRGB},
    {GL_RGBA32I, layout("rgba", 32, 32, 32, 32), eVT_UnsignedInteger, eCS_lRGB},
    {GL_RGB10, layout("rgbx", 10, 10, 10, 2), eVT_UnsignedIntegerNorm, eCS_lRGB},
    {GL_RGB10_A2UI, layout("rgba", 10, 10, 10, 2), eVT_UnsignedInteger, eCS_lRGB},
    {GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, ePF_DXT3, eVT_UnsignedByteNorm, eCS_lRGB},
    {GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, ePF_DXT5, eVT_UnsignedByteNorm, eCS_lRGB},
    {GL_LUMINANCE16_ALPHA16, kNoFormat, eVT_NumVarTypes, eCS_lRGB},
    {GL_LUMINANCE16_ALPHA16_SNORM, kNoFormat, eVT_NumVarTypes, eCS_lRGB},
    {GL_RGBA4, layout("rgba", 4, 4, 4, 4), eVT_UnsignedShortNorm, eCS_lRGB},
};

/// Unsized internal formats take their widths from the type.
struct OpenGLUnsizedFormat
{
	unsigned int internalFormat;
	const char* letters;
};
inline constexpr OpenGLUnsizedFormat kOpenGLUnsizedFormats[] = {
    {GL_RED, "r"}, {GL_ALPHA, "a"}, {GL_LUMINANCE, "l"}, {GL_RGB, "rgb"}, {GL_RGBA, "rgba"}, {GL_RG, "rg"}, {GL_LUMINANCE_ALPHA, "la"},
};

struct OpenGLUnsizedType
{
	unsigned int type;
	unsigned char width; ///< bits of each channel
	EZORTVariableType channelType;
};
inline constexpr OpenGLUnsizedType kOpenGLUnsizedTypes[] = {
    {GL_BYTE, 8, eVT_SignedByteNorm},    {GL_UNSIGNED_BYTE, 8, eVT_UnsignedByteNorm},
    {GL_SHORT, 16, eVT_SignedShortNorm}, {GL_UNSIGNED_SHORT, 16, eVT_UnsignedShortNorm},
    {GL_INT, 32, eVT_SignedIntegerNorm}, {GL_UNSIGNED_INT, 32, eVT_UnsignedIntegerNorm},
};

/// Unsized formats with a type that packs the whole pixel, or that take one type only.
struct OpenGLUnsizedPair
{
	unsigned int internalFormat;
	unsigned int type;
	unsigned long long pixelFormat;
	EZORTVariableType channelType;
};
inline constexpr OpenGLUnsizedPair kOpenGLUnsizedPairs[] = {
    {GL_RGB, GL_UNSIGNED_SHORT_5_6_5, layout("rgb", 5, 6, 5), eVT_UnsignedShortNorm},
    {GL_RGB, GL_UNSIGNED_BYTE_3_3_2, layout("rgb", 3, 3, 2), eVT_UnsignedByteNorm},
    {GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, layout("rgba", 4, 4, 4, 4), eVT_UnsignedShortNorm},
    {GL_RGBA, GL_UNSIGNED_SHORT_5_5_5_1, layout("rgba", 5, 5, 5, 1), eVT_UnsignedShortNorm},
    {GL_BGRA, GL_UNSIGNED_BYTE, layout("bgra", 8, 8, 8, 8), eVT_UnsignedByteNorm},
};
} // namespace zortexture
