/// @file EtcAverageSearch.cpp
/// Individual and differential blocks whose base colours come from the means of the half blocks.
#include <cmath>

#include "Codecs/ETC/EtcBaseColours.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcTableSearch.h"

namespace zortexture
{
namespace
{
/// Every channel to the nearest level.
struct RoundedMeans
{
	static void to5Bits(const float (&mean)[3], BaseColour& colour)
	{
		for (int channel = 0; channel < 3; ++channel)
		{
			colour[channel] = static_cast<int>(std::round(mean[channel] * 31.0 / 255.0));
		}
	}

	static void to4Bits(const float (&mean)[3], BaseColour& colour)
	{
		for (int channel = 0; channel < 3; ++channel)
		{
			// The small excess, single precision by tradition, makes sure that a half is rounded up.
			colour[channel] = static_cast<int>(mean[channel] / 17.0 + 0.5 + static_cast<double>(0.0001F));
		}
	}
};

struct JointMeans
{
	static void to5Bits(const float (&mean)[3], BaseColour& colour)
	{
		quantize555ColorCombined(mean, colour);
	}

	static void to4Bits(const float (&mean)[3], BaseColour& colour)
	{
		quantize444ColorCombined(mean, colour);
	}
};

struct JointMeansPerceptual
{
	static void to5Bits(const float (&mean)[3], BaseColour& colour)
	{
		quantize555ColorCombinedPerceptual(mean, colour);
	}

	static void to4Bits(const float (&mean)[3], BaseColour& colour)
	{
		quantize444ColorCombinedPerceptual(mean, colour);
	}
};

template<typename Scale>
struct SplitResult
{
	typename Scale::Error error;
	unsigned int word1;
	unsigned int word2;
};

/// One split: differential when its 5-bit colours allow, individual otherwise.
template<typename Scale, typename Quantiser, HalfShape Shape>
SplitResult<Scale> searchSplit(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY)
{
	constexpr bool kIsFlipped = Shape == HalfShape::Flipped;
	constexpr unsigned int kDiffBit = 2;
	const unsigned int secondX = startX + (kIsFlipped ? 0 : 2);
	const unsigned int secondY = startY + (kIsFlipped ? 2 : 0);
	const SearchTexels<8> texels1 = loadHalfTexels<Shape>(source, width, startX, startY);
	const SearchTexels<8> texels2 = loadHalfTexels<Shape>(source, width, secondX, secondY);

	float mean1[3];
	float mean2[3];
	meanOfTexels(texels1, mean1);
	meanOfTexels(texels2, mean2);

	BaseColour colour1;
	BaseColour colour2;
	unsigned char base1[3];
	unsigned char base2[3];
	SplitResult<Scale> result;
	Quantiser::to5Bits(mean1, colour1);
	Quantiser::to5Bits(mean2, colour2);
	if (isDifferentialPair(colour1, colour2))
	{
		expandDifferentialColour(colour1, base1);
		expandDifferentialColour(colour2, base2);
		result.word1 = packDifferentialColours(colour1, colour2) | kDiffBit;
	}
	else
	{
		Quantiser::to4Bits(mean1, colour1);
		Quantiser::to4Bits(mean2, colour2);
		expandIndividualColour(colour1, base1);
		expandIndividualColour(colour2, base2);
		result.word1 = packIndividualColours(colour1, colour2);
	}

	const auto choice1 = searchTables<Scale, Shape>(texels1, base1);
	const auto choice2 = searchTables<Scale, Shape>(texels2, base2);
	result.error = choice1.error + choice2.error;
	result.word1 |= packTables(choice1.bits, choice2.bits, kIsFlipped);
	result.word2 = packIndices(choice1.bits, choice2.bits, kIsFlipped);
	return result;
}

/// Both splits; the flipped one has to be strictly better.
template<typename Scale, typename Quantiser>
void searchSplits(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                  unsigned int& word2)
{
	const auto upright = searchSplit<Scale, Quantiser, HalfShape::Upright>(source, width, startX, startY);
	const auto flipped = searchSplit<Scale, Quantiser, HalfShape::Flipped>(source, width, startX, startY);
	const auto& best = flipped.error < upright.error ? flipped : upright;
	word1 = best.word1;
	word2 = best.word2;
}
} // namespace

void compressBlockDiffFlipAverage(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                  unsigned int& word1, unsigned int& word2)
{
	searchSplits<PlainScale, RoundedMeans>(source, width, startX, startY, word1, word2);
}

void compressBlockDiffFlipAveragePerceptual(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                            unsigned int& word1, unsigned int& word2)
{
	searchSplits<PerceptualScale, RoundedMeans>(source, width, startX, startY, word1, word2);
}

void compressBlockDiffFlipCombined(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                   unsigned int& word1, unsigned int& word2)
{
	searchSplits<PlainScale, JointMeans>(source, width, startX, startY, word1, word2);
}

void compressBlockDiffFlipCombinedPerceptual(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2)
{
	searchSplits<PerceptualScale, JointMeansPerceptual>(source, width, startX, startY, word1, word2);
}
} // namespace zortexture
