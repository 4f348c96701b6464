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
		fillOffsets();
	}

	void run()
	{
		// What both channels that are open cost at least.
		std::int16_t open[kPaintShifts][16];
		for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
		{
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				open[shift][texel] = sum(least(1, shift, texel), least(2, shift, texel));
			}
		}
		fillPaint(open, 0, kAllDistances, m_space.paintR);
		for (unsigned int red0 = 0; red0 < 16; ++red0)
		{
			unsigned int passing[8];
			const unsigned int allowed = kIsOrdered ? kAllLevels << red0 & kAllLevels : kAllLevels;
			const unsigned int any = findPassing(m_space.paintR, m_space.paintR, red0, kAllDistances, allowed, passing);
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
	static constexpr unsigned int kAllDistances = 0xFF;
	static constexpr unsigned int kAllLevels = 0xFFFF;

	static std::int16_t sum(std::int16_t a, std::int16_t b)
	{
		const int result = a + b;
		return static_cast<std::int16_t>(result < 32767 ? result : 32767);
	}

	/// What scaled sums have to be below; 0 if nothing is below the bound.
	[[nodiscard]] Levels limit() const
	{
		return Levels::filled(static_cast<std::int16_t>(m_bound == 0 ? 0 : ((m_bound - 1) >> m_scale) + 1));
	}

	/// What a channel costs a texel at least, at the level that suits it best.
	[[nodiscard]] std::int16_t least(unsigned int channel, unsigned int shift, unsigned int texel) const
	{
		const unsigned int distance = kShiftedLevels.distances[shift][m_walk.texels[channel][texel]];
		const unsigned int error = m_walk.weights[channel] * distance * distance >> m_scale;
		return static_cast<std::int16_t>(error < kCeiling ? error : kCeiling);
	}

	void fillOffsets()
	{
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			for (unsigned int shift = 0; shift < kPaintShifts; ++shift)
			{
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
			for (unsigned int texel = 0; texel < 16; ++texel)
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
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				others[shift][texel] =
				    sum(m_space.offsets[0][shift].at[texel][redGreen / 16], m_space.offsets[1][shift].at[texel][redGreen % 16]);
			}
		}
		fillPaint(others, 2, missing, m_space.paintRGB[redGreen]);
	}

	/// The levels of the second colour that may cost less than the bound beside one level of the first: bit by bit, for each of the
	/// distances asked for, and for any of them.
	unsigned int findPassing(const PaintTables& first, const PaintTables& second, unsigned int level, unsigned int distances,
	                         unsigned int allowed, unsigned int (&passing)[8]) const
	{
		unsigned int any = 0;
		const Levels below = limit();
		for (unsigned int distance = 0; distance < 8; ++distance)
		{
			passing[distance] = 0;
			if ((distances >> distance & 1) != 0)
			{
				const LevelErrors& seconds = Mode == TwoColourMode::T ? second.plain : second.shifted[distance];
				passing[distance] = allowed & levelsBelow(first.shifted[distance], level, seconds, below);
				any |= passing[distance];
			}
		}
		return any;
	}

	/// One bit for each level of the second colour.
	static unsigned int levelsBelow(const LevelErrors& first, unsigned int level, const LevelErrors& second, Levels limit)
	{
		Levels sum = Levels::filled(0);
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			sum = addSaturatedOf(sum, leastOf(Levels::filled(first.at[texel][level]), Levels::load(second.at[texel])));
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
		for (unsigned int green0 = 0; green0 < 16; ++green0)
		{
			unsigned int passing[8];
			const unsigned int allowed = kIsOrdered && red0 == red1 ? kAllLevels << green0 & kAllLevels : kAllLevels;
			const unsigned int any = findPassing(m_space.paintRG[red0], m_space.paintRG[red1], green0, distances, allowed, passing);
			for (unsigned int green1 = 0; green1 < 16; ++green1)
			{
				if ((any >> green1 & 1) != 0)
				{
					walkBlue(red0 * 16 + green0, red1 * 16 + green1, distancesOf(passing, green1));
				}
			}
		}
	}

	void walkBlue(unsigned int redGreen0, unsigned int redGreen1, unsigned int distances)
	{
		needBlues(redGreen0, distances);
		needBlues(redGreen1, distances);
		for (unsigned int blue0 = 0; blue0 < 16; ++blue0)
		{
			unsigned int passing[8];
			const unsigned int allowed = kIsOrdered && redGreen0 == redGreen1 ? kAllLevels << (blue0 + 1) & kAllLevels : kAllLevels;
			const unsigned int any =
			    findPassing(m_space.paintRGB[redGreen0], m_space.paintRGB[redGreen1], blue0, distances, allowed, passing);
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
