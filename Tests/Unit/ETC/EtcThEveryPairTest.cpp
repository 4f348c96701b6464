#include "EtcThBruteForce.h"

using namespace zortexture;
using namespace etctest;

namespace
{
class EtcThEveryPair : public testing::TestWithParam<unsigned int>
{
};

/// The 16 million pairs of colours of T, and half as many of H, in full.
TEST_P(EtcThEveryPair, EqualsTheExhaustiveSearch)
{
	PairRange all;
	all.fill({0, 15});
	std::mt19937 random(91);
	const Rgb16 block = anyBlock(random, GetParam());
	const Measure& measure = *kMeasures[GetParam() % 2];
	for (const TwoColourMode mode : {TwoColourMode::T, TwoColourMode::H})
	{
		EXPECT_EQ(runExhaustive(block, measure, mode), bruteForce(block, measure, mode, all, runSeed(block, measure, mode)));
	}
}

INSTANTIATE_TEST_SUITE_P(Turns, EtcThEveryPair, testing::Values(1U, 2U, 6U, 7U));
} // namespace
