/// @file KilnNumerics.h
/// Covariance of weighted pixels, the axes of a symmetric matrix, and a stable sort. Nothing here allocates.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

/// Four channels r, g, b, alpha.
using KilnVector = std::array<float, 4>;
/// Four by four, rows first. As a set of axes: one axis a row, the main axis first.
using KilnMatrix = std::array<KilnVector, 4>;

/// Weighted sums over pixels, in double precision because a window's sums of byte products exceed a float's significand.
struct CovarSum
{
	/// The channels themselves, for their means.
	std::array<double, 4> channels = {};
	/// The products rr, rg, rb, ra, gg, gb, ga, bb, ba, aa.
	std::array<double, 10> moments = {};
	double weight = 0;
};

void UpdateCovarSumF(CovarSum& sum, const float pixel[4], float weight);
void UpdateCovarSumI(CovarSum& sum, const unsigned char pixel[4], float weight);

/// The weighted mean colour; 0 when nothing had weight.
KilnVector CovarSumMeans(const CovarSum& sum);

/// The axes of the covariance about `means`, by descending variance.
void CovarSumToSortedEigenVecs(const CovarSum& sum, const KilnVector& means, KilnMatrix& eigenVectorsOut);

/// The axis of the largest variance, with components below 0.01 in size cleared.
void CovarSumToPrincipalVector(const CovarSum& sum, const KilnVector& means, KilnVector& axisOut);

/// Eigenvalues, descending, and unit eigenvectors, one a row, of a symmetric matrix. Equal eigenvalues keep their order.
/// @param matrix          n by n, rows first; left near diagonal.
/// @param eigenvaluesOut  n values.
/// @param vectorsOut      n by n.
void ComputeSortedEigenVecs(float* matrix, int n, float* eigenvaluesOut, float* vectorsOut);

/// A unit vector along the main axis of a symmetric matrix without negative eigenvalues; the first channel's axis for a zero matrix.
/// @return its eigenvalue.
float FindPrincipalEigenvect(const KilnMatrix& matrix, KilnVector& vectorOut);

/// Sorts ascending; equal elements keep their order.
/// @param scratch  room for as many elements.
/// @param compare  of two elements: below, at or above 0 as the first belongs before, beside or after the second.
template<typename Element, typename Compare>
void zormergesort(Element* base, Element* scratch, std::size_t count, Compare&& compare)
{
	Element* from = base;
	Element* to = scratch;
	for (std::size_t run = 1; run < count; run *= 2)
	{
		for (std::size_t start = 0; start < count; start += 2 * run)
		{
			const Element* left = from + start;
			const Element* const leftEnd = from + std::min(start + run, count);
			const Element* right = leftEnd;
			const Element* const rightEnd = from + std::min(start + 2 * run, count);
			Element* out = to + start;
			while (left != leftEnd && right != rightEnd)
			{
				*out++ = compare(*left, *right) <= 0 ? *left++ : *right++;
			}
			std::copy(right, rightEnd, std::copy(left, leftEnd, out));
		}
		std::swap(from, to);
	}
	if (from != base)
	{
		std::copy(scratch, scratch + count, base);
	}
}
