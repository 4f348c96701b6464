#include "Transcode.h"

#include <utility>

#include "Channels.h"
#include "CodecDispatch.h"
#include "Processing/ElementDispatch.h"
#include "TextureSize.h"

namespace zortexture
{
namespace
{
/// Targets of at least this many bits per pixel are not dithered.
constexpr unsigned int kUnditheredBits = 32;

/// The channel that a grey target holds; eCh_None for others.
EChannelName greyChannelOf(PixelType target)
{
	if (target.isCompressed())
	{
		return target.id == ePF_BW1bpp ? eCh_Intensity : eCh_None;
	}
	EChannelName grey = eCh_None;
	for (const unsigned char letter : target.channelName)
	{
		const EChannelName channel = MapCharToEnum(letter);
		if (channel == eCh_Intensity || (channel == eCh_Luminance && grey == eCh_None))
		{
			grey = channel;
		}
	}
	return grey;
}

/// Whether a texture of this shape in a format is within the size that a texture can have.
bool isStorable(const CZORTextureHeader& shape, PixelType format)
{
	ZORTextureHeaderV3 header = shape.getFileHeader();
	header.pixelFormat = format.id;
	return isDataSizeExact(header);
}

/// TranscodeTrivial reads its source alone, although it asks for more.
CZORTexture& toBeRead(const CZORTexture& source)
{
	return const_cast<CZORTexture&>(source); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

/// An 8-bit copy of a texture in its own colour space, dithered to the depths of a target.
CZORTexture makeDitheredCopy(const CZORTexture& texture, CPixelEncoder& sourceEncoder, CPixelEncoder& encoder8, PixelType target)
{
	CZORTextureHeader header(texture.getHeader());
	header.setPixelFormat(ZORStandard8PixelType);
	header.setChannelType(eVT_UnsignedByteNorm);
	CZORTexture copy(header);
	TranscodeTrivial(toBeRead(texture), copy, sourceEncoder, encoder8, header.getColourSpace(), header.getColourSpace());

	EChannelName grey = greyChannelOf(target);
	const PixelType bumpWithLuminance('l', 'g', 'r', 0, 6, 5, 5, 0); // its luminance stands beside two colours
	if (grey != eCh_None && target.id != bumpWithLuminance.id)
	{
		EChannelName colours[] = {eCh_Red, eCh_Green, eCh_Blue};
		EChannelName greys[] = {grey, grey, grey};
		CopyChannels(copy, copy, 3, colours, greys);
	}
	forEachImage(copy,
	             [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
	             {
		             Dither(static_cast<unsigned char*>(copy.getDataPtr(mipLevel, arrayMember, face)), target, copy.getWidth(mipLevel),
		                    copy.getHeight(mipLevel), copy.getDepth(mipLevel));
	             });
	return copy;
}
} // namespace

bool Transcode(CZORTexture& texture, PixelType target, EZORTVariableType channelType, EZORTColourSpace colourSpace,
               ECompressorQuality quality, bool dither)
{
	return TranscodeInto(texture, texture, target, channelType, colourSpace, quality, dither);
}

bool TranscodeInto(const CZORTexture& source, CZORTexture& result, PixelType target, EZORTVariableType channelType,
                   EZORTColourSpace colourSpace, ECompressorQuality quality, bool dither)
{
	if (target.id == ePF_NumCompressedPFs || source.getDataSize(-1, true, true) == 0 || !source.isDataComplete())
	{
		return false;
	}

	// The form that pixels are converted to: the target itself, or what its codec takes.
	PixelType workingType = target;
	EZORTVariableType workingChannelType = channelType;
	if (target.isCompressed())
	{
		IntermediateTranscodeFormat(target, channelType, workingType, workingChannelType);
	}

	// Every form on the way must be storable, before any of them replaces the result.
	const bool isDithered = dither && ZORTGetBitsPerPixel(target.id) < kUnditheredBits;
	if (source.getPixelType().isCompressed())
	{
		PixelType decodedType;
		EZORTVariableType decodedChannelType = eVT_UnsignedByteNorm;
		IntermediateTranscodeFormat(source.getPixelType(), source.getChannelType(), decodedType, decodedChannelType);
		if (!isStorable(source, decodedType))
		{
			return false;
		}
	}
	if ((isDithered && !isStorable(source, ZORStandard8PixelType)) || !isStorable(source, workingType) || !isStorable(source, target))
	{
		return false;
	}

	// The latest form: the source itself, until there is one in `result`.
	const CZORTexture* form = &source;
	const auto takeForm = [&]
	{
		if (form != &result)
		{
			result = *form;
			form = &result;
		}
	};
	bool isWhole = true;
	if (source.getPixelType().isCompressed())
	{
		const unsigned int bytesDecoded = decodeTexture(source, result); // the sizes it could refuse have been looked at
		form = &result;
		isWhole = result.getDataSize(-1, true, true) == bytesDecoded;
	}
	CPixelEncoder sourceEncoder(form->getPixelType(), form->getChannelType());

	if (isDithered)
	{
		CPixelEncoder encoder8(ZORStandard8PixelType, eVT_UnsignedByteNorm);
		result = makeDitheredCopy(*form, sourceEncoder, encoder8, target);
		form = &result;
		sourceEncoder = encoder8;
	}

	const EZORTColourSpace sourceSpace = form->getColourSpace();
	if (form->getChannelType() == channelType && sourceSpace == colourSpace && form->getPixelType().id == target.id)
	{
		takeForm();
		return isWhole; // already there
	}

	// Bytes that are the working form already are compressed where they lie: large textures cost a copy less.
	const bool isWorkingForm = target.isCompressed() && form->getPixelType().id == workingType.id && sourceSpace == colourSpace &&
	                           form->getChannelType() == eVT_UnsignedByteNorm && workingChannelType == eVT_UnsignedByteNorm;
	if (isWorkingForm)
	{
		takeForm();
	}
	else
	{
		CZORTextureHeader header(form->getHeader());
		header.setPixelFormat(workingType);
		header.setChannelType(workingChannelType);
		header.setColourSpace(colourSpace);
		CZORTexture converted(header);
		CPixelEncoder targetEncoder(workingType, workingChannelType);
		TranscodeTrivial(toBeRead(*form), converted, sourceEncoder, targetEncoder, colourSpace, sourceSpace);
		result = std::move(converted);
	}

	if (target.isCompressed())
	{
		const unsigned int bytesEncoded = CompressNonTrivial(result, target, quality);
		isWhole = isWhole && result.getDataSize(-1, true, true) == bytesEncoded;
	}
	return isWhole;
}
} // namespace zortexture
