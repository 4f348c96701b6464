/// @file EtcTexelLanes.h
/// The texels of a block for the vector searches. Included by sources named `*.simd.cpp` only.
///
/// An error |t - c|^2 is |t|^2 - 2 t.c + |c|^2. The first term is the same for all colours c, so that the searches compare the rest:
/// two sums of products a colour, of the pairs (R, G) and (B, 0) as 16-bit numbers in one lane of 32 bits.
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

/// Integer weights of the squares of the channels. The perceptual ones are small enough for 16-bit products, and stand to the true ones as
/// 183.94 to 184.22 does to 1: a sum of so weighted squares that is greater by more than 1/512 belongs to the greater error.
template<EtcMeasure measure>
struct Weights
{
	static constexpr int kRed = 1;
	static constexpr int kGreen = 1;
	static constexpr int kBlue = 1;

	/// The greatest sum that may still belong to an error as small as the one of sum `least`.
	ZORT_INLINE static int reach(int least)
	{
		return least;
	}
};
template<>
struct Weights<EtcMeasure::Perceptual>
{
	static constexpr int kRed = 55;
	static constexpr int kGreen = 108;
	static constexpr int kBlue = 21;

	ZORT_INLINE static int reach(int least)
	{
		return least + (least >> 9) + 1;
	}
};

constexpr int pairOf(int first, int second)
{
	return static_cast<int>(static_cast<unsigned int>(second) << 16 | (static_cast<unsigned int>(first) & 0xFFFF));
}

/// Texel (x, y) stands at x*4 + y, the order of the stored index bits.
struct TexelPairs
{
	alignas(32) std::int32_t redGreen[16];
	alignas(32) std::int32_t blue[16];
	/// The same times -2.
	alignas(32) std::int32_t redGreenFactor[16];
	alignas(32) std::int32_t blueFactor[16];
};

ZORT_INLINE void loadPairs(const unsigned char (&colours)[48], TexelPairs& texels)
{
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			const unsigned char* texel = colours + y * 12 + x * 3;
			texels.redGreen[x * 4 + y] = pairOf(texel[0], texel[1]);
			texels.blue[x * 4 + y] = texel[2];
		}
	}
	for (unsigned int i = 0; i < 16; i += I32::kCount)
	{
		const I16 redGreen = I16::load(texels.redGreen + i);
		const I16 blue = I16::load(texels.blue + i);
		(I16::filled(0) - redGreen - redGreen).store(texels.redGreenFactor + i);
		(I16::filled(0) - blue - blue).store(texels.blueFactor + i);
	}
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

ZORT_INLINE int sumOfAllLanes(const I32 (&parts)[kParts])
{
	I32 sum = parts[0];
	for (unsigned int part = 1; part < kParts; ++part)
	{
		sum += parts[part];
	}
	return sumOfLanes(sum);
}
} // namespace
} // namespace zortexture
