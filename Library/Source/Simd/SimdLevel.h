/// @file SimdLevel.h
/// Which vector unit the fast paths use, chosen when the program runs. Every fast path gives the bytes of its plain form.
#pragma once

#include <type_traits>

#if defined(__x86_64__)
#define ZORT_HAS_SIMD 1
#else
#define ZORT_HAS_SIMD 0
#endif

namespace zortexture
{
/// From the least to the most able. The plain level is the readable reference, and all that other processors have.
enum ESimdLevel
{
	eSimdPlain,
	eSimdSse2, ///< 16 bytes at once; every x86-64 processor
	eSimdAvx2, ///< 32 bytes at once; AVX2 with F16C
};

/// The best level of this processor.
ESimdLevel bestSimdLevel();

/// The level in use: the best one, unless another is forced.
ESimdLevel simdLevel();

/// For tests: all later calls, on every thread, use this level, or the best one where the processor lacks it.
void forceSimdLevel(ESimdLevel level);

/// Calls `function` with the level in use as a constant: `withSimdLevel([&](auto level) { return sumOf<level>(values); })`, where the
/// template is declared in a header, `sumOf<eSimdPlain>` defined in an ordinary source, and the other two in a source that is built
/// once a level (see Lanes.h).
template<typename Function>
inline decltype(auto) withSimdLevel(Function&& function)
{
#if ZORT_HAS_SIMD
	switch (simdLevel())
	{
	case eSimdAvx2:
		return function(std::integral_constant<ESimdLevel, eSimdAvx2>{});
	case eSimdSse2:
		return function(std::integral_constant<ESimdLevel, eSimdSse2>{});
	default:
		break;
	}
#endif
	return function(std::integral_constant<ESimdLevel, eSimdPlain>{});
}
} // namespace zortexture
