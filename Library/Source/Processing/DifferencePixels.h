/// @file DifferencePixels.h
/// The pixels of the difference images, from normalised ones of four floats.
#pragma once

#include <cstddef>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// Grey for no difference, brighter up to a multiplied difference of 1; alpha grows darker. `pixels` has four floats for each.
template<ESimdLevel level>
void drawColours(const float* a, const float* b, std::size_t numPixels, float multiplier, float* pixels);

/// Black for pixels that differ by less than 1/255, blue below the tolerance, red from there on. `pixels` has four bytes for each, as
/// drawBlend's.
template<ESimdLevel level>
void drawTolerance(const float* a, const float* b, std::size_t numPixels, float tolerance, unsigned char* pixels);

/// A mixture, whose products with 255 are truncated and keep their low 8 bits.
template<ESimdLevel level>
void drawBlend(const float* a, const float* b, std::size_t numPixels, float shareOfA, unsigned char* pixels);
} // namespace zortexture
