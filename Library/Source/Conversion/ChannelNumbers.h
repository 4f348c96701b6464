/// @file ChannelNumbers.h
/// The numbers of channels as floats and back, many at once, by the rules of the pixel encoder.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Simd/SimdLevel.h"

namespace zortexture
{
enum EChannelKind
{
	eUnsignedChannels,
	eSignedChannels,
	eHalfChannels,
	eFloatChannels,
	eSmallFloatChannels ///< of 10 and 11 bits; all other widths read and write 0
};

/// The form of numbers that stand next to each other in memory. Their widths repeat after every four.
struct SChannelRule
{
	EChannelKind kind = eUnsignedChannels;
	unsigned int bytes = 4;      ///< of each in memory: 1, 2 or 4
	bool isUniform = false;      ///< all widths are the same, and fill the bytes
	bool hasSign = true;         ///< for halves: without it, the sign is not read
	unsigned int bits[4] = {};   ///< the widths
	float ceilings[4] = {};      ///< of unsigned and signed channels: the largest value
	float floors[4] = {};        ///< of signed channels: the scale of negative values that are written
	std::uint32_t signs[4] = {}; ///< of signed channels: the bit of the sign
};

/// Signed numbers are sign-extended to their bytes, as the encoder reads them.
template<ESimdLevel level>
void readChannels(const SChannelRule& rule, const unsigned char* numbers, float* values, std::size_t count);

/// Numbers of fields have four bytes, and can be wider than their field.
template<ESimdLevel level>
void writeChannels(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count);

template<>
void readChannels<eSimdPlain>(const SChannelRule& rule, const unsigned char* numbers, float* values, std::size_t count);
template<>
void writeChannels<eSimdPlain>(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count);
} // namespace zortexture
