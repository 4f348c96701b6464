/// @file TesselRoundFit.h
/// The correction of the colours of blocks under their modulation, in vectors. For `*.simd.cpp` sources.
///
/// All sums of the fit are exact in single precision: weights are eighths, residuals multiples of an eighth, their products of a 64th, and
/// no sum comes near 2^24 of these. So they are made in integers here, in any order, and give the very floats that adding one by one gives.
#pragma once

#include "TesselRoundPlanes.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
/// The means of the residuals and so on, for the blocks worked on.
template<bool kIs2bpp>
struct Means
{
	using Channels = typename Shape<kIs2bpp>::Channels;
	Channels residual;         ///< of each channel
	Channels weightedResidual; ///< times the weight
	Channels weight;           ///< the same in all channels of a block
	Channels squaredWeight;
};

/// The weights of the blocks worked on, each in both halves of its pixel's lane.
template<bool kIs2bpp>
ZORT_INLINE void loadWeights(const std::uint8_t* const (&from)[Shape<kIs2bpp>::kBlocks], I16 (&weights)[Shape<kIs2bpp>::kRegisters])
{
	using Half = Lanes<std::uint8_t, 16>;
	if constexpr (kIs2bpp)
	{
		for (unsigned y = 0; y < 4; y += 2)
		{
			const Half rows = Half::load(from[0] + 8 * y);
			const auto upper = as<std::int16_t>(interleaveLow(rows, Half::filled(0)));
			const auto lower = as<std::int16_t>(interleaveHigh(rows, Half::filled(0)));
			for (unsigned i = 0; i < Shape<true>::kPerRow; ++i)
			{
				weights[y * Shape<true>::kPerRow + i] = inPairs(upper, i);
				weights[(y + 1) * Shape<true>::kPerRow + i] = inPairs(lower, i);
			}
		}
	}
	else
	{
		U8 bytes;
#if defined(__AVX2__)
		bytes = join(Half::load(from[0]), Half::load(from[1]));
#else
		bytes = Half::load(from[0]);
#endif
		const I16 upper = as<std::int16_t>(interleaveLow(bytes, U8::filled(0)));
		const I16 lower = as<std::int16_t>(interleaveHigh(bytes, U8::filled(0)));
		weights[0] = interleaveLow(upper, upper);
		weights[1] = interleaveHigh(upper, upper);
		weights[2] = interleaveLow(lower, lower);
		weights[3] = interleaveHigh(lower, lower);
	}
}

template<bool kIs2bpp>
ZORT_INLINE Means<kIs2bpp> meansOf(const Work<kIs2bpp>& work, const I16 (&weights)[Shape<kIs2bpp>::kRegisters])
{
	using S = Shape<kIs2bpp>;
	using Channels = typename S::Channels;
	// Residuals in eighths, of at most 2550: eight of them stay within 16 bits.
	I16 redBlue = I16::filled(0);
	I16 greenAlpha = I16::filled(0);
	I16 weightSums = I16::filled(0);
	// Sums of red and blue of pixels 0 and 2 of a row, then of pixels 1 and 3; the same of green and alpha.
	I32 weightedRedBlue = I32::filled(0);
	I32 weightedGreenAlpha = I32::filled(0);
	I32 squaredWeights = I32::filled(0);
	for (unsigned r = 0; r < S::kRegisters; r += 2)
	{
		ColourPairs residuals[2];
		for (unsigned i = 0; i < 2; ++i)
		{
			const auto residual = [&weights, r, i ](I16 pixel, I16 a, I16 b) __attribute__((always_inline))
			{
				return ((pixel - a) << 3) - (b - a) * weights[r + i];
			};
			residuals[i] = {residual(work.pixels[r + i].redBlue, work.a[r + i].redBlue, work.b[r + i].redBlue),
			                residual(work.pixels[r + i].greenAlpha, work.a[r + i].greenAlpha, work.b[r + i].greenAlpha)};
			redBlue += residuals[i].redBlue;
			greenAlpha += residuals[i].greenAlpha;
			weightSums += weights[r + i];
			squaredWeights += sumsOfProducts(weights[r + i], weights[r + i]);
		}
		const I16 low = interleaveLow(weights[r], weights[r + 1]);
		const I16 high = interleaveHigh(weights[r], weights[r + 1]);
		weightedRedBlue += sumsOfProducts(interleaveLow(residuals[0].redBlue, residuals[1].redBlue), low) +
		                   sumsOfProducts(interleaveHigh(residuals[0].redBlue, residuals[1].redBlue), high);
		weightedGreenAlpha += sumsOfProducts(interleaveLow(residuals[0].greenAlpha, residuals[1].greenAlpha), low) +
		                      sumsOfProducts(interleaveHigh(residuals[0].greenAlpha, residuals[1].greenAlpha), high);
	}
	const I16 lowHalves = as<std::int16_t>(U32::filled(1));
	const I16 highHalves = as<std::int16_t>(U32::filled(0x10000));
	const auto residual = perBlock<kIs2bpp>(sumsOfFours(sumsOfProducts(redBlue, lowHalves), sumsOfProducts(greenAlpha, lowHalves),
	                                                    sumsOfProducts(redBlue, highHalves), sumsOfProducts(greenAlpha, highHalves)));
	const auto weighted =
	    perBlock<kIs2bpp>(interleaveLow(weightedRedBlue, weightedGreenAlpha) + interleaveHigh(weightedRedBlue, weightedGreenAlpha));
	const I32 sums = sumsOfProducts(weightSums, lowHalves);
	const auto weight = perBlock<kIs2bpp>(sumsOfFours(sums, sums, sums, sums));
	// Each square was counted twice, for both halves of the lane.
	const auto squared = perBlock<kIs2bpp>(sumsOfFours(squaredWeights, squaredWeights, squaredWeights, squaredWeights) >> 1);
	constexpr float kEighths = 1.0F / (8 * S::kPixels);
	constexpr float k64ths = 1.0F / (64 * S::kPixels);
	return {convert<float>(residual) * Channels::filled(kEighths), convert<float>(weighted) * Channels::filled(k64ths),
	        convert<float>(weight) * Channels::filled(kEighths), convert<float>(squared) * Channels::filled(k64ths)};
}

template<typename Channels>
ZORT_INLINE Channels clamped(Channels value, float low, float high)
{
	return least(greatest(value, Channels::filled(low)), Channels::filled(high));
}

/// The corrected colours of the blocks worked on; `settled` where a block keeps its own.
template<bool kIs2bpp>
ZORT_INLINE void correct(const Means<kIs2bpp>& means, typename Shape<kIs2bpp>::Integers isSettled,
                         typename Shape<kIs2bpp>::Integers& colourA, typename Shape<kIs2bpp>::Integers& colourB)
{
	using Channels = typename Shape<kIs2bpp>::Channels;
	const Channels e = means.residual;
	const Channels m = means.weight;
	const Channels one = Channels::filled(1.0F);
	const Channels variance = means.squaredWeight - m * m;
	const auto isFlat = ~(variance >= Channels::filled(1e-10F));
	const Channels a = convert<float>(colourA);
	const Channels b = convert<float>(colourB);

	const Channels slope = (means.weightedResidual - e * m) / variance;
	const Channels intercept = e - m * slope;
	Channels newA = a + clamped(intercept, -100.0F, 100.0F);
	Channels newB = b + clamped(slope + intercept, -100.0F, 100.0F);
	if (isAny(isFlat))
	{
		// One weight throughout: both ends move by their share of the residual, then towards each other.
		const Channels flatA = clamped(a + e * (one - m), 0.0F, 255.0F);
		const Channels flatB = clamped(b + e * m, 0.0F, 255.0F);
		const Channels between = flatB - flatA;
		const Channels difference = select(absolute(between) < one, Channels::filled(0.0F), between);
		newA = select(isFlat, flatA + (Channels::filled(0.5F) * m) * difference, newA);
		newB = select(isFlat, flatB - (Channels::filled(0.5F) * (one - m)) * difference, newB);
	}
	colourA = select(isSettled, colourA, truncated(clamped(newA, 0.0F, 255.0F)));
	colourB = select(isSettled, colourB, truncated(clamped(newB, 0.0F, 255.0F)));
}

/// The four channels of each block's colour in a lane each.
template<bool kIs2bpp>
ZORT_INLINE auto loadColours(const std::uint32_t* const (&corners)[Shape<kIs2bpp>::kBlocks], std::size_t stride)
{
	constexpr unsigned kBlocks = Shape<kIs2bpp>::kBlocks;
	const Lanes<std::uint32_t, 4> colours = {{corners[0][stride + 1], corners[kBlocks - 1][stride + 1], 0, 0}};
	const auto zero = Lanes<std::uint8_t, 16>::filled(0);
	const auto words = as<std::uint16_t>(interleaveLow(as<std::uint8_t>(colours), zero));
	const auto first = as<std::int32_t>(interleaveLow(words, as<std::uint16_t>(zero)));
	if constexpr (kBlocks == 2)
	{
		return join(first, as<std::int32_t>(interleaveHigh(words, as<std::uint16_t>(zero))));
	}
	else
	{
		return first;
	}
}

template<typename Integers>
ZORT_INLINE void storeColours(Integers channels, std::uint32_t* out)
{
	const auto words = packSigned(channels, channels);
	const auto bytes = as<std::uint32_t>(packUnsigned(words, words));
	for (unsigned i = 0; i < Integers::kCount / 4; ++i)
	{
		out[i] = bytes[4 * i];
	}
}
} // namespace lanes_avx2 or lanes_sse2
} // namespace zortexture
