/// @file RowFilters.h
/// The filters of resizing in lanes, a row at a time. They exist for the vector units alone: the plain form samples an image pixel by
/// pixel (Samplers.h) and convolves it tap by tap, and these take every channel through the same operations in the same order.
///
/// A row of numbers holds four floats a pixel, r, g, b, a.
#pragma once

#include <cstddef>

#include "AxisTaps.h"
#include "Pixel.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
/// What the pixels of a row of the result touch on the x axis.
template<unsigned int Count>
struct RowTaps
{
	const AxisTaps<Count>* taps;
	const float* fractions; ///< those of the taps, each four times
	std::size_t width;
};

/// The elements of a row as numbers.
template<ESimdLevel level, typename T>
void expandRow(const Pixel<T>* row, float* numbers, std::size_t width);

/// Numbers limited to what T holds and truncated; 0 for NaN.
template<ESimdLevel level, typename T>
void clampRow(const float* numbers, Pixel<T>* row, std::size_t width);

/// Linear samples. `rows` are the two of the first slice, and then, with numSlices 2, those of the second.
template<ESimdLevel level>
void linearRow(const float* const* rows, unsigned int numSlices, const RowTaps<2>& x, float fractionY, float fractionZ, float* numbers);

/// Splines along a row.
template<ESimdLevel level>
void splineAlongRow(const float* row, const RowTaps<4>& x, float* numbers);

/// Splines across four rows, all with one fraction.
template<ESimdLevel level>
void splineAcrossRows(const float* const* rows, float fraction, float* numbers, std::size_t width);

/// The splines at the fraction 1/2 in a shorter form. The results are the same where all steps of both forms are exact: along rows for
/// integers of one or two bytes, across rows made so for those of one byte.
///
/// Along a row they are those between the pixels 2n and 2n + 1; a pixel ahead of the row and one behind it are read, too.
template<ESimdLevel level>
void middleAlongRow(const float* row, float* numbers, std::size_t width);
template<ESimdLevel level>
void middleAcrossRows(const float* const* rows, float* numbers, std::size_t width);

/// The sums of the pixels of `numRows` rows under a kernel of as many rows, times `scale`. Rows begin with the kernelWidth / 2 pixels
/// that stand ahead of the first one, and end with as many behind the last.
template<ESimdLevel level>
void convolveRow(const float* const* rows, std::size_t numRows, const float* kernel, unsigned int kernelWidth, float scale, float* numbers,
                 std::size_t width);

/// Numbers that unsigned int has truncated and made floats again; 2^32 becomes 0. For numbers of 0 to 2^32.
template<ESimdLevel level>
void truncateRow(float* numbers, std::size_t width);

/// A row smoothed with 1 2 1 on each axis and truncated: that of three rows, or of nine, three slices of three rows. The pixel ahead of
/// the first one is the last one. For elements of one or two bytes: their sums are integers that a float holds, so that they may be
/// taken in any order.
/// @param sums  room for the sums: smoothingRoom(width) bytes, aligned for 32-bit integers
template<ESimdLevel level, typename T>
void smoothRow(const Pixel<T>* const* rows, unsigned int numRows, void* sums, float* numbers, std::size_t width);

/// A pixel on either side of the row, and a register behind it.
constexpr std::size_t smoothingRoom(std::size_t width)
{
	return (width + 2) * sizeof(Pixel<int>) + 32;
}

/// The truncated means of 2 x 2 or, of four rows, 2 x 2 x 2 pixels: linear samples in the middle between them, for elements of one or
/// two bytes, whose sums are exact in floats and so the same in integers.
/// @param width  that of the result, half of the rows'
template<ESimdLevel level, typename T>
void halveRow(const Pixel<T>* const* rows, unsigned int numRows, Pixel<T>* result, std::size_t width);
} // namespace zortexture
