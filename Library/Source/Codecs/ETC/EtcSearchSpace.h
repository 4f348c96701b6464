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

/// What the 16 texels of a block cost at the 16 levels of one channel of a T or H block. Scaled down to 15 bits, see EtcThPairs.h.
struct alignas(32) LevelErrors
{
	std::int16_t at[16][16];
};

/// The same for a colour that carries the distance, the least over its paint colours, and for the plain colour of a T block.
struct PaintTables
{
	LevelErrors shifted[8];
	LevelErrors plain;
};

struct EtcSearchSpace
{
	static constexpr unsigned int kColours5Bits = 32 * 32 * 32;

	/// By channel and level of individual and differential colours.
	ModifierErrors modifierErrors[3][32];
	/// The errors of left, right, top and bottom half by 5-bit colour.
	unsigned int halfErrors[4][kColours5Bits];

	/// T and H: by channel and by shift of the level; the tables by red, by green for each red, and by blue for each red and green.
	LevelErrors offsets[3][17];
	PaintTables paintR;
	PaintTables paintRG[16];
	PaintTables paintRGB[256];
};
} // namespace zortexture
