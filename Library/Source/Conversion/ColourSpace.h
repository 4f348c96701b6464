/// @file ColourSpace.h
/// The curves between linear light and sRGB. The constants are near those of the published curve but the library's own; files made with
/// them depend on every digit.
#pragma once

#include "PixelEncoder.h"

namespace zortexture
{
/// Whether there is a curve between the two; values that name no colour space have none.
inline bool changesColourSpace(EZORTColourSpace target, EZORTColourSpace source)
{
	return (source == eCS_sRGB && target == eCS_lRGB) || (source == eCS_lRGB && target == eCS_sRGB);
}

float sRGBToLinear(float x);
float linearToSRGB(float x);
} // namespace zortexture
