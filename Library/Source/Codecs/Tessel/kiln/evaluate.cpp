#include "evaluate.h"

#include "pixelkernel.h"

namespace
{
/// An entry behind the window, which fills up the last group of four pixels and costs nothing.
constexpr int kNoPixel = kKilnWindow4Bpp;
constexpr int kOwnPixels = 16;
/// The pixels within the rim, those of the block's own area first, in groups of four.
constexpr int kOrderedPixels = 52;

constexpr std::array<std::uint8_t, kOrderedPixels> makeOrder()
{
	std::array<std::uint8_t, kOrderedPixels> order = {};
	unsigned own = 0;
	unsigned outer = kOwnPixels;
	for (unsigned y = 1; y < 8; ++y)
	{
		for (unsigned x = 1; x < 8; ++x)
		{
			const bool isOwn = x >= 2 && x < 6 && y >= 2 && y < 6;
			order[isOwn ? own++ : outer++] = static_cast<std::uint8_t>(9 * y + x);
		}
	}
	for (; outer < kOrderedPixels; ++outer)
	{
		order[outer] = kNoPixel;
	}
	return order;
}
constexpr std::array<std::uint8_t, kOrderedPixels> kOrder = makeOrder();

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
		const unsigned place = kKilnLanePlace[i];
		for (unsigned c = 0; c < 4; ++c)
		{
			lanes[place / 2][4 * (place & 1) + c] = colour[c];
		}
	}
	return {loadLanes(lanes[0]), loadLanes(lanes[1])};
}

/// What the candidates 0, 3, 1 and 2 of a pixel cost.
Lanes32 costPixel(const KilnWindowModel& model, int pixel, const KilnPair& pair, Lanes16 pairLanes, KilnResiduals& residuals)
{
	const KilnPixelModel& entry = model.pixels[pixel];
	const Lanes16 target = loadLanes(entry.target);
	const KilnPixelKind kind = model.kinds[pixel];
	if (kind == kKilnStandardPixel)
	{
		return kilnMeasure(entry, target, kilnMixCandidates(kilnUpscaledPlanes(entry, pairLanes)), residuals);
	}
	if (kind == kKilnPalettePixel)
	{
		return kilnMeasure(entry, target, paletteCandidates(model, pixel, pair), residuals);
	}
	const Lanes16 planes = kilnUpscaledPlanes(entry, pairLanes);
	Lanes32 errors = kilnMeasure(entry, target, kilnMixPunchThrough(planes, model.records->tessel2), residuals);
	return kind == kKilnFreePunchThroughPixel ? clearLast(errors) : errors;
}

/// Notes the choice of a pixel for the fit.
void recordPixel(const KilnWindowModel& model, int pixel, int index, const KilnResiduals& residuals, KilnFittingParams& params)
{
	constexpr std::array<std::uint8_t, 4> kStandardWeights = {0, 3, 5, 8};
	constexpr std::array<std::uint8_t, 4> kPunchThroughWeights = {0, 4, 4, 8};
	int weight = kStandardWeights[index];
	int share = model.pixels[pixel].blockWeight[0];
	const KilnPixelKind kind = model.kinds[pixel];
	if (kind == kKilnPalettePixel)
	{
		const KilnBlendRecord& record = model.records->pixels[pixel];
		weight = record.paletteMixes[index];
		share = record.paletteWeights[index] == kKilnFullWeight ? kKilnFullWeight : 0;
	}
	else if (kind != kKilnStandardPixel)
	{
		weight = kPunchThroughWeights[index];
		share = index == kKilnPunchThroughIndex ? 0 : share;
	}
	params.residual[pixel] = residuals[kKilnLanePlace[index]];
	params.influenceA[pixel] = static_cast<std::int16_t>(share * (8 - weight));
	params.influenceB[pixel] = static_cast<std::int16_t>(share * weight);
	params.results[pixel] = {static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(weight)};
}

/// Lets four pixels of the order take their best candidates.
/// @return their errors.
Lanes32 evaluateFour(const KilnWindowModel& model, int first, const KilnPair& pair, Lanes16 pairLanes, KilnFittingParams& params)
{
	std::array<Lanes32, 4> errors;
	alignas(16) std::array<KilnResiduals, 4> residuals;
	for (int i = 0; i < 4; ++i)
	{
		errors[i] = costPixel(model, kOrder[first + i], pair, pairLanes, residuals[i]);
	}
	const LaneChoices choices = chooseOfFour(errors);
	std::array<std::uint32_t, 4> indices;
	storeLanes(indices.data(), choices.indices);
	for (int i = 0; i < 4; ++i)
	{
		recordPixel(model, kOrder[first + i], static_cast<int>(indices[i]), residuals[i], params);
	}
	return choices.errors;
}

void evaluateRegions(const KilnWindowModel& model, const KilnPair& pair, const KilnRegions& regions, KilnFittingParams& params,
                     KilnErrors& errors)
{
	const Lanes16 pairLanes = kilnPairLanes(pair);
	std::array<std::array<std::uint32_t, 4>, kKilnWindow4Bpp> costs;
	alignas(16) std::array<KilnResiduals, kKilnWindow4Bpp> residuals;
	int first = 0;
	while (first < kKilnWindow4Bpp)
	{
		const std::uint8_t region = regions.map[regions.order[first]];
		std::array<std::uint64_t, 4> sums = {};
		int end = first;
		for (; end < kKilnWindow4Bpp && regions.map[regions.order[end]] == region; ++end)
		{
			const int pixel = regions.order[end];
			if (model.records->pixels[pixel].pixelClass != kKilnRim)
			{
				storeLanes(costs[pixel].data(), costPixel(model, pixel, pair, pairLanes, residuals[pixel]));
				for (int i = 0; i < 4; ++i)
				{
					sums[i] += costs[pixel][kKilnLanePlace[i]];
				}
			}
		}
		const int index = kilnChooseCandidate(sums, false);
		for (; first < end; ++first)
		{
			const int pixel = regions.order[first];
			const std::uint8_t pixelClass = model.records->pixels[pixel].pixelClass;
			if (pixelClass != kKilnRim)
			{
				(pixelClass == kKilnOwn ? errors.own : errors.outer) += costs[pixel][kKilnLanePlace[index]];
				recordPixel(model, pixel, index, residuals[pixel], params);
			}
		}
	}
}
} // namespace

void InitialisePackedFittingParams(KilnFittingParams& params)
{
	params = {};
}

std::uint64_t kilnRimError4Bpp(const KilnWindowModel& model)
{
	const KilnPair none = {};
	std::uint64_t sum = 0;
	for (int pixel = 0; pixel < kKilnWindow4Bpp; ++pixel)
	{
		if (model.records->pixels[pixel].pixelClass == kKilnRim)
		{
			KilnResiduals residuals;
			std::array<std::uint32_t, 4> costs;
			storeLanes(costs.data(), costPixel(model, pixel, none, kilnPairLanes(none), residuals));
			const int index = kilnChooseCandidate({costs[0], costs[2], costs[3], costs[1]}, false);
			sum += costs[kKilnLanePlace[index]];
		}
	}
	return sum;
}

void EvalAllCandsAndGetErrors4BPP(const KilnWindowModel& model, const KilnPair& pair, const KilnRegions* regions, std::uint64_t limit,
                                  KilnFittingParams& params, KilnErrors& errors)
{
	errors = {};
	errors.rim = model.rimError;
	if (regions != nullptr)
	{
		evaluateRegions(model, pair, *regions, params, errors);
		errors.total = errors.own + errors.outer + errors.rim;
		return;
	}
	const Lanes16 pairLanes = kilnPairLanes(pair);
	Lanes32 own = zeroLanes();
	for (int first = 0; first < kOwnPixels; first += 4)
	{
		own = own + evaluateFour(model, first, pair, pairLanes, params);
	}
	errors.own = sumOfLanes(own);
	errors.total = errors.own + errors.rim;
	if (errors.total >= limit)
	{
		return;
	}
	Lanes32 outer = zeroLanes();
	for (int first = kOwnPixels; first < kOrderedPixels; first += 4)
	{
		outer = outer + evaluateFour(model, first, pair, pairLanes, params);
	}
	errors.outer = sumOfLanes(outer);
	errors.total += errors.outer;
}
