/// @file EtcPunchThrough.cpp
/// The differential blocks of the one-bit-alpha format.
#include <algorithm>

#include "Codecs/ETC/EtcBaseColours.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcTableSearch.h"

namespace zortexture
{
namespace
{
/// Column of compressParams whose stored index, 2, is transparent in a block that may hold transparent texels.
constexpr unsigned int kTransparentColumn = 1;
/// Column whose stored index, 0, is the base colour in such a block.
constexpr unsigned int kBaseColumn = 2;

/// A half block and which of its texels (by number) are opaque, from an alpha of 128 on.
struct Half
{
	SearchTexels<8> texels;
	unsigned int opaque;
};

template<HalfShape Shape>
Half loadHalf(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX, unsigned int startY)
{
	Half half{loadHalfTexels<Shape>(source, width, startX, startY), 0};
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
void weightedMean(const Half& half, float (&mean)[3])
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

/// The best table, the first on a tie. In transparent mode the column of the transparent index is not offered to opaque
/// texels, and the base colour takes the place of the next.
template<HalfShape Shape>
TableChoice<unsigned int> searchTablesWithAlpha(bool isTransparent, const Half& half, const unsigned char (&base)[3])
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
			choice.bits.highBits |= (index >> 1) << halfTexelBit<Shape>(number);
			choice.bits.lowBits |= (index & 1) << halfTexelBit<Shape>(number);
		}
		if (choice.error < best.error)
		{
			best = choice;
		}
	}
	return best;
}

struct SplitResult
{
	unsigned int error;
	unsigned int word1;
	unsigned int word2;
};

template<HalfShape Shape>
SplitResult searchSplit(bool isTransparent, const unsigned char* source, const unsigned char* alpha, unsigned int width,
                        unsigned int startX, unsigned int startY)
{
	constexpr bool kIsFlipped = Shape == HalfShape::Flipped;
	const Half half1 = loadHalf<Shape>(source, alpha, width, startX, startY);
	const Half half2 = loadHalf<Shape>(source, alpha, width, startX + (kIsFlipped ? 0 : 2), startY + (kIsFlipped ? 2 : 0));

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
	const auto choice1 = searchTablesWithAlpha<Shape>(isTransparent, half1, base1);
	const auto choice2 = searchTablesWithAlpha<Shape>(isTransparent, half2, base2);
	const unsigned int opaqueBit = isTransparent ? 0 : 2;
	return {choice1.error + choice2.error,
	        packDifferentialColours(colour1, colour2) | packTables(choice1.bits, choice2.bits, kIsFlipped) | opaqueBit,
	        packIndices(choice1.bits, choice2.bits, kIsFlipped)};
}
} // namespace

int compressBlockDifferentialWithAlpha(bool isTransparent, const unsigned char* source, const unsigned char* alpha, unsigned int width,
                                       unsigned int startX, unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	const SplitResult upright = searchSplit<HalfShape::Upright>(isTransparent, source, alpha, width, startX, startY);
	const SplitResult flipped = searchSplit<HalfShape::Flipped>(isTransparent, source, alpha, width, startX, startY);
	const SplitResult& best = flipped.error < upright.error ? flipped : upright;
	word1 = best.word1;
	word2 = best.word2;
	return static_cast<int>(best.error);
}
} // namespace zortexture
