/// @file EtcTwoColours.cpp
/// Companions of the T and H searches: colours, paint colours, index words and packed forms.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Codecs/ETC/EtcBlock.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcThSearch.h"

namespace zortexture
{
namespace
{
unsigned char compressChannel(unsigned char value, unsigned int bits)
{
	const unsigned int half = bits < 8 ? 1U << (7 - bits) : 0;
	const unsigned int scaled = (value + half) * ((1U << bits) - 1);
	return static_cast<unsigned char>(scaled >= 65280 ? 255 : scaled / 255);
}

/// Tells that a block mode has one pattern alone, after the one colour that needs no pattern was set.
void refusePattern(const EtcPaintColours& all, EtcPaintColours& paint)
{
	std::memcpy(paint[3], all[3], sizeof(paint[3]));
	std::fputs("Invalid pattern. Terminating", stdout);
}
} // namespace

void compressColor(unsigned int bitsR, unsigned int bitsG, unsigned int bitsB, const EtcColourPair& colours, EtcColourPair& packed)
{
	for (unsigned int i = 0; i < 2; ++i)
	{
		packed[i][0] = compressChannel(colours[i][0], bitsR);
		packed[i][1] = compressChannel(colours[i][1], bitsG);
		packed[i][2] = compressChannel(colours[i][2], bitsB);
	}
}

void copyColors(const EtcColourPair& source, EtcColourPair& destination)
{
	std::memcpy(destination, source, sizeof(EtcColourPair));
}

void swapColors(EtcColourPair& colours)
{
	std::swap(colours[0], colours[1]);
}

void sortColorsRGB444(EtcColourPair& colours)
{
	unsigned int low = packRgb444(colours[0]);
	unsigned int high = packRgb444(colours[1]);
	if (low > high)
	{
		std::swap(low, high);
	}
	else if (low == high)
	{
		high = std::max(high, 1U);
		low = high - 1;
	}
	unpackRgb444(low, colours[0]);
	unpackRgb444(high, colours[1]);
}

void calculatePaintColors59T(unsigned int distance, unsigned int pattern, const EtcColourPair& colours, EtcPaintColours& paint)
{
	EtcPaintColours all;
	paintColoursT(distance, colours, all);
	if (pattern != kEtcPatternT)
	{
		refusePattern(all, paint);
		return;
	}
	std::memcpy(paint, all, sizeof(all));
}

void calculatePaintColors58H(unsigned int distance, unsigned int pattern, const EtcColourPair& colours, EtcPaintColours& paint)
{
	EtcPaintColours all;
	paintColoursH(distance, colours, all);
	if (pattern != kEtcPatternH)
	{
		refusePattern(all, paint);
		return;
	}
	std::memcpy(paint, all, sizeof(all));
}

unsigned int indexConversion(unsigned int indices)
{
	unsigned int word = 0;
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			const unsigned int index = indices >> (30 - 2 * (y * 4 + x)) & 3;
			const unsigned int number = x * 4 + y;
			word |= (index >> 1) << (16 + number) | (index & 1) << number;
		}
	}
	return word;
}

void packBlock59T(const EtcColourPair& colours, unsigned int distance, unsigned int indices, unsigned int& word1, unsigned int& word2)
{
	word1 = packRgb444(colours[0]) << 15 | packRgb444(colours[1]) << 3 | distance;
	word2 = indexConversion(indices);
}

void packBlock58H(const EtcColourPair& colours, unsigned int distance, unsigned int indices, unsigned int& word1, unsigned int& word2)
{
	unsigned int first = packRgb444(colours[0]);
	unsigned int second = packRgb444(colours[1]);
	if ((distance & 1) != static_cast<unsigned int>(first >= second))
	{
		// The other order of the colours stores the other low bit; indices 0, 1 and 2, 3 change places with the colours.
		std::swap(first, second);
		indices ^= 0xAAAAAAAA;
	}
	word1 = first << 14 | second << 2 | distance >> 1;
	word2 = indexConversion(indices);
}
} // namespace zortexture
