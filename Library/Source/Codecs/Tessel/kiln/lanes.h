/// @file lanes.h
/// Eight 16-bit and four 32-bit integers side by side: what the block model needs of a vector unit, with a plain twin.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) && !defined(ZORT_PLAIN_LANES)
#define ZORT_KILN_SSE2 1
#include <emmintrin.h>
#else
#define ZORT_KILN_SSE2 0
#endif

using KilnShorts = std::array<std::uint16_t, 8>;

#if ZORT_KILN_SSE2

struct Lanes32
{
	__m128i v;
};

struct Lanes16
{
	__m128i v;
};

inline Lanes16 loadLanes(const KilnShorts& values)
{
	return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(values.data()))};
}
inline Lanes16 loadLanes(const std::int16_t* values)
{
	return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(values))};
}
/// Two neighbouring values four times.
inline Lanes16 broadcastPair(const std::int16_t* values)
{
	std::int32_t both = 0;
	std::memcpy(&both, values, sizeof(both));
	return {_mm_set1_epi32(both)};
}
inline void storeLanes(std::uint16_t* out, Lanes16 a)
{
	_mm_storeu_si128(reinterpret_cast<__m128i*>(out), a.v);
}
inline void storeLanes(std::uint32_t* out, Lanes32 a)
{
	_mm_storeu_si128(reinterpret_cast<__m128i*>(out), a.v);
}
/// Lanes 0 to 3.
inline void storeLower(std::uint16_t* out, Lanes16 a)
{
	_mm_storel_epi64(reinterpret_cast<__m128i*>(out), a.v);
}
inline Lanes16 broadcastLanes(std::uint16_t value)
{
	return {_mm_set1_epi16(static_cast<short>(value))};
}
inline Lanes16 operator+(Lanes16 a, Lanes16 b)
{
	return {_mm_add_epi16(a.v, b.v)};
}
inline Lanes16 operator-(Lanes16 a, Lanes16 b)
{
	return {_mm_sub_epi16(a.v, b.v)};
}
inline Lanes16 operator&(Lanes16 a, Lanes16 b)
{
	return {_mm_and_si128(a.v, b.v)};
}
/// Lanes as signed numbers, held within limits.
inline Lanes16 clampLanes(Lanes16 a, Lanes16 low, Lanes16 high)
{
	return {_mm_min_epi16(_mm_max_epi16(a.v, low.v), high.v)};
}
/// Lanes i and i + 4 added, in lanes 0 to 3; the others are of no use.
inline Lanes16 addHalves(Lanes16 a)
{
	return {_mm_add_epi16(a.v, _mm_srli_si128(a.v, 8))};
}
/// The low halves of the products.
inline Lanes16 operator*(Lanes16 a, Lanes16 b)
{
	return {_mm_mullo_epi16(a.v, b.v)};
}
/// The high halves of the products of unsigned numbers.
inline Lanes16 multiplyHigh(Lanes16 a, Lanes16 b)
{
	return {_mm_mulhi_epu16(a.v, b.v)};
}
template<int Bits>
Lanes16 shiftRight(Lanes16 a)
{
	return {_mm_srli_epi16(a.v, Bits)};
}
/// The lower, or the upper, four lanes twice.
inline Lanes16 repeatLower(Lanes16 a)
{
	return {_mm_unpacklo_epi64(a.v, a.v)};
}
inline Lanes16 repeatUpper(Lanes16 a)
{
	return {_mm_unpackhi_epi64(a.v, a.v)};
}
inline Lanes32 operator+(Lanes32 a, Lanes32 b)
{
	return {_mm_add_epi32(a.v, b.v)};
}
/// Lanes 0, 4, 1, 5, 2, 6, 3, 7.
inline Lanes16 interleaveHalves(Lanes16 a)
{
	return {_mm_unpacklo_epi16(a.v, _mm_unpackhi_epi64(a.v, a.v))};
}
/// Lanes 0 and 1 of a, then of b, then 2 and 3 of a and of b.
inline Lanes16 interleavePairs(Lanes16 a, Lanes16 b)
{
	return {_mm_unpacklo_epi32(a.v, b.v)};
}
/// The sums of the products (of signed numbers) of neighbouring lanes 2n and 2n + 1.
inline Lanes32 sumsOfProducts(Lanes16 a, Lanes16 b)
{
	return {_mm_madd_epi16(a.v, b.v)};
}
/// The sums of the squares (of signed numbers) of lanes 0 to 3 and 4 to 7 of a, then of b.
inline Lanes32 sumsOfSquares(Lanes16 a, Lanes16 b)
{
	const __m128 squaresA = _mm_castsi128_ps(_mm_madd_epi16(a.v, a.v));
	const __m128 squaresB = _mm_castsi128_ps(_mm_madd_epi16(b.v, b.v));
	const __m128i even = _mm_castps_si128(_mm_shuffle_ps(squaresA, squaresB, _MM_SHUFFLE(2, 0, 2, 0)));
	const __m128i odd = _mm_castps_si128(_mm_shuffle_ps(squaresA, squaresB, _MM_SHUFFLE(3, 1, 3, 1)));
	return {_mm_add_epi32(even, odd)};
}
inline Lanes32 zeroLanes()
{
	return {_mm_setzero_si128()};
}
/// Lane 3 set to 0.
inline Lanes32 clearLast(Lanes32 a)
{
	return {_mm_and_si128(a.v, _mm_setr_epi32(-1, -1, -1, 0))};
}
/// Lanes 2 and 3 raised above all errors.
inline Lanes32 forbidMiddles(Lanes32 a)
{
	return {_mm_or_si128(a.v, _mm_setr_epi32(0, 0, 0x7fffffff, 0x7fffffff))};
}

/// For each of four pixels the smallest error by the rule of a choice, and the candidate 0 to 3 that has it.
struct LaneChoices
{
	Lanes32 errors;
	Lanes32 indices;
};

/// @param errors  of each pixel, its candidates 0, 3, 1, 2; below 2^31.
inline LaneChoices chooseOfFour(const std::array<Lanes32, 4>& errors)
{
	const auto select = [](__m128i mask, __m128i yes, __m128i no)
	{
		return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
	};
	const __m128i low01 = _mm_unpacklo_epi32(errors[0].v, errors[1].v);
	const __m128i low23 = _mm_unpacklo_epi32(errors[2].v, errors[3].v);
	const __m128i high01 = _mm_unpackhi_epi32(errors[0].v, errors[1].v);
	const __m128i high23 = _mm_unpackhi_epi32(errors[2].v, errors[3].v);
	const __m128i error0 = _mm_unpacklo_epi64(low01, low23);
	const __m128i error3 = _mm_unpackhi_epi64(low01, low23);
	const __m128i error1 = _mm_unpacklo_epi64(high01, high23);
	const __m128i error2 = _mm_unpackhi_epi64(high01, high23);

	const __m128i upperEnd = _mm_cmpgt_epi32(error0, error3);
	const __m128i end = select(upperEnd, error3, error0);
	const __m128i lowerMiddle = _mm_cmplt_epi32(error1, error2);
	const __m128i middle = select(lowerMiddle, error1, error2);
	const __m128i takeEnd = _mm_cmpgt_epi32(middle, end);
	// A mask is -1.
	const __m128i endIndex = _mm_and_si128(upperEnd, _mm_set1_epi32(3));
	const __m128i middleIndex = _mm_add_epi32(lowerMiddle, _mm_set1_epi32(2));
	return {{select(takeEnd, end, middle)}, {select(takeEnd, endIndex, middleIndex)}};
}

#else

struct Lanes32
{
	std::array<std::uint32_t, 4> v;
};

struct Lanes16
{
	KilnShorts v;
};

template<typename Function>
Lanes16 eachLane(Function function)
{
	Lanes16 result;
	for (unsigned i = 0; i < 8; ++i)
	{
		result.v[i] = static_cast<std::uint16_t>(function(i));
	}
	return result;
}

inline Lanes16 loadLanes(const KilnShorts& values)
{
	return {values};
}
inline Lanes16 loadLanes(const std::int16_t* values)
{
	return eachLane([values](unsigned i) { return values[i]; });
}
/// Two neighbouring values four times.
inline Lanes16 broadcastPair(const std::int16_t* values)
{
	return eachLane([values](unsigned i) { return values[i & 1]; });
}
inline void storeLanes(std::uint16_t* out, const Lanes16& a)
{
	std::memcpy(out, a.v.data(), sizeof(a.v));
}
inline void storeLanes(std::uint32_t* out, const Lanes32& a)
{
	std::memcpy(out, a.v.data(), sizeof(a.v));
}
/// Lanes 0 to 3.
inline void storeLower(std::uint16_t* out, const Lanes16& a)
{
	std::memcpy(out, a.v.data(), sizeof(a.v) / 2);
}
inline Lanes16 broadcastLanes(std::uint16_t value)
{
	return eachLane([value](unsigned) { return value; });
}
inline Lanes16 operator+(const Lanes16& a, const Lanes16& b)
{
	return eachLane([&](unsigned i) { return a.v[i] + b.v[i]; });
}
inline Lanes16 operator-(const Lanes16& a, const Lanes16& b)
{
	return eachLane([&](unsigned i) { return a.v[i] - b.v[i]; });
}
inline Lanes16 operator&(const Lanes16& a, const Lanes16& b)
{
	return eachLane([&](unsigned i) { return a.v[i] & b.v[i]; });
}
/// Lanes as signed numbers, held within limits.
inline Lanes16 clampLanes(const Lanes16& a, const Lanes16& low, const Lanes16& high)
{
	const auto number = [](std::uint16_t lane)
	{
		return static_cast<std::int16_t>(lane);
	};
	return eachLane([&](unsigned i) { return std::min(std::max(number(a.v[i]), number(low.v[i])), number(high.v[i])); });
}
/// Lanes i and i + 4 added, in lanes 0 to 3; the others are of no use.
inline Lanes16 addHalves(const Lanes16& a)
{
	return eachLane([&](unsigned i) { return a.v[i] + (i < 4 ? a.v[i + 4] : 0); });
}
/// The low halves of the products.
inline Lanes16 operator*(const Lanes16& a, const Lanes16& b)
{
	return eachLane([&](unsigned i) { return std::uint32_t{a.v[i]} * b.v[i]; });
}
/// The high halves of the products of unsigned numbers.
inline Lanes16 multiplyHigh(const Lanes16& a, const Lanes16& b)
{
	return eachLane([&](unsigned i) { return (std::uint32_t{a.v[i]} * b.v[i]) >> 16; });
}
template<int Bits>
Lanes16 shiftRight(const Lanes16& a)
{
	return eachLane([&](unsigned i) { return a.v[i] >> Bits; });
}
/// The lower, or the upper, four lanes twice.
inline Lanes16 repeatLower(const Lanes16& a)
{
	return eachLane([&](unsigned i) { return a.v[i & 3]; });
}
inline Lanes16 repeatUpper(const Lanes16& a)
{
	return eachLane([&](unsigned i) { return a.v[4 + (i & 3)]; });
}
inline Lanes32 operator+(const Lanes32& a, const Lanes32& b)
{
	Lanes32 result = {};
	for (unsigned i = 0; i < 4; ++i)
	{
		result.v[i] = a.v[i] + b.v[i];
	}
	return result;
}
/// Lanes 0, 4, 1, 5, 2, 6, 3, 7.
inline Lanes16 interleaveHalves(const Lanes16& a)
{
	return eachLane([&](unsigned i) { return a.v[i / 2 + 4 * (i & 1)]; });
}
/// Lanes 0 and 1 of a, then of b, then 2 and 3 of a and of b.
inline Lanes16 interleavePairs(const Lanes16& a, const Lanes16& b)
{
	return eachLane([&](unsigned i) { return ((i & 2) == 0 ? a : b).v[2 * (i / 4) + (i & 1)]; });
}
/// The sums of the products (of signed numbers) of neighbouring lanes 2n and 2n + 1.
inline Lanes32 sumsOfProducts(const Lanes16& a, const Lanes16& b)
{
	Lanes32 result = {};
	for (unsigned i = 0; i < 8; ++i)
	{
		const int product = static_cast<std::int16_t>(a.v[i]) * static_cast<std::int16_t>(b.v[i]);
		result.v[i / 2] += static_cast<std::uint32_t>(product);
	}
	return result;
}
/// The sums of the squares (of signed numbers) of lanes 0 to 3 and 4 to 7 of a, then of b.
inline Lanes32 sumsOfSquares(const Lanes16& a, const Lanes16& b)
{
	Lanes32 result = {};
	for (unsigned i = 0; i < 8; ++i)
	{
		const auto square = [i](const Lanes16& lanes)
		{
			const auto value = static_cast<std::int16_t>(lanes.v[i]);
			return static_cast<std::uint32_t>(value * value);
		};
		result.v[i / 4] += square(a);
		result.v[2 + i / 4] += square(b);
	}
	return result;
}

inline Lanes32 zeroLanes()
{
	return {};
}
/// Lane 3 set to 0.
inline Lanes32 clearLast(const Lanes32& a)
{
	return {{a.v[0], a.v[1], a.v[2], 0}};
}
/// Lanes 2 and 3 raised above all errors.
inline Lanes32 forbidMiddles(const Lanes32& a)
{
	return {{a.v[0], a.v[1], 0x7fffffff, 0x7fffffff}};
}

/// For each of four pixels the smallest error by the rule of a choice, and the candidate 0 to 3 that has it.
struct LaneChoices
{
	Lanes32 errors;
	Lanes32 indices;
};

/// @param errors  of each pixel, its candidates 0, 3, 1, 2; below 2^31.
inline LaneChoices chooseOfFour(const std::array<Lanes32, 4>& errors)
{
	LaneChoices choices;
	for (unsigned i = 0; i < 4; ++i)
	{
		const std::array<std::uint32_t, 4>& e = errors[i].v;
		const std::uint32_t end = std::min(e[0], e[1]);
		const std::uint32_t middle = std::min(e[2], e[3]);
		const bool takeEnd = middle > end;
		choices.errors.v[i] = takeEnd ? end : middle;
		choices.indices.v[i] = takeEnd ? (e[0] > e[1] ? 3 : 0) : (e[2] < e[3] ? 1 : 2);
	}
	return choices;
}

#endif

inline void storeLower(std::int16_t* out, const Lanes16& a)
{
	std::memcpy(out, &a, sizeof(a) / 2);
}
inline void storeLanes(std::int16_t* out, const Lanes16& a)
{
	std::memcpy(out, &a, sizeof(a));
}
inline std::uint64_t sumOfLanes(const Lanes32& a)
{
	std::array<std::uint32_t, 4> lanes;
	storeLanes(lanes.data(), a);
	return std::uint64_t{lanes[0]} + lanes[1] + lanes[2] + lanes[3];
}
