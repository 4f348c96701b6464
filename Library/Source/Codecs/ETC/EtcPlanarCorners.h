/// @file EtcPlanarCorners.h
/// The corner colours of planar blocks in their packed form.
#pragma once

namespace zortexture
{
/// The corners of one channel, of 6 bits and in green of 7: at the origin, four texels to the right and four texels down.
struct PlanarCorners
{
	unsigned int origin;
	unsigned int horizontal;
	unsigned int vertical;
};

inline void packPlanarCorners(const PlanarCorners& red, const PlanarCorners& green, const PlanarCorners& blue, unsigned int& word1,
                              unsigned int& word2)
{
	word1 = red.origin << 26 | green.origin << 19 | blue.origin << 13 | red.horizontal << 7 | green.horizontal;
	word2 = blue.horizontal << 26 | red.vertical << 20 | green.vertical << 13 | blue.vertical << 7;
}

inline void unpackPlanarCorners(unsigned int word1, unsigned int word2, PlanarCorners& red, PlanarCorners& green, PlanarCorners& blue)
{
	red = {word1 >> 26, word1 >> 7 & 63, word2 >> 20 & 63};
	green = {word1 >> 19 & 127, word1 & 127, word2 >> 13 & 127};
	blue = {word1 >> 13 & 63, word2 >> 26, word2 >> 7 & 63};
}
} // namespace zortexture
