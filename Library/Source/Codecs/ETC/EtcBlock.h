/// @file EtcBlock.h
/// ETC1 and ETC2 colour blocks in memory, and their decoders.
///
/// A block is a pair of 32-bit words in native form; files hold both big-endian. In the first word bit 0 is the flip bit, bit 1
/// the diff bit (the opaque bit of the one-bit-alpha format), bits 7..5 and 4..2 the table codewords of the two sub-blocks, and
/// the base colours stand above. In the second word texel (x, y) has number x*4+y; the high bit of its index is bit
/// 16 + number, the low bit is bit number.
///
/// T, H and planar blocks also have a packed form without the bits that only signal the mode; the searches work on it:
/// - T: R0 26..23, G0 22..19, B0 18..15, R1 14..11, G1 10..7, B1 6..3, distance index 2..0.
/// - H: R0 25..22, G0 21..18, B0 17..14, R1 13..10, G1 9..6, B1 5..2, the two high bits of the distance index 1..0. The low bit
///   is 1 when the 12-bit value of colour 0 is at least that of colour 1.
/// - Planar: first word RO 31..26, GO 25..19, BO 18..13, RH 12..7, GH 6..0; second word BH 31..26, RV 25..20, GV 19..13,
///   BV 12..7. The second word of T and H is the stored index word.
///
/// Decoders write the 4 by 4 block whose top left texel is (startX, startY) of an image of `width` texels a row, three bytes
/// R, G, B a texel; the alpha plane of the one-bit-alpha format is one byte a texel with the same width.
#pragma once

#include <cstddef>

namespace zortexture
{
/// The texels of one block apart from their image, as searches with width 4 and position 0,0 take them: rows from the top.
struct TexelBlock
{
	unsigned char colours[4 * 4 * 3]; ///< R, G, B.
	unsigned char alphas[4 * 4];
};

/// The number of texel (x, y) in an image of `width` texels a row; sides may be as large as the 32-bit type allows.
constexpr std::size_t texelIndex(unsigned int width, unsigned int x, unsigned int y)
{
	return static_cast<std::size_t>(y) * width + x;
}

/// A channel value limited to 0..255.
constexpr unsigned char clamp(int value)
{
	return static_cast<unsigned char>(value < 0 ? 0 : (value > 255 ? 255 : value));
}

/// A channel of `bits` bits (4 to 7) spread over 8 by repeating its high bits.
constexpr unsigned int expandBits(unsigned int value, unsigned int bits)
{
	return (value << (8 - bits)) | (value >> (2 * bits - 8));
}

/// The bit at position `from` of a word, moved to position `to`; all other bits are 0.
constexpr unsigned int getbit(unsigned int word, unsigned int from, unsigned int to)
{
	return ((word >> from) & 1) << to;
}

/// The three-bit two's complement number whose lowest bit is bit `lowBit` of the word.
constexpr int signedDelta(unsigned int word, unsigned int lowBit)
{
	return static_cast<int>(((word >> lowBit) & 7) ^ 4) - 4;
}

/// Sets the alpha of the 16 texels of a block.
void fillAlpha(unsigned char* alpha, unsigned char value, unsigned int width, unsigned int startX, unsigned int startY);

/// @name Packed form to stored form. The wasted bits are chosen so that the sum which signals the mode overflows, and the sums
/// looked at before it do not. The DiffFalse forms write a diff bit of 0: one-bit-alpha blocks with a transparent texel.
/// @{
void stuff59bits(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2);
void stuff59bitsDiffFalse(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2);
void stuff58bits(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2);
void stuff58bitsDiffFalse(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2);
void stuff57bits(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2);
/// @}

/// @name Stored form to packed form.
/// @{
void unstuff59bits(unsigned int word1, unsigned int word2, unsigned int& packed1, unsigned int& packed2);
void unstuff58bits(unsigned int word1, unsigned int word2, unsigned int& packed1, unsigned int& packed2);
void unstuff57bits(unsigned int word1, unsigned int word2, unsigned int& packed1, unsigned int& packed2);
/// @}

/// Two colours of the given depths (4 to 7 bits a channel) expanded to 8 bits a channel.
void decompressColor(unsigned int bitsR, unsigned int bitsG, unsigned int bitsB, const unsigned char (&packed)[2][3],
                     unsigned char (&colours)[2][3]);

/// The four paint colours of a T or H block by stored index, from its two colours at 8 bits a channel.
void paintColoursT(unsigned int distanceIndex, const unsigned char (&colours)[2][3], unsigned char (&paint)[4][3]);
void paintColoursH(unsigned int distanceIndex, const unsigned char (&colours)[2][3], unsigned char (&paint)[4][3]);

/// Any block of ETC1, ETC2 RGB or the colour half of ETC2 RGBA, in stored form.
void decompressBlockETC2(unsigned int word1, unsigned int word2, unsigned char* image, unsigned int width, unsigned int startX,
                         unsigned int startY);
/// Any block of the one-bit-alpha format, in stored form. `alpha` becomes 0 or 255.
void decompressBlockETC21BitAlpha(unsigned int word1, unsigned int word2, unsigned char* image, unsigned char* alpha, unsigned int width,
                                  unsigned int startX, unsigned int startY);

/// Individual and differential mode, stored form. A differential sum out of range wraps to 5 bits.
void decompressBlockDiffFlip(unsigned int word1, unsigned int word2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY);
/// Differential mode with transparent texels, stored form.
void decompressBlockDifferentialWithAlpha(unsigned int word1, unsigned int word2, unsigned char* image, unsigned char* alpha,
                                          unsigned int width, unsigned int startX, unsigned int startY);

/// T and H mode, packed form. In the alpha forms index 2 is transparent black.
void decompressBlockTHUMB59T(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY);
void decompressBlockTHUMB59TAlpha(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned char* alpha,
                                  unsigned int width, unsigned int startX, unsigned int startY);
void decompressBlockTHUMB58H(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY);
void decompressBlockTHUMB58HAlpha(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned char* alpha,
                                  unsigned int width, unsigned int startX, unsigned int startY);

/// Planar mode, packed form.
void decompressBlockPlanar57(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY);
/// Decodes into `decoded`, a 4 by 4 block of its own, and gives the summed squared error of each channel against the block at
/// (startX, startY) of `source`, which is `width` texels a row.
void decompressBlockPlanar57errorPerComponent(unsigned int packed1, unsigned int packed2, unsigned char* decoded, unsigned int width,
                                              unsigned int startX, unsigned int startY, const unsigned char* source, unsigned int& errorRed,
                                              unsigned int& errorGreen, unsigned int& errorBlue);
} // namespace zortexture
