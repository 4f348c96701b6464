/// @file EtcSearchSpace.h
/// The scratch tables of the exhaustive searches. They are rebuilt for every block; one space serves all blocks of an image, so that
/// no search allocates.
#pragma once

#include <cstdint>

namespace zortexture
{
/// Squared errors of the 16 texels (column by column) for one base colour, or for one channel of it: with each of the four modifiers
/// of each table. The tables stand side by side because searches work on all of them at once.
struct alignas(16) ModifierErrors
{
	unsigned int at[16][4][8];
};

/// The errors of left, right, top and bottom half with each table.
struct alignas(16) TableErrors
{
	unsigned int at[4][8];
};

/// What the 16 texels of a block (row by row) cost for one colour of a T or H block, or for its first channels, at each of the 8
/// distances: the least over the paint colours that come of it. Scaled down to 15 bits, see EtcThExhaustive.cpp.
struct alignas(16) PaintErrors
{
	std::int16_t at[16][8];
};

/// Squared errors of the 16 texels for one level of one channel of a T or H block, lowered by each distance, as it is, and raised.
struct alignas(16) OffsetErrors
{
	unsigned int at[3][16][8];
};

struct EtcSearchSpace
{
	static constexpr unsigned int kColours5Bits = 32 * 32 * 32;

	/// By channel and level of individual and differential colours.
	ModifierErrors modifierErrors[3][32];
	/// The errors of left, right, top and bottom half by 5-bit colour.
	unsigned int halfErrors[4][kColours5Bits];

	/// By channel and level of T and H colours.
	OffsetErrors offsetErrors[3][16];
	/// For both colours of a pair, by red, by red and green, and by all channels; H uses the first of each for both.
	PaintErrors paintErrorsR[2][16];
	PaintErrors paintErrorsRG[2][256];
	PaintErrors paintErrorsRGB[2][4096];
};
} // namespace zortexture
