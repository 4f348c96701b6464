#include "PixelLayout.h"

#include <algorithm>

#include "GreyRule.h"

namespace zortexture
{
namespace
{
bool isFloat(EZORTVariableType type)
{
	return type == eVT_SignedFloat || type == eVT_UnsignedFloat;
}

/// Fields as wide as this still hold the rounded ceiling of their channel: above 22 bits half a step is lost in a float.
constexpr unsigned int kExactBits = 22;
} // namespace

SPixelLayout::SPixelLayout(const CPixelEncoder& encoder) : type(encoder.m_variableType)
{
	if (encoder.m_error != 0 || type >= eVT_NumVarTypes || encoder.m_numChannels == 0)
	{
		return;
	}
	numChannels = encoder.m_numChannels;
	unsigned int total = 0;
	unsigned int numElements = 0;
	for (unsigned int i = 0; i < numChannels; ++i)
	{
		names[i] = encoder.m_channelNames[i];
		bits[i] = encoder.m_channelBits[i];
		total += bits[i];
		numElements += isFloat(type) ? bits[i] == 16 || bits[i] == 32 : bits[i] == encoder.m_typeBits;
	}
	bytes = total / 8;
	isElements = numElements == numChannels;
	if (isElements)
	{
		// Unsigned floats of 32 bits are no channels that hold anything.
		isOrdinary =
		    std::count(bits, bits + numChannels, bits[0]) == static_cast<int>(numChannels) && !(type == eVT_UnsignedFloat && bits[0] == 32);
	}
	else
	{
		const bool readsElements = !isFloat(type) && total / numChannels == encoder.m_typeBits;
		isOrdinary = numElements == 0 && !readsElements && total <= 64 && *std::max_element(bits, bits + numChannels) <= 32;
	}
	for (unsigned int i = 0; i < numChannels; ++i)
	{
		shifts[i] = isElements ? i * bits[0] : encoder.m_channelShifts[i];
	}
}

int SPixelLayout::positionOf(EChannelName channel) const
{
	const auto* const end = names + numChannels;
	const auto* const found = std::find(names, end, channel);
	return found == end ? -1 : static_cast<int>(found - names);
}

SChannelOrigin originOf(const SPixelLayout& source, const SPixelLayout& destination, unsigned int position)
{
	const auto has = [](const SPixelLayout& layout, EChannelName channel)
	{
		return layout.positionOf(channel) >= 0;
	};
	const auto from = [&](EChannelName channel)
	{
		return SChannelOrigin{eFromPosition, static_cast<unsigned int>(source.positionOf(channel))};
	};
	const SGreyRule grey = greyRuleOf(has(destination, eCh_Luminance), has(destination, eCh_Intensity), has(source, eCh_Luminance),
	                                  has(source, eCh_Intensity));
	const EChannelName channel = destination.names[position];
	switch (channel)
	{
	case eCh_Luminance:
	case eCh_Intensity:
		if (grey.source == eGreyNone || grey.isLuminance != (channel == eCh_Luminance))
		{
			return {eFromZero};
		}
		if (grey.source == eGreyChannel)
		{
			return from(grey.channel);
		}
		return {grey.source == eGreyWeighted ? eFromLuminance : eFromMean};
	case eCh_Alpha:
	case eCh_Unused:
	{
		const EChannelName other = channel == eCh_Alpha ? eCh_Unused : eCh_Alpha;
		if (has(source, channel))
		{
			return from(channel);
		}
		return has(source, other) ? from(other) : SChannelOrigin{eFromOpaque};
	}
	default:
		if (has(source, channel))
		{
			return from(channel);
		}
		return grey.source == eGreyChannel ? from(grey.channel) : SChannelOrigin{eFromZero};
	}
}

bool hasSeparateChannels(const SPixelLayout& source, const SPixelLayout& destination)
{
	if (destination.isElements)
	{
		return true;
	}
	if (*std::max_element(destination.bits, destination.bits + destination.numChannels) > kExactBits)
	{
		return false;
	}
	if (isFloat(destination.type))
	{
		return !isSigned(source.type);
	}
	return !isSigned(destination.type) || (!isSigned(source.type) && !isFloat(source.type));
}

bool isColour(const SPixelLayout& layout, unsigned int position)
{
	return layout.names[position] != eCh_Alpha && layout.names[position] != eCh_Unused;
}
} // namespace zortexture
