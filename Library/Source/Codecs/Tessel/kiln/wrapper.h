/// @file wrapper.h
/// What the codec entry calls of this layer.
#pragma once

/// Decodes one image to 8-bit rgba, rows tightly packed. The data holds the blocks of the size rounded up to whole blocks.
/// @param version  0 is the first generation with twiddled blocks, any other value the second with blocks in rows.
/// @return 1, or 0 if the working image cannot be had.
int tessel_decompress(const void* compressed, void* pixels, unsigned width, unsigned height, unsigned version, bool is2bpp);

struct KilnProgress;

/// Compresses one image with the high-quality compressor.
/// @param pixels        four bytes a pixel, r, g, b, a or (isRGBA false) b, g, r, a.
/// @param pitch         bytes from row to row; 0 for rows tightly packed.
/// @param quality       0 to 6; higher numbers count as 6.
/// @param punchThrough  prepare the image for punch-through blocks.
/// @param linear        blocks in rows; block counts that are not powers of two are in rows in any case.
/// @param progress      may be null.
/// @return 0; 1 on failure.
int TesselCompressTexture(const void* pixels, bool isRGBA, unsigned width, unsigned height, unsigned pitch, void* out, unsigned quality,
                          bool punchThrough, int wordType, int bpp, unsigned version, bool linear, KilnProgress* progress);

/// The same for 8-bit rgba, rows tightly packed; the second generation (version 1) with blocks in rows.
int tessel_compress(const void* in, void* out, unsigned width, unsigned height, unsigned version, unsigned quality, bool is2bpp);
