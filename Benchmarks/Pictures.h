/// @file Pictures.h
/// The pictures that the benchmarks work on, and what they report.
#pragma once

#include <ZORTexLib.h>
#include <benchmark/benchmark.h>

namespace bench
{
/// A picture of smooth areas, edges and fine texture, the same at every call: compressors take their usual roads on it.
zortexture::CZORTexture makePicture(unsigned int width, unsigned int height);

/// The picture in any layout, in linear space.
zortexture::CZORTexture makePicture(unsigned int width, unsigned int height, zortexture::PixelType pixelType,
                                    EZORTVariableType channelType);

/// The sample photograph of 512 x 512 pixels, rgba8, or a square from its middle.
zortexture::CZORTexture photograph(unsigned int side = 512);

/// A picture with a cut-out alpha channel: half of its pixels are clear.
zortexture::CZORTexture makeCutOut(unsigned int width, unsigned int height);

/// Reports `pixels` for each iteration; the table shows them as megapixels per second of processor time.
/// @param goal  the speed to be reached, in multiples of the yardstick; 0 without one.
inline void countPixels(benchmark::State& state, unsigned long long pixels, double goal = 0)
{
	state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * pixels));
	if (goal > 0)
	{
		state.counters["goal"] = goal;
	}
}
} // namespace bench
