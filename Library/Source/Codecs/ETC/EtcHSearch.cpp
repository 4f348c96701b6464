/// @file EtcHSearch.cpp
/// H blocks: two colours that both carry the distance. Their order in the block stores the low bit of the distance, so the
/// search works on colours in ascending order and packing exchanges them where the bit asks for it.
#include <cstdio>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcThSearch.h"

namespace zortexture
{
namespace
{
/// The sorted 4-bit colours of one clustering.
void clusterColours(Clustering clustering, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    EtcColourPair& packed)
{
	EtcColourPair colours;
	clustering(source, width, startX, startY, colours);
	compressColor(4, 4, 4, colours, packed);
	sortColorsRGB444(packed);
}

template<typename Scale>
unsigned int compressFastest(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                             unsigned int& word2)
{
	EtcColourPair packed;
	clusterColours(computeColorLBGHalfIntensityFast, source, width, startX, startY, packed);
	const auto choice = searchPackedColours<Scale, TwoColourMode::H>(loadBlockTexels(source, width, startX, startY), packed, kMatchAll);
	packBlock58H(packed, choice.distance, choice.indices, word1, word2);
	return choice.error;
}
} // namespace

unsigned int calculateErrorAndCompress58H(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                          const EtcColourPair& colours, unsigned int& distance, unsigned int& indices)
{
	const auto texels = loadBlockTexels(source, width, startX, startY);
	return giveChoice(searchPackedColours<PlainScale, TwoColourMode::H>(texels, colours, kMatchAll), distance, indices);
}

unsigned int calculateErrorAndCompress58Hperceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                        unsigned int startY, const EtcColourPair& colours, unsigned int& distance,
                                                        unsigned int& indices)
{
	const auto texels = loadBlockTexels(source, width, startX, startY);
	return giveChoice(searchPackedColours<Perceptual1000Scale, TwoColourMode::H>(texels, colours, kMatchAll), distance, indices);
}

unsigned int calculateErrorAndCompress58HAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width,
                                               unsigned int startX, unsigned int startY, const EtcColourPair& colours,
                                               unsigned int& distance, unsigned int& indices)
{
	// The sense of alpha is the reverse of the T search's, and it stays so: blocks that come of it are judged by what they
	// decode to, and mostly lose.
	unsigned int leftOut = 0;
	for (unsigned int i = 0; i < 16; ++i)
	{
		const unsigned char value = alpha[texelIndex(width, startX + i % 4, startY + i / 4)];
		if (value != 0 && value != 255)
		{
			std::fputs("INVALID ALPHA DATA!!", stdout);
		}
		leftOut |= static_cast<unsigned int>(value != 0) << i;
	}

	const auto flag = static_cast<unsigned int>(packRgb444(colours[0]) >= packRgb444(colours[1]));
	const auto ruleOf = [leftOut, flag](unsigned int distanceIndex)
	{
		return MatchSome{leftOut, (distanceIndex & 1) == flag ? 2U : 0U};
	};
	const auto texels = loadBlockTexels(source, width, startX, startY);
	return giveChoice(searchPackedColours<PlainScale, TwoColourMode::H>(texels, colours, ruleOf), distance, indices);
}

double compressBlockTHUMB58HFastest(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                    unsigned int& word1, unsigned int& word2)
{
	return compressFastest<PlainScale>(source, width, startX, startY, word1, word2);
}

unsigned int compressBlockTHUMB58HFastestPerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                        unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	return compressFastest<Perceptual1000Scale>(source, width, startX, startY, word1, word2);
}

double compressBlockTHUMB58HFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                 unsigned int& word1, unsigned int& word2)
{
	// The hue clustering stands for two candidates of three: a second run draws the same numbers and cannot differ.
	constexpr Clustering kClusterings[] = {computeColorLBGNotIntensity, computeColorLBG};
	const auto texels = loadBlockTexels(source, width, startX, startY);
	DistanceChoice best;
	EtcColourPair bestPacked = {};
	for (const Clustering clustering : kClusterings)
	{
		EtcColourPair packed;
		clusterColours(clustering, source, width, startX, startY, packed);
		const DistanceChoice choice = searchPackedColours<PlainScale, TwoColourMode::H>(texels, packed, kMatchAll);
		if (choice.error < best.error)
		{
			best = choice;
			copyColors(packed, bestPacked);
		}
	}
	packBlock58H(bestPacked, best.distance, best.indices, word1, word2);
	return best.error;
}

double compressBlockTHUMB58HAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX,
                                  unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	EtcColourPair packed;
	unsigned int distance = 0;
	unsigned int indices = 0;
	clusterColours(computeColorLBGHalfIntensityFast, source, width, startX, startY, packed);
	const unsigned int error = calculateErrorAndCompress58HAlpha(source, alpha, width, startX, startY, packed, distance, indices);
	packBlock58H(packed, distance, indices, word1, word2);
	return error;
}
} // namespace zortexture
