/// @file ByteChannels.h
/// Work on the channels of pixels of four bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// What each of the four bytes of a pixel becomes.
struct ByteMoves
{
	enum : std::uint8_t
	{
		eZero = 4, ///< besides the numbers 0 to 3 of the source's bytes
		eKept = 5,
	};

	std::uint8_t from[4] = {eKept, eKept, eKept, eKept};
};

/// Moves bytes from each pixel of `source` to that of `destination`, which may be the same memory. For the vector units alone: the plain
/// form is CopyChannels' own walk.
template<ESimdLevel level>
void moveBytes(const unsigned char* source, unsigned char* destination, std::size_t numPixels, const ByteMoves& moves);

/// Multiplies bytes 0 to 2 by byte 3 as a share of 255, and truncates.
template<ESimdLevel level>
void preMultiplyBytes(unsigned char* pixels, std::size_t numPixels);
} // namespace zortexture
