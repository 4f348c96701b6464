#include "ColourSpace.h"

#include <cmath>
#include <initializer_list>

namespace zortexture
{
float sRGBToLinear(float x)
{
	return x <= 0.03928f ? x / 12.92f : std::pow((x + 0.0556f) / 1.0556f, 2.4f);
}

float linearToSRGB(float x)
{
	return x <= 0.00304f ? 12.92f * x : 1.0556f * std::pow(x, 0.41666666f) - 0.0556f;
}
void CPixelEncoder::ConvertToColourSpace(EZORTColourSpace target, EZORTColourSpace source)
{
	if (!changesColourSpace(target, source) || m_variableType >= eVT_NumVarTypes)
	{
		return;
	}

	for (const EChannelName channel : {eCh_Red, eCh_Green, eCh_Blue, eCh_Luminance, eCh_Intensity})
	{
		if (!HasChannel(channel))
		{
			continue;
		}
		const float value = GetChannelFloat(channel);
		const float converted = target == eCS_lRGB ? sRGBToLinear(value) : linearToSRGB(value);
		// Unsigned floats too take halves and whole floats alone: the packed widths keep what they hold.
		if (m_variableType == eVT_UnsignedFloat)
		{
			SetChannelSFloat(channel, converted);
		}
		else
		{
			SetChannel(channel, converted);
		}
	}
}
} // namespace zortexture
