/// @file EtcFastKernels.h
/// The searches of the fast levels in their vector forms. The plain forms are those of EtcFastSearch.h, which EtcLadder.cpp puts together;
/// here the same choices are made by comparing numbers that need not be the errors themselves as long as they order the candidates alike.
#pragma once

#include <cstdint>

#include "Codecs/ETC/EtcBlock.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
/// The measure that a search goes by: plain squares, or squares weighted by 299, 587 and 114.
enum class EtcMeasure
{
	Plain,
	Perceptual
};

/// The texels of a block as the vector searches read them: texel (x, y) stands at x*4 + y, the order of the stored index bits, as the pairs
/// (R, G) and (B, 0) of 16-bit numbers.
///
/// An error |t - c|^2 is |t|^2 - 2 t.c + |c|^2. The first term is the same for all colours c, so that a search needs two sums of products a
/// colour for the rest; they take the texels times -2.
struct EtcTexelPairs
{
	alignas(32) std::int32_t redGreen[16];
	alignas(32) std::int32_t blue[16];
	alignas(32) std::int32_t redGreenFactor[16];
	alignas(32) std::int32_t blueFactor[16];
};

constexpr int pairOf(int first, int second)
{
	return static_cast<int>(static_cast<unsigned int>(second) << 16 | (static_cast<unsigned int>(first) & 0xFFFF));
}

/// A block and its error in integers of the measure.
struct EtcCandidate
{
	unsigned int word1;
	unsigned int word2;
	unsigned int error;
};

/// The better of the individual and differential blocks by averages and by joint quantisation, words as stored. Of a block by averages
/// whose error is that of a different block by joint quantisation the first is given, the second in `rival`, and `isOpen` is set: as
/// perceptual errors in floating point they may differ.
template<ESimdLevel level, EtcMeasure measure>
EtcCandidate searchDiffFlipFast(const EtcTexelPairs& texels, EtcCandidate& rival, bool& isOpen);

/// The best table of a half in the one-bit-alpha format, the first on a tie, with index bits by number of the texel; see
/// EtcPunchThrough.cpp. The error is the plain one over the opaque texels.
struct EtcHalfTable
{
	unsigned int error;
	unsigned int table;
	unsigned int highBits;
	unsigned int lowBits;
};
template<ESimdLevel level>
EtcHalfTable searchPunchThroughTables(bool isTransparent, const unsigned char (&texels)[8][3], unsigned int opaque,
                                      const unsigned char (&base)[3]);

/// The planar block by least squares.
struct EtcPlanarFit
{
	unsigned int levels[3][3]; ///< By channel, of 6 bits and in green of 7: at the origin, to the right, and down.
	unsigned int error;
};
template<ESimdLevel level, EtcMeasure measure>
EtcPlanarFit fitPlanarFast(const EtcTexelPairs& texels);

/// The clusterings by their space and by what they do when an error is met again.
enum class EtcClustering
{
	HalfIntensityFast,
	NotIntensityFast,
	Fast,
	NotIntensity,
	All
};

/// Two colours in 8 bits. `colours` are 16 texels R, G, B in rows.
template<ESimdLevel level, EtcClustering clustering>
void clusterColoursFast(const unsigned char (&colours)[48], unsigned char (&pair)[2][3]);

/// Whether no T or H block whatever can be strictly better than `error`, an error in integers of the measure. A bound by the hues that such
/// blocks can have; it holds for four blocks of ten in a photograph.
template<ESimdLevel level, EtcMeasure measure>
bool isBeyondPaintsFast(const EtcTexelPairs& texels, unsigned int error);

/// Sums of the weighted squares (see EtcTexelLanes.h) for two colours, by distance: of the H block, and of the T blocks whose second
/// colour, or first colour, carries the distance. In the plain measure they are the errors.
struct EtcPaintSums
{
	alignas(32) std::int32_t h[8];
	alignas(32) std::int32_t t[2][8];
};
template<ESimdLevel level, EtcMeasure measure>
void sumPaintsFast(const EtcTexelPairs& texels, const unsigned char (&pair)[2][3], EtcPaintSums& sums);

/// Sums for the T blocks of the one-bit-alpha format, over the texels that are `opaque` by their place: these do without the second colour
/// as it is, whose index is transparent.
template<ESimdLevel level>
void sumPunchThroughPaints(const EtcTexelPairs& texels, unsigned int opaque, const unsigned char (&pair)[2][3], std::int32_t (&t)[2][8]);

/// The error of four paint colours, the lowest index on a tie; `indices` is the stored word.
template<ESimdLevel level, EtcMeasure measure>
unsigned int matchPaintsFast(const EtcTexelPairs& texels, const unsigned char (&paint)[4][3], unsigned int& indices);

/// The same for such a T block: opaque texels keep clear of index 2, and the others take it and add no error.
template<ESimdLevel level>
unsigned int matchPunchThroughPaints(const EtcTexelPairs& texels, unsigned int opaque, const unsigned char (&paint)[4][3],
                                     unsigned int& indices);

/// The greatest sum of weighted squares that may belong to an error as small as that of the sum `least`. The perceptual weights of the sums
/// stand to the true ones as 183.94 to 184.22 does to 1, so that a sum that is greater by more than 1/512 belongs to the greater error.
template<EtcMeasure measure>
constexpr int reachOfSum(int least)
{
	return measure == EtcMeasure::Plain ? least : least + (least >> 9) + 1;
}
} // namespace zortexture
