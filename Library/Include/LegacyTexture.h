/// @file LegacyTexture.h
/// Native files before version 3: their headers, their format numbers, and the conversions to and from version 3.
#ifndef ZORT_LEGACY_TEXTURE_H
#define ZORT_LEGACY_TEXTURE_H

#include "ZORTextureHeader.h"

/// A legacy format number, 0 to 181; files hold the low byte. The numbers have no names.
enum ZORTPixelType : unsigned int
{
	/// No number stands for the format.
	eLegacyPixelType_None = 0xFFFFFFFFu
};

/// Bits of ZORTextureHeaderV2::pixelFormatAndFlags above the format number.
inline constexpr unsigned int kLegacyFlagMIPMaps = 0x100u;
inline constexpr unsigned int kLegacyFlagBumpMap = 0x400u;
inline constexpr unsigned int kLegacyFlagCubeMap = 0x1000u;
inline constexpr unsigned int kLegacyFlagAlpha = 0x8000u;
inline constexpr unsigned int kLegacyFlagVerticalFlip = 0x10000u;

/// The 44-byte header of version 1. Version 2 adds two words; a file's first word tells which of them it is.
struct ZORTextureHeaderV1
{
	unsigned int headerSize;  ///< 44 or 52
	unsigned int height;      ///< pixels
	unsigned int width;       ///< pixels
	unsigned int mipMapCount; ///< levels below the top one
	unsigned int pixelFormatAndFlags;
	unsigned int textureDataSize; ///< bytes; not read
	unsigned int bitCount;        ///< bits per pixel; not read
	unsigned int redMask;         ///< 0; not read, like the other masks
	unsigned int greenMask;
	unsigned int blueMask;
	unsigned int alphaMask; ///< 1 for Tessel I formats with alpha
};

/// The 52-byte header of version 2.
struct ZORTextureHeaderV2 : ZORTextureHeaderV1
{
	unsigned int magic;       ///< kLegacyMagic; not tested
	unsigned int numSurfaces; ///< images a level, faces included
};
static_assert(sizeof(ZORTextureHeaderV1) == 44 && sizeof(ZORTextureHeaderV2) == 52, "the headers must have the layout of the file");

/// "ZOR!"
inline constexpr unsigned int kLegacyMagic = 0x21524F5Au;

/// The older name of the version-2 header.
using ZOR_Texture_Header = ZORTextureHeaderV2;

/// The format of a legacy number; ePF_NumCompressedPFs and eVT_NumVarTypes for a number that has none.
ZORT_API void ZORTMapLegacyTextureEnumToNewFormat(ZORTPixelType legacy, unsigned long long& pixelType, EZORTColourSpace& colourSpace,
                                                  EZORTVariableType& channelType, bool& preMultiplied);

/// Converts a legacy header. It trusts the header more than the loaders do: levels count only with their flag, and a count
/// of surfaces below the faces gives 0. `metaData` may be null, and is emptied first otherwise.
ZORT_API void ZORTConvertOldTextureHeaderToV3(const ZOR_Texture_Header* old, ZORTextureHeaderV3& header, zortexture::MetaDataMap* metaData);

namespace zortexture
{
/// The conversions of the loaders; the table is emptied first.
ZORT_API void ConvertTextureHeader1To3(ZORTextureHeaderV1 old, ZORTextureHeaderV3& header, MetaDataMap& metaData);
ZORT_API void ConvertTextureHeader2To3(ZORTextureHeaderV2 old, ZORTextureHeaderV3& header, MetaDataMap& metaData);

/// The version-2 header of a texture, with the number of one API family; its format word is 0xFFFFFFFF when there is none.
ZORT_API ZORTextureHeaderV2 ConvertTextureHeader3To2(CZORTextureHeader header, ELegacyApi api);

/// See ZORTMapLegacyTextureEnumToNewFormat.
ZORT_API void MapLegacyEnumToNewFormat(ZORTPixelType legacy, PixelType& pixelType, EZORTColourSpace& colourSpace,
                                       EZORTVariableType& channelType, bool& preMultiplied);

/// The number of a format in one API family; eLegacyPixelType_None when there is none.
ZORT_API ZORTPixelType MapNewFormatToLegacyEnum(PixelType pixelType, EZORTColourSpace colourSpace, EZORTVariableType channelType,
                                                bool preMultiplied, ELegacyApi api);
} // namespace zortexture

#endif // ZORT_LEGACY_TEXTURE_H
