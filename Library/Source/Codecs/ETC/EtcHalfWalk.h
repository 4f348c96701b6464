/// @file EtcHalfWalk.h
/// The walk over all base colours of one half of an individual or differential block, in which colours are refused by their red, then by
/// red and green, then by all channels.
///
/// A refusal is a lower bound of the half's error with each of the eight tables, which stand side by side: the channels that are still
/// open give what they cost at least at any level, each with modifiers of its own.
#pragma once

#include <cstdint>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcSearchSpace.h"
#include "Codecs/ETC/EtcSearchTexels.h"
#include "Codecs/ETC/EtcTables.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
/// Fills the space's tables for base colours of 4 or 5 bits. `texels` are by channel, in the order of columns.
template<ESimdLevel level>
void fillModifierErrors(const unsigned char (&texels)[3][16], const unsigned int (&weights)[3], unsigned int bits, EtcSearchSpace& space);

/// What a walk looks for.
struct HalfWalk
{
	unsigned int bits; ///< Of the base colours.
	EtcHalf half;
	unsigned int limit; ///< Colours have to cost less.
	bool isOnlyBest;    ///< And, if this is set, less than any before them.
};

/// Lists the colours of a half in their order: red counts slowest, blue fastest. Returns how many there are.
template<ESimdLevel level>
unsigned int walkHalf(const EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found);

/// The same at the level in use.
template<typename Scale>
void prepareHalfWalks(const SearchTexels<16>& columns, unsigned int bits, EtcSearchSpace& space)
{
	unsigned char texels[3][16];
	for (unsigned int i = 0; i < 48; ++i)
	{
		texels[i % 3][i / 3] = columns.rgb[i / 3][i % 3];
	}
	withSimdLevel([&](auto level) { fillModifierErrors<level>(texels, Scale::kWeights, bits, space); });
}

/// What a half costs at least, whatever its colour.
inline unsigned int lowerBoundOfHalf(const EtcSearchSpace& space, EtcHalf half)
{
	const auto& [reds, greens, blues] = space.leastTableErrors;
	std::int32_t least = reds.at[half][0] + greens.at[half][0] + blues.at[half][0];
	for (unsigned int table = 1; table < 8; ++table)
	{
		const std::int32_t sum = reds.at[half][table] + greens.at[half][table] + blues.at[half][table];
		least = sum < least ? sum : least;
	}
	return static_cast<unsigned int>(least);
}

/// The texels of the halves, by EtcHalf.
constexpr unsigned char kHalfTexels[4][8] = {
    {0, 1, 2, 3, 4, 5, 6, 7}, {8, 9, 10, 11, 12, 13, 14, 15}, {0, 1, 4, 5, 8, 9, 12, 13}, {2, 3, 6, 7, 10, 11, 14, 15}};

/// The modifiers by column and table.
struct ModifierColumns
{
	std::int32_t at[4][8];
};
constexpr ModifierColumns kModifierColumns = []
{
	ModifierColumns columns{};
	for (unsigned int column = 0; column < 4; ++column)
	{
		for (unsigned int table = 0; table < 8; ++table)
		{
			columns.at[column][table] = compressParamsFast[table][column];
		}
	}
	return columns;
}();

// Both are written for `Tables`, 32-bit numbers for the eight tables side by side: WideLanes or PlainLanes.

template<typename Tables>
void fillModifierErrorsBy(const unsigned char (&texels)[3][16], const unsigned int (&weights)[3], unsigned int bits, EtcSearchSpace& space)
{
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const auto weight = static_cast<int>(weights[channel]);
		Tables leastOfHalves[4];
		for (unsigned int level = 0; level < 1U << bits; ++level)
		{
			const unsigned int base = bits == 4 ? level << 4 | level : level << 3 | level >> 2;
			Tables colours[4];
			for (unsigned int column = 0; column < 4; ++column)
			{
				const Tables colour = Tables::filled(static_cast<std::int32_t>(base)) + Tables::load(kModifierColumns.at[column]);
				colours[column] = leastOf(greatestOf(colour, Tables::filled(0)), Tables::filled(255));
			}
			ModifierErrors& errors = space.modifierErrors[channel][level];
			Tables quadrants[4] = {Tables::filled(0), Tables::filled(0), Tables::filled(0), Tables::filled(0)};
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				const Tables value = Tables::filled(texels[channel][texel]);
				Tables best;
				for (unsigned int column = 0; column < 4; ++column)
				{
					const Tables error = weightedSquares(colours[column] - value, weight);
					error.store(errors.at[texel][column]);
					best = column == 0 ? error : leastOf(best, error);
				}
				Tables& quadrant = quadrants[texel / 8 * 2 + texel % 4 / 2];
				quadrant = quadrant + best;
			}
			const Tables halves[4] = {quadrants[0] + quadrants[1], quadrants[2] + quadrants[3], quadrants[0] + quadrants[2],
			                          quadrants[1] + quadrants[3]};
			for (unsigned int half = 0; half < 4; ++half)
			{
				halves[half].store(space.tableErrors[channel][level].at[half]);
				leastOfHalves[half] = level == 0 ? halves[half] : leastOf(leastOfHalves[half], halves[half]);
			}
		}
		for (unsigned int half = 0; half < 4; ++half)
		{
			leastOfHalves[half].store(space.leastTableErrors[channel].at[half]);
		}
	}
}

template<typename Tables>
unsigned int walkHalfBy(const EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found)
{
	const auto& errors = space.modifierErrors;
	const unsigned int levels = 1U << walk.bits;
	const auto& texels = kHalfTexels[walk.half];
	const Tables openBlue = Tables::load(space.leastTableErrors[2].at[walk.half]);
	const Tables openGreenBlue = Tables::load(space.leastTableErrors[1].at[walk.half]) + openBlue;
	Tables limit = Tables::filled(static_cast<std::int32_t>(walk.limit));
	unsigned int count = 0;
	for (unsigned int red = 0; red < levels; ++red)
	{
		const Tables reds = Tables::load(space.tableErrors[0][red].at[walk.half]);
		if (!isAnyBelow(reds + openGreenBlue, limit))
		{
			continue;
		}
		for (unsigned int green = 0; green < levels; ++green)
		{
			if (!isAnyBelow(reds + Tables::load(space.tableErrors[1][green].at[walk.half]) + openBlue, limit))
			{
				continue;
			}
			// All entries stay true errors of one table and one modifier, so that channels never mix modifiers.
			Tables redGreen[8][4];
			Tables redGreens = Tables::filled(0);
			for (unsigned int i = 0; i < 8; ++i)
			{
				Tables best;
				for (unsigned int column = 0; column < 4; ++column)
				{
					redGreen[i][column] =
					    Tables::load(errors[0][red].at[texels[i]][column]) + Tables::load(errors[1][green].at[texels[i]][column]);
					best = column == 0 ? redGreen[i][0] : leastOf(best, redGreen[i][column]);
				}
				redGreens = redGreens + best;
			}
			if (!isAnyBelow(redGreens + openBlue, limit))
			{
				continue;
			}
			for (unsigned int blue = 0; blue < levels; ++blue)
			{
				if (!isAnyBelow(redGreens + Tables::load(space.tableErrors[2][blue].at[walk.half]), limit))
				{
					continue;
				}
				Tables sum = Tables::filled(0);
				for (unsigned int i = 0; i < 8; ++i)
				{
					Tables best = redGreen[i][0] + Tables::load(errors[2][blue].at[texels[i]][0]);
					for (unsigned int column = 1; column < 4; ++column)
					{
						best = leastOf(best, redGreen[i][column] + Tables::load(errors[2][blue].at[texels[i]][column]));
					}
					sum = sum + best;
				}
				if (isAnyBelow(sum, limit))
				{
					const std::int32_t error = leastLane(sum);
					found[count++] = {(red << walk.bits | green) << walk.bits | blue, static_cast<unsigned int>(error)};
					if (walk.isOnlyBest)
					{
						limit = Tables::filled(error);
					}
				}
			}
		}
	}
	return count;
}
} // namespace zortexture
