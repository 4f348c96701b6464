/// @file EtcPunchThrough.h
/// The differential blocks of the one-bit-alpha format, as templates over the search for the tables of a half.
#pragma once

#include <algorithm>

#include "Codecs/ETC/EtcBaseColours.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcTableSearch.h"

namespace zortexture
{
/// A half block and which of its texels (by number) are opaque, from an alpha of 128 on.
struct PunchThroughHalf
{
	SearchTexels<8> texels;
	unsigned int opaque;
};

template<HalfShape Shape>
PunchThroughHalf loadPunchThroughHalf(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX,
                                      unsigned int startY)
{
	PunchThroughHalf half{loadHalfTexels<Shape>(source, width, startX, startY), 0};
	for (unsigned int number = 0; number < 8; ++number)
	{
		const unsigned int x = number / kHalfHeight<Shape>;
		const unsigned int y = number % kHalfHeight<Shape>;
		half.opaque |= static_cast<unsigned int>(alpha[texelIndex(width, startX + x, startY + y)] >= 128) << number;
	}
	return half;
}

/// Transparent texels count for next to nothing, yet give a fully transparent half its own mean.
template<HalfShape Shape>
void weightedMean(const PunchThroughHalf& half, float (&mean)[3])
{
	constexpr float kTransparentWeight = 0.0001F;
	float sums[3] = {};
	float weights = 0.0F;
	for (unsigned int y = 0; y < kHalfHeight<Shape>; ++y)
	{
		for (unsigned int x = 0; x < kHalfWidth<Shape>; ++x)
		{
			const unsigned int number = x * kHalfHeight<Shape> + y;
			const float weight = (half.opaque >> number & 1) != 0 ? 1.0F : kTransparentWeight;
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				sums[channel] += weight * static_cast<float>(half.texels.rgb[number][channel]);
			}
			weights += weight;
		}
	}
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		mean[channel] = sums[channel] / weights;
	}
}

/// Index bits by number of the texel, moved to their places.
template<HalfShape Shape>
TableChoice<unsigned int> placeBits(const TableChoice<unsigned int>& byNumber)
{
	TableChoice<unsigned int> choice{byNumber.error, {byNumber.bits.table, 0, 0}};
	for (unsigned int number = 0; number < 8; ++number)
	{
		choice.bits.highBits |= (byNumber.bits.highBits >> number & 1) << halfTexelBit<Shape>(number);
		choice.bits.lowBits |= (byNumber.bits.lowBits >> number & 1) << halfTexelBit<Shape>(number);
	}
	return choice;
}

struct PunchThroughResult
{
	unsigned int error;
	unsigned int word1;
	unsigned int word2;
};

/// One split. `searchTables(half, base)` gives a TableChoice whose bits are by number of the texel.
template<HalfShape Shape, typename SearchTables>
PunchThroughResult searchPunchThroughSplit(bool isTransparent, const SearchTables& searchTables, const unsigned char* source,
                                           const unsigned char* alpha, unsigned int width, unsigned int startX, unsigned int startY)
{
	constexpr bool kIsFlipped = Shape == HalfShape::Flipped;
	const PunchThroughHalf half1 = loadPunchThroughHalf<Shape>(source, alpha, width, startX, startY);
	const PunchThroughHalf half2 =
	    loadPunchThroughHalf<Shape>(source, alpha, width, startX + (kIsFlipped ? 0 : 2), startY + (kIsFlipped ? 2 : 0));

	float mean1[3];
	float mean2[3];
	BaseColour colour1;
	BaseColour colour2;
	weightedMean<Shape>(half1, mean1);
	weightedMean<Shape>(half2, mean2);
	quantize555ColorCombined(mean1, colour1);
	quantize555ColorCombined(mean2, colour2);
	for (int channel = 0; channel < 3; ++channel)
	{
		// The format has no individual mode: what is too far apart is brought near.
		colour2[channel] = colour1[channel] + std::clamp(colour2[channel] - colour1[channel], kLeastDelta, kGreatestDelta);
	}

	unsigned char base1[3];
	unsigned char base2[3];
	expandDifferentialColour(colour1, base1);
	expandDifferentialColour(colour2, base2);
	const auto choice1 = placeBits<Shape>(searchTables(half1, base1));
	const auto choice2 = placeBits<Shape>(searchTables(half2, base2));
	const unsigned int opaqueBit = isTransparent ? 0 : 2;
	return {choice1.error + choice2.error,
	        packDifferentialColours(colour1, colour2) | packTables(choice1.bits, choice2.bits, kIsFlipped) | opaqueBit,
	        packIndices(choice1.bits, choice2.bits, kIsFlipped)};
}
/// Both splits; the flipped one has to be strictly better.
template<typename SearchTables>
PunchThroughResult searchPunchThrough(bool isTransparent, const SearchTables& searchTables, const unsigned char* source,
                                      const unsigned char* alpha, unsigned int width, unsigned int startX, unsigned int startY)
{
	const auto upright = searchPunchThroughSplit<HalfShape::Upright>(isTransparent, searchTables, source, alpha, width, startX, startY);
	const auto flipped = searchPunchThroughSplit<HalfShape::Flipped>(isTransparent, searchTables, source, alpha, width, startX, startY);
	return flipped.error < upright.error ? flipped : upright;
}
} // namespace zortexture
