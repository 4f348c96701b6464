/// @file TesselCodec.h
/// Entry points of the Tessel family: the library's two-colour modulated formats, 2 and 4 bits a pixel, in two
/// generations. The uncompressed side is 8-bit rgba, rows tightly packed.
#ifndef ZORT_TESSEL_CODEC_H
#define ZORT_TESSEL_CODEC_H

#include "ZORTExport.h"

namespace zortexture
{
/// Decodes one image.
/// @param compressed  block words; for Tessel I at least two by two blocks.
/// @param version     0 is the first generation, any other value the second.
/// @return width * height * 4, also as the answer to a size query (a null pointer); 0 when decoding failed.
ZORT_API unsigned int TesselDecompress(const void* compressed, void* pixels, const unsigned int& width, const unsigned int& height,
                                       bool is2bpp, const unsigned int& version);

/// Encodes one image.
/// @param hasAlpha  accepted for the callers' sake; alpha is always encoded.
/// @param version   0 is the first generation, whose sides must be whole blocks (4 x 4 pixels, 8 x 4 at 2bpp); 1 is the
///                  second, which pads by repeating.
/// @param quality   0 and 1 select the fast compressor, with no and with 8 iterations; higher numbers the high-quality one.
/// @return bytes written, also as the answer to a size query (a null pointer); 0 on failure.
ZORT_API unsigned int TesselCompress(const void* in, void* out, const unsigned int& width, const unsigned int& height, bool hasAlpha,
                                     bool is2bpp, unsigned int version, unsigned int quality);

/// Decodes Tessel I blocks in twiddled order; images below 2 by 2 blocks are decoded at that size and cut.
/// @return bytes of compressed data consumed.
ZORT_API int ZORTDecompressTessel(const void* compressed, int is2bpp, int width, int height, unsigned char* pixels);

/// The fast compressor of the first generation, at the image's own size (whole blocks).
/// @param overlapWindow  choose a block's colours from a window of twice its size.
/// @return bytes written.
ZORT_API unsigned int tesselCompressMW(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag, bool overlapWindow,
                                       bool is2bpp, int iterations);
ZORT_API unsigned int tesselCompress2bppMW(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag,
                                           bool overlapWindow, bool is2bpp, int iterations);
ZORT_API unsigned int tesselCompress4bppMW(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag,
                                           bool overlapWindow, bool is2bpp, int iterations);

/// The fast compressor of the second generation, at the image's own size (whole blocks).
/// @param overlapWindow  choose a block's colours from a window of twice its size; for 4bpp only.
/// @return bytes written.
ZORT_API unsigned int tessel2Compress(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag, bool overlapWindow,
                                      bool is2bpp, int iterations);
ZORT_API unsigned int tessel2Compress2bpp(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag, bool overlapWindow,
                                          bool is2bpp, int iterations);
ZORT_API unsigned int tessel2Compress4bpp(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag, bool overlapWindow,
                                          bool is2bpp, int iterations);

/// The quickest compressor of Tessel II at 4bpp: every whole 4 x 4 block by itself, as a hard transition unless it holds transparent
/// pixels.
/// @return 1.
ZORT_API unsigned int Tessel2SectionCompress(const void* in, void* out, const unsigned int& width, const unsigned int& height);
} // namespace zortexture

#endif // ZORT_TESSEL_CODEC_H
