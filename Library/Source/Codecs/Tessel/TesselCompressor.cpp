#include "TesselCompressor.h"

#include <cstring>

#include "TesselFastCompressor.h"
#include "TesselTwiddle.h"

namespace zortexture
{
namespace
{
constexpr unsigned char kBlockHeight = 4;

template<typename Compressor>
void packFirstGeneration(const Compressor& compressor, TesselBlockData* out, bool twiddled)
{
	packTesselFirstGeneration(compressor.blocksX, compressor.blocksY, out, twiddled,
	                          [&compressor](TesselBlockData& block, std::size_t index)
	                          {
		                          packModulation(compressor.records[index], block);
		                          block.setColourA(compressor.coloursA[index]);
		                          block.setColourB(compressor.coloursB[index]);
	                          });
}
} // namespace

TesselCompressorState::TesselCompressorState(const void* pixels, unsigned int imageWidth, unsigned int imageHeight,
                                             unsigned char widthOfBlock)
    : width(imageWidth), height(imageHeight), blocksX(imageWidth / widthOfBlock), blocksY(imageHeight / kBlockHeight),
      blockWidth(widthOfBlock), blockHeight(kBlockHeight), image(std::size_t(imageWidth) * imageHeight),
      coloursA(std::size_t(blocksX) * blocksY), coloursB(coloursA.size()), upscaledA(image.size()), upscaledB(image.size())
{
	if (!image.empty())
	{
		std::memcpy(image.data(), pixels, image.size() * sizeof(TesselPixel));
	}
}

TesselCompressor::~TesselCompressor() = default;

void TesselCompressor::calculateColoursAB(bool overlapWindow)
{
	zortexture::calculateColoursAB(planesOf(*this), overlapWindow);
}

void TesselCompressor::calculateColoursABForBlock(unsigned int x, unsigned int y, unsigned int& colourA, unsigned int& colourB,
                                                  bool overlapWindow)
{
	zortexture::calculateColoursABForBlock(planesOf(*this), x, y, colourA, colourB, overlapWindow);
}

unsigned int TesselCompressor::getTwiddleOffset(unsigned int numX, unsigned int numY, unsigned int blockX, unsigned int blockY)
{
	return static_cast<unsigned>(twiddledBlockIndex(numX, numY, blockX, blockY));
}

Tessel2bppCompressor::Tessel2bppCompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight)
    : TesselCompressor(pixels, imageWidth, imageHeight, 8), records(coloursA.size())
{
}

void Tessel2bppCompressor::preprocess(bool /*overlapWindow*/)
{
	startTesselCompressor(*this, false);
}

void Tessel2bppCompressor::compress()
{
	runTesselRounds(*this);
}

void Tessel2bppCompressor::getCompressedData(TesselBlockData* out, bool twiddled)
{
	packFirstGeneration(*this, out, twiddled);
}

void Tessel2bppCompressor::calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY)
{
	chooseTesselModulations(*this, firstX, endX, firstY, endY);
}

void Tessel2bppCompressor::optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY)
{
	correctTesselColours(*this, firstX, endX, firstY, endY);
}

void Tessel2bppCompressor::interpolateColoursAB()
{
	zortexture::interpolateColoursAB(planesOf(*this));
}

void Tessel2bppCompressor::getModulationValues(unsigned int x, unsigned int y, unsigned int mode, unsigned char* out) const
{
	zortexture::getModulationValues(records[std::size_t(y) * blocksX + x], mode, out);
}

void Tessel2bppCompressor::decompressTesselBlock(unsigned int x, unsigned int y, Pixel<unsigned char>* out, unsigned int mode) const
{
	zortexture::decompressTesselBlock(records[std::size_t(y) * blocksX + x], loadTesselBlock(*this, x, y), out, mode);
}

Tessel4bppCompressor::Tessel4bppCompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight)
    : TesselCompressor(pixels, imageWidth, imageHeight, 4), records(coloursA.size())
{
}

void Tessel4bppCompressor::preprocess(bool overlapWindow)
{
	startTesselCompressor(*this, overlapWindow);
}

void Tessel4bppCompressor::compress()
{
	runTesselRounds(*this);
}

void Tessel4bppCompressor::getCompressedData(TesselBlockData* out, bool twiddled)
{
	packFirstGeneration(*this, out, twiddled);
}

void Tessel4bppCompressor::calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY)
{
	chooseTesselModulations(*this, firstX, endX, firstY, endY);
}

void Tessel4bppCompressor::optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY)
{
	correctTesselColours(*this, firstX, endX, firstY, endY);
}

void Tessel4bppCompressor::interpolateColoursAB()
{
	zortexture::interpolateColoursAB(planesOf(*this));
}

void Tessel4bppCompressor::decompressTesselBlock(unsigned int x, unsigned int y, Pixel<unsigned char>* out, unsigned int mode) const
{
	zortexture::decompressTesselBlock(records[std::size_t(y) * blocksX + x], loadTesselBlock(*this, x, y), out, mode);
}
} // namespace zortexture
