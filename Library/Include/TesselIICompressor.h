/// @file TesselIICompressor.h
/// The fast compressor of the second generation: that of the first with hard-transition flags and blocks in rows. It is used in
/// the same way.
#ifndef ZORT_TESSEL_II_COMPRESSOR_H
#define ZORT_TESSEL_II_COMPRESSOR_H

#include <vector>

#include "TesselCompressor.h"

namespace zortexture
{
/// As TesselCompressor. Colours, planes, modulations and their correction follow the smooth model for flagged blocks too: the flag
/// changes what the decoder makes of a block, not how it is fitted.
class ZORT_API TesselIICompressor : public TesselCompressorState
{
public:
	virtual ~TesselIICompressor();
	virtual void preprocess(bool overlapWindow) = 0;
	virtual void compress() = 0;
	/// Packs all blocks, in rows.
	virtual void getCompressedData(TesselIIBlockData* out) = 0;
	virtual void calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) = 0;
	virtual void optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) = 0;
	virtual void interpolateColoursAB() = 0;

	/// Chooses the first colours of all blocks, and flags those whose colours differ from the ones of the block at the right or
	/// below (wrapping) by clearly more than from each other.
	void calculateColoursAB(bool overlapWindow);

	/// One flag a block, 0 or 1.
	std::vector<unsigned char> hardTransition;

protected:
	TesselIICompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight, unsigned char widthOfBlock);
	TesselIICompressor(const TesselIICompressor&) = default;
	TesselIICompressor& operator=(const TesselIICompressor&) = default;
};

/// The compressor of one bit rate, told by its record.
template<typename Record>
class ZORT_API TesselIIFormatCompressor : public TesselIICompressor
{
public:
	TesselIIFormatCompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight);
	/// The overlap window is for 4bpp only.
	void preprocess(bool overlapWindow) override;
	void compress() override;
	void getCompressedData(TesselIIBlockData* out) override;
	void calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) override;
	void optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) override;
	void interpolateColoursAB() override;

	/// One record a block.
	std::vector<Record> records;
};

extern template class TesselIIFormatCompressor<Tessel2bppRecord>;
extern template class TesselIIFormatCompressor<Tessel4bppRecord>;

/// Blocks of 8 x 4 pixels.
using TesselII2bppCompressor = TesselIIFormatCompressor<Tessel2bppRecord>;
/// Blocks of 4 x 4 pixels.
using TesselII4bppCompressor = TesselIIFormatCompressor<Tessel4bppRecord>;

/// Runs a compressor tile by tile, as TesselMultiThreadedCompressor does. The thread count is kept as given, so that the tiles, and
/// with them the bytes, are the same on every machine.
class ZORT_API TesselIIMultiThreadedCompressor
{
public:
	/// @param compressor  not owned.
	TesselIIMultiThreadedCompressor(TesselIICompressor* compressor, unsigned int count);

	void preprocess(bool overlapWindow);
	void compress();

	/// Reduces the thread count to 4 and to the number of blocks.
	void calculateNumberOfThreads();
	unsigned int getNumberOfThreads() const;

private:
	TesselIICompressor* m_compressor;
	unsigned int m_threadCount;
};
} // namespace zortexture

#endif // ZORT_TESSEL_II_COMPRESSOR_H
