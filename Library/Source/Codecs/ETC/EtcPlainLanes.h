/// @file EtcPlainLanes.h
/// As many numbers side by side as a search needs, in an array: the plain form of EtcWideLanes.h.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zortexture
{
template<typename T, unsigned int N>
struct PlainLanes
{
	T lanes[N];

	static PlainLanes load(const T (&values)[N])
	{
		PlainLanes result;
		std::copy_n(values, N, result.lanes);
		return result;
	}
	static PlainLanes filled(T value)
	{
		PlainLanes result;
		std::fill_n(result.lanes, N, value);
		return result;
	}
	void store(T (&values)[N]) const
	{
		std::copy_n(lanes, N, values);
	}
};

/// operation(a, b) in every lane, on plain integers.
template<typename T, unsigned int N, typename Operation>
PlainLanes<T, N> laneByLane(PlainLanes<T, N> a, const PlainLanes<T, N>& b, Operation&& operation)
{
	for (unsigned int i = 0; i < N; ++i)
	{
		a.lanes[i] = static_cast<T>(operation(static_cast<int>(a.lanes[i]), static_cast<int>(b.lanes[i])));
	}
	return a;
}

template<typename T, unsigned int N>
PlainLanes<T, N> operator+(const PlainLanes<T, N>& a, const PlainLanes<T, N>& b)
{
	return laneByLane(a, b, [](int one, int other) { return one + other; });
}
template<typename T, unsigned int N>
PlainLanes<T, N> operator-(const PlainLanes<T, N>& a, const PlainLanes<T, N>& b)
{
	return laneByLane(a, b, [](int one, int other) { return one - other; });
}
template<typename T, unsigned int N>
PlainLanes<T, N> leastOf(const PlainLanes<T, N>& a, const PlainLanes<T, N>& b)
{
	return laneByLane(a, b, [](int one, int other) { return std::min(one, other); });
}
template<typename T, unsigned int N>
PlainLanes<T, N> greatestOf(const PlainLanes<T, N>& a, const PlainLanes<T, N>& b)
{
	return laneByLane(a, b, [](int one, int other) { return std::max(one, other); });
}
/// Sums that stop at the ends of the range.
template<unsigned int N>
PlainLanes<std::int16_t, N> addSaturatedOf(const PlainLanes<std::int16_t, N>& a, const PlainLanes<std::int16_t, N>& b)
{
	return laneByLane(a, b, [](int one, int other) { return std::clamp(one + other, -32768, 32767); });
}

template<typename T, unsigned int N>
PlainLanes<T, N> absoluteOf(const PlainLanes<T, N>& a)
{
	return laneByLane(a, a, [](int one, int /*other*/) { return one < 0 ? -one : one; });
}

template<unsigned int N>
PlainLanes<std::int32_t, N> multiplied(const PlainLanes<std::int32_t, N>& a, std::int32_t factor)
{
	return laneByLane(a, a, [factor](int one, int /*other*/) { return one * factor; });
}

/// The sums of the squares of lanes 2n and 2n + 1, in lane n.
template<unsigned int N>
PlainLanes<std::int32_t, N / 2> sumsOfSquares(const PlainLanes<std::int16_t, N>& a)
{
	PlainLanes<std::int32_t, N / 2> sums;
	for (unsigned int i = 0; i < N / 2; ++i)
	{
		sums.lanes[i] = a.lanes[i * 2] * a.lanes[i * 2] + a.lanes[i * 2 + 1] * a.lanes[i * 2 + 1];
	}
	return sums;
}

/// weight * a * a, for a from -255 to 255.
template<unsigned int N>
PlainLanes<std::int32_t, N> weightedSquares(const PlainLanes<std::int32_t, N>& a, int weight)
{
	return laneByLane(a, a, [weight](int one, int other) { return weight * one * other; });
}
/// The same shifted to the right and cut at 32767.
template<unsigned int N>
PlainLanes<std::int16_t, N> weightedSquares(const PlainLanes<std::int16_t, N>& a, int weight, int shift)
{
	return laneByLane(a, a, [weight, shift](int one, int other) { return std::min(weight * one * other >> shift, 32767); });
}

/// One bit for every lane of a that is below that of b, lane 0 lowest.
template<typename T, unsigned int N>
unsigned int lanesBelow(const PlainLanes<T, N>& a, const PlainLanes<T, N>& b)
{
	unsigned int bits = 0;
	for (unsigned int i = 0; i < N; ++i)
	{
		bits |= (a.lanes[i] < b.lanes[i] ? 1U : 0U) << i;
	}
	return bits;
}

template<typename T, unsigned int N>
bool isAnyBelow(const PlainLanes<T, N>& a, const PlainLanes<T, N>& b)
{
	return lanesBelow(a, b) != 0;
}

template<typename T, unsigned int N>
T leastLane(const PlainLanes<T, N>& a)
{
	return *std::min_element(a.lanes, a.lanes + N);
}
} // namespace zortexture
