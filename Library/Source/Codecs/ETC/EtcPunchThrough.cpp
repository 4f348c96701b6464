/// @file EtcPunchThrough.cpp
/// The differential blocks of the one-bit-alpha format.
#include "Codecs/ETC/EtcPunchThrough.h"

namespace zortexture
{
namespace
{
/// Column of compressParams whose stored index, 2, is transparent in a block that may hold transparent texels.
constexpr unsigned int kTransparentColumn = 1;
/// Column whose stored index, 0, is the base colour in such a block.
constexpr unsigned int kBaseColumn = 2;

/// The best table, the first on a tie. In transparent mode the column of the transparent index is not offered to opaque
/// texels, and the base colour takes the place of the next.
TableChoice<unsigned int> searchTablesWithAlpha(bool isTransparent, const PunchThroughHalf& half, const unsigned char (&base)[3])
{
	TableChoice<unsigned int> best{kBlockErrorCeiling, {0, 0, 0}};
	for (unsigned int row = 0; row < 16; row += 2)
	{
		unsigned char colours[4][3];
		for (unsigned int column = 0; column < 4; ++column)
		{
			const int modifier = isTransparent && column == kBaseColumn ? 0 : compressParams[row][column];
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				colours[column][channel] = clamp(base[channel] + modifier);
			}
		}

		TableChoice<unsigned int> choice{0, {row / 2, 0, 0}};
		for (unsigned int number = 0; number < 8; ++number)
		{
			unsigned int column = kTransparentColumn;
			if ((half.opaque >> number & 1) != 0)
			{
				unsigned int least = kBlockErrorCeiling;
				for (unsigned int candidate = 0; candidate < 4; ++candidate)
				{
					if (isTransparent && candidate == kTransparentColumn)
					{
						continue;
					}
					const unsigned int error = colourError<PlainScale>(half.texels.rgb[number], colours[candidate]);
					if (error < least)
					{
						least = error;
						column = candidate;
					}
				}
				choice.error += least;
			}
			const unsigned int index = scramble[column];
			choice.bits.highBits |= (index >> 1) << number;
			choice.bits.lowBits |= (index & 1) << number;
		}
		if (choice.error < best.error)
		{
			best = choice;
		}
	}
	return best;
}
} // namespace

int compressBlockDifferentialWithAlpha(bool isTransparent, const unsigned char* source, const unsigned char* alpha, unsigned int width,
                                       unsigned int startX, unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	const auto searchTables = [isTransparent](const PunchThroughHalf& half, const unsigned char(&base)[3])
	{
		return searchTablesWithAlpha(isTransparent, half, base);
	};
	const auto best = searchPunchThrough(isTransparent, searchTables, source, alpha, width, startX, startY);
	word1 = best.word1;
	word2 = best.word2;
	return static_cast<int>(best.error);
}
} // namespace zortexture
