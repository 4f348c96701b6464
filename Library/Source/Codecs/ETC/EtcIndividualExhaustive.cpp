/// @file EtcIndividualExhaustive.cpp
/// All individual blocks. The halves do not interact, so each is searched for the first of its best colours.
#include <algorithm>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcHalfWalk.h"
#include "Codecs/ETC/EtcSplit.h"

namespace zortexture
{
namespace
{
constexpr int kLevels = 16;

/// What a 4-bit colour costs left, right, top and bottom half with the best tables, in its first channels alone.
template<typename Scale>
void errorsOfHalves(const SearchTexels<16>& texels, const BaseColour& colour, unsigned int channels, unsigned int (&errors)[4])
{
	std::fill(std::begin(errors), std::end(errors), Scale::kBlockCeiling);
	for (const auto& modifiers : compressParamsFast)
	{
		unsigned int sums[4] = {};
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			unsigned int least = Scale::kBlockCeiling;
			for (const int modifier : modifiers)
			{
				unsigned int error = 0;
				for (unsigned int channel = 0; channel < channels; ++channel)
				{
					const int difference = texels.rgb[texel][channel] - clamp(colour[channel] * 17 + modifier);
					error += Scale::kWeights[channel] * static_cast<unsigned int>(difference * difference);
				}
				least = std::min(least, error);
			}
			sums[texel < 8 ? kLeftHalf : kRightHalf] += least;
			sums[texel % 4 < 2 ? kTopHalf : kBottomHalf] += least;
		}
		for (unsigned int half = 0; half < 4; ++half)
		{
			errors[half] = std::min(errors[half], sums[half]);
		}
	}
}

unsigned int errorOf(const EtcHalves& halves)
{
	return std::min(halves.errors[kLeftHalf] + halves.errors[kRightHalf], halves.errors[kTopHalf] + halves.errors[kBottomHalf]);
}

/// The search as it is defined: all halves at once, without colours whose red, or whose red and green, cost every half as much as the
/// bound.
template<typename Scale>
void walkAllHalves(const SearchTexels<16>& texels, unsigned int bound, EtcHalves& best)
{
	BaseColour colour;
	const auto leastOfHalves = [&](unsigned int channels)
	{
		unsigned int errors[4];
		errorsOfHalves<Scale>(texels, colour, channels, errors);
		return *std::min_element(errors, errors + 4);
	};
	for (colour[0] = 0; colour[0] < kLevels; ++colour[0])
	{
		if (leastOfHalves(1) >= bound)
		{
			continue;
		}
		for (colour[1] = 0; colour[1] < kLevels; ++colour[1])
		{
			if (leastOfHalves(2) >= bound)
			{
				continue;
			}
			for (colour[2] = 0; colour[2] < kLevels; ++colour[2])
			{
				unsigned int errors[4];
				errorsOfHalves<Scale>(texels, colour, 3, errors);
				for (unsigned int half = 0; half < 4; ++half)
				{
					if (errors[half] < best.errors[half])
					{
						best.errors[half] = errors[half];
						std::copy_n(colour, 3, best.colours[half]);
					}
				}
				bound = std::min(bound, errorOf(best));
			}
		}
	}
}

/// Gives a half the first of its best colours if one is better than what it has, and below the limit.
void searchHalf(EtcHalf half, unsigned int limit, EtcSearchSpace& space, EtcHalves& best)
{
	const HalfWalk walk{4, half, std::min(limit, best.errors[half]), true};
	HalfColour* found = space.halfColours[0];
	const unsigned int count = withSimdLevel([&](auto level) { return walkHalf<level>(space, walk, found); });
	if (count > 0)
	{
		const HalfColour& last = found[count - 1];
		best.errors[half] = last.error;
		best.colours[half][0] = static_cast<int>(last.colour >> 8);
		best.colours[half][1] = static_cast<int>(last.colour >> 4 & 15);
		best.colours[half][2] = static_cast<int>(last.colour & 15);
	}
}

/// The halves of blocks that cost no more than the bound; others are left with what they have.
void searchSplit(EtcHalf half1, EtcHalf half2, unsigned int bound, EtcSearchSpace& space, EtcHalves& best)
{
	const unsigned int bound2 = lowerBoundOfHalf(space, half2);
	if (bound2 <= bound)
	{
		searchHalf(half1, bound - bound2 + 1, space, best);
	}
	if (best.errors[half1] <= bound)
	{
		searchHalf(half2, bound - best.errors[half1] + 1, space, best);
	}
}

/// Whether walkAllHalves may not have come by what was found: a colour that costs a half as much as the best block, none of it in
/// blue, is left out there once the bound is as low.
template<typename Scale>
bool mayBeLeftOut(const SearchTexels<16>& texels, const EtcHalves& seed, const EtcHalves& best)
{
	for (unsigned int half = 0; half < 4; ++half)
	{
		if (best.errors[half] < seed.errors[half] && best.errors[half] == errorOf(best))
		{
			unsigned int errors[4];
			errorsOfHalves<Scale>(texels, best.colours[half], 2, errors);
			if (*std::min_element(errors, errors + 4) >= best.errors[half])
			{
				return true;
			}
		}
	}
	return false;
}

template<typename Scale, typename Seed>
unsigned int search(Seed&& seedSearch, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	EtcHalves seed;
	bound = std::min(bound, seedSearch(source, width, startX, startY, word1, word2, seed));
	const SearchTexels<16> texels = loadBlockColumns(source, width, startX, startY);
	prepareHalfWalks<Scale>(texels, 4, space);
	EtcHalves best = seed;
	searchSplit(kLeftHalf, kRightHalf, bound, space, best);
	searchSplit(kTopHalf, kBottomHalf, std::min(bound, best.errors[kLeftHalf] + best.errors[kRightHalf]), space, best);
	const unsigned int error = errorOf(best);
	if (error <= bound && mayBeLeftOut<Scale>(texels, seed, best))
	{
		// Whatever costs more is of no consequence, but whether the bound is already as low.
		best = seed;
		walkAllHalves<Scale>(texels, std::min(bound, error + 1), best);
	}

	const bool isFlipped = best.errors[kTopHalf] + best.errors[kBottomHalf] < best.errors[kLeftHalf] + best.errors[kRightHalf];
	const auto result =
	    isFlipped ? encodeSplit<Scale, HalfShape::Flipped>(loadSplitTexels<HalfShape::Flipped>(source, width, startX, startY),
	                                                       ColourMode::Individual, best.colours[kTopHalf], best.colours[kBottomHalf])
	              : encodeSplit<Scale, HalfShape::Upright>(loadSplitTexels<HalfShape::Upright>(source, width, startX, startY),
	                                                       ColourMode::Individual, best.colours[kLeftHalf], best.colours[kRightHalf]);
	word1 = result.word1;
	word2 = result.word2;
	return result.error;
}
} // namespace

unsigned int compressBlockIndividualExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                               unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale>(compressBlockOnlyIndividualAverage, source, width, startX, startY, word1, word2, bound, space);
}

unsigned int compressBlockIndividualExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                         unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                         EtcSearchSpace& space)
{
	return search<Perceptual1000Scale>(compressBlockOnlyIndividualAveragePerceptual1000, source, width, startX, startY, word1, word2, bound,
	                                   space);
}
} // namespace zortexture
