/// @file FormatShape.h
/// Storage figures of the numbered formats.
#pragma once

#include <cstdint>

namespace zortexture
{
/// How a numbered format is stored. The least dimensions are what a level's size is rounded up to.
struct FormatShape
{
	std::uint8_t bitsPerPixel; ///< 0 for ASTC (counted in blocks) and for formats without storage
	std::uint8_t minX;         ///< pixels
	std::uint8_t minY;
	std::uint8_t minZ;
};

/// True for the ids whose high half is zero.
inline bool isNumberedFormat(std::uint64_t pixelFormat)
{
	return (pixelFormat >> 32) == 0;
}

/// True for formats that are stored in blocks of 128 bits, whatever their number of pixels.
bool isASTCFormat(std::uint64_t pixelFormat);

/// The figures of a pixel-type identifier. Uncompressed layouts have bits per pixel 0 here and a shape of one
/// pixel, as numbers that name no format have.
const FormatShape& formatShape(std::uint64_t pixelFormat);
} // namespace zortexture
