/// @file EtcSplit.h
/// Individual and differential blocks from their base colours.
#pragma once

#include "Codecs/ETC/EtcBaseColours.h"
#include "Codecs/ETC/EtcTableSearch.h"

namespace zortexture
{
/// The texels of both halves of a split.
struct SplitTexels
{
	SearchTexels<8> first;
	SearchTexels<8> second;
};

template<HalfShape Shape>
SplitTexels loadSplitTexels(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY)
{
	constexpr bool kIsFlipped = Shape == HalfShape::Flipped;
	return {loadHalfTexels<Shape>(source, width, startX, startY),
	        loadHalfTexels<Shape>(source, width, startX + (kIsFlipped ? 0 : 2), startY + (kIsFlipped ? 2 : 0))};
}

/// A split with its tables chosen, its words as stored.
template<typename Scale>
struct SplitResult
{
	typename Scale::Error error1; ///< Of the first half.
	typename Scale::Error error2;
	typename Scale::Error error; ///< Of both.
	unsigned int word1;
	unsigned int word2;
};

enum class ColourMode
{
	Individual,
	Differential
};

/// The best tables for two colours of the mode's bits; a differential pair has to be in reach of the delta.
template<typename Scale, HalfShape Shape>
SplitResult<Scale> encodeSplit(const SplitTexels& texels, ColourMode mode, const BaseColour& colour1, const BaseColour& colour2)
{
	constexpr bool kIsFlipped = Shape == HalfShape::Flipped;
	constexpr unsigned int kDiffBit = 2;
	unsigned char base1[3];
	unsigned char base2[3];
	SplitResult<Scale> result;
	if (mode == ColourMode::Differential)
	{
		expandDifferentialColour(colour1, base1);
		expandDifferentialColour(colour2, base2);
		result.word1 = packDifferentialColours(colour1, colour2) | kDiffBit;
	}
	else
	{
		expandIndividualColour(colour1, base1);
		expandIndividualColour(colour2, base2);
		result.word1 = packIndividualColours(colour1, colour2);
	}
	const auto choice1 = searchTables<Scale, Shape>(texels.first, base1);
	const auto choice2 = searchTables<Scale, Shape>(texels.second, base2);
	result.error1 = choice1.error;
	result.error2 = choice2.error;
	result.error = choice1.error + choice2.error;
	result.word1 |= packTables(choice1.bits, choice2.bits, kIsFlipped);
	result.word2 = packIndices(choice1.bits, choice2.bits, kIsFlipped);
	return result;
}
} // namespace zortexture
