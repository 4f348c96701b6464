/// @file TesselFastCompressor.h
/// The walks over blocks that the fast compressors of both bit rates and generations have in common. A compressor has the fields of
/// TesselCompressor and one record a block.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "TesselFastModulation.h"
#include "TesselRounds.h"
#include "TesselTwiddle.h"

namespace zortexture
{
/// Blocks [firstX, endX) by [firstY, endY), cut to the image, as fn(x, y, index).
template<typename Compressor, typename Function>
void forEachTesselBlock(const Compressor& compressor, unsigned firstX, unsigned endX, unsigned firstY, unsigned endY, Function&& fn)
{
	for (unsigned y = firstY; y < std::min(endY, compressor.blocksY); ++y)
	{
		for (unsigned x = firstX; x < std::min(endX, compressor.blocksX); ++x)
		{
			fn(x, y, std::size_t(y) * compressor.blocksX + x);
		}
	}
}

template<typename Compressor>
void chooseTesselModulations(Compressor& compressor, unsigned firstX, unsigned endX, unsigned firstY, unsigned endY)
{
	forEachTesselBlock(compressor, firstX, endX, firstY, endY,
	                   [&compressor](unsigned x, unsigned y, std::size_t index)
	                   { chooseModulation(compressor.records[index], loadTesselBlock(compressor, x, y)); });
}

template<typename Compressor>
void correctTesselColours(Compressor& compressor, unsigned firstX, unsigned endX, unsigned firstY, unsigned endY)
{
	using Record = typename decltype(compressor.records)::value_type;
	forEachTesselBlock(compressor, firstX, endX, firstY, endY,
	                   [&compressor](unsigned x, unsigned y, std::size_t index)
	                   {
		                   float weights[TesselFit<Record>::kPixels];
		                   fitWeights(compressor.records[index], weights);
		                   fitTesselColours(loadTesselBlock(compressor, x, y), weights, TesselFit<Record>::kPixels,
		                                    TesselFit<Record>::kThreshold, compressor.coloursA[index], compressor.coloursB[index]);
	                   });
}

/// First colours, planes and modulations of all blocks.
template<typename Compressor>
void startTesselCompressor(Compressor& compressor, bool overlapWindow)
{
	compressor.calculateColoursAB(overlapWindow);
	compressor.interpolateColoursAB();
	compressor.calculateModulations(0, compressor.blocksX, 0, compressor.blocksY);
}

/// The rounds of a compressor that runs without a wrapper.
template<typename Compressor>
void runTesselRounds(Compressor& compressor)
{
	const unsigned interval = compressor.modulationRecalculationInterval;
	for (unsigned i = 0; i < compressor.numberOfIterations; ++i)
	{
		compressor.optimizeColoursAB(0, compressor.blocksX, 0, compressor.blocksY);
		compressor.interpolateColoursAB();
		if (interval != 0 && i % interval == 0)
		{
			compressor.calculateModulations(0, compressor.blocksX, 0, compressor.blocksY);
		}
	}
}

/// Divides the blocks into tiles, about one a thread, and calls fn(firstX, endX, firstY, endY) for each in rows. Tile sizes are
/// truncated; blocks of the remainder belong to no tile.
template<typename Function>
void forEachTesselTile(unsigned blocksX, unsigned blocksY, unsigned threads, Function&& fn)
{
	if (blocksX == 0 || blocksY == 0 || threads == 0)
	{
		return;
	}
	const unsigned side = static_cast<unsigned>(std::sqrt(static_cast<double>(threads)));
	const unsigned rest = threads / side;
	const unsigned tilesX = blocksX < side ? 1 : side;
	const unsigned tilesY = rest > blocksY ? 1 : rest;
	const unsigned tileWidth = blocksX / tilesX;
	const unsigned tileHeight = blocksY / tilesY;
	for (unsigned y = 0; y < tilesY; ++y)
	{
		for (unsigned x = 0; x < tilesX; ++x)
		{
			fn(x * tileWidth, (x + 1) * tileWidth, y * tileHeight, (y + 1) * tileHeight);
		}
	}
}

/// The rounds over tiles. The last correction of the colours is followed by no new planes or modulations.
template<typename Compressor>
void runTesselTiles(Compressor& compressor, unsigned threads)
{
	const auto forEachTile = [&compressor, threads](auto&& pass)
	{
		forEachTesselTile(compressor.blocksX, compressor.blocksY, threads, pass);
	};
	for (unsigned i = 0; i < compressor.numberOfIterations; ++i)
	{
		forEachTile([&compressor](unsigned firstX, unsigned endX, unsigned firstY, unsigned endY)
		            { compressor.calculateModulations(firstX, endX, firstY, endY); });
		compressor.interpolateColoursAB();
		forEachTile([&compressor](unsigned firstX, unsigned endX, unsigned firstY, unsigned endY)
		            { compressor.optimizeColoursAB(firstX, endX, firstY, endY); });
	}
}

/// Threads that the structure is laid out for; the wrapper of the first generation reduces them.
constexpr unsigned kWantedTesselThreads = 64;

/// Encodes an image through a compressor and its wrapper; readOut(compressor) takes the blocks.
template<typename Compressor, typename Wrapper, typename ReadOut>
void encodeTesselPlainly(const void* in, unsigned width, unsigned height, bool overlapWindow, unsigned iterations, ReadOut&& readOut)
{
	Compressor compressor(in, width, height);
	compressor.numberOfIterations = iterations;
	Wrapper wrapper(&compressor, kWantedTesselThreads);
	wrapper.preprocess(overlapWindow);
	wrapper.compress();
	readOut(compressor);
}

/// What an image through a compressor and its wrapper comes to, by vectors.
/// @param threads  those that tiles are laid out for.
/// @return false, with nothing done, where there is no vector unit.
template<typename Record>
bool encodeTesselInVectors(const void* in, unsigned width, unsigned height, bool overlapWindow, unsigned iterations, unsigned threads,
                           TesselRoundsResult& result)
{
	constexpr unsigned kBlockWidth = TesselFit<Record>::kPixels / 4;
	TesselRoundsTask task = {};
	task.pixels = static_cast<const TesselPixel*>(in);
	task.width = width;
	task.height = height;
	task.is2bpp = kBlockWidth == 8;
	task.overlapWindow = overlapWindow && TesselFit<Record>::kOverlaps;
	task.iterations = iterations;
	forEachTesselTile(width / kBlockWidth, height / 4, threads,
	                  [&task](unsigned /*firstX*/, unsigned endX, unsigned /*firstY*/, unsigned endY)
	                  {
		                  // Tiles lie side by side from the first block on.
		                  task.roundsX = std::max(task.roundsX, endX);
		                  task.roundsY = std::max(task.roundsY, endY);
	                  });
	return runTesselVectorRounds(task, result);
}

/// Packs all blocks. `place` gives the position of block (x, y), write(block, index) fills it. Blocks whose place lies past the end are
/// dropped, places without a block are zero.
template<typename Block, typename Place, typename Write>
void packTesselBlocks(unsigned blocksX, unsigned blocksY, Block* out, Place&& place, Write&& write)
{
	const std::uint64_t count = std::uint64_t(blocksX) * blocksY;
	std::fill_n(out, count, Block());
	std::size_t index = 0;
	for (unsigned y = 0; y < blocksY; ++y)
	{
		for (unsigned x = 0; x < blocksX; ++x, ++index)
		{
			const std::uint64_t position = place(x, y);
			if (position < count)
			{
				write(out[position], index);
			}
		}
	}
}

/// Packs the blocks of the first generation.
template<typename Write>
void packTesselFirstGeneration(unsigned blocksX, unsigned blocksY, TesselBlockData* out, bool twiddled, Write&& write)
{
	// The bits of both coordinates lie in places of their own.
	std::vector<std::uint64_t> columns(blocksX);
	for (unsigned x = 0; x < blocksX; ++x)
	{
		columns[x] = twiddled ? twiddledBlockIndex(blocksX, blocksY, x, 0) : x;
	}
	std::vector<std::uint64_t> rows(blocksY);
	for (unsigned y = 0; y < blocksY; ++y)
	{
		rows[y] = twiddled ? twiddledBlockIndex(blocksX, blocksY, 0, y) : std::uint64_t(y) * blocksX;
	}
	packTesselBlocks(
	    blocksX, blocksY, out, [&](unsigned x, unsigned y) { return columns[x] + rows[y]; }, write);
}

/// Packs the blocks of the second generation, which lie row by row.
template<typename Write>
void packTesselSecondGeneration(unsigned blocksX, unsigned blocksY, TesselIIBlockData* out, Write&& write)
{
	packTesselBlocks(
	    blocksX, blocksY, out, [blocksX](unsigned x, unsigned y) { return std::uint64_t(y) * blocksX + x; }, write);
}
} // namespace zortexture
