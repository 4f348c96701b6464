// The plain form of the work on a 4bpp window, place by place.

#include "evaluate.h"

using namespace zortexture;

namespace
{
/// The four candidates of a place, by channel.
using Candidates = std::array<std::array<int, 4>, 4>;

/// A channel of a plane at 8 bits: the top bits repeated below, 5 of a colour and 4 of alpha.
int upscaled(int around, int share, int colour, int channel)
{
	const int scaled = (around + share * (colour & kKilnWorkingMask[static_cast<unsigned>(channel)])) >> 6;
	return scaled + (scaled >> (channel < 3 ? 5 : 4));
}

bool isSet(const KilnRow& mask, int place)
{
	return mask.at(place) != 0;
}

Candidates candidatesAt(const KilnWindowModel& model, int place, const KilnPair& pair)
{
	Candidates candidates;
	const bool isPunched = isSet(model.punched, place);
	for (int c = 0; c < 4; ++c)
	{
		const int half = c / 2;
		if (isSet(model.isPalette, place))
		{
			for (int i = 0; i < 4; ++i)
			{
				const int own = isSet(model.showsA[i], place) ? pair.a[c] : isSet(model.showsB[i], place) ? pair.b[c] : 0;
				candidates[i][c] = own + static_cast<int>(model.fixed[i][half].at(place, c % 2));
			}
			continue;
		}
		const int share = static_cast<int>(model.share.at(place));
		const int a = upscaled(static_cast<int>(model.aroundA[half].at(place, c % 2)), share, pair.a[c], c);
		const int b = upscaled(static_cast<int>(model.aroundB[half].at(place, c % 2)), share, pair.b[c], c);
		const bool isShown = !isPunched || (c < 3 && !model.tessel2);
		candidates[0][c] = a;
		candidates[1][c] = isPunched ? (a + b) >> 1 : (5 * a + 3 * b) >> 3;
		candidates[2][c] = !isShown ? 0 : isPunched ? (a + b) >> 1 : (3 * a + 5 * b) >> 3;
		candidates[3][c] = b;
	}
	return candidates;
}

std::array<int, 4> residualOf(const KilnWindowModel& model, int place, const std::array<int, 4>& candidate)
{
	std::array<int, 4> residual;
	for (int c = 0; c < 4; ++c)
	{
		residual[c] = static_cast<int>(model.target[c / 2].at(place, c % 2)) - candidate[c];
	}
	return residual;
}

void costOf(const KilnWindowModel& model, int place, const Candidates& candidates, KilnCosts& costs)
{
	for (int i = 0; i < 4; ++i)
	{
		const std::array<int, 4> residual = residualOf(model, place, candidates[i]);
		costs[i] = 0;
		for (int c = 0; c < 4; ++c)
		{
			const int scaled = residual[c] * (c == 3 ? static_cast<int>(model.scale.at(place, 1)) : 1);
			costs[i] += static_cast<std::uint32_t>(scaled * scaled);
		}
	}
	if (isSet(model.isFree, place))
	{
		costs[kKilnPunchThroughIndex] = 0;
	}
}

void recordPlace(const KilnWindowModel& model, int place, const Candidates& candidates, int index, KilnFittingParams& params)
{
	const std::array<int, 4> residual = residualOf(model, place, candidates[index]);
	for (int half = 0; half < 2; ++half)
	{
		params.residual[half].set(place, static_cast<unsigned>(residual[2 * half]), static_cast<unsigned>(residual[2 * half + 1]));
	}
	int share = static_cast<int>(model.share.at(place));
	int weight = std::array<int, 4>{0, 3, 5, 8}[index];
	if (isSet(model.isPalette, place))
	{
		share = isSet(model.showsA[index], place) || isSet(model.showsB[index], place) ? kKilnFullWeight : 0;
		weight = isSet(model.showsB[index], place) ? 8 : 0;
	}
	else if (isSet(model.punched, place))
	{
		share = index == kKilnPunchThroughIndex ? 0 : share;
		weight = std::array<int, 4>{0, 4, 4, 8}[index];
	}
	params.influenceA.setBoth(place, static_cast<unsigned>(share * (8 - weight)));
	params.influenceB.setBoth(place, static_cast<unsigned>(share * weight));
}

std::uint64_t evaluatePlaces(const KilnWindowModel& model, int first, int end, const KilnPair& pair, KilnDetail detail,
                             KilnFittingParams* params)
{
	std::uint64_t sum = 0;
	for (int place = first; place < end; ++place)
	{
		const Candidates candidates = candidatesAt(model, place, pair);
		KilnCosts costs;
		costOf(model, place, candidates, costs);
		const int index = kilnChooseCandidate({costs[0], costs[1], costs[2], costs[3]}, false);
		sum += costs[index];
		if (detail == kKilnForFit)
		{
			recordPlace(model, place, candidates, index, *params);
		}
		else if (detail == kKilnIndices)
		{
			params->indices.setBoth(place, static_cast<unsigned>(index));
		}
	}
	return sum;
}
} // namespace

template<>
void KilnKernels<eSimdPlain>::evaluate4Bpp(const KilnWindowModel& model, const KilnPair& pair, std::uint64_t limit, KilnDetail detail,
                                           KilnFittingParams& params, KilnErrors& errors)
{
	errors = {};
	errors.rim = model.rimError;
	errors.own = evaluatePlaces(model, 0, kKilnOwnPlaces, pair, detail, &params);
	errors.total = errors.own + errors.rim;
	if (errors.total < limit)
	{
		errors.outer = evaluatePlaces(model, kKilnOwnPlaces, kKilnInnerPixels, pair, detail, &params);
		errors.total += errors.outer;
	}
}

template<>
std::uint64_t KilnKernels<eSimdPlain>::rimError4Bpp(const KilnWindowModel& model)
{
	return evaluatePlaces(model, kKilnRimPlace, kKilnEndPlace, {}, kKilnErrorsAlone, nullptr);
}

template<>
void KilnKernels<eSimdPlain>::cost4Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnCosts* costs)
{
	for (int place = 0; place < kKilnInnerPixels; ++place)
	{
		costOf(model, place, candidatesAt(model, place, pair), costs[place]);
	}
}

template<>
void KilnKernels<eSimdPlain>::record4Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnFittingParams& params)
{
	for (int place = 0; place < kKilnInnerPixels; ++place)
	{
		recordPlace(model, place, candidatesAt(model, place, pair), static_cast<int>(params.indices.at(place)), params);
	}
}

template<>
void KilnKernels<eSimdPlain>::sumNormalEquations(const KilnFittingParams& params, int first, int end, KilnNormalSums& sums)
{
	sums = {};
	for (int place = first; place < end; ++place)
	{
		const int u = params.influenceA.signedAt(place);
		const int v = params.influenceB.signedAt(place);
		sums.uu += u * u;
		sums.uv += u * v;
		sums.vv += v * v;
		for (int c = 0; c < 4; ++c)
		{
			const int residual = params.residual[c / 2].signedAt(place, c % 2);
			sums.u[c] += u * residual;
			sums.v[c] += v * residual;
		}
	}
}
