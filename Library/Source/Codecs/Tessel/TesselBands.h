/// @file TesselBands.h
/// The decoder of both generations in vectors: whole rows of blocks are unpacked once, then rows of pixels are written between the
/// centres of two rows of blocks.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// Blocks and the picture to decode from them.
struct TesselBandPicture
{
	/// numX * numY blocks, in twiddled order in the first generation, in rows in the second.
	const unsigned char* blocks;
	std::uint32_t numX;
	std::uint32_t numY;
	bool is2bpp;
	bool isSecondGeneration;
	unsigned char* pixels;
	/// The part that is written, no more than the blocks cover.
	std::size_t width;
	std::size_t height;
	/// Pixels from row to row.
	std::size_t pitch;
};

/// Decodes by the vector unit in use.
/// @return false, with nothing written, where there is none, where memory fails, or where a low picture would need far more than its size.
bool decodeTesselBands(const TesselBandPicture& picture);

/// Blocks that a row of blocks is rounded up to, so that all of its arrays are read and written in whole registers.
constexpr std::size_t kTesselBandStep = 8;

/// A row of blocks, unpacked. Column 0 is the last block of the row and column 1 its first, so that areas are counted by the column at
/// their left; after the last block the first comes again, and then fill.
struct TesselBandRow
{
	std::uint32_t* modulation;
	std::uint32_t* colourWords;
	/// Colours A and B in the working form, but with their alpha doubled: then all four channels have five bits.
	std::uint32_t* a;
	std::uint32_t* b;
	/// For each of the four rows of pixels the share of B in eighths, with kTesselBandPunch added where the pixel is punch-through.
	std::uint8_t* weights[4];
	/// 2bpp: for each pixel column 255 where the block is in the mode, else 0; for the modes 1, 2 and 3 of TesselInterpolation.
	std::uint8_t* modes[3];
};

constexpr std::uint8_t kTesselBandPunch = 16;

/// Between the centres of two rows of blocks.
struct TesselBand
{
	const TesselBandRow* upper;
	const TesselBandRow* lower;
	/// Columns of the rows, fill included, a multiple of kTesselBandStep.
	std::size_t columns;
	/// For every column whether its area is hard; null when none is.
	const std::uint8_t* hard;
	/// Room for the four lines that the kernel makes of the colours, 4 * columns numbers each.
	std::int16_t* lines[4];
	/// Pixel rows of the band that lie in the picture, [first, end) of 0 to 4, and where row 0 would begin in the picture.
	unsigned int first;
	unsigned int end;
	std::size_t width;
	std::size_t pitch;
};

/// Unpacks the colours of a row from its colour words.
template<ESimdLevel level>
void unpackTesselBandColours(const TesselBandRow& row, std::size_t columns, bool isSecondGeneration);

/// Gives the left-out pixels of 2bpp their weights, in the lower half of one row of blocks and the upper half of the next.
template<ESimdLevel level>
void fillTesselBandWeights(const TesselBandRow& upper, const TesselBandRow& lower, std::size_t columns);

/// Writes the pixels of a band.
/// @param pixels  where pixel row `first` of the band begins.
template<ESimdLevel level>
void writeTesselBand(const TesselBand& band, bool is2bpp, bool isSecondGeneration, unsigned char* pixels);
} // namespace zortexture
