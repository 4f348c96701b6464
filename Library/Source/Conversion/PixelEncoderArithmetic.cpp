// The encoder's number rules as arithmetic on plain values.

#include <algorithm>

#include "NormalisedInteger.h"
#include "PixelEncoder.h"
#include "SmallFloat.h"

namespace zortexture
{
unsigned int CPixelEncoder::ShrinkFloat(const float& value, const unsigned char& mantissaBits, const unsigned char& exponentBits,
                                        const unsigned char& bias, bool /*isSigned*/, bool reserve) const
{
	return shrinkFloat(value, mantissaBits, exponentBits, bias, reserve);
}

float CPixelEncoder::GrowFloat(const unsigned int& value, const unsigned char& mantissaBits, const unsigned char& exponentBits,
                               const unsigned char& bias, bool isSigned) const
{
	return growFloat(value, mantissaBits, exponentBits, bias, isSigned);
}

unsigned int CPixelEncoder::ShrinkFloatToUNorm(const float& value, const unsigned char& bits) const
{
	return floatToUnsigned(value, bits);
}

int CPixelEncoder::ShrinkFloatToSNorm(const float& value, const unsigned char& bits) const
{
	return static_cast<int>(floatToSigned(value, bits));
}

float CPixelEncoder::GrowUNormToFloat(const unsigned int& value, const unsigned char& bits) const
{
	return unsignedToFloat(value, bits);
}

float CPixelEncoder::GrowSNormToFloat(const int& value, const unsigned char& bits) const
{
	return signedToFloat(value, bits);
}

int CPixelEncoder::ResizeSInt(const int& value, const unsigned char& sourceBits, const unsigned char& targetBits) const
{
	// Shift counts are taken modulo 32.
	const unsigned int shift = (32u - sourceBits) & 31u;
	const int extended = static_cast<int>(static_cast<unsigned int>(value) << shift) >> shift;
	const int limit = static_cast<int>(signedCeiling(targetBits));
	return std::clamp(extended, -limit, limit);
}
} // namespace zortexture
