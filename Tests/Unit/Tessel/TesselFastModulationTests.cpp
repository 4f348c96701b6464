#include <algorithm>
#include <array>
#include <cstring>
#include <gtest/gtest.h>

#include "Codecs/Tessel/TesselFastModulation.h"
#include "TesselCodec.h"

using namespace zortexture;

namespace
{
/// A block between black and white planes, alphas 255, with grey pixels.
TesselBlockPixels greyBlock(const std::vector<unsigned char>& greys, TesselPixel a = {0, 0, 0, 255}, TesselPixel b = {255, 255, 255, 255})
{
	TesselBlockPixels block = {};
	std::fill(std::begin(block.a), std::end(block.a), a);
	std::fill(std::begin(block.b), std::end(block.b), b);
	for (std::size_t i = 0; i < 32; ++i)
	{
		const unsigned char grey = greys[i % greys.size()];
		block.image[i] = {grey, grey, grey, 255};
	}
	return block;
}

/// Weights that interpolated indices of 3 (weight 8) or 0 give at a pixel in a mode.
unsigned weightAt(const Tessel2bppRecord& record, unsigned mode, unsigned x, unsigned y)
{
	unsigned char weights[32];
	getModulationValues(record, mode, weights);
	return weights[8 * y + x];
}
} // namespace

TEST(TesselFastModulation, TakesTheNearestWeightAndTheLowerOfEquals)
{
	// Candidates 0, 95, 159, 255 and 0, 127, 255.
	Tessel4bppRecord record;
	const TesselBlockPixels block = greyBlock({0, 47, 48, 127, 128, 207, 208, 255});
	calculateModulations_Standard(record, block);
	EXPECT_TRUE(std::equal(record.standard, record.standard + 8, std::array<int, 8>{0, 0, 1, 1, 2, 2, 3, 3}.begin()));
	calculateModulations_Punchthrough(record, block);
	EXPECT_TRUE(std::equal(record.punchThrough, record.punchThrough + 8, std::array<int, 8>{0, 0, 0, 1, 1, 3, 3, 3}.begin()));
	// 127 lies 32 from both 95 and 159; every candidate of equal planes is equally near.
	calculateModulations_Standard(record, greyBlock({9}, {40, 40, 40, 255}, {40, 40, 40, 255}));
	EXPECT_EQ(std::count(std::begin(record.standard), std::end(record.standard), 0), 16);
}

TEST(TesselFastModulation, PunchesThroughTransparentPixels)
{
	TesselBlockPixels block = greyBlock({0});
	for (unsigned i = 0; i < 16; ++i)
	{
		block.image[i] = {127, 127, 127, static_cast<unsigned char>(i % 2 != 0 ? 0 : 255)};
	}
	Tessel4bppRecord record;
	chooseModulation(record, block);
	EXPECT_EQ(record.punchThrough[0], 1);
	EXPECT_EQ(record.punchThrough[1], 2);
	// The simulation keeps the alpha of 255, so both modes miss it, and mode 1 hits the grey that mode 0 misses by 32.
	EXPECT_EQ(record.mode, 1U);
	TesselPixel simulated[16];
	decompressTesselBlock(record, block, simulated, 1);
	EXPECT_EQ(simulated[1].a, 255);
	EXPECT_EQ(simulated[1].r, 127);
	// Equal errors stay with mode 0.
	chooseModulation(record, greyBlock({0, 255}));
	EXPECT_EQ(record.mode, 0U);
}

TEST(TesselFastModulation, DirectBitsFavourB)
{
	Tessel2bppRecord record;
	calculate1BPPModulation(record, greyBlock({0, 120, 140, 255}, {0, 0, 0, 255}, {240, 240, 240, 255}));
	EXPECT_TRUE(std::equal(record.direct, record.direct + 4, std::array<int, 4>{0, 3, 3, 3}.begin()));
}

TEST(TesselFastModulation, SimulatesLeftOutPixelsInsideTheBlock)
{
	// Every stored pixel has weight 3 (index 1) but one, of weight 8, at (2, 2).
	Tessel2bppRecord record;
	std::fill(std::begin(record.interpolated), std::end(record.interpolated), static_cast<unsigned char>(1));
	record.interpolated[8 * 2 + 2] = 3;
	const struct
	{
		unsigned mode;
		unsigned x;
		unsigned y;
		unsigned weight;
	} cases[] = {
	    {1, 2, 1, 4},  // interior: (3 + 3 + 3 + 8 + 2) / 4
	    {1, 4, 1, 3},  // (12 + 2) / 4
	    {1, 2, 3, 5},  // bottom edge: (3 + 3 + 8 + 1) / 3
	    {1, 1, 0, 3},  // top edge: 10 / 3
	    {1, 7, 0, 3},  // corner: (6 + 1) / 2
	    {1, 0, 3, 3},  // corner
	    {3, 3, 2, 6},  // left and right: (3 + 8 + 1) / 2
	    {3, 2, 1, 3},  // (6 + 1) / 2
	    {3, 0, 1, 4},  // left edge: the right neighbour + 1
	    {3, 7, 2, 4},  // right edge
	    {2, 2, 1, 6},  // above and below: (3 + 8 + 2) / 2
	    {2, 4, 1, 4},  // (6 + 2) / 2
	    {2, 1, 0, 5},  // top edge: the one below + 2
	    {2, 2, 3, 10}, // bottom edge: 8 + 2
	    {1, 2, 2, 8},  // stored
	    {2, 1, 1, 3},
	};
	for (const auto& test : cases)
	{
		EXPECT_EQ(weightAt(record, test.mode, test.x, test.y), test.weight) << test.mode << ": " << test.x << "," << test.y;
	}
	// A weight of 10 of white over black is 318, which wraps to 62; of black over white -63, which wraps to 193.
	TesselPixel simulated[32];
	decompressTesselBlock(record, greyBlock({0}), simulated, 2);
	EXPECT_EQ(simulated[8 * 3 + 2].r, 62);
	EXPECT_EQ(simulated[8 * 3 + 2].a, 255);
	decompressTesselBlock(record, greyBlock({0}, {255, 255, 255, 255}, {0, 0, 0, 255}), simulated, 2);
	EXPECT_EQ(simulated[8 * 3 + 2].r, 193);
	// The fit takes such a weight as it is.
	record.mode = eTesselMode_UpDown;
	float weights[32];
	fitWeights(record, weights);
	EXPECT_EQ(weights[8 * 3 + 2], 1.25F);
	EXPECT_EQ(weights[8 * 2 + 2], 1.0F);
}

TEST(TesselFastModulation, ChoosesTheModeOfTheSmallestWeightedError)
{
	// Black and white columns: one bit a pixel is exact.
	Tessel2bppRecord record;
	chooseModulation(record, greyBlock({0, 255}));
	EXPECT_EQ(record.mode, eTesselMode_Direct);
	// A flat middle grey, of weight 3: the mean of four neighbours is exact; the others err at the edges.
	chooseModulation(record, greyBlock({95}));
	EXPECT_EQ(record.mode, eTesselMode_FourNeighbours);
	// All modes exact (nothing but black would do it for the direct mode alone, as edges add to a weight): equal planes tie.
	chooseModulation(record, greyBlock({40}, {40, 40, 40, 255}, {40, 40, 40, 255}));
	EXPECT_EQ(record.mode, eTesselMode_Direct);
	// Errors of 4 * d against 3 * d: with one grey for both planes and pixels off it, a mode of factor 3 wins, the first.
	chooseModulation(record, greyBlock({50}, {40, 40, 40, 255}, {40, 40, 40, 255}));
	EXPECT_EQ(record.mode, eTesselMode_FourNeighbours);
}

TEST(TesselFastModulation, PacksTheModesOf2bpp)
{
	Tessel2bppRecord record;
	record.direct[8 * 1 + 3] = 3;
	record.direct[8 * 2 + 4] = 3; // bit 20
	record.interpolated[0] = 2;
	record.interpolated[8 * 1 + 1] = 1;
	record.interpolated[8 * 2 + 4] = 1;
	record.interpolated[8 * 3 + 7] = 3;
	// Indices at bits 0, 8, 20 and 30.
	const std::uint32_t stored = 2U | (1U << 8) | (1U << 20) | (3U << 30);
	const std::uint32_t words[4] = {(1U << 11) | (1U << 20), stored, (stored | 1U) & ~(1U << 20), stored | 1U};
	for (unsigned char mode = 0; mode < 4; ++mode)
	{
		record.mode = mode;
		TesselBlockWords block;
		block.setColourWord(0xFFFF0000U);
		packModulation(record, block);
		EXPECT_EQ(block.getModulationWord(), words[mode]) << int(mode);
		EXPECT_EQ(block.getColourWord(), 0xFFFF0000U | (mode != 0 ? 1U : 0U));
	}
	// Four neighbours: a stored 1 or 3 at (0, 0) loses bit 0.
	record.mode = eTesselMode_FourNeighbours;
	record.interpolated[0] = 3;
	TesselBlockWords block;
	packModulation(record, block);
	EXPECT_EQ(block.getModulationWord(), stored);
}
