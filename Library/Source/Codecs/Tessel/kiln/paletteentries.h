/// @file paletteentries.h
/// A few colours that stand for a window, for blocks with a local palette.
#pragma once

#include <vector>

#include "kiln.h"

constexpr int kKilnPaletteEntries = 5;

/// Pixels of a 9 by 9 window that a local palette can reach.
extern const std::array<std::uint8_t, kKilnWindow4Bpp> PalettePixels4bpp;

/// @param mask        81 bytes, non-zero for the pixels that count.
/// @param pixelCount  ends the process, status 0, unless 81.
/// @return up to maxEntries representable colours, fewest pixels first.
std::vector<KilnColour> GeneratePaletteEntries(const KilnBlock& block, const KilnColour* window, const std::uint8_t* mask, int pixelCount,
                                               int maxEntries, int errorLimit);
