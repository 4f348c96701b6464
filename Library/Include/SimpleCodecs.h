/// @file SimpleCodecs.h
/// Codecs that need no search: one bit per pixel, shared exponent, RGBG and YUV 4:2:2. Each works on one image of
/// width x height pixels, rows not padded. The uncompressed side is 8-bit rgba, for the shared exponent three floats.
/// All return bytes written, or that would be written.
#ifndef ZORT_SIMPLE_CODECS_H
#define ZORT_SIMPLE_CODECS_H

#include "Pixel.h"
#include "ZORTDefines.h"

namespace zortexture
{
/// A shared-exponent word: red, green and blue mantissas of 9 bits from bit 0, then 5 bits of exponent.
using rgb9e5 = unsigned int;

/// One bit a pixel, first pixel at bit 0; set where the mean of r, g and b is at least 128. Returns pixels / 8; pixels
/// after the last whole byte are dropped when encoding, and fewer than 8 pixels return 0; decoding reads a byte for them too. A
/// null pointer makes it a size query.
ZORT_API unsigned int OneBPPCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height);
ZORT_API unsigned int OneBPPDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height);

/// Three floats a pixel to and from shared-exponent words. A null pointer makes them size queries.
ZORT_API unsigned int RGB9E5Compress(const void* source, void* destination, const unsigned int& width, const unsigned int& height);
ZORT_API unsigned int RGB9E5Decompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height);

/// Pairs of pixels with one red and one blue (those of the first) and two greens. `format` is ePF_RGBG8888 or
/// ePF_GRGB8888; any other gives 0, and so does a null pointer. An odd last column is dropped when encoding; decoding reads a
/// word for it, so that the source holds at least the bytes of the width rounded up to 2. The same holds for YUV.
ZORT_API unsigned int RGBGCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                                   const EZORTPixelFormat& format);
ZORT_API unsigned int RGBGDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                                     const EZORTPixelFormat& format);

/// Pairs of pixels with U of the first, V of the second and two Ys. `format` is ePF_UYVY or ePF_YUY2; any other gives 0.
ZORT_API unsigned int YUVCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                                  const EZORTPixelFormat& format);
ZORT_API unsigned int YUVDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                                    const EZORTPixelFormat& format);

ZORT_API void ConvertYUVToRGB(int y, int u, int v, unsigned char& r, unsigned char& g, unsigned char& b);
ZORT_API void ConvertRGBToYUV(Pixel<unsigned char> first, Pixel<unsigned char> second, unsigned char& y0, unsigned char& y1,
                              unsigned char& u, unsigned char& v);

/// Three floats as a shared-exponent word, and back.
ZORT_API rgb9e5 float3_to_rgb9e5(const float* rgb);
ZORT_API void rgb9e5_to_float3(rgb9e5 value, float* rgb);

/// A channel limited to what a shared-exponent word holds: 0 to 65408; NaN gives 0.
ZORT_API float ClampRange_for_rgb9e5(float value);
ZORT_API float MaxOf3(float a, float b, float c);
/// The unbiased exponent field of a float.
ZORT_API int FloorLog2(float value);
ZORT_API int Max(int a, int b);
} // namespace zortexture

#endif // ZORT_SIMPLE_CODECS_H
