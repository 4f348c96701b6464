/// @file swapping.h
/// Finding blocks whose colours A and B run crosswise to their neighbours'.
#pragma once

#include <vector>

#include "kiln.h"

/// @param colours  one pair a block, in rows.
/// @param wrap     the image's edges are neighbours.
/// @return for each block whether A and B are to be exchanged; empty when none is.
std::vector<bool> CreateColourSwappingRecommendations(int blocksX, int blocksY, bool wrap, const std::vector<KilnPair>& colours);
