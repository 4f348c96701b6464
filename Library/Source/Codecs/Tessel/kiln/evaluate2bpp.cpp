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

/// Lanes of A's and B's shares at each weight.
constexpr std::array<KilnShorts, 9> makeMixWeights()
{
	std::array<KilnShorts, 9> weights = {};
	for (unsigned weight = 0; weight < 9; ++weight)
	{
		for (unsigned c = 0; c < 8; ++c)
		{
			weights[weight][c] = static_cast<std::uint16_t>(c < 4 ? 8 - weight : weight);
		}
	}
	return weights;
}
constexpr std::array<KilnShorts, 9> kMixWeights = makeMixWeights();

/// Division of a sum of residuals by twice their number, rounding down: (sum + kBias) * factor >> 16, less kBias
/// divided likewise. A sum reaches 4 * 255 either way.
constexpr std::uint16_t kBias = 1536;
struct Division
{
	std::uint16_t factor;
	std::uint16_t bias;
};
/// By the number of residuals; without any the mean is 0.
constexpr std::array<Division, 5> kDivisions = {{{0, 0}, {32768, 768}, {16384, 384}, {10923, 256}, {8192, 192}}};

struct Scratch
{
	std::array<KilnShorts, kKilnMaxWindow> planes;
	std::array<std::uint8_t, kKilnMaxWindow> indices;
	std::array<std::uint8_t, kKilnMaxWindow> weights;
	/// What the pixels that are left out lack; the last entry stays 0.
	std::array<KilnShorts, kKilnMaxWindow + 1> lacking;
};

/// Pixel less the mix of its planes at a weight, in lanes 0 to 3.
Lanes16 residualAt(const KilnPixelModel& pixel, Lanes16 planes, int weight)
{
	return loadLanes(pixel.target) - shiftRight<3>(addHalves(planes * loadLanes(kMixWeights[weight])));
}

/// Lets four stored pixels choose, each against its target.
void chooseFour(const KilnWindowModel& model, const KilnStoredPixel* stored, const std::array<Lanes16, 4>& targets, Scratch& scratch)
{
	std::array<Lanes32, 4> errors;
	for (int i = 0; i < 4; ++i)
	{
		const int pixel = stored[i].pixel;
		const KilnCandidateLanes candidates = kilnMixCandidates(loadLanes(scratch.planes[pixel]));
		const Lanes16 scale = loadLanes(model.pixels[pixel].scale);
		errors[i] = sumsOfSquares((targets[i] - candidates.ends) * scale, (targets[i] - candidates.middles) * scale);
		if (stored[i].endsOnly)
		{
			errors[i] = forbidMiddles(errors[i]);
		}
	}
	std::array<std::uint32_t, 4> indices;
	storeLanes(indices.data(), chooseOfFour(errors).indices);
	for (int i = 0; i < 4; ++i)
	{
		scratch.indices[stored[i].pixel] = static_cast<std::uint8_t>(indices[i]);
		scratch.weights[stored[i].pixel] = StdWeightMapU8[indices[i]];
	}
}

int leftOutWeight(const KilnLeftOutPixel& pixel, const Scratch& scratch)
{
	const auto& weights = scratch.weights;
	return (weights[pixel.reads[0]] + weights[pixel.reads[1]] + weights[pixel.reads[2]] + weights[pixel.reads[3]] + 2) >> 2;
}

/// Chooses again for stored pixels, against targets that make up for what the pixels between them lack.
void feedBack(const KilnWindowModel& model, Scratch& scratch)
{
	scratch.lacking[kKilnNoPixel] = {};
	for (int i = 0; i < model.leftOutCount; ++i)
	{
		const KilnLeftOutPixel& leftOut = model.leftOut[i];
		const Lanes16 planes = loadLanes(scratch.planes[leftOut.pixel]);
		storeLanes(scratch.lacking[leftOut.pixel].data(), residualAt(model.pixels[leftOut.pixel], planes, leftOutWeight(leftOut, scratch)));
	}
	const auto lackingAt = [&scratch](std::uint8_t pixel)
	{
		return loadLanes(scratch.lacking[pixel]);
	};
	const Lanes16 black = broadcastLanes(0);
	const Lanes16 white = broadcastLanes(255);
	for (int first = 0; first < model.storedCount; first += 4)
	{
		std::array<Lanes16, 4> targets;
		for (int i = 0; i < 4; ++i)
		{
			const KilnStoredPixel& stored = model.stored[first + i];
			const Division& division = kDivisions[stored.readerCount];
			const auto& readers = stored.readers;
			const Lanes16 sum = lackingAt(readers[0]) + lackingAt(readers[1]) + lackingAt(readers[2]) + lackingAt(readers[3]);
			const Lanes16 mean = multiplyHigh(sum + broadcastLanes(kBias), broadcastLanes(division.factor)) - broadcastLanes(division.bias);
			targets[i] = repeatLower(clampLanes(loadLanes(model.pixels[stored.pixel].target) + mean, black, white));
		}
		chooseFour(model, &model.stored[first], targets, scratch);
	}
}

/// Notes the pixels of a part of a row for the fit.
/// @return the sums of their errors.
Lanes32 recordPixels(const KilnWindowModel& model, const Scratch& scratch, int first, int end, KilnFittingParams& params)
{
	Lanes32 errors = zeroLanes();
	for (int pixel = first; pixel < end; ++pixel)
	{
		const KilnPixelModel& entry = model.pixels[pixel];
		const int weight = scratch.weights[pixel];
		const Lanes16 residual = residualAt(entry, loadLanes(scratch.planes[pixel]), weight);
		const Lanes16 scaled = repeatLower(residual * loadLanes(entry.scale));
		errors = errors + sumsOfProducts(scaled, scaled);
		storeLower(params.residual[pixel].data(), residual);
		const int share = entry.blockWeight[0];
		params.influenceA[pixel] = static_cast<std::int16_t>(share * (8 - weight));
		params.influenceB[pixel] = static_cast<std::int16_t>(share * weight);
		params.results[pixel] = {scratch.indices[pixel], static_cast<std::uint8_t>(weight)};
	}
	return errors;
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
	Scratch scratch;
	const Lanes16 pairLanes = kilnPairLanes(pair);
	for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
	{
		storeLanes(scratch.planes[pixel].data(), kilnUpscaledPlanes(model.pixels[pixel], pairLanes));
	}
	scratch.indices.fill(0);
	for (int first = 0; first < model.storedCount; first += 4)
	{
		std::array<Lanes16, 4> targets;
		for (int i = 0; i < 4; ++i)
		{
			targets[i] = loadLanes(model.pixels[model.stored[first + i].pixel].target);
		}
		chooseFour(model, &model.stored[first], targets, scratch);
	}
	if (model.leftOutCount > 0)
	{
		feedBack(model, scratch);
	}
	for (int i = 0; i < model.leftOutCount; ++i)
	{
		scratch.weights[model.leftOut[i].pixel] = static_cast<std::uint8_t>(leftOutWeight(model.leftOut[i], scratch));
	}

	// Own pixels lie within 4 to 11 of rows 2 to 5.
	errors = {};
	for (int y = 1; y < kHeight - 1; ++y)
	{
		const int row = kWidth * y;
		const bool ownRow = y >= 2 && y < 6;
		const int ownFirst = row + (ownRow ? 4 : kWidth - 1);
		const int ownEnd = row + (ownRow ? 12 : kWidth - 1);
		const Lanes32 left = recordPixels(model, scratch, row + 1, ownFirst, params);
		errors.own += sumOfLanes(recordPixels(model, scratch, ownFirst, ownEnd, params));
		errors.outer += sumOfLanes(left + recordPixels(model, scratch, ownEnd, row + kWidth - 1, params));
	}
	// Every lane pair was counted twice.
	errors.own /= 2;
	errors.outer /= 2;
	errors.total = errors.own + errors.outer;
}
