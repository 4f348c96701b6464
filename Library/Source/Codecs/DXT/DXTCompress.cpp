// The encoder of whole images: cuts the image into blocks and pads the partial ones.

#include <cstddef>
#include <cstring>

#include "DXTBlock.h"
#include "DXTCodec.h"

namespace zortexture
{
namespace
{
/// Positions of four texels along a side of the image. The pad takes the last real ones, shifted: in a side of 5 the positions 5, 6, 7
/// are copies of 2, 3, 4. A side of 1 has nothing to shift into all of its pad, which then repeats the first texel.
void sourcePositions(std::size_t start, std::size_t side, std::size_t (&positions)[kDXTBlockSide])
{
	const std::size_t pad = (kDXTBlockSide - side % kDXTBlockSide) % kDXTBlockSide;
	for (std::size_t i = 0; i < kDXTBlockSide; ++i)
	{
		const std::size_t position = start + i;
		const std::size_t shifted = position < pad ? 0 : position - pad;
		positions[i] = position < side ? position : shifted;
	}
}

/// The block's sixteen texels, row after row.
void gatherTexels(const unsigned char* image, std::size_t width, std::size_t height, std::size_t x, std::size_t y,
                  Pixel<unsigned char> (&texels)[kDXTBlockTexels])
{
	std::size_t columns[kDXTBlockSide];
	std::size_t rows[kDXTBlockSide];
	sourcePositions(x, width, columns);
	sourcePositions(y, height, rows);
	unsigned int texel = 0;
	for (const std::size_t row : rows)
	{
		for (const std::size_t column : columns)
		{
			std::memcpy(&texels[texel++], image + (row * width + column) * sizeof(Pixel<unsigned char>), sizeof(Pixel<unsigned char>));
		}
	}
}

void storeWords(const DXTColours& colours, unsigned char* block)
{
	const std::uint64_t word = colours.colour0 | std::uint64_t{colours.colour1} << 16 | std::uint64_t{colours.indices} << 32;
	for (unsigned int byte = 0; byte < 8; ++byte)
	{
		block[byte] = static_cast<unsigned char>(word >> (8 * byte));
	}
}

void encodeBlock(const Pixel<unsigned char> (&texels)[kDXTBlockTexels], unsigned int number, unsigned char* block)
{
	if (number == 2 || number == 3)
	{
		storeAlpha(texels, block, kDXTBlockSide);
	}
	else if (number != 1)
	{
		storeInterpolatedAlpha(texels, block, kDXTBlockSide);
	}
	storeWords(encodeDXTColours(texels, number == 1), block + dxtBlockBytes(number) - 8);
}

/// Sizes wrap like all of the library's.
unsigned int bytesOfTexels(unsigned int texels, unsigned int number)
{
	return number == 1 ? texels / 2 : texels;
}
} // namespace

unsigned int DXTCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                         const unsigned int& number)
{
	const unsigned int blockBytes = dxtBlockBytes(number);
	if (blockBytes == 0)
	{
		return 0;
	}
	if (source == nullptr || destination == nullptr)
	{
		return bytesOfTexels(width * height, number);
	}
	const auto* image = static_cast<const unsigned char*>(source);
	auto* block = static_cast<unsigned char*>(destination);
	for (std::size_t y = 0; y < height; y += kDXTBlockSide)
	{
		for (std::size_t x = 0; x < width; x += kDXTBlockSide, block += blockBytes)
		{
			Pixel<unsigned char> texels[kDXTBlockTexels];
			gatherTexels(image, width, height, x, y, texels);
			encodeBlock(texels, number, block);
		}
	}
	return bytesOfTexels(((width + 3) & ~3U) * ((height + 3) & ~3U), number);
}
} // namespace zortexture
