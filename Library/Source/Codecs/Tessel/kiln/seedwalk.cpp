#include <algorithm>
#include <cmath>
#include <limits>
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
	KilnFit fit = FitOnlyCentralRepPairsToWeights(region.kernels, *region.settings, region.params);
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

/// The error at and above which the last pair of a walk can neither replace the best of the walk, nor enter the trials that are kept, nor
/// end the search.
std::uint64_t limitOfLast(const OptimiseRegion& region, const KilnCandidate* best)
{
	const KilnTrialList& trials = region.trials;
	const int kept = region.settings->candidatesKept;
	std::uint64_t error = std::numeric_limits<std::uint64_t>::max() - 1;
	if (trials.count >= kept)
	{
		error = std::max(trials.trials[static_cast<std::size_t>(kept) - 1].candidate.error, region.settings->errorThreshold);
	}
	if (best != nullptr)
	{
		error = std::min(error, best->error);
	}
	return error + 1;
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
	const KilnSettings& settings = *region.settings;
	const unsigned flags = kilnHardFlags(region.modes, hardVariant, settings.bpp);
	if (flags != region.blendedFlags)
	{
		kilnSetSurroundings(settings, region.colours, flags, region.model);
		region.blendedFlags = flags;
	}
	kilnSetKinds(settings, region.window.data(), region.colours, region.modes, flags, region.model);
	if (region.model.withRim)
	{
		// The block is P of no group on the rim, so that its own mode matters there only where it is its own neighbour.
		constexpr unsigned kOwnFlag = 1U << 4;
		const bool hasTwin = std::count(region.isSelf.begin(), region.isSelf.end(), true) > 1;
		if ((flags & ~kOwnFlag) != region.rimFlags || hasTwin)
		{
			region.model.rimError = region.kernels.rimError4Bpp(region.model);
			region.rimFlags = flags & ~kOwnFlag;
		}
	}
	else
	{
		region.model.rimError = 0;
	}
	region.tried.clear();
}

void forgetSurroundings(OptimiseRegion& region)
{
	region.blendedFlags = region.rimFlags = OptimiseRegion::kNoFlags;
}

void evaluatePair(OptimiseRegion& region, const KilnPair& pair, std::uint64_t limit, KilnDetail detail, KilnErrors& errors)
{
	if (region.settings->bpp == 4)
	{
		EvalAllCandsAndGetErrors4BPP(region.kernels, region.model, pair, region.useRegions ? &region.regions : nullptr, limit, detail,
		                             region.params, errors);
	}
	else
	{
		region.kernels.evaluate2Bpp(region.model, pair, detail, region.params, errors);
	}
}

bool walkSeed(OptimiseRegion& region, const KilnPair& seed)
{
	KilnCandidate best;
	bool found = false;
	KilnPair pair = seed;
	for (int round = 1; round <= region.settings->iterations && region.tried.insert(pair); ++round)
	{
		const bool isLast = round == region.settings->iterations;
		const std::uint64_t limit = isLast ? std::min(region.limit, limitOfLast(region, found ? &best : nullptr)) : region.limit;
		KilnErrors errors;
		evaluatePair(region, pair, limit, isLast ? kKilnErrorsAlone : kKilnForFit, errors);
		if (errors.total >= limit)
		{
			break;
		}
		if (!found || isBetter(errors, best))
		{
			best = {pair, errors.total, errors.own};
			found = true;
		}
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
