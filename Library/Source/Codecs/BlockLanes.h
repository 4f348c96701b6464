/// @file BlockLanes.h
/// The words that the block decoders share: blocks of 4 by 4 texels painted from palettes. For sources named `*.simd.cpp`, see Lanes.h.
///
/// The rows of a block stand in as many registers as they fill: with 16 bytes row s in register s, with 32 bytes the rows s and s + 2 in
/// the halves of register s. Indices are never taken out one by one: a mask for each of their bits selects among the palette's entries.
#pragma once

#include <cstddef>

#include "Simd/Lanes.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
using Bytes16 = Lanes<std::uint8_t, 16>;
using Words8 = Lanes<std::uint16_t, 8>;
using Row = Lanes<std::uint32_t, 4>;

/// Four rows of four 32-bit texels.
struct Rows
{
	U32 registers[64 / kLanesBytes];
};

/// The number of a register of rows, as a type.
template<unsigned int number>
struct RowStep
{
	static constexpr unsigned int kNumber = number;
};

#if defined(__AVX2__)
/// Within each 16 bytes the lane `k` of a, four times.
template<int k>
ZORT_INLINE U32 spread(U32 a)
{
	return shuffle<k, k, k, k, 4 + k, 4 + k, 4 + k, 4 + k>(a);
}
/// Within each 16 bytes the lane `k` of a twice, then that of b.
template<int k>
ZORT_INLINE U32 spread(U32 a, U32 b)
{
	return shuffle<k, k, 8 + k, 8 + k, 4 + k, 4 + k, 12 + k, 12 + k>(a, b);
}
/// A row in each half.
ZORT_INLINE U32 repeated(Row row)
{
	return join(row, row);
}
/// What `make` gives for each RowStep.
template<typename Make>
ZORT_INLINE Rows makeRows(Make&& make)
{
	return {{make(RowStep<0>()), make(RowStep<1>())}};
}
/// Calls `store(row, y)` for each row.
template<typename Store>
ZORT_INLINE void forEachRow(const Rows& rows, Store&& store)
{
	store(lower(rows.registers[0]), 0);
	store(lower(rows.registers[1]), 1);
	store(upper(rows.registers[0]), 2);
	store(upper(rows.registers[1]), 3);
}
#else
template<int k>
ZORT_INLINE U32 spread(U32 a)
{
	return shuffle<k, k, k, k>(a);
}
template<int k>
ZORT_INLINE U32 spread(U32 a, U32 b)
{
	return shuffle<k, k, 4 + k, 4 + k>(a, b);
}
ZORT_INLINE U32 repeated(Row row)
{
	return row;
}
template<typename Make>
ZORT_INLINE Rows makeRows(Make&& make)
{
	return {{make(RowStep<0>()), make(RowStep<1>()), make(RowStep<2>()), make(RowStep<3>())}};
}
template<typename Store>
ZORT_INLINE void forEachRow(const Rows& rows, Store&& store)
{
	for (unsigned int y = 0; y < 4; ++y)
	{
		store(rows.registers[y], y);
	}
}
#endif

ZORT_INLINE std::uint32_t loadWord(const unsigned char* bytes)
{
	std::uint32_t word;
	std::memcpy(&word, bytes, 4);
	return word;
}

/// Four colours to choose from in each lane. Kept as the differences that each bit of an index makes.
class FourColours
{
public:
	ZORT_INLINE FourColours(U32 colour0, U32 colour1, U32 colour2, U32 colour3)
	    : m_colour0(colour0), m_byLow(colour0 ^ colour1), m_byHigh(colour0 ^ colour2), m_byBoth(colour0 ^ colour1 ^ colour2 ^ colour3)
	{
	}

	/// The colours of the indices whose low and high bits are set in the masks.
	ZORT_INLINE U32 operator()(U32 low, U32 high) const
	{
		return m_colour0 ^ (low & m_byLow) ^ (high & (m_byHigh ^ (low & m_byBoth)));
	}

private:
	U32 m_colour0;
	U32 m_byLow;
	U32 m_byHigh;
	U32 m_byBoth;
};

/// The lanes in which a bit of `word` is set: bit `bitOf(x, y)` for texel (x, y), in the rows of register `step`.
template<unsigned int step, typename BitOf>
ZORT_INLINE U32 maskOfBits(U32 word, BitOf bitOf)
{
	U32 bits = {};
	for (unsigned int lane = 0; lane < U32::kCount; ++lane)
	{
		bits.v[lane] = 1U << bitOf(lane % 4, step + lane / 4 * 2);
	}
	return as<std::uint32_t>((word & bits) == bits);
}

/// Entries of a table of eight bytes, which stands in the first half, by indices from 0 to 7.
ZORT_INLINE Bytes16 lookUpEight(Bytes16 table, Bytes16 indices)
{
#if defined(__AVX2__)
	return shuffleBytes(table, indices);
#else
	const auto bit = [&](std::uint8_t value)
	{
		const Bytes16 bits = Bytes16::filled(value);
		return as<std::uint8_t>((indices & bits) == bits);
	};
	const Bytes16 low = bit(1);
	const Bytes16 middle = bit(2);
	const Bytes16 high = bit(4);
	// Each entry four times over, then each of these four times.
	const Words8 pairs = as<std::uint16_t>(interleaveLow(table, table));
	const Row first = as<std::uint32_t>(interleaveLow(pairs, pairs));
	const Row second = as<std::uint32_t>(interleaveHigh(pairs, pairs));
	const auto four = [&](Row entries)
	{
		const auto entry0 = as<std::uint8_t>(shuffle<0, 0, 0, 0>(entries));
		const auto entry1 = as<std::uint8_t>(shuffle<1, 1, 1, 1>(entries));
		const auto entry2 = as<std::uint8_t>(shuffle<2, 2, 2, 2>(entries));
		const auto entry3 = as<std::uint8_t>(shuffle<3, 3, 3, 3>(entries));
		return entry0 ^ (low & (entry0 ^ entry1)) ^ (middle & (entry0 ^ entry2 ^ (low & (entry0 ^ entry1 ^ entry2 ^ entry3))));
	};
	return (four(first) & ~high) | (four(second) & high);
#endif
}

/// Texels with the alphas of `alphas`, sixteen row after row, in place of their own.
ZORT_INLINE Rows withAlphas(const Rows& rows, Bytes16 alphas)
{
	const auto zero = Bytes16::filled(0);
	const auto above = as<std::uint16_t>(interleaveLow(zero, alphas));
	const auto below = as<std::uint16_t>(interleaveHigh(zero, alphas));
	const auto zeroWords = U16::filled(0);
	const auto texels = [](U32 colours, U16 tops)
	{
		return (colours & U32::filled(0x00FFFFFF)) | as<std::uint32_t>(tops);
	};
#if defined(__AVX2__)
	const U16 both = join(above, below);
	return {{texels(rows.registers[0], interleaveLow(zeroWords, both)), texels(rows.registers[1], interleaveHigh(zeroWords, both))}};
#else
	return {{texels(rows.registers[0], interleaveLow(zeroWords, above)), texels(rows.registers[1], interleaveHigh(zeroWords, above)),
	         texels(rows.registers[2], interleaveLow(zeroWords, below)), texels(rows.registers[3], interleaveHigh(zeroWords, below))}};
#endif
}
} // namespace ZORT_LANES_NAMESPACE
} // namespace zortexture
