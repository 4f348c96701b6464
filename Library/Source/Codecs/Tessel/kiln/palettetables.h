/// @file palettetables.h
/// What the pixels of a block with a local palette can choose, in the encoder's numbering: slots 0 to 7 are A and B of P, Q, R and S.
#pragma once

#include "kiln.h"

/// No palette at this pixel, or no place for this colour.
constexpr std::uint8_t kKilnNoSlot = 255;

/// For each pixel of a 9 by 9 window, the slots of its group that its four choices show. None at the centres of blocks.
extern const std::array<std::array<std::uint8_t, 4>, kKilnWindow4Bpp> PaletteModeSelection;

/// For each pixel of a 9 by 9 window, the places among its four choices at which A and B of the block itself stand.
extern const std::array<std::array<std::uint8_t, 2>, kKilnWindow4Bpp> PaletteModeCentralOptions;

/// For each pixel of the block's own 4 by 4 area, the stored index of each choice.
extern const std::array<std::array<std::uint8_t, 4>, 16> PalModRemapper4Col;
