/// @file TesselModulation.h
/// Modulation indices of a 2 by 2 group of blocks, and the weights they stand for.
#pragma once

#include <array>
#include <cstdint>

#include "TesselCompressor.h"
#include "TesselTables.h"

namespace zortexture
{
/// One value per pixel of a block group, [y][x], with the top left block in the corner. 4bpp groups fill the left half.
using TesselGroup = std::array<std::array<std::uint8_t, 16>, 8>;

/// Writes the stored indices and modes of one block into a group, its top left pixel at (offsetX, offsetY). The mode is the
/// block's mode flag at 4bpp and a TesselInterpolation at 2bpp. Left-out pixels of a 2bpp block get index 0.
/// @param bpp  2 or 4.
void unpackModulations(const TesselBlockWords& block, unsigned offsetX, unsigned offsetY, TesselGroup& values, TesselGroup& modes,
                       unsigned bpp);

/// The weight of a 2bpp pixel at group position (x, y), which must not lie on the group's rim. Stored and left-out pixels are told
/// apart by parity, and block sizes are even, so the position in the group serves.
inline unsigned weightOf2bppPixel(const TesselGroup& values, const TesselGroup& modes, unsigned x, unsigned y)
{
	const auto weightAt = [&values](unsigned column, unsigned row) -> unsigned
	{
		return ModVals[values[row][column]];
	};
	const unsigned mode = modes[y][x];
	if (mode == kTesselDirect || ((x ^ y) & 1) == 0)
	{
		return weightAt(x, y);
	}
	if (mode == kTesselFourNeighbours)
	{
		return (weightAt(x, y - 1) + weightAt(x, y + 1) + weightAt(x - 1, y) + weightAt(x + 1, y) + 2) / 4;
	}
	if (mode == kTesselHorizontal)
	{
		return (weightAt(x - 1, y) + weightAt(x + 1, y) + 1) / 2;
	}
	return (weightAt(x, y - 1) + weightAt(x, y + 1) + 1) / 2;
}
} // namespace zortexture
