// A slow decoder of whole Tessel images: every pixel by itself, from products and from the bit positions of the block layout. It
// shares no code with the library's decoders.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

struct OracleBlock
{
	std::uint32_t modulation = 0;
	std::uint32_t colours = 0;
};

/// Blocks in the order of the data, as bytes.
std::vector<std::uint8_t> toBytes(const std::vector<OracleBlock>& blocks);

std::vector<OracleBlock> randomBlocks(std::size_t count, std::mt19937& random);

/// The place of a block of the first generation, built from a list of its bits.
std::size_t oracleTwiddle(unsigned numX, unsigned numY, unsigned bx, unsigned by);

/// The blocks that a decoder looks at, in each direction.
unsigned oracleBlocksX(unsigned width, bool is2bpp, bool second);
unsigned oracleBlocksY(unsigned height, bool second);

/// Decodes to rgba bytes. Blocks past the end of `blocks` are zero.
std::vector<std::uint8_t> oracleDecode(const std::vector<OracleBlock>& blocks, unsigned width, unsigned height, bool is2bpp, bool second);
