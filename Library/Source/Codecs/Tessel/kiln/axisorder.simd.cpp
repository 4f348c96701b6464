#include "axisorder.h"

#include "Simd/Lanes.h"

using namespace zortexture;

namespace
{
constexpr int kLanes = static_cast<int>(F32::kCount);

ZORT_INLINE int sumOf(I32 lanes)
{
	std::int32_t numbers[kLanes];
	lanes.store(numbers);
	int sum = 0;
	for (const std::int32_t number : numbers)
	{
		sum += number;
	}
	return sum;
}
} // namespace

template<ESimdLevel level>
void KilnAxisOrder<level>::rank(const KilnAxisValues& values, int count, std::uint8_t* places)
{
	// Every value is held against every other: without branches that is less than a sort.
	for (int i = 0; i < count; ++i)
	{
		const F32 value = F32::filled(values.values[i]);
		I32 before = I32::filled(0);
		// A mask is -1. Equal values stand before if they come earlier.
		const int own = i / kLanes * kLanes;
		int first = 0;
		for (; first < own; first += kLanes)
		{
			before -= F32::load(values.values + first) <= value;
		}
		const F32 around = F32::load(values.values + own);
		before -= (around < value) | ((around == value) & (I32::counted() < I32::filled(i - own)));
		for (first += kLanes; first < count; first += kLanes)
		{
			before -= F32::load(values.values + first) < value;
		}
		places[i] = static_cast<std::uint8_t>(sumOf(before));
	}
}

template<ESimdLevel level>
void KilnAxisOrder<level>::countBelow(const KilnAxisValues& values, int count, const float (&thresholds)[3], int (&counts)[3])
{
	const F32 lanes[3] = {F32::filled(thresholds[0]), F32::filled(thresholds[1]), F32::filled(thresholds[2])};
	I32 below[3] = {I32::filled(0), I32::filled(0), I32::filled(0)};
	for (int first = 0; first < count; first += kLanes)
	{
		const F32 here = F32::load(values.values + first);
		for (int i = 0; i < 3; ++i)
		{
			below[i] -= here < lanes[i];
		}
	}
	for (int i = 0; i < 3; ++i)
	{
		counts[i] = sumOf(below[i]);
	}
}

template void KilnAxisOrder<kLanesLevel>::rank(const KilnAxisValues&, int, std::uint8_t*);
template void KilnAxisOrder<kLanesLevel>::countBelow(const KilnAxisValues&, int, const float (&)[3], int (&)[3]);
