/// @file bestmatch.h
/// Pairs whose mix meets one colour best, for windows of a single colour.
#pragma once

#include "kiln.h"

/// @param punchThrough    the mode has punch-through weights.
/// @param firstCandidate  keep the pair close together.
/// @return the index 0 to 3 at which the pair shows the colour.
int GetSingleColourBestMatchReps(const KilnColour& colour, bool punchThrough, bool tessel2, bool firstCandidate, KilnPair& pair);
