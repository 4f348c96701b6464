/// @file wrapper.h
/// What the codec entry calls of this layer.
#pragma once

/// Decodes one image to 8-bit rgba, rows tightly packed. The data holds the blocks of the size rounded up to whole blocks.
/// @param version  0 is the first generation with twiddled blocks, any other value the second with blocks in rows.
/// @return 1, or 0 if the working image cannot be had.
int tessel_decompress(const void* compressed, void* pixels, unsigned width, unsigned height, unsigned version, bool is2bpp);
