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
template<typename Compressor>
unsigned compressFast(const void* in, void* out, unsigned width, unsigned height, bool overlapWindow, int iterations)
{
	return encodeTesselFast<Compressor, TesselMultiThreadedCompressor>(
	    in, width, height, overlapWindow, iterations,
	    [out](Compressor& compressor) { compressor.getCompressedData(static_cast<TesselBlockData*>(out), true); });
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
	const std::uint64_t online = static_cast<std::uint64_t>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L));
	const std::uint64_t blocks = std::uint64_t(m_compressor->blocksX) * m_compressor->blocksY;
	m_threadCount = static_cast<unsigned>(std::min({online, std::uint64_t(m_threadCount), blocks}));
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
	return compressFast<Tessel2bppCompressor>(in, out, width, height, overlapWindow, iterations);
}

unsigned int tesselCompress4bppMW(void* in, void* out, unsigned int width, unsigned int height, bool /*unusedFlag*/, bool overlapWindow,
                                  bool /*is2bpp*/, int iterations)
{
	return compressFast<Tessel4bppCompressor>(in, out, width, height, overlapWindow, iterations);
}

unsigned int tesselCompressMW(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag, bool overlapWindow,
                              bool is2bpp, int iterations)
{
	const auto compress = is2bpp ? tesselCompress2bppMW : tesselCompress4bppMW;
	return compress(in, out, width, height, unusedFlag, overlapWindow, is2bpp, iterations);
}
} // namespace zortexture
