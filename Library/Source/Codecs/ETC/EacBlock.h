/// @file EacBlock.h
/// EAC blocks: one channel of 4 by 4 texels in 8 bytes, as the alpha half of ETC2 RGBA (8 bits) and as the channels of the one- and
/// two-channel formats (11 bits, spread over 16 in memory).
///
/// Byte 0 is the base (two's complement in signed blocks), byte 1 multiplier << 4 | table, then 16 three-bit indices from the most
/// significant bit on, texels in columns: x = 0 from y = 0 to 3, then x = 1.
#pragma once

#include <array>
#include <cstdint>

namespace zortexture
{
/// The negative modifiers of each table, from large to small magnitude. The others mirror them: -m - 1.
inline constexpr int alphaBase[16][4] = {{-15, -9, -6, -3}, {-13, -10, -7, -3}, {-13, -8, -5, -2}, {-13, -6, -4, -2},
                                         {-12, -8, -6, -3}, {-11, -9, -7, -3},  {-11, -8, -7, -4}, {-11, -8, -5, -3},
                                         {-10, -8, -6, -2}, {-10, -8, -5, -2},  {-10, -8, -4, -2}, {-10, -7, -5, -2},
                                         {-10, -7, -4, -3}, {-10, -3, -2, -1},  {-9, -8, -6, -4},  {-9, -7, -5, -3}};

/// The modifier of an index (0 to 7) of a table.
constexpr int alphaModifier(unsigned int table, unsigned int index)
{
	return index < 4 ? alphaBase[table][3 - index] : -alphaBase[table][7 - index] - 1;
}

/// Modifier times multiplier for each index; the row number is byte 1 of a block. A row's entries 0 to 3 fall and 4 to 7 rise.
using AlphaTable = std::array<std::array<int, 8>, 256>;
inline constexpr AlphaTable alphaTable = []
{
	AlphaTable rows{};
	for (unsigned int row = 0; row < 256; ++row)
	{
		for (unsigned int index = 0; index < 8; ++index)
		{
			rows[row][index] = alphaModifier(row & 15, index) * static_cast<int>(row >> 4);
		}
	}
	return rows;
}();

/// The 16-bit pattern that the parameters of an 11-bit block decode to. In the signed case `base` is the stored byte plus 128.
std::uint16_t get16bits11bits(int base, unsigned int table, unsigned int multiplier, unsigned int index, bool isSigned);
std::uint16_t get16bits11signed(int base, unsigned int table, unsigned int multiplier, unsigned int index);

/// Where the value tables hold the value of a parameter set; the 8 values of a set stand together.
constexpr std::uint32_t getPremulIndex(std::uint32_t base, std::uint32_t table, std::uint32_t multiplier, std::uint32_t index)
{
	return (base << 11) + (table << 7) + multiplier * 8 + index;
}

/// What get16bits11bits returns for every parameter set (524288 entries), so that the search needs no arithmetic for a candidate.
/// Built at first use, which any number of threads may make at once.
const std::uint16_t* valueTableUnsigned();
const std::uint16_t* valueTableSigned();

/// Writes bytes 2 to 7 of a block: the three-bit indices of the texels in column order.
void packEacIndices(const unsigned int (&indices)[16], unsigned char* block);

/// Decodes the 4 by 4 texels at (startX, startY) of an image of `width` values a row.
void decompressBlockAlpha(const unsigned char* block, unsigned char* image, unsigned int width, unsigned int startX, unsigned int startY,
                          const AlphaTable& table);
void decompressBlockAlpha16bit(const unsigned char* block, std::uint16_t* image, unsigned int width, unsigned int startX,
                               unsigned int startY, bool isSigned);

/// Encode 8-bit values: the fast search tries the rows whose spread fits the texels, the slow one all of them.
void compressBlockAlphaFast(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width, unsigned char* block,
                            const AlphaTable& table);
void compressBlockAlphaSlow(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width, unsigned char* block,
                            const AlphaTable& table);

/// Encodes 16-bit values with the parameter set of the least error, the first of equals in the order of bases, tables and multipliers.
/// `step` is the number of values from one texel to the next (1 or 2), `width` a row's length in texels, `valueTable` the one of the same
/// signedness.
void compressBlockAlpha16(const std::uint16_t* source, unsigned int step, unsigned int startX, unsigned int startY, unsigned int width,
                          unsigned char* block, bool isSigned, const std::uint16_t* valueTable);

/// The error of one parameter set, or a number above `bound` once the sum has reached it. Differences are taken in 16 bits and
/// wrap: 65535 and 0 are one apart, in unsigned blocks too.
double calcError(const std::uint16_t* source, unsigned int step, unsigned int startX, unsigned int startY, unsigned int width,
                 unsigned int base, unsigned int table, unsigned int multiplier, double bound, const std::uint16_t* valueTable,
                 bool isSigned);
} // namespace zortexture
