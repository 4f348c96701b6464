/// @file evaluate.h
/// What a block's window costs under a pair of colours, and the data from which the pair is fitted.
#pragma once

#include "analygrapprop.h"
#include "blending.h"
#include "kiln.h"

/// Errors by the class of the pixel.
struct KilnErrors
{
	/// Everything that was asked for.
	std::uint64_t total = 0;
	/// The block's own area.
	std::uint64_t own = 0;
	/// The rest of the window without its rim.
	std::uint64_t outer = 0;
	/// The rim, 0 unless asked for.
	std::uint64_t rim = 0;
};

/// How a window pixel is encoded.
struct KilnPixelResult
{
	/// The index 0 to 3 of the candidate (a place among the palette choices for a palette pixel).
	std::uint8_t index = 0;
	/// The weight of B in eighths.
	std::uint8_t weight = 0;
};

/// The data of a fit, one entry a window pixel, 0 past the end. The block's colours enter a pixel by multiples of 1/512, so that all sums
/// of a fit are whole numbers.
struct KilnFittingParams
{
	static constexpr int kCapacity = 156;
	/// By how many 512ths a step of A, or of B, moves the pixel. 0 for a palette pixel that shows a colour of another block and for one
	/// that is decoded as punch-through.
	alignas(16) std::array<std::int16_t, kCapacity> influenceA;
	alignas(16) std::array<std::int16_t, kCapacity> influenceB;
	/// Pixel less decoded colour.
	alignas(16) std::array<std::array<std::int16_t, 4>, kCapacity> residual;
	/// The choices of the last evaluation.
	std::array<KilnPixelResult, kKilnMaxWindow> results;
};

/// Everything to 0.
void InitialisePackedFittingParams(KilnFittingParams& params);

/// A pixel of a window model. Eight numbers are the channels of A and then of B, or those of the pixel twice.
struct alignas(64) KilnPixelModel
{
	/// What the other eight blocks give, times their shares.
	std::array<std::uint16_t, 8> around;
	/// The share of the block itself.
	std::array<std::uint16_t, 8> blockWeight;
	/// The pixel.
	std::array<std::uint16_t, 8> target;
	/// How much a difference counts: 1, and kilnAlphaFactor for alpha.
	std::array<std::uint16_t, 8> scale;
};

/// The colours of a palette pixel at candidates 0 and 3, then 1 and 2: fixed ones of other blocks, and where those of the block itself
/// belong.
struct KilnPaletteModel
{
	std::array<std::array<std::uint16_t, 8>, 2> fixed;
	std::array<std::array<std::uint16_t, 8>, 2> maskA;
	std::array<std::array<std::uint16_t, 8>, 2> maskB;
};

/// How a 4bpp pixel takes its candidates.
enum KilnPixelKind : std::uint8_t
{
	kKilnStandardPixel,
	kKilnPunchThroughPixel,
	/// Punch-through over a transparent pixel, which costs nothing.
	kKilnFreePunchThroughPixel,
	kKilnPalettePixel
};

/// A 2bpp pixel that has an index.
struct KilnStoredPixel
{
	std::uint8_t pixel;
	bool endsOnly;
	/// The pixels that are left out and read it, for which it makes up when it is chosen again; kKilnNoPixel for none. A pixel of a
	/// direct block has none.
	std::uint8_t readerCount;
	std::array<std::uint8_t, 4> readers;
};

/// A 2bpp pixel that is left out.
struct KilnLeftOutPixel
{
	std::uint8_t pixel;
	/// The pixels whose mean is its weight, horizontal or vertical ones twice where there are only those.
	std::array<std::uint8_t, 4> reads;
};

constexpr std::uint8_t kKilnNoPixel = kKilnMaxWindow;

/// A window as one mode of its block sees it, with all that stays as it is while the block's own pair moves. Prepared once, then
/// evaluated under any number of pairs. The records must outlive it.
struct KilnWindowModel
{
	const KilnBlendRecords* records = nullptr;
	std::array<KilnPixelModel, kKilnMaxWindow> pixels;

	// At 4bpp. An entry behind the window counts for nothing.
	std::array<KilnPixelKind, kKilnWindow4Bpp + 1> kinds;
	std::array<KilnPaletteModel, kKilnWindow4Bpp> palette;
	/// The error of the rim, which no pair of the block can move; 0 if it is not to be counted.
	std::uint64_t rimError = 0;

	// At 2bpp. The stored pixels are filled up to a multiple of 4 by repeating the last.
	int storedCount = 0;
	int leftOutCount = 0;
	std::array<KilnStoredPixel, kKilnMaxWindow + 3> stored;
	std::array<KilnLeftOutPixel, kKilnMaxWindow> leftOut;
};

/// @param colours  of the nine blocks; that of the block itself is not used.
/// @param withRim  count the rim of the window too; at 4bpp only.
void PrepareWindowModel(const KilnBlendRecords& records, const KilnColour* window, const KilnNeighbourColours& colours, bool withRim,
                        KilnWindowModel& model);

/// The least error of the rim of a 4bpp window.
std::uint64_t kilnRimError4Bpp(const KilnWindowModel& model);

/// Evaluates the window of a 4bpp block under a pair of its own: every pixel takes its best candidate.
/// @param regions  when not null, the pixels of a flat region take one index together (see analygrapprop.h).
/// @param limit    the evaluation may stop once the total reaches it; the data of a fit is then not to be used.
void EvalAllCandsAndGetErrors4BPP(const KilnWindowModel& model, const KilnPair& pair, const KilnRegions* regions, std::uint64_t limit,
                                  KilnFittingParams& params, KilnErrors& errors);

/// Evaluates the window of a 2bpp block under a pair of its own: stored and direct pixels first, then those left out, whose residuals
/// move the targets of the stored ones for a second choice. The rim is not counted.
void EvalAllCandsAndGetErrors2BPP(const KilnWindowModel& model, const KilnPair& pair, KilnFittingParams& params, KilnErrors& errors);

/// The weight of a pixel that is left out, from its neighbours' weights in the window of 17 by 9.
/// @param storeClass  2 four neighbours, 3 left and right, 4 above and below.
/// @param weights     17 by 9 weights of 0 to 8. One above 8 ends the process with a message.
int ComputeInterpolatedModVal(int storeClass, int row, int column, const std::uint8_t* weights);
