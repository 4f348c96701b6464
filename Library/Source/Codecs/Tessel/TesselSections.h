/// @file TesselSections.h
/// The principal axes of several blocks side by side, for the compressor that takes every block by itself.
#pragma once

#include <cstddef>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// Blocks fitted by one call.
constexpr unsigned kTesselSections = 8;

/// Ends of the principal axes of blocks side by side, and the indices of their pixels along them as those of opaque blocks.
/// @param pixels  the first block's top left pixel, packed; `pitch` pixels from row to row.
/// @param count   1 to kTesselSections.
/// @param colourA, colourB, words  kTesselSections numbers each; those from `count` on mean nothing.
template<ESimdLevel level>
void fitTesselSections(const void* pixels, std::size_t pitch, unsigned count, unsigned* colourA, unsigned* colourB, unsigned* words);
} // namespace zortexture
