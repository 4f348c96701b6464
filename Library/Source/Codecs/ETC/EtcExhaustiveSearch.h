/// @file EtcExhaustiveSearch.h
/// The searches of the exhaustive ETC quality levels: every base colour that a mode can store.
///
/// What keeps them from brute force: each starts with a bound, the error of the best block known so far; squared errors add over the
/// channels, so a colour is refused as soon as its red, or its red and green, cost as much as the bound; and what does not interact
/// is searched apart, halves of individual blocks and channels of planar ones. None of this changes a result that is below the bound.
///
/// Arguments and words are those of the fast searches in EtcFastSearch.h; the error scales are plain, and 299, 587, 114 for
/// the names ending in Perceptual or Perceptual1000. Every search takes a bound and looks for blocks strictly below it. It returns the
/// true error of the words it gives, also when it finds nothing and gives those of its seed, which may then be above the bound.
#pragma once

#include "Codecs/ETC/EtcBaseColours.h"

namespace zortexture
{
struct EtcSearchSpace;

/// The halves of both splits, in the order of EtcHalves.
enum EtcHalf
{
	kLeftHalf,
	kRightHalf,
	kTopHalf,
	kBottomHalf
};

/// A base colour for each half, and its error with the best table.
struct EtcHalves
{
	BaseColour colours[4];
	unsigned int errors[4];
	bool isFlipped; ///< Top and bottom together are strictly better than left and right.
};

// ---- Seeds: base colours are the rounded means of the halves, in one mode alone. Differential colours too far apart are both replaced
// ---- by their mean. They return the error of the block, and the halves of both splits.

unsigned int compressBlockOnlyIndividualAverage(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                unsigned int& word1, unsigned int& word2, EtcHalves& halves);
unsigned int compressBlockOnlyIndividualAveragePerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                              unsigned int startY, unsigned int& word1, unsigned int& word2,
                                                              EtcHalves& halves);
unsigned int compressBlockOnlyDiffFlipAverage(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                              unsigned int& word1, unsigned int& word2, EtcHalves& halves);
unsigned int compressBlockOnlyDiffFlipAveragePerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                            unsigned int startY, unsigned int& word1, unsigned int& word2,
                                                            EtcHalves& halves);

// ---- All blocks of a mode, the first one on a tie: colours count up from black, blue fastest. `space` is scratch memory that carries
// ---- nothing from call to call.

/// Both 4-bit colours. On a tie of the splits, left and right.
unsigned int compressBlockIndividualExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                               unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space);
unsigned int compressBlockIndividualExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                         unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                         EtcSearchSpace& space);

/// All pairs of 5-bit colours within reach of the delta. The first colour counts before the second, the split last.
unsigned int compressBlockDifferentialExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space);
unsigned int compressBlockDifferentialExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                           unsigned int startY, unsigned int& word1, unsigned int& word2,
                                                           unsigned int bound, EtcSearchSpace& space);

/// All planes, in packed form. `seedErrors` are the errors in R, G and B of compressBlockPlanar57's block, on the scale of the search:
/// they bound each channel apart. A channel that cannot be part of a block within the bound keeps the seed's.
unsigned int compressBlockPlanar57Exhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound,
                                             const unsigned int (&seedErrors)[3]);
unsigned int compressBlockPlanar57ExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       const unsigned int (&seedErrors)[3]);

/// All pairs of 4-bit colours, in packed form. The channels count R, G, B; in each the colour that carries the distance counts before
/// the plain one.
unsigned int compressBlockTHUMB59TExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space);
unsigned int compressBlockTHUMB59TExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       EtcSearchSpace& space);

/// All pairs of different 4-bit colours, in packed form. The channels count as for T; in each the lower colour counts first.
unsigned int compressBlockTHUMB58HExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space);
unsigned int compressBlockTHUMB58HExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       EtcSearchSpace& space);
} // namespace zortexture
