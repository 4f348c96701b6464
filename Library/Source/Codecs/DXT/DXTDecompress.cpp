// The decoder.

#include <cstddef>
#include <cstring>

#include "Codecs/BlockTexels.h"
#include "DXTBlock.h"
#include "DXTCodec.h"

namespace zortexture
{
namespace
{
std::uint64_t loadLittleEndian(const unsigned char* bytes, unsigned int count)
{
	std::uint64_t word = 0;
	for (unsigned int byte = 0; byte < count; ++byte)
	{
		word |= std::uint64_t{bytes[byte]} << (8 * byte);
	}
	return word;
}

/// 5:6:5 bits spread over 8 by repeating the high ones. Opaque.
Pixel<unsigned char> expandColour(unsigned int colour)
{
	const unsigned int red = colour >> 11;
	const unsigned int green = colour >> 5 & 63;
	const unsigned int blue = colour & 31;
	return {static_cast<unsigned char>(red << 3 | red >> 2), static_cast<unsigned char>(green << 2 | green >> 4),
	        static_cast<unsigned char>(blue << 3 | blue >> 2), 255};
}

/// A colour between two, by weights whose sum is 64. Opaque.
Pixel<unsigned char> mix(const Pixel<unsigned char>& a, unsigned int weightA, const Pixel<unsigned char>& b, unsigned int weightB)
{
	const auto channel = [=](unsigned int valueA, unsigned int valueB)
	{
		return static_cast<unsigned char>((valueA * weightA + valueB * weightB) >> 6);
	};
	return {channel(a.r, b.r), channel(a.g, b.g), channel(a.b, b.b), 255};
}

/// The palette of a colour half. The three-colour mode's last entry is black, and transparent in DXT1; DXT2 and DXT3 have no such mode.
void makePalette(unsigned int colour0, unsigned int colour1, unsigned int number, Pixel<unsigned char> (&palette)[4])
{
	palette[0] = expandColour(colour0);
	palette[1] = expandColour(colour1);
	const bool knowsThreeColours = number != 2 && number != 3;
	if (knowsThreeColours && colour0 <= colour1)
	{
		palette[2] = mix(palette[0], 32, palette[1], 32);
		palette[3] = {0, 0, 0, static_cast<unsigned char>(number == 1 ? 0 : 255)};
		return;
	}
	palette[2] = mix(palette[0], 42, palette[1], 22); // nearly thirds, and what decoded textures have always held
	palette[3] = mix(palette[0], 22, palette[1], 42);
}

void decodeColours(const unsigned char* block, unsigned int number, Pixel<unsigned char> (&texels)[kDXTBlockTexels])
{
	const std::uint64_t word = loadLittleEndian(block, 8);
	Pixel<unsigned char> palette[4];
	makePalette(word & 0xFFFF, word >> 16 & 0xFFFF, number, palette);
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		texels[texel] = palette[word >> (32 + 2 * texel) & 3];
	}
}

void decodeAlpha(const unsigned char* block, Pixel<unsigned char> (&texels)[kDXTBlockTexels])
{
	const std::uint64_t word = loadLittleEndian(block, 8);
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		texels[texel].a = static_cast<unsigned char>((word >> (4 * texel) & 15) * 17);
	}
}

void decodeInterpolatedAlpha(const unsigned char* block, Pixel<unsigned char> (&texels)[kDXTBlockTexels])
{
	const unsigned int alpha0 = block[0];
	const unsigned int alpha1 = block[1];
	unsigned int palette[8] = {alpha0, alpha1, 0, 0, 0, 0, 0, 255};
	// The steps between the two; with alpha 0 <= alpha 1 there are fewer of them, and the last two entries are constant.
	const unsigned int steps = alpha0 <= alpha1 ? 5 : 7;
	for (unsigned int step = 1; step < steps; ++step)
	{
		palette[step + 1] = ((steps - step) * alpha0 + step * alpha1) / steps;
	}
	const std::uint64_t indices = loadLittleEndian(block + 2, 6);
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		texels[texel].a = static_cast<unsigned char>(palette[indices >> (3 * texel) & 7]);
	}
}

void decodeBlock(const unsigned char* block, unsigned int number, Pixel<unsigned char> (&texels)[kDXTBlockTexels])
{
	decodeColours(block + dxtBlockBytes(number) - 8, number, texels);
	if (number == 2 || number == 3)
	{
		decodeAlpha(block, texels);
	}
	else if (number != 1)
	{
		decodeInterpolatedAlpha(block, texels);
	}
}
} // namespace

template<>
void decodeDXTBlocks<eSimdPlain>(const unsigned char* blocks, std::size_t count, unsigned int number, unsigned char* texels,
                                 std::size_t rowBytes)
{
	for (std::size_t i = 0; i < count; ++i)
	{
		Pixel<unsigned char> decoded[kDXTBlockTexels];
		decodeBlock(blocks + i * dxtBlockBytes(number), number, decoded);
		for (std::size_t row = 0; row < kDXTBlockSide; ++row)
		{
			std::memcpy(texels + row * rowBytes + i * 16, decoded + row * kDXTBlockSide, 16);
		}
	}
}

unsigned int DXTDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                           const unsigned int& number)
{
	const unsigned int blockBytes = dxtBlockBytes(number);
	if (blockBytes == 0)
	{
		return 0;
	}
	const unsigned int size = width * height * 4; // wraps like every size of the library
	if (source == nullptr || destination == nullptr)
	{
		return size;
	}
	withSimdLevel(
	    [&](auto level)
	    {
		    scatterBlocks(static_cast<const unsigned char*>(source), blockBytes, static_cast<unsigned char*>(destination), width, height,
		                  sizeof(Pixel<unsigned char>),
		                  [&](const unsigned char* blocks, std::size_t count, unsigned char* texels, std::size_t rowBytes)
		                  { decodeDXTBlocks<level>(blocks, count, number, texels, rowBytes); });
	    });
	return size;
}
} // namespace zortexture
