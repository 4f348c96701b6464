/// @file Lanes.h
/// Several numbers side by side in one register: the words that all vector code is written in.
///
/// Included only by sources named `*.simd.cpp`, which `zort_simd_sources` builds once for each vector unit. In each build `kLanesLevel`
/// tells the level, `kLanesBytes` the width of a register, and the names `U8`, `I16`, `F32` and so on the registers of that width. Such a
/// source defines function templates over ESimdLevel and instantiates them for `kLanesLevel`; the twin for eSimdPlain, without lanes,
/// stands in an ordinary source. It keeps everything else in an unnamed namespace and calls no inline function of another header
/// that the compiler might leave out of line: a copy of it built for the wider unit could then serve the whole program.
///
/// Numbers wrap where they overflow. Floats are rounded as single operations are, in the order written.
#pragma once

#include <cstdint>
#include <cstring>
#include <immintrin.h>
#include <type_traits>

#include "Simd/SimdLevel.h"

#define ZORT_INLINE [[gnu::always_inline]] inline

namespace zortexture
{
#if defined(__AVX2__)
#define ZORT_LANES_NAMESPACE lanes_avx2
inline namespace lanes_avx2
{
constexpr ESimdLevel kLanesLevel = eSimdAvx2;
constexpr unsigned int kLanesBytes = 32;
#else
#define ZORT_LANES_NAMESPACE lanes_sse2
inline namespace lanes_sse2
{
constexpr ESimdLevel kLanesLevel = eSimdSse2;
constexpr unsigned int kLanesBytes = 16;
#endif

/// `N` numbers of the type `T`, lane 0 first in memory.
template<typename T, unsigned int N>
struct Lanes
{
	using Element = T;
	static constexpr unsigned int kCount = N;
	typedef T Vector __attribute__((vector_size(N * sizeof(T)))); // the attribute wants a typedef

	Vector v;

	/// From memory of any alignment.
	ZORT_INLINE static Lanes load(const void* memory)
	{
		Lanes result;
		std::memcpy(&result.v, memory, sizeof(Vector));
		return result;
	}
	/// The same number in every lane.
	ZORT_INLINE static Lanes filled(T value)
	{
		return {value - Vector{}};
	}
	/// 0, 1, 2, ...
	ZORT_INLINE static Lanes counted()
	{
		Lanes result;
		for (unsigned int i = 0; i < N; ++i)
		{
			result.v[i] = static_cast<T>(i);
		}
		return result;
	}
	/// To memory of any alignment.
	ZORT_INLINE void store(void* memory) const
	{
		std::memcpy(memory, &v, sizeof(Vector));
	}
	ZORT_INLINE T operator[](unsigned int lane) const
	{
		return v[lane];
	}
};

/// The signed integer of as many bytes: masks are lanes of these, 0 or -1.
template<typename T>
using MaskElement =
    std::conditional_t<sizeof(T) == 1, std::int8_t,
                       std::conditional_t<sizeof(T) == 2, std::int16_t, std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>>>;
template<typename T, unsigned int N>
using Mask = Lanes<MaskElement<T>, N>;

template<typename T>
using FullLanes = Lanes<T, kLanesBytes / sizeof(T)>;
using U8 = FullLanes<std::uint8_t>;
using I8 = FullLanes<std::int8_t>;
using U16 = FullLanes<std::uint16_t>;
using I16 = FullLanes<std::int16_t>;
using U32 = FullLanes<std::uint32_t>;
using I32 = FullLanes<std::int32_t>;
using U64 = FullLanes<std::uint64_t>;
using F32 = FullLanes<float>;
using F64 = FullLanes<double>;

// Arithmetic, lane by lane.

/// Numbers in which sums and products of T wrap: unsigned for signed integers, whose overflow the language leaves open.
template<typename T, typename Enabled = void>
struct Wrapping
{
	using Type = T;
};
template<typename T>
struct Wrapping<T, std::enable_if_t<std::is_integral_v<T> && std::is_signed_v<T>>>
{
	using Type = std::make_unsigned_t<T>;
};

#define ZORT_LANES_OPERATOR(op, Calculated)                                                                                                \
	template<typename T, unsigned int N>                                                                                                   \
	ZORT_INLINE Lanes<T, N> operator op(Lanes<T, N> a, Lanes<T, N> b)                                                                      \
	{                                                                                                                                      \
		using Vector = typename Lanes<Calculated, N>::Vector;                                                                              \
		return {reinterpret_cast<typename Lanes<T, N>::Vector>(reinterpret_cast<Vector>(a.v) op reinterpret_cast<Vector>(b.v))};           \
	}                                                                                                                                      \
	template<typename T, unsigned int N>                                                                                                   \
	ZORT_INLINE Lanes<T, N>& operator op##=(Lanes<T, N>& a, Lanes<T, N> b)                                                                 \
	{                                                                                                                                      \
		a = a op b;                                                                                                                        \
		return a;                                                                                                                          \
	}
ZORT_LANES_OPERATOR(+, typename Wrapping<T>::Type)
ZORT_LANES_OPERATOR(-, typename Wrapping<T>::Type)
ZORT_LANES_OPERATOR(*, typename Wrapping<T>::Type)
ZORT_LANES_OPERATOR(/, T)
ZORT_LANES_OPERATOR(&, T)
ZORT_LANES_OPERATOR(|, T)
ZORT_LANES_OPERATOR(^, T)
#undef ZORT_LANES_OPERATOR

/// All lanes shifted by the same count, below their width. Signed lanes keep their sign to the right.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N> operator<<(Lanes<T, N> a, int count)
{
	using Vector = typename Lanes<typename Wrapping<T>::Type, N>::Vector;
	return {reinterpret_cast<typename Lanes<T, N>::Vector>(reinterpret_cast<Vector>(a.v) << count)};
}
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N> operator>>(Lanes<T, N> a, int count)
{
	return {a.v >> count};
}
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N> operator~(Lanes<T, N> a)
{
	return {~a.v};
}

// Comparisons, which give masks.

#define ZORT_LANES_COMPARISON(op)                                                                                                          \
	template<typename T, unsigned int N>                                                                                                   \
	ZORT_INLINE Mask<T, N> operator op(Lanes<T, N> a, Lanes<T, N> b)                                                                       \
	{                                                                                                                                      \
		return {reinterpret_cast<typename Mask<T, N>::Vector>(a.v op b.v)};                                                                \
	}
ZORT_LANES_COMPARISON(==)
ZORT_LANES_COMPARISON(!=)
ZORT_LANES_COMPARISON(<)
ZORT_LANES_COMPARISON(>)
ZORT_LANES_COMPARISON(<=)
ZORT_LANES_COMPARISON(>=)
#undef ZORT_LANES_COMPARISON

/// The same bits as numbers of another type.
template<typename To, typename T, unsigned int N>
ZORT_INLINE auto as(Lanes<T, N> a)
{
	using Result = Lanes<To, N * sizeof(T) / sizeof(To)>;
	return Result{reinterpret_cast<typename Result::Vector>(a.v)};
}

/// Where the mask is set the lane of a, elsewhere that of b.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N> select(Mask<T, N> mask, Lanes<T, N> a, Lanes<T, N> b)
{
	return {mask.v ? a.v : b.v};
}

/// a < b ? a : b, so that of two floats that cannot be compared the second is taken.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N> least(Lanes<T, N> a, Lanes<T, N> b)
{
	return {a.v < b.v ? a.v : b.v};
}
/// a > b ? a : b.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N> greatest(Lanes<T, N> a, Lanes<T, N> b)
{
	return {a.v > b.v ? a.v : b.v};
}

/// As many numbers of another type, converted as static_cast does. Floats must lie within the range of an integer type.
template<typename To, typename T, unsigned int N>
ZORT_INLINE Lanes<To, N> convert(Lanes<T, N> a)
{
	return {__builtin_convertvector(a.v, typename Lanes<To, N>::Vector)};
}

// Moving lanes about.

/// Lanes of a, by number.
template<int... Indices, typename T, unsigned int N>
ZORT_INLINE auto shuffle(Lanes<T, N> a)
{
	return Lanes<T, sizeof...(Indices)>{__builtin_shufflevector(a.v, a.v, Indices...)};
}
/// Lanes of a (numbers below N) and of b (numbers from N on).
template<int... Indices, typename T, unsigned int N>
ZORT_INLINE auto shuffle(Lanes<T, N> a, Lanes<T, N> b)
{
	return Lanes<T, sizeof...(Indices)>{__builtin_shufflevector(a.v, b.v, Indices...)};
}
// Halves of a wide register are moved by its own instructions, since compilers send copies in memory through memory.

/// The first half of the lanes.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N / 2> lower(Lanes<T, N> a)
{
	Lanes<T, N / 2> result;
#if defined(__AVX2__)
	if constexpr (sizeof(a.v) == 32)
	{
		return {reinterpret_cast<decltype(result.v)>(_mm256_castsi256_si128(reinterpret_cast<__m256i>(a.v)))};
	}
#endif
	std::memcpy(&result.v, &a.v, sizeof(result.v));
	return result;
}
/// The second half.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N / 2> upper(Lanes<T, N> a)
{
	Lanes<T, N / 2> result;
#if defined(__AVX2__)
	if constexpr (sizeof(a.v) == 32)
	{
		return {reinterpret_cast<decltype(result.v)>(_mm256_extracti128_si256(reinterpret_cast<__m256i>(a.v), 1))};
	}
#endif
	std::memcpy(&result.v, reinterpret_cast<const char*>(&a.v) + sizeof(result.v), sizeof(result.v));
	return result;
}
/// Two halves side by side.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N * 2> join(Lanes<T, N> low, Lanes<T, N> high)
{
#if defined(__AVX2__)
	if constexpr (sizeof(low.v) == 16)
	{
		// Copies would go through memory, and a wide load waits long for two narrow stores.
		return {reinterpret_cast<typename Lanes<T, N * 2>::Vector>(
		    _mm256_set_m128i(reinterpret_cast<__m128i>(high.v), reinterpret_cast<__m128i>(low.v)))};
	}
#endif
	Lanes<T, N * 2> result;
	std::memcpy(&result.v, &low.v, sizeof(low.v));
	std::memcpy(reinterpret_cast<char*>(&result.v) + sizeof(low.v), &high.v, sizeof(high.v));
	return result;
}

// What the languages' operators cannot say, on registers of 16 bytes and, where the unit has them, of 32.

ZORT_INLINE __m128i bitsOf(__m128i v)
{
	return v;
}
template<typename T, unsigned int N>
ZORT_INLINE auto bitsOf(Lanes<T, N> a)
{
	if constexpr (sizeof(a.v) == 16)
	{
		return reinterpret_cast<__m128i>(a.v);
	}
#if defined(__AVX2__)
	else
	{
		return reinterpret_cast<__m256i>(a.v);
	}
#endif
}

#if defined(__AVX2__)
#define ZORT_LANES_CALL(narrow, wide, a, ...)                                                                                              \
	if constexpr (sizeof(a.v) == 16)                                                                                                       \
	{                                                                                                                                      \
		return {reinterpret_cast<typename Result::Vector>(narrow(__VA_ARGS__))};                                                           \
	}                                                                                                                                      \
	else                                                                                                                                   \
	{                                                                                                                                      \
		return {reinterpret_cast<typename Result::Vector>(wide(__VA_ARGS__))};                                                             \
	}
#else
#define ZORT_LANES_CALL(narrow, wide, a, ...)                                                                                              \
	return                                                                                                                                 \
	{                                                                                                                                      \
		reinterpret_cast<typename Result::Vector>(narrow(__VA_ARGS__))                                                                     \
	}
#endif

#define ZORT_LANES_BINARY(name, ElementIn, ElementOut, ratio, narrow, wide)                                                                \
	template<unsigned int N>                                                                                                               \
	ZORT_INLINE Lanes<ElementOut, N * ratio> name(Lanes<ElementIn, N> a, Lanes<ElementIn, N> b)                                            \
	{                                                                                                                                      \
		using Result = Lanes<ElementOut, N * ratio>;                                                                                       \
		ZORT_LANES_CALL(narrow, wide, a, bitsOf(a), bitsOf(b));                                                                            \
	}

/// Sums and differences that stop at the ends of the range.
ZORT_LANES_BINARY(addSaturated, std::uint8_t, std::uint8_t, 1, _mm_adds_epu8, _mm256_adds_epu8)
ZORT_LANES_BINARY(addSaturated, std::int8_t, std::int8_t, 1, _mm_adds_epi8, _mm256_adds_epi8)
ZORT_LANES_BINARY(addSaturated, std::uint16_t, std::uint16_t, 1, _mm_adds_epu16, _mm256_adds_epu16)
ZORT_LANES_BINARY(addSaturated, std::int16_t, std::int16_t, 1, _mm_adds_epi16, _mm256_adds_epi16)
ZORT_LANES_BINARY(subtractSaturated, std::uint8_t, std::uint8_t, 1, _mm_subs_epu8, _mm256_subs_epu8)
ZORT_LANES_BINARY(subtractSaturated, std::uint16_t, std::uint16_t, 1, _mm_subs_epu16, _mm256_subs_epu16)
ZORT_LANES_BINARY(subtractSaturated, std::int16_t, std::int16_t, 1, _mm_subs_epi16, _mm256_subs_epi16)
/// The high halves of the products.
ZORT_LANES_BINARY(multiplyHigh, std::uint16_t, std::uint16_t, 1, _mm_mulhi_epu16, _mm256_mulhi_epu16)
ZORT_LANES_BINARY(multiplyHigh, std::int16_t, std::int16_t, 1, _mm_mulhi_epi16, _mm256_mulhi_epi16)
/// (a + b + 1) / 2.
ZORT_LANES_BINARY(roundedMean, std::uint8_t, std::uint8_t, 1, _mm_avg_epu8, _mm256_avg_epu8)
/// The sums of the products of lanes 2n and 2n + 1, in lane n.
template<unsigned int N>
ZORT_INLINE Lanes<std::int32_t, N / 2> sumsOfProducts(Lanes<std::int16_t, N> a, Lanes<std::int16_t, N> b)
{
	using Result = Lanes<std::int32_t, N / 2>;
	ZORT_LANES_CALL(_mm_madd_epi16, _mm256_madd_epi16, a, bitsOf(a), bitsOf(b));
}
/// The sums of the absolute differences of eight lanes each.
template<unsigned int N>
ZORT_INLINE Lanes<std::uint64_t, N / 8> sumsOfDifferences(Lanes<std::uint8_t, N> a, Lanes<std::uint8_t, N> b)
{
	using Result = Lanes<std::uint64_t, N / 8>;
	ZORT_LANES_CALL(_mm_sad_epu8, _mm256_sad_epu8, a, bitsOf(a), bitsOf(b));
}

/// The lanes of a and then those of b cut to the range of half the width. Registers of 32 bytes do so in each half for itself.
ZORT_LANES_BINARY(packSigned, std::int16_t, std::int8_t, 2, _mm_packs_epi16, _mm256_packs_epi16)
ZORT_LANES_BINARY(packSigned, std::int32_t, std::int16_t, 2, _mm_packs_epi32, _mm256_packs_epi32)
ZORT_LANES_BINARY(packUnsigned, std::int16_t, std::uint8_t, 2, _mm_packus_epi16, _mm256_packus_epi16)

/// Numbers of four bytes likewise, those within 32768 of the least one excepted.
template<unsigned int N>
ZORT_INLINE Lanes<std::uint16_t, N * 2> packUnsigned(Lanes<std::int32_t, N> a, Lanes<std::int32_t, N> b)
{
#if defined(__AVX2__)
	using Result = Lanes<std::uint16_t, N * 2>;
	ZORT_LANES_CALL(_mm_packus_epi32, _mm256_packus_epi32, a, bitsOf(a), bitsOf(b));
#else
	const auto middle = Lanes<std::int32_t, N>::filled(0x8000);
	return as<std::uint16_t>(packSigned(a - middle, b - middle)) ^ Lanes<std::uint16_t, N * 2>::filled(0x8000);
#endif
}

/// Bytes from memory, or numbers of two bytes, each in a lane of four.
template<unsigned int N>
ZORT_INLINE Lanes<std::int32_t, N> loadWidened(const std::uint8_t* memory)
{
	static_assert(N == 4 || N == kLanesBytes / 4);
	using Result = Lanes<std::int32_t, N>;
	std::conditional_t<N == 4, std::int32_t, std::int64_t> bytes;
	std::memcpy(&bytes, memory, sizeof(bytes));
#if defined(__AVX2__)
	const __m128i narrow = N == 4 ? _mm_cvtsi32_si128(static_cast<std::int32_t>(bytes)) : _mm_cvtsi64_si128(bytes);
	const Result model{};
	ZORT_LANES_CALL(_mm_cvtepu8_epi32, _mm256_cvtepu8_epi32, model, narrow);
#else
	const __m128i words = _mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), _mm_setzero_si128());
	return {reinterpret_cast<typename Result::Vector>(_mm_unpacklo_epi16(words, _mm_setzero_si128()))};
#endif
}
template<unsigned int N>
ZORT_INLINE Lanes<std::int32_t, N> loadWidened(const std::uint16_t* memory)
{
	static_assert(N == 4 || N == kLanesBytes / 4);
	using Result = Lanes<std::int32_t, N>;
	__m128i narrow = _mm_setzero_si128();
	std::memcpy(&narrow, memory, N * sizeof(*memory));
#if defined(__AVX2__)
	const Result model{};
	ZORT_LANES_CALL(_mm_cvtepu16_epi32, _mm256_cvtepu16_epi32, model, narrow);
#else
	return {reinterpret_cast<typename Result::Vector>(_mm_unpacklo_epi16(narrow, _mm_setzero_si128()))};
#endif
}

/// Half a register of bytes from memory, each in a lane of two.
ZORT_INLINE U16 loadWords(const std::uint8_t* memory)
{
	__m128i narrow = _mm_setzero_si128();
	std::memcpy(&narrow, memory, U16::kCount);
#if defined(__AVX2__)
	return {reinterpret_cast<U16::Vector>(_mm256_cvtepu8_epi16(narrow))};
#else
	return {reinterpret_cast<U16::Vector>(_mm_unpacklo_epi8(narrow, _mm_setzero_si128()))};
#endif
}

/// Lanes of a and b by turns, from the first half of each 16 bytes, or from the second.
#define ZORT_LANES_INTERLEAVE(T, suffix)                                                                                                   \
	ZORT_LANES_BINARY(interleaveLow, T, T, 1, _mm_unpacklo_##suffix, _mm256_unpacklo_##suffix)                                             \
	ZORT_LANES_BINARY(interleaveHigh, T, T, 1, _mm_unpackhi_##suffix, _mm256_unpackhi_##suffix)
ZORT_LANES_INTERLEAVE(std::uint8_t, epi8)
ZORT_LANES_INTERLEAVE(std::uint16_t, epi16)
ZORT_LANES_INTERLEAVE(std::int16_t, epi16)
ZORT_LANES_INTERLEAVE(std::uint32_t, epi32)
ZORT_LANES_INTERLEAVE(std::int32_t, epi32)
ZORT_LANES_INTERLEAVE(std::uint64_t, epi64)
#undef ZORT_LANES_INTERLEAVE

#if defined(__AVX2__)
/// Bytes of `table` by the low four bits of each index, within each 16 bytes; 0 where the index has its top bit. The narrower unit has no
/// such instruction: code for both asks `kLanesLevel`.
ZORT_LANES_BINARY(shuffleBytes, std::uint8_t, std::uint8_t, 1, _mm_shuffle_epi8, _mm256_shuffle_epi8)
#endif

/// One bit for every lane of a mask, lane 0 lowest.
template<typename T, unsigned int N>
ZORT_INLINE unsigned int bitsOfMask(Lanes<T, N> mask)
{
	static_assert(std::is_integral_v<T> && sizeof(T) != 2, "the processor has no such instruction for this width");
	if constexpr (sizeof(mask.v) == 16)
	{
		if constexpr (sizeof(T) == 1)
		{
			return static_cast<unsigned int>(_mm_movemask_epi8(bitsOf(mask)));
		}
		else if constexpr (sizeof(T) == 8)
		{
			return static_cast<unsigned int>(_mm_movemask_pd(reinterpret_cast<__m128d>(mask.v)));
		}
		else
		{
			return static_cast<unsigned int>(_mm_movemask_ps(reinterpret_cast<__m128>(mask.v)));
		}
	}
#if defined(__AVX2__)
	else if constexpr (sizeof(T) == 1)
	{
		return static_cast<unsigned int>(_mm256_movemask_epi8(bitsOf(mask)));
	}
	else if constexpr (sizeof(T) == 8)
	{
		return static_cast<unsigned int>(_mm256_movemask_pd(reinterpret_cast<__m256d>(mask.v)));
	}
	else
	{
		return static_cast<unsigned int>(_mm256_movemask_ps(reinterpret_cast<__m256>(mask.v)));
	}
#endif
}
/// Whether the mask is set in any lane.
template<typename T, unsigned int N>
ZORT_INLINE bool isAny(Lanes<T, N> mask)
{
	return bitsOfMask(as<std::int8_t>(mask)) != 0;
}
/// Whether it is set in every lane.
template<typename T, unsigned int N>
ZORT_INLINE bool isAll(Lanes<T, N> mask)
{
	return !isAny(~mask);
}

/// Towards zero; the least integer where the value is no integer of 32 bits.
template<unsigned int N>
ZORT_INLINE Lanes<std::int32_t, N> truncated(Lanes<float, N> a)
{
	using Result = Lanes<std::int32_t, N>;
	ZORT_LANES_CALL(_mm_cvttps_epi32, _mm256_cvttps_epi32, a, a.v);
}
template<unsigned int N>
ZORT_INLINE Lanes<float, N> squareRoot(Lanes<float, N> a)
{
	using Result = Lanes<float, N>;
	ZORT_LANES_CALL(_mm_sqrt_ps, _mm256_sqrt_ps, a, a.v);
}
template<unsigned int N>
ZORT_INLINE Lanes<double, N> squareRoot(Lanes<double, N> a)
{
	using Result = Lanes<double, N>;
	ZORT_LANES_CALL(_mm_sqrt_pd, _mm256_sqrt_pd, a, a.v);
}
template<unsigned int N>
ZORT_INLINE Lanes<float, N> absolute(Lanes<float, N> a)
{
	return as<float>(as<std::uint32_t>(a) & Lanes<std::uint32_t, N>::filled(0x7FFFFFFF));
}

/// The first two floats as doubles, and back in the first two lanes of four.
ZORT_INLINE Lanes<double, 2> toDoubles(Lanes<float, 4> a)
{
	return {reinterpret_cast<Lanes<double, 2>::Vector>(_mm_cvtps_pd(a.v))};
}
ZORT_INLINE Lanes<float, 4> toFloats(Lanes<double, 2> a)
{
	return {reinterpret_cast<Lanes<float, 4>::Vector>(_mm_cvtpd_ps(a.v))};
}

/// table[index] for every lane, of four bytes each.
template<typename T, unsigned int N>
ZORT_INLINE Lanes<T, N> lookUp(const T* table, Lanes<std::int32_t, N> indices)
{
	static_assert(sizeof(T) == 4);
#if defined(__AVX2__)
	if constexpr (N == 8)
	{
		return {reinterpret_cast<typename Lanes<T, N>::Vector>(
		    _mm256_i32gather_epi32(reinterpret_cast<const int*>(table), bitsOf(indices), 4))};
	}
#endif
	Lanes<T, N> result;
	for (unsigned int i = 0; i < N; ++i)
	{
		result.v[i] = table[indices[i]];
	}
	return result;
}

#undef ZORT_LANES_BINARY
#undef ZORT_LANES_CALL
} // namespace lanes_avx2 or lanes_sse2
} // namespace zortexture
