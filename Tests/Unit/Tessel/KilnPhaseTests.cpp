#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

#include "Codecs/Tessel/kiln/optimise.h"
#include "Codecs/Tessel/kiln/packing.h"
#include "Codecs/Tessel/kiln/representable.h"

namespace
{
/// An image of ramps, edges, noise and holes, with a poor pair in every slot of every block.
struct KilnRun
{
	KilnSettings settings;
	KilnImage image;
	KilnBlockRows blocks;

	KilnRun(int bpp, bool tessel2)
	{
		settings.bpp = bpp;
		settings.tessel2 = tessel2;
		settings.blockWidth = bpp == 2 ? 8 : 4;
		settings.windowWidth = 2 * settings.blockWidth + 1;
		settings.blocksX = 5;
		settings.blocksY = 6;
		settings.iterations = 4;
		settings.variants = 4;
		settings.candidatesKept = 2;
		settings.hardVariantStep = 1;
		image.width = settings.blocksX * settings.blockWidth;
		image.height = settings.blocksY * settings.blockHeight;
		std::minstd_rand random(5);
		const auto noise = [&random](int size)
		{
			return static_cast<int>(random() % static_cast<unsigned>(size));
		};
		for (int y = 0; y < image.height; ++y)
		{
			for (int x = 0; x < image.width; ++x)
			{
				const int edge = x * 2 > y * 3 ? 90 : 0;
				const int alpha = y > 16 ? (x % 9 < 4 ? 0 : 200 + noise(56)) : 255;
				const auto channel = [&noise](int value)
				{
					return static_cast<std::uint8_t>(value + noise(24));
				};
				image.pixels.push_back({channel(4 * x + edge), channel(9 * y), channel(edge), static_cast<std::uint8_t>(alpha)});
			}
		}
		OrientedBBox everything;
		InitOrientedBBoxToSingleColour(everything, {0, 0, 0, 0});
		AddIColourToOrientedBBox(everything, {255, 255, 255, 255});
		blocks.assign(settings.blocksY, std::vector<KilnBlock>(settings.blocksX));
		for (std::vector<KilnBlock>& row : blocks)
		{
			for (KilnBlock& block : row)
			{
				fill(block, everything, noise);
			}
		}
	}

	template<typename Noise>
	void fill(KilnBlock& block, const OrientedBBox& box, const Noise& noise)
	{
		std::array<int, kKilnModeSlots> modes = {};
		const int count = ConstructListOfNeededModes(settings, block, true, modes);
		block.currentMode = modes[0];
		block.boxes.fill(box);
		for (int i = 0; i < count; ++i)
		{
			KilnModeSlot& slot = block.slot(modes[i]);
			slot.mode = modes[i];
			slot.count = 1;
			const auto channel = [&noise]
			{
				return static_cast<float>(noise(256));
			};
			slot.kept[0].pair =
			    MapToRepresentableColours(settings.tessel2, {channel(), channel(), channel(), 255}, {channel(), channel(), channel(), 255});
			slot.kept[0].error = 1U << 30;
		}
	}

	/// Both phases, the rows of each split into shares that run in reverse order.
	void pass(int shares)
	{
		for (const int parity : {0, 1})
		{
			const int rows = settings.blocksY / 2;
			for (int share = shares; share-- > 0;)
			{
				KilnThreadRecord record;
				record.image = &image;
				record.settings = &settings;
				record.blocks = &blocks;
				record.firstRow = rows * share / shares;
				record.endRow = rows * (share + 1) / shares;
				record.parity = parity;
				record.tag = ++tag;
				RunAnOptimisePhaseThread(&record);
			}
		}
	}

	/// The error of the image as it would be packed now, in the encoder's own measure.
	double error() const
	{
		double sum = 0;
		const auto space = std::make_unique<KilnPackingSpace>(settings);
		for (int y = 0; y < settings.blocksY; ++y)
		{
			for (int x = 0; x < settings.blocksX; ++x)
			{
				KilnErrors errors;
				PackLocalBlock(*space, image, settings, blocks, x, y, &errors);
				sum += static_cast<double>(errors.own);
			}
		}
		return sum;
	}

	std::vector<std::uint32_t> words() const
	{
		std::vector<std::uint32_t> result;
		const auto space = std::make_unique<KilnPackingSpace>(settings);
		for (int y = 0; y < settings.blocksY; ++y)
		{
			for (int x = 0; x < settings.blocksX; ++x)
			{
				const KilnWords words = PackLocalBlock(*space, image, settings, blocks, x, y);
				result.push_back(words.modulation);
				result.push_back(words.colours);
			}
		}
		return result;
	}

	bool hasHardBlock() const
	{
		bool found = false;
		for (const std::vector<KilnBlock>& row : blocks)
		{
			for (const KilnBlock& block : row)
			{
				found = found || (block.currentMode & kilnHardBit(settings.bpp)) != 0;
			}
		}
		return found;
	}

	int tag = 0;
};
} // namespace

// A visit changes only pixels inside the window over which it counts the error, so the error of the whole image cannot rise.
TEST(KilnPhase, NeverRaisesTheErrorOfTheImage)
{
	for (const int bpp : {4, 2})
	{
		for (const bool tessel2 : {false, true})
		{
			SCOPED_TRACE(testing::Message() << bpp << " bits, generation " << (tessel2 ? 2 : 1));
			KilnRun run(bpp, tessel2);
			const double start = run.error();
			double before = start;
			for (int pass = 0; pass < 6; ++pass)
			{
				run.settings.wideSearch = pass < 2;
				run.settings.hardAllowed = tessel2 && pass > 2;
				run.settings.hardNeighbours = tessel2 && pass > 3;
				run.pass(1);
				const double after = run.error();
				// At 2 bits the next block fits again what a left-out pixel at the edge of the window reads.
				EXPECT_LE(after, bpp == 4 ? before : before * 1.01) << "pass " << pass;
				before = after;
			}
			EXPECT_LT(before, start * (bpp == 4 ? 0.1 : 0.95));
			EXPECT_EQ(run.hasHardBlock(), tessel2);
		}
	}
}

TEST(KilnPhase, RowsMayBeSharedInAnyWay)
{
	for (const int bpp : {4, 2})
	{
		KilnRun together(bpp, true);
		KilnRun shared(bpp, true);
		for (int pass = 0; pass < 2; ++pass)
		{
			for (KilnRun* run : {&together, &shared})
			{
				run->settings.hardAllowed = run->settings.hardNeighbours = pass > 0;
				run->pass(run == &together ? 1 : 3);
			}
			ASSERT_EQ(together.words(), shared.words()) << "pass " << pass;
		}
	}
}

TEST(KilnPhase, LeavesGoodBlocksAloneUnlessModesChanged)
{
	KilnRun run(4, false);
	run.settings.errorThreshold = (1U << 30) + 1;
	run.settings.modesChanged = false;
	const std::vector<std::uint32_t> start = run.words();
	run.pass(1);
	EXPECT_EQ(run.words(), start);
	run.settings.modesChanged = true;
	run.pass(1);
	EXPECT_NE(run.words(), start);
	EXPECT_NE(run.blocks[3][4].tag, 0);
}

// Beside the rough pairs of the first statistics a block alone would not gain by the exact pair.
TEST(KilnPhase, AFlatAreaTakesOnePairAtOnce)
{
	for (const int grey : {3, 25, 127, 130, 248})
	{
		SCOPED_TRACE(grey);
		KilnRun run(4, true);
		run.settings.iterations = 1;
		const auto level = static_cast<std::uint8_t>(grey);
		const KilnColour colour = {level, level, level, 255};
		run.image.pixels.assign(run.image.pixels.size(), colour);
		for (std::vector<KilnBlock>& row : run.blocks)
		{
			for (KilnBlock& block : row)
			{
				block.singleColour = true;
				block.colour = colour;
			}
		}
		run.pass(1);
		for (const std::vector<KilnBlock>& row : run.blocks)
		{
			for (const KilnBlock& block : row)
			{
				EXPECT_EQ(block.current().pair, run.blocks[0][0].current().pair);
				EXPECT_EQ(block.currentMode, run.blocks[0][0].currentMode);
			}
		}
		// One level off in each channel.
		EXPECT_LE(run.error(), 3.0 * static_cast<double>(run.image.pixels.size()));
	}
}
