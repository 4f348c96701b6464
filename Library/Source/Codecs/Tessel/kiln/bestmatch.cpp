#include "bestmatch.h"

#include <algorithm>
#include <cstdlib>

namespace
{
/// Pairs of 8-bit values at most this far apart are close, or wide.
constexpr int kCloseSeparation = 15;
constexpr int kWideSeparation = 32;

/// The values of a channel, ascending.
struct Levels
{
	std::array<std::uint8_t, 32> values = {};
	int count = 0;

	void add(int value)
	{
		values[static_cast<unsigned>(count++)] = static_cast<std::uint8_t>(value);
	}
};

/// A colour channel of the given bits, widened through 5 bits to 8.
Levels colourLevels(int bits)
{
	Levels levels;
	for (int value = 0; value < 1 << bits; ++value)
	{
		int wide = value;
		if (bits == 4)
		{
			wide = value << 1 | value >> 3;
		}
		else if (bits == 3)
		{
			wide = value << 2 | value >> 1;
		}
		levels.add(wide << 3 | wide >> 2);
	}
	return levels;
}

/// Translucent alpha: 3 bits on every other step of 17.
Levels alphaLevels(int offset, bool opaqueToo)
{
	Levels levels;
	for (int value = 0; value < 8; ++value)
	{
		levels.add(value * 34 + offset);
	}
	if (opaqueToo)
	{
		levels.add(255);
	}
	return levels;
}

/// The best pair for every target at one weight, of the pairs within a separation.
std::array<KilnMatch, 256> bestPairs(const Levels& levelsA, const Levels& levelsB, int weight, int separation)
{
	// The pair that mixes to each value; of several the closest together, and then the lowest, for it comes first.
	constexpr int kNone = 256;
	std::array<int, 256> separations;
	separations.fill(kNone);
	std::array<KilnMatch, 256> pairs = {};
	for (int i = 0; i < levelsA.count; ++i)
	{
		for (int j = 0; j < levelsB.count; ++j)
		{
			const int a = levelsA.values[static_cast<unsigned>(i)];
			const int b = levelsB.values[static_cast<unsigned>(j)];
			const unsigned mixed = static_cast<unsigned>((a * (8 - weight) + b * weight) >> 3);
			if (std::abs(a - b) <= separation && std::abs(a - b) < separations[mixed])
			{
				separations[mixed] = std::abs(a - b);
				pairs[mixed] = {0, static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b)};
			}
		}
	}

	std::array<KilnMatch, 256> best;
	for (int target = 0; target < 256; ++target)
	{
		// Outwards; of two values equally far the one whose pair is closer, else the lower.
		const auto separationAt = [&separations](int value)
		{
			return value < 0 || value > 255 ? kNone : separations[static_cast<unsigned>(value)];
		};
		int distance = 0;
		while (separationAt(target - distance) == kNone && separationAt(target + distance) == kNone)
		{
			++distance;
		}
		const bool lower = separationAt(target - distance) <= separationAt(target + distance);
		KilnMatch& match = best[static_cast<unsigned>(target)];
		match = pairs[static_cast<unsigned>(lower ? target - distance : target + distance)];
		match.error = static_cast<std::uint8_t>(std::min(distance * distance, 255));
	}
	return best;
}

KilnMatchTable makeTable(const Levels& levelsA, const Levels& levelsB)
{
	int least = 255;
	for (int i = 0; i < levelsA.count; ++i)
	{
		for (int j = 0; j < levelsB.count; ++j)
		{
			least = std::min(least, std::abs(levelsA.values[static_cast<unsigned>(i)] - levelsB.values[static_cast<unsigned>(j)]));
		}
	}
	constexpr std::array<int, 8> kWeights = {0, 3, 4, 5, 8, 3, 4, 5};
	KilnMatchTable table;
	for (unsigned entry = 0; entry < 8; ++entry)
	{
		int separation = 255;
		if (entry > 0 && entry < 4)
		{
			// Where no pair is that close, those that are closest.
			separation = std::max(least, kCloseSeparation);
		}
		else if (entry > 4)
		{
			separation = kWideSeparation;
		}
		const std::array<KilnMatch, 256> best = bestPairs(levelsA, levelsB, kWeights[entry], separation);
		for (unsigned target = 0; target < 256; ++target)
		{
			table[target][entry] = best[target];
		}
	}
	return table;
}

/// Of an opaque pair: both at 255, at no cost.
constexpr KilnMatchRow makeFullAlphaBlends()
{
	KilnMatchRow row;
	row.fill({0, 255, 255});
	return row;
}
constexpr KilnMatchRow FullAlphaBlends = makeFullAlphaBlends();
} // namespace

const KilnMatchTables& kilnMatchTables()
{
	static const KilnMatchTables kTables = {makeTable(colourLevels(5), colourLevels(5)),
	                                        makeTable(colourLevels(4), colourLevels(5)),
	                                        makeTable(colourLevels(3), colourLevels(5)),
	                                        makeTable(colourLevels(4), colourLevels(4)),
	                                        makeTable(colourLevels(3), colourLevels(4)),
	                                        makeTable(alphaLevels(0, false), alphaLevels(0, true)),
	                                        makeTable(alphaLevels(0, false), alphaLevels(17, false))};
	return kTables;
}

int SelectBestGivenTables(const std::array<const KilnMatchRow*, 4>& rows, bool punchThrough, bool firstCandidate, KilnPair& pair)
{
	// The place in a row of one of the entries 0 to 4.
	const auto placeOf = [firstCandidate](unsigned entry)
	{
		const bool inner = entry >= 1 && entry <= 3;
		return inner && !firstCandidate ? entry + 4 : entry;
	};
	std::array<int, 5> sums = {};
	std::array<int, 5> spreads = {};
	for (unsigned entry = 0; entry < sums.size(); ++entry)
	{
		for (const KilnMatchRow* row : rows)
		{
			const KilnMatch& match = (*row)[placeOf(entry)];
			sums[entry] += match.error;
			spreads[entry] += (match.b - match.a) * (match.b - match.a);
		}
	}

	unsigned entry = sums[4] > sums[0] ? 0 : 4;
	int index = entry == 0 ? 0 : 3;
	const int end = std::min(sums[0], sums[4]);
	if (punchThrough)
	{
		if (sums[2] < end)
		{
			entry = 2;
			index = 1;
		}
	}
	else if (std::min(sums[1], sums[3]) < end)
	{
		const bool first = sums[1] != sums[3] ? sums[1] < sums[3] : spreads[1] < spreads[3];
		entry = first ? 1 : 3;
		index = first ? 1 : 2;
	}
	for (unsigned c = 0; c < 4; ++c)
	{
		const KilnMatch& match = (*rows[c])[placeOf(entry)];
		pair.a[c] = match.a;
		pair.b[c] = match.b;
	}
	return index;
}

int GetSingleColourBestMatchReps(const KilnColour& colour, bool punchThrough, bool tessel2, bool firstCandidate, KilnPair& pair)
{
	constexpr int kOpaque = 248;
	const KilnMatchTables& tables = kilnMatchTables();
	const auto select = [&](const KilnMatchTable& redGreen, const KilnMatchTable& blue, const KilnMatchRow& alpha)
	{
		return SelectBestGivenTables({&redGreen[colour[0]], &redGreen[colour[1]], &blue[colour[2]], &alpha}, punchThrough, firstCandidate,
		                             pair);
	};
	if (colour[3] >= kOpaque)
	{
		return select(tables.BestMatches_RGB_5_5, tables.BestMatches_RGB_4_5, FullAlphaBlends);
	}
	const KilnMatchRow& alpha = (tessel2 ? tables.BestMatches_Alpha_TC2_3_3 : tables.BestMatches_Alpha_TC1_3_3)[colour[3]];
	int index = select(tables.BestMatches_RGB_4_4, tables.BestMatches_RGB_3_4, alpha);
	if (!tessel2 && pair.b[3] == 255)
	{
		// B is opaque by itself, and has the finer levels of opaque colours.
		index = select(tables.BestMatches_RGB_4_5, tables.BestMatches_RGB_3_5, alpha);
		pair.b[3] = 255;
	}
	return index;
}
