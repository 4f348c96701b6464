/// @file EtcPlanarFast.simd.cpp
/// The planar fit: red and green side by side, a column of texels a register.
#include "Codecs/ETC/EtcTexelLanes.h"

namespace zortexture
{
namespace
{
using Pairs = Lanes<std::int16_t, 8>;

/// Inverse of the normal matrix of the fit, see EtcPlanarFit.cpp.
constexpr double kInverseNormal[3][3] = {{0.2875, -0.0125, -0.0125}, {-0.0125, 0.4875, -0.3125}, {-0.0125, -0.3125, 0.4875}};
constexpr double kStep6Bits = 4.0476190476190474; // between two levels of 6 bits, 255/63
constexpr double kStep7Bits = 2.0078740157480315; // 255/127

/// The sum of four pairs, in every lane.
ZORT_INLINE Quad sumOfPairs(Pairs a)
{
	a += shuffle<4, 5, 6, 7, 0, 1, 2, 3>(a);
	a += shuffle<2, 3, 0, 1, 6, 7, 4, 5>(a);
	return as<std::int32_t>(a);
}

/// Sums of a channel's texels, and of these times x and times y.
struct Moments
{
	int sum;
	int byX;
	int byY;
};

/// Of both numbers of the pairs.
ZORT_INLINE void sumMoments(const std::int32_t (&pairs)[16], Moments& first, Moments& second)
{
	const Pairs column1 = Pairs::load(pairs + 4);
	const Pairs column2 = Pairs::load(pairs + 8);
	const Pairs column3 = Pairs::load(pairs + 12);
	const Pairs rows = Pairs::load(pairs) + column1 + column2 + column3;
	const Pairs row = {{0, 0, 1, 1, 2, 2, 3, 3}};
	const int sum = sumOfPairs(rows)[0];
	const int byX = sumOfPairs(column1 + column2 + column2 + column3 * Pairs::filled(3))[0];
	const int byY = sumOfPairs(rows * row)[0];
	first = {sum & 0xFFFF, byX & 0xFFFF, byY & 0xFFFF};
	second = {sum >> 16, byX >> 16, byY >> 16};
}

/// The nearest integer to a number that is not negative, a half upwards.
ZORT_INLINE unsigned int rounded(double value)
{
	const int whole = static_cast<int>(value);
	return static_cast<unsigned int>(whole + (value - whole >= 0.5 ? 1 : 0));
}

ZORT_INLINE void fitChannel(const Moments& moments, double step, unsigned int (&levels)[3])
{
	const double sums[3] = {(4 * moments.sum - moments.byX - moments.byY) * 0.25, moments.byX * 0.25, moments.byY * 0.25};
	for (unsigned int row = 0; row < 3; ++row)
	{
		const double(&factors)[3] = kInverseNormal[row];
		const double value = factors[0] * sums[0] + factors[1] * sums[1] + factors[2] * sums[2];
		const double least = value < 0.0 ? 0.0 : value;
		levels[row] = rounded((least > 255.0 ? 255.0 : least) / step);
	}
}

ZORT_INLINE int expand6Bits(unsigned int level)
{
	return static_cast<int>(level << 2 | level >> 4);
}

ZORT_INLINE int expand7Bits(unsigned int level)
{
	return static_cast<int>(level << 1 | level >> 6);
}

/// The planes of a pair of channels, and how texels differ from them.
struct PlanePair
{
	Pairs column; ///< The sums of a column before they are cut to eight bits.
	Pairs step;   ///< To the next column.

	ZORT_INLINE PlanePair(const int (&first)[3], const int (&second)[3])
	{
		const auto filled = [](int a, int b)
		{
			return as<std::int16_t>(Quad::filled(pairOf(a, b)));
		};
		const Pairs row = {{0, 0, 1, 1, 2, 2, 3, 3}};
		column = filled(4 * first[0] + 2, 4 * second[0] + 2) + filled(first[2] - first[0], second[2] - second[0]) * row;
		step = filled(first[1] - first[0], second[1] - second[0]);
	}

	ZORT_INLINE Pairs nextDifferences(const std::int32_t* texels)
	{
		const Pairs differences = limited(column >> 2) - Pairs::load(texels);
		column += step;
		return differences;
	}
};
} // namespace

template<ESimdLevel level, EtcMeasure measure>
EtcPlanarFit fitPlanarFast(const EtcTexelPairs& texels)
{
	Moments moments[4]; // of red, green, blue, and nothing
	sumMoments(texels.redGreen, moments[0], moments[1]);
	sumMoments(texels.blue, moments[2], moments[3]);
	EtcPlanarFit fit;
	int corners[3][3];
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		fitChannel(moments[channel], channel == 1 ? kStep7Bits : kStep6Bits, fit.levels[channel]);
		for (unsigned int corner = 0; corner < 3; ++corner)
		{
			const unsigned int value = fit.levels[channel][corner];
			corners[channel][corner] = channel == 1 ? expand7Bits(value) : expand6Bits(value);
		}
	}

	const int nothing[3] = {0, 0, 0};
	PlanePair redGreen(corners[0], corners[1]);
	PlanePair blue(corners[2], nothing);
	Quad plain = Quad::filled(0);
	ChannelSquares<4> squares;
	for (unsigned int x = 0; x < 4; ++x)
	{
		const Pairs differences = redGreen.nextDifferences(texels.redGreen + x * 4);
		const Pairs blueDifferences = blue.nextDifferences(texels.blue + x * 4);
		if constexpr (measure == EtcMeasure::Plain)
		{
			plain += sumsOfProducts(differences, differences) + sumsOfProducts(blueDifferences, blueDifferences);
		}
		else
		{
			squares.add(differences, blueDifferences);
		}
	}
	fit.error = measure == EtcMeasure::Plain ? static_cast<unsigned int>(sumOfLanes(plain)) : squares.perceptualError();
	return fit;
}

template EtcPlanarFit fitPlanarFast<kLanesLevel, EtcMeasure::Plain>(const EtcTexelPairs&);
template EtcPlanarFit fitPlanarFast<kLanesLevel, EtcMeasure::Perceptual>(const EtcTexelPairs&);
} // namespace zortexture
