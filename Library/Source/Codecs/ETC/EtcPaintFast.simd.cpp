/// @file EtcPaintFast.simd.cpp
/// The paint colours of T and H blocks: all eight distances at once, in lanes.
///
/// T and H blocks of the same two colours have their paint colours in common: either colour as it is, and either colour up and down by the
/// distance. So one walk over the texels rates the H block and the T blocks of both orders.
#include "Codecs/ETC/EtcTexelLanes.h"

namespace zortexture
{
namespace
{
constexpr int kDistances[8] = {3, 6, 11, 16, 23, 32, 41, 64};

struct DistanceLanes
{
	alignas(32) std::int32_t redGreen[8];
	alignas(32) std::int32_t blue[8];
};
constexpr DistanceLanes kDistanceLanes = []
{
	DistanceLanes lanes{};
	for (unsigned int i = 0; i < 8; ++i)
	{
		lanes.redGreen[i] = pairOf(kDistances[i], kDistances[i]);
		lanes.blue[i] = pairOf(kDistances[i], 0);
	}
	return lanes;
}();

ZORT_INLINE I16 filledPairs(int first, int second)
{
	return as<std::int16_t>(I32::filled(pairOf(first, second)));
}

/// What is left of differences of channels by the nearest multiple of 17: -8 to 8.
ZORT_INLINE I16 remainders(I16 differences)
{
	const I16 positive = differences + I16::filled(16 * 17 + 8);
	const I16 quotient = multiplyHigh(positive, I16::filled(3856)); // over 17, exact up to 535
	return positive - quotient * I16::filled(17) - I16::filled(8);
}
} // namespace

// The channels of a paint colour differ by multiples of 17, the step of 4 bits, as the distance is the same for all channels; only a
// channel that stops at 0 or 255 breaks this. The least |d|^2 for given differences between its channels is a third of the sum of the
// squares of these (for the perceptual weights, the sum weighted by their products). So the remainders of a texel bound its error from
// below, unless one of its channels is so near the end of the range that a colour which stops there may be as near.
template<ESimdLevel level, EtcMeasure measure>
bool isBeyondPaintsFast(const EtcTexelPairs& texels, unsigned int error)
{
	constexpr bool kIsPlain = measure == EtcMeasure::Plain;
	// 8 * 8 is the greatest bound, and in thousandths 17.7 thousand, which a difference of 13 exceeds in the channel of least weight.
	constexpr std::int16_t kLeast = kIsPlain ? 8 : 13;
	constexpr std::int16_t kGreatest = 255 - kLeast;
	I32 sums = I32::filled(0);
	for (unsigned int i = 0; i < 16; i += I32::kCount)
	{
		const I32 redGreen = I32::load(texels.redGreen + i);
		const I32 blue = I32::load(texels.blue + i);
		const I32 blueBlue = blue | blue << 16;
		const I16 toBlue = remainders(as<std::int16_t>(redGreen) - as<std::int16_t>(blueBlue));
		const I16 toRed = remainders(as<std::int16_t>(redGreen) - as<std::int16_t>(redGreen << 16));
		const I16 toRedAlone = as<std::int16_t>(as<std::int32_t>(toRed) & I32::filled(static_cast<int>(0xFFFF0000)));
		// Of (R - B, G - B), and of (nothing, G - R).
		const I16 weighted = kIsPlain ? toBlue : toBlue * filledPairs(34, 66);
		const I16 weightedToRed = kIsPlain ? toRedAlone : toRedAlone * filledPairs(0, 175);
		const I32 squares = sumsOfProducts(weighted, toBlue) + sumsOfProducts(weightedToRed, toRedAlone);

		const auto isInside = [](I32 pairs)
		{
			const I16 channels = as<std::int16_t>(pairs);
			return as<std::int32_t>((channels >= I16::filled(kLeast)) & (channels <= I16::filled(kGreatest))) == I32::filled(-1);
		};
		sums += squares & isInside(redGreen) & isInside(blueBlue);
	}
	const auto bound = static_cast<unsigned int>(sumOfLanes(sums));
	return kIsPlain ? bound >= error * 3 : bound > error;
}

template<ESimdLevel level, EtcMeasure measure>
void sumPaintsFast(const EtcTexelPairs& texels, const unsigned char (&pair)[2][3], EtcPaintSums& sums)
{
	using Colour = ColourLanes<measure>;

	// Texels in lanes: the lesser distance to the two colours as they are, and the sum of |t|^2.
	alignas(32) std::int32_t still[16];
	const Colour still0 = Colour::of(filledPairs(pair[0][0], pair[0][1]), filledPairs(pair[0][2], 0));
	const Colour still1 = Colour::of(filledPairs(pair[1][0], pair[1][1]), filledPairs(pair[1][2], 0));
	I32 squares = I32::filled(0);
	for (unsigned int i = 0; i < 16; i += I32::kCount)
	{
		const I16 redGreen = I16::load(texels.redGreenFactor + i);
		const I16 blue = I16::load(texels.blueFactor + i);
		least(still0.distance(redGreen, blue), still1.distance(redGreen, blue)).store(still + i);
		const I16 redGreenTexels = I16::load(texels.redGreen + i);
		const I16 blueTexels = I16::load(texels.blue + i);
		squares += sumsOfProducts(Weights<measure>::redGreen(redGreenTexels), redGreenTexels) +
		           sumsOfProducts(Weights<measure>::blue(blueTexels), blueTexels);
	}
	const I32 square = I32::filled(sumOfLanes(squares));

	for (unsigned int part = 0; part < kParts; ++part)
	{
		const unsigned int lane = part * I32::kCount;
		const I16 distanceRedGreen = I16::load(kDistanceLanes.redGreen + lane);
		const I16 distanceBlue = I16::load(kDistanceLanes.blue + lane);
		Colour up[2];
		Colour down[2];
		for (unsigned int i = 0; i < 2; ++i)
		{
			const I16 redGreen = filledPairs(pair[i][0], pair[i][1]);
			const I16 blue = filledPairs(pair[i][2], 0);
			up[i] = Colour::of(limited(redGreen + distanceRedGreen), limited(blue + distanceBlue));
			down[i] = Colour::of(limited(redGreen - distanceRedGreen), limited(blue - distanceBlue));
		}
		I32 h = square;
		I32 t0 = square;
		I32 t1 = square;
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			const I16 redGreen = as<std::int16_t>(I32::filled(texels.redGreenFactor[texel]));
			const I16 blue = as<std::int16_t>(I32::filled(texels.blueFactor[texel]));
			const I32 moved0 = least(up[0].distance(redGreen, blue), down[0].distance(redGreen, blue));
			const I32 moved1 = least(up[1].distance(redGreen, blue), down[1].distance(redGreen, blue));
			const I32 unmoved = I32::filled(still[texel]);
			h += least(moved0, moved1);
			t0 += least(unmoved, moved1);
			t1 += least(unmoved, moved0);
		}
		h.store(sums.h + lane);
		t0.store(sums.t[0] + lane);
		t1.store(sums.t[1] + lane);
	}
}

template<ESimdLevel level, EtcMeasure measure>
unsigned int matchPaintsFast(const EtcTexelPairs& texels, const unsigned char (&paint)[4][3], unsigned int& indices)
{
	I32 total = I32::filled(0);
	indices = 0;
	for (unsigned int i = 0; i < 16; i += I32::kCount)
	{
		I32 best;
		for (int index = 0; index < 4; ++index)
		{
			const I16 redGreen = I16::load(texels.redGreen + i) - filledPairs(paint[index][0], paint[index][1]);
			const I16 blue = I16::load(texels.blue + i) - filledPairs(paint[index][2], 0);
			I32 error;
			if constexpr (measure == EtcMeasure::Plain)
			{
				error = sumsOfProducts(redGreen, redGreen) + sumsOfProducts(blue, blue);
			}
			else
			{
				const I32 squares = as<std::int32_t>(as<std::uint16_t>(redGreen) * as<std::uint16_t>(redGreen));
				error = (squares & I32::filled(0xFFFF)) * I32::filled(299) +
				        as<std::int32_t>(as<std::uint32_t>(squares) >> 16) * I32::filled(587) +
				        sumsOfProducts(blue, blue) * I32::filled(114);
			}
			// Error and index in one number, of 28 bits at most: the lower index of equal errors is the least.
			const I32 key = error << 2 | I32::filled(index);
			best = index == 0 ? key : least(key, best);
		}
		total += best >> 2;
		indices |= bitsOfMask((best & I32::filled(1)) != I32::filled(0)) << i;
		indices |= bitsOfMask((best & I32::filled(2)) != I32::filled(0)) << (i + 16);
	}
	return static_cast<unsigned int>(sumOfLanes(total));
}

template bool isBeyondPaintsFast<kLanesLevel, EtcMeasure::Plain>(const EtcTexelPairs&, unsigned int);
template bool isBeyondPaintsFast<kLanesLevel, EtcMeasure::Perceptual>(const EtcTexelPairs&, unsigned int);
template void sumPaintsFast<kLanesLevel, EtcMeasure::Plain>(const EtcTexelPairs&, const unsigned char (&)[2][3], EtcPaintSums&);
template void sumPaintsFast<kLanesLevel, EtcMeasure::Perceptual>(const EtcTexelPairs&, const unsigned char (&)[2][3], EtcPaintSums&);
template unsigned int matchPaintsFast<kLanesLevel, EtcMeasure::Plain>(const EtcTexelPairs&, const unsigned char (&)[4][3], unsigned int&);
template unsigned int matchPaintsFast<kLanesLevel, EtcMeasure::Perceptual>(const EtcTexelPairs&, const unsigned char (&)[4][3],
                                                                           unsigned int&);
} // namespace zortexture
