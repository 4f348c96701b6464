/// @file EtcFastSearch.h
/// The searches of the fast ETC quality levels, which are also the seeds and upper bounds of the exhaustive ones.
///
/// Every search reads a 4 x 4 block of an image of 3 bytes a pixel (R, G, B), given as image, width in pixels and the block's first
/// column and row. Searches of individual and differential blocks give the two words as stored, searches of T, H and
/// planar blocks give the packed form that the stuffing functions take.
///
/// Errors come on three scales that are never compared with each other by a search:
/// - plain: dR*dR + dG*dG + dB*dB, at most kBlockErrorCeiling a block;
/// - perceptual: the same squares weighted 0.299, 0.587, 0.114, in floating point ("Perceptual", "percep");
/// - scaled perceptual: weighted 299, 587, 114, in integers, at most kBlockErrorCeilingPerceptual1000 a block ("percep1000",
///   "perceptual1000").
#pragma once

namespace zortexture
{
/// Two colours, R, G, B each: of 8 bits or packed to the 4 bits of T and H blocks, as the function says.
using EtcColourPair = unsigned char[2][3];
/// The four colours that a texel of a T or H block can take, by stored index.
using EtcPaintColours = unsigned char[4][3];

// ---- Block errors. `decoded` is the 4 x 4 block as decoded, 12 bytes a row.

/// Plain error of a decoded block.
double calcBlockErrorRGB(const unsigned char* source, const unsigned char* decoded, unsigned int width, unsigned int startX,
                         unsigned int startY);
/// Perceptual error of a decoded block, in double precision and not scaled.
double calcBlockPerceptualErrorRGB(const unsigned char* source, const unsigned char* decoded, unsigned int width, unsigned int startX,
                                   unsigned int startY);
/// Plain error over the texels whose alpha is 129 or more. The alpha plane has one byte a pixel and the source's width.
double calcBlockErrorRGBA(const unsigned char* source, const unsigned char* decoded, const unsigned char* alpha, unsigned int width,
                          unsigned int startX, unsigned int startY);
/// True if any of the block's 16 alpha bytes is below 128.
bool hasAlpha(const unsigned char* alpha, unsigned int startX, unsigned int startY, unsigned int width);

// ---- Means of the half blocks of 2 x 4 (width x height) and 4 x 2 texels, and their quantisation.

void computeAverageColor2x4noQuantFloat(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                        float (&mean)[3]);
void computeAverageColor4x2noQuantFloat(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                        float (&mean)[3]);

/// Quantises a mean to 4 or 5 bits a channel so that the errors of the three channels differ least: what they have in
/// common is a change of brightness, which the modifiers can take back, while their differences are a tint, which stays.
void quantize444ColorCombined(const float (&mean)[3], int (&quantised)[3]);
void quantize555ColorCombined(const float (&mean)[3], int (&quantised)[3]);
void quantize444ColorCombinedPerceptual(const float (&mean)[3], int (&quantised)[3]);
void quantize555ColorCombinedPerceptual(const float (&mean)[3], int (&quantised)[3]);

// ---- Modifier tables on a half block. `base` is the base colour in 8 bits, `row` an even row of compressParams.
// ---- The index bits of texel (x, y) of the half stand at bit x*4 + y of both results, so those of a 4 x 2 half reach bit 13.

/// The nearest of the row's four colours for every texel, the lower modifier on a tie; returns the summed error.
unsigned int compressBlockWithTable2x4(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits);
unsigned int compressBlockWithTable4x2(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits);
float compressBlockWithTable2x4percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits);
float compressBlockWithTable4x2percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits);
unsigned int compressBlockWithTable2x4percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits);
unsigned int compressBlockWithTable4x2percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], int row, unsigned int& highBits, unsigned int& lowBits);

/// The best of the eight tables, the first on a tie; `table` is the codeword 0 to 7. Returns its error.
unsigned int tryalltables_3bittable2x4(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits);
unsigned int tryalltables_3bittable4x2(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                       const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits);
float tryalltables_3bittable2x4percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits);
float tryalltables_3bittable4x2percep(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits, unsigned int& lowBits);
unsigned int tryalltables_3bittable2x4percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits,
                                                 unsigned int& lowBits);
unsigned int tryalltables_3bittable4x2percep1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 const unsigned char (&base)[3], unsigned int& table, unsigned int& highBits,
                                                 unsigned int& lowBits);

// ---- Individual and differential blocks. The words are as stored; the caller decodes them to learn their error.

/// Base colours are the rounded means of the halves.
void compressBlockDiffFlipAverage(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                  unsigned int& word1, unsigned int& word2);
/// The same with tables chosen by perceptual error.
void compressBlockDiffFlipAveragePerceptual(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                            unsigned int& word1, unsigned int& word2);
/// Base colours are the jointly quantised means of the halves.
void compressBlockDiffFlipCombined(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                   unsigned int& word1, unsigned int& word2);
/// The same with quantisation and tables chosen by perceptual error.
void compressBlockDiffFlipCombinedPerceptual(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2);

/// The differential block of the one-bit-alpha format. `isTransparent` picks between a block that may hold transparent texels (opaque
/// bit 0: one modifier less) and an opaque one; texels of alpha below 128 take the transparent index and add no error in
/// both. Returns the plain error over the others.
int compressBlockDifferentialWithAlpha(bool isTransparent, const unsigned char* source, const unsigned char* alpha, unsigned int width,
                                       unsigned int startX, unsigned int startY, unsigned int& word1, unsigned int& word2);

// ---- Planar blocks.

/// The planar block, in packed form, whose plane fits the texels best by least squares.
void compressBlockPlanar57(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                           unsigned int& word2);

/// A matrix of `height` rows and `width` columns, row-major.
struct dMatrix
{
	int width;
	int height;
	double* data;
};

/// The product, newly allocated with its data by array new and owned by the caller. When the inner dimensions differ it says so on standard
/// output and goes on with the terms that both have.
dMatrix* multiplyMatrices(const dMatrix* left, const dMatrix* right);
/// Turns the matrix in place.
void transposeMatrix(dMatrix* matrix);

// ---- Two representative colours of a block, 8 bits a channel, by randomly seeded clustering (see EtcClustering.cpp).

void computeColorLBG(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, EtcColourPair& colours);
void computeColorLBGfast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, EtcColourPair& colours);
void computeColorLBGNotIntensity(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                 EtcColourPair& colours);
void computeColorLBGNotIntensityFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                     EtcColourPair& colours);
void computeColorLBGHalfIntensityFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      EtcColourPair& colours);

// ---- Companions of the T and H searches.

/// Two colours of 8 bits to the given depths, at most 8 bits a channel.
void compressColor(unsigned int bitsR, unsigned int bitsG, unsigned int bitsB, const EtcColourPair& colours, EtcColourPair& packed);
void copyColors(const EtcColourPair& source, EtcColourPair& destination);
void swapColors(EtcColourPair& colours);
/// Orders two 4-bit colours, read as 12-bit numbers, the lower first; equal ones are pulled apart by one step, since in an
/// H block their order carries a bit.
void sortColorsRGB444(EtcColourPair& colours);

/// The four colours of a T or H block from its two colours in 8 bits. The pattern has to be kEtcPatternT or kEtcPatternH;
/// with any other one only the fourth colour is set, and a line goes to standard output.
void calculatePaintColors59T(unsigned int distance, unsigned int pattern, const EtcColourPair& colours, EtcPaintColours& paint);
void calculatePaintColors58H(unsigned int distance, unsigned int pattern, const EtcColourPair& colours, EtcPaintColours& paint);
inline constexpr unsigned int kEtcPatternH = 0;
inline constexpr unsigned int kEtcPatternT = 1;

/// The stored index word from indices of two bits in raster order, the first texel in the top bits.
unsigned int indexConversion(unsigned int indices);
/// Packs T form and index word. `indices` is in raster order.
void packBlock59T(const EtcColourPair& colours, unsigned int distance, unsigned int indices, unsigned int& word1, unsigned int& word2);
/// Packs H form and index word from colours in ascending order: the low bit of the distance is put into the order of
/// the stored colours, and the indices follow an exchange. `indices` is in raster order.
void packBlock58H(const EtcColourPair& colours, unsigned int distance, unsigned int indices, unsigned int& word1, unsigned int& word2);

// ---- The best distance and the indices (raster order) for given 4-bit colours; returns their error.

/// Tries both orders of the colours and leaves them in the better one, the given one on a tie.
unsigned int calculateError59T(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                               EtcColourPair& colours, unsigned int& distance, unsigned int& indices);
unsigned int calculateError59Tperceptual1000(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             EtcColourPair& colours, unsigned int& distance, unsigned int& indices);
/// Texels of alpha 0 add no error and take index 2; all others keep clear of it.
unsigned int calculateError59TAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX,
                                    unsigned int startY, EtcColourPair& colours, unsigned int& distance, unsigned int& indices);
/// Only the given order of the colours.
unsigned int calculateError59TnoSwap(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                     const EtcColourPair& colours, unsigned int& distance, unsigned int& indices);
unsigned int calculateError59TnoSwapPerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                   unsigned int startY, const EtcColourPair& colours, unsigned int& distance,
                                                   unsigned int& indices);

unsigned int calculateErrorAndCompress58H(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                          const EtcColourPair& colours, unsigned int& distance, unsigned int& indices);
unsigned int calculateErrorAndCompress58Hperceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                        unsigned int startY, const EtcColourPair& colours, unsigned int& distance,
                                                        unsigned int& indices);
/// Texels of alpha 0 are matched, with every index but the one that packBlock58H turns into 2; all others add no error
/// and take that one. A texel of an alpha other than 0 and 255 is reported on standard output.
unsigned int calculateErrorAndCompress58HAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width,
                                               unsigned int startX, unsigned int startY, const EtcColourPair& colours,
                                               unsigned int& distance, unsigned int& indices);

// ---- T blocks, in packed form. All return their error, on the scale of their name.

/// From one clustering.
double compressBlockTHUMB59TFastest(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                    unsigned int& word1, unsigned int& word2);
unsigned int compressBlockTHUMB59TFastestPerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                        unsigned int startY, unsigned int& word1, unsigned int& word2);
/// The best of three clusterings.
double compressBlockTHUMB59TFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                 unsigned int& word1, unsigned int& word2);
/// For the one-bit-alpha format: texels of alpha 0 are transparent.
double compressBlockTHUMB59TAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX,
                                  unsigned int startY, unsigned int& word1, unsigned int& word2);

// Their OnlyColor forms are public, see ETCCodec.h.

// ---- H blocks, likewise.

double compressBlockTHUMB58HFastest(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                    unsigned int& word1, unsigned int& word2);
unsigned int compressBlockTHUMB58HFastestPerceptual1000(const unsigned char* source, unsigned int width, unsigned int startX,
                                                        unsigned int startY, unsigned int& word1, unsigned int& word2);
double compressBlockTHUMB58HFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                 unsigned int& word1, unsigned int& word2);
double compressBlockTHUMB58HAlpha(const unsigned char* source, const unsigned char* alpha, unsigned int width, unsigned int startX,
                                  unsigned int startY, unsigned int& word1, unsigned int& word2);
} // namespace zortexture
