/// @file TesselPlanes.h
/// What the fast compressors of both generations do with colours: first choice, upscale, correction.
#pragma once

#include <cstddef>

#include "Pixel.h"

namespace zortexture
{
using TesselPixel = Pixel<unsigned char>;

/// A compressor's image, colours and planes; see TesselCompressor for the fields.
struct TesselPlanes
{
	unsigned width;
	unsigned height;
	unsigned blocksX;
	unsigned blocksY;
	unsigned blockWidth;
	unsigned blockHeight;
	const TesselPixel* image;
	unsigned* coloursA;
	unsigned* coloursB;
	TesselPixel* upscaledA;
	TesselPixel* upscaledB;
};

template<typename Compressor>
TesselPlanes planesOf(Compressor& compressor)
{
	return {compressor.width,           compressor.height,           compressor.blocksX,         compressor.blocksY,
	        compressor.blockWidth,      compressor.blockHeight,      compressor.image.data(),    compressor.coloursA.data(),
	        compressor.coloursB.data(), compressor.upscaledA.data(), compressor.upscaledB.data()};
}

/// The pixels of one block, row by row: the image and the two planes.
struct TesselBlockPixels
{
	TesselPixel image[32];
	TesselPixel a[32];
	TesselPixel b[32];
};

template<typename Compressor>
TesselBlockPixels loadTesselBlock(const Compressor& compressor, unsigned x, unsigned y)
{
	TesselBlockPixels block;
	std::size_t at = 0;
	for (unsigned row = 0; row < compressor.blockHeight; ++row)
	{
		const std::size_t line = (std::size_t(y) * compressor.blockHeight + row) * compressor.width;
		for (unsigned column = 0; column < compressor.blockWidth; ++column, ++at)
		{
			const std::size_t pixel = line + std::size_t(x) * compressor.blockWidth + column;
			block.image[at] = compressor.image[pixel];
			block.a[at] = compressor.upscaledA[pixel];
			block.b[at] = compressor.upscaledB[pixel];
		}
	}
	return block;
}

inline unsigned packTesselPixel(const TesselPixel& pixel)
{
	return pixel.r | (unsigned(pixel.g) << 8) | (unsigned(pixel.b) << 16) | (unsigned(pixel.a) << 24);
}

inline TesselPixel unpackTesselPixel(unsigned colour)
{
	return {static_cast<unsigned char>(colour), static_cast<unsigned char>(colour >> 8), static_cast<unsigned char>(colour >> 16),
	        static_cast<unsigned char>(colour >> 24)};
}

/// The squared distance over all four channels.
inline unsigned squareColourDistance(const TesselPixel& a, const TesselPixel& b)
{
	const int dr = a.r - b.r;
	const int dg = a.g - b.g;
	const int db = a.b - b.b;
	const int da = a.a - b.a;
	return static_cast<unsigned>(dr * dr + dg * dg + db * db + da * da);
}

/// The sum of the squared distances of `count` pixels, not divided by anything.
unsigned calculateImageBlockErrorMeanSquared(const TesselPixel* a, const TesselPixel* b, unsigned count);

/// Makes A the darker of two packed colours, at equal luminance the one with the smaller packed value.
void orderTesselColours(unsigned& colourA, unsigned& colourB);

/// The pair of pixels farthest apart, the first found of equals, in the order of orderTesselColours.
void selectColoursAB_MaxDistance(const TesselPixel* pixels, unsigned count, unsigned& colourA, unsigned& colourB);

/// The first colours of one block, from its own pixels or from a window of twice its width and height that wraps at the edges.
void calculateColoursABForBlock(const TesselPlanes& planes, unsigned x, unsigned y, unsigned& colourA, unsigned& colourB,
                                bool overlapWindow);

/// The first colours of all blocks.
void calculateColoursAB(const TesselPlanes& planes, bool overlapWindow);

/// Upscales one 8-bit colour plane over the area between the centres of four blocks: a block of pixels, row by row.
void interpolateColours4x4_uint8(unsigned p, unsigned q, unsigned r, unsigned s, TesselPixel* out);
void interpolateColours8x4_uint8(unsigned p, unsigned q, unsigned r, unsigned s, TesselPixel* out);

/// Upscales the colours of all blocks to the image's size. Colours stay unquantised, at 8 bits a channel.
void interpolateColoursAB(const TesselPlanes& planes);

/// Corrects a block's two colours by a least-squares fit of its residuals.
/// @param weights    the share of colour B of each pixel.
/// @param count      pixels of the block.
/// @param threshold  a squared mean residual below it leaves the colours alone.
void fitTesselColours(const TesselBlockPixels& block, const float* weights, unsigned count, float threshold, unsigned& colourA,
                      unsigned& colourB);
} // namespace zortexture
