/// @file EtcThExhaustive.cpp
/// All T and H blocks: pairs of 4-bit colours, the first of which carries the distance, as the second does in H.
#include <algorithm>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcPlainLanes.h"
#include "Codecs/ETC/EtcThPairs.h"

namespace zortexture
{
namespace
{
/// The texels in an order in which the first ones differ most: each is the one farthest from all before it. Pairs of colours that do not
/// fit a block are then refused by its first texels.
SearchTexels<16> sortByContrast(const SearchTexels<16>& texels)
{
	SearchTexels<16> sorted = texels;
	unsigned int distances[16]; // to the nearest of the sorted ones
	std::fill_n(distances, 16, PlainScale::kBlockCeiling);
	for (unsigned int count = 1; count < 16; ++count)
	{
		unsigned int farthest = count;
		for (unsigned int i = count; i < 16; ++i)
		{
			distances[i] = std::min(distances[i], colourError<PlainScale>(sorted.rgb[i], sorted.rgb[count - 1]));
			farthest = distances[i] > distances[farthest] ? i : farthest;
		}
		std::swap(distances[count], distances[farthest]);
		std::swap(sorted.rgb[count], sorted.rgb[farthest]);
	}
	return sorted;
}

/// The best of the pairs that a walk comes by: the first of them, as only a strictly better one replaces it.
template<typename Scale, TwoColourMode Mode>
class CBestPair
{
public:
	CBestPair(const SearchTexels<16>& texels, unsigned int bound) : m_texels(texels)
	{
		m_best.error = bound;
	}

	/// True if there is a pair strictly below the bound.
	bool search(EtcSearchSpace& space)
	{
		const SearchTexels<16> sorted = sortByContrast(m_texels);
		PairWalk walk{space, {}, {}, m_best.error, measure, this};
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			walk.weights[channel] = Scale::kWeights[channel];
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				walk.texels[channel][texel] = sorted.rgb[texel][channel];
			}
		}
		withSimdLevel([&walk](auto level) { walkPairs<level, Mode>(walk); });
		return m_isFound;
	}

	[[nodiscard]] const DistanceChoice& choice() const
	{
		return m_best;
	}
	[[nodiscard]] const EtcColourPair& colours() const
	{
		return m_colours;
	}

private:
	/// Takes the pair if it is strictly better, and returns the best error. In a T block the plain colour stands first.
	static unsigned int measure(void* context, unsigned int colour0, unsigned int colour1)
	{
		auto& self = *static_cast<CBestPair*>(context);
		EtcColourPair packed;
		unpackRgb444(Mode == TwoColourMode::T ? colour1 : colour0, packed[0]);
		unpackRgb444(Mode == TwoColourMode::T ? colour0 : colour1, packed[1]);
		EtcColourPair colours;
		decompressColor(4, 4, 4, packed, colours);
		if (searchDistances<Scale, Mode>(self.m_texels, colours, kMatchAll, self.m_best))
		{
			copyColors(packed, self.m_colours);
			self.m_isFound = true;
		}
		return self.m_best.error;
	}

	const SearchTexels<16>& m_texels;
	DistanceChoice m_best;
	EtcColourPair m_colours = {};
	bool m_isFound = false;
};

template<typename Scale, TwoColourMode Mode, typename Seed, typename Pack>
unsigned int search(Seed&& seed, Pack&& pack, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	const auto seedError = static_cast<unsigned int>(seed(source, width, startX, startY, word1, word2));
	if (std::min(seedError, bound) == 0)
	{
		return seedError;
	}
	const SearchTexels<16> texels = loadBlockTexels(source, width, startX, startY);
	CBestPair<Scale, Mode> pairs(texels, std::min(seedError, bound));
	if (!pairs.search(space))
	{
		return seedError;
	}
	const DistanceChoice& choice = pairs.choice();
	pack(pairs.colours(), choice.distance, choice.indices, word1, word2);
	return choice.error;
}
} // namespace

template<>
void walkPairs<eSimdPlain, TwoColourMode::T>(PairWalk& walk)
{
	CPairWalk<PlainLanes<std::int16_t, 16>, TwoColourMode::T>(walk).run();
}

template<>
void walkPairs<eSimdPlain, TwoColourMode::H>(PairWalk& walk)
{
	CPairWalk<PlainLanes<std::int16_t, 16>, TwoColourMode::H>(walk).run();
}

unsigned int compressBlockTHUMB59TExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale, TwoColourMode::T>(compressBlockTHUMB59TFastest, packBlock59T, source, width, startX, startY, word1, word2,
	                                            bound, space);
}

unsigned int compressBlockTHUMB59TExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       EtcSearchSpace& space)
{
	return search<Perceptual1000Scale, TwoColourMode::T>(compressBlockTHUMB59TFastestPerceptual1000, packBlock59T, source, width, startX,
	                                                     startY, word1, word2, bound, space);
}

unsigned int compressBlockTHUMB58HExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale, TwoColourMode::H>(compressBlockTHUMB58HFastest, packBlock58H, source, width, startX, startY, word1, word2,
	                                            bound, space);
}

unsigned int compressBlockTHUMB58HExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       EtcSearchSpace& space)
{
	return search<Perceptual1000Scale, TwoColourMode::H>(compressBlockTHUMB58HFastestPerceptual1000, packBlock58H, source, width, startX,
	                                                     startY, word1, word2, bound, space);
}
} // namespace zortexture
