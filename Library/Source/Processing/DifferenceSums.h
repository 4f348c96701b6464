/// @file DifferenceSums.h
/// The running figures of the measures over the differences of two images, one for each channel.
#pragma once

#include <cstddef>

#include "Simd/SimdLevel.h"

namespace zortexture
{
enum EDifferenceSum
{
	eLargestDifference,
	eSumOfDifferences, ///< of the absolute ones
	eSumOfSquares,
	eSumOfDeviations, ///< squares of the distances from a mean
};

/// Adds pixels of four floats to `sums`, in order: a sum of floats depends on it, so that the four channels are all that can be done side
/// by side.
/// @param means  for eSumOfDeviations, one for each channel.
template<ESimdLevel level, EDifferenceSum kind>
void addDifferences(const float* a, const float* b, std::size_t numPixels, const float* means, float* sums);

/// The most pixels that sumByteDifferences takes.
constexpr std::size_t kMaxBytePixels = 1024;

/// The figures of eLargestDifference, eSumOfDifferences or eSumOfSquares over at most kMaxBytePixels pixels of four bytes, as integers.
/// Vector levels alone have it.
template<ESimdLevel level, EDifferenceSum kind>
void sumByteDifferences(const unsigned char* a, const unsigned char* b, std::size_t numPixels, unsigned int* sums);
} // namespace zortexture
