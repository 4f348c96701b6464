#include "Layouts.h"

#include <algorithm>

#include "FormatCapabilities.h"
#include "PngFile.h"

namespace zortex
{
using namespace zortexture;

PixelType makeLayout(const char* letters, unsigned char bits)
{
	PixelType layout;
	for (unsigned int i = 0; letters[i] != '\0'; ++i)
	{
		layout.channelName[i] = static_cast<unsigned char>(letters[i]);
		layout.channelBits[i] = bits;
	}
	return layout;
}

unsigned int channelCount(PixelType layout)
{
	return static_cast<unsigned int>(4 - std::count(layout.channelName, layout.channelName + 4, 0));
}

unsigned int widestChannel(PixelType layout)
{
	unsigned int widest = 0;
	for (unsigned int i = 0; i < 4; ++i)
	{
		widest = std::max<unsigned int>(widest, layout.channelBits[i]);
	}
	return widest;
}

bool hasEqualWidths(PixelType layout)
{
	for (unsigned int i = 1; i < 4; ++i)
	{
		if (layout.channelBits[i] != 0 && layout.channelBits[i] != layout.channelBits[0])
		{
			return false;
		}
	}
	return true;
}

unsigned int channelTypeBits(EZORTVariableType type)
{
	return type >= eVT_NumVarTypes ? 0 : type <= eVT_SignedByte ? 8 : type <= eVT_SignedShort ? 16 : 32;
}

bool isFloatType(EZORTVariableType type)
{
	return type == eVT_SignedFloat || type == eVT_UnsignedFloat;
}

std::string layoutProblem(PixelType layout, EZORTVariableType type)
{
	if (type >= eVT_NumVarTypes)
	{
		return "the channel type does not exist";
	}
	const unsigned int totalBits = ZORTGetBitsPerPixel(layout.id);
	if (totalBits % 8 != 0)
	{
		return "its channels add up to " + std::to_string(totalBits) + " bits, which is no multiple of 8";
	}
	if (totalBits > 128 || widestChannel(layout) > 32)
	{
		return "a channel has at most 32 bits";
	}
	if (CPixelEncoder(layout, type).GetError() != 0)
	{
		return "a channel stands twice, has no bits, or follows a gap";
	}

	if (type == eVT_SignedFloat)
	{
		const bool isWhole = hasEqualWidths(layout) && (layout.channelBits[0] == 16 || layout.channelBits[0] == 32);
		return isWhole ? "" : "float channels have 16 or 32 bits, all the same";
	}
	if (type == eVT_UnsignedFloat)
	{
		const bool isHalf = hasEqualWidths(layout) && layout.channelBits[0] == 16;
		bool isSmall = totalBits <= 64;
		for (unsigned int i = 0; i < channelCount(layout); ++i)
		{
			isSmall = isSmall && (layout.channelBits[i] == 10 || layout.channelBits[i] == 11);
		}
		return isHalf || isSmall ? "" : "unsigned float channels have 10 or 11 bits, or 16 in all channels";
	}

	// Channels of the type's width are elements of the pixel's memory, all others are bit fields of one integer. A layout
	// that mixes the two, or whose mean width looks like the other kind, overlaps in memory.
	const unsigned int typeBits = channelTypeBits(type);
	const bool isElements = hasEqualWidths(layout) && layout.channelBits[0] == typeBits;
	if (isElements)
	{
		return {};
	}
	for (unsigned int i = 0; i < 4; ++i)
	{
		if (layout.channelBits[i] == typeBits)
		{
			return "channels of " + std::to_string(typeBits) + " bits cannot be mixed with others in this channel type";
		}
	}
	if (totalBits / channelCount(layout) == typeBits || totalBits > 64)
	{
		return "its channels do not suit a " + std::to_string(typeBits) + "-bit channel type";
	}
	return {};
}

std::string imageChannels(PixelType format)
{
	if (format.isCompressed())
	{
		const CompressedFormat* row = findCompressedFormat(format);
		return row != nullptr ? std::string(row->channels) : std::string();
	}
	const auto has = [&format](unsigned char letter)
	{
		return std::find(format.channelName, format.channelName + 4, letter) != format.channelName + 4;
	};
	const bool isGrey = has('l') || has('i');
	std::string channels;
	for (const char letter : {'r', 'g', 'b'})
	{
		if (isGrey || has(static_cast<unsigned char>(letter)))
		{
			channels += letter;
		}
	}
	return has('a') ? channels + 'a' : channels;
}

void workingLayout(PixelType format, EZORTVariableType type, PixelType& layout, EZORTVariableType& layoutType)
{
	layout = format;
	layoutType = type;
	if (format.isCompressed())
	{
		IntermediateTranscodeFormat(format, type, layout, layoutType);
	}
}

void widenLayout(CZORTextureHeader& header, const std::string& channels)
{
	const PixelType format = header.getPixelType();
	if (!isPngLayout(format, header.getChannelType()))
	{
		return;
	}
	const bool isGrey = format.channelName[0] == 'l' && channels.find_first_of("rgb") == std::string::npos;
	const bool hasAlpha = imageChannels(format).find('a') != std::string::npos || channels.find('a') != std::string::npos;
	header.setPixelFormat(makeLayout(isGrey ? (hasAlpha ? "la" : "l") : (hasAlpha ? "rgba" : "rgb"), format.channelBits[0]));
}
} // namespace zortex
