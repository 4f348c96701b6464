// A small decoder of ETC1 alone that gives 32-bit texels, for callers outside the library. It works on the bytes of a block as they
// lie, read as little-endian words.

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "ETCCodec.h"
#include "EtcBlock.h"

namespace zortexture
{
namespace
{
/// The flip and diff bits of the first four bytes.
constexpr unsigned int ETC_FLIP = 0x1000000;
constexpr unsigned int ETC_DIFF = 0x2000000;

/// Intensity modifiers in the order of the stored index.
constexpr int mod[8][4] = {{2, 8, -2, -8},     {5, 17, -5, -17},   {9, 29, -9, -29},     {13, 42, -13, -42},
                           {18, 60, -18, -60}, {24, 80, -24, -80}, {33, 106, -33, -106}, {47, 183, -47, -183}};

unsigned int littleEndianWord(const unsigned char* bytes)
{
	return bytes[0] | (static_cast<unsigned int>(bytes[1]) << 8) | (static_cast<unsigned int>(bytes[2]) << 16) |
	       (static_cast<unsigned int>(bytes[3]) << 24);
}

/// Bits above the five of a base stay in the shifts until the result is cut to a byte.
unsigned int expandDifferential(unsigned int base)
{
	return ((base >> 2) + base * 8) & 0xFF;
}

/// Both base colours, from bytes 0 to 2: R, G, B of the first, then of the second.
void baseColours(unsigned int word, unsigned int (&bases)[2][3])
{
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const unsigned int byte = (word >> (8 * channel)) & 0xFF;
		if ((word & ETC_DIFF) == 0)
		{
			bases[0][channel] = expandBits(byte >> 4, 4);
			bases[1][channel] = expandBits(byte & 15, 4);
		}
		else
		{
			const unsigned int first = byte >> 3;
			const unsigned int second = (first + static_cast<unsigned int>(signedDelta(byte, 0))) & 0xFF;
			bases[0][channel] = expandDifferential(first);
			bases[1][channel] = expandDifferential(second);
		}
	}
}

/// Decodes whole blocks to 0xAARRGGBB words in rows of `width`; see ZORTDecompressETC for what crosses the right edge.
int ETCTextureDecompress(const unsigned char* source, int width, int height, unsigned char* destination)
{
	const int size = static_cast<int>(static_cast<unsigned int>(width) * static_cast<unsigned int>(height)) / 2;
	if (height < 1)
	{
		return size;
	}
	const auto columns = static_cast<unsigned int>(width < 0 ? 0 : width);
	const auto rows = static_cast<unsigned int>(height);
	for (unsigned int y = 0; y < rows; y += 4)
	{
		for (unsigned int x = 0; x < columns; x += 4, source += 8)
		{
			const unsigned int word = littleEndianWord(source);
			const unsigned int indices = littleEndianWord(source + 4);
			const bool flip = (word & ETC_FLIP) != 0;
			const unsigned int codewords[2] = {(word >> 29) & 7, (word >> 26) & 7};
			unsigned int bases[2][3];
			baseColours(word, bases);
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				const unsigned int column = texel & 3;
				const unsigned int row = texel >> 2;
				const unsigned int half = (flip ? row : column) >> 1;
				// Texels are numbered down the columns; byte 0 and 2 hold numbers 8 to 15, byte 1 and 3 numbers 0 to 7.
				const unsigned int bit = (column * 4 + row) ^ 8;
				const unsigned int index = getbit(indices, bit, 1) | getbit(indices, bit + 16, 0);
				const int modifier = mod[codewords[half]][index];
				std::uint32_t pixel = 0xFF;
				for (const unsigned int base : bases[half])
				{
					pixel = (pixel << 8) | clamp(static_cast<int>(base) + modifier);
				}
				std::memcpy(destination + texelIndex(columns, x + column, y + row) * 4, &pixel, 4);
			}
		}
	}
	return size;
}
} // namespace

int ZORTDecompressETC(const void* source, const unsigned int& width, const unsigned int& height, void* destination, const int& /*mode*/)
{
	const auto* blocks = static_cast<const unsigned char*>(source);
	auto* pixels = static_cast<unsigned char*>(destination);
	int consumed = 0;
	if (width < 4 || height < 4)
	{
		const unsigned int scratchWidth = width < 4 ? 4 : width;
		const unsigned int scratchHeight = height < 4 ? 4 : height;
		// Room for whole blocks on both sides, whatever the row length.
		const std::size_t room =
		    (static_cast<std::size_t>(scratchWidth) + 3) / 4 * ((static_cast<std::size_t>(scratchHeight) + 3) / 4) * 64;
		std::vector<unsigned char> scratch(room);
		consumed = ETCTextureDecompress(blocks, static_cast<int>(scratchWidth), static_cast<int>(scratchHeight), scratch.data());
		const std::size_t rowBytes = static_cast<std::size_t>(width) * 4;
		for (unsigned int y = 0; y < height && rowBytes != 0; ++y)
		{
			std::memcpy(pixels + y * rowBytes, scratch.data() + texelIndex(scratchWidth, 0, y) * 4, rowBytes);
		}
	}
	else
	{
		consumed = ETCTextureDecompress(blocks, static_cast<int>(width), static_cast<int>(height), pixels);
	}

	const std::size_t texels = static_cast<std::size_t>(width) * height;
	for (std::size_t texel = 0; texel < texels; ++texel)
	{
		std::swap(pixels[texel * 4], pixels[texel * 4 + 2]);
	}
	return consumed;
}
} // namespace zortexture
