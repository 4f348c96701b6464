/// @file DXTBlock.h
/// The colour half of a block, which all numbers of the family share: colour 0 in bits 0..15 and colour 1 in bits 16..31 of the first
/// word, both 5:6:5 with red at the top, and sixteen two-bit palette indices in the second, the top left texel in the lowest bits, row
/// after row. Words are little-endian in memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Pixel.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
constexpr unsigned int kDXTBlockSide = 4;
constexpr unsigned int kDXTBlockTexels = 16;

/// Alphas below it are transparent where alpha has one bit.
constexpr unsigned int kDXTOpaqueAlpha = 128;

/// Bytes of a block, or 0 for a number that is none of the family.
constexpr unsigned int dxtBlockBytes(unsigned int number)
{
	return number == 1 ? 8 : (number >= 2 && number <= 5 ? 16 : 0);
}

/// Packs 8-bit channels into 5:6:5 bits; the low bits are cut off.
constexpr std::uint16_t packDXTColour(unsigned int red, unsigned int green, unsigned int blue)
{
	return static_cast<std::uint16_t>((red >> 3) << 11 | (green & 252) << 3 | blue >> 3);
}

/// Both words of a colour half.
struct DXTColours
{
	std::uint16_t colour0;
	std::uint16_t colour1;
	std::uint32_t indices;
};

/// The texels' colours in 5:6:5 bits, and which of them are cut out.
struct DXTTexels
{
	const Pixel<unsigned char>* pixels; ///< 16, row after row
	/// Transparent texels get palette entry 3 of the three-colour mode: a DXT1 block with an alpha below 128.
	bool isPunchThrough;

	bool isCutOut(unsigned int texel) const
	{
		return isPunchThrough && pixels[texel].a < kDXTOpaqueAlpha;
	}
};

/// Encodes the colours of a block.
/// @param mayPunchThrough  whether the format has the transparent palette entry: DXT1.
DXTColours encodeDXTColours(const Pixel<unsigned char>* pixels, bool mayPunchThrough);

/// Blocks of three or more colours: the end points lie on the principal axis of the texels' colours, the others between them.
DXTColours fitDXTPrincipalAxis(const DXTTexels& texels);

/// Decodes `count` whole blocks that lie side by side into four rows of R, G, B, A texels, the starts of which are `rowBytes` apart.
template<ESimdLevel level>
void decodeDXTBlocks(const unsigned char* blocks, std::size_t count, unsigned int number, unsigned char* texels, std::size_t rowBytes);
template<>
void decodeDXTBlocks<eSimdPlain>(const unsigned char* blocks, std::size_t count, unsigned int number, unsigned char* texels,
                                 std::size_t rowBytes);
} // namespace zortexture
