/// @file kiln.h
/// What the stages of the high-quality compressor share: the image, the settings of a run, the records of its blocks.
///
/// The stages in order: statistics and first representatives (initialreps.h), swapping of crosswise pairs (swapping.h), passes of
/// optimisation (optimise.h) over the block model (blending.h, evaluate.h), packing (packing.h). The driver is kiln_localised.h.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "orientedbox.h"

/// A pixel or colour of 8-bit channels: R, G, B, A.
using KilnColour = std::array<std::uint8_t, 4>;
using KilnColourF = std::array<float, 4>;

/// The two colours of a block, in values that it can hold: the top 5 bits of R, G, B and the top 4 of alpha are the working form of
/// the decoder.
struct KilnPair
{
	KilnColour a = {};
	KilnColour b = {};

	friend bool operator==(const KilnPair&, const KilnPair&) = default;
};

constexpr int kKilnBlockHeight = 4;
/// Width and height of an image at most.
constexpr int kKilnMaxSize = 4096;
/// Pixels of the largest window, 17 by 9, and of the window of 4bpp, 9 by 9.
constexpr int kKilnMaxWindow = 153;
constexpr int kKilnWindow4Bpp = 81;
/// Modes a block can have, and pairs kept for each of them, at most.
constexpr int kKilnModeSlots = 8;
constexpr int kKilnMaxKept = 4;

/// A block mode. Bit 0 is the modulation flag at 4bpp and bit 1 the hard flag; at 2bpp (8 and up) bits 0 and 1 are the
/// interpolation, 0 direct, 1 four neighbours, 2 left and right, 3 above and below, and bit 2 is the hard flag.
enum KilnMode : int
{
	kKilnStandard = 0,
	kKilnPunchThrough = 1,
	kKilnHard = 2,
	kKilnHardPalette = 3,
	kKilnDirect = 8,
	kKilnInterpolated = 9,
	kKilnInterpolatedHorizontal = 10,
	kKilnInterpolatedVertical = 11,
	kKilnDirectHard = 12,
	kKilnInterpolatedHard = 13,
	kKilnInterpolatedHorizontalHard = 14,
	kKilnInterpolatedVerticalHard = 15
};

constexpr int kilnHardBit(int bpp)
{
	return bpp == 4 ? 2 : 4;
}

struct KilnImage
{
	int width = 0;
	int height = 0;
	std::vector<KilnColour> pixels;

	const KilnColour* row(int y) const
	{
		return pixels.data() + static_cast<std::size_t>(y) * width;
	}
	KilnColour* row(int y)
	{
		return pixels.data() + static_cast<std::size_t>(y) * width;
	}
};

/// Null, with a message on standard error, for a size above 4096 or when memory fails. Null for a size that is not above 0.
std::unique_ptr<KilnImage> NewImage(int width, int height);

/// What one run works with, and the parameters of the pass that it is in. Shared by all threads, changed between stages only.
struct KilnSettings
{
	int wordType = 4;
	int bpp = 4;
	int blockWidth = 4;
	int blockHeight = kKilnBlockHeight;
	/// Twice the block and one.
	int windowWidth = 9;
	int windowHeight = 9;
	bool tessel2 = false;
	int blocksX = 0;
	int blocksY = 0;
	/// At 4bpp, when the preprocess was asked for.
	bool punchThrough = false;

	/// Fitting rounds for each seed.
	int iterations = 1;
	/// The first passes: pairs stay within their box, flat regions take one modulation.
	bool wideSearch = true;
	int candidatesKept = 4;
	int variants = 8;
	/// A block with an error below this is left alone, unless modesChanged.
	std::uint64_t errorThreshold = 0;
	bool modesChanged = true;
	bool hardAllowed = false;
	bool hardNeighbours = false;
	int hardVariantStep = 4;

	int windowPixels() const
	{
		return windowWidth * windowHeight;
	}
};

/// A pair with what it costs: over the window, and over the block's own area (the tie-breaker).
struct KilnCandidate
{
	KilnPair pair;
	std::uint64_t error = 0;
	std::uint64_t secondaryError = 0;
};

/// A pair that is kept, with what it costs over the window.
struct KilnKept
{
	KilnPair pair;
	std::uint64_t error = 0;
};

/// The pairs kept for one mode, best first; count 0 is a slot not in use.
struct KilnModeSlot
{
	std::uint8_t mode = 0;
	std::uint8_t count = 0;
	/// Which of the block's boxes bounds the colours that this mode looks at.
	std::uint8_t box = 0;
	std::array<KilnKept, kKilnMaxKept> kept;
};

struct KilnBlock
{
	/// Of every pixel of the window, of those that are not transparent, and of the central ones.
	std::array<OrientedBBox, 3> boxes;
	/// All pixels of the window (rim excluded, its weight is 0) have this one colour.
	bool singleColour = false;
	KilnColour colour = {};
	/// Transparent pixels of the window.
	int transparentPixels = 0;
	/// The window falls into few flat areas.
	bool isGraphics = false;
	/// Of a 2bpp block: 0 none, else the interpolation 1 to 3.
	int preferredInterpolation = 0;
	/// By mode & 7.
	std::array<KilnModeSlot, kKilnModeSlots> slots;
	int currentMode = 0;
	/// The tag of the phase in which the block was visited last.
	int tag = 0;

	KilnModeSlot& slot(int mode)
	{
		return slots[mode & (kKilnModeSlots - 1)];
	}
	const KilnModeSlot& slot(int mode) const
	{
		return slots[mode & (kKilnModeSlots - 1)];
	}
	const OrientedBBox& boxOf(int mode) const
	{
		return boxes[slot(mode).box];
	}
	/// The pair in force.
	const KilnKept& current() const
	{
		return slot(currentMode).kept[0];
	}
};

/// Blocks in rows, blocksX each.
using KilnBlockRows = std::vector<std::vector<KilnBlock>>;

/// The current pairs of a block and its eight neighbours, row by row with wrapping; the block itself is entry 4.
using KilnNeighbourColours = std::array<KilnPair, 9>;
/// Their modes, in the same order.
using KilnNeighbourModes = std::array<int, 9>;

/// Copies the window of block (blockX, blockY), rows tightly packed: windowWidth by windowHeight pixels around the block's centre
/// (its first pixel lies blockWidth / 2 before the block on both axes, that is at the centre of the neighbour before), wrapping at
/// the edges of the image.
void CopyWindow(const KilnImage& image, const KilnSettings& settings, int blockX, int blockY, KilnColour* window);

/// The pairs and modes in force around block (blockX, blockY), wrapping.
void GatherNeighbours(const KilnBlockRows& blocks, const KilnSettings& settings, int blockX, int blockY, KilnNeighbourColours& colours,
                      KilnNeighbourModes& modes);

/// The modes that a block may have, in the order of trial. At 2bpp 8 to 11, or 8 and the preferred interpolation; with hard modes in
/// the second generation also 12 to 15, or 12 and its like. At 4bpp 0 and 1, then 2 and 3. Ends the process with a message at other
/// rates.
/// @return the number of modes.
int ConstructListOfNeededModes(const KilnSettings& settings, const KilnBlock& block, bool useHard, std::array<int, kKilnModeSlots>& modes);

/// The share of one thread in a stage. Stages take a pointer to it as a thread's argument.
struct KilnThreadRecord
{
	const KilnImage* image = nullptr;
	const KilnSettings* settings = nullptr;
	KilnBlockRows* blocks = nullptr;
	/// Statistics: weight of every window pixel, and the mask (windowPixels entries) of its central ones.
	const float* windowWeights = nullptr;
	const std::uint8_t* centralMask = nullptr;
	/// Rows of blocks, first and end: block rows, or in a phase indices of rows of one parity.
	int firstRow = 0;
	int endRow = 0;
	/// When not null, the next row that no thread has claimed: all threads share the rows up to the end then, in any order.
	std::atomic<int>* nextRow = nullptr;
	/// Of packing: the blocks of the whole image, in rows or twiddled.
	unsigned char* out = nullptr;
	bool linear = false;
	/// Of a phase.
	int parity = 0;
	int tag = 0;
	/// Set by a stage that could not do its work.
	bool failed = false;

	/// Calls function(row) for every row of the share.
	template<typename Function>
	void forEachRow(const Function& function)
	{
		int own = firstRow;
		const auto claim = [this, &own]
		{
			return nextRow != nullptr ? nextRow->fetch_add(1, std::memory_order_relaxed) : own++;
		};
		for (int row = claim(); row < endRow; row = claim())
		{
			function(row);
		}
	}
};
