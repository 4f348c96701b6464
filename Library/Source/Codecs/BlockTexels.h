/// @file BlockTexels.h
/// Cutting an image into the 4 by 4 blocks of the ETC and DXT families, with their padding of partial blocks.
#pragma once

#include <cstddef>
#include <cstring>

namespace zortexture
{
/// Positions of four texels along a side of the image. The pad takes the last real ones, shifted: in a side of 5 the positions 5, 6, 7
/// are copies of 2, 3, 4. A side of 1 has nothing to shift into all of its pad, which then repeats the first texel.
inline void sourcePositions(std::size_t start, std::size_t side, std::size_t (&positions)[4])
{
	const std::size_t pad = (4 - side % 4) % 4;
	for (std::size_t i = 0; i < 4; ++i)
	{
		const std::size_t position = start + i;
		const std::size_t shifted = position < pad ? 0 : position - pad;
		positions[i] = position < side ? position : shifted;
	}
}

/// Copies the sixteen texels of the block at (x, y), row after row, as they lie in the image.
inline void gatherTexels(const unsigned char* image, std::size_t width, std::size_t height, std::size_t x, std::size_t y,
                         std::size_t texelBytes, unsigned char* texels)
{
	std::size_t columns[4];
	std::size_t rows[4];
	sourcePositions(x, width, columns);
	sourcePositions(y, height, rows);
	const std::size_t rowBytes = 4 * texelBytes;
	for (const std::size_t row : rows)
	{
		if (x + 4 <= width)
		{
			std::memcpy(texels, image + (row * width + x) * texelBytes, rowBytes);
			texels += rowBytes;
			continue;
		}
		for (const std::size_t column : columns)
		{
			std::memcpy(texels, image + (row * width + column) * texelBytes, texelBytes);
			texels += texelBytes;
		}
	}
}

/// Decodes an image of blocks, which follow each other row after row. `decode(blocks, count, texels, rowBytes)` writes `count` whole blocks
/// side by side, four rows whose starts are `rowBytes` apart; it gets blocks that cross an edge one by one, into room of their own.
template<typename Decode>
inline void scatterBlocks(const unsigned char* blocks, std::size_t blockBytes, unsigned char* image, std::size_t width, std::size_t height,
                          std::size_t texelBytes, Decode&& decode)
{
	for (std::size_t y = 0; y < height; y += 4)
	{
		const std::size_t rows = height - y < 4 ? height - y : 4;
		const std::size_t whole = rows == 4 ? width / 4 : 0;
		if (whole != 0)
		{
			decode(blocks, whole, image + y * width * texelBytes, width * texelBytes);
			blocks += whole * blockBytes;
		}
		for (std::size_t x = whole * 4; x < width; x += 4, blocks += blockBytes)
		{
			unsigned char texels[16 * 4];
			decode(blocks, std::size_t{1}, texels, 4 * texelBytes);
			const std::size_t columns = width - x < 4 ? width - x : 4;
			for (std::size_t row = 0; row < rows; ++row)
			{
				std::memcpy(image + ((y + row) * width + x) * texelBytes, texels + row * 4 * texelBytes, columns * texelBytes);
			}
		}
	}
}
} // namespace zortexture
