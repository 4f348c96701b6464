#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

#include "Codecs/Tessel/kiln/axisorder.h"
#include "Codecs/Tessel/kiln/initialreps.h"
#include "Codecs/Tessel/kiln/pickreps.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;

namespace
{
std::vector<KilnPixelInfo> pixelsOf(std::vector<std::array<float, 2>> projectionsAndWeights)
{
	std::sort(projectionsAndWeights.begin(), projectionsAndWeights.end());
	std::vector<KilnPixelInfo> pixels;
	KilnPixelInfo info = {};
	for (const auto& [projection, weight] : projectionsAndWeights)
	{
		info.projection = projection;
		info.weight = weight;
		info.weightSum += weight;
		info.momentSum += double{weight} * projection;
		info.squareSum += double{weight} * projection * projection;
		pixels.push_back(info);
	}
	return pixels;
}

/// The mean squared distance from the nearest of the four levels between two ends.
double meanError(const std::vector<KilnPixelInfo>& pixels, float low, float high)
{
	double sum = 0;
	for (const KilnPixelInfo& pixel : pixels)
	{
		double least = 1e30;
		for (const double level : {0.0, 0.375, 0.625, 1.0})
		{
			least = std::min(least, std::pow(pixel.projection - (low + (double{high} - low) * level), 2));
		}
		sum += pixel.weight * least;
	}
	return sum / pixels.back().weightSum;
}

/// Runs the statistics stage on a whole image; the window weights are those of a tent, 0 on the rim.
struct Statistics
{
	KilnSettings settings;
	KilnImage image;
	KilnBlockRows blocks;

	Statistics(int bpp, bool tessel2, int width, int height, const std::function<KilnColour(int, int)>& pixel)
	{
		settings.bpp = bpp;
		settings.tessel2 = tessel2;
		settings.blockWidth = bpp == 2 ? 8 : 4;
		settings.windowWidth = 2 * settings.blockWidth + 1;
		settings.blocksX = width / settings.blockWidth;
		settings.blocksY = height / settings.blockHeight;
		image.width = width;
		image.height = height;
		for (int i = 0; i < width * height; ++i)
		{
			image.pixels.push_back(pixel(i % width, i / width));
		}
		blocks.assign(settings.blocksY, std::vector<KilnBlock>(settings.blocksX));
		std::vector<float> weights;
		std::vector<std::uint8_t> mask;
		for (int i = 0; i < settings.windowPixels(); ++i)
		{
			const int x = std::abs(i % settings.windowWidth - settings.blockWidth);
			const int y = std::abs(i / settings.windowWidth - settings.blockHeight);
			weights.push_back(static_cast<float>((settings.blockWidth - x) * (settings.blockHeight - y)));
			mask.push_back(x == 0 || y == 0 || (x <= settings.blockWidth / 2 && y <= settings.blockHeight / 2) ? 1 : 0);
		}
		KilnThreadRecord record;
		record.image = &image;
		record.settings = &settings;
		record.blocks = &blocks;
		record.windowWeights = weights.data();
		record.centralMask = mask.data();
		record.endRow = settings.blocksY;
		RunAGenerateStatsSetThread(&record);
		EXPECT_FALSE(record.failed);
	}

	const KilnPair& pairOf(int x, int y, int mode) const
	{
		const KilnModeSlot& slot = blocks[y][x].slot(mode);
		EXPECT_EQ(slot.mode, mode);
		EXPECT_EQ(slot.count, 1);
		return slot.kept[0].pair;
	}
};

KilnColour greyOf(int level)
{
	const auto byte = static_cast<std::uint8_t>(level);
	return {byte, byte, byte, 255};
}
} // namespace

TEST(KilnStart, PartitionsNeverGetWorseAndKnowTheirError)
{
	std::mt19937 random(17);
	for (int repeat = 0; repeat < 2000; ++repeat)
	{
		std::vector<std::array<float, 2>> values(random() % 40 + 2);
		for (auto& [projection, weight] : values)
		{
			projection = static_cast<float>(random() % 300) * (random() % 2 != 0 ? 1.0F : -0.37F);
			weight = static_cast<float>(random() % 127 + 1) / 64;
		}
		const std::vector<KilnPixelInfo> pixels = pixelsOf(values);
		const int count = static_cast<int>(pixels.size());
		float low = pixels[random() % values.size()].projection;
		float high = pixels[random() % values.size()].projection;
		if (low == high)
		{
			EXPECT_EQ(ImprovePartition(pixels.data(), count, low, high), 0);
			continue;
		}
		const auto [lower, upper] = std::minmax({low, high});
		low = lower;
		high = upper;
		const double before = meanError(pixels, low, high);
		const double error = ImprovePartition(pixels.data(), count, low, high);
		ASSERT_NEAR(error, meanError(pixels, low, high), 1e-3);
		ASSERT_LE(error, before + 1e-3);
		ASSERT_GE(low, pixels.front().projection);
		ASSERT_LE(high, pixels.back().projection);
		ASSERT_LE(low, high);
	}
	// Values on the four levels, found from a poor start.
	const std::vector<KilnPixelInfo> exact = pixelsOf({{10, 1}, {10, 2}, {40, 1}, {60, 3}, {90, 1}});
	float low = 20;
	float high = 80;
	EXPECT_NEAR(ImprovePartition(exact.data(), 5, low, high), 0, 1e-6);
	EXPECT_EQ(low, 10);
	EXPECT_EQ(high, 90);
}

TEST(KilnStart, EveryVectorUnitOrdersAlike)
{
	std::mt19937 random(19);
	for (int count = 0; count <= kKilnMaxWindow; ++count)
	{
		KilnAxisValues values;
		std::fill(std::begin(values.values), std::end(values.values), std::numeric_limits<float>::infinity());
		// Many are equal.
		std::generate_n(values.values, count, [&] { return static_cast<float>(random() % (1 + count / 2)) - 7.5F; });
		const float thresholds[3] = {-20, values.values[0], 1e9F};
		const auto order = [&](auto level)
		{
			std::vector<std::uint8_t> places(static_cast<std::size_t>(count));
			KilnAxisOrder<level>::rank(values, count, places.data());
			KilnAxisValues sorted = values;
			std::sort(sorted.values, sorted.values + count);
			int counts[3];
			KilnAxisOrder<level>::countBelow(sorted, count, thresholds, counts);
			places.insert(places.end(), std::begin(counts), std::end(counts));
			return places;
		};
		const auto inUse = [&order]
		{
			return withSimdLevel(order);
		};
		const std::vector<std::uint8_t> expected = atSimdLevel(eSimdPlain, inUse);
		for (const ESimdLevel level : kVectorLevels)
		{
			ASSERT_EQ(atSimdLevel(level, inUse), expected) << count << " level " << level;
		}
	}
}

TEST(KilnStart, FlatImagesStartWithTheirColour)
{
	const Statistics opaque(4, true, 16, 8, [](int, int) { return KilnColour{100, 50, 30, 255}; });
	const KilnBlock& block = opaque.blocks[1][3];
	EXPECT_TRUE(block.singleColour);
	EXPECT_TRUE(block.isGraphics);
	EXPECT_EQ(block.boxes[0].minimum, (KilnColourF{100, 50, 30, 255}));
	EXPECT_EQ(block.boxes[0].maximum, block.boxes[0].minimum);
	for (const int mode : {0, 1, 2, 3})
	{
		EXPECT_EQ(opaque.pairOf(3, 1, mode), (KilnPair{{99, 49, 33, 255}, {99, 49, 33, 255}})) << mode;
	}
	EXPECT_EQ(block.currentMode, 0);

	const Statistics clear(4, false, 16, 8, [](int x, int) { return KilnColour{static_cast<std::uint8_t>(x), 7, 9, 0}; });
	EXPECT_EQ(clear.pairOf(0, 0, 1), (KilnPair{}));
	EXPECT_FALSE(clear.blocks[0][0].singleColour);
	EXPECT_EQ(clear.blocks[0][0].transparentPixels, 49);
}

TEST(KilnStart, PairsSplitTheWindowBetweenItsEnds)
{
	// Columns of dark and light on either side of each block's centre, with noise of one level.
	const auto columns = [](int x, int y)
	{
		return greyOf((x & 8) != 0 ? 190 + (y & 1) : 66 - (y & 1));
	};
	for (const int bpp : {2, 4})
	{
		const Statistics run(bpp, true, 32, 16, columns);
		const KilnBlock& block = run.blocks[1][1];
		EXPECT_NEAR(std::fabs(block.boxes[0].axes[0][0]), 0.577F, 0.01F);
		for (const int mode : bpp == 2 ? std::vector<int>{8, 9, 10, 11, 12, 13, 14, 15} : std::vector<int>{0, 1, 2, 3})
		{
			// The darker end first; a palette stands in the order of its pixel counts.
			const KilnPair& pair = run.pairOf(1, 1, mode);
			EXPECT_NEAR(std::min(pair.a[0], pair.b[0]), 66, 5) << mode;
			EXPECT_NEAR(std::max(pair.a[0], pair.b[0]), 190, 5) << mode;
			EXPECT_TRUE(mode == kKilnHardPalette || pair.a[0] < pair.b[0]) << mode;
		}
		EXPECT_EQ(block.currentMode, bpp == 2 ? 9 : 0);
		EXPECT_FALSE(block.singleColour);
	}
}

TEST(KilnStart, TransparentPixelsDoNotPullTheColours)
{
	// A green surface with punched holes of black.
	const auto holes = [](int x, int y)
	{
		return x % 3 == 0 ? KilnColour{0, 0, 0, 0} : KilnColour{0, static_cast<std::uint8_t>(y % 2 != 0 ? 132 : 123), 0, 255};
	};
	for (const bool tessel2 : {false, true})
	{
		const Statistics run(4, tessel2, 32, 16, holes);
		const KilnBlock& block = run.blocks[2][3];
		EXPECT_GT(block.transparentPixels, 10);
		EXPECT_EQ(run.pairOf(3, 2, 1), (KilnPair{{0, 123, 0, 255}, {0, 132, 0, 255}}));
		// The second box holds the surface alone in the second generation, and never alpha 0.
		EXPECT_EQ(block.boxes[1].minimum[3], block.boxes[1].maximum[3]);
		EXPECT_EQ(block.currentMode, tessel2 ? 1 : 0);
	}
}
