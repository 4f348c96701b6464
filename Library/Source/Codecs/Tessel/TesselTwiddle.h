/// @file TesselTwiddle.h
/// The order of the blocks in a texture.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zortexture
{
/// The place of block (blockX, blockY) of numX by numY blocks in twiddled order: bits interleaved, those of Y in the lower place,
/// as far as the shorter axis reaches; above them what remains of the coordinate of the longer axis. Where the counts are not
/// powers of two the place may lie past the end of the data.
inline std::uint64_t twiddledBlockIndex(std::uint32_t numX, std::uint32_t numY, std::uint32_t blockX, std::uint32_t blockY)
{
	const std::uint64_t shorter = std::min(numX, numY);
	std::uint64_t index = 0;
	unsigned bits = 0;
	for (; (std::uint64_t(1) << bits) < shorter; ++bits)
	{
		index |= std::uint64_t((blockY >> bits) & 1) << (2 * bits);
		index |= std::uint64_t((blockX >> bits) & 1) << (2 * bits + 1);
	}
	const std::uint64_t longer = numX > numY ? blockX : blockY;
	// 32 interleaved bits of each leave nothing of a 32-bit coordinate, and 64 is no valid shift count.
	return bits < 32 ? index | ((longer >> bits) << (2 * bits)) : index;
}
} // namespace zortexture
