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
/// Fills the tables of halves for base colours of space.columns.bits; the tables of texels follow as walks need them.
template<ESimdLevel level>
void fillTableErrors(EtcSearchSpace& space);

/// What a walk looks for.
struct HalfWalk
{
	EtcHalf half;
	unsigned int limit; ///< Colours have to cost less.
	bool isOnlyBest;    ///< And, if this is set, less than any before them.
};

/// Lists the colours of a half in their order: red counts slowest, blue fastest. Returns how many there are.
template<ESimdLevel level>
unsigned int walkHalf(EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found);

/// Prepares the space for walks over the base colours of 4 or 5 bits.
template<typename Scale>
void prepareHalfWalks(const SearchTexels<16>& columns, unsigned int bits, EtcSearchSpace& space)
{
	space.columns.bits = bits;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		space.columns.weights[channel] = Scale::kWeights[channel];
		space.columns.filled[channel] = 0;
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			space.columns.texels[channel][texel] = columns.rgb[texel][channel];
		}
	}
	withSimdLevel([&space](auto level) { fillTableErrors<level>(space); });
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

/// The modifiers by column and table, as they are and with each table twice.
struct ModifierColumns
{
	std::int32_t once[4][8];
	std::int16_t twice[4][16];
};
constexpr ModifierColumns kModifierColumns = []
{
	ModifierColumns columns{};
	for (unsigned int column = 0; column < 4; ++column)
	{
		for (unsigned int table = 0; table < 8; ++table)
		{
			columns.once[column][table] = compressParamsFast[table][column];
			columns.twice[column][table * 2] = static_cast<std::int16_t>(compressParamsFast[table][column]);
			columns.twice[column][table * 2 + 1] = columns.twice[column][table * 2];
		}
	}
	return columns;
}();

[[gnu::always_inline]] inline unsigned int expandLevel(unsigned int level, unsigned int bits)
{
	return bits == 4 ? level << 4 | level : level << 3 | level >> 2;
}

// What follows is written for `Tables`, 32-bit numbers for the eight tables side by side, and for `TablePairs`, 16-bit numbers that come
// twice for each table: WideLanes or PlainLanes.

/// The colours of a level with the modifiers of one column.
template<typename Numbers, typename T, unsigned int N>
[[gnu::always_inline]] inline Numbers modifiedColours(unsigned int base, const T (&modifiers)[N])
{
	const Numbers colours = Numbers::filled(static_cast<T>(base)) + Numbers::load(modifiers);
	return leastOf(greatestOf(colours, Numbers::filled(0)), Numbers::filled(255));
}

template<typename Tables, typename TablePairs>
void fillTableErrorsBy(EtcSearchSpace& space)
{
	const EtcBlockColumns& block = space.columns;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		// A texel and the one under it stand side by side, for each table.
		std::int16_t pairs[8][16];
		for (unsigned int i = 0; i < 128; ++i)
		{
			pairs[i / 16][i % 16] = block.texels[channel][i / 16 * 2 + i % 2];
		}
		Tables leastOfHalves[4];
		for (unsigned int level = 0; level < 1U << block.bits; ++level)
		{
			const unsigned int base = expandLevel(level, block.bits);
			TablePairs colours[4];
			for (unsigned int column = 0; column < 4; ++column)
			{
				colours[column] = modifiedColours<TablePairs>(base, kModifierColumns.twice[column]);
			}
			Tables quadrants[4];
			for (unsigned int pair = 0; pair < 8; ++pair)
			{
				const TablePairs values = TablePairs::load(pairs[pair]);
				TablePairs nearest = absoluteOf(colours[0] - values);
				for (unsigned int column = 1; column < 4; ++column)
				{
					nearest = leastOf(nearest, absoluteOf(colours[column] - values));
				}
				// The pairs of a column are in two quadrants, the next column's in the same.
				Tables& quadrant = quadrants[pair / 4 * 2 + pair % 2];
				const Tables squares = sumsOfSquares(nearest);
				quadrant = pair % 4 < 2 ? squares : quadrant + squares;
			}
			const Tables halves[4] = {quadrants[0] + quadrants[1], quadrants[2] + quadrants[3], quadrants[0] + quadrants[2],
			                          quadrants[1] + quadrants[3]};
			for (unsigned int half = 0; half < 4; ++half)
			{
				const Tables errors = multiplied(halves[half], static_cast<std::int32_t>(block.weights[channel]));
				errors.store(space.tableErrors[channel][level].at[half]);
				leastOfHalves[half] = level == 0 ? errors : leastOf(leastOfHalves[half], errors);
			}
		}
		for (unsigned int half = 0; half < 4; ++half)
		{
			leastOfHalves[half].store(space.leastTableErrors[channel].at[half]);
		}
	}
}

/// The errors of all texels at one level, filled when they are asked for.
template<typename Tables>
const ModifierErrors& modifierErrorsBy(EtcSearchSpace& space, unsigned int channel, unsigned int level)
{
	ModifierErrors& errors = space.modifierErrors[channel][level];
	EtcBlockColumns& block = space.columns;
	if ((block.filled[channel] >> level & 1) != 0)
	{
		return errors;
	}
	block.filled[channel] |= 1U << level;
	for (unsigned int column = 0; column < 4; ++column)
	{
		const Tables colours = modifiedColours<Tables>(expandLevel(level, block.bits), kModifierColumns.once[column]);
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			const Tables differences = colours - Tables::filled(block.texels[channel][texel]);
			weightedSquares(differences, static_cast<int>(block.weights[channel])).store(errors.at[texel][column]);
		}
	}
	return errors;
}

template<typename Tables>
unsigned int walkHalfBy(EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found)
{
	const unsigned int bits = space.columns.bits;
	const unsigned int levels = 1U << bits;
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
			const ModifierErrors& redErrors = modifierErrorsBy<Tables>(space, 0, red);
			const ModifierErrors& greenErrors = modifierErrorsBy<Tables>(space, 1, green);
			Tables redGreen[8][4];
			Tables redGreens = Tables::filled(0);
			for (unsigned int i = 0; i < 8; ++i)
			{
				Tables best;
				for (unsigned int column = 0; column < 4; ++column)
				{
					redGreen[i][column] = Tables::load(redErrors.at[texels[i]][column]) + Tables::load(greenErrors.at[texels[i]][column]);
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
				const ModifierErrors& blueErrors = modifierErrorsBy<Tables>(space, 2, blue);
				Tables sum = Tables::filled(0);
				for (unsigned int i = 0; i < 8; ++i)
				{
					Tables best = redGreen[i][0] + Tables::load(blueErrors.at[texels[i]][0]);
					for (unsigned int column = 1; column < 4; ++column)
					{
						best = leastOf(best, redGreen[i][column] + Tables::load(blueErrors.at[texels[i]][column]));
					}
					sum = sum + best;
				}
				if (isAnyBelow(sum, limit))
				{
					const std::int32_t error = leastLane(sum);
					found[count++] = {(red << bits | green) << bits | blue, static_cast<unsigned int>(error)};
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
