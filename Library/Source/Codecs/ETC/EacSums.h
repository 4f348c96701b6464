/// @file EacSums.h
/// What the EAC searches work out of the distances of texels from values. Rows of distances from neighbouring values follow each other.
#pragma once

#include <cstdint>

#include "Simd/SimdLevel.h"

namespace zortexture
{
/// The distances of all texels from one value.
using EacRow = std::int16_t[16];

/// Larger distances count as this one, so that sixteen squares fit an integer. A sum below its square is exact.
inline constexpr std::int16_t kEacFar = 11585;

/// `count` bases from the first on, `step` apart.
struct EacBases
{
	int first;
	int step;
	unsigned int count;
};

template<ESimdLevel level>
struct EacSums
{
	/// Fills the rows of the values. Distances are taken in 16 bits.
	static void fillRows(const std::uint16_t (&texels)[16], const std::uint16_t* values, unsigned int count, EacRow* rows);

	/// The errors if all texels may choose among the rows start, start + multiplier and so on up to `last`, and the rows `end1` and `end2`;
	/// for each start from `first` on, `multiplier` of them.
	static void leastErrors(const EacRow* rows, int first, int last, int multiplier, const EacRow& end1, const EacRow& end2, int* errors);

	/// The errors of all tables: the texels choose among the rows whose distance from `centre` is one of the table's modifiers times the
	/// multiplier. All distances count as less by `slack`, down to 0.
	/// @return a bit for every table whose error is at most `limit`, table 0 lowest.
	static unsigned int tableErrors(const EacRow* centre, int multiplier, std::int16_t slack, int limit, int (&errors)[16]);

	/// The error of the texels above a value (or of those below it) if there is nothing to choose beyond it: `row` holds their distances
	/// from the value, `ends` those from the end of the range across the wrap. Texels and the value are in the order of magnitude.
	static int errorBeyond(const EacRow& row, const EacRow& ends, const EacRow& texels, std::int16_t value, bool isAbove);

	/// The errors of bases, the first of which is at the row `centre`. The texels up to a base choose among the first four of its
	/// row's offsets (and the fifth, if that is to help), those above it among the last four.
	static void baseErrors(const EacRow* centre, const EacRow& texels, const int* offsets, bool isFifthForAll, const EacBases& bases,
	                       int* errors);
};

} // namespace zortexture
