/// @file EtcTables.h
/// Constant tables of the published ETC1 and ETC2 block layouts, and the error ceilings that the searches start from.
#pragma once

#include <array>

namespace zortexture
{
/// Intensity modifiers from most negative to most positive, every row twice: table codeword t uses row 2t. The searches
/// count rows, in steps of 2.
inline constexpr int compressParams[16][4] = {{-8, -2, 2, 8},       {-8, -2, 2, 8},       {-17, -5, 5, 17},     {-17, -5, 5, 17},
                                              {-29, -9, 9, 29},     {-29, -9, 9, 29},     {-42, -13, 13, 42},   {-42, -13, 13, 42},
                                              {-60, -18, 18, 60},   {-60, -18, 18, 60},   {-80, -24, 24, 80},   {-80, -24, 24, 80},
                                              {-106, -33, 33, 106}, {-106, -33, 33, 106}, {-183, -47, 47, 183}, {-183, -47, 47, 183}};

/// The same eight rows once each, indexed by the table codeword.
inline constexpr int compressParamsFast[8][4] = {{-8, -2, 2, 8},     {-17, -5, 5, 17},   {-29, -9, 9, 29},     {-42, -13, 13, 42},
                                                 {-60, -18, 18, 60}, {-80, -24, 24, 80}, {-106, -33, 33, 106}, {-183, -47, 47, 183}};

/// Stored two-bit index (high bit * 2 + low bit) to the column of compressParams, and back.
inline constexpr unsigned int unscramble[4] = {2, 3, 1, 0};
inline constexpr unsigned int scramble[4] = {3, 2, 0, 1};

/// The distances of both T and H mode, by distance index.
inline constexpr unsigned char table58H[8] = {3, 6, 11, 16, 23, 32, 41, 64};

/// Errors that no block exceeds, the value a search starts from: plain squares, and squares weighted by 299, 587 and 114.
inline constexpr unsigned int kBlockErrorCeiling = 16 * 3 * 255 * 255;
inline constexpr unsigned int kBlockErrorCeilingPerceptual1000 = 16 * 65025 * 1000;

/// v clamped to a byte, at index v + 255 for v from -255 to 510: what a base plus a modifier can reach.
inline constexpr std::array<int, 768> clamp_table = []
{
	std::array<int, 768> table{};
	for (int value = -255; value <= 512; ++value)
	{
		table[static_cast<unsigned int>(value + 255)] = value < 0 ? 0 : (value > 255 ? 255 : value);
	}
	return table;
}();
} // namespace zortexture
