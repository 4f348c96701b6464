/// @file bestmatch.h
/// Pairs whose mix meets one colour best, for windows of a single colour.
#pragma once

#include "kiln.h"

/// How near a pair of levels comes to a target.
struct KilnMatch
{
	/// The squared difference, 255 at most.
	std::uint8_t error = 0;
	std::uint8_t a = 0;
	std::uint8_t b = 0;
};

/// For a target 0 to 255, the best pairs at weights 0, 3, 4, 5 and 8 eighths. The ends are the best of all pairs; entries 1 to 3 the best
/// of pairs close together, so that a flat area stays flat where the neighbours shine in; entries 5 to 7 the same weights again, of
/// pairs that may lie wider apart.
using KilnMatchRow = std::array<KilnMatch, 8>;
using KilnMatchTable = std::array<KilnMatchRow, 256>;

/// The tables of all channels, named after the bits of A and B.
struct KilnMatchTables
{
	KilnMatchTable BestMatches_RGB_5_5;
	KilnMatchTable BestMatches_RGB_4_5;
	KilnMatchTable BestMatches_RGB_3_5;
	KilnMatchTable BestMatches_RGB_4_4;
	KilnMatchTable BestMatches_RGB_3_4;
	KilnMatchTable BestMatches_Alpha_TC1_3_3;
	KilnMatchTable BestMatches_Alpha_TC2_3_3;
};

/// Computed at the first call.
const KilnMatchTables& kilnMatchTables();

/// Picks one entry for all four channels by the sums of their errors.
/// @param rows            of R, G, B and alpha, at their targets.
/// @param punchThrough    the mode has punch-through weights.
/// @param firstCandidate  keep the pair close together.
/// @return the index 0 to 3 at which the pair shows the colour.
int SelectBestGivenTables(const std::array<const KilnMatchRow*, 4>& rows, bool punchThrough, bool firstCandidate, KilnPair& pair);

/// The pair that shows a colour best. In the first generation B may be opaque beside a translucent A.
/// @return the index 0 to 3 at which the pair shows the colour.
int GetSingleColourBestMatchReps(const KilnColour& colour, bool punchThrough, bool tessel2, bool firstCandidate, KilnPair& pair);
