#include "Simd/SimdLevel.h"

#include <algorithm>
#include <atomic>

namespace zortexture
{
namespace
{
std::atomic<ESimdLevel>& levelInUse()
{
	static std::atomic<ESimdLevel> level{bestSimdLevel()};
	return level;
}
} // namespace

ESimdLevel bestSimdLevel()
{
#if ZORT_HAS_SIMD
	return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("f16c") != 0 ? eSimdAvx2 : eSimdSse2;
#else
	return eSimdPlain;
#endif
}

ESimdLevel simdLevel()
{
	return levelInUse().load(std::memory_order_relaxed);
}

void forceSimdLevel(ESimdLevel level)
{
	levelInUse().store(std::min(level, bestSimdLevel()), std::memory_order_relaxed);
}
} // namespace zortexture
