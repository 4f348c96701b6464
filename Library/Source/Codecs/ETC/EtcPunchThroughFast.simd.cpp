/// @file EtcPunchThroughFast.simd.cpp
/// The one-bit-alpha format: tables of differential halves, and the paint colours of T blocks, all of them in lanes.
#include "Codecs/ETC/EtcTexelLanes.h"

namespace zortexture
{
namespace
{
using Plain = ColourLanes<EtcMeasure::Plain>;

constexpr unsigned int kTransparentColumn = 1; ///< Its index, 2, is transparent...
constexpr unsigned int kBaseColumn = 2;        ///< ...and this one's, 0, is the base colour, in a block that may have transparent texels.
constexpr unsigned int kTransparentIndex = 2;

struct NumberLanes
{
	alignas(32) std::int32_t modifiers[4][8]; ///< By column and table, twice in each pair.
	alignas(32) std::int32_t distances[8];
	alignas(32) std::int32_t bits[16]; ///< The bit of every texel.
};
constexpr NumberLanes kNumberLanes = []
{
	constexpr int kDistances[8] = {3, 6, 11, 16, 23, 32, 41, 64};
	NumberLanes lanes{};
	for (unsigned int i = 0; i < 16; ++i)
	{
		lanes.bits[i] = 1 << i;
	}
	for (unsigned int i = 0; i < 8; ++i)
	{
		lanes.distances[i] = pairOf(kDistances[i], kDistances[i]);
		for (unsigned int column = 0; column < 4; ++column)
		{
			lanes.modifiers[column][i] = pairOf(kModifiers[i][column], kModifiers[i][column]);
		}
	}
	return lanes;
}();

ZORT_INLINE I16 filledPairs(int first, int second)
{
	return as<std::int16_t>(I32::filled(pairOf(first, second)));
}

/// The colours of a base and steps that are the same for all channels.
ZORT_INLINE Plain movedColours(const unsigned char (&base)[3], I16 steps)
{
	const I16 blue = as<std::int16_t>(as<std::int32_t>(limited(filledPairs(base[2], 0) + steps)) & I32::filled(0xFFFF));
	return Plain::of(limited(filledPairs(base[0], base[1]) + steps), blue);
}

/// The bit of every texel as a mask.
ZORT_INLINE I32 masksOf(unsigned int bits, unsigned int first)
{
	const I32 places = I32::load(kNumberLanes.bits + first);
	return (I32::filled(static_cast<int>(bits)) & places) == places;
}
} // namespace

template<ESimdLevel level>
EtcHalfTable searchPunchThroughTables(bool isTransparent, const unsigned char (&texels)[8][3], unsigned int opaque,
                                      const unsigned char (&base)[3])
{
	alignas(32) std::int32_t sums[8];
	int squares = 0;
	for (const auto& texel : texels)
	{
		const auto isOpaque = static_cast<int>(opaque >> (&texel - texels) & 1);
		squares += isOpaque * (texel[0] * texel[0] + texel[1] * texel[1] + texel[2] * texel[2]);
	}
	for (unsigned int part = 0; part < kParts; ++part)
	{
		Plain colours[4];
		for (unsigned int column = 0; column < 4; ++column)
		{
			colours[column] = movedColours(base, I16::load(kNumberLanes.modifiers[column] + part * I32::kCount));
		}
		if (isTransparent)
		{
			colours[kTransparentColumn] = colours[0];
			colours[kBaseColumn] = movedColours(base, I16::filled(0));
		}
		I32 sum = I32::filled(squares);
		for (unsigned int rest = opaque; rest != 0; rest &= rest - 1)
		{
			const auto& texel = texels[__builtin_ctz(rest)];
			const I16 redGreen = filledPairs(-2 * texel[0], -2 * texel[1]);
			const I16 blue = filledPairs(-2 * texel[2], 0);
			sum += least(least(colours[0].distance(redGreen, blue), colours[1].distance(redGreen, blue)),
			             least(colours[2].distance(redGreen, blue), colours[3].distance(redGreen, blue)));
		}
		sum.store(sums + part * I32::kCount);
	}

	EtcHalfTable best{static_cast<unsigned int>(sums[0]), 0, 0, 0};
	for (unsigned int table = 1; table < 8; ++table)
	{
		if (static_cast<unsigned int>(sums[table]) < best.error)
		{
			best.error = static_cast<unsigned int>(sums[table]);
			best.table = table;
		}
	}

	alignas(32) std::int32_t redGreens[8];
	alignas(32) std::int32_t blues[8];
	for (unsigned int i = 0; i < 8; ++i)
	{
		redGreens[i] = pairOf(texels[i][0], texels[i][1]);
		blues[i] = texels[i][2];
	}
	for (unsigned int part = 0; part < kParts; ++part)
	{
		const I16 redGreen = I16::load(redGreens + part * I32::kCount);
		const I16 blue = I16::load(blues + part * I32::kCount);
		I32 leastKey;
		for (unsigned int column = 0; column < 4; ++column)
		{
			if (isTransparent && column == kTransparentColumn)
			{
				continue;
			}
			const int modifier = isTransparent && column == kBaseColumn ? 0 : kModifiers[best.table][column];
			const I16 differences = redGreen - filledPairs(limitedToByte(base[0] + modifier), limitedToByte(base[1] + modifier));
			const I16 blueDifferences = blue - filledPairs(limitedToByte(base[2] + modifier), 0);
			const I32 error = sumsOfProducts(differences, differences) + sumsOfProducts(blueDifferences, blueDifferences);
			const I32 key = error << 2 | I32::filled(static_cast<int>(column));
			leastKey = column == 0 ? key : least(key, leastKey);
		}
		indexBits(leastKey & I32::filled(3), part, best.highBits, best.lowBits);
	}
	best.highBits |= ~opaque & 0xFF;
	best.lowBits &= opaque;
	return best;
}

template<ESimdLevel level>
void sumPunchThroughPaints(const EtcTexelPairs& texels, unsigned int opaque, const unsigned char (&pair)[2][3], std::int32_t (&t)[2][8])
{
	alignas(32) std::int32_t still[2][16];
	const Plain colours[2] = {movedColours(pair[0], I16::filled(0)), movedColours(pair[1], I16::filled(0))};
	I32 squares = I32::filled(0);
	for (unsigned int i = 0; i < 16; i += I32::kCount)
	{
		const I16 redGreenFactor = I16::load(texels.redGreenFactor + i);
		const I16 blueFactor = I16::load(texels.blueFactor + i);
		colours[0].distance(redGreenFactor, blueFactor).store(still[0] + i);
		colours[1].distance(redGreenFactor, blueFactor).store(still[1] + i);
		const I16 redGreen = I16::load(texels.redGreen + i);
		const I16 blue = I16::load(texels.blue + i);
		squares += (sumsOfProducts(redGreen, redGreen) + sumsOfProducts(blue, blue)) & masksOf(opaque, i);
	}
	const I32 square = I32::filled(sumOfLanes(squares));

	for (unsigned int part = 0; part < kParts; ++part)
	{
		const I16 distances = I16::load(kNumberLanes.distances + part * I32::kCount);
		for (unsigned int order = 0; order < 2; ++order)
		{
			const unsigned char(&mover)[3] = pair[1 - order];
			const Plain up = movedColours(mover, distances);
			const Plain down = movedColours(mover, I16::filled(0) - distances);
			I32 sum = square;
			for (unsigned int rest = opaque; rest != 0; rest &= rest - 1)
			{
				const int texel = __builtin_ctz(rest);
				const I16 redGreen = as<std::int16_t>(I32::filled(texels.redGreenFactor[texel]));
				const I16 blue = as<std::int16_t>(I32::filled(texels.blueFactor[texel]));
				sum += least(I32::filled(still[order][texel]), least(up.distance(redGreen, blue), down.distance(redGreen, blue)));
			}
			sum.store(t[order] + part * I32::kCount);
		}
	}
}

template<ESimdLevel level>
unsigned int matchPunchThroughPaints(const EtcTexelPairs& texels, unsigned int opaque, const unsigned char (&paint)[4][3],
                                     unsigned int& indices)
{
	I32 total = I32::filled(0);
	unsigned int highBits = 0;
	unsigned int lowBits = 0;
	for (unsigned int i = 0; i < 16; i += I32::kCount)
	{
		I32 best;
		for (unsigned int index = 0; index < 4; ++index)
		{
			if (index == kTransparentIndex)
			{
				continue;
			}
			const I16 redGreen = I16::load(texels.redGreen + i) - filledPairs(paint[index][0], paint[index][1]);
			const I16 blue = I16::load(texels.blue + i) - filledPairs(paint[index][2], 0);
			const I32 error = sumsOfProducts(redGreen, redGreen) + sumsOfProducts(blue, blue);
			const I32 key = error << 2 | I32::filled(static_cast<int>(index));
			best = index == 0 ? key : least(key, best);
		}
		total += (best >> 2) & masksOf(opaque, i);
		lowBits |= bitsOfMask((best & I32::filled(1)) != I32::filled(0)) << i;
		highBits |= bitsOfMask((best & I32::filled(2)) != I32::filled(0)) << i;
	}
	highBits |= ~opaque & 0xFFFF;
	indices = highBits << 16 | (lowBits & opaque);
	return static_cast<unsigned int>(sumOfLanes(total));
}

template EtcHalfTable searchPunchThroughTables<kLanesLevel>(bool, const unsigned char (&)[8][3], unsigned int, const unsigned char (&)[3]);
template void sumPunchThroughPaints<kLanesLevel>(const EtcTexelPairs&, unsigned int, const unsigned char (&)[2][3], std::int32_t (&)[2][8]);
template unsigned int matchPunchThroughPaints<kLanesLevel>(const EtcTexelPairs&, unsigned int, const unsigned char (&)[4][3],
                                                           unsigned int&);
} // namespace zortexture
