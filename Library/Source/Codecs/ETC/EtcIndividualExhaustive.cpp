/// @file EtcIndividualExhaustive.cpp
/// All individual blocks. The halves do not interact, so each is searched for the first of its best colours.
///
/// What the search gives is defined by a walk over the colours for all halves at once, which leaves out colours whose red and green
/// cost every half as much as the bound does by then. They can be in a block that is as good as the bound, where they cost one half
/// all of its error and the other half costs nothing: where that comes about the walk is made.
#include <algorithm>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcHalfWalk.h"
#include "Codecs/ETC/EtcSplit.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kLevels = 16;

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

void unpackColour(unsigned int packed, BaseColour& colour)
{
	colour[0] = static_cast<int>(packed >> 8);
	colour[1] = static_cast<int>(packed >> 4 & 15);
	colour[2] = static_cast<int>(packed & 15);
}

unsigned int listColours(const HalfWalk& walk, EtcSearchSpace& space, HalfColour* found)
{
	return withSimdLevel([&](auto level) { return walkHalf<level>(space, walk, found); });
}

/// Gives a half the first of its best colours if one is better than what it has, and below the limit.
void searchHalf(EtcHalf half, unsigned int limit, EtcSearchSpace& space, EtcHalves& best)
{
	HalfColour* found = space.halfColours[0];
	const unsigned int count = listColours({half, std::min(limit, best.errors[half]), true}, space, found);
	if (count > 0)
	{
		best.errors[half] = found[count - 1].error;
		unpackColour(found[count - 1].colour, best.colours[half]);
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

/// Whether a colour's red and green cost every half as much as the error.
template<typename Scale>
bool isLeftOut(const SearchTexels<16>& texels, const BaseColour& colour, unsigned int error)
{
	unsigned int errors[4];
	errorsOfHalves<Scale>(texels, colour, 2, errors);
	return *std::min_element(errors, errors + 4) >= error;
}

/// Walks all halves at once to blocks of an error that is known to be the least. From the first such block on, or from the
/// beginning if the bound is as low, colours that are left out do not count.
template<typename Scale>
void walkAllHalves(const SearchTexels<16>& texels, unsigned int bound, unsigned int error, EtcSearchSpace& space, EtcHalves& best)
{
	constexpr unsigned int kColours = kLevels * kLevels * kLevels;
	const HalfColour* next[4];
	const HalfColour* end[4];
	for (unsigned int half = 0; half < 4; ++half)
	{
		HalfColour* found = space.halfColours[0] + half * kColours;
		next[half] = found;
		end[half] = found + listColours({static_cast<EtcHalf>(half), error + 1, false}, space, found);
	}
	for (unsigned int colour = 0; colour < kColours; ++colour)
	{
		BaseColour levels;
		unpackColour(colour, levels);
		unsigned int errors[4];
		bool isBetter = false;
		for (unsigned int half = 0; half < 4; ++half)
		{
			const bool isListed = next[half] != end[half] && next[half]->colour == colour;
			errors[half] = isListed ? next[half]->error : error + 1;
			next[half] += isListed ? 1 : 0;
			isBetter |= isListed && errors[half] < best.errors[half];
		}
		// A colour that costs some half less is never left out.
		if (!isBetter || (*std::min_element(errors, errors + 4) == error && std::min(bound, errorOf(best)) == error &&
		                  isLeftOut<Scale>(texels, levels, error)))
		{
			continue;
		}
		for (unsigned int half = 0; half < 4; ++half)
		{
			if (errors[half] < best.errors[half])
			{
				best.errors[half] = errors[half];
				std::copy_n(levels, 3, best.colours[half]);
			}
		}
	}
}

/// Whether walkAllHalves may give other colours: one that costs a half as much as the best block may be left out there.
template<typename Scale>
bool dependsOnOrder(const SearchTexels<16>& texels, const EtcHalves& seed, const EtcHalves& best)
{
	for (unsigned int half = 0; half < 4; ++half)
	{
		if (best.errors[half] < seed.errors[half] && best.errors[half] == errorOf(best) &&
		    isLeftOut<Scale>(texels, best.colours[half], errorOf(best)))
		{
			return true;
		}
	}
	return false;
}

template<typename Scale, typename Seed>
unsigned int search(Seed&& seedSearch, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	EtcHalves seed;
	const unsigned int seedError = seedSearch(source, width, startX, startY, word1, word2, seed);
	bound = std::min(bound, seedError);
	if (bound == 0)
	{
		return seedError; // every colour is left out
	}
	const SearchTexels<16> texels = loadBlockColumns(source, width, startX, startY);
	prepareHalfWalks<Scale>(texels, 4, space);
	EtcHalves best = seed;
	searchSplit(kLeftHalf, kRightHalf, bound, space, best);
	searchSplit(kTopHalf, kBottomHalf, std::min(bound, best.errors[kLeftHalf] + best.errors[kRightHalf]), space, best);
	const unsigned int error = errorOf(best);
	if (error <= bound && dependsOnOrder<Scale>(texels, seed, best))
	{
		best = seed;
		walkAllHalves<Scale>(texels, bound, error, space, best);
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
