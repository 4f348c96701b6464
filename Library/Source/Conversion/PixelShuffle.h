/// @file PixelShuffle.h
/// Conversions that move whole bytes and change none.
#pragma once

#include <cstddef>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// What each byte of a destination's pixel is.
struct SPixelShuffle
{
	static constexpr unsigned int kMaxBytes = 8;
	static constexpr unsigned char kNoByte = 0x80;

	unsigned int sourceBytes;      ///< of a pixel; at most kMaxBytes
	unsigned int destinationBytes; ///< the same
	unsigned char from[kMaxBytes]; ///< the byte of the source's pixel, or kNoByte
	unsigned char fill[kMaxBytes]; ///< what stands there without one, else 0
};

/// Moves as many pixels from the first on as whole registers hold, and returns their number: the others, and at levels without an
/// instruction for it all of them, are the caller's. Bytes of the destination behind those pixels may be overwritten, but none behind its
/// end.
template<ESimdLevel level>
std::size_t shufflePixels(const SPixelShuffle& shuffle, const unsigned char* source, unsigned char* destination, std::size_t numPixels);
} // namespace zortexture
