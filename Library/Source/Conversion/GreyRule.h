/// @file GreyRule.h
/// Where grey comes from: the luminance and intensity of a destination, and the colours that its source lacks.
#pragma once

#include "PixelType.h"

namespace zortexture
{
enum EGreySource
{
	eGreyNone,     ///< nothing: all grey values are 0
	eGreyChannel,  ///< one channel of the source
	eGreyWeighted, ///< the colours by their luminance
	eGreyMean      ///< the mean of the colours that there are
};

struct SGreyRule
{
	EGreySource source = eGreyNone;
	EChannelName channel = eCh_None; ///< of eGreyChannel, which feeds missing colours too
	bool isLuminance = false;        ///< feeds the destination's luminance; otherwise its intensity. The other one of the two is 0.
};

/// @param toLuminance  the destination has luminance; and so on.
inline SGreyRule greyRuleOf(bool toLuminance, bool toIntensity, bool fromLuminance, bool fromIntensity)
{
	// A grey source feeds one of luminance and intensity, and the missing colours with it; the other stays 0.
	if (toLuminance && fromLuminance)
	{
		return {eGreyChannel, eCh_Luminance, true};
	}
	if (toIntensity && (fromIntensity || fromLuminance))
	{
		return {eGreyChannel, fromIntensity ? eCh_Intensity : eCh_Luminance, false};
	}
	if (fromIntensity)
	{
		return {eGreyChannel, eCh_Intensity, true};
	}
	if (fromLuminance)
	{
		return {eGreyChannel, eCh_Luminance, false};
	}
	if (toLuminance)
	{
		return {eGreyWeighted, eCh_None, true};
	}
	return toIntensity ? SGreyRule{eGreyMean, eCh_None, false} : SGreyRule{};
}

inline constexpr float kRedWeight = 0.2126f;
inline constexpr float kGreenWeight = 0.7152f;
inline constexpr float kBlueWeight = 0.0722f;

/// The luminance of three colours, 0 for one that is not there; the weights of the others stay as they are. One function for all callers,
/// never inlined, so that even the sum of two NaNs comes out the same everywhere.
float luminanceOf(float red, float green, float blue);

/// The mean of `count` colours; those that are not there are 0 and not counted. 0 for none.
float meanOf(float red, float green, float blue, unsigned int count);
} // namespace zortexture
