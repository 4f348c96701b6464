/// @file TesselTables.h
/// Weight tables of the published block layout. A weight is the share of colour B, in eighths.
#pragma once

#include <array>
#include <cstdint>

namespace zortexture
{
/// Weights of the 2-bit indices of a 4bpp block by its mode flag, and of the stored indices of a 2bpp block (row 0).
inline constexpr std::array<std::array<std::uint8_t, 4>, 2> kTesselWeights = {{{0, 3, 5, 8}, {0, 4, 4, 8}}};

/// The index of mode 1 that makes a 4bpp pixel transparent.
inline constexpr unsigned kPunchThroughIndex = 2;

/// The compressor's names of the same weights.
inline constexpr const std::array<std::uint8_t, 4>& ModVals = kTesselWeights[0];
inline constexpr const std::array<std::uint8_t, 4>& ModVals_Standard = kTesselWeights[0];
inline constexpr const std::array<std::uint8_t, 4>& ModVals_Punchthrough = kTesselWeights[1];

/// Interpolation modes of a 2bpp block as the decoders number them. Horizontal is 2 here: the numbers of eTesselMode name the
/// same bits of the word but mean the other direction.
enum TesselInterpolation : std::uint8_t
{
	kTesselDirect = 0,
	kTesselFourNeighbours = 1,
	kTesselHorizontal = 2,
	kTesselVertical = 3
};
} // namespace zortexture
