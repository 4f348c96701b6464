// The plain form of the work on a 2bpp window, place by place.

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "evaluate.h"

using namespace zortexture;

namespace
{
constexpr int kWidth = 17;
constexpr int kHeight = 9;

/// The weight in eighths of an index; those above 3 are the middle values that interpolation can reach.
constexpr std::array<std::uint8_t, 8> StdWeightMapU8 = {0, 3, 5, 8, 1, 2, 6, 7};

using Channels = std::array<int, 4>;

struct Window
{
	std::array<Channels, kKilnMaxWindow> planesA;
	std::array<Channels, kKilnMaxWindow> planesB;
	std::array<int, kKilnMaxWindow> indices = {};
	std::array<int, kKilnMaxWindow> weights = {};
	/// What the pixels that are left out lack.
	std::array<Channels, kKilnMaxWindow> lacking = {};
};

int numberAt(const KilnRow& row, int place, int second = 0)
{
	return static_cast<int>(row.at(place, second));
}

Channels upscaled(const KilnWindowModel& model, const KilnRow* around, int place, const KilnColour& colour)
{
	Channels plane;
	for (int c = 0; c < 4; ++c)
	{
		const int own = numberAt(model.share, place) * (colour[c] & kKilnWorkingMask[c]);
		const int scaled = (numberAt(around[c / 2], place, c % 2) + own) >> 6;
		plane[c] = scaled + (scaled >> (c < 3 ? 5 : 4));
	}
	return plane;
}

Channels targetAt(const KilnWindowModel& model, int place)
{
	Channels target;
	for (int c = 0; c < 4; ++c)
	{
		target[c] = numberAt(model.target[c / 2], place, c % 2);
	}
	return target;
}

/// A target less the mix of a pixel's planes at a weight.
Channels residualAt(const Window& window, int place, const Channels& target, int weight)
{
	Channels residual;
	for (int c = 0; c < 4; ++c)
	{
		residual[c] = target[c] - ((window.planesA[place][c] * (8 - weight) + window.planesB[place][c] * weight) >> 3);
	}
	return residual;
}

std::uint64_t squareSum(const KilnWindowModel& model, int place, const Channels& residual)
{
	std::uint64_t sum = 0;
	for (int c = 0; c < 4; ++c)
	{
		const int scaled = residual[c] * (c == 3 ? numberAt(model.scale, place, 1) : 1);
		sum += static_cast<std::uint64_t>(scaled * scaled);
	}
	return sum;
}

void choose(const KilnWindowModel& model, int place, const Channels& target, Window& window)
{
	std::array<std::uint64_t, 4> costs;
	for (unsigned i = 0; i < 4; ++i)
	{
		costs[i] = squareSum(model, place, residualAt(window, place, target, StdWeightMapU8[i]));
	}
	window.indices[place] = kilnChooseCandidate(costs, model.endsOnly.at(place) != 0);
	window.weights[place] = StdWeightMapU8[window.indices[place]];
}

int leftOutWeight(const KilnWindowModel& model, int place, const Window& window)
{
	int quarters = 2;
	for (int k = 0; k < 4; ++k)
	{
		const int share = numberAt(model.quarters[k], place);
		quarters += share != 0 ? share * window.weights[place + kKilnNeighbourSteps[k]] : 0;
	}
	return quarters >> 2;
}

/// Chooses again for stored pixels, against targets that make up for what the pixels between them lack.
void feedBack(const KilnWindowModel& model, Window& window)
{
	for (int place = 0; place < kKilnMaxWindow; ++place)
	{
		if (model.isLeftOut.at(place) != 0)
		{
			window.lacking[place] = residualAt(window, place, targetAt(model, place), leftOutWeight(model, place, window));
		}
	}
	for (int place = 0; place < kKilnMaxWindow; ++place)
	{
		if (model.isLeftOut.at(place) != 0)
		{
			continue;
		}
		Channels target = targetAt(model, place);
		for (int c = 0; c < 4; ++c)
		{
			int sum = kKilnDivisionBias;
			for (int k = 0; k < 4; ++k)
			{
				sum += model.isReader[k].at(place) != 0 ? window.lacking[place + kKilnNeighbourSteps[k]][c] : 0;
			}
			const int mean = ((sum * numberAt(model.divisionFactor, place)) >> 16) - numberAt(model.divisionBias, place);
			target[c] = std::clamp(target[c] + mean, 0, 255);
		}
		choose(model, place, target, window);
	}
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

template<>
void KilnKernels<eSimdPlain>::evaluate2Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnDetail detail, KilnFittingParams& params,
                                           KilnErrors& errors)
{
	Window window;
	for (int place = 0; place < kKilnMaxWindow; ++place)
	{
		window.planesA[place] = upscaled(model, model.aroundA, place, pair.a);
		window.planesB[place] = upscaled(model, model.aroundB, place, pair.b);
		if (model.isLeftOut.at(place) == 0)
		{
			choose(model, place, targetAt(model, place), window);
		}
	}
	if (model.hasLeftOut)
	{
		feedBack(model, window);
	}
	errors = {};
	for (int place = 0; place < kKilnMaxWindow; ++place)
	{
		if (model.isLeftOut.at(place) != 0)
		{
			window.weights[place] = leftOutWeight(model, place, window);
		}
		const int weight = window.weights[place];
		const Channels residual = residualAt(window, place, targetAt(model, place), weight);
		const std::uint64_t error = squareSum(model, place, residual);
		errors.own += model.isOwn.at(place) != 0 ? error : 0;
		errors.outer += model.isOuter.at(place) != 0 ? error : 0;
		if (detail != kKilnErrorsAlone)
		{
			for (int half = 0; half < 2; ++half)
			{
				params.residual[half].set(place, static_cast<unsigned>(residual[2 * half]), static_cast<unsigned>(residual[2 * half + 1]));
			}
			const int share = numberAt(model.share, place);
			params.influenceA.setBoth(place, static_cast<unsigned>(share * (8 - weight)));
			params.influenceB.setBoth(place, static_cast<unsigned>(share * weight));
			params.indices.setBoth(place, static_cast<unsigned>(window.indices[place]));
			params.weights.setBoth(place, static_cast<unsigned>(weight));
		}
	}
	errors.total = errors.own + errors.outer;
}
