#include "TesselIICompressor.h"

#include <algorithm>
#include <cstdint>

#include "TesselCodec.h"
#include "TesselFastCompressor.h"

namespace zortexture
{
namespace
{
unsigned distance(unsigned colourA, unsigned colourB)
{
	return squareColourDistance(unpackTesselPixel(colourA), unpackTesselPixel(colourB));
}

/// Whether a block's colours are farther from those of a neighbour than from each other.
bool isHardTransition(const TesselIICompressor& compressor, std::size_t block, std::size_t right, std::size_t lower)
{
	constexpr unsigned kSmallDistance = 16384;
	const std::vector<unsigned>& a = compressor.coloursA;
	const std::vector<unsigned>& b = compressor.coloursB;
	const auto edge = [&](std::size_t neighbour)
	{
		return std::min(distance(a[block], a[neighbour]), distance(b[block], b[neighbour]));
	};
	const unsigned own = distance(a[block], b[block]);
	const unsigned limit = own < kSmallDistance ? kSmallDistance / 4 - 1 : own / 4;
	return std::max(edge(right), edge(lower)) > limit;
}

template<typename Record>
unsigned compressFast(const void* in, void* out, unsigned width, unsigned height, bool overlapWindow, int iterations)
{
	using Compressor = TesselIIFormatCompressor<Record>;
	return encodeTesselFast<Compressor, TesselIIMultiThreadedCompressor>(
	    in, width, height, overlapWindow, iterations,
	    [out](Compressor& compressor) { compressor.getCompressedData(static_cast<TesselIIBlockData*>(out)); });
}
} // namespace

TesselIICompressor::TesselIICompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight, unsigned char widthOfBlock)
    : TesselCompressorState(pixels, imageWidth, imageHeight, widthOfBlock), hardTransition(coloursA.size())
{
}

TesselIICompressor::~TesselIICompressor() = default;

void TesselIICompressor::calculateColoursAB(bool overlapWindow)
{
	zortexture::calculateColoursAB(planesOf(*this), overlapWindow);
	forEachTesselBlock(*this, 0, blocksX, 0, blocksY,
	                   [this](unsigned x, unsigned y, std::size_t index)
	                   {
		                   const std::size_t right = index - x + (x + 1) % blocksX;
		                   const std::size_t lower = std::size_t((y + 1) % blocksY) * blocksX + x;
		                   hardTransition[index] = isHardTransition(*this, index, right, lower) ? 1 : 0;
	                   });
}

template<typename Record>
TesselIIFormatCompressor<Record>::TesselIIFormatCompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight)
    : TesselIICompressor(pixels, imageWidth, imageHeight, TesselFit<Record>::kPixels / 4), records(coloursA.size())
{
}

template<typename Record>
void TesselIIFormatCompressor<Record>::preprocess(bool overlapWindow)
{
	startTesselCompressor(*this, overlapWindow && TesselFit<Record>::kOverlaps);
}

template<typename Record>
void TesselIIFormatCompressor<Record>::compress()
{
	runTesselRounds(*this);
}

template<typename Record>
void TesselIIFormatCompressor<Record>::getCompressedData(TesselIIBlockData* out)
{
	const unsigned numX = blocksX;
	packTesselBlocks(
	    *this, out, [numX](unsigned x, unsigned y) { return std::uint64_t(y) * numX + x; },
	    [](TesselIIBlockData& block, unsigned colourA, unsigned colourB) { block.setColours(colourA, colourB); });
	for (std::size_t i = 0; i < hardTransition.size(); ++i)
	{
		out[i].setHardTransitionFlag(hardTransition[i] != 0);
	}
}

template<typename Record>
void TesselIIFormatCompressor<Record>::calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY)
{
	chooseTesselModulations(*this, firstX, endX, firstY, endY);
}

template<typename Record>
void TesselIIFormatCompressor<Record>::optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY)
{
	correctTesselColours(*this, firstX, endX, firstY, endY);
}

template<typename Record>
void TesselIIFormatCompressor<Record>::interpolateColoursAB()
{
	zortexture::interpolateColoursAB(planesOf(*this));
}

template class TesselIIFormatCompressor<Tessel2bppRecord>;
template class TesselIIFormatCompressor<Tessel4bppRecord>;

TesselIIMultiThreadedCompressor::TesselIIMultiThreadedCompressor(TesselIICompressor* compressor, unsigned int count)
    : m_compressor(compressor), m_threadCount(count)
{
}

void TesselIIMultiThreadedCompressor::preprocess(bool overlapWindow)
{
	m_compressor->preprocess(overlapWindow);
}

void TesselIIMultiThreadedCompressor::compress()
{
	runTesselTiles(*m_compressor, m_threadCount);
}

void TesselIIMultiThreadedCompressor::calculateNumberOfThreads()
{
	const std::uint64_t blocks = std::uint64_t(m_compressor->blocksX) * m_compressor->blocksY;
	m_threadCount = static_cast<unsigned>(std::min({std::uint64_t(m_threadCount), std::uint64_t(4), blocks}));
}

unsigned int TesselIIMultiThreadedCompressor::getNumberOfThreads() const
{
	return m_threadCount;
}

unsigned int tessel2Compress2bpp(void* in, void* out, unsigned int width, unsigned int height, bool /*unusedFlag*/, bool overlapWindow,
                                 bool /*is2bpp*/, int iterations)
{
	return compressFast<Tessel2bppRecord>(in, out, width, height, overlapWindow, iterations);
}

unsigned int tessel2Compress4bpp(void* in, void* out, unsigned int width, unsigned int height, bool /*unusedFlag*/, bool overlapWindow,
                                 bool /*is2bpp*/, int iterations)
{
	return compressFast<Tessel4bppRecord>(in, out, width, height, overlapWindow, iterations);
}

unsigned int tessel2Compress(void* in, void* out, unsigned int width, unsigned int height, bool unusedFlag, bool overlapWindow, bool is2bpp,
                             int iterations)
{
	const auto compress = is2bpp ? tessel2Compress2bpp : tessel2Compress4bpp;
	return compress(in, out, width, height, unusedFlag, overlapWindow, is2bpp, iterations);
}
} // namespace zortexture
