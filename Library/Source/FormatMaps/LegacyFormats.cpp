#include <algorithm>

#include "LegacyFormatTable.h"
#include "LegacyTexture.h"

void ZORTMapLegacyTextureEnumToNewFormat(ZORTPixelType legacy, unsigned long long& pixelType, EZORTColourSpace& colourSpace,
                                         EZORTVariableType& channelType, bool& preMultiplied)
{
	using namespace zortexture;
	const auto* row = std::find_if(std::begin(kLegacyRead), std::end(kLegacyRead),
	                               [&](const LegacyReadRow& candidate) { return candidate.number == legacy; });
	const bool found = row != std::end(kLegacyRead);
	pixelType = found ? row->pixelFormat : static_cast<unsigned long long>(ePF_NumCompressedPFs);
	channelType = found ? row->channelType : eVT_NumVarTypes;
	colourSpace = found ? row->colourSpace : eCS_lRGB;
	preMultiplied = found && row->preMultiplied;
}

namespace zortexture
{
namespace
{
unsigned int findNumber(std::span<const LegacyWriteRow> table, unsigned long long pixelFormat, EZORTVariableType channelType)
{
	for (const LegacyWriteRow& row : table)
	{
		if (row.pixelFormat == pixelFormat && rowServes(row.channelType, channelType, false))
		{
			return row.number;
		}
	}
	return eLegacyPixelType_None;
}

unsigned int findDXGINumber(unsigned long long pixelFormat, EZORTColourSpace colourSpace, EZORTVariableType channelType)
{
	const unsigned int number = findNumber(kLegacyWriteDXGI, pixelFormat, channelType);
	const bool isPaired = pixelFormat == ePF_DXT1 || pixelFormat == ePF_DXT3 || pixelFormat == ePF_DXT5;
	return isPaired && number != eLegacyPixelType_None && colourSpace != eCS_lRGB ? number + 1 : number;
}

unsigned int findOpenVGNumber(unsigned long long pixelFormat, EZORTColourSpace colourSpace, EZORTVariableType channelType,
                              bool preMultiplied)
{
	if (pixelFormat == ePF_BW1bpp)
	{
		return kLegacyOpenVGOneBit;
	}
	const LegacyAlpha alpha = preMultiplied ? eLegacyPremultiplied : eLegacyStraight;
	for (const LegacyOpenVGRow& row : kLegacyWriteOpenVG)
	{
		if (row.pixelFormat == pixelFormat && row.channelType == channelType && row.colourSpace == colourSpace &&
		    (row.alpha == eLegacyEither || row.alpha == alpha))
		{
			return row.number;
		}
	}
	return eLegacyPixelType_None;
}
} // namespace

void MapLegacyEnumToNewFormat(ZORTPixelType legacy, PixelType& pixelType, EZORTColourSpace& colourSpace, EZORTVariableType& channelType,
                              bool& preMultiplied)
{
	ZORTMapLegacyTextureEnumToNewFormat(legacy, pixelType.id, colourSpace, channelType, preMultiplied);
}

ZORTPixelType MapNewFormatToLegacyEnum(PixelType pixelType, EZORTColourSpace colourSpace, EZORTVariableType channelType, bool preMultiplied,
                                       ELegacyApi api)
{
	switch (api)
	{
	case eLegacyApi_GL1:
	case eLegacyApi_GL2:
	case eLegacyApi_GL3:
		return static_cast<ZORTPixelType>(findNumber(kLegacyWriteGL, pixelType.id, channelType));
	case eLegacyApi_D3D1:
	case eLegacyApi_D3D2:
		return static_cast<ZORTPixelType>(findNumber(kLegacyWriteD3D, pixelType.id, channelType));
	case eLegacyApi_DXGI:
		return static_cast<ZORTPixelType>(findDXGINumber(pixelType.id, colourSpace, channelType));
	case eLegacyApi_OpenVG:
		return static_cast<ZORTPixelType>(findOpenVGNumber(pixelType.id, colourSpace, channelType, preMultiplied));
	}
	return eLegacyPixelType_None;
}
} // namespace zortexture
