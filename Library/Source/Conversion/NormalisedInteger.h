/// @file NormalisedInteger.h
/// Integer channels as floats of the range 0..1 or -1..1, and back. All in single precision, so that the ceiling of a
/// channel of more than 24 bits rounds up: 1.0 in 32 bits is 2^32, which wraps to 0.
#pragma once

#include <cmath>
#include <cstdint>

#include "Numbers.h"

namespace zortexture
{
/// The largest value of an unsigned channel, in 32 bits.
inline std::uint32_t unsignedCeiling(unsigned int bits)
{
	return bits < 32 ? (1u << bits) - 1u : UINT32_MAX;
}

/// The largest value of a signed channel's magnitude, in 32 bits. Widths wrap at 32.
inline std::uint32_t signedCeiling(unsigned int bits)
{
	return (1u << ((bits - 1u) & 31u)) - 1u;
}

/// Clamps to 0..1 and rounds.
inline std::uint32_t floatToUnsigned(float value, unsigned int bits)
{
	if (value > 1.0f)
	{
		value = 1.0f;
	}
	else if (value < 0.0f)
	{
		value = 0.0f;
	}
	return wrapToUnsigned<std::uint32_t>(static_cast<float>(unsignedCeiling(bits)) * value + 0.5f);
}

/// `value` comes from a field of `bits` bits.
inline float unsignedToFloat(std::uint64_t value, unsigned int bits)
{
	return static_cast<float>(value) / static_cast<float>(unsignedCeiling(bits));
}

/// Sign and magnitude; the magnitude of negative values has one step more. Nothing is clamped: a magnitude above 1 runs
/// into the sign and beyond.
inline std::uint32_t floatToSigned(float value, unsigned int bits)
{
	const std::uint32_t sign = 0.0f > value ? 1u : 0u;
	const std::uint32_t scale = signedCeiling(bits) + sign;
	const std::uint32_t magnitude = wrapToUnsigned<std::uint32_t>(static_cast<float>(scale) * std::fabs(value) + 0.5f);
	return (sign << ((bits - 1u) & 31u)) | magnitude;
}

/// `value` is sign-extended where its sign stands at bit 31, and not otherwise. The two differ: the divisor of a negative
/// value is two steps less than its scale was when the sign is extended, and its own scale when it is not.
inline float signedToFloat(std::int32_t value, unsigned int bits)
{
	const unsigned int signShift = (bits - 1u) & 31u;
	const std::int32_t sign = value >> signShift;
	const std::uint32_t divisor = signedCeiling(bits) + static_cast<std::uint32_t>(sign);
	if (divisor == 0)
	{
		return static_cast<float>(value);
	}
	if (sign == 0)
	{
		return static_cast<float>(value) / static_cast<float>(divisor);
	}
	const std::uint32_t magnitude = static_cast<std::uint32_t>(value) & ~(static_cast<std::uint32_t>(sign) << signShift);
	return -(static_cast<float>(static_cast<std::int32_t>(magnitude)) / static_cast<float>(divisor));
}
} // namespace zortexture
