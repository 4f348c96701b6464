#include <cstdint>

#include "optimise.h"

namespace
{
/// The places on which the block at the centre of a window has any influence, to whole vectors: first and end.
struct PlaceRange
{
	int first;
	int end;
};
constexpr PlaceRange kCentralRange4Bpp = {0, 64};
constexpr PlaceRange kCentralRange2Bpp = {16, 144};

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

NormalSums sumNormalEquations(const KilnKernelTable& kernels, const PlaceRange& range, const KilnFittingParams& params)
{
	KilnNormalSums sums;
	kernels.sumNormalEquations(params, range.first, range.end, sums);
	constexpr double kUnit = 1.0 / 512;
	const auto scaled = [](std::int32_t sum, double unit)
	{
		return unit * sum;
	};
	NormalSums result;
	result.uu = scaled(sums.uu, kUnit * kUnit);
	result.uv = scaled(sums.uv, kUnit * kUnit);
	result.vv = scaled(sums.vv, kUnit * kUnit);
	for (int c = 0; c < 4; ++c)
	{
		result.u[c] = scaled(sums.u[c], kUnit);
		result.v[c] = scaled(sums.v[c], kUnit);
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

KilnFit FitOnlyCentralRepPairsToWeights(const KilnKernelTable& kernels, const KilnSettings& settings, const KilnFittingParams& params)
{
	NormalSums sums = sumNormalEquations(kernels, settings.bpp == 4 ? kCentralRange4Bpp : kCentralRange2Bpp, params);
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
