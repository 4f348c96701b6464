/// @file EtcHalfColours.h
/// The means of the four halves of a block (left, right, top, bottom), side by side, and how they are quantised. For `*.simd.cpp` sources.
#pragma once

#include "Codecs/ETC/EtcTexelLanes.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
/// One number for each channel and half.
struct HalfColours
{
	Quad channel[3];
};

/// Folds the columns of a block, four texels each, into its halves.
template<typename Fold>
ZORT_INLINE Quad foldHalves(Quad column0, Quad column1, Quad column2, Quad column3, Fold fold)
{
	Quad left = fold(column0, column1);
	Quad right = fold(column2, column3);
	left = fold(left, shuffle<1, 0, 3, 2>(left)); // the upper quadrant in lane 0, the lower in lane 2
	right = fold(right, shuffle<1, 0, 3, 2>(right));
	return fold(shuffle<0, 4, 0, 2>(left, right), shuffle<2, 6, 4, 6>(left, right));
}

template<typename Fold>
ZORT_INLINE HalfColours foldPairs(const EtcTexelPairs& texels, Fold fold)
{
	const auto foldAll = [&](const std::int32_t(&pairs)[16])
	{
		return foldHalves(Quad::load(pairs), Quad::load(pairs + 4), Quad::load(pairs + 8), Quad::load(pairs + 12),
		                  [&](Quad a, Quad b) { return as<std::int32_t>(fold(as<std::int16_t>(a), as<std::int16_t>(b))); });
	};
	const Quad redGreen = foldAll(texels.redGreen);
	return {{redGreen << 16 >> 16, redGreen >> 16, foldAll(texels.blue)}};
}

/// Products below 65536 of numbers that are not negative.
ZORT_INLINE Quad smallProduct(Quad a, Quad b)
{
	return as<std::int32_t>(as<std::uint16_t>(a) * as<std::uint16_t>(b));
}

ZORT_INLINE Quad expand5Bits(Quad level)
{
	return level << 3 | level >> 2;
}

ZORT_INLINE Quad expand4Bits(Quad level)
{
	return level << 4 | level;
}

/// sum / 8 * 31 / 255, to the nearest.
ZORT_INLINE Quad rounded5Bits(Quad sum)
{
	const Quad sixteenth = ((sum << 6) - (sum << 1) + Quad::filled(2040)) >> 4;
	return (sixteenth + Quad::filled(1) + (sixteenth >> 8)) >> 8; // over 255
}

/// sum / 8 / 17, to the nearest.
ZORT_INLINE Quad rounded4Bits(Quad sum)
{
	return smallProduct((sum + Quad::filled(68)) >> 3, Quad::filled(241)) >> 12; // over 17
}

/// The joint quantisation of EtcQuantise.cpp in the same order of operations, one half a lane.
template<EtcMeasure measure, unsigned int bits>
ZORT_INLINE HalfColours quantiseJointly(const HalfColours& sums)
{
	using Floats = Lanes<float, 4>;
	constexpr float kStep = bits == 4 ? 17.0F : 8.225806F;
	constexpr int kHighest = (1 << bits) - 1;
	const auto expand = [](Quad level)
	{
		return bits == 4 ? expand4Bits(level) : expand5Bits(level);
	};

	Quad low[3];
	Quad high[3];
	Floats errors[3][2];
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const Floats mean = convert<float>(sums.channel[channel]) * Floats::filled(0.125F);
		low[channel] = truncated(mean / Floats::filled(kStep));
		high[channel] = least(low[channel] + Quad::filled(1), Quad::filled(kHighest));
		const Floats lowColour = convert<float>(expand(low[channel]));
		const Floats highColour = convert<float>(expand(high[channel]));
		errors[channel][0] = lowColour - mean;
		errors[channel][1] = errors[channel][0] + (highColour - lowColour);
	}

	const auto tint = [&](unsigned int a, unsigned int b, float weight, Floats(&ratings)[2][2])
	{
		for (unsigned int i = 0; i < 4; ++i)
		{
			const Floats difference = errors[a][i & 1] - errors[b][i >> 1];
			const Floats square = difference * difference;
			ratings[i & 1][i >> 1] = measure == EtcMeasure::Plain ? square : Floats::filled(weight) * square;
		}
	};
	Floats redGreen[2][2];
	Floats redBlue[2][2];
	Floats greenBlue[2][2];
	tint(0, 1, 0.175513F, redGreen);
	tint(0, 2, 0.034086F, redBlue);
	tint(1, 2, 0.066918F, greenBlue);

	// One bit a channel, set for the upper level; the order settles ties.
	constexpr int kUpper[8] = {0, 1, 2, 4, 3, 5, 6, 7};
	Floats leastRating = redGreen[0][0] + redBlue[0][0] + greenBlue[0][0];
	Quad best = Quad::filled(0);
	for (unsigned int i = 1; i < 8; ++i)
	{
		const int upper = kUpper[i];
		const int red = upper & 1;
		const int green = upper >> 1 & 1;
		const int blue = upper >> 2;
		const Floats rating = redGreen[red][green] + redBlue[red][blue] + greenBlue[green][blue];
		best = select(rating < leastRating, Quad::filled(upper), best);
		leastRating = least(rating, leastRating);
	}

	HalfColours levels;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const Quad isUpper = (best & Quad::filled(1 << channel)) != Quad::filled(0);
		levels.channel[channel] = select(isUpper, high[channel], low[channel]);
	}
	return levels;
}

/// The base colours of the halves by one of the quantisations.
struct Bases
{
	HalfColours levels;  ///< Of 5 bits in splits that are differential, of 4 in others.
	HalfColours colours; ///< Of 8 bits.
	Quad isDifferential; ///< A mask, the same for both halves of a split.
};

/// `to5Bits` and `to4Bits` quantise the sums of eight texels.
template<typename To5Bits, typename To4Bits>
ZORT_INLINE Bases quantise(const HalfColours& sums, To5Bits to5Bits, To4Bits to4Bits)
{
	Bases bases;
	bases.levels = to5Bits(sums);
	Quad beyond = Quad::filled(0);
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const Quad levels = bases.levels.channel[channel];
		const Quad delta = shuffle<1, 1, 3, 3>(levels) - shuffle<0, 0, 2, 2>(levels) + Quad::filled(4);
		beyond = beyond | (delta & Quad::filled(~7));
		bases.colours.channel[channel] = expand5Bits(levels);
	}
	bases.isDifferential = beyond == Quad::filled(0);
	if (!isAll(bases.isDifferential))
	{
		const HalfColours levels = to4Bits(sums);
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			bases.levels.channel[channel] = select(bases.isDifferential, bases.levels.channel[channel], levels.channel[channel]);
			bases.colours.channel[channel] =
			    select(bases.isDifferential, bases.colours.channel[channel], expand4Bits(levels.channel[channel]));
		}
	}
	return bases;
}

template<typename Quantise>
ZORT_INLINE HalfColours eachChannel(const HalfColours& sums, Quantise quantiseChannel)
{
	return {{quantiseChannel(sums.channel[0]), quantiseChannel(sums.channel[1]), quantiseChannel(sums.channel[2])}};
}
} // namespace ZORT_LANES_NAMESPACE
} // namespace zortexture
