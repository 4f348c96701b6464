#include "EtcThBruteForce.h"

using namespace zortexture;
using namespace etctest;

namespace
{
/// Blocks that T and H are good at: two colours with the mode's distances, and a little noise on half of them.
Rgb16 plantedBlock(std::mt19937& random, TwoColourMode mode, bool isNoisy)
{
	const unsigned int word1 = random() & (mode == TwoColourMode::T ? 0x7FFFFFF : 0x3FFFFFF);
	Rgb16 block = decodeWith(mode == TwoColourMode::T ? decompressBlockTHUMB59T : decompressBlockTHUMB58H, word1, random());
	for (unsigned char& value : block)
	{
		value = clamp(value + (isNoisy ? static_cast<int>(below(random, 9)) - 4 : 0));
	}
	return block;
}

class EtcThExhaustive : public testing::TestWithParam<TwoColourMode>
{
};

/// Blocks of the mode itself have to come out without error wherever their colours lie.
TEST_P(EtcThExhaustive, FindsPlantedColours)
{
	std::mt19937 random(71);
	for (unsigned int turn = 0; turn < 60; ++turn)
	{
		const Rgb16 block = plantedBlock(random, GetParam(), false);
		EXPECT_EQ(runExhaustive(block, *kMeasures[turn % 2], GetParam()).error, 0U) << "turn " << turn;
	}
}

/// Two levels up and down from what was found in all six channels, and in a random range of three levels, nothing is better, and nothing
/// as good comes before it.
TEST_P(EtcThExhaustive, NoPairOfSomeRangesIsBetter)
{
	std::mt19937 random(72);
	for (unsigned int turn = 0; turn < 12; ++turn)
	{
		const Rgb16 block = turn < 8 ? anyBlock(random, turn) : plantedBlock(random, GetParam(), true);
		const Measure& measure = *kMeasures[turn / 2 % 2];
		const PairResult seed = runSeed(block, measure, GetParam());
		const PairResult found = runExhaustive(block, measure, GetParam());
		PairRange range;
		PairRange anywhere;
		for (unsigned int i = 0; i < 6; ++i)
		{
			range[i] = {found.levels[i] < 2 ? 0 : found.levels[i] - 2, std::min(found.levels[i] + 2, 15U)};
			anywhere[i].first = below(random, 14);
			anywhere[i].second = anywhere[i].first + 2;
		}
		EXPECT_EQ(bruteForce(block, measure, GetParam(), range, seed), found) << "turn " << turn;
		EXPECT_EQ(bruteForce(block, measure, GetParam(), anywhere, found), found) << "turn " << turn;
	}
}

INSTANTIATE_TEST_SUITE_P(Modes, EtcThExhaustive, testing::Values(TwoColourMode::T, TwoColourMode::H),
                         [](const auto& mode) { return mode.param == TwoColourMode::T ? "T" : "H"; });
} // namespace
