// A small decoder of ETC1 alone that gives 32-bit texels, for callers outside the library. It works on the bytes of a block as they
// lie, read as little-endian words.

#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "ETCCodec.h"
#include "EtcBlock.h"
#include "EtcDecodeBlocks.h"

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

void decodeBlock(const unsigned char* block, unsigned char* texels, std::size_t rowBytes)
{
	const unsigned int word = littleEndianWord(block);
	const unsigned int indices = littleEndianWord(block + 4);
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
		unsigned char* pixel = texels + row * rowBytes + column * 4;
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			pixel[channel] = clamp(static_cast<int>(bases[half][channel]) + modifier);
		}
		pixel[3] = 255;
	}
}

/// Decodes whole blocks into rows of `width` texels; see ZORTDecompressETC for what crosses the right edge. Sides beyond the signed range
/// count as empty.
/// @return the texels written, which follow each other from the first one on.
std::size_t ETCTextureDecompress(const unsigned char* source, unsigned int width, unsigned int height, unsigned char* destination)
{
	if (static_cast<int>(width) < 1 || static_cast<int>(height) < 1)
	{
		return 0;
	}
	const std::size_t columns = (static_cast<std::size_t>(width) + 3) / 4;
	const std::size_t rows = (static_cast<std::size_t>(height) + 3) / 4;
	const std::size_t rowBytes = static_cast<std::size_t>(width) * 4;
	withSimdLevel(
	    [&](auto level)
	    {
		    for (std::size_t row = 0; row < rows; ++row)
		    {
			    decodeEtc1Blocks<level>({source + row * columns * 8, columns, destination + row * 4 * rowBytes, rowBytes});
		    }
	    });
	return (rows * 4 - 1) * width + columns * 4;
}
} // namespace

template<>
void decodeEtc1Blocks<eSimdPlain>(const EtcRun& run)
{
	for (std::size_t i = 0; i < run.count; ++i)
	{
		decodeBlock(run.blocks + i * 8, run.texels + i * 16, run.rowBytes);
	}
}

int ZORTDecompressETC(const void* source, const unsigned int& width, const unsigned int& height, void* destination, const int& /*mode*/)
{
	const auto* blocks = static_cast<const unsigned char*>(source);
	auto* pixels = static_cast<unsigned char*>(destination);
	const unsigned int paddedWidth = width < 4 ? 4 : width;
	const unsigned int paddedHeight = height < 4 ? 4 : height;
	const int consumed = static_cast<int>(paddedWidth * paddedHeight) / 2;
	if (width < 4 || height < 4)
	{
		// Room for whole blocks on both sides, whatever the row length.
		const std::size_t room = (static_cast<std::size_t>(paddedWidth) + 3) / 4 * ((static_cast<std::size_t>(paddedHeight) + 3) / 4) * 64;
		std::vector<unsigned char> scratch(room);
		ETCTextureDecompress(blocks, paddedWidth, paddedHeight, scratch.data());
		const std::size_t rowBytes = static_cast<std::size_t>(width) * 4;
		for (unsigned int y = 0; y < height && rowBytes != 0; ++y)
		{
			std::memcpy(pixels + y * rowBytes, scratch.data() + texelIndex(paddedWidth, 0, y) * 4, rowBytes);
		}
		return consumed;
	}

	// Outside the image the texels of its last blocks are B, G, R, A; where nothing was decoded, all that the caller holds turns round.
	const std::size_t texels = static_cast<std::size_t>(width) * height;
	const std::size_t written = ETCTextureDecompress(blocks, width, height, pixels);
	for (std::size_t texel = written == 0 ? 0 : texels; texel < (written == 0 ? texels : written); ++texel)
	{
		std::swap(pixels[texel * 4], pixels[texel * 4 + 2]);
	}
	return consumed;
}
} // namespace zortexture
