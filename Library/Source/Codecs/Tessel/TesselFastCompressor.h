/// @file TesselFastCompressor.h
/// The walks over blocks that the fast compressors of both bit rates and generations have in common. A compressor has the fields of
/// TesselCompressor and one record a block.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "TesselFastModulation.h"

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

/// Encodes an image through a compressor and its wrapper; readOut(compressor) takes the blocks.
/// @return the bytes of the image's blocks; 0 when it holds no whole block.
template<typename Compressor, typename Wrapper, typename ReadOut>
unsigned encodeTesselFast(const void* in, unsigned width, unsigned height, bool overlapWindow, int iterations, ReadOut&& readOut)
{
	// Threads the structure is laid out for; the wrapper may reduce them.
	constexpr unsigned kWantedThreads = 64;
	Compressor compressor(in, width, height);
	if (compressor.blocksX == 0 || compressor.blocksY == 0)
	{
		return 0;
	}
	compressor.numberOfIterations = static_cast<unsigned>(std::max(iterations, 0));
	Wrapper wrapper(&compressor, kWantedThreads);
	wrapper.preprocess(overlapWindow);
	wrapper.compress();
	readOut(compressor);
	return width * height / (compressor.blockWidth / 2);
}

/// Packs all blocks. `place` gives the position of block (x, y), `setColours` writes the colours of the generation. Blocks whose
/// place lies past the end are dropped, places without a block are zero.
template<typename Compressor, typename Block, typename Place, typename SetColours>
void packTesselBlocks(const Compressor& compressor, Block* out, Place&& place, SetColours&& setColours)
{
	const std::uint64_t count = std::uint64_t(compressor.blocksX) * compressor.blocksY;
	std::fill_n(out, count, Block());
	forEachTesselBlock(compressor, 0, compressor.blocksX, 0, compressor.blocksY,
	                   [&](unsigned x, unsigned y, std::size_t index)
	                   {
		                   const std::uint64_t position = place(x, y);
		                   if (position < count)
		                   {
			                   packModulation(compressor.records[index], out[position]);
			                   setColours(out[position], compressor.coloursA[index], compressor.coloursB[index]);
		                   }
	                   });
}
} // namespace zortexture
