/// @file TesselFloatColour.h
/// Colours in single precision, as the fits of the fast compressors take them.
#pragma once

#include <algorithm>

#include "Pixel.h"

namespace zortexture
{
struct FloatColour
{
	float channel[4];
};

inline FloatColour toFloat(const Pixel<unsigned char>& pixel)
{
	return {{static_cast<float>(pixel.r), static_cast<float>(pixel.g), static_cast<float>(pixel.b), static_cast<float>(pixel.a)}};
}

inline FloatColour unpackFloat(unsigned colour)
{
	return {{static_cast<float>(colour & 255), static_cast<float>((colour >> 8) & 255), static_cast<float>((colour >> 16) & 255),
	         static_cast<float>(colour >> 24)}};
}

/// Clamps to the 8-bit range and truncates.
inline unsigned packClamped(const FloatColour& colour)
{
	unsigned packed = 0;
	for (unsigned c = 0; c < 4; ++c)
	{
		packed |= static_cast<unsigned>(std::clamp(colour.channel[c], 0.0F, 255.0F)) << (8 * c);
	}
	return packed;
}
} // namespace zortexture
