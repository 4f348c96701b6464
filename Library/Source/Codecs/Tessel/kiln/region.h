/// @file region.h
/// The working space of a thread in a phase: what surrounds the block that it visits, and the trials of its pairs.
#pragma once

#include <cstdint>
#include <vector>

#include "blending.h"
#include "candidates.h"
#include "evaluate.h"
#include "kiln.h"

struct OptimiseRegion
{
	static constexpr unsigned kNoFlags = ~0U;

	const KilnSettings* settings = nullptr;
	KilnKernelTable kernels = {};

	// Of the visited block.
	KilnBlock* block = nullptr;
	int blockX = 0;
	int blockY = 0;
	std::array<KilnColour, kKilnMaxWindow> window;
	KilnNeighbourColours colours;
	KilnNeighbourModes modes;
	/// Which of the nine blocks are the block itself: the middle one, and others where the image is one block wide or high.
	std::array<bool, 9> isSelf = {};
	/// The windows of all nine blocks are of a single colour each, and so, since they overlap, of the same.
	bool flatNeighbourhood = false;
	/// In force in the first pass, in which the neighbours have only the pairs of the statistics.
	bool firstPass = false;
	/// In force when useRegions is set.
	KilnRegionPlaces regions;
	bool useRegions = false;
	/// The colours of the local palette, once they were needed; empty before.
	std::vector<KilnColour> paletteEntries;
	/// A trial that reaches this error is given up.
	std::uint64_t limit = 0;

	// Of the mode under trial.
	int mode = 0;
	int hardVariant = 0;
	KilnWindowModel model;
	/// The hard flags for which the surroundings stand in the model, and those for which the error of its rim does; kNoFlags for none.
	unsigned blendedFlags = kNoFlags;
	unsigned rimFlags = kNoFlags;
	KilnPairSet tried;
	KilnTrialList trials;
	KilnFittingParams params;
};

/// Sets the mode and the flips under which the next pairs are evaluated.
void setTrialMode(OptimiseRegion& region, int mode, int hardVariant);
/// To be called when the colours around the block were exchanged.
void forgetSurroundings(OptimiseRegion& region);

/// What the window costs with a pair in the block.
/// @param limit  the errors need not be exact once they reach it.
void evaluatePair(OptimiseRegion& region, const KilnPair& pair, std::uint64_t limit, KilnDetail detail, KilnErrors& errors);

/// Evaluates a seed, fits it again and again, and adds the best pair that came of it to the trials. A pair that was tried before under
/// these settings ends the walk: what follows it is known.
/// @return whether the best pair is good enough to leave it at that.
bool walkSeed(OptimiseRegion& region, const KilnPair& seed);

/// Walks all seeds of the mode under trial: pairs that meet a single colour, the pairs kept for this mode and the others, and variants of
/// the best pair.
/// @param modes      the modes of the block, modeCount of them.
void walkSeeds(OptimiseRegion& region, const std::array<int, kKilnModeSlots>& modes, int modeCount);
