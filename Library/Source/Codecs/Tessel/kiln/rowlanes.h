/// @file rowlanes.h
/// Rows of a window in vectors: two channels a pixel, by turns. For `*.simd.cpp` sources.
#pragma once

#include "Simd/Lanes.h"
#include "evaluate.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
/// Two numbers by turns.
ZORT_INLINE U16 inTurns(unsigned first, unsigned second)
{
	return as<std::uint16_t>(U32::filled(first | second << 16));
}
/// The pixels of a row from a place on.
ZORT_INLINE U16 loadRow(const KilnRow& row, int place)
{
	return U16::load(row.lanes + 2 * place);
}
ZORT_INLINE void storeRow(KilnRow& row, int place, U16 values)
{
	values.store(row.lanes + 2 * place);
}

/// A plane at 8 bits: the top bits repeated below, 5 of a colour and 4 of alpha.
template<int kHalf>
ZORT_INLINE U16 upscaled(U16 around, U16 share, U16 colour)
{
	const U16 scaled = (around + share * colour) >> 6;
	return scaled + (kHalf == 0 ? scaled >> 5 : multiplyHigh(scaled, inTurns(1 << 11, 1 << 12)));
}
} // namespace ZORT_LANES_NAMESPACE
} // namespace zortexture
