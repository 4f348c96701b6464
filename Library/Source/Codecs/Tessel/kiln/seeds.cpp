#include <algorithm>
#include <vector>

#include "bestmatch.h"
#include "paletteentries.h"
#include "region.h"
#include "representable.h"

namespace
{
/// The weights of B in the two colours of a variant: narrower, wider, shifted and exchanged ends.
struct WeightPair
{
	float a;
	float b;
};
constexpr std::array<WeightPair, 13> kAlternativeWeightSet = {{{0.25F, 0.75F},
                                                               {0.25F, 1.0F},
                                                               {0.0F, 0.75F},
                                                               {-0.25F, 1.25F},
                                                               {-0.5F, 1.0F},
                                                               {0.0F, 1.5F},
                                                               {0.0F, 0.125F},
                                                               {0.875F, 1.0F},
                                                               {1.0F, 0.0F},
                                                               {0.0F, 0.625F},
                                                               {0.375F, 1.0F},
                                                               {0.375F, 0.625F},
                                                               {0.75F, 0.25F}}};

/// The worst squared distance of a pixel from its palette entry that is taken as it is.
constexpr int kPaletteErrorLimit = 36;

KilnPair singleColourPair(const OptimiseRegion& region, bool firstCandidate)
{
	KilnPair pair;
	GetSingleColourBestMatchReps(region.block->colour, region.mode == kKilnPunchThrough, region.settings->tessel2, firstCandidate, pair);
	return pair;
}

bool walkSingleColour(OptimiseRegion& region)
{
	const int calls = region.flatNeighbourhood ? 2 : 1;
	for (int i = 0; i < calls; ++i)
	{
		if (walkSeed(region, singleColourPair(region, i == 0)))
		{
			return true;
		}
	}
	return false;
}

/// In the middle of an area of one colour every block comes to the same pair, if each is judged as though its neighbours had it too.
/// Judged beside their first, rougher pairs, blocks would settle for making up for one another.
/// @return whether that pair is good enough; else nothing is tried yet.
bool tryPairsOfFlatArea(OptimiseRegion& region)
{
	// Summed over the channels, 48 dB. Farther off, which happens at 2bpp, neighbours do better that make up for one another.
	constexpr std::uint64_t kGoodErrorPerPixel = 3;
	const int mode = region.mode;
	const KilnNeighbourColours colours = region.colours;
	const KilnNeighbourModes modes = region.modes;
	for (const bool firstCandidate : {true, false})
	{
		const KilnPair pair = singleColourPair(region, firstCandidate);
		region.colours.fill(pair);
		region.modes.fill(mode);
		forgetSurroundings(region);
		setTrialMode(region, mode, 0);
		KilnErrors errors;
		evaluatePair(region, pair, region.limit, kKilnErrorsAlone, errors);
		addTrial(region.trials, {pair, errors.total, errors.own}, 0);
	}
	region.colours = colours;
	region.modes = modes;
	forgetSurroundings(region);
	const int ownPixels = region.settings->blockWidth * region.settings->blockHeight;
	if (region.trials.trials[0].candidate.secondaryError <= kGoodErrorPerPixel * static_cast<unsigned>(ownPixels))
	{
		return true;
	}
	region.trials.count = 0;
	setTrialMode(region, mode, 0);
	return false;
}

bool walkKept(OptimiseRegion& region, const KilnModeSlot& slot, int count)
{
	for (int i = 0; i < count; ++i)
	{
		if (walkSeed(region, slot.kept[i].pair))
		{
			return true;
		}
	}
	return false;
}

/// Pairs made of the best pair so far by other weights.
void walkWeightVariants(OptimiseRegion& region)
{
	const int count = std::min(region.settings->variants, static_cast<int>(kAlternativeWeightSet.size()));
	for (int k = 0; k < count; ++k)
	{
		if (region.trials.count == 0)
		{
			return;
		}
		const KilnPair best = region.trials.trials[0].candidate.pair;
		const KilnColourF a = ConvertIntPixelToFloat(best.a);
		const KilnColourF b = ConvertIntPixelToFloat(best.b);
		KilnColourF variantA = MixPixelF(a, b, kAlternativeWeightSet[k].a);
		KilnColourF variantB = MixPixelF(a, b, kAlternativeWeightSet[k].b);
		if (region.settings->wideSearch)
		{
			const OrientedBBox& box = region.block->boxOf(region.mode);
			variantA = ClampToOrientedBBox(box, variantA);
			variantB = ClampToOrientedBBox(box, variantB);
		}
		if (walkSeed(region, MapToRepresentableColours(region.settings->tessel2, variantA, variantB)))
		{
			return;
		}
	}
}

/// The pairs of a few colours that stand for the window: every pair in one order, then in the other, beginning with the other order in
/// every second block.
void walkPaletteVariants(OptimiseRegion& region)
{
	std::vector<KilnColour>& entries = region.paletteEntries;
	if (entries.empty())
	{
		entries = GeneratePaletteEntries(*region.block, region.window.data(), PalettePixels4bpp.data(), kKilnWindow4Bpp,
		                                 kKilnPaletteEntries, kPaletteErrorLimit);
	}
	const bool exchangedFirst = ((region.blockX + region.blockY) & 1) != 0;
	int left = region.settings->variants;
	for (const bool secondHalf : {false, true})
	{
		for (std::size_t high = 1; high < entries.size(); ++high)
		{
			for (std::size_t low = 0; low < high; ++low)
			{
				if (left-- <= 0)
				{
					return;
				}
				const bool exchanged = secondHalf != exchangedFirst;
				const KilnPair pair = MapToRepresentableColoursInt(region.settings->tessel2, entries[exchanged ? high : low],
				                                                   entries[exchanged ? low : high]);
				if (walkSeed(region, pair))
				{
					return;
				}
			}
		}
	}
}
} // namespace

void walkSeeds(OptimiseRegion& region, const std::array<int, kKilnModeSlots>& modes, int modeCount)
{
	if (region.firstPass && region.flatNeighbourhood && tryPairsOfFlatArea(region))
	{
		return;
	}
	if (region.block->singleColour && walkSingleColour(region))
	{
		return;
	}
	// Of the other modes the best pair is enough.
	const KilnModeSlot& own = region.block->slot(region.mode);
	if (walkKept(region, own, own.count))
	{
		return;
	}
	for (int i = 0; i < modeCount; ++i)
	{
		const KilnModeSlot& other = region.block->slot(modes[i]);
		if (modes[i] != region.mode && walkKept(region, other, other.count > 0 ? 1 : 0))
		{
			return;
		}
	}
	if (region.settings->variants <= 0)
	{
		return;
	}
	if (region.mode == kKilnHardPalette)
	{
		walkPaletteVariants(region);
	}
	else
	{
		walkWeightVariants(region);
	}
}
