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

/// Where the fields of a pixel of two or four bytes stand; a mask of 0 for a position that there is not.
struct SFieldPlaces
{
	std::uint32_t masks[4];
	std::uint32_t shifts[4];
};

/// Puts four numbers a pixel into fields that do not run into each other. Packs as many pixels from the first on as registers hold, which
/// at levels without an instruction for it is none, and returns their number.
/// @param bytes  of a pixel: 2 or 4
template<ESimdLevel level>
std::size_t packFields(const SFieldPlaces& places, unsigned int bytes, const std::uint32_t* numbers, unsigned char* pixels,
                       std::size_t numPixels);

template<>
void readChannels<eSimdPlain>(const SChannelRule& rule, const unsigned char* numbers, float* values, std::size_t count);
template<>
void writeChannels<eSimdPlain>(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count);
template<>
std::size_t packFields<eSimdPlain>(const SFieldPlaces& places, unsigned int bytes, const std::uint32_t* numbers, unsigned char* pixels,
                                   std::size_t numPixels);
} // namespace zortexture
