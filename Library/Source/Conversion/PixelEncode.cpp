// Converting a pixel of one layout into another.

#include <cstring>
#include <initializer_list>

#include "GreyRule.h"
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
	const SGreyRule rule = greyRuleOf(HasChannel(eCh_Luminance), HasChannel(eCh_Intensity), source.HasChannel(eCh_Luminance),
	                                  source.HasChannel(eCh_Intensity));
	float value = 0.0f;
	switch (rule.source)
	{
	case eGreyNone:
		return;
	case eGreyChannel:
		value = values.grey = source.GetChannelFloat(rule.channel);
		break;
	case eGreyWeighted:
		value = luminanceOf(source.GetChannelFloat(eCh_Red), source.GetChannelFloat(eCh_Green), source.GetChannelFloat(eCh_Blue));
		break;
	case eGreyMean:
	{
		unsigned int count = 0;
		for (const EChannelName channel : {eCh_Red, eCh_Green, eCh_Blue})
		{
			count += source.HasChannel(channel) ? 1 : 0;
		}
		value = meanOf(source.GetChannelFloat(eCh_Red), source.GetChannelFloat(eCh_Green), source.GetChannelFloat(eCh_Blue), count);
		break;
	}
	}
	(rule.isLuminance ? values.luminance : values.intensity) = value;
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
