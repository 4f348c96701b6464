/// @file LaneWords.h
/// The words of the vector layer that stand for single instructions, on memory, so that each build of them can be held against numbers.
#pragma once

#include <cstdint>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// Room for the lanes of one register of any level.
union LaneBytes
{
	std::uint8_t u8[32];
	std::int8_t i8[32];
	std::uint16_t u16[16];
	std::int16_t i16[16];
	std::uint32_t u32[8];
	std::int32_t i32[8];
	std::uint64_t u64[4];
	float f32[8];
	double f64[4];
};

enum ELaneWord
{
	eAddSaturatedU8,
	eAddSaturatedI8,
	eAddSaturatedU16,
	eAddSaturatedI16,
	eSubtractSaturatedU8,
	eSubtractSaturatedU16,
	eSubtractSaturatedI16,
	eMultiplyHighU16,
	eMultiplyHighI16,
	eRoundedMean,
	eSumsOfProducts,
	eSumsOfDifferences,
	ePackSigned16,
	ePackSigned32,
	ePackUnsigned16,
	eInterleaveLow8,
	eInterleaveHigh16,
	eInterleaveLow32,
	eTruncated,
	eSquareRootF32,
	eSquareRootF64,
	eLeastF32,
	eGreatestI16,
	eBitsOfMask8,
	eBitsOfMask32,
	eNumLaneWords
};

/// `result` = `word`(a, b) on registers of the level; lanes past the register's are left alone.
/// @return the bytes of a register.
template<ESimdLevel level>
unsigned int applyLaneWord(ELaneWord word, const LaneBytes& a, const LaneBytes& b, LaneBytes& result);
} // namespace zortexture
