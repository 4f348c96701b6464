/// @file pixelkernel.h
/// The arithmetic of one pixel of a window model, on lanes.
#pragma once

#include "evaluate.h"
#include "lanes.h"

/// Lanes of the working bits of A, then of B.
inline Lanes16 kilnPairLanes(const KilnPair& pair)
{
	KilnShorts lanes;
	for (int c = 0; c < 4; ++c)
	{
		lanes[c] = pair.a[c] & kKilnWorkingMask[c];
		lanes[4 + c] = pair.b[c] & kKilnWorkingMask[c];
	}
	return loadLanes(lanes);
}

/// The upscaled A and B of a pixel at 8 bits, under the pair of the block.
inline Lanes16 kilnUpscaledPlanes(const KilnPixelModel& pixel, Lanes16 pair)
{
	// The top bits repeated below, 5 of a colour and 4 of alpha, as high halves of products.
	constexpr KilnShorts kExpand = {1 << 11, 1 << 11, 1 << 11, 1 << 12, 1 << 11, 1 << 11, 1 << 11, 1 << 12};
	const Lanes16 scaled = shiftRight<6>(loadLanes(pixel.around) + broadcastLanes(pixel.blockWeight) * pair);
	return scaled + multiplyHigh(scaled, loadLanes(kExpand));
}

/// The four candidates of a pixel: 0 and 3, then 1 and 2.
struct KilnCandidateLanes
{
	Lanes16 ends;
	Lanes16 middles;
};

inline KilnCandidateLanes kilnMixCandidates(Lanes16 planes, bool punchThrough, bool tessel2)
{
	constexpr KilnShorts kStandardA = {5, 5, 5, 5, 3, 3, 3, 3};
	constexpr KilnShorts kStandardB = {3, 3, 3, 3, 5, 5, 5, 5};
	constexpr KilnShorts kHalf = {4, 4, 4, 4, 4, 4, 4, 4};
	constexpr KilnShorts kNoAlpha = {0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0};
	constexpr KilnShorts kNothing = {0xffff, 0xffff, 0xffff, 0xffff, 0, 0, 0, 0};
	const Lanes16 a = repeatLower(planes);
	const Lanes16 b = repeatUpper(planes);
	if (!punchThrough)
	{
		return {planes, shiftRight<3>(a * loadLanes(kStandardA) + b * loadLanes(kStandardB))};
	}
	// Coloured transparency in the first generation, transparent black in the second.
	const Lanes16 half = loadLanes(kHalf);
	return {planes, shiftRight<3>(a * half + b * half) & loadLanes(tessel2 ? kNothing : kNoAlpha)};
}

/// What the candidates of a pixel cost, and their colours; in the order of the lanes.
struct KilnPixelCosts
{
	/// Of candidates 0, 3, 1, 2.
	alignas(16) std::array<std::uint32_t, 4> errors;
	alignas(16) std::array<std::array<std::uint16_t, 4>, 4> colours;
};

/// The place of a candidate in KilnPixelCosts.
constexpr std::array<std::uint8_t, 4> kKilnCostPlace = {0, 2, 3, 1};

inline void kilnMeasureCandidates(const KilnPixelModel& pixel, Lanes16 target, const KilnCandidateLanes& candidates, KilnPixelCosts& costs)
{
	const Lanes16 scale = loadLanes(pixel.scale);
	storeLanes(costs.errors.data(), sumsOfSquares((candidates.ends - target) * scale, (candidates.middles - target) * scale));
	storeLanes(costs.colours[0].data(), candidates.ends);
	storeLanes(costs.colours[2].data(), candidates.middles);
	if (pixel.freePunchThrough)
	{
		costs.errors[kKilnCostPlace[kKilnPunchThroughIndex]] = 0;
	}
}

/// The rule of kilnChooseCandidate on a pixel's costs.
inline int kilnChoose(const KilnPixelCosts& costs, bool endsOnly)
{
	const std::uint32_t end = costs.errors[0] > costs.errors[1] ? costs.errors[1] : costs.errors[0];
	const std::uint32_t middle = costs.errors[2] < costs.errors[3] ? costs.errors[2] : costs.errors[3];
	const int endIndex = costs.errors[0] > costs.errors[1] ? 3 : 0;
	const int middleIndex = costs.errors[2] < costs.errors[3] ? 1 : 2;
	return endsOnly || middle > end ? endIndex : middleIndex;
}
