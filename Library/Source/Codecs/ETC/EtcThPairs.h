/// @file EtcThPairs.h
/// The walk over all pairs of 4-bit colours of T and H blocks, in which pairs are refused by their red, then by red and green, then by all
/// channels.
///
/// A refusal is a lower bound of the error at every distance: the sum over the texels of the better of both colours, where the channels
/// that are still open give each texel the level that suits it best. Sixteen second colours, which differ in the channel at hand, are
/// looked at side by side, and only at the distances that the channels before it have left.
///
/// The tables hold errors scaled down and rounded down to 15 bits. Their sums never exceed the true error scaled down, so that a pair they
/// refuse is never better than the bound; a pair that passes is measured exactly.
#pragma once

#include <cstdint>

#include "Codecs/ETC/EtcSearchSpace.h"
#include "Codecs/ETC/EtcTables.h"
#include "Codecs/ETC/EtcThSearch.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
/// What a walk is given. Numbers of colours are R << 8 | G << 4 | B.
struct PairWalk
{
	EtcSearchSpace& space;
	/// The texels by channel, in an order in which the first ones differ most: these are looked at first.
	unsigned char texels[3][16];
	unsigned int weights[3];
	unsigned int bound; ///< Pairs have to cost less.
	/// Measures a pair, and tells what pairs have to cost less than from then on.
	unsigned int (*measure)(void* context, unsigned int colour0, unsigned int colour1);
	void* context;
};

/// Hands the pairs that may cost less than the bound to `walk.measure`. The channels count R, G, B; in each the first colour, which
/// carries the distance in T, counts before the second; in H the second never counts below the first, nor do equal colours come.
template<ESimdLevel level, TwoColourMode Mode>
void walkPairs(PairWalk& walk);

/// The colours that a level is shifted to: as it is, darker by each distance, lighter by each distance.
inline constexpr unsigned int kPaintShifts = 17;
inline constexpr int kNoShift = 0;
inline constexpr int kDarker = 1;
inline constexpr int kLighter = 9;

/// By shift and 4-bit level, and how far each value is from the nearest of them.
struct ShiftedLevels
{
	std::int16_t colours[kPaintShifts][16];
	unsigned char distances[kPaintShifts][256];
};
constexpr ShiftedLevels kShiftedLevels = []
{
	ShiftedLevels levels{};
	for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
	{
		const int sign = shift < kLighter ? -1 : 1;
		const int step = shift == kNoShift ? 0 : sign * table58H[(shift - 1) % 8];
		for (int level = 0; level < 16; ++level)
		{
			const int colour = level * 17 + step;
			levels.colours[shift][level] = static_cast<std::int16_t>(colour < 0 ? 0 : (colour > 255 ? 255 : colour));
		}
		for (int value = 0; value < 256; ++value)
		{
			int least = 255;
			for (const int colour : levels.colours[shift])
			{
				const int distance = value < colour ? colour - value : value - colour;
				least = distance < least ? distance : least;
			}
			levels.distances[shift][value] = static_cast<unsigned char>(least);
		}
	}
	return levels;
}();

/// Written for `Levels`, the errors of one texel at 16 levels, 16-bit numbers side by side: WideLanes or PlainLanes.
template<typename Levels, TwoColourMode Mode>
class CPairWalk
{
public:
	explicit CPairWalk(PairWalk& walk) : m_walk(walk), m_space(walk.space), m_bound(walk.bound)
	{
		// As exact as the bound lets the tables be.
		while (m_bound >> m_scale >= kCeiling)
		{
			++m_scale;
		}
	}

	void run()
	{
		const unsigned int distances = fillOpen();
		if (distances == 0)
		{
			return;
		}
		fillOffsets(distances);
		// What both channels that are open cost at least.
		std::int16_t open[kPaintShifts][16];
		for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
		{
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				open[shift][texel] = sum(least(1, shift, texel), least(2, shift, texel));
			}
		}
		fillPaint(open, 0, distances, m_space.paintR);
		const Passing all = narrow(m_space.paintOpen, 0, m_space.paintOpen, 0, m_space.paintR, m_space.paintR, distances);
		for (unsigned int red0 = 0; red0 < 16; ++red0)
		{
			unsigned int passing[8];
			const unsigned int allowed = kIsOrdered ? kAllLevels << red0 & kAllLevels : kAllLevels;
			const unsigned int any = findPassing(m_space.paintR, m_space.paintR, red0, allowed, all, passing);
			for (unsigned int red1 = 0; red1 < 16; ++red1)
			{
				if ((any >> red1 & 1) != 0)
				{
					walkGreen(red0, red1, distancesOf(passing, red1));
				}
			}
		}
	}

private:
	/// The colours of H are interchangeable, so that the second never counts below the first.
	static constexpr bool kIsOrdered = Mode == TwoColourMode::H;
	static constexpr unsigned int kCeiling = 32767;
	static constexpr unsigned int kAllLevels = 0xFFFF;

	static std::int16_t sum(std::int16_t a, std::int16_t b)
	{
		const int result = a + b;
		return static_cast<std::int16_t>(result < 32767 ? result : 32767);
	}

	/// What scaled sums have to be below; 0 if nothing is below the bound.
	[[nodiscard]] unsigned int scaledBound() const
	{
		return m_bound == 0 ? 0 : ((m_bound - 1) >> m_scale) + 1;
	}
	[[nodiscard]] Levels limit() const
	{
		return Levels::filled(static_cast<std::int16_t>(scaledBound()));
	}

	/// Whether any of the distances uses a shift.
	static bool isShiftAt(unsigned int shift, unsigned int distances)
	{
		return shift == kNoShift || (distances >> ((shift - 1) % 8) & 1) != 0;
	}

	/// What a channel costs a texel at least, at the level that suits it best.
	[[nodiscard]] std::int16_t least(unsigned int channel, unsigned int shift, unsigned int texel) const
	{
		const unsigned int distance = kShiftedLevels.distances[shift][m_walk.texels[channel][texel]];
		const unsigned int error = m_walk.weights[channel] * distance * distance >> m_scale;
		return static_cast<std::int16_t>(error < kCeiling ? error : kCeiling);
	}

	/// Fills the tables of colours that are open in all channels, of which level 0 alone is used. Returns the distances at which the
	/// block may cost less than the bound even so.
	unsigned int fillOpen()
	{
		unsigned int sums[8] = {};
		PaintTables& open = m_space.paintOpen;
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			std::int16_t shifts[kPaintShifts];
			for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
			{
				shifts[shift] = sum(sum(least(0, shift, texel), least(1, shift, texel)), least(2, shift, texel));
			}
			const std::int16_t plain = Mode == TwoColourMode::T ? shifts[kNoShift] : static_cast<std::int16_t>(kCeiling);
			open.plain.at[texel][0] = plain;
			for (unsigned int distance = 0; distance < 8; ++distance)
			{
				const std::int16_t darker = shifts[kDarker + distance];
				const std::int16_t lighter = shifts[kLighter + distance];
				const std::int16_t shifted = darker < lighter ? darker : lighter;
				const std::int16_t best = plain < shifted ? plain : shifted;
				open.shifted[distance].at[texel][0] = best;
				sums[distance] += static_cast<unsigned int>(best);
			}
		}
		unsigned int distances = 0;
		for (unsigned int distance = 0; distance < 8; ++distance)
		{
			distances |= (sums[distance] < scaledBound() ? 1U : 0U) << distance;
		}
		return distances;
	}

	void fillOffsets(unsigned int distances)
	{
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
			{
				if (!isShiftAt(shift, distances))
				{
					continue;
				}
				const Levels colours = Levels::load(kShiftedLevels.colours[shift]);
				for (unsigned int texel = 0; texel < 16; ++texel)
				{
					weightedSquares(colours - Levels::filled(m_walk.texels[channel][texel]), static_cast<int>(m_walk.weights[channel]),
					                static_cast<int>(m_scale))
					    .store(m_space.offsets[channel][shift].at[texel]);
				}
			}
		}
	}

	/// What the texels cost for the 16 levels of a channel, over the errors by shift and texel that the other channels give. Distances
	/// that the tables have are not filled again.
	void fillPaint(const std::int16_t (&others)[kPaintShifts][16], unsigned int channel, unsigned int distances, PaintTables& tables)
	{
		const auto& offsets = m_space.offsets[channel];
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			const auto paint = [&](unsigned int shift)
			{
				return addSaturatedOf(Levels::filled(others[shift][texel]), Levels::load(offsets[shift].at[texel]));
			};
			Levels plain = Levels::filled(kCeiling);
			if constexpr (Mode == TwoColourMode::T)
			{
				plain = paint(kNoShift);
				plain.store(tables.plain.at[texel]);
			}
			for (unsigned int distance = 0; distance < 8; ++distance)
			{
				if ((distances >> distance & 1) != 0)
				{
					const Levels shifted = leastOf(paint(kDarker + distance), paint(kLighter + distance));
					(Mode == TwoColourMode::T ? leastOf(plain, shifted) : shifted).store(tables.shifted[distance].at[texel]);
				}
			}
		}
	}

	/// The tables of all greens of a red, with blue open, at some distances.
	void needGreens(unsigned int red, unsigned int distances)
	{
		const unsigned int missing = distances & ~m_distancesRG[red];
		if (missing == 0)
		{
			return;
		}
		m_distancesRG[red] |= missing;
		std::int16_t others[kPaintShifts][16];
		for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
		{
			for (unsigned int texel = 0; texel < 16 && isShiftAt(shift, missing); ++texel)
			{
				others[shift][texel] = sum(m_space.offsets[0][shift].at[texel][red], least(2, shift, texel));
			}
		}
		fillPaint(others, 1, missing, m_space.paintRG[red]);
	}

	/// The tables of all blues of a red and a green.
	void needBlues(unsigned int redGreen, unsigned int distances)
	{
		const unsigned int missing = distances & ~m_distancesRGB[redGreen];
		if (missing == 0)
		{
			return;
		}
		m_distancesRGB[redGreen] |= missing;
		std::int16_t others[kPaintShifts][16];
		for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
		{
			for (unsigned int texel = 0; texel < 16 && isShiftAt(shift, missing); ++texel)
			{
				others[shift][texel] =
				    sum(m_space.offsets[0][shift].at[texel][redGreen / 16], m_space.offsets[1][shift].at[texel][redGreen % 16]);
			}
		}
		fillPaint(others, 2, missing, m_space.paintRGB[redGreen]);
	}

	/// Levels of both colours of a pair in the channel at hand, one bit each, by distance.
	struct Passing
	{
		unsigned int levels0[8];
		unsigned int levels1[8];
	};

	/// The errors of a second colour.
	static const LevelErrors& second(const PaintTables& tables, unsigned int distance)
	{
		return Mode == TwoColourMode::T ? tables.plain : tables.shifted[distance];
	}

	/// The levels of each colour that may cost less than the bound beside the other colour, whatever the level of that: as a rule
	/// only few are left, and mostly at fewer distances.
	/// @param open0, open1  the tables by the channel before, in which the channel at hand is open.
	Passing narrow(const PaintTables& open0, unsigned int level0, const PaintTables& open1, unsigned int level1, const PaintTables& first,
	               const PaintTables& seconds, unsigned int distances) const
	{
		Passing passing = {};
		const Levels below = limit();
		for (unsigned int distance = 0; distance < 8; ++distance)
		{
			if ((distances >> distance & 1) != 0)
			{
				passing.levels0[distance] = levelsBelow(second(open1, distance), level1, first.shifted[distance], below);
				if (passing.levels0[distance] != 0)
				{
					passing.levels1[distance] = levelsBelow(open0.shifted[distance], level0, second(seconds, distance), below);
				}
			}
		}
		return passing;
	}

	/// The levels of the second colour that may cost less than the bound beside one level of the first: bit by bit, for each of the
	/// distances where the level passes, and for any of them.
	unsigned int findPassing(const PaintTables& first, const PaintTables& seconds, unsigned int level, unsigned int allowed,
	                         const Passing& passing, unsigned int (&found)[8]) const
	{
		unsigned int any = 0;
		const Levels below = limit();
		for (unsigned int distance = 0; distance < 8; ++distance)
		{
			found[distance] = passing.levels1[distance] & allowed;
			if ((passing.levels0[distance] >> level & 1) != 0 && found[distance] != 0)
			{
				found[distance] &= levelsBelow(first.shifted[distance], level, second(seconds, distance), below);
				any |= found[distance];
			}
			else
			{
				found[distance] = 0;
			}
		}
		return any;
	}

	/// The levels of one colour, bit by bit, that may cost less than the limit beside one level of the other.
	static unsigned int levelsBelow(const LevelErrors& other, unsigned int level, const LevelErrors& levels, Levels limit)
	{
		Levels sum = Levels::filled(0);
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			sum = addSaturatedOf(sum, leastOf(Levels::filled(other.at[texel][level]), Levels::load(levels.at[texel])));
			if (texel % 4 == 3)
			{
				const unsigned int below = lanesBelow(sum, limit);
				if (below == 0 || texel == 15)
				{
					return below;
				}
			}
		}
		return 0;
	}

	static unsigned int distancesOf(const unsigned int (&passing)[8], unsigned int level)
	{
		unsigned int distances = 0;
		for (unsigned int distance = 0; distance < 8; ++distance)
		{
			distances |= (passing[distance] >> level & 1) << distance;
		}
		return distances;
	}

	void walkGreen(unsigned int red0, unsigned int red1, unsigned int distances)
	{
		needGreens(red0, distances);
		needGreens(red1, distances);
		const PaintTables& first = m_space.paintRG[red0];
		const PaintTables& seconds = m_space.paintRG[red1];
		const Passing passing = narrow(m_space.paintR, red0, m_space.paintR, red1, first, seconds, distances);
		for (unsigned int green0 = 0; green0 < 16; ++green0)
		{
			unsigned int found[8];
			const unsigned int allowed = kIsOrdered && red0 == red1 ? kAllLevels << green0 & kAllLevels : kAllLevels;
			const unsigned int any = findPassing(first, seconds, green0, allowed, passing, found);
			for (unsigned int green1 = 0; green1 < 16; ++green1)
			{
				if ((any >> green1 & 1) != 0)
				{
					walkBlue(red0 * 16 + green0, red1 * 16 + green1, distancesOf(found, green1));
				}
			}
		}
	}

	void walkBlue(unsigned int redGreen0, unsigned int redGreen1, unsigned int distances)
	{
		needBlues(redGreen0, distances);
		needBlues(redGreen1, distances);
		const PaintTables& first = m_space.paintRGB[redGreen0];
		const PaintTables& seconds = m_space.paintRGB[redGreen1];
		const Passing passing = narrow(m_space.paintRG[redGreen0 / 16], redGreen0 % 16, m_space.paintRG[redGreen1 / 16], redGreen1 % 16,
		                               first, seconds, distances);
		for (unsigned int blue0 = 0; blue0 < 16; ++blue0)
		{
			unsigned int found[8];
			const unsigned int allowed = kIsOrdered && redGreen0 == redGreen1 ? kAllLevels << (blue0 + 1) & kAllLevels : kAllLevels;
			const unsigned int any = findPassing(first, seconds, blue0, allowed, passing, found);
			for (unsigned int blue1 = 0; blue1 < 16; ++blue1)
			{
				if ((any >> blue1 & 1) != 0)
				{
					m_bound = m_walk.measure(m_walk.context, redGreen0 * 16 + blue0, redGreen1 * 16 + blue1);
				}
			}
		}
	}

	PairWalk& m_walk;
	EtcSearchSpace& m_space;
	unsigned int m_bound;
	unsigned int m_scale = 0;              ///< Errors in tables are divided by 2 to this power.
	unsigned int m_distancesRG[16] = {};   ///< Which tables are filled, by red.
	unsigned int m_distancesRGB[256] = {}; ///< By red and green.
};
} // namespace zortexture
