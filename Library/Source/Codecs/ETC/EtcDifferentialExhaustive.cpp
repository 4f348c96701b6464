/// @file EtcDifferentialExhaustive.cpp
/// All differential blocks. The colours of both halves are coupled, but only within the range of the delta: what every colour costs
/// in every half is found first, and pairs are then sums of table entries.
#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcHalfErrors.h"
#include "Codecs/ETC/EtcSplit.h"

namespace zortexture
{
namespace
{
constexpr int kLevels = 32;

constexpr unsigned int colourIndex(int red, int green, int blue)
{
	return static_cast<unsigned int>((red * kLevels + green) * kLevels + blue);
}

/// The best pair so far, and its split.
struct Pair
{
	unsigned int error;
	BaseColour first = {};
	BaseColour second = {};
	bool isFlipped = false;
	bool isFound = false;
};

void setColour(BaseColour& colour, int red, int green, int blue)
{
	colour[0] = red;
	colour[1] = green;
	colour[2] = blue;
}

/// The first colour's pairs that are strictly better than the best.
void searchSecondColours(const EtcSearchSpace& space, int red, int green, int blue, Pair& best)
{
	const auto from = [](int level)
	{
		return std::max(level + kLeastDelta, 0);
	};
	const auto end = [](int level)
	{
		return std::min(level + kGreatestDelta + 1, kLevels);
	};
	const unsigned int first = colourIndex(red, green, blue);
	const unsigned int left = space.halfErrors[kLeftHalf][first];
	const unsigned int top = space.halfErrors[kTopHalf][first];
	for (int red2 = from(red); red2 < end(red); ++red2)
	{
		for (int green2 = from(green); green2 < end(green); ++green2)
		{
			for (int blue2 = from(blue); blue2 < end(blue); ++blue2)
			{
				const unsigned int second = colourIndex(red2, green2, blue2);
				const unsigned int errors[2] = {left + space.halfErrors[kRightHalf][second], top + space.halfErrors[kBottomHalf][second]};
				for (unsigned int flip = 0; flip < 2; ++flip)
				{
					if (errors[flip] < best.error)
					{
						best.error = errors[flip];
						best.isFlipped = flip != 0;
						best.isFound = true;
						setColour(best.first, red, green, blue);
						setColour(best.second, red2, green2, blue2);
					}
				}
			}
		}
	}
}

template<typename Scale>
void fillHalfErrors(const SearchTexels<16>& texels, unsigned int bound, EtcSearchSpace& space)
{
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		for (unsigned int level = 0; level < kLevels; ++level)
		{
			precomputeModifierErrors<Scale>(texels, channel, static_cast<int>(expandBits(level, 5)), space.modifierErrors[channel][level]);
		}
	}
	// A colour that is refused costs more than any pair may.
	for (auto& errors : space.halfErrors)
	{
		std::fill(std::begin(errors), std::end(errors), Scale::kBlockCeiling);
	}
	visitBaseColours<kLevels>(space.modifierErrors, bound,
	                          [&space](unsigned int red, unsigned int green, unsigned int blue, const HalfErrors& errors)
	                          {
		                          for (unsigned int half = 0; half < 4; ++half)
		                          {
			                          space.halfErrors[half][(red * kLevels + green) * kLevels + blue] = errors.at[half];
		                          }
	                          });
}

template<typename Scale, typename Seed>
unsigned int search(Seed&& seed, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	EtcHalves halves;
	const unsigned int seedError = seed(source, width, startX, startY, word1, word2, halves);
	Pair best{std::min(seedError, bound)};
	fillHalfErrors<Scale>(loadBlockColumns(source, width, startX, startY), best.error, space);
	// No second colour is better than the best of all.
	const auto& [lefts, rights, tops, bottoms] = space.halfErrors;
	const unsigned int leastRight = *std::min_element(std::begin(rights), std::end(rights));
	const unsigned int leastBottom = *std::min_element(std::begin(bottoms), std::end(bottoms));
	for (int red = 0; red < kLevels; ++red)
	{
		for (int green = 0; green < kLevels; ++green)
		{
			for (int blue = 0; blue < kLevels; ++blue)
			{
				const unsigned int index = colourIndex(red, green, blue);
				if (std::min(lefts[index] + leastRight, tops[index] + leastBottom) < best.error)
				{
					searchSecondColours(space, red, green, blue, best);
				}
			}
		}
	}
	if (!best.isFound)
	{
		return seedError;
	}

	const auto result = best.isFlipped
	                        ? encodeSplit<Scale, HalfShape::Flipped>(loadSplitTexels<HalfShape::Flipped>(source, width, startX, startY),
	                                                                 ColourMode::Differential, best.first, best.second)
	                        : encodeSplit<Scale, HalfShape::Upright>(loadSplitTexels<HalfShape::Upright>(source, width, startX, startY),
	                                                                 ColourMode::Differential, best.first, best.second);
	word1 = result.word1;
	word2 = result.word2;
	return result.error;
}
} // namespace

unsigned int compressBlockDifferentialExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale>(compressBlockOnlyDiffFlipAverage, source, width, startX, startY, word1, word2, bound, space);
}

unsigned int compressBlockDifferentialExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                           unsigned int startY, unsigned int& word1, unsigned int& word2,
                                                           unsigned int bound, EtcSearchSpace& space)
{
	return search<Perceptual1000Scale>(compressBlockOnlyDiffFlipAveragePerceptual1000, source, width, startX, startY, word1, word2, bound,
	                                   space);
}
} // namespace zortexture
