/// @file SmallFloat.h
/// Floats of fewer bits than 32: any split into mantissa and exponent, with the half and the packed 11- and 10-bit floats
/// as instances.
#pragma once

#include <bit>
#include <cstdint>

namespace zortexture
{
inline constexpr std::uint32_t kFloatMantissaMask = 0x7FFFFFu;
inline constexpr unsigned int kFloatMantissaBits = 23;
inline constexpr std::uint32_t kFloatExponentMask = 0x7F800000u;
inline constexpr int kFloatBias = 127;

/// Mantissa and exponent widths that fit below a sign in 32 bits and in a float's own mantissa.
inline bool isSmallFloatShape(unsigned int mantissaBits, unsigned int exponentBits)
{
	return mantissaBits <= kFloatMantissaBits && mantissaBits + exponentBits <= 31;
}

/// Truncates. What is too small becomes 0 and what is too large the largest value, both with their sign, which lands above
/// the exponent. With `reserve` the all-ones exponent is not used: infinity then has the largest exponent that is, and a
/// mantissa of 0. 0 for widths that make no small float.
inline std::uint32_t shrinkFloat(float value, unsigned int mantissaBits, unsigned int exponentBits, int bias, bool reserve)
{
	if (!isSmallFloatShape(mantissaBits, exponentBits))
	{
		return 0;
	}
	const std::uint32_t bits = std::bit_cast<std::uint32_t>(value);
	const std::uint32_t sign = (bits >> 31) << (mantissaBits + exponentBits);
	const int floatExponent = static_cast<int>((bits & kFloatExponentMask) >> kFloatMantissaBits);
	const bool isSpecial = floatExponent == 255;
	const int exponent = floatExponent == 0 ? 0 : floatExponent + bias - kFloatBias;
	const int allOnes = static_cast<int>((1u << exponentBits) - 1u);
	const int largest = allOnes - (reserve ? 1 : 0);
	const std::uint32_t truncated = (bits & kFloatMantissaMask) >> (kFloatMantissaBits - mantissaBits);

	std::uint32_t exponentField = 0;
	std::uint32_t mantissa = 0;
	if (exponent > 0 && exponent > largest)
	{
		exponentField = static_cast<std::uint32_t>(largest) << mantissaBits;
		mantissa = isSpecial ? truncated : (1u << mantissaBits) - 1u;
	}
	else if (exponent > 0)
	{
		exponentField = static_cast<std::uint32_t>(exponent) << mantissaBits;
		mantissa = truncated;
	}

	// The field stands at its place already while the limit does not, so that this meets floats without mantissa or
	// exponent bits alone. Existing data depends on the comparison as it is.
	if (reserve && !isSpecial && exponentField == static_cast<std::uint32_t>(allOnes))
	{
		exponentField = static_cast<std::uint32_t>(allOnes - 1);
		if (mantissa == 0 && (bits & kFloatMantissaMask) != 0)
		{
			mantissa = 1;
		}
	}
	return sign | exponentField | mantissa;
}

/// The inverse, without denormals: an exponent field of 0 is an exponent like the others, so that a stored 0 becomes the
/// smallest power of two. An all-ones exponent becomes infinity or NaN. 0.0 for widths that make no small float.
inline float growFloat(std::uint32_t value, unsigned int mantissaBits, unsigned int exponentBits, int bias, bool isSigned)
{
	if (!isSmallFloatShape(mantissaBits, exponentBits))
	{
		return 0.0f;
	}
	const std::uint32_t allOnes = (1u << exponentBits) - 1u;
	const std::uint32_t mantissa = (value & ((1u << mantissaBits) - 1u)) << (kFloatMantissaBits - mantissaBits);
	const std::uint32_t exponent = (value >> mantissaBits) & allOnes;
	const std::uint32_t sign = isSigned ? (value >> (mantissaBits + exponentBits)) & 1u : 0u;
	const std::uint32_t exponentField =
	    exponent == allOnes ? kFloatExponentMask : ((exponent - static_cast<std::uint32_t>(bias)) << kFloatMantissaBits) + 0x3F800000u;
	return std::bit_cast<float>((sign << 31) | exponentField | mantissa);
}

/// The small floats of pixel formats have five exponent bits and the bias of the half.
inline constexpr unsigned int kPixelFloatExponentBits = 5;
inline constexpr int kPixelFloatBias = 15;
inline constexpr unsigned int kHalfMantissaBits = 10;

/// The mantissa bits of a channel of 16, 11 or 10 bits; 0 for widths that have no small float. The packed two spend no
/// bit on a sign.
inline constexpr unsigned int pixelFloatMantissaBits(unsigned int channelBits)
{
	switch (channelBits)
	{
	case 16:
		return kHalfMantissaBits;
	case 11:
		return 6;
	case 10:
		return 5;
	default:
		return 0;
	}
}

/// The largest result has the exponent 30: no infinity is written.
inline std::uint32_t floatToPixelFloat(float value, unsigned int mantissaBits)
{
	return shrinkFloat(value, mantissaBits, kPixelFloatExponentBits, kPixelFloatBias, true);
}

inline float pixelFloatToFloat(std::uint32_t value, unsigned int mantissaBits, bool isSigned)
{
	return growFloat(value, mantissaBits, kPixelFloatExponentBits, kPixelFloatBias, isSigned);
}

inline std::uint16_t floatToHalf(float value)
{
	return static_cast<std::uint16_t>(floatToPixelFloat(value, kHalfMantissaBits));
}
} // namespace zortexture
