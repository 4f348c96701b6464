#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

#include "Codecs/Tessel/TesselPadding.h"
#include "TesselCodec.h"
#include "TesselIICompressor.h"
#include "TesselOracle.h"

using namespace zortexture;

namespace
{
constexpr std::uint32_t kBit15 = 1U << 15;

/// Smooth hills with noise on them, and a translucent stripe where `alpha` is set.
std::vector<Pixel<unsigned char>> hills(unsigned width, unsigned height, bool alpha)
{
	std::mt19937 random(7);
	std::vector<Pixel<unsigned char>> image;
	for (unsigned y = 0; y < height; ++y)
	{
		for (unsigned x = 0; x < width; ++x)
		{
			const unsigned noise = random() % 24;
			const auto value = [&](unsigned a, unsigned b)
			{
				return static_cast<unsigned char>(((x * a + y * b) % 200) + noise);
			};
			image.push_back({value(5, 3), value(2, 7), value(9, 1), static_cast<unsigned char>(alpha && x % 16 < 5 ? 40 + noise : 255)});
		}
	}
	return image;
}

std::vector<OracleBlock> toBlocks(const std::vector<unsigned char>& bytes)
{
	std::vector<OracleBlock> blocks(bytes.size() / 8);
	static_assert(sizeof(OracleBlock) == 8);
	std::memcpy(blocks.data(), bytes.data(), bytes.size());
	return blocks;
}
} // namespace

// Opaque blocks differ from those of the first generation in their order and in what bit 15 means, and in nothing else. Counts that
// 8 divides leave no remainder of tiles in either.
TEST(TesselIICompressor, FitsAsTheFirstGenerationDoes)
{
	for (const bool is2bpp : {false, true})
	{
		const unsigned width = is2bpp ? 128 : 64;
		const unsigned height = 32;
		std::vector<Pixel<unsigned char>> image = hills(width, height, false);
		for (const unsigned quality : {0U, 1U})
		{
			std::vector<unsigned char> first(std::size_t(width) * height / (is2bpp ? 4 : 2));
			std::vector<unsigned char> second(first.size());
			ASSERT_EQ(TesselCompress(image.data(), first.data(), width, height, true, is2bpp, 0, quality), first.size());
			ASSERT_EQ(tessel2Compress(image.data(), second.data(), width, height, false, true, is2bpp, quality == 0 ? 0 : 8),
			          second.size());
			const std::vector<OracleBlock> expected = toBlocks(first);
			const std::vector<OracleBlock> blocks = toBlocks(second);
			const unsigned numX = 16;
			for (unsigned i = 0; i < blocks.size(); ++i)
			{
				const OracleBlock& block = expected[oracleTwiddle(numX, 8, i % numX, i / numX)];
				ASSERT_EQ(blocks[i].modulation, block.modulation) << i;
				ASSERT_EQ(blocks[i].colours & ~kBit15, block.colours & ~kBit15) << i;
			}
		}
	}
}

TEST(TesselIICompressor, FlagsEdgesBetweenBlocks)
{
	// Uniform blocks: the own distance is 0, the limit 4095. 64 in red is a distance of 4096, 63 one of 3969.
	const auto flagsOf = [](const std::array<unsigned char, 9>& reds, unsigned char spread)
	{
		std::vector<Pixel<unsigned char>> image(12 * 12);
		for (unsigned i = 0; i < image.size(); ++i)
		{
			const unsigned x = i % 12;
			const unsigned y = i / 12;
			const bool isLight = (x % 4) + (y % 4) == 0;
			image[i] = {reds[3 * (y / 4) + x / 4], static_cast<unsigned char>(isLight ? spread : 0), 0, 255};
		}
		TesselII4bppCompressor compressor(image.data(), 12, 12);
		compressor.calculateColoursAB(false);
		std::string flags;
		for (const unsigned char flag : compressor.hardTransition)
		{
			flags += flag != 0 ? '#' : '.';
		}
		return flags;
	};
	EXPECT_EQ(flagsOf({0, 0, 0, 0, 63, 0, 0, 0, 0}, 0), ".........");
	// The block itself and those at its left and above; alone at a border it is seen through the wrap.
	EXPECT_EQ(flagsOf({0, 0, 0, 0, 64, 0, 0, 0, 0}, 0), ".#.##....");
	EXPECT_EQ(flagsOf({64, 0, 0, 0, 0, 0, 0, 0, 0}, 0), "#.#...#..");
	// A and B of every block 128 apart: own distance 16384 and a limit of 4096. 127 leave the fixed limit.
	EXPECT_EQ(flagsOf({0, 0, 0, 0, 64, 0, 0, 0, 0}, 128), ".........");
	EXPECT_EQ(flagsOf({0, 0, 0, 0, 64, 0, 0, 0, 0}, 127), ".#.##....");
	EXPECT_EQ(flagsOf({0, 0, 0, 0, 65, 0, 0, 0, 0}, 128), ".#.##....");
	// An edge needs both colours apart: two blocks that share their B are none.
	std::vector<Pixel<unsigned char>> shared(8 * 4, {0, 0, 0, 255});
	shared[0] = {200, 200, 200, 255};
	shared[4] = {200, 200, 200, 255};
	shared[5] = {90, 0, 0, 255};
	TesselII4bppCompressor compressor(shared.data(), 8, 4);
	compressor.calculateColoursAB(false);
	EXPECT_EQ(compressor.hardTransition, (std::vector<unsigned char>{0, 0}));
}

TEST(TesselIICompressor, WritesFlagsAndJointOpacity)
{
	const std::vector<Pixel<unsigned char>> image = hills(24, 12, true);
	TesselII4bppCompressor compressor(image.data(), 24, 12);
	compressor.preprocess(true);
	std::vector<TesselIIBlockData> blocks(18);
	compressor.getCompressedData(blocks.data());
	unsigned opaque = 0;
	for (std::size_t i = 0; i < blocks.size(); ++i)
	{
		const bool isOpaque = (compressor.coloursA[i] & compressor.coloursB[i]) >> 24 == 255;
		opaque += isOpaque ? 1 : 0;
		EXPECT_EQ(blocks[i].getColourWord() >> 31, isOpaque ? 1U : 0U);
		EXPECT_EQ(blocks[i].getHardTransitionFlag(), compressor.hardTransition[i] != 0);
		EXPECT_EQ(blocks[i].getModulationFlag(), compressor.records[i].mode != 0);
	}
	EXPECT_GT(opaque, 0U);
	EXPECT_LT(opaque, 18U);
}

TEST(TesselIICompressor, PadsAndKeepsTheThreadCount)
{
	const std::vector<Pixel<unsigned char>> image = hills(13, 10, true);
	for (const bool is2bpp : {false, true})
	{
		const unsigned padX = 3;
		std::vector<Pixel<unsigned char>> padded = padTesselImage(image.data(), 13, 10, padX, 2);
		for (const unsigned quality : {0U, 1U})
		{
			std::vector<unsigned char> out(16 * 12 / (is2bpp ? 4 : 2));
			std::vector<unsigned char> expected(out.size());
			ASSERT_EQ(TesselCompress(image.data(), out.data(), 13, 10, true, is2bpp, 1, quality), out.size());
			if (quality == 0 && !is2bpp)
			{
				Tessel2SectionCompress(padded.data(), expected.data(), 16, 12);
			}
			else
			{
				tessel2Compress(padded.data(), expected.data(), 16, 12, false, true, is2bpp, quality == 0 ? 0 : 8);
			}
			EXPECT_EQ(out, expected) << is2bpp << quality;
		}
	}
	TesselII4bppCompressor compressor(image.data(), 13, 10);
	TesselIIMultiThreadedCompressor wrapper(&compressor, 64);
	EXPECT_EQ(wrapper.getNumberOfThreads(), 64U);
	wrapper.calculateNumberOfThreads();
	EXPECT_EQ(wrapper.getNumberOfThreads(), 4U);
	unsigned char none[8] = {};
	EXPECT_EQ(tessel2Compress(const_cast<Pixel<unsigned char>*>(image.data()), none, 13, 3, false, true, false, 0), 0U);
}
