/// @file EtcLadder.h
/// The choice of a block's mode at each search level: candidates of the fast searches are decoded, measured and compared.
///
/// `source` is an R, G, B image of `width` texels a row whose block at (startX, startY) is encoded, `decoded` a 4 by 4 buffer of 48
/// bytes that the candidates share. The words come out in stored form.
#pragma once

#include "Codecs/ETC/EtcBlock.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
struct EtcSearchSpace;

/// What a quality of the encoder selects. The exhaustive levels have a second spelling, 4 and 5.
inline constexpr int ETCQualityFast = 0;
inline constexpr int ETCQualityFastPerceptual = 1;
inline constexpr int ETCQualityExhaustive = 2;
inline constexpr int ETCQualityExhaustivePerceptual = 3;

/// The words of a block's colours at a fast level, or at any level for ePF_ETC2_RGB_A1. The plain form is the ladder of the searches
/// below; the others reach its words by shorter ways.
template<ESimdLevel level>
void compressColoursFast(const TexelBlock& texels, unsigned int format, int quality, unsigned int& word1, unsigned int& word2);
template<>
void compressColoursFast<eSimdPlain>(const TexelBlock& texels, unsigned int format, int quality, unsigned int& word1, unsigned int& word2);

/// The better of both fast individual and differential searches, the one by averages on a tie. Returns its error, in plain squares or
/// in fractional perceptual ones.
double compressBlockDiffFlipFast(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                 unsigned int startY, unsigned int& word1, unsigned int& word2);
double compressBlockDiffFlipFastPerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                           unsigned int startY, unsigned int& word1, unsigned int& word2);

/// The best of all ETC2 modes. `alpha` is read for ePF_ETC2_RGB_A1 alone; the image's height plays no part.
void compressBlockETC2Fast(const unsigned char* source, const unsigned char* alpha, unsigned char* decoded, unsigned int width,
                           unsigned int height, unsigned int startX, unsigned int startY, unsigned int& word1, unsigned int& word2,
                           unsigned int format);
void compressBlockETC2FastPerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                     unsigned int startY, unsigned int& word1, unsigned int& word2);

/// The best individual or differential block there is, or the fast one where that is better.
void compressBlockETC1Exhaustive(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                 unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space);
void compressBlockETC1ExhaustivePerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                           unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space);

/// The best block of all modes.
void compressBlockETC2Exhaustive(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                 unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space);
void compressBlockETC2ExhaustivePerceptual(const unsigned char* source, unsigned char* decoded, unsigned int width, unsigned int startX,
                                           unsigned int startY, unsigned int& word1, unsigned int& word2, EtcSearchSpace& space);
} // namespace zortexture
