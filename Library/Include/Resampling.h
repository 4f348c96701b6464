/// @file Resampling.h
/// Resizing of textures in the standard layouts, and the filters it is made of.
#ifndef ZORT_RESAMPLING_H
#define ZORT_RESAMPLING_H

#include "Pixel.h"
#include "ZORTexture.h"

namespace zortexture
{
enum EResizeMode : unsigned int
{
	eResizeNearest = 0,
	eResizeLinear = 1,
	eResizeCubic = 2
};

/// Whether a layout is one of those that the image-processing functions work on: 8-bit and 16-bit unsigned normalised,
/// 32-bit unsigned normalised, and 32-bit float rgba.
ZORT_API bool isStandardPixelType(const PixelType& pixelType, const EZORTVariableType& channelType);

/// Changes the dimensions of the top level, in steps of at most a factor of two; the other levels are dropped. The stored
/// border is scaled along. False, with the texture unchanged, for a layout that is not standard, a dimension of 0, or a
/// texture without all of its data.
ZORT_API bool Resize(CZORTexture& texture, const unsigned int& width, const unsigned int& height, const unsigned int& depth,
                     EResizeMode mode);

// The templates below are instantiated for unsigned char, unsigned short, unsigned int and float. Images are
// width x height x depth pixels, x fastest; the caller owns all buffers. Null images give false.

/// Resizes one image by a chain of StretchImage calls.
template<typename T>
ZORT_API bool SteppedStretchImage(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                                  unsigned int newWidth, unsigned int newHeight, unsigned int newDepth, EResizeMode mode);

/// Resizes one image in one step. Linear and cubic results are truncated; a cubic reduction smooths the image first.
template<typename T>
ZORT_API bool StretchImage(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                           unsigned int newWidth, unsigned int newHeight, unsigned int newDepth, EResizeMode mode);

/// Trilinear sample at a position in pixels.
template<typename T>
ZORT_API void SampleLinear(Pixel<T>* source, Pixel<T>* destinationPixel, const unsigned int& width, const unsigned int& height,
                           const unsigned int& depth, const float& x, const float& y, const float& z);

/// Tricubic (Catmull-Rom) sample at a position in pixels; bicubic when depth is 1.
template<typename T>
ZORT_API void SampleCubic(Pixel<T>* source, Pixel<T>* destinationPixel, const unsigned int& width, const unsigned int& height,
                          const unsigned int& depth, const float& x, const float& y, const float& z);

/// Convolution with a kernel of odd sizes, kx fastest, divided by `weight`. Coordinates before the first pixel read the
/// last one. False, with nothing written, for an even kernel size.
template<typename T>
ZORT_API bool ConvolutionKernel(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                                const float* kernel, float weight, unsigned int kernelWidth, unsigned int kernelHeight,
                                unsigned int kernelDepth);

/// The source position of sample `index` of `count` on an axis that is reduced by `ratio` (source over destination);
/// `inverseRatio` is 1 / ratio, or 0 on an axis that keeps its size.
ZORT_API float calculateDownscalePosition(unsigned int index, unsigned int count, double inverseRatio, double ratio);

/// Catmull-Rom spline through four points: t = 0 gives the second, t = 1 the third.
ZORT_API float evaluateSplines(const float* fourPoints, const float& t);
} // namespace zortexture

#endif // ZORT_RESAMPLING_H
