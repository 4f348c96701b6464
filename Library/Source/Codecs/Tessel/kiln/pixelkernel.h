/// @file pixelkernel.h
/// The arithmetic of one pixel of a window model, on lanes.
#pragma once

#include "evaluate.h"
#include "lanes.h"

/// Lanes of the working bits of A, then of B.
inline Lanes16 kilnPairLanes(const KilnPair& pair)
{
	KilnShorts lanes;
	for (unsigned c = 0; c < 4; ++c)
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
	const Lanes16 scaled = shiftRight<6>(loadLanes(pixel.around) + loadLanes(pixel.blockWeight) * pair);
	return scaled + multiplyHigh(scaled, loadLanes(kExpand));
}

/// The four candidates of a pixel: 0 and 3, then 1 and 2.
struct KilnCandidateLanes
{
	Lanes16 ends;
	Lanes16 middles;
};

/// The candidates at 0, 3, 5 and 8 eighths.
inline KilnCandidateLanes kilnMixCandidates(Lanes16 planes)
{
	constexpr KilnShorts kWeightsA = {5, 5, 5, 5, 3, 3, 3, 3};
	constexpr KilnShorts kWeightsB = {3, 3, 3, 3, 5, 5, 5, 5};
	return {planes, shiftRight<3>(repeatLower(planes) * loadLanes(kWeightsA) + repeatUpper(planes) * loadLanes(kWeightsB))};
}

/// The candidates at 0, 4, 4 and 8 eighths, of which the third is transparent: coloured in the first generation, black in the second.
inline KilnCandidateLanes kilnMixPunchThrough(Lanes16 planes, bool tessel2)
{
	constexpr KilnShorts kNoAlpha = {0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0xffff, 0};
	constexpr KilnShorts kNothing = {0xffff, 0xffff, 0xffff, 0xffff, 0, 0, 0, 0};
	const Lanes16 middle = shiftRight<1>(repeatLower(planes) + repeatUpper(planes));
	return {planes, middle & loadLanes(tessel2 ? kNothing : kNoAlpha)};
}

/// The residuals of a pixel under its candidates 0, 3, 1 and 2.
using KilnResiduals = std::array<std::array<std::int16_t, 4>, 4>;

/// The place of a candidate in lanes and residuals.
constexpr std::array<std::uint8_t, 4> kKilnLanePlace = {0, 2, 3, 1};

/// @return the errors of candidates 0, 3, 1 and 2.
inline Lanes32 kilnMeasure(const KilnPixelModel& pixel, Lanes16 target, const KilnCandidateLanes& candidates, KilnResiduals& residuals)
{
	const Lanes16 ends = target - candidates.ends;
	const Lanes16 middles = target - candidates.middles;
	storeLanes(residuals[0].data(), ends);
	storeLanes(residuals[2].data(), middles);
	const Lanes16 scale = loadLanes(pixel.scale);
	return sumsOfSquares(ends * scale, middles * scale);
}
