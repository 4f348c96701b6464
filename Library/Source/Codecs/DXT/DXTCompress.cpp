// The encoder of whole images: cuts the image into blocks and pads the partial ones.

#include <cstddef>

#include "Codecs/BlockTexels.h"
#include "DXTBlock.h"
#include "DXTCodec.h"

namespace zortexture
{
namespace
{
void storeWords(const DXTColours& colours, unsigned char* block)
{
	const std::uint64_t word = colours.colour0 | std::uint64_t{colours.colour1} << 16 | std::uint64_t{colours.indices} << 32;
	for (unsigned int byte = 0; byte < 8; ++byte)
	{
		block[byte] = static_cast<unsigned char>(word >> (8 * byte));
	}
}

void encodeBlock(const Pixel<unsigned char>* texels, unsigned int number, unsigned char* block)
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
			gatherTexels(image, width, height, x, y, sizeof(texels[0]), reinterpret_cast<unsigned char*>(texels));
			encodeBlock(texels, number, block);
		}
	}
	return bytesOfTexels(((width + 3) & ~3U) * ((height + 3) & ~3U), number);
}
} // namespace zortexture
