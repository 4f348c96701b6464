#include <cstdint>

#include "optimise.h"

namespace
{
/// The window pixels on which the block at its centre has any influence: first and end.
struct PixelRange
{
	int first;
	int end;
};
constexpr PixelRange kCentralRange4Bpp = {10, 71};
constexpr PixelRange kCentralRange2Bpp = {18, 135};

/// A colour whose influence is below the other's by more than this is not fitted: it would take a huge step.
constexpr double kUnderused = 100;

/// The normal equations of the two colours.
struct NormalSums
{
	double uu = 0;
	double uv = 0;
	double vv = 0;
	std::array<double, 4> u = {};
	std::array<double, 4> v = {};
};

/// Influences are multiples of 1/512 up to 1 and residuals whole numbers, so that every sum is exact in a float whatever the order.
NormalSums sumNormalEquations(const PixelRange& range, const KilnFittingParams& params)
{
	constexpr float kScale = 1.0F / 512;
	float uu = 0;
	float uv = 0;
	float vv = 0;
	KilnColourF residualU = {};
	KilnColourF residualV = {};
	for (int i = range.first; i < range.end; ++i)
	{
		const float share = params.blockWeight[i] * params.fitWeight[i] * kScale;
		const float u = (8 - params.modulation[i]) * share;
		const float v = params.modulation[i] * share;
		uu += u * u;
		uv += u * v;
		vv += v * v;
		for (int c = 0; c < 4; ++c)
		{
			residualU[c] += u * params.fitWeight[i] * params.residual[i][c];
			residualV[c] += v * params.fitWeight[i] * params.residual[i][c];
		}
	}
	NormalSums sums = {uu, uv, vv, {}, {}};
	for (int c = 0; c < 4; ++c)
	{
		sums.u[c] = residualU[c];
		sums.v[c] = residualV[c];
	}
	return sums;
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

	// Exact in a double, so that pixels of one weight are found collinear and not nearly so.
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
