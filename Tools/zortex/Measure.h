/// @file Measure.h
/// How far a converted texture is from the one it was made of.
#ifndef ZORTEX_MEASURE_H
#define ZORTEX_MEASURE_H

#include <ZORTexLib.h>
#include <string>

namespace zortex
{
/// Mean squared errors on the scale of 0 to 255 that the customary figures use.
struct Measurement
{
	/// The letters of the channels that were compared; empty when nothing could be compared.
	std::string channels;
	/// In the order of `channels`.
	double channelErrors[4] = {};
	/// Over all channels.
	double error = 0.0;
};

/// Compares the top levels of two textures of one shape, over all array members and faces, in the colour space of the
/// second. Colour channels that the second one's format holds count, and alpha where both have it. No value is rounded to
/// 8 bits unless both have no more.
Measurement compareTextures(const zortexture::CZORTexture& original, const zortexture::CZORTexture& converted);

/// 10 log10(255 * 255 / error); infinite for an error of 0.
double customaryPSNR(double error);
} // namespace zortex

#endif // ZORTEX_MEASURE_H
