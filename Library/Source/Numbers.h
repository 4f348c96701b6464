/// @file Numbers.h
/// Conversions that the language leaves undefined and the library's results depend on.
#pragma once

#include <cstdint>
#include <type_traits>

namespace zortexture
{
/// Truncates toward zero to a signed 64-bit integer; saturates beyond its range, NaN gives 0.
template<typename Float>
inline std::int64_t truncateToInt64(Float value)
{
	constexpr Float limit = static_cast<Float>(9223372036854775808.0); // 2^63, exact in single and double precision
	if (value >= limit)
	{
		return INT64_MAX;
	}
	if (value < -limit)
	{
		return INT64_MIN;
	}
	return value == value ? static_cast<std::int64_t>(value) : 0;
}

/// Truncates toward zero and keeps the low bits that T holds: in 8 bits 300.0 is 44 and -1.0 is 255.
template<typename T, typename Float>
inline T wrapToUnsigned(Float value)
{
	static_assert(std::is_unsigned_v<T>);
	return static_cast<T>(static_cast<std::uint64_t>(truncateToInt64(value)));
}
} // namespace zortexture
