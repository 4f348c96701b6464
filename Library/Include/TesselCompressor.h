/// @file TesselCompressor.h
/// The 64-bit block of the Tessel formats and the fast compressor of the first generation.
///
/// The compressor is made, configured through numberOfIterations, preprocessed once, compressed once, read out once:
/// @code
/// Tessel4bppCompressor compressor(pixels, width, height);
/// compressor.numberOfIterations = 8;
/// TesselMultiThreadedCompressor wrapper(&compressor, 1);
/// wrapper.preprocess(true);
/// wrapper.compress();
/// compressor.getCompressedData(blocks, true);
/// @endcode
#ifndef ZORT_TESSEL_COMPRESSOR_H
#define ZORT_TESSEL_COMPRESSOR_H

#include <vector>

#include "Pixel.h"
#include "ZORTExport.h"

namespace zortexture
{
/// How the pixels of a 2bpp block get their weights, as the fast compressor numbers it.
enum eTesselMode : unsigned char
{
	/// One bit a pixel.
	eTesselMode_Direct = 0,
	/// Every second pixel is stored, the others are the mean of their four neighbours.
	eTesselMode_FourNeighbours = 1,
	/// The others are simulated as the mean of the pixels above and below.
	eTesselMode_UpDown = 2,
	/// The others are simulated as the mean of the pixels to the left and right.
	eTesselMode_LeftRight = 3
};

/// The storage of a block of either generation: word 0 with the modulation, word 1 with colours and flags, both little-endian
/// and at any alignment.
class ZORT_API TesselBlockWords
{
public:
	unsigned int getModulationWord() const;
	void setModulationWord(unsigned int word);
	unsigned int getColourWord() const;
	void setColourWord(unsigned int word);

	/// Writes the 2-bit index of pixel (x, y), both 0 to 3, of a 4bpp block.
	void storeModulationValue4BPP(unsigned int x, unsigned int y, unsigned int value);

	/// The modulation mode flag, bit 0 of word 1.
	bool getModulationFlag() const;
	void setModulationFlag(bool flag);

private:
	unsigned char m_bytes[8] = {};
};

/// A block of the first generation, whose colours are opaque or translucent each by itself.
///
/// Colours are read in the working form, red, green and blue in 5 bits and alpha in 4, one a byte with red in byte 0. They are
/// written from 8-bit channels in the same order, truncated; an alpha of 255 stores the opaque layout.
class ZORT_API TesselBlockData : public TesselBlockWords
{
public:
	unsigned int getColourA() const;
	unsigned int getColourB() const;
	/// Keeps the mode flag and colour B.
	void setColourA(unsigned int colour);
	/// Keeps the mode flag and colour A.
	void setColourB(unsigned int colour);
};

/// A block of the second generation, whose colours are opaque or translucent together and which may be a hard transition.
class ZORT_API TesselIIBlockData : public TesselBlockWords
{
public:
	unsigned int getColourA() const;
	/// In the even alpha levels; the decoder gives colour B of a translucent block the odd ones.
	unsigned int getColourB() const;
	/// Opaque only when both alphas are 255. Keeps the mode and the hard-transition flag.
	void setColours(unsigned int colourA, unsigned int colourB);

	/// Bit 15 of word 1.
	bool getHardTransitionFlag() const;
	void setHardTransitionFlag(bool flag);
};

/// What a 2bpp compressor keeps of a block. Indices stand row by row, 8 a row.
struct ZORT_API Tessel2bppRecord
{
	/// 0 or 3 for each pixel.
	unsigned char direct[32] = {};
	/// 0 to 3 for the pixels with even x + y.
	unsigned char interpolated[32] = {};
	/// Multipliers of the errors of the four modes.
	unsigned char modeWeights[4] = {4, 3, 3, 4};
	/// An eTesselMode.
	unsigned char mode = 0;
};

/// What a 4bpp compressor keeps of a block. Indices stand row by row, 4 a row.
struct ZORT_API Tessel4bppRecord
{
	/// Indices of mode 0.
	unsigned char standard[16] = {};
	/// Indices of mode 1.
	unsigned char punchThrough[16] = {};
	/// Multipliers of the errors of the two modes.
	unsigned char modeWeights[2] = {1, 1};
	unsigned int mode = 0;
};

/// What the fast compressors of both generations keep of an image.
struct ZORT_API TesselCompressorState
{
	/// @param pixels  8-bit rgba, rows tightly packed; copied.
	TesselCompressorState(const void* pixels, unsigned int imageWidth, unsigned int imageHeight, unsigned char widthOfBlock);

	/// Size in pixels.
	unsigned int width;
	unsigned int height;
	/// Whole blocks in each direction.
	unsigned int blocksX;
	unsigned int blocksY;
	unsigned char blockWidth;
	unsigned char blockHeight;
	/// A private copy of the input.
	std::vector<Pixel<unsigned char>> image;
	/// One colour a block, 8 bits a channel, red in byte 0.
	std::vector<unsigned int> coloursA;
	std::vector<unsigned int> coloursB;
	/// The two planes at the image's size.
	std::vector<Pixel<unsigned char>> upscaledA;
	std::vector<Pixel<unsigned char>> upscaledB;
	unsigned int numberOfIterations = 0;
	/// compress() chooses modulations anew in every so many rounds, never when 0.
	unsigned int modulationRecalculationInterval = 1;
};

/// The fast compressor: two colours per block, upscaled as the decoder will, a weight per pixel against the upscaled planes, and
/// rounds of least-squares correction of the colours.
///
/// Rectangles of blocks are half open, [firstX, endX) by [firstY, endY), and cut to the image.
class ZORT_API TesselCompressor : public TesselCompressorState
{
public:
	virtual ~TesselCompressor();
	/// First colours, planes and modulations. With the overlap window a block's colours come from twice its width and height.
	virtual void preprocess(bool overlapWindow) = 0;
	/// numberOfIterations rounds over all blocks.
	virtual void compress() = 0;
	/// Packs all blocks into blocksX * blocksY block words. With twiddled block order and counts that are not powers of two,
	/// blocks whose place lies past the end are dropped and places that no block has are zero.
	virtual void getCompressedData(TesselBlockData* out, bool twiddled) = 0;
	virtual void calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) = 0;
	virtual void optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) = 0;
	/// Upscales the blocks' colours to the image's size.
	virtual void interpolateColoursAB() = 0;

	/// Chooses the first colours of all blocks.
	void calculateColoursAB(bool overlapWindow);
	/// Chooses the first colours of one block, the darker as A.
	void calculateColoursABForBlock(unsigned int x, unsigned int y, unsigned int& colourA, unsigned int& colourB, bool overlapWindow);

	/// The place of block (blockX, blockY) in twiddled order.
	static unsigned int getTwiddleOffset(unsigned int numX, unsigned int numY, unsigned int blockX, unsigned int blockY);

protected:
	using TesselCompressorState::TesselCompressorState;
	TesselCompressor(const TesselCompressor&) = default;
	TesselCompressor& operator=(const TesselCompressor&) = default;
};

/// Blocks of 8 x 4 pixels.
class ZORT_API Tessel2bppCompressor : public TesselCompressor
{
public:
	Tessel2bppCompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight);
	/// Never uses the overlap window.
	void preprocess(bool overlapWindow) override;
	void compress() override;
	void getCompressedData(TesselBlockData* out, bool twiddled) override;
	void calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) override;
	void optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) override;
	void interpolateColoursAB() override;

	/// The 32 weights, in eighths, that a block's record gives in a mode. Pixels of its neighbours do not count.
	void getModulationValues(unsigned int x, unsigned int y, unsigned int mode, unsigned char* out) const;
	/// The 32 pixels that the planes and the record give in a mode.
	void decompressTesselBlock(unsigned int x, unsigned int y, Pixel<unsigned char>* out, unsigned int mode) const;

	/// One record a block.
	std::vector<Tessel2bppRecord> records;
};

/// Blocks of 4 x 4 pixels.
class ZORT_API Tessel4bppCompressor : public TesselCompressor
{
public:
	Tessel4bppCompressor(const void* pixels, unsigned int imageWidth, unsigned int imageHeight);
	void preprocess(bool overlapWindow) override;
	void compress() override;
	void getCompressedData(TesselBlockData* out, bool twiddled) override;
	void calculateModulations(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) override;
	void optimizeColoursAB(unsigned int firstX, unsigned int endX, unsigned int firstY, unsigned int endY) override;
	void interpolateColoursAB() override;

	/// The 16 pixels that the planes and the record give in a mode; the punch-through index is not made transparent.
	void decompressTesselBlock(unsigned int x, unsigned int y, Pixel<unsigned char>* out, unsigned int mode) const;

	/// One record a block.
	std::vector<Tessel4bppRecord> records;
};

class TesselMultiThreadedCompressor;

/// A tile of blocks, the work item of the wrapper.
struct TesselCompressorBlock
{
	TesselMultiThreadedCompressor* owner;
	unsigned int firstX;
	unsigned int endX;
	unsigned int firstY;
	unsigned int endY;
};

/// Runs a compressor tile by tile, with the whole-image upscale between the two passes of a round. The tiles run in order on the
/// calling thread.
///
/// The tile layout follows the thread count. Tile sizes are truncated: blocks in a remainder at the right and bottom belong to no
/// tile and keep what preprocess gave them.
class ZORT_API TesselMultiThreadedCompressor
{
public:
	/// @param compressor  not owned.
	/// @param count       wanted threads; reduced to the online processors and the number of blocks.
	TesselMultiThreadedCompressor(TesselCompressor* compressor, unsigned int count);

	void preprocess(bool overlapWindow);
	/// numberOfIterations rounds. The last correction of the colours is followed by no new planes or modulations.
	void compress();

	/// Reduces the thread count again, as the constructor did.
	void calculateNumberOfThreads();
	unsigned int getNumberOfThreads() const;
	unsigned int getNumberOfIterations() const;
	unsigned int getModulationRecalculationInterval() const;
	void optimizeColours(const TesselCompressorBlock& block);
	void calculateModulations(const TesselCompressorBlock& block);

private:
	TesselCompressor* m_compressor;
	unsigned int m_threadCount;
};
} // namespace zortexture

#endif // ZORT_TESSEL_COMPRESSOR_H
