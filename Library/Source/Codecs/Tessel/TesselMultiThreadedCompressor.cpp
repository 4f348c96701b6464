#include <algorithm>
#include <cstdint>
#include <memory>
#include <unistd.h>

#include "TesselCodec.h"
#include "TesselCompressor.h"
#include "TesselFastCompressor.h"

namespace zortexture
{
namespace
{
/// No more than there are processors and blocks.
unsigned reducedThreads(unsigned wanted, unsigned blocksX, unsigned blocksY)
{
	const std::uint64_t online = static_cast<std::uint64_t>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L));
	return static_cast<unsigned>(std::min({online, std::uint64_t(wanted), std::uint64_t(blocksX) * blocksY}));
}

template<typename Compressor, typename Record>
unsigned compressFast(const void* in, void* out, unsigned width, unsigned height, bool overlapWindow, int iterations)
{
	constexpr unsigned kBlockWidth = TesselFit<Record>::kPixels / 4;
	const unsigned blocksX = width / kBlockWidth;
	const unsigned blocksY = height / 4;
	if (blocksX == 0 || blocksY == 0)
	{
		return 0;
	}
	auto* const blocks = static_cast<TesselBlockData*>(out);
	const unsigned rounds = static_cast<unsigned>(std::max(iterations, 0));
	TesselRoundsResult result;
	if (encodeTesselInVectors<Record>(in, width, height, overlapWindow, rounds, reducedThreads(kWantedTesselThreads, blocksX, blocksY),
	                                  result))
	{
		packTesselFirstGeneration(blocksX, blocksY, blocks, true,
		                          [&result](TesselBlockData& block, std::size_t index)
		                          {
			                          block.setModulationWord(result.modulation[index]);
			                          block.setModulationFlag(result.modeFlags[index] != 0);
			                          block.setColourA(result.coloursA[index]);
			                          block.setColourB(result.coloursB[index]);
		                          });
	}
	else
	{
		encodeTesselPlainly<Compressor, TesselMultiThreadedCompressor>(
		    in, width, height, overlapWindow, rounds, [blocks](Compressor& compressor) { compressor.getCompressedData(blocks, true); });
	}
	return width * height / (kBlockWidth / 2);
}
} // namespace

TesselMultiThreadedCompressor::TesselMultiThreadedCompressor(TesselCompressor* compressor, unsigned int count)
    : m_compressor(compressor), m_threadCount(count)
{
	calculateNumberOfThreads();
}

void TesselMultiThreadedCompressor::preprocess(bool overlapWindow)
{
	m_compressor->preprocess(overlapWindow);
}

void TesselMultiThreadedCompressor::compress()
{
	runTesselTiles(*m_compressor, m_threadCount);
}

void TesselMultiThreadedCompressor::calculateNumberOfThreads()
{
	m_threadCount = reducedThreads(m_threadCount, m_compressor->blocksX, m_compressor->blocksY);
}

unsigned int TesselMultiThreadedCompressor::getNumberOfThreads() const
{
	return m_threadCount;
}

unsigned int TesselMultiThreadedCompressor::getNumberOfIterations() const
{
	return m_compressor->numberOfIterations;
}

unsigned int TesselMultiThreadedCompressor::getModulationRecalculationInterval() const
{
	return m_compressor->modulationRecalculationInterval;
}

void TesselMultiThreadedCompressor::optimizeColours(const TesselCompressorBlock& block)
{
	m_compressor->optimizeColoursAB(block.firstX, block.endX, block.firstY, block.endY);
}

void TesselMultiThreadedCompressor::calculateModulations(const TesselCompressorBlock& block)
{
	m_compressor->calculateModulations(block.firstX, block.endX, block.firstY, block.endY);
}

unsigned int tesselCompress2bppMW(void* in, void* out, unsigned int width, unsigned int height, bool /*unusedFlag*/, bool overlapWindow,
                                  bool /*is2bpp*/, int iterations)
{
	return compressFast<Tessel2bppCompressor, Tessel2bppRecord>(in, out, width, height, overlapWindow, iterations);
}

unsigned int tesselCompress4bppMW(void* in, void* out, unsigned int width, unsigned int height, bool /*unusedFlag*/, bool overlapWindow,
                                  bool /*is2bpp*/, int iterations)
{
	return compressFast<Tessel4bppCompressor, Tessel4bppRecord>(in, out, width, height, overlapWindow, iterations);
}

unsigned int tesselCompressMW(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag, bool overlapWindow,
                              bool is2bpp, int iterations)
{
	const auto compress = is2bpp ? tesselCompress2bppMW : tesselCompress4bppMW;
	return compress(in, out, width, height, unusedFlag, overlapWindow, is2bpp, iterations);
}
} // namespace zortexture
