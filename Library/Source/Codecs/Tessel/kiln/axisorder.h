/// @file axisorder.h
/// Numbers along an axis: their order, and how many lie below thresholds.
#pragma once

#include "Simd/SimdLevel.h"
#include "kiln.h"

/// Up to kKilnMaxWindow numbers, followed by infinities.
struct alignas(32) KilnAxisValues
{
	static constexpr int kCapacity = 160;
	float values[kCapacity];
};

/// In plain form and for every vector unit.
template<zortexture::ESimdLevel level>
struct KilnAxisOrder
{
	/// The places that the first `count` values, all of them numbers, take in ascending order, equal ones in the order in which they stand.
	static void rank(const KilnAxisValues& values, int count, std::uint8_t* places);
	/// Of `count` values in ascending order, how many lie below each threshold.
	static void countBelow(const KilnAxisValues& values, int count, const float (&thresholds)[3], int (&counts)[3]);
};
