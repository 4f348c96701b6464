/// @file KilnNumerics.h
/// Covariance of weighted pixels, the axes of a symmetric matrix, and a stable sort. Nothing here allocates.
#pragma once

#include <array>
#include <cstddef>

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

/// Below, at or above 0 as the first element belongs before, beside or after the second.
using KilnCompare = int (*)(const void* a, const void* b);

/// Sorts `count` elements of `elementSize` bytes ascending; equal elements keep their order.
/// @param scratch  room for as many elements.
void zormergesort(void* base, void* scratch, std::size_t count, std::size_t elementSize, KilnCompare compare);
