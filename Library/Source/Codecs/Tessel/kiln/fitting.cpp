#include <cstdint>

#include "lanes.h"
#include "optimise.h"

namespace
{
/// The window pixels on which the block at its centre has any influence: first and end, an even number. The pixel past the last one
/// lies on the rim, where all data is 0.
struct PixelRange
{
	int first;
	int end;
};
constexpr PixelRange kCentralRange4Bpp = {10, 72};
constexpr PixelRange kCentralRange2Bpp = {18, 136};

/// A colour whose influence is below the other's by more than this is not fitted: it would take a huge step.
constexpr double kUnderused = 100;

/// The normal equations of the two colours. Whole multiples of a power of two, and so exact, as are the products of two of them.
struct NormalSums
{
	double uu = 0;
	double uv = 0;
	double vv = 0;
	std::array<double, 4> u = {};
	std::array<double, 4> v = {};
};

NormalSums sumNormalEquations(const PixelRange& range, const KilnFittingParams& params)
{
	// No sum of 118 products of influences up to 512 and residuals up to 255 leaves 32 bits.
	Lanes32 sumsU = {};
	Lanes32 sumsV = {};
	Lanes32 sumsUOfBoth = {};
	Lanes32 sumsVOfBoth = {};
	for (int i = range.first; i < range.end; i += 2)
	{
		const Lanes16 u = broadcastPair(&params.influenceA[i]);
		const Lanes16 v = broadcastPair(&params.influenceB[i]);
		const Lanes16 residuals = interleaveHalves(loadLanes(params.residual[i].data()));
		sumsU = sumsU + sumsOfProducts(u, residuals);
		sumsV = sumsV + sumsOfProducts(v, residuals);
		const Lanes16 both = interleavePairs(u, v);
		sumsUOfBoth = sumsUOfBoth + sumsOfProducts(u, both);
		sumsVOfBoth = sumsVOfBoth + sumsOfProducts(v, both);
	}
	std::array<std::array<std::uint32_t, 4>, 4> sums;
	storeLanes(sums[0].data(), sumsU);
	storeLanes(sums[1].data(), sumsV);
	storeLanes(sums[2].data(), sumsUOfBoth);
	storeLanes(sums[3].data(), sumsVOfBoth);

	constexpr double kUnit = 1.0 / 512;
	const auto scaled = [](std::uint32_t sum, double unit)
	{
		return unit * static_cast<std::int32_t>(sum);
	};
	NormalSums result;
	result.uu = scaled(sums[2][0], kUnit * kUnit);
	result.uv = scaled(sums[2][1], kUnit * kUnit);
	result.vv = scaled(sums[3][1], kUnit * kUnit);
	for (int c = 0; c < 4; ++c)
	{
		result.u[c] = scaled(sums[0][c], kUnit);
		result.v[c] = scaled(sums[1][c], kUnit);
	}
	return result;
}

/// The inverse of the normal matrix: a for A alone, c for B alone, b between them.
struct NormalInverse
{
	double a = 0;
	double b = 0;
	double c = 0;
	int kind = 0;
};

NormalInverse invert(NormalSums& sums)
{
	if (sums.uu > kUnderused * sums.vv)
	{
		sums.vv = sums.uv = 0;
	}
	else if (sums.vv > kUnderused * sums.uu)
	{
		sums.uu = sums.uv = 0;
	}

	// Without rounding, so that pixels of one weight are found collinear and not nearly so.
	const double determinant = sums.vv * sums.uu - sums.uv * sums.uv;
	if (determinant > 0)
	{
		return {sums.vv / determinant, -sums.uv / determinant, sums.uu / determinant, 0};
	}
	if (sums.uu == 0 && sums.vv == 0)
	{
		return {0, 0, 0, 1};
	}
	if (sums.uu == 0)
	{
		return {0, 0, 1 / sums.vv, 1};
	}
	if (sums.vv == 0)
	{
		return {1 / sums.uu, 0, 0, 2};
	}
	const double a = 1 / sums.vv;
	return {a, -sums.uv * a, sums.uu * a, 3};
}
} // namespace

KilnFit FitOnlyCentralRepPairsToWeights(const KilnSettings& settings, const KilnFittingParams& params)
{
	NormalSums sums = sumNormalEquations(settings.bpp == 4 ? kCentralRange4Bpp : kCentralRange2Bpp, params);
	const NormalInverse inverse = invert(sums);
	KilnFit fit;
	fit.kind = inverse.kind;
	for (int c = 0; c < 4; ++c)
	{
		fit.deltaA[c] = static_cast<float>(inverse.b * sums.v[c] + inverse.a * sums.u[c]);
		fit.deltaB[c] = static_cast<float>(inverse.c * sums.v[c] + inverse.b * sums.u[c]);
	}
	return fit;
}

void AdjustUnderusedCandidates(const KilnColourF& x, const KilnColourF& y, const KilnColourF& delta, KilnColourF& outX, KilnColourF& outY)
{
	float towards = 0;
	for (int c = 0; c < 4; ++c)
	{
		towards += (y[c] - x[c]) * delta[c];
	}
	const KilnColourF oldX = x;
	const KilnColourF oldY = y;
	for (int c = 0; c < 4; ++c)
	{
		outX[c] = oldX[c] + delta[c];
		outY[c] = towards >= 0 ? 0.75F * outX[c] + 0.25F * oldY[c] : oldX[c];
	}
}

int CompareCandidates(const void* a, const void* b)
{
	const auto* first = static_cast<const KilnCandidate*>(a);
	const auto* second = static_cast<const KilnCandidate*>(b);
	if (first->error != second->error)
	{
		return first->error < second->error ? -1 : 1;
	}
	if (first->secondaryError != second->secondaryError)
	{
		return first->secondaryError < second->secondaryError ? -1 : 1;
	}
	return 0;
}
