// Converting a pixel of one layout into another.

#include <cstring>
#include <initializer_list>

#include "NormalisedInteger.h"
#include "PixelEncoder.h"

namespace zortexture
{
bool CPixelEncoder::HasChannel(EChannelName channel) const
{
	return PositionOf(channel) >= 0;
}

void CPixelEncoder::DeriveGrey(const CPixelEncoder& source, SGreyValues& values) const
{
	const bool toLuminance = HasChannel(eCh_Luminance);
	const bool toIntensity = HasChannel(eCh_Intensity);
	const bool fromLuminance = source.HasChannel(eCh_Luminance);
	const bool fromIntensity = source.HasChannel(eCh_Intensity);

	// A grey source feeds one of luminance and intensity, and the missing colours with it; the other stays 0.
	if (toLuminance && fromLuminance)
	{
		values.luminance = values.grey = source.GetChannelFloat(eCh_Luminance);
	}
	else if (toIntensity && (fromIntensity || fromLuminance))
	{
		values.intensity = values.grey = source.GetChannelFloat(fromIntensity ? eCh_Intensity : eCh_Luminance);
	}
	else if (fromIntensity)
	{
		values.luminance = values.grey = source.GetChannelFloat(eCh_Intensity);
	}
	else if (fromLuminance)
	{
		values.intensity = values.grey = source.GetChannelFloat(eCh_Luminance);
	}
	else if (toLuminance)
	{
		// Channels that the source lacks read as 0 here, and the weights of the others stay as they are.
		values.luminance = 0.2126f * source.GetChannelFloat(eCh_Red) + 0.7152f * source.GetChannelFloat(eCh_Green) +
		                   0.0722f * source.GetChannelFloat(eCh_Blue);
	}
	else if (toIntensity)
	{
		float sum = 0.0f;
		unsigned int count = 0;
		for (const EChannelName channel : {eCh_Red, eCh_Green, eCh_Blue})
		{
			if (source.HasChannel(channel))
			{
				sum += source.GetChannelFloat(channel);
				++count;
			}
		}
		values.intensity = count != 0 ? sum / static_cast<float>(count) : 0.0f;
	}
}

void CPixelEncoder::SetChannel(EChannelName channel, float value)
{
	if (m_variableType == eVT_SignedFloat)
	{
		SetChannelSFloat(channel, value);
	}
	else if (m_variableType == eVT_UnsignedFloat)
	{
		SetChannelUFloat(channel, value);
	}
	else if (isSigned(m_variableType))
	{
		SetChannelSNorm(channel, value);
	}
	else
	{
		SetChannelUNorm(channel, value);
	}
}

void CPixelEncoder::SetOpaque(EChannelName channel)
{
	if (isSigned(m_variableType) && m_variableType != eVT_SignedFloat)
	{
		// The exact ceiling: writing 1.0 would round it up in wide channels.
		const int position = PositionOf(channel);
		WriteInteger(position, signedCeiling(m_channelBits[position]));
	}
	else
	{
		SetChannel(channel, 1.0f);
	}
}

CPixelEncoder& CPixelEncoder::EncodeFrom(CPixelEncoder& source)
{
	if (m_error != 0 || source.m_error != 0)
	{
		return *this;
	}
	std::memset(m_colourData, 0, sizeof(m_colourData));
	if (m_variableType >= eVT_NumVarTypes)
	{
		return *this;
	}

	SGreyValues values;
	DeriveGrey(source, values);
	for (const EChannelName channel : {eCh_Red, eCh_Green, eCh_Blue, eCh_Alpha, eCh_Luminance, eCh_Intensity, eCh_Unused})
	{
		if (!HasChannel(channel))
		{
			continue;
		}
		switch (channel)
		{
		case eCh_Luminance:
			SetChannel(channel, values.luminance);
			break;
		case eCh_Intensity:
			SetChannel(channel, values.intensity);
			break;
		case eCh_Alpha:
		case eCh_Unused:
		{
			// Each stands in for the other.
			const EChannelName other = channel == eCh_Alpha ? eCh_Unused : eCh_Alpha;
			if (source.HasChannel(channel))
			{
				SetChannel(channel, source.GetChannelFloat(channel));
			}
			else if (source.HasChannel(other))
			{
				SetChannel(channel, source.GetChannelFloat(other));
			}
			else
			{
				SetOpaque(channel);
			}
			break;
		}
		default:
			SetChannel(channel, source.HasChannel(channel) ? source.GetChannelFloat(channel) : values.grey);
			break;
		}
	}
	return *this;
}
} // namespace zortexture
