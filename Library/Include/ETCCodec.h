/// @file ETCCodec.h
/// Entry points of the ETC family: ETC1, ETC2 with and without alpha, and the one- and two-channel EAC formats. The
/// uncompressed side is tightly packed rows of the texture's own size; the compressed side is whole 4 by 4 blocks in rows.
///
/// | Format                     | Uncompressed texel              | Bytes a block |
/// |----------------------------|---------------------------------|---------------|
/// | ePF_ETC1, ePF_ETC2_RGB     | R, G, B bytes                   | 8             |
/// | ePF_ETC2_RGBA              | R, G, B, A bytes                | 16            |
/// | ePF_ETC2_RGB_A1            | R, G, B, A bytes                | 8             |
/// | ePF_EAC_R11                | one 16-bit value                | 8             |
/// | ePF_EAC_RG11               | two 16-bit values, red first    | 16            |
#ifndef ZORT_ETC_CODEC_H
#define ZORT_ETC_CODEC_H

#include "ZORTDefines.h"

namespace zortexture
{
/// Decodes one image; nothing is written outside width x height texels. ETC1 blocks are read as ETC2 ones.
/// @param source       the blocks of both sides rounded up to a multiple of 4.
/// @param destination  16-bit values are written in the machine's byte order and need no alignment.
/// @param isSigned     the EAC formats hold signed values.
/// @return width * height * bytes of a texel, also as the answer to a size query (a null pointer); 0 for any other format.
ZORT_API unsigned int ETCDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                                    unsigned int format, bool isSigned);

/// Encodes one image.
/// @param source    16-bit values are read in the machine's byte order and need no alignment. Sides that are no multiple of 4 are
///                  padded with the last real columns and rows, shifted into the pad.
/// @param quality   0 fast, 1 fast perceptual, 2 (or 4) exhaustive, 3 (or 5) exhaustive perceptual; ePF_ETC2_RGB_A1 and the EAC
///                  formats have one search whatever the quality. The exhaustive ones find the block of least error that the format
///                  has, and take some hundred times as long as the fast ones. Below 0 the colour words of the other formats are
///                  not encoded, only those found in `destination` are byte-swapped.
/// @param isSigned  the EAC formats hold signed values; at qualities up to 3 the other formats refuse it.
/// @return bytes written, also as the answer to a size query (a null pointer or an empty image); 0 for a quality above 5 or a
///         combination that is not supported, and, with a line on standard output, when the tables of an exhaustive search find no
///         memory.
ZORT_API unsigned int ETCCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height, int quality,
                                  unsigned int format, bool isSigned);

/// Decodes ETC1 blocks to four bytes R, G, B, 255 a texel. A decoder of individual and differential mode alone: a block of any other
/// mode comes out as a differential one.
/// @param destination  receives whole blocks in rows of `width` texels: when a side of 4 or more is no multiple of 4, it needs room
///                     for both sides rounded up, and what crosses the right edge lands in the following row. With a side below 4
///                     exactly width * height texels are written.
/// @param mode         has no effect.
/// @return the bytes of compressed data of a texture whose sides are whole blocks: half the product of the sides, each taken as at
///         least 4 if one of them is below 4.
ZORT_API int ZORTDecompressETC(const void* source, const unsigned int& width, const unsigned int& height, void* destination,
                               const int& mode);

/// Widens an image to a multiple of 4 by repeating the last pixel of every row.
/// @param image    array-new memory; freed and replaced when the image is widened.
/// @param bitRate  a pixel has bitRate * 3 / 8 bytes.
/// @return true when the image was widened. False, with a line on standard output, when the width already divides by 4 (the sizes
///         are then reported unchanged) or memory is short.
ZORT_API bool expandToWidthDivByFour(unsigned char*& image, int width, int height, int& expandedWidth, int& expandedHeight, int bitRate);

/// The two colours that the fastest T search finds for the block at (startX, startY) of an R, G, B image of `width` texels a row, as
/// 12-bit integers R << 8 | G << 4 | B; colour 1 is the one that carries the distance.
/// @return the error of the block, in plain squares or in squares weighted by 299, 587 and 114.
ZORT_API double compressBlockTHUMB59TFastestOnlyColor(const unsigned char* image, unsigned int width, unsigned int startX,
                                                      unsigned int startY, unsigned int& colour0, unsigned int& colour1);
ZORT_API double compressBlockTHUMB59TFastestOnlyColorPerceptual1000(const unsigned char* image, unsigned int width, unsigned int startX,
                                                                    unsigned int startY, unsigned int& colour0, unsigned int& colour1);
} // namespace zortexture

#endif // ZORT_ETC_CODEC_H
