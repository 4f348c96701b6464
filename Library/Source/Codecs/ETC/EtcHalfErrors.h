/// @file EtcHalfErrors.h
/// What a base colour costs in each half of a block, and the walk over all base colours in which channels refuse them one by one.
#pragma once

#include <algorithm>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcLanes.h"
#include "Codecs/ETC/EtcSearchSpace.h"
#include "Codecs/ETC/EtcSearchTexels.h"
#include "Codecs/ETC/EtcTables.h"

namespace zortexture
{
/// The least error over the tables of left, right, top and bottom half.
struct HalfErrors
{
	unsigned int at[4];

	[[nodiscard]] unsigned int least() const
	{
		return std::min(std::min(at[0], at[1]), std::min(at[2], at[3]));
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
	using namespace etc_lanes;
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		for (unsigned int column = 0; column < 4; ++column)
		{
			(UInt31x8::load(a.at[texel][column]) + UInt31x8::load(b.at[texel][column])).store(sum.at[texel][column]);
		}
	}
}

/// The best modifier of every texel for the sum of two errors. With fewer than three channels these are lower bounds.
inline TableErrors sumByTables(const ModifierErrors& a, const ModifierErrors& b)
{
	using namespace etc_lanes;
	UInt31x8 quadrants[2][2]; // by side, by row of quadrants
	for (unsigned int quadrant = 0; quadrant < 4; ++quadrant)
	{
		UInt31x8 sum = UInt31x8::filled(0);
		for (const unsigned int offset : {0U, 1U, 4U, 5U})
		{
			const unsigned int texel = quadrant / 2 * 8 + quadrant % 2 * 2 + offset;
			UInt31x8 best = UInt31x8::load(a.at[texel][0]) + UInt31x8::load(b.at[texel][0]);
			for (unsigned int column = 1; column < 4; ++column)
			{
				best = least(best, UInt31x8::load(a.at[texel][column]) + UInt31x8::load(b.at[texel][column]));
			}
			sum = sum + best;
		}
		quadrants[quadrant / 2][quadrant % 2] = sum;
	}
	TableErrors halves;
	(quadrants[0][0] + quadrants[0][1]).store(halves.at[kLeftHalf]);
	(quadrants[1][0] + quadrants[1][1]).store(halves.at[kRightHalf]);
	(quadrants[0][0] + quadrants[1][0]).store(halves.at[kTopHalf]);
	(quadrants[0][1] + quadrants[1][1]).store(halves.at[kBottomHalf]);
	return halves;
}

/// The best table of every half for the sum of two errors.
inline HalfErrors leastOverTables(const TableErrors& a, const TableErrors& b)
{
	using namespace etc_lanes;
	HalfErrors halves;
	for (unsigned int half = 0; half < 4; ++half)
	{
		halves.at[half] = leastLane(UInt31x8::load(a.at[half]) + UInt31x8::load(b.at[half]));
	}
	return halves;
}

/// Calls visit(red, green, blue, errors) for the base colours of `Levels` levels a channel, in this order of counting. Colours
/// are left out where red, or red and green, alone cost every half as much as the bound, which may fall during the walk. They are
/// also left out where every half costs more than the bound already when each channel has modifiers of its own: that sum takes no
/// walk over the texels.
template<unsigned int Levels, typename Visit>
void visitBaseColours(const ModifierErrors (&errors)[3][32], const unsigned int& bound, Visit&& visit)
{
	constexpr ModifierErrors kNoErrors = {};
	constexpr TableErrors kNoTableErrors = {};
	TableErrors greens[Levels];
	TableErrors blues[Levels];
	for (unsigned int level = 0; level < Levels; ++level)
	{
		greens[level] = sumByTables(errors[1][level], kNoErrors);
		blues[level] = sumByTables(errors[2][level], kNoErrors);
	}
	const auto mayBeWithin = [&bound](const TableErrors& a, const TableErrors& b)
	{
		return leastOverTables(a, b).least() <= bound;
	};

	ModifierErrors redGreen;
	for (unsigned int red = 0; red < Levels; ++red)
	{
		const TableErrors reds = sumByTables(errors[0][red], kNoErrors);
		if (leastOverTables(reds, kNoTableErrors).least() >= bound)
		{
			continue;
		}
		for (unsigned int green = 0; green < Levels; ++green)
		{
			if (!mayBeWithin(reds, greens[green]))
			{
				continue;
			}
			addModifierErrors(errors[0][red], errors[1][green], redGreen);
			const TableErrors redGreens = sumByTables(redGreen, kNoErrors);
			if (leastOverTables(redGreens, kNoTableErrors).least() >= bound)
			{
				continue;
			}
			for (unsigned int blue = 0; blue < Levels; ++blue)
			{
				if (mayBeWithin(redGreens, blues[blue]))
				{
					visit(red, green, blue, leastOverTables(sumByTables(redGreen, errors[2][blue]), kNoTableErrors));
				}
			}
		}
	}
}
} // namespace zortexture
