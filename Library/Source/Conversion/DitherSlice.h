/// @file DitherSlice.h
/// Error diffusion within one slice.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// Reduces each channel of 8-bit pixels to its top `depths[channel]` bits, repeated downward. Half of the error goes to the right, a
/// quarter below and a quarter below right. Columns are walked outermost, which decides which neighbours have received error already.
/// Depths of 0 and of 8 and above leave a channel as it is.
/// @param depths   of the four channels
/// @param carried  four numbers for each column, of any content
template<ESimdLevel level>
void ditherSlice(unsigned char* pixels, const unsigned char* depths, std::size_t width, std::size_t height, std::int16_t* carried);

template<>
void ditherSlice<eSimdPlain>(unsigned char* pixels, const unsigned char* depths, std::size_t width, std::size_t height,
                             std::int16_t* carried);
} // namespace zortexture
