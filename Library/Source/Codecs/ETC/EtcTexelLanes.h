/// @file EtcTexelLanes.h
/// What the vector searches share. Included by sources named `*.simd.cpp` only.
#pragma once

#include "Codecs/ETC/EtcFastKernels.h"
#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
using Quad = Lanes<std::int32_t, 4>;
/// Eight lanes of 32 bits take one register or two.
constexpr unsigned int kParts = 32 / kLanesBytes;

/// The modifiers by table and column.
constexpr int kModifiers[8][4] = {{-8, -2, 2, 8},     {-17, -5, 5, 17},   {-29, -9, 9, 29},     {-42, -13, 13, 42},
                                  {-60, -18, 18, 60}, {-80, -24, 24, 80}, {-106, -33, 33, 106}, {-183, -47, 47, 183}};
/// Integer weights of the squares of the channels. The perceptual ones are small enough for 16-bit products: nearly 0.299, 0.587 and 0.114
/// (see reachOfSum).
template<EtcMeasure measure>
struct Weights
{
	static constexpr int kRed = measure == EtcMeasure::Plain ? 1 : 55;
	static constexpr int kGreen = measure == EtcMeasure::Plain ? 1 : 108;
	static constexpr int kBlue = measure == EtcMeasure::Plain ? 1 : 21;

	/// Pairs times their weights.
	template<unsigned int N>
	ZORT_INLINE static Lanes<std::int16_t, N> redGreen(Lanes<std::int16_t, N> pairs)
	{
		return measure == EtcMeasure::Plain ? pairs : pairs * as<std::int16_t>(Lanes<std::int32_t, N / 2>::filled(pairOf(kRed, kGreen)));
	}
	template<unsigned int N>
	ZORT_INLINE static Lanes<std::int16_t, N> blue(Lanes<std::int16_t, N> pairs)
	{
		return measure == EtcMeasure::Plain ? pairs : pairs * Lanes<std::int16_t, N>::filled(kBlue);
	}
};

/// Colours in lanes, ready to be compared with texels.
template<EtcMeasure measure>
struct ColourLanes
{
	I16 redGreen; ///< Times their weights.
	I16 blue;
	I32 square; ///< |c|^2, weighted.

	ZORT_INLINE static ColourLanes of(I16 redGreen, I16 blue)
	{
		const I16 weightedRedGreen = Weights<measure>::redGreen(redGreen);
		const I16 weightedBlue = Weights<measure>::blue(blue);
		return {weightedRedGreen, weightedBlue, sumsOfProducts(weightedRedGreen, redGreen) + sumsOfProducts(weightedBlue, blue)};
	}

	/// |c|^2 - 2 t.c, of texels times -2.
	ZORT_INLINE I32 distance(I16 texelRedGreen, I16 texelBlue) const
	{
		return square + sumsOfProducts(texelRedGreen, redGreen) + sumsOfProducts(texelBlue, blue);
	}
};

/// Channels that stop at the ends of their range.
template<unsigned int N>
ZORT_INLINE Lanes<std::int16_t, N> limited(Lanes<std::int16_t, N> channels)
{
	using Channels = Lanes<std::int16_t, N>;
	return least(greatest(channels, Channels::filled(0)), Channels::filled(255));
}

ZORT_INLINE int limitedToByte(int value)
{
	return value < 0 ? 0 : (value > 255 ? 255 : value);
}

/// Adds the index bits of texels whose best columns are in the lanes: column 0 has index 3, 1 has 2, 2 has 0, 3 has 1.
ZORT_INLINE void indexBits(I32 columns, unsigned int part, unsigned int& highBits, unsigned int& lowBits)
{
	const unsigned int first = part * I32::kCount;
	highBits |= bitsOfMask(columns < I32::filled(2)) << first;
	lowBits |= bitsOfMask((columns == I32::filled(0)) | (columns == I32::filled(3))) << first;
}

/// The least of four lanes.
ZORT_INLINE int leastLane(Quad a)
{
	a = least(a, shuffle<2, 3, 0, 1>(a));
	a = least(a, shuffle<1, 0, 3, 2>(a));
	return a[0];
}

ZORT_INLINE int sumOfLanes(Quad a)
{
	a += shuffle<2, 3, 0, 1>(a);
	a += shuffle<1, 0, 3, 2>(a);
	return a[0];
}

ZORT_INLINE int sumOfLanes(Lanes<std::int32_t, 8> a)
{
	return sumOfLanes(lower(a) + upper(a));
}

/// Sums of the squares of differences, channel by channel, for the exact perceptual error. `N` pairs at once.
template<unsigned int N>
struct ChannelSquares
{
	using Sums = Lanes<std::int32_t, N>;
	using Pairs = Lanes<std::int16_t, N * 2>;

	Sums sums[3] = {Sums::filled(0), Sums::filled(0), Sums::filled(0)};

	ZORT_INLINE void add(Pairs redGreen, Pairs blue)
	{
		const Sums squares = as<std::int32_t>(as<std::uint16_t>(redGreen) * as<std::uint16_t>(redGreen)); // below 65536
		sums[0] += squares & Sums::filled(0xFFFF);
		sums[1] += as<std::int32_t>(as<std::uint32_t>(squares) >> 16);
		sums[2] += sumsOfProducts(blue, blue);
	}
	[[nodiscard]] ZORT_INLINE unsigned int perceptualError() const
	{
		return static_cast<unsigned int>(299 * sumOfLanes(sums[0]) + 587 * sumOfLanes(sums[1]) + 114 * sumOfLanes(sums[2]));
	}
};
} // namespace
} // namespace zortexture
