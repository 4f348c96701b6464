#include <algorithm>
#include <cstddef>

#include "LegacyTexture.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kBlockHeadSize = 12;

/// Empties the table without releasing what it holds.
void emptyTable(MetaDataMap& metaData)
{
	metaData.keys.size = 0;
	metaData.values.size = 0;
	metaData.size = 0;
}

/// Adds one of the library's own blocks.
template<std::size_t N>
void addBlock(ZORTextureHeaderV3& header, MetaDataMap& metaData, unsigned int key, const unsigned char (&bytes)[N])
{
	MetaDataBlock block;
	block.fourCC = kZORTextureMagic;
	block.key = key;
	block.dataSize = N;
	block.data = new unsigned char[N];
	std::copy(bytes, bytes + N, block.data);
	metaData[kZORTextureMagic][key] = block;
	header.metaDataSize += kBlockHeadSize + static_cast<unsigned int>(N);
}

/// The fields that every kind of legacy header converts alike. `metaData` may be null.
void convertCommon(const ZORTextureHeaderV1& old, ZORTextureHeaderV3& header, MetaDataMap* metaData)
{
	const unsigned int word = old.pixelFormatAndFlags;
	bool preMultiplied = false;
	unsigned long long pixelFormat = 0;
	EZORTColourSpace colourSpace = eCS_lRGB;
	EZORTVariableType channelType = eVT_UnsignedByteNorm;
	ZORTMapLegacyTextureEnumToNewFormat(static_cast<ZORTPixelType>(word & 0xFF), pixelFormat, colourSpace, channelType, preMultiplied);

	header = {};
	header.version = kZORTextureMagic;
	header.flags = preMultiplied ? kHeaderFlagPreMultiplied : 0;
	header.pixelFormat = pixelFormat;
	header.colourSpace = colourSpace;
	header.channelType = channelType;
	header.height = old.height;
	header.width = old.width;
	header.depth = 1;
	header.numSurfaces = 1;
	header.numFaces = (word & kLegacyFlagCubeMap) != 0 ? 6 : 1;
	header.numMipMaps = old.mipMapCount + 1;

	if (metaData == nullptr)
	{
		return;
	}
	emptyTable(*metaData);
	if ((word & kLegacyFlagBumpMap) != 0)
	{
		constexpr unsigned char scaleOneOrderXYZ[] = {0x00, 0x00, 0x80, 0x3F, 'x', 'y', 'z', 0};
		addBlock(header, *metaData, kMetaKeyBumpMap, scaleOneOrderXYZ);
	}
	if ((word & kLegacyFlagVerticalFlip) != 0)
	{
		constexpr unsigned char yIsUp[] = {0, eOrient_Up, 0};
		addBlock(header, *metaData, kMetaKeyOrientation, yIsUp);
	}
}
} // namespace

void ConvertTextureHeader1To3(ZORTextureHeaderV1 old, ZORTextureHeaderV3& header, MetaDataMap& metaData)
{
	convertCommon(old, header, &metaData);
}

void ConvertTextureHeader2To3(ZORTextureHeaderV2 old, ZORTextureHeaderV3& header, MetaDataMap& metaData)
{
	convertCommon(old, header, &metaData);
	header.numSurfaces = header.numFaces > old.numSurfaces ? 1 : old.numSurfaces / header.numFaces;
}

ZORTextureHeaderV2 ConvertTextureHeader3To2(CZORTextureHeader header, ELegacyApi api)
{
	ZORTextureHeaderV2 old{};
	old.headerSize = sizeof(ZORTextureHeaderV2);
	old.height = header.getHeight();
	old.width = header.getWidth();
	old.mipMapCount = header.getNumMIPLevels() - 1;
	old.pixelFormatAndFlags =
	    MapNewFormatToLegacyEnum(header.getPixelType(), header.getColourSpace(), header.getChannelType(), header.isPreMultiplied(), api);
	old.textureDataSize = header.getDataSize();
	old.bitCount = header.getBitsPerPixel();
	old.magic = kLegacyMagic;
	old.numSurfaces = header.getNumFaces() * header.getNumArrayMembers();

	if (header.getNumMIPLevels() >= 2)
	{
		old.pixelFormatAndFlags |= kLegacyFlagMIPMaps;
	}
	const unsigned long long pixelFormat = header.getPixelType().id;
	if (pixelFormat == ePF_TesselI_2bpp_RGBA || pixelFormat == ePF_TesselI_4bpp_RGBA)
	{
		old.pixelFormatAndFlags |= kLegacyFlagAlpha;
		old.alphaMask = 1;
	}
	if (header.getNumFaces() >= 2)
	{
		old.pixelFormatAndFlags |= kLegacyFlagCubeMap;
	}
	if (header.isBumpMap())
	{
		old.pixelFormatAndFlags |= kLegacyFlagBumpMap;
	}
	if (header.getOrientation(eAxis_Y) == eOrient_Up)
	{
		old.pixelFormatAndFlags |= kLegacyFlagVerticalFlip;
	}
	return old;
}
} // namespace zortexture

void ZORTConvertOldTextureHeaderToV3(const ZOR_Texture_Header* old, ZORTextureHeaderV3& header, zortexture::MetaDataMap* metaData)
{
	zortexture::convertCommon(*old, header, metaData);
	if ((old->pixelFormatAndFlags & kLegacyFlagMIPMaps) == 0)
	{
		header.numMipMaps = 1;
	}
	if (old->headerSize == sizeof(ZOR_Texture_Header))
	{
		header.numSurfaces = old->numSurfaces / header.numFaces;
	}
}
