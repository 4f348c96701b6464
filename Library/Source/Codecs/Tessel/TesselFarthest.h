/// @file TesselFarthest.h
/// The two pixels of a window that lie farthest apart.
#pragma once

#include "Pixel.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
/// The most pixels of a window: two by two blocks at 2bpp.
constexpr unsigned kMostTesselWindowPixels = 128;

/// Among all pairs i < j of `count` pixels the one of the greatest squared distance over four channels, the first of equals by i,
/// then by j; both 0 when all pixels are equal.
/// @param pixels  room for count rounded up to a multiple of 8; what follows the last pixel is overwritten.
/// @param count   1 to kMostTesselWindowPixels.
template<ESimdLevel level>
void findFarthestTesselPixels(Pixel<unsigned char>* pixels, unsigned count, unsigned& first, unsigned& second);
} // namespace zortexture
