/// @file EtcLanes.h
/// Eight numbers at once, for loops over tables and distances: in one or two registers on processors with SSE2, in an array elsewhere. The
/// array form is the reference, and always there to be compared with.
#pragma once

#include <algorithm>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace zortexture
{
namespace etc_plain_lanes
{
/// Eight signed 16-bit numbers.
struct Int16x8
{
	std::int16_t lanes[8];

	/// `values` are aligned to 16 bytes.
	static Int16x8 load(const std::int16_t (&values)[8])
	{
		Int16x8 result;
		std::copy_n(values, 8, result.lanes);
		return result;
	}
	static Int16x8 filled(std::int16_t value)
	{
		Int16x8 result;
		std::fill_n(result.lanes, 8, value);
		return result;
	}
};

inline Int16x8 least(Int16x8 a, Int16x8 b)
{
	for (unsigned int i = 0; i < 8; ++i)
	{
		a.lanes[i] = std::min(a.lanes[i], b.lanes[i]);
	}
	return a;
}

/// The sum, which stops at both ends of the range.
inline Int16x8 addSaturated(Int16x8 a, Int16x8 b)
{
	for (unsigned int i = 0; i < 8; ++i)
	{
		a.lanes[i] = static_cast<std::int16_t>(std::clamp(a.lanes[i] + b.lanes[i], -32768, 32767));
	}
	return a;
}

/// Whether any lane of a is below that of b.
inline bool anyBelow(Int16x8 a, Int16x8 b)
{
	bool isBelow = false;
	for (unsigned int i = 0; i < 8; ++i)
	{
		isBelow |= a.lanes[i] < b.lanes[i];
	}
	return isBelow;
}

/// Eight numbers of 31 bits.
struct UInt31x8
{
	unsigned int lanes[8];

	/// `values` are aligned to 16 bytes.
	static UInt31x8 load(const unsigned int (&values)[8])
	{
		UInt31x8 result;
		std::copy_n(values, 8, result.lanes);
		return result;
	}
	static UInt31x8 filled(unsigned int value)
	{
		UInt31x8 result;
		std::fill_n(result.lanes, 8, value);
		return result;
	}
	void store(unsigned int (&values)[8]) const
	{
		std::copy_n(lanes, 8, values);
	}
};

inline UInt31x8 operator+(UInt31x8 a, UInt31x8 b)
{
	for (unsigned int i = 0; i < 8; ++i)
	{
		a.lanes[i] += b.lanes[i];
	}
	return a;
}

inline UInt31x8 least(UInt31x8 a, UInt31x8 b)
{
	for (unsigned int i = 0; i < 8; ++i)
	{
		a.lanes[i] = std::min(a.lanes[i], b.lanes[i]);
	}
	return a;
}

/// The least of the eight lanes.
inline unsigned int leastLane(UInt31x8 a)
{
	return *std::min_element(a.lanes, a.lanes + 8);
}

/// Every lane divided by 2 to the power of `bits` and cut at 32767.
inline void storeScaled(UInt31x8 a, unsigned int bits, std::int16_t (&values)[8])
{
	for (unsigned int i = 0; i < 8; ++i)
	{
		values[i] = static_cast<std::int16_t>(std::min(a.lanes[i] >> bits, 32767U));
	}
}
} // namespace etc_plain_lanes

#if defined(__SSE2__)

namespace etc_sse2_lanes
{
struct Int16x8
{
	__m128i lanes;

	static Int16x8 load(const std::int16_t (&values)[8])
	{
		return {_mm_load_si128(reinterpret_cast<const __m128i*>(values))};
	}
	static Int16x8 filled(std::int16_t value)
	{
		return {_mm_set1_epi16(value)};
	}
};

inline Int16x8 least(Int16x8 a, Int16x8 b)
{
	return {_mm_min_epi16(a.lanes, b.lanes)};
}

inline Int16x8 addSaturated(Int16x8 a, Int16x8 b)
{
	return {_mm_adds_epi16(a.lanes, b.lanes)};
}

inline bool anyBelow(Int16x8 a, Int16x8 b)
{
	return _mm_movemask_epi8(_mm_cmplt_epi16(a.lanes, b.lanes)) != 0;
}

struct UInt31x8
{
	__m128i low;
	__m128i high;

	static UInt31x8 load(const unsigned int (&values)[8])
	{
		const auto* vectors = reinterpret_cast<const __m128i*>(values);
		return {_mm_load_si128(vectors), _mm_load_si128(vectors + 1)};
	}
	static UInt31x8 filled(unsigned int value)
	{
		return {_mm_set1_epi32(static_cast<int>(value)), _mm_set1_epi32(static_cast<int>(value))};
	}
	void store(unsigned int (&values)[8]) const
	{
		auto* vectors = reinterpret_cast<__m128i*>(values);
		_mm_store_si128(vectors, low);
		_mm_store_si128(vectors + 1, high);
	}
};

inline UInt31x8 operator+(UInt31x8 a, UInt31x8 b)
{
	return {_mm_add_epi32(a.low, b.low), _mm_add_epi32(a.high, b.high)};
}

inline __m128i leastOf32Bits(__m128i a, __m128i b)
{
	const __m128i isLess = _mm_cmplt_epi32(a, b);
	return _mm_or_si128(_mm_and_si128(isLess, a), _mm_andnot_si128(isLess, b));
}

inline UInt31x8 least(UInt31x8 a, UInt31x8 b)
{
	return {leastOf32Bits(a.low, b.low), leastOf32Bits(a.high, b.high)};
}

inline unsigned int leastLane(UInt31x8 a)
{
	__m128i four = leastOf32Bits(a.low, a.high);
	four = leastOf32Bits(four, _mm_shuffle_epi32(four, _MM_SHUFFLE(1, 0, 3, 2)));
	four = leastOf32Bits(four, _mm_shuffle_epi32(four, _MM_SHUFFLE(2, 3, 0, 1)));
	return static_cast<unsigned int>(_mm_cvtsi128_si32(four));
}

inline void storeScaled(UInt31x8 a, unsigned int bits, std::int16_t (&values)[8])
{
	const __m128i count = _mm_cvtsi32_si128(static_cast<int>(bits));
	_mm_store_si128(reinterpret_cast<__m128i*>(values), _mm_packs_epi32(_mm_srl_epi32(a.low, count), _mm_srl_epi32(a.high, count)));
}
} // namespace etc_sse2_lanes

namespace etc_lanes = etc_sse2_lanes;

#else

namespace etc_lanes = etc_plain_lanes;

#endif
} // namespace zortexture
