/// @file windowmodel.h
/// A block's window as one mode of the block sees it, with all that stays as it is while the block's own pair moves, laid out for vector
/// code.
#pragma once

#include "analygrapprop.h"
#include "blending.h"
#include "kiln.h"

/// Room for the pixels of a window, in whole vectors. Places without a pixel have no share and cost nothing.
constexpr int kKilnPlaces = 160;
/// The order of a 4bpp window: the block's own area, the pixels around it, and after some free places the rim.
constexpr int kKilnOwnPlaces = 16;
constexpr int kKilnInnerPixels = 49;
constexpr int kKilnRimPlace = 56;
constexpr int kKilnEndPlace = 88;
/// Neighbouring places that have their kind together.
constexpr int kKilnGroupPlaces = 8;

/// Two numbers for each place: of R and G, or of B and alpha; or one number twice.
struct alignas(32) KilnRow
{
	std::uint16_t lanes[2 * kKilnPlaces];

	void set(int place, unsigned first, unsigned second)
	{
		lanes[2 * place] = static_cast<std::uint16_t>(first);
		lanes[2 * place + 1] = static_cast<std::uint16_t>(second);
	}
	void setBoth(int place, unsigned value)
	{
		set(place, value, value);
	}
	unsigned at(int place, int second = 0) const
	{
		return lanes[2 * place + second];
	}
	int signedAt(int place, int second = 0) const
	{
		return static_cast<std::int16_t>(lanes[2 * place + second]);
	}
};

/// How the pixels of a group take their candidates: all by the standard weights; some punch-through; some by a palette.
enum KilnGroupKind : std::uint8_t
{
	kKilnStandardGroup = 0,
	kKilnPunchThroughGroup = 1,
	kKilnPaletteGroup = 2
};

/// Prepared once for a mode, then evaluated under any number of pairs. Rows in pairs are of R and G, then of B and alpha.
struct KilnWindowModel
{
	/// What the other eight blocks give to A and B, times their shares, and the share of the block itself.
	KilnRow aroundA[2];
	KilnRow aroundB[2];
	KilnRow share;
	KilnRow target[2];
	/// How much a difference in B and in alpha counts: 1, and kilnAlphaFactor.
	KilnRow scale;

	// At 4bpp. All bits where a pixel is punch-through, and where it is transparent too, so that the third candidate costs nothing.
	KilnRow punched;
	KilnRow isFree;
	/// All bits at palette pixels; their four candidates: fixed ones of other blocks, and where A and B of the block itself belong.
	KilnRow isPalette;
	KilnRow fixed[4][2];
	KilnRow showsA[4];
	KilnRow showsB[4];

	// At 2bpp. All bits where a pixel lies in the block's own area, and where it lies around it but not on the rim.
	KilnRow isOwn;
	KilnRow isOuter;
	/// All bits where a pixel is left out between its neighbours, and where it can only be 0 or 3.
	KilnRow isLeftOut;
	KilnRow endsOnly;
	/// By how many quarters each neighbour enters the weight of a pixel that is left out: the one before, after, above and below.
	KilnRow quarters[4];
	/// All bits where that neighbour is left out and reads the pixel, which makes up for it; and division by twice their number.
	KilnRow isReader[4];
	KilnRow divisionFactor;
	KilnRow divisionBias;

	/// At 4bpp, the error of the rim, which no pair of the block can move; 0 if it is not to be counted.
	std::uint64_t rimError;
	/// At 4bpp, a KilnGroupKind for each group.
	std::uint8_t groupKinds[kKilnEndPlace / kKilnGroupPlaces];
	bool tessel2;
	/// Whether the rim of a 4bpp window is prepared and counted.
	bool withRim;
	/// Whether any 2bpp pixel is left out.
	bool hasLeftOut;
};

/// The neighbours of a 2bpp pixel, in places from its own.
constexpr int kKilnNeighbourSteps[4] = {-1, 1, -17, 17};
/// Division of a sum of residuals by twice their number, rounding down: (sum + kKilnDivisionBias) * factor >> 16, less the bias divided
/// likewise. A sum reaches 4 * 255 either way.
constexpr int kKilnDivisionBias = 1536;

/// The place of each pixel of a 4bpp window.
extern const std::array<std::uint8_t, kKilnWindow4Bpp> kKilnPlaceOf4Bpp;

/// Everything to 0 but what depends on the rate alone; once, before the steps below.
void InitialiseWindowModel(const KilnSettings& settings, KilnWindowModel& model);

/// The pixels, for all modes of a block.
/// @param withRim  prepare the rim too; at 4bpp only.
void kilnSetTargets(const KilnSettings& settings, const KilnColour* window, bool withRim, KilnWindowModel& model);

/// The hard flags of nine blocks, a bit each.
/// @param hardVariant  bits 0, 1 and 2 flip those of the neighbours up-left, up and left.
unsigned kilnHardFlags(const KilnNeighbourModes& modes, int hardVariant, int bpp);

/// The colours of the eight blocks around, blended as hard flags say. What stands for the block itself in `colours` is not used.
void kilnSetSurroundings(const KilnSettings& settings, const KilnNeighbourColours& colours, unsigned hardFlags, KilnWindowModel& model);

/// How each pixel takes its candidates, when all above is set.
void kilnSetKinds(const KilnSettings& settings, const KilnColour* window, const KilnNeighbourColours& colours,
                  const KilnNeighbourModes& modes, unsigned hardFlags, KilnWindowModel& model);
