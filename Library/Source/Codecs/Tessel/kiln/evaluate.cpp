#include "evaluate.h"

#include "pixelkernel.h"

namespace
{
/// The candidates of a palette pixel, with the block's own colours where they belong.
KilnCandidateLanes paletteCandidates(const KilnWindowModel& model, int pixel, const KilnPair& pair)
{
	const KilnBlendRecord& record = model.records->pixels[pixel];
	std::array<KilnShorts, 2> lanes;
	for (unsigned i = 0; i < 4; ++i)
	{
		KilnColour colour = model.palette[pixel][i];
		if (record.paletteWeights[i] == kKilnFullWeight)
		{
			colour = record.paletteMixes[i] == 0 ? pair.a : pair.b;
		}
		const unsigned place = kKilnCostPlace[i];
		for (unsigned c = 0; c < 4; ++c)
		{
			lanes[place / 2][4 * (place & 1) + c] = colour[c];
		}
	}
	return {loadLanes(lanes[0]), loadLanes(lanes[1])};
}

void costPixel(const KilnWindowModel& model, int pixel, const KilnPair& pair, Lanes16 pairLanes, KilnPixelCosts& costs)
{
	const KilnPixelModel& entry = model.pixels[pixel];
	const KilnCandidateLanes candidates =
	    entry.localPalette ? paletteCandidates(model, pixel, pair)
	                       : kilnMixCandidates(kilnUpscaledPlanes(entry, pairLanes), entry.punchThrough, model.records->tessel2);
	kilnMeasureCandidates(entry, loadLanes(entry.target), candidates, costs);
}

/// Notes the choice of a pixel for the fit.
void recordPixel(const KilnWindowModel& model, int pixel, const KilnPixelCosts& costs, int index, KilnFittingParams& params)
{
	const KilnPixelModel& entry = model.pixels[pixel];
	const KilnBlendRecord& record = model.records->pixels[pixel];
	unsigned weight = record.candidateWeights[index];
	unsigned blockWeight = entry.punchThrough && index == kKilnPunchThroughIndex ? 0 : entry.blockWeight;
	if (entry.localPalette)
	{
		weight = record.paletteMixes[index];
		blockWeight = record.paletteWeights[index] == kKilnFullWeight ? kKilnFullWeight : 0;
	}
	const std::array<std::uint16_t, 4>& decoded = costs.colours[kKilnCostPlace[index]];
	for (int c = 0; c < 4; ++c)
	{
		params.residual[pixel][c] = static_cast<std::int16_t>(entry.target[c] - decoded[c]);
	}
	params.influenceA[pixel] = static_cast<std::int16_t>(blockWeight * (8 - weight));
	params.influenceB[pixel] = static_cast<std::int16_t>(blockWeight * weight);
	params.results[pixel] = {static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(weight)};
}

void addError(KilnErrors& errors, std::uint8_t pixelClass, std::uint32_t error)
{
	(pixelClass == kKilnOwn ? errors.own : errors.outer) += error;
}

void evaluateRegions(const KilnWindowModel& model, const KilnPair& pair, const KilnRegions& regions, KilnFittingParams& params,
                     KilnErrors& errors)
{
	const Lanes16 pairLanes = kilnPairLanes(pair);
	std::array<KilnPixelCosts, kKilnWindow4Bpp> costs;
	int first = 0;
	while (first < kKilnWindow4Bpp)
	{
		const std::uint8_t region = regions.map[regions.order[first]];
		std::array<std::uint64_t, 4> sums = {};
		int end = first;
		for (; end < kKilnWindow4Bpp && regions.map[regions.order[end]] == region; ++end)
		{
			const int pixel = regions.order[end];
			if (model.pixels[pixel].pixelClass != kKilnRim)
			{
				costPixel(model, pixel, pair, pairLanes, costs[pixel]);
				for (int i = 0; i < 4; ++i)
				{
					sums[i] += costs[pixel].errors[kKilnCostPlace[i]];
				}
			}
		}
		const int index = kilnChooseCandidate(sums, false);
		for (; first < end; ++first)
		{
			const int pixel = regions.order[first];
			const std::uint8_t pixelClass = model.pixels[pixel].pixelClass;
			if (pixelClass != kKilnRim)
			{
				addError(errors, pixelClass, costs[pixel].errors[kKilnCostPlace[index]]);
				recordPixel(model, pixel, costs[pixel], index, params);
			}
		}
	}
}
} // namespace

void InitialisePackedFittingParams(KilnFittingParams& params)
{
	params.influenceA.fill(0);
	params.influenceB.fill(0);
	params.residual.fill({});
	params.results.fill({});
}

void PrepareWindowModel(const KilnBlendRecords& records, const KilnColour* window, const KilnNeighbourColours& colours, bool withRim,
                        KilnWindowModel& model)
{
	const int pixelCount = records.bpp == 4 ? kKilnWindow4Bpp : kKilnMaxWindow;
	model.records = &records;
	// Without the block itself the sums are those of the others.
	constexpr int kCentre = 4;
	std::array<KilnShorts, 9> pairs;
	for (int i = 0; i < 9; ++i)
	{
		storeLanes(pairs[i].data(), i == kCentre ? broadcastLanes(0) : kilnPairLanes(colours[i]));
	}
	constexpr std::array<int, 4> kGroupOffsets = {0, 1, 3, 4};
	for (int pixel = 0; pixel < pixelCount; ++pixel)
	{
		const KilnBlendRecord& record = records.pixels[pixel];
		KilnPixelModel& entry = model.pixels[pixel];
		Lanes16 around = broadcastLanes(0);
		for (int i = 0; i < 4; ++i)
		{
			around = around + broadcastLanes(record.colourWeights[i]) * loadLanes(pairs[kGroupOffsets[record.quadrant] + kGroupOffsets[i]]);
		}
		storeLanes(entry.around.data(), around);
		const std::uint16_t factor = static_cast<std::uint16_t>(kilnAlphaFactor(window[pixel]));
		for (unsigned c = 0; c < 8; ++c)
		{
			entry.target[c] = window[pixel][c & 3];
			entry.scale[c] = (c & 3) == 3 ? factor : 1;
		}
		entry.blockWeight = record.blockWeight;
		entry.pixelClass = record.pixelClass;
		entry.punchThrough = record.punchThrough;
		entry.freePunchThrough = record.punchThrough && window[pixel][3] == 0;
		entry.localPalette = record.localPalette;
		entry.endsOnly = record.endsOnly;
		entry.storeClass = record.storeClass;
		if (record.localPalette)
		{
			for (int i = 0; i < 4; ++i)
			{
				model.palette[pixel][i] = kilnPaletteColour(record, i, colours);
			}
		}
	}

	model.rimError = 0;
	if (!withRim || records.bpp != 4)
	{
		return;
	}
	const KilnPair none = {};
	for (int pixel = 0; pixel < kKilnWindow4Bpp; ++pixel)
	{
		if (model.pixels[pixel].pixelClass == kKilnRim)
		{
			KilnPixelCosts costs;
			costPixel(model, pixel, none, kilnPairLanes(none), costs);
			model.rimError += costs.errors[kKilnCostPlace[kilnChoose(costs, false)]];
		}
	}
}

void EvalAllCandsAndGetErrors4BPP(const KilnWindowModel& model, const KilnPair& pair, const KilnRegions* regions, std::uint64_t limit,
                                  KilnFittingParams& params, KilnErrors& errors)
{
	constexpr int kSide = 9;
	errors = {};
	errors.rim = model.rimError;
	if (regions != nullptr)
	{
		evaluateRegions(model, pair, *regions, params, errors);
		errors.total = errors.own + errors.outer + errors.rim;
		return;
	}
	const Lanes16 pairLanes = kilnPairLanes(pair);
	errors.total = errors.rim;
	for (int y = 1; y < kSide - 1 && errors.total < limit; ++y)
	{
		for (int x = 1; x < kSide - 1; ++x)
		{
			const int pixel = kSide * y + x;
			KilnPixelCosts costs;
			costPixel(model, pixel, pair, pairLanes, costs);
			const int index = kilnChoose(costs, false);
			addError(errors, model.pixels[pixel].pixelClass, costs.errors[kKilnCostPlace[index]]);
			recordPixel(model, pixel, costs, index, params);
		}
		errors.total = errors.own + errors.outer + errors.rim;
	}
}
