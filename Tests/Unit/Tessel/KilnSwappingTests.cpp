#include <gtest/gtest.h>
#include <random>

#include "Codecs/Tessel/kiln/swapping.h"

namespace
{
constexpr KilnColour kDark = {10, 20, 30, 255};
constexpr KilnColour kLight = {200, 190, 180, 255};

KilnPair swappedPair(const KilnPair& pair)
{
	return {pair.b, pair.a};
}

std::vector<KilnPair> straightened(int blocksX, int blocksY, bool wrap, std::vector<KilnPair> colours)
{
	const std::vector<bool> swaps = CreateColourSwappingRecommendations(blocksX, blocksY, wrap, colours);
	for (std::size_t i = 0; i < swaps.size(); ++i)
	{
		colours[i] = swaps[i] ? swappedPair(colours[i]) : colours[i];
	}
	return colours;
}
} // namespace

TEST(KilnSwapping, LeavesOrderedBlocksAlone)
{
	EXPECT_TRUE(CreateColourSwappingRecommendations(4, 3, true, std::vector<KilnPair>(12, {kDark, kLight})).empty());
	EXPECT_TRUE(CreateColourSwappingRecommendations(1, 1, true, {{kDark, kLight}}).empty());
	// Colours that are alike, or as near either way, give no reason to swap.
	EXPECT_TRUE(CreateColourSwappingRecommendations(2, 2, true, std::vector<KilnPair>(4, {kDark, kDark})).empty());
	EXPECT_TRUE(CreateColourSwappingRecommendations(2, 1, false, {{kDark, kDark}, {kDark, kLight}}).empty());
}

TEST(KilnSwapping, StraightensAnyPatternOfCrosswiseBlocks)
{
	std::mt19937 random(23);
	for (const auto& [blocksX, blocksY] : {std::pair{2, 1}, {1, 3}, {2, 2}, {5, 4}, {16, 9}, {31, 33}})
	{
		for (const bool wrap : {false, true})
		{
			// One plane rises to the right, the other falls; the blocks hold them crosswise at random.
			std::vector<KilnPair> ordered;
			std::vector<KilnPair> crossed;
			for (int i = 0; i < blocksX * blocksY; ++i)
			{
				const int x = i % blocksX;
				const KilnPair pair = {{static_cast<std::uint8_t>(2 * x), 0, 0, 255},
				                       {255, static_cast<std::uint8_t>(255 - 2 * x), 0, 255}};
				ordered.push_back(pair);
				crossed.push_back((random() & 1) != 0 ? swappedPair(pair) : pair);
			}
			std::vector<KilnPair> swapped;
			for (const KilnPair& pair : ordered)
			{
				swapped.push_back(swappedPair(pair));
			}
			const std::vector<KilnPair> result = straightened(blocksX, blocksY, wrap, crossed);
			EXPECT_EQ(result, result[0] == ordered[0] ? ordered : swapped) << blocksX << " x " << blocksY;
		}
	}
}

TEST(KilnSwapping, AWholeBorderOutweighsItsClearestEdge)
{
	// Distances straight and crossed: 28 and 56 between the upper blocks, 162 and 195 on the left; so these three stand together. The
	// last one is 34 and 29 from the one above, 167 and 186 from the one beside it: the first is clearer, the sums are 201 and 215.
	const std::vector<KilnPair> colours = {
	    {{100, 130, 0, 255}, {100, 70, 0, 255}},
	    {{98, 110, 0, 255}, {102, 90, 0, 255}},
	    {{141, 255, 0, 255}, {58, 155, 0, 255}},
	    {{120, 100, 0, 255}, {80, 100, 0, 255}},
	};
	EXPECT_TRUE(CreateColourSwappingRecommendations(2, 2, false, colours).empty());
	// Beside the one above alone it turns.
	EXPECT_EQ(CreateColourSwappingRecommendations(1, 2, false, {colours[1], colours[3]}), (std::vector<bool>{false, true}));
}
