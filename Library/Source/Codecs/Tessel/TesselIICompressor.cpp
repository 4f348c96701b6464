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

/// Whether each block's colours are farther from those of a neighbour than from each other.
void flagHardTransitions(const std::vector<unsigned>& a, const std::vector<unsigned>& b, unsigned blocksX, unsigned blocksY,
                         std::vector<unsigned char>& flags)
{
	constexpr unsigned kSmallDistance = 16384;
	std::size_t block = 0;
	for (unsigned y = 0; y < blocksY; ++y)
	{
		const std::size_t rowBelow = std::size_t(y + 1 == blocksY ? 0 : y + 1) * blocksX;
		for (unsigned x = 0; x < blocksX; ++x, ++block)
		{
			const auto edge = [&](std::size_t neighbour)
			{
				return std::min(distance(a[block], a[neighbour]), distance(b[block], b[neighbour]));
			};
			const unsigned own = distance(a[block], b[block]);
			const unsigned limit = own < kSmallDistance ? kSmallDistance / 4 - 1 : own / 4;
			const std::size_t right = x + 1 == blocksX ? block - x : block + 1;
			flags[block] = std::max(edge(right), edge(rowBelow + x)) > limit ? 1 : 0;
		}
	}
}

template<typename Record>
unsigned compressFast(const void* in, void* out, unsigned width, unsigned height, bool overlapWindow, int iterations)
{
	using Compressor = TesselIIFormatCompressor<Record>;
	constexpr unsigned kBlockWidth = TesselFit<Record>::kPixels / 4;
	const unsigned blocksX = width / kBlockWidth;
	const unsigned blocksY = height / 4;
	if (blocksX == 0 || blocksY == 0)
	{
		return 0;
	}
	auto* const blocks = static_cast<TesselIIBlockData*>(out);
	const unsigned rounds = static_cast<unsigned>(std::max(iterations, 0));
	TesselRoundsResult result;
	if (encodeTesselInVectors<Record>(in, width, height, overlapWindow, rounds, kWantedTesselThreads, result))
	{
		std::vector<unsigned char> hardTransition(result.firstA.size());
		flagHardTransitions(result.firstA, result.firstB, blocksX, blocksY, hardTransition);
		packTesselSecondGeneration(blocksX, blocksY, blocks,
		                           [&result, &hardTransition](TesselIIBlockData& block, std::size_t index)
		                           {
			                           block.setModulationWord(result.modulation[index]);
			                           block.setModulationFlag(result.modeFlags[index] != 0);
			                           block.setColours(result.coloursA[index], result.coloursB[index]);
			                           block.setHardTransitionFlag(hardTransition[index] != 0);
		                           });
	}
	else
	{
		encodeTesselPlainly<Compressor, TesselIIMultiThreadedCompressor>(
		    in, width, height, overlapWindow, rounds, [blocks](Compressor& compressor) { compressor.getCompressedData(blocks); });
	}
	return width * height / (kBlockWidth / 2);
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
	flagHardTransitions(coloursA, coloursB, blocksX, blocksY, hardTransition);
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
	packTesselSecondGeneration(blocksX, blocksY, out,
	                           [this](TesselIIBlockData& block, std::size_t index)
	                           {
		                           packModulation(records[index], block);
		                           block.setColours(coloursA[index], coloursB[index]);
		                           block.setHardTransitionFlag(hardTransition[index] != 0);
	                           });
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
