/// @file EtcWideLanes.h
/// As many numbers side by side as a search needs, in one register or two: for sources built once a vector unit. EtcPlainLanes.h has the
/// same words on arrays.
#pragma once

#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
template<typename T, unsigned int N>
struct WideLanes
{
	static constexpr unsigned int kParts = N / FullLanes<T>::kCount;
	FullLanes<T> parts[kParts];

	ZORT_INLINE static WideLanes load(const T (&values)[N])
	{
		WideLanes result;
		for (unsigned int i = 0; i < kParts; ++i)
		{
			result.parts[i] = FullLanes<T>::load(values + i * FullLanes<T>::kCount);
		}
		return result;
	}
	ZORT_INLINE static WideLanes filled(T value)
	{
		WideLanes result;
		for (unsigned int i = 0; i < kParts; ++i)
		{
			result.parts[i] = FullLanes<T>::filled(value);
		}
		return result;
	}
	ZORT_INLINE void store(T (&values)[N]) const
	{
		for (unsigned int i = 0; i < kParts; ++i)
		{
			parts[i].store(values + i * FullLanes<T>::kCount);
		}
	}
};

#define ZORT_WIDE_BINARY(name, expression)                                                                                                 \
	template<typename T, unsigned int N>                                                                                                   \
	ZORT_INLINE WideLanes<T, N> name(WideLanes<T, N> a, WideLanes<T, N> b)                                                                 \
	{                                                                                                                                      \
		for (unsigned int i = 0; i < a.kParts; ++i)                                                                                        \
		{                                                                                                                                  \
			a.parts[i] = expression;                                                                                                       \
		}                                                                                                                                  \
		return a;                                                                                                                          \
	}
ZORT_WIDE_BINARY(operator+, a.parts[i] + b.parts[i])
ZORT_WIDE_BINARY(operator-, a.parts[i] - b.parts[i])
ZORT_WIDE_BINARY(leastOf, least(a.parts[i], b.parts[i]))
ZORT_WIDE_BINARY(greatestOf, greatest(a.parts[i], b.parts[i]))
ZORT_WIDE_BINARY(addSaturatedOf, addSaturated(a.parts[i], b.parts[i]))
#undef ZORT_WIDE_BINARY

template<typename T, unsigned int N>
ZORT_INLINE WideLanes<T, N> absoluteOf(WideLanes<T, N> a)
{
	return greatestOf(a, WideLanes<T, N>::filled(0) - a);
}

template<unsigned int N>
ZORT_INLINE WideLanes<std::int32_t, N> multiplied(WideLanes<std::int32_t, N> a, std::int32_t factor)
{
	for (I32& part : a.parts)
	{
		part = part * I32::filled(factor);
	}
	return a;
}

/// The sums of the squares of lanes 2n and 2n + 1, in lane n.
template<unsigned int N>
ZORT_INLINE WideLanes<std::int32_t, N / 2> sumsOfSquares(WideLanes<std::int16_t, N> a)
{
	WideLanes<std::int32_t, N / 2> sums;
	for (unsigned int i = 0; i < a.kParts; ++i)
	{
		sums.parts[i] = sumsOfProducts(a.parts[i], a.parts[i]);
	}
	return sums;
}

/// weight * a * a, for a from -255 to 255.
template<unsigned int N>
ZORT_INLINE WideLanes<std::int32_t, N> weightedSquares(WideLanes<std::int32_t, N> a, int weight)
{
	for (I32& part : a.parts)
	{
		// Without a sign the upper halves are clear, and products of the lower ones are all that is summed.
		const I16 size = as<std::int16_t>(greatest(part, I32::filled(0) - part));
		part = sumsOfProducts(size, size) * I32::filled(weight);
	}
	return a;
}

/// The same shifted to the right and cut at 32767.
template<unsigned int N>
ZORT_INLINE WideLanes<std::int16_t, N> weightedSquares(WideLanes<std::int16_t, N> a, int weight, int shift)
{
	for (I16& part : a.parts)
	{
		// Both halves of a register are taken apart and put together again in the same order.
		const I16 low = interleaveLow(part, I16::filled(0));
		const I16 high = interleaveHigh(part, I16::filled(0));
		part = packSigned((sumsOfProducts(low, low) * I32::filled(weight)) >> shift,
		                  (sumsOfProducts(high, high) * I32::filled(weight)) >> shift);
	}
	return a;
}

/// One bit for every lane of a that is below that of b, lane 0 lowest.
template<unsigned int N>
ZORT_INLINE unsigned int lanesBelow(WideLanes<std::int16_t, N> a, WideLanes<std::int16_t, N> b)
{
	static_assert(N == 16);
	if constexpr (a.kParts == 2)
	{
		return bitsOfMask(packSigned(a.parts[0] < b.parts[0], a.parts[1] < b.parts[1]));
	}
	else
	{
		const auto isBelow = a.parts[0] < b.parts[0];
		return bitsOfMask(packSigned(lower(isBelow), upper(isBelow)));
	}
}

template<unsigned int N>
ZORT_INLINE bool isAnyBelow(WideLanes<std::int32_t, N> a, WideLanes<std::int32_t, N> b)
{
	I32 isBelow = a.parts[0] < b.parts[0];
	for (unsigned int i = 1; i < a.kParts; ++i)
	{
		isBelow |= a.parts[i] < b.parts[i];
	}
	return isAny(isBelow);
}

template<unsigned int N>
ZORT_INLINE std::int32_t leastLane(WideLanes<std::int32_t, N> a)
{
	static_assert(N == 8);
	Lanes<std::int32_t, 4> four;
	if constexpr (a.kParts == 2)
	{
		four = least(a.parts[0], a.parts[1]);
	}
	else
	{
		four = least(lower(a.parts[0]), upper(a.parts[0]));
	}
	four = least(four, shuffle<2, 3, 0, 1>(four));
	four = least(four, shuffle<1, 0, 3, 2>(four));
	return four[0];
}
} // namespace
} // namespace zortexture
