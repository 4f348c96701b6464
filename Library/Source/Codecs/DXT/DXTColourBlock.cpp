// The colour half of a block: blocks of one and of two colours are stored as they are, all others are fitted.

#include <algorithm>

#include "DXTBlock.h"
#include "DXTCodec.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kManyColours = 3;

std::uint16_t pack(const Pixel<unsigned char>& pixel)
{
	return packDXTColour(pixel.r, pixel.g, pixel.b);
}

/// The words with the palette index that `indexOf` gives for each texel.
template<typename Function>
DXTColours storeIndices(std::uint16_t colour0, std::uint16_t colour1, Function indexOf)
{
	std::uint32_t indices = 0;
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		indices |= std::uint32_t{indexOf(texel)} << (2 * texel);
	}
	return {colour0, colour1, indices};
}

/// A block with transparent texels takes the three-colour mode, which colour 0 <= colour 1 signals: black comes first.
DXTColours encodeOneColour(const DXTTexels& texels, std::uint16_t colour)
{
	if (!texels.isPunchThrough)
	{
		return {colour, 0, 0};
	}
	return storeIndices(0, colour, [&](unsigned int texel) { return texels.isCutOut(texel) ? 3U : 1U; });
}

/// Both colours are end points; the order of their numbers selects the mode.
DXTColours encodeTwoColours(const DXTTexels& texels, std::uint16_t first, std::uint16_t second)
{
	const auto [smaller, larger] = std::minmax(first, second);
	const std::uint16_t colour0 = texels.isPunchThrough ? smaller : larger;
	const std::uint16_t colour1 = texels.isPunchThrough ? larger : smaller;
	return storeIndices(colour0, colour1,
	                    [&](unsigned int texel)
	                    {
		                    if (texels.isCutOut(texel))
		                    {
			                    return 3U;
		                    }
		                    return pack(texels.pixels[texel]) == colour1 ? 1U : 0U;
	                    });
}
} // namespace

unsigned int countColours(const unsigned char* red, const unsigned char* green, const unsigned char* blue, unsigned short* colours)
{
	unsigned int count = 0;
	for (unsigned int texel = 0; texel < kDXTBlockTexels && count < kManyColours; ++texel)
	{
		const std::uint16_t colour = packDXTColour(red[texel], green[texel], blue[texel]);
		if (std::find(colours, colours + count, colour) == colours + count)
		{
			colours[count++] = colour;
		}
	}
	return count;
}

DXTColours encodeDXTColours(const Pixel<unsigned char>* pixels, bool mayPunchThrough)
{
	unsigned char red[kDXTBlockTexels];
	unsigned char green[kDXTBlockTexels];
	unsigned char blue[kDXTBlockTexels];
	unsigned char alpha[kDXTBlockTexels];
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		red[texel] = pixels[texel].r;
		green[texel] = pixels[texel].g;
		blue[texel] = pixels[texel].b;
		alpha[texel] = pixels[texel].a;
	}
	const DXTTexels texels = {pixels, mayPunchThrough && canHavePunchThrough(alpha)};
	unsigned short colours[kManyColours] = {};
	switch (countColours(red, green, blue, colours))
	{
	case 1:
		return encodeOneColour(texels, colours[0]);
	case 2:
		return encodeTwoColours(texels, colours[0], colours[1]);
	default:
		return fitDXTPrincipalAxis(texels);
	}
}
} // namespace zortexture
