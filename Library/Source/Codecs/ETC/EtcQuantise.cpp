/// @file EtcQuantise.cpp
/// Means of half blocks and their joint quantisation.
#include <algorithm>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
namespace
{
/// Weights of the squared differences between the errors of two channels.
struct TintWeights
{
	float redGreen;
	float redBlue;
	float greenBlue;
};

constexpr TintWeights kPlainTint = {1.0F, 1.0F, 1.0F};
constexpr TintWeights kPerceptualTint = {0.175513F, 0.034086F, 0.066918F}; // products of the channels' shares in brightness

/// Tries the level below and the level above the mean in every channel. Bits is 4 or 5.
template<unsigned int Bits>
void quantiseJointly(const float (&mean)[3], const TintWeights& weights, int (&quantised)[3])
{
	constexpr float kStep = Bits == 4 ? 17.0F : 8.225806F; // between two levels, 255/31 for 5 bits
	constexpr int kHighest = (1 << Bits) - 1;
	constexpr unsigned int kCombinations = 8;
	// One bit a channel, red 1, green 2, blue 4: set for the upper level. The order settles ties.
	constexpr unsigned int kUpper[kCombinations] = {0, 1, 2, 4, 3, 5, 6, 7};

	int levels[3][2];
	float errors[3][2]; // of the two levels against the mean
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const int low = static_cast<int>(mean[channel] / kStep);
		const int high = std::min(low + 1, kHighest);
		const auto lowColour = static_cast<float>(expandBits(static_cast<unsigned int>(low), Bits));
		const auto highColour = static_cast<float>(expandBits(static_cast<unsigned int>(high), Bits));
		levels[channel][0] = low;
		levels[channel][1] = high;
		errors[channel][0] = lowColour - mean[channel];
		errors[channel][1] = errors[channel][0] + (highColour - lowColour);
	}

	float least = 0.0F;
	unsigned int best = 0;
	for (unsigned int combination = 0; combination < kCombinations; ++combination)
	{
		const unsigned int upper = kUpper[combination];
		const float red = errors[0][upper & 1];
		const float green = errors[1][upper >> 1 & 1];
		const float blue = errors[2][upper >> 2];
		const float rating = weights.redGreen * ((red - green) * (red - green)) + weights.redBlue * ((red - blue) * (red - blue)) +
		                     weights.greenBlue * ((green - blue) * (green - blue));
		if (combination == 0 || rating < least)
		{
			least = rating;
			best = upper;
		}
	}
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		quantised[channel] = levels[channel][best >> channel & 1];
	}
}
} // namespace

void computeAverageColor2x4noQuantFloat(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                        float (&mean)[3])
{
	meanOfTexels(loadHalfTexels<HalfShape::Upright>(source, width, startX, startY), mean);
}

void computeAverageColor4x2noQuantFloat(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                        float (&mean)[3])
{
	meanOfTexels(loadHalfTexels<HalfShape::Flipped>(source, width, startX, startY), mean);
}

void quantize444ColorCombined(const float (&mean)[3], int (&quantised)[3])
{
	quantiseJointly<4>(mean, kPlainTint, quantised);
}

void quantize555ColorCombined(const float (&mean)[3], int (&quantised)[3])
{
	quantiseJointly<5>(mean, kPlainTint, quantised);
}

void quantize444ColorCombinedPerceptual(const float (&mean)[3], int (&quantised)[3])
{
	quantiseJointly<4>(mean, kPerceptualTint, quantised);
}

void quantize555ColorCombinedPerceptual(const float (&mean)[3], int (&quantised)[3])
{
	quantiseJointly<5>(mean, kPerceptualTint, quantised);
}
} // namespace zortexture
