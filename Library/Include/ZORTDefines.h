/// @file ZORTDefines.h
/// The numbered vocabulary of the library: compressed formats, channel types, colour spaces, axes and
/// orientations, and the constants of the native container.
#ifndef ZORTDEFINES_H
#define ZORTDEFINES_H

#include "ZORTExport.h"

/// Compressed and packed pixel formats. The number stands in the low 32 bits of a pixel-type identifier
/// whose high 32 bits are zero.
enum EZORTPixelFormat : unsigned int
{
	ePF_TesselI_2bpp_RGB = 0,
	ePF_TesselI_2bpp_RGBA = 1,
	ePF_TesselI_4bpp_RGB = 2,
	ePF_TesselI_4bpp_RGBA = 3,
	ePF_TesselII_2bpp = 4,
	ePF_TesselII_4bpp = 5,
	ePF_ETC1 = 6,
	ePF_DXT1 = 7,
	ePF_DXT2 = 8,
	ePF_DXT3 = 9,
	ePF_DXT4 = 10,
	ePF_DXT5 = 11,
	ePF_BC4 = 12,
	ePF_BC5 = 13,
	ePF_BC6 = 14,
	ePF_BC7 = 15,
	ePF_UYVY = 16,
	ePF_YUY2 = 17,
	ePF_BW1bpp = 18,
	ePF_R9G9B9E5 = 19,
	ePF_RGBG8888 = 20,
	ePF_GRGB8888 = 21,
	ePF_ETC2_RGB = 22,
	ePF_ETC2_RGBA = 23,
	ePF_ETC2_RGB_A1 = 24,
	ePF_EAC_R11 = 25,
	ePF_EAC_RG11 = 26,
	ePF_ASTC_4x4 = 27,
	ePF_ASTC_5x4 = 28,
	ePF_ASTC_5x5 = 29,
	ePF_ASTC_6x5 = 30,
	ePF_ASTC_6x6 = 31,
	ePF_ASTC_8x5 = 32,
	ePF_ASTC_8x6 = 33,
	ePF_ASTC_8x8 = 34,
	ePF_ASTC_10x5 = 35,
	ePF_ASTC_10x6 = 36,
	ePF_ASTC_10x8 = 37,
	ePF_ASTC_10x10 = 38,
	ePF_ASTC_12x10 = 39,
	ePF_ASTC_12x12 = 40,
	ePF_ASTC_3x3x3 = 41,
	ePF_ASTC_4x3x3 = 42,
	ePF_ASTC_4x4x3 = 43,
	ePF_ASTC_4x4x4 = 44,
	ePF_ASTC_5x4x4 = 45,
	ePF_ASTC_5x5x4 = 46,
	ePF_ASTC_5x5x5 = 47,
	ePF_ASTC_6x5x5 = 48,
	ePF_ASTC_6x6x5 = 49,
	ePF_ASTC_6x6x6 = 50,
	/// The count of the formats above; also stands for "no format at all".
	ePF_NumCompressedPFs = 51
};

/// The meaning of a channel's bits. "Norm" types map the storage range to 0..1 (unsigned) or -1..1 (signed).
enum EZORTVariableType : unsigned int
{
	eVT_UnsignedByteNorm = 0,
	eVT_SignedByteNorm = 1,
	eVT_UnsignedByte = 2,
	eVT_SignedByte = 3,
	eVT_UnsignedShortNorm = 4,
	eVT_SignedShortNorm = 5,
	eVT_UnsignedShort = 6,
	eVT_SignedShort = 7,
	eVT_UnsignedIntegerNorm = 8,
	eVT_SignedIntegerNorm = 9,
	eVT_UnsignedInteger = 10,
	eVT_SignedInteger = 11,
	eVT_SignedFloat = 12,
	/// Floating point without a sign bit, as packed formats hold it.
	eVT_UnsignedFloat = 13,
	/// The count of the types above; also stands for "no type".
	eVT_NumVarTypes = 14
};

/// Colour space of the r, g, b, l and i channels. Every value but eCS_sRGB behaves as linear.
enum EZORTColourSpace : unsigned int
{
	eCS_lRGB = 0,
	eCS_sRGB = 1
};

enum EZORTAxis : unsigned int
{
	eAxis_X = 0,
	eAxis_Y = 1,
	eAxis_Z = 2
};

/// A set of three bits, one an axis; 0 is the other direction of the axis. A texture's orientation is the sum
/// of one value for each axis.
enum EZORTOrientation : unsigned int
{
	eOrient_Right = 0,
	eOrient_Left = 1,
	eOrient_Down = 0,
	eOrient_Up = 2,
	eOrient_In = 0,
	eOrient_Out = 4
};

/// First word of a version-3 native file, and the namespace of the library's own metadata: 'Z','O','R',3.
inline constexpr unsigned int kZORTextureMagic = 0x03524F5Au;

/// Bits of ZORTextureHeaderV3::flags.
inline constexpr unsigned int kHeaderFlagFileCompressed = 1u;
inline constexpr unsigned int kHeaderFlagPreMultiplied = 2u;

/// Metadata keys under kZORTextureMagic.
enum EZORTMetaDataKey : unsigned int
{
	kMetaKeyAtlas = 0,
	kMetaKeyBumpMap = 1,
	kMetaKeyCubeOrder = 2,
	kMetaKeyOrientation = 3,
	kMetaKeyBorder = 4,
	kMetaKeyPadding = 5
};

/// The 52-byte header of a version-3 native file, and the shape of every texture in memory. All fields are
/// little-endian in a file, without gaps; height stands ahead of width. The two words of `pixelFormat` are
/// packed so that the structure has the file's layout.
#pragma pack(push, 4)
struct ZORTextureHeaderV3
{
	unsigned int version;           ///< kZORTextureMagic
	unsigned int flags;             ///< kHeaderFlagFileCompressed, kHeaderFlagPreMultiplied
	unsigned long long pixelFormat; ///< a pixel-type identifier
	unsigned int colourSpace;       ///< EZORTColourSpace
	unsigned int channelType;       ///< EZORTVariableType
	unsigned int height;            ///< pixels
	unsigned int width;             ///< pixels
	unsigned int depth;             ///< pixels
	unsigned int numSurfaces;       ///< array members
	unsigned int numFaces;          ///< 1, or 6 for a cube map
	unsigned int numMipMaps;        ///< levels, the top one included
	unsigned int metaDataSize;      ///< sum of the blocks' sizes on disk, in bytes
};
#pragma pack(pop)
static_assert(sizeof(ZORTextureHeaderV3) == 52, "the header must have the layout of the file");

namespace zortexture
{
/// The family of format numbers that a legacy native file is written with.
enum ELegacyApi : unsigned int
{
	eLegacyApi_GL1 = 1,
	eLegacyApi_GL2 = 2,
	eLegacyApi_D3D1 = 3,
	eLegacyApi_GL3 = 4,
	eLegacyApi_D3D2 = 5,
	eLegacyApi_DXGI = 6,
	eLegacyApi_OpenVG = 7
};

namespace channel_type
{
/// True for the signed channel types (1, 3, 5, 7, 9, 11 and 12), false for every other value.
ZORT_API bool isSigned(const EZORTVariableType& channelType);
} // namespace channel_type

using channel_type::isSigned;
} // namespace zortexture

#endif // ZORTDEFINES_H
