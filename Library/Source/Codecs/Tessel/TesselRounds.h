/// @file TesselRounds.h
/// The fast compressors in vectors, block by block through all steps of a round and without what did not change since the round before.
/// The results are those of the compressor classes run by their wrapper.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Pixel.h"
#include "Simd/SimdLevel.h"

namespace zortexture
{
/// What is asked for.
struct TesselRoundsTask
{
	const Pixel<unsigned char>* pixels;
	unsigned int width;
	unsigned int height;
	bool is2bpp;
	/// For the first colours.
	bool overlapWindow;
	unsigned int iterations;
	/// The blocks that the rounds correct: [0, roundsX) by [0, roundsY). The others keep their first colours and modulation.
	unsigned int roundsX;
	unsigned int roundsY;
};

/// What comes out, for every block in row order.
struct TesselRoundsResult
{
	/// Before the rounds.
	std::vector<unsigned int> firstA;
	std::vector<unsigned int> firstB;
	std::vector<unsigned int> coloursA;
	std::vector<unsigned int> coloursB;
	/// Word 0 of the blocks, and their mode flags.
	std::vector<std::uint32_t> modulation;
	std::vector<std::uint8_t> modeFlags;
};

/// Runs the compressor by the vector unit in use.
/// @return false, with nothing done, where there is none.
bool runTesselVectorRounds(const TesselRoundsTask& task, TesselRoundsResult& result);

/// Blocks to work on, and the arrays that their places index.
struct TesselRound
{
	/// Places in row order, by * blocksX + bx.
	const std::uint32_t* blocks;
	std::size_t count;
	unsigned int blocksX;

	const Pixel<unsigned char>* pixels;
	std::size_t pitch;

	/// The colours of the round: rows of `stride`, with a row and a column around them that wrap, and two more columns of fill.
	const std::uint32_t* coloursA;
	const std::uint32_t* coloursB;
	std::size_t stride;

	/// In eighths, a block's pixels row by row.
	std::uint8_t* weights;
	/// The chosen modes.
	std::uint8_t* modes;

	/// Whether modulations are chosen before the colours are corrected, whether colours are corrected, and whether modulations are
	/// chosen after that.
	bool choosesFirst;
	bool corrects;
	bool choosesLast;

	/// For every one of `blocks` the corrected colours, and whether the modulation chosen last is another than before. Room for one more.
	std::uint32_t* newA;
	std::uint32_t* newB;
	std::uint8_t* isModulationNew;
};

template<ESimdLevel level>
void runTesselRound(const TesselRound& round, bool is2bpp);
} // namespace zortexture
