/// @file PixelPairs.h
/// The walk over the pixels of two images whose element types may differ.
#pragma once

#include <cstddef>

#include "Simd/SimdLevel.h"
#include "ZORTDefines.h"

namespace zortexture
{
/// How an element becomes a float.
enum EElementReading
{
	eReadRaw,        ///< as it stands, converted to float
	eReadNormalised, ///< integers scaled to 0..1, floats as they stand
};

/// Elements of a standard layout as floats.
template<ESimdLevel level>
void readElements(EElementReading reading, const void* elements, EZORTVariableType channelType, std::size_t count, float* floats);

/// An image of a standard layout.
struct ImageElements
{
	const void* elements;
	EZORTVariableType channelType;

	/// The elements from a pixel on; 1, 2 or 4 bytes each.
	const void* from(std::size_t pixel) const
	{
		const unsigned int shift = channelType >> 2;
		return static_cast<const unsigned char*>(elements) + (pixel * 4 << (shift < 2 ? shift : 2));
	}
	bool isBytes() const
	{
		return channelType >> 2 == 0;
	}
	bool isFloats() const
	{
		return channelType >> 2 > 2;
	}
};

/// Calls `function(a, b, first, count)` for runs of pixels in order, with four floats for each of `count` pixels from `first` on. The
/// elements are converted in runs, so that the types are told apart once a run instead of once a pixel.
template<ESimdLevel level, typename Function>
inline void forEachRunOfPairs(EElementReading reading, const ImageElements& a, const ImageElements& b, std::size_t first,
                              std::size_t numPixels, Function&& function)
{
	constexpr std::size_t kPixelsInRun = 256;
	float bufferOfA[4 * kPixelsInRun];
	float bufferOfB[4 * kPixelsInRun];
	while (first < numPixels)
	{
		const std::size_t count = numPixels - first < kPixelsInRun ? numPixels - first : kPixelsInRun;
		const auto read = [&](const ImageElements& image, float* buffer)
		{
			if (image.isFloats())
			{
				return static_cast<const float*>(image.from(first));
			}
			readElements<level>(reading, image.from(first), image.channelType, 4 * count, buffer);
			return static_cast<const float*>(buffer);
		};
		const float* const elementsOfA = read(a, bufferOfA);
		const float* const elementsOfB = read(b, bufferOfB);
		function(elementsOfA, elementsOfB, first, count);
		first += count;
	}
}
} // namespace zortexture
