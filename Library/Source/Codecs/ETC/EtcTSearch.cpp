/// @file EtcTSearch.cpp
/// T blocks: one plain colour, and one that carries the distance.
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcThSearch.h"
#include "ETCCodec.h"

namespace zortexture
{
namespace
{
/// The index that is transparent in a block of the one-bit-alpha format.
constexpr unsigned int kTransparentIndex = 2;

template<typename Scale, typename RuleOf>
DistanceChoice searchBothOrders(const SearchTexels<16>& texels, EtcColourPair& packed, const RuleOf& ruleOf)
{
	EtcColourPair colours;
	decompressColor(4, 4, 4, packed, colours);
	DistanceChoice best;
	searchDistances<Scale, TwoColourMode::T>(texels, colours, ruleOf, best);
	swapColors(colours);
	if (searchDistances<Scale, TwoColourMode::T>(texels, colours, ruleOf, best))
	{
		swapColors(packed);
	}
	return best;
}

/// The texels of alpha 0, which T blocks leave out.
MatchSome transparentTexels(const unsigned char* alpha, unsigned int width, unsigned int startX, unsigned int startY)
{
	MatchSome rule{0, kTransparentIndex};
	for (unsigned int i = 0; i < 16; ++i)
	{
		rule.leftOut |= static_cast<unsigned int>(alpha[texelIndex(width, startX + i % 4, startY + i / 4)] == 0) << i;
	}
	return rule;
}

/// The 4-bit colours of one clustering, and the best distance for them.
template<typename Scale>
DistanceChoice searchCluster(Clustering clustering, const unsigned char* source, unsigned int width, unsigned int startX,
                             unsigned int startY, EtcColourPair& packed)
{
	EtcColourPair colours;
	clustering(source, width, startX, startY, colours);
	compressColor(4, 4, 4, colours, packed);
	return searchBothOrders<Scale>(loadBlockTexels(source, width, startX, startY), packed, kMatchAll);
}

template<typename Scale>
unsigned int compressFastest(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                             unsigned int& word2)
{
	EtcColourPair packed;
	const DistanceChoice choice = searchCluster<Scale>(computeColorLBGHalfIntensityFast, source, width, startX, startY, packed);
	packBlock59T(packed, choice.distance, choice.indices, word1, word2);
	return choice.error;
}

template<typename Scale>
unsigned int fastestColours(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                            unsigned int& colour0, unsigned int& colour1)
{
	EtcColourPair packed;
	const DistanceChoice choice = searchCluster<Scale>(computeColorLBGHalfIntensityFast, source, width, startX, startY, packed);
	colour0 = packRgb444(packed[0]);
	colour1 = packRgb444(packed[1]);
	return choice.error;
}
} // namespace

unsigned int calculateError59T(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                               EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
{
	const auto texels = loadBlockTexels(source, width, startX, startY);
	return giveChoice(searchBothOrders<PlainScale>(texels, colours, kMatchAll), distance, indices);
}

unsigned int calculateError59Tperceptual1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
{
	const auto texels = loadBlockTexels(source, width, startX, startY);
	return giveChoice(searchBothOrders<Perceptual1000Scale>(texels, colours, kMatchAll), distance, indices);
}

unsigned int calculateError59TAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX,
                                    unsigned int startY, EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
{
	const auto texels = loadBlockTexels(source, width, startX, startY);
	const MatchSome rule = transparentTexels(alpha, width, startX, startY);
	const auto ruleOf = [&rule](unsigned int /*distance*/) -> const MatchSome&
	{
		return rule;
	};
	return giveChoice(searchBothOrders<PlainScale>(texels, colours, ruleOf), distance, indices);
}

unsigned int calculateError59TnoSwap(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                     const EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
{
	const auto texels = loadBlockTexels(source, width, startX, startY);
	return giveChoice(searchPackedColours<PlainScale, TwoColourMode::T>(texels, colours, kMatchAll), distance, indices);
}

unsigned int calculateError59TnoSwapPerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                   unsigned int startY, const EtcColourPair& colours, unsigned int& distance,
                                                   unsigned int& indices)
{
	const auto texels = loadBlockTexels(source, width, startX, startY);
	return giveChoice(searchPackedColours<Perceptual1000Scale, TwoColourMode::T>(texels, colours, kMatchAll), distance, indices);
}

double compressBlockTHUMB59TFastest(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                    unsigned int& word1, unsigned int& word2)
{
	return compressFastest<PlainScale>(source, width, startX, startY, word1, word2);
}

unsigned int compressBlockTHUMB59TFastestPerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                        unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	return compressFastest<Perceptual1000Scale>(source, width, startX, startY, word1, word2);
}

double compressBlockTHUMB59TFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                 unsigned int& word1, unsigned int& word2)
{
	constexpr Clustering kClusterings[] = {computeColorLBGNotIntensityFast, computeColorLBGHalfIntensityFast, computeColorLBGfast};
	DistanceChoice best;
	EtcColourPair bestPacked = {};
	for (const Clustering clustering : kClusterings)
	{
		EtcColourPair packed;
		const DistanceChoice choice = searchCluster<PlainScale>(clustering, source, width, startX, startY, packed);
		if (choice.error < best.error)
		{
			best = choice;
			copyColors(packed, bestPacked);
		}
	}
	packBlock59T(bestPacked, best.distance, best.indices, word1, word2);
	return best.error;
}

double compressBlockTHUMB59TAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX,
                                  unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	EtcColourPair colours;
	EtcColourPair packed;
	unsigned int distance = 0;
	unsigned int indices = 0;
	computeColorLBGHalfIntensityFast(source, width, startX, startY, colours);
	compressColor(4, 4, 4, colours, packed);
	const unsigned int error = calculateError59TAlpha(source, alpha, width, startX, startY, packed, distance, indices);
	packBlock59T(packed, distance, indices, word1, word2);
	return error;
}

double compressBlockTHUMB59TFastestOnlyColor(const unsigned char* image, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& colour0, unsigned int& colour1)
{
	return fastestColours<PlainScale>(image, width, startX, startY, colour0, colour1);
}

double compressBlockTHUMB59TFastestOnlyColorPerceptual1000(const unsigned char* image, unsigned int width, unsigned int startX,
                                                           unsigned int startY, unsigned int& colour0, unsigned int& colour1)
{
	return fastestColours<Perceptual1000Scale>(image, width, startX, startY, colour0, colour1);
}
} // namespace zortexture
