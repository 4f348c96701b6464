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

/// The pair of the block: channels of A and B for blending, and each colour twice for palettes.
struct PairLanes
{
	Lanes16 blended;
	Lanes16 a;
	Lanes16 b;
};

PairLanes lanesOf(const KilnPair& pair)
{
	const auto twice = [](const KilnColour& colour)
	{
		return loadLanes(KilnShorts{colour[0], colour[1], colour[2], colour[3], colour[0], colour[1], colour[2], colour[3]});
	};
	return {kilnPairLanes(pair), twice(pair.a), twice(pair.b)};
}

/// Two candidates of a palette pixel, the block's own colours where they belong.
Lanes16 paletteLanes(const KilnPaletteModel& palette, int half, const PairLanes& pair)
{
	return loadLanes(palette.fixed[half]) + (loadLanes(palette.maskA[half]) & pair.a) + (loadLanes(palette.maskB[half]) & pair.b);
}

/// What the candidates 0, 3, 1 and 2 of a pixel of a kind cost.
template<KilnPixelKind kKind>
[[gnu::always_inline]] inline Lanes32 costPixelOf(const KilnWindowModel& model, int pixel, const PairLanes& pair, KilnResiduals& residuals)
{
	const KilnPixelModel& entry = model.pixels[pixel];
	if constexpr (kKind == kKilnPalettePixel)
	{
		const KilnPaletteModel& palette = model.palette[pixel];
		return kilnMeasure(entry, loadLanes(entry.target), {paletteLanes(palette, 0, pair), paletteLanes(palette, 1, pair)}, residuals);
	}
	const Lanes16 planes = kilnUpscaledPlanes(entry, pair.blended);
	if constexpr (kKind == kKilnStandardPixel)
	{
		return kilnMeasure(entry, loadLanes(entry.target), kilnMixCandidates(planes), residuals);
	}
	const Lanes32 errors = kilnMeasure(entry, loadLanes(entry.target), kilnMixPunchThrough(planes, model.records->tessel2), residuals);
	return kKind == kKilnFreePunchThroughPixel ? clearLast(errors) : errors;
}

Lanes32 costPixel(const KilnWindowModel& model, int pixel, const PairLanes& pair, KilnResiduals& residuals)
{
	switch (model.kinds[pixel])
	{
	case kKilnStandardPixel:
		return costPixelOf<kKilnStandardPixel>(model, pixel, pair, residuals);
	case kKilnPunchThroughPixel:
		return costPixelOf<kKilnPunchThroughPixel>(model, pixel, pair, residuals);
	case kKilnFreePunchThroughPixel:
		return costPixelOf<kKilnFreePunchThroughPixel>(model, pixel, pair, residuals);
	default:
		return costPixelOf<kKilnPalettePixel>(model, pixel, pair, residuals);
	}
}

void recordInfluence(int pixel, int index, int share, int weight, KilnFittingParams& params)
{
	params.influenceA[pixel] = static_cast<std::int16_t>(share * (8 - weight));
	params.influenceB[pixel] = static_cast<std::int16_t>(share * weight);
	params.results[pixel] = {static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(weight)};
}

/// Notes the choice of a standard pixel for the fit.
void recordStandardPixel(const KilnWindowModel& model, int pixel, int index, const KilnResiduals& residuals, KilnFittingParams& params)
{
	constexpr std::array<std::uint8_t, 4> kWeights = {0, 3, 5, 8};
	params.residual[pixel] = residuals[kKilnLanePlace[index]];
	recordInfluence(pixel, index, model.pixels[pixel].blockWeight[0], kWeights[index], params);
}

/// Notes the choice of any pixel for the fit.
void recordPixel(const KilnWindowModel& model, int pixel, int index, const KilnResiduals& residuals, KilnFittingParams& params)
{
	constexpr std::array<std::uint8_t, 4> kPunchThroughWeights = {0, 4, 4, 8};
	const KilnPixelKind kind = model.kinds[pixel];
	if (kind == kKilnStandardPixel)
	{
		recordStandardPixel(model, pixel, index, residuals, params);
		return;
	}
	params.residual[pixel] = residuals[kKilnLanePlace[index]];
	if (kind == kKilnPalettePixel)
	{
		const KilnBlendRecord& record = model.records->pixels[pixel];
		const int share = record.paletteWeights[index] == kKilnFullWeight ? kKilnFullWeight : 0;
		recordInfluence(pixel, index, share, record.paletteMixes[index], params);
		return;
	}
	const int share = index == kKilnPunchThroughIndex ? 0 : model.pixels[pixel].blockWeight[0];
	recordInfluence(pixel, index, share, kPunchThroughWeights[index], params);
}

bool allStandard(const KilnWindowModel& model, int first)
{
	return model.kinds[kOrder[first]] == kKilnStandardPixel && model.kinds[kOrder[first + 1]] == kKilnStandardPixel &&
	       model.kinds[kOrder[first + 2]] == kKilnStandardPixel && model.kinds[kOrder[first + 3]] == kKilnStandardPixel;
}

/// Lets four pixels of the order take their best candidates.
/// @return their errors.
template<bool kStandard>
Lanes32 evaluateFour(const KilnWindowModel& model, int first, const PairLanes& pair, KilnFittingParams& params)
{
	std::array<Lanes32, 4> errors;
	alignas(16) std::array<KilnResiduals, 4> residuals;
	for (int i = 0; i < 4; ++i)
	{
		errors[i] = kStandard ? costPixelOf<kKilnStandardPixel>(model, kOrder[first + i], pair, residuals[i])
		                      : costPixel(model, kOrder[first + i], pair, residuals[i]);
	}
	const LaneChoices choices = chooseOfFour(errors);
	std::array<std::uint32_t, 4> indices;
	storeLanes(indices.data(), choices.indices);
	for (int i = 0; i < 4; ++i)
	{
		(kStandard ? recordStandardPixel : recordPixel)(model, kOrder[first + i], static_cast<int>(indices[i]), residuals[i], params);
	}
	return choices.errors;
}

/// The same for a part of the order, whose bounds are multiples of 4.
/// @return the sum of their errors.
std::uint64_t evaluateOrdered(const KilnWindowModel& model, int first, int end, const PairLanes& pair, KilnFittingParams& params)
{
	Lanes32 sum = zeroLanes();
	for (; first < end; first += 4)
	{
		sum = sum + (allStandard(model, first) ? evaluateFour<true>(model, first, pair, params)
		                                       : evaluateFour<false>(model, first, pair, params));
	}
	return sumOfLanes(sum);
}

void evaluateRegions(const KilnWindowModel& model, const PairLanes& pair, const KilnRegions& regions, KilnFittingParams& params,
                     KilnErrors& errors)
{
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
				storeLanes(costs[pixel].data(), costPixel(model, pixel, pair, residuals[pixel]));
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
	const PairLanes none = lanesOf({});
	std::uint64_t sum = 0;
	for (int pixel = 0; pixel < kKilnWindow4Bpp; ++pixel)
	{
		if (model.records->pixels[pixel].pixelClass == kKilnRim)
		{
			KilnResiduals residuals;
			std::array<std::uint32_t, 4> costs;
			storeLanes(costs.data(), costPixel(model, pixel, none, residuals));
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
	const PairLanes lanes = lanesOf(pair);
	if (regions != nullptr)
	{
		evaluateRegions(model, lanes, *regions, params, errors);
		errors.total = errors.own + errors.outer + errors.rim;
		return;
	}
	errors.own = evaluateOrdered(model, 0, kOwnPixels, lanes, params);
	errors.total = errors.own + errors.rim;
	if (errors.total < limit)
	{
		errors.outer = evaluateOrdered(model, kOwnPixels, kOrderedPixels, lanes, params);
		errors.total += errors.outer;
	}
}
