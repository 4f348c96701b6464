/// @file TesselLanes.h
/// Upscaling between block centres in vectors, as the decoder and the fast compressors share it. For `*.simd.cpp` sources.
#pragma once

#include "Simd/Lanes.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
/// Pixels of a register of 16-bit channels.
constexpr unsigned kTesselPixels = I16::kCount / 4;

/// The same four channels for all pixels of a register.
ZORT_INLINE I16 repeatedColour(const std::int16_t* channels)
{
	std::uint64_t four;
	std::memcpy(&four, channels, sizeof(four));
	return as<std::int16_t>(U64::filled(four));
}

/// The colours of the halves of blocks that a run of pixels lies in: `line` holds four channels for each column, the run begins with the
/// left half of the first, or, what is the same, with the right half of the block before it. For register r of the run.
template<unsigned kWidth>
ZORT_INLINE I16 coloursOfHalves(const std::int16_t* line, unsigned r)
{
	constexpr unsigned kHalf = kWidth / 2;
#if defined(__AVX2__)
	if constexpr (kTesselPixels > kHalf)
	{
		return as<std::int16_t>(shuffle<0, 0, 1, 1>(Lanes<std::uint64_t, 2>::load(line + 4 * r)));
	}
#endif
	return repeatedColour(line + 4 * (r * kTesselPixels / kWidth + (r * kTesselPixels % kWidth >= kHalf ? 1 : 0)));
}

/// Channels as numbers of 16 bits.
ZORT_INLINE void storeWide(U8 channels, std::int16_t* line)
{
	constexpr unsigned kHalf = U8::kCount / 2;
	convert<std::int16_t>(lower(channels)).store(line);
	convert<std::int16_t>(upper(channels)).store(line + kHalf);
}

/// Channels of two registers as bytes, those of the first before those of the second.
ZORT_INLINE U8 packedPixels(I16 first, I16 second)
{
	const U8 bytes = packUnsigned(first, second);
#if defined(__AVX2__)
	return as<std::uint8_t>(shuffle<0, 2, 1, 3>(as<std::uint64_t>(bytes)));
#else
	return bytes;
#endif
}

/// Whole pixels, one for every 32 bits: red and blue in the two halves of a lane of one register, green and alpha in another. So the two
/// sums of products of a pixel stand in its own lane.
struct ColourPairs
{
	I16 redBlue;
	I16 greenAlpha;
};

ZORT_INLINE ColourPairs colourPairs(U8 pixels)
{
	return {as<std::int16_t>(as<std::uint16_t>(pixels) & U16::filled(0x00FF)), as<std::int16_t>(as<std::uint16_t>(pixels) >> 8)};
}

ZORT_INLINE I32 squaredDistances(ColourPairs a, ColourPairs b)
{
	const I16 redBlue = a.redBlue - b.redBlue;
	const I16 greenAlpha = a.greenAlpha - b.greenAlpha;
	return sumsOfProducts(redBlue, redBlue) + sumsOfProducts(greenAlpha, greenAlpha);
}
} // namespace ZORT_LANES_NAMESPACE
} // namespace zortexture
