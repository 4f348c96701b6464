/// @file EtcExhaustiveLadder.cpp
/// The exhaustive levels: the fast searches give the bound, which only falls from search to search, and the words of all modes are compared
/// at the end, where the order of the modes settles ties.
#include <algorithm>

#include "Codecs/ETC/EtcBlock.h"
#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcLadder.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
namespace
{
struct Block
{
	const unsigned char* source;
	unsigned char* decoded;
	unsigned int width;
	unsigned int startX;
	unsigned int startY;
	EtcSearchSpace& space;
};

/// A block as its search gave it, with its error on the integer scale of the twin.
struct Candidate
{
	unsigned int word1 = 0;
	unsigned int word2 = 0;
	unsigned int error = 0;
};

struct Plain
{
	using Scale = PlainScale;
	static constexpr double kErrorScale = 1.0;
	static constexpr bool kPlanarComesFirst = false;
	static constexpr auto kBlockError = calcBlockErrorRGB;
	static constexpr auto kDiffFlipFast = compressBlockDiffFlipFast;
	static constexpr auto kTFastest = compressBlockTHUMB59TFastest;
	static constexpr auto kHFastest = compressBlockTHUMB58HFastest;
	static constexpr auto kIndividual = compressBlockIndividualExhaustive;
	static constexpr auto kDifferential = compressBlockDifferentialExhaustive;
	static constexpr auto kPlanar = compressBlockPlanar57Exhaustive;
	static constexpr auto kT = compressBlockTHUMB59TExhaustive;
	static constexpr auto kH = compressBlockTHUMB58HExhaustive;
};

/// The fast candidates are measured in floating point, so that cutting off may lose 1 of their error.
struct Perceptual
{
	using Scale = Perceptual1000Scale;
	static constexpr double kErrorScale = 1000.0;
	static constexpr bool kPlanarComesFirst = true;
	static constexpr auto kBlockError = calcBlockPerceptualErrorRGB;
	static constexpr auto kDiffFlipFast = compressBlockDiffFlipFastPerceptual;
	static constexpr auto kTFastest = compressBlockTHUMB59TFastestPerceptual1000;
	static constexpr auto kHFastest = compressBlockTHUMB58HFastestPerceptual1000;
	static constexpr auto kIndividual = compressBlockIndividualExhaustivePerceptual;
	static constexpr auto kDifferential = compressBlockDifferentialExhaustivePerceptual;
	static constexpr auto kPlanar = compressBlockPlanar57ExhaustivePerceptual;
	static constexpr auto kT = compressBlockTHUMB59TExhaustivePerceptual;
	static constexpr auto kH = compressBlockTHUMB58HExhaustivePerceptual;
};

template<typename Twin>
unsigned int integerError(double error)
{
	return static_cast<unsigned int>(error * Twin::kErrorScale);
}

template<typename Twin>
Candidate runDiffFlipFast(const Block& block)
{
	Candidate fast;
	fast.error = integerError<Twin>(
	    Twin::kDiffFlipFast(block.source, block.decoded, block.width, block.startX, block.startY, fast.word1, fast.word2));
	return fast;
}

/// A search of all blocks of a mode but planar. The bound falls to what it finds.
template<typename Search>
Candidate runExhaustive(Search&& search, const Block& block, unsigned int& bound)
{
	Candidate found;
	found.error = search(block.source, block.width, block.startX, block.startY, found.word1, found.word2, bound, block.space);
	bound = std::min(bound, found.error);
	return found;
}

/// The error of a planar block.
template<typename Twin>
unsigned int measurePlanar(const Block& block, const Candidate& planar)
{
	decompressBlockPlanar57(planar.word1, planar.word2, block.decoded, 4, 0, 0);
	return integerError<Twin>(Twin::kBlockError(block.source, block.decoded, block.width, block.startX, block.startY));
}

template<typename Twin>
Candidate runPlanarExhaustive(const Block& block, const unsigned int (&seedErrors)[3], unsigned int& bound)
{
	Candidate planar;
	Twin::kPlanar(block.source, block.width, block.startX, block.startY, planar.word1, planar.word2, bound, seedErrors);
	planar.error = measurePlanar<Twin>(block, planar);
	bound = std::min(bound, planar.error);
	return planar;
}

/// The planar, T and H blocks of the fast searches, as far as they matter here.
struct FastModes
{
	unsigned int planarErrors[3]; ///< By channel.
	unsigned int error;           ///< Of the best of the three.
};

template<typename Twin>
FastModes runFastModes(const Block& block)
{
	FastModes modes;
	Candidate fast;
	compressBlockPlanar57(block.source, block.width, block.startX, block.startY, fast.word1, fast.word2);
	decompressBlockPlanar57errorPerComponent(fast.word1, fast.word2, block.decoded, block.width, block.startX, block.startY, block.source,
	                                         modes.planarErrors[0], modes.planarErrors[1], modes.planarErrors[2]);
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		modes.planarErrors[channel] *= Twin::Scale::kWeights[channel];
	}
	const unsigned int planar = integerError<Twin>(Twin::kBlockError(block.source, block.decoded, block.width, block.startX, block.startY));
	const auto t =
	    static_cast<unsigned int>(Twin::kTFastest(block.source, block.width, block.startX, block.startY, fast.word1, fast.word2));
	const auto h =
	    static_cast<unsigned int>(Twin::kHFastest(block.source, block.width, block.startX, block.startY, fast.word1, fast.word2));
	modes.error = std::min({planar, t, h});
	return modes;
}

using Stuffing = void (*)(unsigned int, unsigned int, unsigned int&, unsigned int&);

void keepStored(unsigned int word1, unsigned int word2, unsigned int& stored1, unsigned int& stored2)
{
	stored1 = word1;
	stored2 = word2;
}

/// The best of all modes, in stored form.
template<typename Twin>
Candidate searchEtc2(const Block& block)
{
	const Candidate fast = runDiffFlipFast<Twin>(block);
	if (fast.error == 0)
	{
		return fast; // nothing can be strictly better
	}
	const FastModes modes = runFastModes<Twin>(block);
	unsigned int bound = std::min({fast.error, Twin::Scale::kBlockCeiling, modes.error});

	Candidate planar;
	if constexpr (Twin::kPlanarComesFirst)
	{
		planar = runPlanarExhaustive<Twin>(block, modes.planarErrors, bound);
	}
	const Candidate differential = runExhaustive(Twin::kDifferential, block, bound);
	if constexpr (!Twin::kPlanarComesFirst)
	{
		planar = runPlanarExhaustive<Twin>(block, modes.planarErrors, bound);
	}
	const Candidate individual = runExhaustive(Twin::kIndividual, block, bound);
	const Candidate h = runExhaustive(Twin::kH, block, bound);
	const Candidate t = runExhaustive(Twin::kT, block, bound);

	const struct
	{
		const Candidate& candidate;
		Stuffing stuff;
	} challengers[] = {{differential, keepStored}, {individual, keepStored}, {planar, stuff57bits}, {h, stuff58bits}, {t, stuff59bits}};
	Candidate best = fast;
	for (const auto& [candidate, stuff] : challengers)
	{
		if (candidate.error < best.error)
		{
			stuff(candidate.word1, candidate.word2, best.word1, best.word2);
			best.error = candidate.error;
		}
	}
	return best;
}

/// A tie goes to what the exhaustive searches found, and among them to the differential block.
Candidate searchEtc1(const Block& block)
{
	const Candidate fast = runDiffFlipFast<Plain>(block);
	unsigned int bound = std::min(fast.error, PlainScale::kBlockCeiling);
	const Candidate individual = runExhaustive(Plain::kIndividual, block, bound);
	const Candidate differential = runExhaustive(Plain::kDifferential, block, bound);
	const Candidate& best = individual.error < differential.error ? individual : differential;
	return best.error > fast.error ? fast : best;
}

/// A tie goes to the fast block, then to the differential one: the reverse of the plain twin in all respects.
Candidate searchEtc1Perceptual(const Block& block)
{
	Candidate best = runDiffFlipFast<Perceptual>(block);
	unsigned int bound = std::min(best.error, Perceptual1000Scale::kBlockCeiling);
	for (const auto search : {Perceptual::kDifferential, Perceptual::kIndividual})
	{
		const Candidate found = runExhaustive(search, block, bound);
		best = found.error < best.error ? found : best;
	}
	return best;
}

void giveWords(const Candidate& best, unsigned int& word1, unsigned int& word2)
{
	word1 = best.word1;
	word2 = best.word2;
}
} // namespace

void compressBlockETC1Exhaustive(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                 unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space)
{
	giveWords(searchEtc1({source, decoded, width, startX, startY, space}), word1, word2);
}

void compressBlockETC1ExhaustivePerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                           unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space)
{
	giveWords(searchEtc1Perceptual({source, decoded, width, startX, startY, space}), word1, word2);
}

void compressBlockETC2Exhaustive(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                 unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space)
{
	giveWords(searchEtc2<Plain>({source, decoded, width, startX, startY, space}), word1, word2);
}

void compressBlockETC2ExhaustivePerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                           unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space)
{
	giveWords(searchEtc2<Perceptual>({source, decoded, width, startX, startY, space}), word1, word2);
}
} // namespace zortexture
