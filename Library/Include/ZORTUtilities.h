/// @file ZORTUtilities.h
/// Format queries and the small free utilities: sizes, twiddling, tiling, raw texture creation.
#ifndef ZORTUTILITIES_H
#define ZORTUTILITIES_H

#include "ZORTDefines.h"

/// Bits per pixel of a pixel-type identifier: the sum of the channel widths of an uncompressed layout, the
/// table's figure of a compressed one. 0 for ASTC (whose sizes are counted in 128-bit blocks), for the formats
/// without storage (BC6, BC7) and for numbers that name no format.
ZORT_API unsigned int ZORTGetBitsPerPixel(unsigned long long pixelFormat);

/// The units, in pixels, that a level's dimensions are rounded up to: for Tessel I two by two blocks, for other
/// block formats one block. 1, 1, 1 for every uncompressed layout.
ZORT_API void ZORTGetFormatMinDims(unsigned long long pixelFormat, unsigned int& minX, unsigned int& minY, unsigned int& minZ);

/// Bytes of texture data that a header describes.
/// @param mipLevel     a level, or -1 for the sum of all levels. A level past the last one is computed all the same.
/// @param allSurfaces  count every array member, otherwise one.
/// @param allFaces     count every face, otherwise one.
/// The bits of all levels are added before they are rounded down to bytes; the result wraps at 32 bits.
ZORT_API unsigned int ZORTGetTextureDataSize(ZORTextureHeaderV3 header, int mipLevel, bool allSurfaces, bool allFaces);

/// Interleaves two 16-bit coordinates into a Morton index: bit k of y at bit 2k, bit k of x at bit 2k + 1.
ZORT_API void ZORTTextureTwiddle(unsigned int& twiddled, unsigned int x, unsigned int y);

/// The inverse of ZORTTextureTwiddle.
ZORT_API void ZORTTextureDeTwiddle(unsigned int& x, unsigned int& y, unsigned int twiddled);

/// Fills dstWidth x dstHeight elements of `elementSize` bytes by repeating the source image as a tile.
/// @param twiddled  both images are in Morton order; otherwise both are in row order.
/// The caller provides srcWidth x srcHeight elements (in Morton order: up to the largest index in use). Nothing is
/// done when the source has no elements.
ZORT_API void ZORTTextureLoadTiled(unsigned char* dst, unsigned int dstWidth, unsigned int dstHeight, const unsigned char* src,
                                   unsigned int srcWidth, unsigned int srcHeight, unsigned int elementSize, bool twiddled);

/// Allocates a 52-byte header followed by a zeroed pixel area, with the C allocator; the caller releases it with free.
/// The header has no pixel format and one level, also when `mipMapped` makes room for a whole chain.
/// @param minWidth,minHeight  the least size, in pixels, that a level is counted with.
/// @return null when memory runs out.
ZORT_API ZORTextureHeaderV3* ZORTTextureCreate(unsigned int width, unsigned int height, unsigned int minWidth, unsigned int minHeight,
                                               unsigned int bitsPerPixel, bool mipMapped);

#endif // ZORTUTILITIES_H
