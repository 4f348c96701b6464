/// @file EtcSearchSpace.h
/// The scratch tables of the exhaustive searches. They are rebuilt for every block; one space serves all blocks of an image, so that
/// no search allocates.
#pragma once

#include <cstdint>

namespace zortexture
{
/// Squared errors of the 16 texels (column by column) for one level of a base colour's channel: with each of the four modifiers of each
/// table. The tables stand side by side because searches work on all of them at once.
struct alignas(32) ModifierErrors
{
	std::int32_t at[16][4][8];
};

/// The errors of left, right, top and bottom half with each table.
struct alignas(32) TableErrors
{
	std::int32_t at[4][8];
};

/// A block of individual or differential colours at hand.
struct EtcBlockColumns
{
	unsigned char texels[3][16]; ///< By channel, in the order of columns.
	unsigned int weights[3];
	unsigned int bits;      ///< Of a channel of the base colours.
	unsigned int filled[3]; ///< By channel, a bit for each level whose modifier errors are there.
};

/// A base colour, red in its highest bits, and what it costs a half of the block.
struct HalfColour
{
	unsigned int colour;
	unsigned int error;
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

	EtcBlockColumns columns;
	/// Individual and differential colours by channel and level: each texel's errors, and those of the halves, where every texel has the
	/// modifier that suits this channel best; then the least of these over the levels.
	ModifierErrors modifierErrors[3][32];
	TableErrors tableErrors[3][32];
	TableErrors leastTableErrors[3];
	/// The colours of both halves that may be in a block within the bound.
	HalfColour halfColours[2][kColours5Bits];

	/// T and H: by channel and by shift of the level; the tables with all channels open, by red, by green for each red, and by blue for
	/// each red and green.
	LevelErrors offsets[3][17];
	PaintTables paintOpen;
	PaintTables paintR;
	PaintTables paintRG[16];
	PaintTables paintRGB[256];
};
} // namespace zortexture
