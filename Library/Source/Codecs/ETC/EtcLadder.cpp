#include "EtcLadder.h"

#include <cstdio>

#include "EtcBlock.h"
#include "EtcFastSearch.h"
#include "ZORTDefines.h"

namespace zortexture
{
namespace
{
/// The block to encode and the buffer its candidates are decoded into.
struct Block
{
	const unsigned char* source;
	unsigned char* decoded;
	unsigned int width;
	unsigned int startX;
	unsigned int startY;
};

/// A candidate, as the search gave it.
struct Words
{
	unsigned int word1 = 0;
	unsigned int word2 = 0;
};

enum class Winner
{
	Other,
	T,
	H
};

/// The best candidate so far, in stored form. A Winner of T or H gets a second, wider search.
struct Best
{
	Words words;
	double error = 0.0;
	Winner winner = Winner::Other;
};

double plainError(const Block& block)
{
	return calcBlockErrorRGB(block.source, block.decoded, block.width, block.startX, block.startY);
}

double perceptualError(const Block& block)
{
	return calcBlockPerceptualErrorRGB(block.source, block.decoded, block.width, block.startX, block.startY);
}

/// The searches and the measure of a twin. Errors are compared after multiplication by kScale: the T and H searches of the
/// perceptual twin count in thousandths.
struct Plain
{
	static constexpr double kScale = 1.0;
	static constexpr auto kAverage = compressBlockDiffFlipAverage;
	static constexpr auto kCombined = compressBlockDiffFlipCombined;
	static constexpr auto kT = compressBlockTHUMB59TFastest;
	static constexpr auto kH = compressBlockTHUMB58HFastest;
	static double error(const Block& block)
	{
		return plainError(block);
	}
};

struct Perceptual
{
	static constexpr double kScale = 1000.0;
	static constexpr auto kAverage = compressBlockDiffFlipAveragePerceptual;
	static constexpr auto kCombined = compressBlockDiffFlipCombinedPerceptual;
	static constexpr auto kT = compressBlockTHUMB59TFastestPerceptual1000;
	static constexpr auto kH = compressBlockTHUMB58HFastestPerceptual1000;
	static double error(const Block& block)
	{
		return perceptualError(block);
	}
};

template<typename Search>
Words runSearch(const Block& block, Search&& search)
{
	Words words;
	search(block.source, block.width, block.startX, block.startY, words.word1, words.word2);
	return words;
}

/// One candidate of individual or differential mode and its error.
template<typename Twin, typename Search>
double tryDiffFlip(const Block& block, Search&& search, Words& words)
{
	words = runSearch(block, search);
	decompressBlockDiffFlip(words.word1, words.word2, block.decoded, 4, 0, 0);
	return Twin::error(block);
}

template<typename Twin>
double diffFlipFast(const Block& block, Words& words)
{
	Words combined;
	const double averageError = tryDiffFlip<Twin>(block, Twin::kAverage, words);
	const double combinedError = tryDiffFlip<Twin>(block, Twin::kCombined, combined);
	if (averageError > combinedError)
	{
		words = combined;
		return combinedError;
	}
	return averageError;
}

using Stuffing = void (*)(unsigned int, unsigned int, unsigned int&, unsigned int&);

/// Takes a candidate in packed form if its error is strictly below the best.
bool keepIfBetter(Best& best, const Words& packed, double error, Stuffing stuff, Winner winner)
{
	if (!(error < best.error))
	{
		return false;
	}
	stuff(packed.word1, packed.word2, best.words.word1, best.words.word2);
	best.error = error;
	best.winner = winner;
	return true;
}

/// Planar, T and H against the best of the modes before them, then the wider search of T or H if that mode won. Blocks whose ETC1 or
/// planar candidate wins get no second try.
///
/// The wider search is the plain one in both twins, and its result is measured in plain squares also where the best carries the scaled
/// perceptual error: the smaller scale lets it win nearly always. Encoded files depend on it.
template<typename Twin>
void tryFurtherModes(const Block& block, Best& best)
{
	if (best.error == 0.0)
	{
		return; // nothing can be strictly better
	}

	const Words planar = runSearch(block, compressBlockPlanar57);
	decompressBlockPlanar57(planar.word1, planar.word2, block.decoded, 4, 0, 0);
	keepIfBetter(best, planar, Twin::error(block) * Twin::kScale, stuff57bits, Winner::Other);

	const Words t = runSearch(block, Twin::kT);
	decompressBlockTHUMB59T(t.word1, t.word2, block.decoded, 4, 0, 0);
	keepIfBetter(best, t, Twin::error(block) * Twin::kScale, stuff59bits, Winner::T);

	const Words h = runSearch(block, Twin::kH);
	decompressBlockTHUMB58H(h.word1, h.word2, block.decoded, 4, 0, 0);
	keepIfBetter(best, h, Twin::error(block) * Twin::kScale, stuff58bits, Winner::H);

	if (best.winner == Winner::H)
	{
		const Words refined = runSearch(block, compressBlockTHUMB58HFast);
		decompressBlockTHUMB58H(refined.word1, refined.word2, block.decoded, 4, 0, 0);
		keepIfBetter(best, refined, plainError(block), stuff58bits, Winner::H);
	}
	else if (best.winner == Winner::T)
	{
		const Words refined = runSearch(block, compressBlockTHUMB59TFast);
		decompressBlockTHUMB59T(refined.word1, refined.word2, block.decoded, 4, 0, 0);
		keepIfBetter(best, refined, plainError(block), stuff59bits, Winner::T);
	}
}

/// The modes of the one-bit-alpha format whose opaque bit is 0, measured over the texels of high alpha.
Best tryTransparentModes(const Block& block, const unsigned char* alpha)
{
	unsigned char decodedAlpha[16];
	const auto error = [&]
	{
		return calcBlockErrorRGBA(block.source, block.decoded, alpha, block.width, block.startX, block.startY);
	};

	Best best;
	const int searchError = compressBlockDifferentialWithAlpha(true, block.source, alpha, block.width, block.startX, block.startY,
	                                                           best.words.word1, best.words.word2);
	decompressBlockDifferentialWithAlpha(best.words.word1, best.words.word2, block.decoded, decodedAlpha, 4, 0, 0);
	best.error = error();
	if (best.error != static_cast<double>(searchError))
	{
		// The search counts texels of alpha 128, the measure does not.
		std::printf("testerr: %d, etcerr: %lf\n", searchError, best.error);
	}

	Words packed;
	compressBlockTHUMB59TAlpha(block.source, alpha, block.width, block.startX, block.startY, packed.word1, packed.word2);
	decompressBlockTHUMB59TAlpha(packed.word1, packed.word2, block.decoded, decodedAlpha, 4, 0, 0);
	keepIfBetter(best, packed, error(), stuff59bitsDiffFalse, Winner::Other);

	compressBlockTHUMB58HAlpha(block.source, alpha, block.width, block.startX, block.startY, packed.word1, packed.word2);
	decompressBlockTHUMB58HAlpha(packed.word1, packed.word2, block.decoded, decodedAlpha, 4, 0, 0);
	keepIfBetter(best, packed, error(), stuff58bitsDiffFalse, Winner::Other);
	return best;
}

Words oneBitAlphaFast(const Block& block, const unsigned char* alpha)
{
	Best best = tryTransparentModes(block, alpha);
	if (hasAlpha(alpha, block.startX, block.startY, block.width))
	{
		return best.words;
	}

	// Fully opaque: the opaque modes, where a texel may also take the modifiers that transparency costs.
	Words opaque;
	compressBlockDifferentialWithAlpha(false, block.source, alpha, block.width, block.startX, block.startY, opaque.word1, opaque.word2);
	decompressBlockDiffFlip(opaque.word1, opaque.word2, block.decoded, 4, 0, 0);
	const double error = plainError(block);
	if (error < best.error)
	{
		best.words = opaque;
		best.error = error;
	}
	tryFurtherModes<Plain>(block, best);
	return best.words;
}
} // namespace

double compressBlockDiffFlipFast(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                 unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	Words words;
	const double error = diffFlipFast<Plain>({source, decoded, width, startX, startY}, words);
	word1 = words.word1;
	word2 = words.word2;
	return error;
}

double compressBlockDiffFlipFastPerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                           unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	Words words;
	const double error = diffFlipFast<Perceptual>({source, decoded, width, startX, startY}, words);
	word1 = words.word1;
	word2 = words.word2;
	return error;
}

void compressBlockETC2Fast(const unsigned char* source, const unsigned char* alpha, unsigned char* decoded, unsigned int width,
                           unsigned int /*height*/, unsigned int startX, unsigned int startY, unsigned int& word1, unsigned int& word2,
                           unsigned int format)
{
	const Block block{source, decoded, width, startX, startY};
	Best best;
	if (format == ePF_ETC2_RGB_A1)
	{
		best.words = oneBitAlphaFast(block, alpha);
	}
	else
	{
		best.error = diffFlipFast<Plain>(block, best.words);
		tryFurtherModes<Plain>(block, best);
	}
	word1 = best.words.word1;
	word2 = best.words.word2;
}

void compressBlockETC2FastPerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                     unsigned int startY, unsigned int& word1, unsigned int& word2)
{
	const Block block{source, decoded, width, startX, startY};
	Best best;
	best.error = diffFlipFast<Perceptual>(block, best.words) * Perceptual::kScale;
	tryFurtherModes<Perceptual>(block, best);
	word1 = best.words.word1;
	word2 = best.words.word2;
}

template<>
void compressColoursFast<eSimdPlain>(const TexelBlock& texels, unsigned int format, int quality, unsigned int& word1, unsigned int& word2)
{
	unsigned char decoded[16 * 3];
	const bool isPlain = quality == ETCQualityFast || format == ePF_ETC2_RGB_A1;
	if (format == ePF_ETC1)
	{
		(isPlain ? compressBlockDiffFlipFast : compressBlockDiffFlipFastPerceptual)(texels.colours, decoded, 4, 0, 0, word1, word2);
	}
	else if (isPlain)
	{
		compressBlockETC2Fast(texels.colours, texels.alphas, decoded, 4, 4, 0, 0, word1, word2, format);
	}
	else
	{
		compressBlockETC2FastPerceptual(texels.colours, decoded, 4, 0, 0, word1, word2);
	}
}
} // namespace zortexture
