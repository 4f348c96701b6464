/// @file EtcHalfErrors.h
/// What a base colour costs in each half of a block, and the walk over all base colours in which channels refuse them one by one.
#pragma once

#include <algorithm>
#include <limits>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcSearchSpace.h"
#include "Codecs/ETC/EtcSearchTexels.h"
#include "Codecs/ETC/EtcTables.h"

namespace zortexture
{
/// The least error over the tables of left, right, top and bottom half.
struct HalfErrors
{
	unsigned int at[4];

	[[nodiscard]] bool anyBelow(unsigned int bound) const
	{
		return std::min({at[0], at[1], at[2], at[3]}) < bound;
	}
};

/// Fills the errors of one channel, whose base is of 8 bits. `texels` are in the order of columns.
template<typename Scale>
void precomputeModifierErrors(const SearchTexels<16>& texels, unsigned int channel, int base, ModifierErrors& errors)
{
	for (unsigned int column = 0; column < 4; ++column)
	{
		for (unsigned int table = 0; table < 8; ++table)
		{
			const int colour = clamp(base + compressParamsFast[table][column]);
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				const int difference = texels.rgb[texel][channel] - colour;
				errors.at[texel][column][table] = Scale::kWeights[channel] * static_cast<unsigned int>(difference * difference);
			}
		}
	}
}

/// sum = a + b. All entries stay true errors of one table and one modifier, so that channels never mix modifiers.
inline void addModifierErrors(const ModifierErrors& a, const ModifierErrors& b, ModifierErrors& sum)
{
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		for (unsigned int column = 0; column < 4; ++column)
		{
			for (unsigned int table = 0; table < 8; ++table)
			{
				sum.at[texel][column][table] = a.at[texel][column][table] + b.at[texel][column][table];
			}
		}
	}
}

/// The best modifier of every texel, the best table of every half. With fewer than three channels these are lower bounds.
inline HalfErrors leastHalfErrors(const ModifierErrors& errors)
{
	unsigned int quadrants[2][2][8] = {}; // by side, by row of quadrants
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		unsigned int(&sums)[8] = quadrants[texel / 8][texel % 4 / 2];
		for (unsigned int table = 0; table < 8; ++table)
		{
			const auto& modifiers = errors.at[texel];
			sums[table] += std::min(std::min(modifiers[0][table], modifiers[1][table]), std::min(modifiers[2][table], modifiers[3][table]));
		}
	}

	constexpr unsigned int kMax = std::numeric_limits<unsigned int>::max();
	HalfErrors halves{{kMax, kMax, kMax, kMax}};
	for (unsigned int table = 0; table < 8; ++table)
	{
		halves.at[kLeftHalf] = std::min(halves.at[kLeftHalf], quadrants[0][0][table] + quadrants[0][1][table]);
		halves.at[kRightHalf] = std::min(halves.at[kRightHalf], quadrants[1][0][table] + quadrants[1][1][table]);
		halves.at[kTopHalf] = std::min(halves.at[kTopHalf], quadrants[0][0][table] + quadrants[1][0][table]);
		halves.at[kBottomHalf] = std::min(halves.at[kBottomHalf], quadrants[0][1][table] + quadrants[1][1][table]);
	}
	return halves;
}

/// Calls visit(red, green, blue, errors) for the base colours of `Levels` levels a channel, in this order of counting. Colours
/// are left out where red, or red and green, alone cost every half as much as the bound, which may fall during the walk.
template<unsigned int Levels, typename Visit>
void visitBaseColours(const ModifierErrors (&errors)[3][32], const unsigned int& bound, Visit&& visit)
{
	ModifierErrors redGreen;
	ModifierErrors all;
	for (unsigned int red = 0; red < Levels; ++red)
	{
		if (!leastHalfErrors(errors[0][red]).anyBelow(bound))
		{
			continue;
		}
		for (unsigned int green = 0; green < Levels; ++green)
		{
			addModifierErrors(errors[0][red], errors[1][green], redGreen);
			if (!leastHalfErrors(redGreen).anyBelow(bound))
			{
				continue;
			}
			for (unsigned int blue = 0; blue < Levels; ++blue)
			{
				addModifierErrors(redGreen, errors[2][blue], all);
				visit(red, green, blue, leastHalfErrors(all));
			}
		}
	}
}
} // namespace zortexture
