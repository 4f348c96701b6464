#include <algorithm>
#include <cmath>
#include <optional>

#include "optimise.h"
#include "region.h"
#include "representable.h"

namespace
{
/// The longest step of a channel.
constexpr float kLargestStep = 50;
/// Steps between these lengths are lengthened to the upper one, to leave a level of quantisation.
constexpr float kSmallStep = 2;
constexpr float kSmallestStep = 4.1F;
/// Below this a fit has converged.
constexpr float kConverged = 1;
/// Collinear colours further apart than this are pulled together.
constexpr float kCollinearSpread = 16;

float largestChannel(const KilnColourF& delta)
{
	float largest = 0;
	for (const float channel : delta)
	{
		largest = std::max(largest, std::fabs(channel));
	}
	return largest;
}

void scaleTo(KilnColourF& delta, float from, float to)
{
	const float factor = to / from;
	for (float& channel : delta)
	{
		channel *= factor;
	}
}

KilnColourF sum(const KilnColourF& colour, const KilnColourF& delta)
{
	KilnColourF result;
	for (int c = 0; c < 4; ++c)
	{
		result[c] = colour[c] + delta[c];
	}
	return result;
}

struct FloatPair
{
	KilnColourF a;
	KilnColourF b;
};

/// Moves both, and pulls a pair together that the pixels do not tell apart.
FloatPair moveCollinear(const KilnColourF& a, const KilnColourF& b, const KilnFit& fit)
{
	const KilnColourF movedA = sum(a, fit.deltaA);
	const KilnColourF movedB = sum(b, fit.deltaB);
	KilnColourF apart;
	for (int c = 0; c < 4; ++c)
	{
		apart[c] = movedA[c] - movedB[c];
	}
	if (largestChannel(apart) <= kCollinearSpread)
	{
		return {movedA, movedB};
	}
	FloatPair pair;
	for (int c = 0; c < 4; ++c)
	{
		pair.a[c] = 0.625F * movedA[c] + 0.375F * movedB[c];
		pair.b[c] = 0.375F * movedA[c] + 0.625F * movedB[c];
	}
	return pair;
}

FloatPair moveByFit(const KilnPair& pair, const KilnFit& fit)
{
	const KilnColourF a = ConvertIntPixelToFloat(pair.a);
	const KilnColourF b = ConvertIntPixelToFloat(pair.b);
	FloatPair moved;
	switch (fit.kind)
	{
	case 0:
		return {sum(a, fit.deltaA), sum(b, fit.deltaB)};
	case 1:
		AdjustUnderusedCandidates(b, a, fit.deltaB, moved.b, moved.a);
		return moved;
	case 2:
		AdjustUnderusedCandidates(a, b, fit.deltaA, moved.a, moved.b);
		return moved;
	default:
		return moveCollinear(a, b, fit);
	}
}

/// One least-squares step from the last evaluation. Nothing when the fit has converged.
std::optional<KilnPair> fitPair(const OptimiseRegion& region, const KilnPair& pair)
{
	KilnFit fit = FitOnlyCentralRepPairsToWeights(*region.settings, region.params);
	std::array<float, 2> lengths = {};
	const std::array<KilnColourF*, 2> deltas = {&fit.deltaA, &fit.deltaB};
	for (int i = 0; i < 2; ++i)
	{
		lengths[i] = largestChannel(*deltas[i]);
		if (lengths[i] > kLargestStep)
		{
			scaleTo(*deltas[i], lengths[i], kLargestStep);
			lengths[i] = kLargestStep;
		}
	}
	if (fit.kind == 0 && lengths[0] < kConverged && lengths[1] < kConverged)
	{
		return std::nullopt;
	}
	for (int i = 0; i < 2; ++i)
	{
		if (lengths[i] > kSmallStep && lengths[i] < kSmallestStep)
		{
			scaleTo(*deltas[i], lengths[i], kSmallestStep);
		}
	}

	FloatPair moved = moveByFit(pair, fit);
	if (region.settings->wideSearch)
	{
		const OrientedBBox& box = region.block->boxOf(region.mode);
		moved.a = ClampToOrientedBBox(box, moved.a);
		moved.b = ClampToOrientedBBox(box, moved.b);
	}
	return MapToRepresentableColours(region.settings->tessel2, moved.a, moved.b);
}

/// At equal error the pair with the larger error in the block's own area wins.
bool isBetter(const KilnErrors& errors, const KilnCandidate& best)
{
	return errors.total < best.error || (errors.total == best.error && errors.own > best.secondaryError);
}
} // namespace

void setTrialMode(OptimiseRegion& region, int mode, int hardVariant)
{
	region.mode = mode;
	region.hardVariant = hardVariant;
	for (int i = 0; i < 9; ++i)
	{
		if (region.isSelf[i])
		{
			region.modes[i] = mode;
		}
	}
	CreateBlendingAndUpdateWeights(region.modes, hardVariant, *region.settings, region.records);
	PrepareWindowModel(region.records, region.window.data(), region.colours, !region.settings->wideSearch, region.model);
	region.tried.clear();
}

void evaluatePair(OptimiseRegion& region, const KilnPair& pair, KilnErrors& errors)
{
	if (region.settings->bpp == 4)
	{
		EvalAllCandsAndGetErrors4BPP(region.model, pair, region.useRegions ? &region.regions : nullptr, region.limit, region.params,
		                             errors);
	}
	else
	{
		EvalAllCandsAndGetErrors2BPP(region.model, pair, region.params, errors);
	}
}

bool walkSeed(OptimiseRegion& region, const KilnPair& seed)
{
	KilnCandidate best;
	bool found = false;
	KilnPair pair = seed;
	for (int round = 1; round <= region.settings->iterations && region.tried.insert(pair); ++round)
	{
		KilnErrors errors;
		evaluatePair(region, pair, errors);
		if (errors.total >= region.limit)
		{
			break;
		}
		if (!found || isBetter(errors, best))
		{
			best = {pair, errors.total, errors.own};
			found = true;
		}
		const bool isLast = round == region.settings->iterations;
		const std::optional<KilnPair> next = isLast ? std::nullopt : fitPair(region, pair);
		if (!next)
		{
			break;
		}
		pair = *next;
	}
	if (!found)
	{
		return false;
	}
	addTrial(region.trials, best, region.hardVariant);
	return best.error == 0 || best.error < region.settings->errorThreshold;
}
