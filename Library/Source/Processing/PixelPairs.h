/// @file PixelPairs.h
/// The walk over the pixels of two images whose element types may differ.
#pragma once

#include <algorithm>
#include <cstddef>

#include "ElementDispatch.h"

namespace zortexture
{
/// Elements as they stand, converted to float.
struct RawElement
{
	template<typename T>
	static float read(T element)
	{
		return static_cast<float>(element);
	}
};

/// Integer elements scaled to 0..1, floats as they stand.
struct NormalisedElement
{
	template<typename T>
	static float read(T element)
	{
		if constexpr (std::is_same_v<T, float>)
		{
			return element;
		}
		else if constexpr (std::is_same_v<T, unsigned int>)
		{
			return static_cast<float>(element) * 2.3283064e-10f; // 2^-32 to the precision of float
		}
		else
		{
			return static_cast<float>(element) / kElementCeiling<T>;
		}
	}
};

/// Converts elements to floats, in the way of RawElement or NormalisedElement.
template<typename Element>
inline void readElements(const void* pixels, EZORTVariableType channelType, std::size_t first, std::size_t count, float* elements)
{
	withElementType(channelType,
	                [&](auto tag)
	                {
		                using T = typename decltype(tag)::type;
		                std::transform(static_cast<const T*>(pixels) + first, static_cast<const T*>(pixels) + first + count, elements,
		                               [](T element) { return Element::read(element); });
	                });
}

/// Calls `function(a, b, i)` for `numPixels` pixels in order, with pixel i of both images as four floats each. The
/// elements are converted in runs, so that the types are told apart once a run instead of once a pixel.
template<typename Element, typename Function>
inline void forEachPixelPair(const void* a, EZORTVariableType typeOfA, const void* b, EZORTVariableType typeOfB, std::size_t numPixels,
                             Function&& function)
{
	constexpr std::size_t kPixelsInRun = 256;
	float elementsOfA[4 * kPixelsInRun];
	float elementsOfB[4 * kPixelsInRun];
	for (std::size_t first = 0; first < numPixels; first += kPixelsInRun)
	{
		const std::size_t count = std::min(kPixelsInRun, numPixels - first);
		readElements<Element>(a, typeOfA, 4 * first, 4 * count, elementsOfA);
		readElements<Element>(b, typeOfB, 4 * first, 4 * count, elementsOfB);
		for (std::size_t i = 0; i < count; ++i)
		{
			function(elementsOfA + 4 * i, elementsOfB + 4 * i, first + i);
		}
	}
}
} // namespace zortexture
