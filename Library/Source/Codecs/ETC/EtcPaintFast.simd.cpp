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
} // namespace

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
				const I32 squares = as<std::int32_t>(redGreen * redGreen);
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

template void sumPaintsFast<kLanesLevel, EtcMeasure::Plain>(const EtcTexelPairs&, const unsigned char (&)[2][3], EtcPaintSums&);
template void sumPaintsFast<kLanesLevel, EtcMeasure::Perceptual>(const EtcTexelPairs&, const unsigned char (&)[2][3], EtcPaintSums&);
template unsigned int matchPaintsFast<kLanesLevel, EtcMeasure::Plain>(const EtcTexelPairs&, const unsigned char (&)[4][3], unsigned int&);
template unsigned int matchPaintsFast<kLanesLevel, EtcMeasure::Perceptual>(const EtcTexelPairs&, const unsigned char (&)[4][3],
                                                                           unsigned int&);
} // namespace zortexture
