/// @file EtcAverageSearch.cpp
/// Individual and differential blocks whose base colours come from the means of the half blocks.
#include <cmath>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcSplit.h"

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

/// Which modes a search may take.
enum class AllowedModes
{
	Both, ///< Differential where the 5-bit colours allow it.
	Individual,
	Differential ///< Colours too far apart are both replaced by their mean.
};

/// One split. The colours are left in `colour1` and `colour2`.
template<typename Scale, typename Quantiser, AllowedModes Allowed, HalfShape Shape>
SplitResult<Scale> searchSplit(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                               BaseColour& colour1, BaseColour& colour2)
{
	const SplitTexels texels = loadSplitTexels<Shape>(source, width, startX, startY);
	float mean1[3];
	float mean2[3];
	meanOfTexels(texels.first, mean1);
	meanOfTexels(texels.second, mean2);
	if constexpr (Allowed != AllowedModes::Individual)
	{
		Quantiser::to5Bits(mean1, colour1);
		Quantiser::to5Bits(mean2, colour2);
		const bool isDifferential = isDifferentialPair(colour1, colour2);
		if (!isDifferential && Allowed == AllowedModes::Differential)
		{
			for (int channel = 0; channel < 3; ++channel)
			{
				colour1[channel] = colour2[channel] = (colour1[channel] + colour2[channel]) >> 1;
			}
		}
		if (isDifferential || Allowed == AllowedModes::Differential)
		{
			return encodeSplit<Scale, Shape>(texels, ColourMode::Differential, colour1, colour2);
		}
	}
	Quantiser::to4Bits(mean1, colour1);
	Quantiser::to4Bits(mean2, colour2);
	return encodeSplit<Scale, Shape>(texels, ColourMode::Individual, colour1, colour2);
}

/// Both splits; the flipped one has to be strictly better.
template<typename Scale, typename Quantiser>
void searchSplits(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                  unsigned int& word2)
{
	constexpr AllowedModes kBoth = AllowedModes::Both;
	BaseColour colours[2];
	const auto upright = searchSplit<Scale, Quantiser, kBoth, HalfShape::Upright>(source, width, startX, startY, colours[0], colours[1]);
	const auto flipped = searchSplit<Scale, Quantiser, kBoth, HalfShape::Flipped>(source, width, startX, startY, colours[0], colours[1]);
	const auto& best = flipped.error < upright.error ? flipped : upright;
	word1 = best.word1;
	word2 = best.word2;
}

/// The same in one mode, with what the exhaustive searches start from.
template<typename Scale, AllowedModes Allowed>
unsigned int searchOneMode(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                           unsigned int& word2, EtcHalves& halves)
{
	const auto upright = searchSplit<Scale, RoundedMeans, Allowed, HalfShape::Upright>(
	    source, width, startX, startY, halves.colours[kLeftHalf], halves.colours[kRightHalf]);
	const auto flipped = searchSplit<Scale, RoundedMeans, Allowed, HalfShape::Flipped>(
	    source, width, startX, startY, halves.colours[kTopHalf], halves.colours[kBottomHalf]);
	halves.errors[kLeftHalf] = upright.error1;
	halves.errors[kRightHalf] = upright.error2;
	halves.errors[kTopHalf] = flipped.error1;
	halves.errors[kBottomHalf] = flipped.error2;
	halves.isFlipped = flipped.error < upright.error;
	const auto& best = halves.isFlipped ? flipped : upright;
	word1 = best.word1;
	word2 = best.word2;
	return best.error;
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

unsigned int compressBlockOnlyIndividualAverage(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                unsigned int& word1, unsigned int& word2, EtcHalves& halves)
{
	return searchOneMode<PlainScale, AllowedModes::Individual>(source, width, startX, startY, word1, word2, halves);
}

unsigned int compressBlockOnlyIndividualAveragePerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                              unsigned int startY, unsigned int& word1, unsigned int& word2,
                                                              EtcHalves& halves)
{
	return searchOneMode<Perceptual1000Scale, AllowedModes::Individual>(source, width, startX, startY, word1, word2, halves);
}

unsigned int compressBlockOnlyDiffFlipAverage(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                              unsigned int& word1, unsigned int& word2, EtcHalves& halves)
{
	return searchOneMode<PlainScale, AllowedModes::Differential>(source, width, startX, startY, word1, word2, halves);
}

unsigned int compressBlockOnlyDiffFlipAveragePerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                            unsigned int startY, unsigned int& word1, unsigned int& word2,
                                                            EtcHalves& halves)
{
	return searchOneMode<Perceptual1000Scale, AllowedModes::Differential>(source, width, startX, startY, word1, word2, halves);
}
} // namespace zortexture
