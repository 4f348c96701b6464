/// @file EtcTableSearch.h
/// The search for the modifier table of a half block, as a template over error scale and shape.
#pragma once

#include <limits>

#include "Codecs/ETC/EtcSearchTexels.h"
#include "Codecs/ETC/EtcTables.h"

namespace zortexture
{
/// What a half block gets from its table: the codeword 0 to 7, and the index bits of texel (x, y) at bit x*4 + y.
struct HalfBits
{
	unsigned int table;
	unsigned int highBits;
	unsigned int lowBits;
};

template<typename Error>
struct TableChoice
{
	Error error;
	HalfBits bits;
};

/// The nearest of the colours base + modifier of one table row for every texel, the lower modifier on a tie.
/// Given up as soon as the error reaches the bound: neither error nor bits mean anything then but that it was reached. Errors
/// only grow as they add up, in floating point too, so this changes no result.
template<typename Scale, HalfShape Shape>
TableChoice<typename Scale::Error> matchTable(const SearchTexels<8>& texels, const unsigned char (&base)[3], unsigned int row,
                                              typename Scale::Error bound = std::numeric_limits<typename Scale::Error>::max())
{
	unsigned char colours[4][3];
	for (unsigned int column = 0; column < 4; ++column)
	{
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			colours[column][channel] = clamp(base[channel] + compressParams[row][column]);
		}
	}

	TableChoice<typename Scale::Error> choice{0, {row / 2, 0, 0}};
	for (unsigned int number = 0; number < 8; ++number)
	{
		auto least = colourError<Scale>(texels.rgb[number], colours[0]);
		unsigned int best = 0;
		for (unsigned int column = 1; column < 4; ++column)
		{
			const auto error = colourError<Scale>(texels.rgb[number], colours[column]);
			best = error < least ? column : best;
			least = error < least ? error : least;
		}
		choice.error += least;
		if (choice.error >= bound)
		{
			break;
		}
		const unsigned int index = scramble[best];
		choice.bits.highBits |= (index >> 1) << halfTexelBit<Shape>(number);
		choice.bits.lowBits |= (index & 1) << halfTexelBit<Shape>(number);
	}
	return choice;
}

/// The best of the eight tables, the first on a tie.
template<typename Scale, HalfShape Shape>
TableChoice<typename Scale::Error> searchTables(const SearchTexels<8>& texels, const unsigned char (&base)[3])
{
	TableChoice<typename Scale::Error> best = matchTable<Scale, Shape>(texels, base, 0);
	for (unsigned int row = 2; row < 16; row += 2)
	{
		const TableChoice<typename Scale::Error> choice = matchTable<Scale, Shape>(texels, base, row, best.error);
		if (choice.error < best.error)
		{
			best = choice;
		}
	}
	return best;
}
} // namespace zortexture
