#include "optimise.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>

#include "analygrapprop.h"
#include "region.h"

namespace
{
/// Flips of the hard flags up-left, up and left; the last of them is the one that is written.
constexpr int kHardVariants = 8;
constexpr int kLeftFlip = 4;
/// A window of a single colour needs no further modes.
constexpr int kSingleColourModes = 2;

int wrapped(int position, int size)
{
	return (position + size) % size;
}

/// The error at which a trial is given up: none in the first pass, which has no errors yet.
std::uint64_t trialLimit(const KilnBlock& block, bool firstPass)
{
	constexpr std::uint64_t kSmallest = 100;
	constexpr std::uint64_t kFactor = 100;
	constexpr std::uint64_t kLargestScaled = 21474836;
	if (firstPass)
	{
		return std::numeric_limits<std::uint64_t>::max();
	}
	const std::uint64_t error = std::max(block.current().error, kSmallest);
	return error >= kLargestScaled ? error : error * kFactor;
}

/// Copies what surrounds a block.
void enterBlock(OptimiseRegion& region, const KilnThreadRecord& record, int blockX, int blockY)
{
	const KilnSettings& settings = *record.settings;
	KilnBlockRows& blocks = *record.blocks;
	KilnBlock& block = blocks[blockY][blockX];
	block.tag = record.tag;
	region.block = &block;
	region.blockX = blockX;
	region.blockY = blockY;
	CopyWindow(*record.image, settings, blockX, blockY, region.window.data());
	GatherNeighbours(blocks, settings, blockX, blockY, region.colours, region.modes);
	region.flatNeighbourhood = true;
	for (int i = 0; i < 9; ++i)
	{
		const int x = wrapped(blockX + i % 3 - 1, settings.blocksX);
		const int y = wrapped(blockY + i / 3 - 1, settings.blocksY);
		region.isSelf[i] = x == blockX && y == blockY;
		region.flatNeighbourhood = region.flatNeighbourhood && blocks[y][x].singleColour;
	}
	region.paletteEntries.clear();
	region.useRegions = settings.bpp == 4 && settings.wideSearch && block.isGraphics;
	if (region.useRegions)
	{
		KilnRegions regions;
		AnalyseGraphicsProperties(region.window.data(), settings, regions);
		region.regions = kilnRegionPlaces(regions);
	}
	kilnSetTargets(settings, region.window.data(), settings.bpp == 4 && !settings.wideSearch, region.model);
	forgetSurroundings(region);
}

/// Walks the seeds under flips of flags upwards. Those belong to other rows and are not written: such a trial only finds a pair, which
/// counts for what it costs without them.
void walkUnderUpwardFlips(OptimiseRegion& region, const std::array<int, kKilnModeSlots>& modes, int modeCount, int mode, int hardVariant)
{
	const KilnTrialList soFar = region.trials;
	region.trials.count = 0;
	setTrialMode(region, mode, hardVariant);
	walkSeeds(region, modes, modeCount);
	const KilnTrialList found = region.trials;
	region.trials = soFar;
	if (found.count == 0)
	{
		return;
	}
	const KilnPair& pair = found.trials[0].candidate.pair;
	const int written = hardVariant & kLeftFlip;
	setTrialMode(region, mode, written);
	KilnErrors errors;
	evaluatePair(region, pair, region.limit, kKilnErrorsAlone, errors);
	if (errors.total < region.limit)
	{
		addTrial(region.trials, {pair, errors.total, errors.own}, written);
	}
}

/// Tries a mode under every flip of the neighbours' hard flags.
void tryMode(OptimiseRegion& region, const std::array<int, kKilnModeSlots>& modes, int modeCount, int mode)
{
	const KilnSettings& settings = *region.settings;
	const int variants = settings.hardNeighbours && !region.flatNeighbourhood ? kHardVariants : 1;
	region.trials.count = 0;
	for (int h = 0; h < variants; h += settings.hardVariantStep)
	{
		if ((h & kLeftFlip) != h)
		{
			walkUnderUpwardFlips(region, modes, modeCount, mode, h);
			continue;
		}
		setTrialMode(region, mode, h);
		walkSeeds(region, modes, modeCount);
	}
}

/// Flips the hard flag of a block, which keeps its pair.
void flipHardFlag(KilnBlock& block, int bpp)
{
	const KilnKept current = block.current();
	block.currentMode ^= kilnHardBit(bpp);
	KilnModeSlot& slot = block.slot(block.currentMode);
	slot.mode = static_cast<std::uint8_t>(block.currentMode);
	slot.count = static_cast<std::uint8_t>(std::min(slot.count + 1, kKilnMaxKept));
	std::copy_backward(slot.kept.begin(), slot.kept.begin() + slot.count - 1, slot.kept.begin() + slot.count);
	slot.kept[0] = current;
}

void optimiseBlock(OptimiseRegion& region, KilnBlockRows& blocks)
{
	const KilnSettings& settings = *region.settings;
	KilnBlock& block = *region.block;
	std::array<int, kKilnModeSlots> modes = {};
	int modeCount = ConstructListOfNeededModes(settings, block, settings.hardAllowed, modes);
	if (block.singleColour)
	{
		modeCount = std::min(modeCount, kSingleColourModes);
	}

	int bestMode = -1;
	KilnTrial best;
	for (int i = 0; i < modeCount; ++i)
	{
		tryMode(region, modes, modeCount, modes[i]);
		if (region.trials.count == 0)
		{
			continue;
		}
		keepTrials(region.trials, settings.candidatesKept, block.slot(modes[i]));
		const KilnTrial& first = region.trials.trials[0];
		if (bestMode < 0 || first.candidate.error < best.candidate.error)
		{
			bestMode = modes[i];
			best = first;
		}
	}
	if (bestMode < 0)
	{
		return;
	}
	block.currentMode = bestMode;
	if ((best.hardVariant & kLeftFlip) != 0)
	{
		flipHardFlag(blocks[region.blockY][wrapped(region.blockX - 1, settings.blocksX)], settings.bpp);
	}
}

void runPhase(OptimiseRegion& region, KilnThreadRecord& record)
{
	const KilnSettings& settings = *record.settings;
	region.settings = &settings;
	region.kernels = kilnKernels();
	InitialiseWindowModel(settings, region.model);
	InitialisePackedFittingParams(region.params);
	region.firstPass = settings.iterations <= 1;
	record.forEachRow(
	    [&](int index)
	    {
		    const int blockY = 2 * index + record.parity;
		    for (int i = 0; i < settings.blocksX && blockY < settings.blocksY; ++i)
		    {
			    const int blockX = exchangedColumn(i, settings.blocksX);
			    KilnBlock& block = (*record.blocks)[blockY][blockX];
			    if (block.current().error < settings.errorThreshold && !settings.modesChanged)
			    {
				    block.tag = record.tag;
				    continue;
			    }
			    enterBlock(region, record, blockX, blockY);
			    region.limit = trialLimit(block, region.firstPass);
			    optimiseBlock(region, *record.blocks);
		    }
	    });
}
} // namespace

void* RunAnOptimisePhaseThread(void* threadRecord)
{
	auto& record = *static_cast<KilnThreadRecord*>(threadRecord);
	try
	{
		const auto region = std::make_unique<OptimiseRegion>();
		runPhase(*region, record);
	}
	catch (const std::bad_alloc&)
	{
		// Palettes need memory too, for every block; no exception may leave a thread, or a stage whose threads still run.
		std::fputs("Err: Failed to allocate OptimiseRegion working space!!\n", stderr);
		record.failed = true;
	}
	return nullptr;
}
