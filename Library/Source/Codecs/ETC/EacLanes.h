/// @file EacLanes.h
/// Decoding of EAC blocks with lanes. For sources named `*.simd.cpp`, see Lanes.h.
#pragma once

#include "Codecs/BlockLanes.h"
#include "EacBlock.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
/// The modifiers of a table by index.
struct EacModifiers
{
	std::int16_t rows[16][8];
};
constexpr EacModifiers kEacModifiers = []
{
	EacModifiers modifiers{};
	for (unsigned int table = 0; table < 16; ++table)
	{
		for (unsigned int index = 0; index < 8; ++index)
		{
			modifiers.rows[table][index] = static_cast<std::int16_t>(alphaModifier(table, index));
		}
	}
	return modifiers;
}();

ZORT_INLINE Lanes<std::int16_t, 8> eacModifiers(const unsigned char* block)
{
	return Lanes<std::int16_t, 8>::load(kEacModifiers.rows[block[1] & 15]);
}

/// The sixteen indices, row after row.
ZORT_INLINE Bytes16 eacIndices(const unsigned char* block)
{
	// As one big-endian number the indices are its low 48 bits, the first one on top. Four of them are twelve bits of a 16-bit window,
	// which starts at bits 32, 24, 8 and 0. A multiplication brings each to the top of its lane.
	constexpr Words8 kToTop = {{1 << 0, 1 << 3, 1 << 6, 1 << 9, 1 << 4, 1 << 7, 1 << 10, 1 << 13}};
	std::uint64_t number;
	std::memcpy(&number, block, 8);
	number = __builtin_bswap64(number);
	const auto even = as<std::uint16_t>(Lanes<std::uint64_t, 2>::filled(number));
	const auto odd = as<std::uint16_t>(Lanes<std::uint64_t, 2>::filled(number >> 8));
	const auto first = (shuffle<2, 2, 2, 2, 9, 9, 9, 9>(even, odd) * kToTop) >> 13;
	const auto second = (shuffle<0, 0, 0, 0, 8, 8, 8, 8>(odd, even) * kToTop) >> 13;
	// Columns follow each other; two rounds of interleaving both halves turn them into rows.
	const Bytes16 columns = packUnsigned(as<std::int16_t>(first), as<std::int16_t>(second));
	const Bytes16 halfway = interleaveLow(columns, shuffle<8, 9, 10, 11, 12, 13, 14, 15, 8, 9, 10, 11, 12, 13, 14, 15>(columns));
	return interleaveLow(halfway, shuffle<8, 9, 10, 11, 12, 13, 14, 15, 8, 9, 10, 11, 12, 13, 14, 15>(halfway));
}

/// The sixteen values of an 8-bit block, row after row.
ZORT_INLINE Bytes16 decodeEacBytes(const unsigned char* block)
{
	using Values = Lanes<std::int16_t, 8>;
	const Values values = eacModifiers(block) * Values::filled(block[1] >> 4) + Values::filled(block[0]);
	return lookUpEight(packUnsigned(values, values), eacIndices(block));
}

/// The sixteen values of an 11-bit block: the upper two rows, then the lower two.
struct EacWords
{
	Words8 halves[2];
};
ZORT_INLINE EacWords decodeEacWords(const unsigned char* block, bool isSigned)
{
	using Values = Lanes<std::int16_t, 8>;
	const int multiplier = block[1] >> 4;
	const Values spread = eacModifiers(block) * Values::filled(static_cast<std::int16_t>(multiplier == 0 ? 1 : multiplier * 8));
	Values values;
	if (isSigned)
	{
		// The most negative base counts as the one above it.
		const int base = block[0] == 0x80 ? -127 : static_cast<std::int8_t>(block[0]);
		values = least(greatest(spread + Values::filled(static_cast<std::int16_t>(base * 8)), Values::filled(-1023)), Values::filled(1023));
		const Values sign = values >> 15;
		const Values magnitude = (values ^ sign) - sign;
		values = (((magnitude << 5) + (magnitude >> 5)) ^ sign) - sign;
	}
	else
	{
		const auto base = static_cast<std::int16_t>(block[0] * 8 + 4);
		values = least(greatest(spread + Values::filled(base), Values::filled(0)), Values::filled(2047));
		values = (values << 5) | (values >> 6);
	}

	const auto low = values & Values::filled(255);
	const auto high = as<std::int16_t>(as<std::uint16_t>(values) >> 8);
	const Bytes16 indices = eacIndices(block);
	const Bytes16 lowBytes = lookUpEight(packUnsigned(low, low), indices);
	const Bytes16 highBytes = lookUpEight(packUnsigned(high, high), indices);
	return {{as<std::uint16_t>(interleaveLow(lowBytes, highBytes)), as<std::uint16_t>(interleaveHigh(lowBytes, highBytes))}};
}
} // namespace ZORT_LANES_NAMESPACE
} // namespace zortexture
