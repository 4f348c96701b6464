#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

#include "Codecs/Tessel/kiln/candidates.h"
#include "Codecs/Tessel/kiln/optimise.h"

namespace
{
/// The share of the block in each pixel of its window, 0 to 64: a tent, 0 on the rim.
std::vector<int> tentShares(const KilnSettings& settings)
{
	std::vector<int> shares;
	for (int i = 0; i < settings.windowPixels(); ++i)
	{
		const int alongX = settings.blockWidth - std::abs(i % settings.windowWidth - settings.blockWidth);
		const int alongY = settings.blockHeight - std::abs(i / settings.windowWidth - settings.blockHeight);
		shares.push_back(alongX * alongY * 64 / (settings.blockWidth * settings.blockHeight));
	}
	return shares;
}

int placeOf(int bpp, int pixel)
{
	return bpp == 4 ? kKilnPlaceOf4Bpp[static_cast<std::size_t>(pixel)] : pixel;
}

/// @param weight  of B in eighths.
void setInfluence(KilnFittingParams& params, int place, int share, int weight)
{
	params.influenceA.setBoth(place, static_cast<unsigned>(share * (8 - weight)));
	params.influenceB.setBoth(place, static_cast<unsigned>(share * weight));
}

KilnSettings settingsFor(int bpp)
{
	KilnSettings settings;
	settings.bpp = bpp;
	settings.blockWidth = bpp == 4 ? 4 : 8;
	settings.windowWidth = 2 * settings.blockWidth + 1;
	return settings;
}

/// What a window's influences leave of its residuals after the step, summed along A's influence and along B's: 0 at the least squares.
struct Remainder
{
	std::array<double, 4> alongA = {};
	std::array<double, 4> alongB = {};
};

Remainder remainderOf(const KilnFittingParams& params, const KilnFit& fit)
{
	Remainder remainder;
	for (int i = 0; i < kKilnMaxWindow; ++i)
	{
		const double u = params.influenceA.signedAt(i) / 512.0;
		const double v = params.influenceB.signedAt(i) / 512.0;
		for (int c = 0; c < 4; ++c)
		{
			const double left = params.residual[c / 2].signedAt(i, c % 2) - u * fit.deltaA[c] - v * fit.deltaB[c];
			remainder.alongA[c] += u * left;
			remainder.alongB[c] += v * left;
		}
	}
	return remainder;
}

struct FitCase
{
	const char* name;
	std::vector<int> weights;
	int kind;
};
} // namespace

TEST(KilnFitting, StepsToTheLeastSquares)
{
	const std::array<FitCase, 5> cases = {{{"both", {0, 3, 5, 8}, 0},
	                                       {"punch-through weights", {0, 4, 8}, 0},
	                                       {"only B", {8}, 1},
	                                       {"only A", {0}, 2},
	                                       {"B close to unused", {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, 2}}};
	std::minstd_rand random(1);
	for (const int bpp : {4, 2})
	{
		const KilnSettings settings = settingsFor(bpp);
		for (const FitCase& one : cases)
		{
			SCOPED_TRACE(one.name);
			const std::vector<int> shares = tentShares(settings);
			const auto params = std::make_unique<KilnFittingParams>();
			for (int i = 0; i < settings.windowPixels(); ++i)
			{
				const int weight = one.weights[random() % one.weights.size()];
				const int place = placeOf(bpp, i);
				setInfluence(*params, place, random() % 5 != 0 ? shares[i] : 0, weight);
				const auto channel = [&random]
				{
					return random() % 511 - 255;
				};
				params->residual[0].set(place, channel(), channel());
				params->residual[1].set(place, channel(), channel());
			}
			const KilnFit fit = FitOnlyCentralRepPairsToWeights(kilnKernels(), settings, *params);
			ASSERT_EQ(fit.kind, one.kind);
			const Remainder remainder = remainderOf(*params, fit);
			for (int c = 0; c < 4; ++c)
			{
				if (fit.kind != 1)
				{
					// The little that B carries is left out on purpose.
					EXPECT_NEAR(remainder.alongA[c], 0, 0.01) << c;
				}
				else
				{
					EXPECT_EQ(fit.deltaA[c], 0);
				}
				if (fit.kind != 2)
				{
					EXPECT_NEAR(remainder.alongB[c], 0, 0.01) << c;
				}
				else
				{
					EXPECT_EQ(fit.deltaB[c], 0);
				}
			}
		}
	}
}

TEST(KilnFitting, PixelsOfOneWeightAreCollinear)
{
	const KilnSettings settings = settingsFor(4);
	const auto params = std::make_unique<KilnFittingParams>();
	double shares = 0;
	for (int i = 0; const int share : tentShares(settings))
	{
		setInfluence(*params, placeOf(4, i++), share, 3);
		shares += share / 64.0 * share / 64;
	}
	// One pixel in the middle, u = 5/8 and v = 3/8: with a residual of 16, Ru = 10 and Rv = 6.
	params->residual[0].set(placeOf(4, 40), 16, static_cast<unsigned>(-16));
	params->residual[1].set(placeOf(4, 40), 0, 8);
	const double uu = shares * 25 / 64;
	const double uv = shares * 15 / 64;
	const double vv = shares * 9 / 64;
	const KilnFit fit = FitOnlyCentralRepPairsToWeights(kilnKernels(), settings, *params);
	EXPECT_EQ(fit.kind, 3);
	EXPECT_NEAR(fit.deltaA[0], 10 / vv - 6 * uv / vv, 1e-4);
	EXPECT_NEAR(fit.deltaB[0], 6 * uu / vv - 10 * uv / vv, 1e-4);
	EXPECT_EQ(fit.deltaA[1], -fit.deltaA[0]);
	EXPECT_EQ(fit.deltaA[2], 0);
}

TEST(KilnFitting, NothingToFitMovesNothing)
{
	const KilnSettings settings = settingsFor(4);
	const auto params = std::make_unique<KilnFittingParams>();
	params->residual[0].setBoth(placeOf(4, 40), 100);
	params->residual[1].setBoth(placeOf(4, 40), 100);
	const KilnFit fit = FitOnlyCentralRepPairsToWeights(kilnKernels(), settings, *params);
	EXPECT_EQ(fit.kind, 1);
	EXPECT_EQ(fit.deltaA, KilnColourF{});
	EXPECT_EQ(fit.deltaB, KilnColourF{});
}

TEST(KilnFitting, TheUnusedColourFollows)
{
	KilnColourF x = {100, 0, 0, 255};
	KilnColourF y = {140, 0, 0, 255};
	// Towards y: y closes up to a quarter of the way.
	AdjustUnderusedCandidates(x, y, {20, 8, 0, 0}, x, y);
	EXPECT_EQ(x, (KilnColourF{120, 8, 0, 255}));
	EXPECT_EQ(y, (KilnColourF{125, 6, 0, 255}));
	// Away from y: y takes the place that x left.
	AdjustUnderusedCandidates(x, y, {-20, 0, 0, 0}, x, y);
	EXPECT_EQ(x, (KilnColourF{100, 8, 0, 255}));
	EXPECT_EQ(y, (KilnColourF{120, 8, 0, 255}));
}

TEST(KilnModes, ListsByRateAndGeneration)
{
	struct ListCase
	{
		int bpp;
		bool tessel2;
		bool useHard;
		int preferred;
		std::vector<int> modes;
	};
	const std::vector<ListCase> cases = {{4, false, true, 0, {0, 1}},         {4, true, false, 0, {0, 1}},
	                                     {4, true, true, 0, {0, 1, 2, 3}},    {2, true, false, 0, {8, 9, 10, 11}},
	                                     {2, false, true, 0, {8, 9, 10, 11}}, {2, true, true, 0, {8, 9, 10, 11, 12, 13, 14, 15}},
	                                     {2, true, true, 2, {8, 10, 12, 14}}};
	for (const ListCase& one : cases)
	{
		KilnSettings settings = settingsFor(one.bpp);
		settings.tessel2 = one.tessel2;
		KilnBlock block;
		block.preferredInterpolation = one.preferred;
		std::array<int, kKilnModeSlots> modes = {};
		const int count = ConstructListOfNeededModes(settings, block, one.useHard, modes);
		EXPECT_EQ(std::vector<int>(modes.begin(), modes.begin() + count), one.modes);
	}
	KilnSettings settings = settingsFor(4);
	settings.bpp = 1;
	std::array<int, kKilnModeSlots> modes = {};
	EXPECT_DEATH(ConstructListOfNeededModes(settings, KilnBlock(), false, modes), "1bpp not yet implemented \\(OptimiseRegion\\)");
}

TEST(KilnPhase, VisitsColumnsInExchangedPairs)
{
	const std::vector<std::vector<int>> orders = {{0}, {0, 1}, {0, 2, 1}, {0, 2, 1, 3}, {0, 2, 1, 4, 3}, {0, 2, 1, 4, 3, 5}};
	for (const std::vector<int>& order : orders)
	{
		for (std::size_t i = 0; i < order.size(); ++i)
		{
			EXPECT_EQ(exchangedColumn(static_cast<int>(i), static_cast<int>(order.size())), order[i]);
		}
	}
}

TEST(KilnCandidates, KeepsTheBestDifferentPairs)
{
	struct Trial
	{
		int pair;
		std::uint64_t error;
		std::uint64_t secondary;
		int hardVariant;
	};
	const auto pairOf = [](int red)
	{
		return KilnPair{{static_cast<std::uint8_t>(red), 0, 0, 255}, {}};
	};
	// Ties by the secondary error, then by order; a pair counts once, for its best trial.
	const std::vector<Trial> trials = {{1, 50, 7, 0}, {2, 40, 9, 0}, {3, 40, 8, 4}, {2, 40, 9, 4}, {4, 60, 0, 0},
	                                   {5, 60, 0, 0}, {6, 99, 0, 0}, {1, 45, 7, 4}, {4, 70, 0, 4}, {4, 10, 0, 4}};
	const std::vector<std::vector<int>> orders = {{1},          {2, 1},       {3, 2, 1},    {3, 2, 1},    {3, 2, 1, 4},
	                                              {3, 2, 1, 4}, {3, 2, 1, 4}, {3, 2, 1, 4}, {3, 2, 1, 4}, {4, 3, 2, 1}};
	KilnTrialList list;
	KilnModeSlot slot;
	for (std::size_t i = 0; i < trials.size(); ++i)
	{
		addTrial(list, {pairOf(trials[i].pair), trials[i].error, trials[i].secondary}, trials[i].hardVariant);
		keepTrials(list, kKilnMaxKept, slot);
		ASSERT_EQ(slot.count, static_cast<int>(orders[i].size())) << i;
		for (int j = 0; j < slot.count; ++j)
		{
			ASSERT_EQ(slot.kept[j].pair, pairOf(orders[i][j])) << i;
		}
	}
	EXPECT_EQ(list.trials[2].hardVariant, 0);
	EXPECT_EQ(list.trials[3].hardVariant, 4);
	keepTrials(list, 1, slot);
	EXPECT_EQ(slot.count, 1);
}

TEST(KilnCandidates, KnowsThePairsOfItsRound)
{
	const auto set = std::make_unique<KilnPairSet>();
	for (int round = 0; round < 3; ++round)
	{
		set->clear();
		// More than it can hold: it may forget, but must end and must never claim to know a new pair.
		for (int i = 0; i < 5000; ++i)
		{
			const KilnPair pair = {{static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i >> 8), 0, 0}, {}};
			EXPECT_TRUE(set->insert(pair));
			EXPECT_TRUE(i >= 1000 || !set->insert(pair));
		}
	}
}
