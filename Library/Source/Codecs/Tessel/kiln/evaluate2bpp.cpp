#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "evaluate.h"
#include "pixelkernel.h"

namespace
{
constexpr int kWidth = 17;
constexpr int kHeight = 9;

/// The weight in eighths of an index; those above 3 are the middle values that interpolation can reach.
constexpr std::array<std::uint8_t, 8> StdWeightMapU8 = {0, 3, 5, 8, 1, 2, 6, 7};
/// For n contributions, 1 / (2 * n).
constexpr std::array<float, 5> Recips2N = {1e10F, 0.5F, 0.25F, 1.0F / 6.0F, 0.125F};

struct Scratch
{
	std::array<KilnShorts, kKilnMaxWindow> planes;
	std::array<KilnPixelCosts, kKilnMaxWindow> costs;
	std::array<std::uint8_t, kKilnMaxWindow> indices;
	std::array<std::uint8_t, kKilnMaxWindow> weights;
	/// What the pixels that are left out lack, gathered at the neighbours that they read.
	std::array<std::array<int, 4>, kKilnMaxWindow> residuals;
	std::array<std::uint8_t, kKilnMaxWindow> contributions;
};

bool isLeftOut(const KilnPixelModel& pixel)
{
	return pixel.storeClass >= kKilnLeftOut;
}

KilnCandidateLanes candidatesAt(const KilnWindowModel& model, const Scratch& scratch, int pixel)
{
	return kilnMixCandidates(loadLanes(scratch.planes[pixel]), false, model.records->tessel2);
}

/// Pixel less the mix of its planes at a weight.
std::array<int, 4> residualAt(const KilnPixelModel& pixel, const KilnShorts& planes, int weight)
{
	std::array<int, 4> residual;
	for (unsigned c = 0; c < 4; ++c)
	{
		residual[c] = pixel.target[c] - ((planes[c] * (8 - weight) + planes[4 + c] * weight) >> 3);
	}
	return residual;
}

void choose(Scratch& scratch, int pixel, int index)
{
	scratch.indices[pixel] = static_cast<std::uint8_t>(index);
	scratch.weights[pixel] = StdWeightMapU8[index];
}

void contribute(Scratch& scratch, int neighbour, const std::array<int, 4>& residual)
{
	for (int c = 0; c < 4; ++c)
	{
		scratch.residuals[neighbour][c] += residual[c];
	}
	++scratch.contributions[neighbour];
}

/// Gives the residual of a pixel that is left out to every neighbour that it reads.
void spreadResidual(const KilnWindowModel& model, Scratch& scratch, int row, int column)
{
	const int pixel = kWidth * row + column;
	const int storeClass = model.pixels[pixel].storeClass;
	const int weight = ComputeInterpolatedModVal(storeClass, row, column, scratch.weights.data());
	const std::array<int, 4> residual = residualAt(model.pixels[pixel], scratch.planes[pixel], weight);
	if (storeClass != kKilnLeftOutVertical)
	{
		if (column > 0)
		{
			contribute(scratch, pixel - 1, residual);
		}
		if (column < kWidth - 1)
		{
			contribute(scratch, pixel + 1, residual);
		}
	}
	if (storeClass != kKilnLeftOutHorizontal)
	{
		if (row > 0)
		{
			contribute(scratch, pixel - kWidth, residual);
		}
		if (row < kHeight - 1)
		{
			contribute(scratch, pixel + kWidth, residual);
		}
	}
}

/// Chooses again for a stored pixel, against a target that makes up for what its neighbours lack. The cost of a choice stays what it
/// is against the pixel.
void chooseAgain(const KilnWindowModel& model, Scratch& scratch, int pixel)
{
	const KilnPixelModel& entry = model.pixels[pixel];
	KilnShorts target;
	for (unsigned c = 0; c < 4; ++c)
	{
		const float moved =
		    static_cast<float>(entry.target[c]) + static_cast<float>(scratch.residuals[pixel][c]) * Recips2N[scratch.contributions[pixel]];
		target[c] = target[4 + c] = static_cast<std::uint16_t>(std::clamp(moved, 0.0F, 255.0F));
	}
	KilnPixelCosts costs;
	kilnMeasureCandidates(entry, loadLanes(target), candidatesAt(model, scratch, pixel), costs);
	choose(scratch, pixel, kilnChoose(costs, entry.endsOnly));
}

std::uint32_t errorOf(const KilnPixelModel& pixel, const std::array<int, 4>& residual)
{
	std::uint32_t error = 0;
	for (unsigned c = 0; c < 4; ++c)
	{
		const int scaled = residual[c] * pixel.scale[c];
		error += static_cast<std::uint32_t>(scaled * scaled);
	}
	return error;
}
} // namespace

int ComputeInterpolatedModVal(int storeClass, int row, int column, const std::uint8_t* weights)
{
	const std::uint8_t* centre = weights + kWidth * row + column;
	const auto checked = [](int weight)
	{
		if (weight > 8)
		{
			std::printf("bad:%d\n", __LINE__);
			std::exit(1);
		}
		return weight;
	};
	int sum = 0;
	if (storeClass != kKilnLeftOutVertical)
	{
		sum += checked(centre[column > 0 ? -1 : 1]) + checked(centre[column < kWidth - 1 ? 1 : -1]);
	}
	if (storeClass != kKilnLeftOutHorizontal)
	{
		sum += checked(centre[row > 0 ? -kWidth : kWidth]) + checked(centre[row < kHeight - 1 ? kWidth : -kWidth]);
	}
	return storeClass == kKilnLeftOut ? (2 + sum) >> 2 : (1 + sum) >> 1;
}

void EvalAllCandsAndGetErrors2BPP(const KilnWindowModel& model, const KilnPair& pair, KilnFittingParams& params, KilnErrors& errors)
{
	errors = {};
	Scratch scratch;
	scratch.residuals.fill({});
	scratch.contributions.fill(0);
	const Lanes16 pairLanes = kilnPairLanes(pair);
	bool anyLeftOut = false;
	for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
	{
		const KilnPixelModel& entry = model.pixels[pixel];
		storeLanes(scratch.planes[pixel].data(), kilnUpscaledPlanes(entry, pairLanes));
		if (isLeftOut(entry))
		{
			anyLeftOut = true;
			continue;
		}
		kilnMeasureCandidates(entry, loadLanes(entry.target), candidatesAt(model, scratch, pixel), scratch.costs[pixel]);
		choose(scratch, pixel, kilnChoose(scratch.costs[pixel], entry.endsOnly));
	}
	if (anyLeftOut)
	{
		for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
		{
			if (isLeftOut(model.pixels[pixel]))
			{
				spreadResidual(model, scratch, pixel / kWidth, pixel % kWidth);
			}
		}
		for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
		{
			if (model.pixels[pixel].storeClass == kKilnStored && scratch.contributions[pixel] > 0)
			{
				chooseAgain(model, scratch, pixel);
			}
		}
	}

	for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
	{
		const KilnPixelModel& entry = model.pixels[pixel];
		if (entry.pixelClass == kKilnRim)
		{
			continue;
		}
		int index = 0;
		int weight = 0;
		if (isLeftOut(entry))
		{
			weight = ComputeInterpolatedModVal(entry.storeClass, pixel / kWidth, pixel % kWidth, scratch.weights.data());
		}
		else
		{
			index = scratch.indices[pixel];
			weight = scratch.weights[pixel];
		}
		const std::array<int, 4> residual = residualAt(entry, scratch.planes[pixel], weight);
		(entry.pixelClass == kKilnOwn ? errors.own : errors.outer) += errorOf(entry, residual);
		for (int c = 0; c < 4; ++c)
		{
			params.residual[pixel][c] = static_cast<std::int16_t>(residual[c]);
		}
		params.influenceA[pixel] = static_cast<std::int16_t>(entry.blockWeight * (8 - weight));
		params.influenceB[pixel] = static_cast<std::int16_t>(entry.blockWeight * weight);
		params.results[pixel] = {static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(weight)};
	}
	errors.total = errors.own + errors.outer;
}
