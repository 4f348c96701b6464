/// @file Pictures.h
/// The pictures that the benchmarks work on, and the counting of pixels.
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

/// Reports `pixels` for each iteration; the table shows them as megapixels per second.
inline void countPixels(benchmark::State& state, unsigned long long pixels)
{
	state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * pixels));
}
} // namespace bench
