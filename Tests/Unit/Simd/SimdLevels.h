/// @file SimdLevels.h
/// The levels of vector units in tests: every fast path gives the bytes of its plain form.
#pragma once

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// Forces a level while it lives, on all threads.
class ForcedSimdLevel
{
public:
	explicit ForcedSimdLevel(ESimdLevel level)
	{
		forceSimdLevel(level);
	}
	~ForcedSimdLevel()
	{
		forceSimdLevel(bestSimdLevel());
	}
	ForcedSimdLevel(const ForcedSimdLevel&) = delete;
	ForcedSimdLevel& operator=(const ForcedSimdLevel&) = delete;
};

/// The levels whose results are held against those of the plain one.
inline constexpr ESimdLevel kVectorLevels[] = {eSimdSse2, eSimdAvx2};

/// What `function` gives at a level.
template<typename Function>
auto atSimdLevel(ESimdLevel level, Function&& function)
{
	const ForcedSimdLevel forced(level);
	return function();
}
} // namespace zortexture
