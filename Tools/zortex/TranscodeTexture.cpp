#include "TranscodeTexture.h"

#include <utility>

namespace zortex
{
using namespace zortexture;

namespace
{
/// The number by which the DXT codec knows a format; 0 for formats that are none of its.
unsigned int dxtNumber(PixelType format)
{
	return format.isCompressed() && format.id >= ePF_DXT1 && format.id <= ePF_DXT5 ? static_cast<unsigned int>(format.id - ePF_DXT1 + 1)
	                                                                               : 0;
}

template<typename Function>
void forEachImage(const CZORTextureHeader& texture, Function function)
{
	for (unsigned int level = 0; level < texture.getNumMIPLevels(); ++level)
	{
		for (unsigned int member = 0; member < texture.getNumArrayMembers(); ++member)
		{
			for (unsigned int face = 0; face < texture.getNumFaces(); ++face)
			{
				function(level, member, face);
			}
		}
	}
}

/// Runs one direction of the DXT codec on every image of a texture into one of `format`, which may be the same object.
bool codeDXT(const CZORTexture& texture, CZORTexture& result, decltype(&DXTCompress) code, unsigned int number, PixelType format)
{
	CZORTextureHeader header(texture.getHeader());
	header.setPixelFormat(format);
	header.setChannelType(eVT_UnsignedByteNorm);
	CZORTexture coded(header);
	if (!texture.isDataComplete() || !coded.isDataComplete())
	{
		return false;
	}
	bool isWhole = true;
	forEachImage(texture,
	             [&](unsigned int level, unsigned int member, unsigned int face)
	             {
		             const unsigned int bytes = code(texture.getDataPtr(level, member, face), coded.getDataPtr(level, member, face),
		                                             texture.getWidth(level), texture.getHeight(level), number);
		             isWhole = isWhole && bytes == coded.getDataSize(static_cast<int>(level), false, false);
	             });
	result = std::move(coded);
	return isWhole;
}

/// The 8-bit form of a texture in its own colour space, with its error spread over the depths of `target`.
bool ditherTexture(CZORTexture& texture, PixelType target)
{
	if (!Transcode(texture, ZORStandard8PixelType, eVT_UnsignedByteNorm, texture.getColourSpace()))
	{
		return false;
	}
	forEachImage(texture,
	             [&](unsigned int level, unsigned int member, unsigned int face)
	             {
		             Dither(static_cast<unsigned char*>(texture.getDataPtr(level, member, face)), target, texture.getWidth(level),
		                    texture.getHeight(level), texture.getDepth(level));
	             });
	return true;
}
} // namespace

bool transcodeTexture(CZORTexture& texture, PixelType target, EZORTVariableType type, EZORTColourSpace space, int quality, bool dither)
{
	return transcodeInto(texture, texture, target, type, space, quality, dither);
}

bool transcodeInto(const CZORTexture& source, CZORTexture& result, PixelType target, EZORTVariableType type, EZORTColourSpace space,
                   int quality, bool dither)
{
	const unsigned int sourceNumber = dxtNumber(source.getPixelType());
	const unsigned int targetNumber = dxtNumber(target);
	if (sourceNumber == 0 && targetNumber == 0)
	{
		return TranscodeInto(source, result, target, type, space, static_cast<ECompressorQuality>(quality), dither);
	}
	if (sourceNumber == 0)
	{
		result = source;
	}
	else if (!codeDXT(source, result, DXTDecompress, sourceNumber, ZORStandard8PixelType))
	{
		return false;
	}
	if (targetNumber == 0)
	{
		return Transcode(result, target, type, space, static_cast<ECompressorQuality>(quality), dither);
	}
	// The stages of the pipeline before its encoder, and then ours.
	return (!dither || ditherTexture(result, target)) && Transcode(result, ZORStandard8PixelType, eVT_UnsignedByteNorm, space) &&
	       codeDXT(result, result, DXTCompress, targetNumber, target);
}
} // namespace zortex
