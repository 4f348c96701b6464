#include <array>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>

#include "Codecs/Tessel/TesselFastCompressor.h"
#include "Codecs/Tessel/TesselPadding.h"
#include "TesselCodec.h"
#include "TesselCompressor.h"
#include "TesselOracle.h"

using namespace zortexture;

namespace
{
/// Waves of different length in every channel over a ramp, with a few edges: like a photograph in what it asks of a codec.
std::vector<unsigned char> picture(unsigned width, unsigned height)
{
	std::vector<unsigned char> pixels;
	for (unsigned y = 0; y < height; ++y)
	{
		for (unsigned x = 0; x < width; ++x)
		{
			const double edge = (x / 19 + y / 23) % 2 != 0 ? 24.0 : 0.0;
			const auto channel = [&](double length, double phase)
			{
				const double wave = std::sin((x + phase) / length) + std::cos((y - phase) / length);
				return static_cast<unsigned char>(115.0 + 45.0 * wave + edge);
			};
			pixels.insert(pixels.end(), {channel(5.0, 0.0), channel(7.0, 2.0), channel(4.0, 5.0), 255});
		}
	}
	return pixels;
}

double psnr(const std::vector<unsigned char>& a, const std::vector<unsigned char>& b)
{
	double sum = 0.0;
	for (std::size_t i = 0; i < a.size(); ++i)
	{
		const double difference = double(a[i]) - b[i];
		sum += difference * difference;
	}
	return 10.0 * std::log10(255.0 * 255.0 / (sum / (double(a.size()) * 0.75)));
}

std::unique_ptr<TesselCompressor> newCompressor(bool is2bpp, const std::vector<unsigned char>& pixels, unsigned width, unsigned height)
{
	if (is2bpp)
	{
		return std::make_unique<Tessel2bppCompressor>(pixels.data(), width, height);
	}
	return std::make_unique<Tessel4bppCompressor>(pixels.data(), width, height);
}

std::vector<unsigned char> readOut(TesselCompressor& compressor)
{
	std::vector<TesselBlockData> blocks(compressor.coloursA.size());
	compressor.getCompressedData(blocks.data(), true);
	std::vector<unsigned char> bytes(8 * blocks.size());
	std::memcpy(bytes.data(), blocks.data(), bytes.size());
	return bytes;
}

/// Through the wrapper with one thread, which leaves no remainder of tiles.
std::vector<unsigned char> encode(bool is2bpp, const std::vector<unsigned char>& pixels, unsigned width, unsigned height,
                                  unsigned iterations)
{
	const std::unique_ptr<TesselCompressor> compressor = newCompressor(is2bpp, pixels, width, height);
	compressor->numberOfIterations = iterations;
	TesselMultiThreadedCompressor wrapper(compressor.get(), 1);
	EXPECT_EQ(wrapper.getNumberOfThreads(), 1U);
	wrapper.preprocess(true);
	wrapper.compress();
	return readOut(*compressor);
}

double quality(bool is2bpp, const std::vector<unsigned char>& pixels, unsigned width, unsigned height, unsigned iterations)
{
	const std::vector<unsigned char> data = encode(is2bpp, pixels, width, height, iterations);
	std::vector<unsigned char> decoded(pixels.size());
	TesselDecompress(data.data(), decoded.data(), width, height, is2bpp, 0);
	return psnr(pixels, decoded);
}
} // namespace

TEST(TesselCompressor, QualityRisesWithIterationsAndBitRate)
{
	const std::vector<unsigned char> pixels = picture(128, 64);
	const double four0 = quality(false, pixels, 128, 64, 0);
	const double four2 = quality(false, pixels, 128, 64, 2);
	const double four8 = quality(false, pixels, 128, 64, 8);
	const double two0 = quality(true, pixels, 128, 64, 0);
	const double two8 = quality(true, pixels, 128, 64, 8);
	RecordProperty("psnr", std::to_string(four0) + " " + std::to_string(four2) + " " + std::to_string(four8) + " " + std::to_string(two0) +
	                           " " + std::to_string(two8));
	EXPECT_GT(four0, 22.0);
	EXPECT_GT(four2, four0 + 0.5);
	EXPECT_GT(four8, four2 + 0.2);
	EXPECT_GT(two8, two0 + 0.1);
	EXPECT_GT(four8, two8 + 1.0);
}

TEST(TesselCompressor, NoIterationsIsThePreprocess)
{
	const std::vector<unsigned char> pixels = picture(32, 16);
	for (const bool is2bpp : {false, true})
	{
		const std::unique_ptr<TesselCompressor> compressor = newCompressor(is2bpp, pixels, 32, 16);
		compressor->preprocess(true);
		const std::vector<unsigned char> bytes = readOut(*compressor);
		EXPECT_EQ(encode(is2bpp, pixels, 32, 16, 0), bytes);
		std::vector<unsigned char> entry(bytes.size());
		EXPECT_EQ(TesselCompress(pixels.data(), entry.data(), 32, 16, false, is2bpp, 0, 0), entry.size());
		EXPECT_EQ(entry, bytes);
		// Through the classes' own rounds there is a difference.
		compressor->numberOfIterations = 2;
		compressor->compress();
		EXPECT_NE(readOut(*compressor), bytes);
	}
}

TEST(TesselCompressor, WrapperEndsARoundWithTheColours)
{
	const std::vector<unsigned char> pixels = picture(32, 32);
	Tessel4bppCompressor byHand(pixels.data(), 32, 32);
	byHand.preprocess(true);
	for (int round = 0; round < 3; ++round)
	{
		byHand.calculateModulations(0, 8, 0, 8);
		byHand.interpolateColoursAB();
		byHand.optimizeColoursAB(0, 8, 0, 8);
	}
	EXPECT_EQ(encode(false, pixels, 32, 32, 3), readOut(byHand));
}

TEST(TesselCompressor, IntervalSaysWhenModulationIsChosenAnew)
{
	const std::vector<unsigned char> pixels = picture(32, 32);
	const auto indicesAfter = [&pixels](unsigned iterations, unsigned interval)
	{
		Tessel4bppCompressor compressor(pixels.data(), 32, 32);
		compressor.numberOfIterations = iterations;
		compressor.modulationRecalculationInterval = interval;
		compressor.preprocess(true);
		compressor.compress();
		std::vector<unsigned char> indices;
		for (const Tessel4bppRecord& record : compressor.records)
		{
			indices.insert(indices.end(), record.standard, record.standard + 16);
		}
		return indices;
	};
	EXPECT_EQ(indicesAfter(2, 0), indicesAfter(0, 1)); // never
	EXPECT_NE(indicesAfter(2, 1), indicesAfter(1, 1)); // in rounds 0 and 1
	EXPECT_EQ(indicesAfter(2, 2), indicesAfter(1, 1)); // in round 0 alone
	EXPECT_NE(indicesAfter(1, 1), indicesAfter(0, 1));
}

TEST(TesselCompressor, ARectangleTouchesItsBlocksOnly)
{
	const std::vector<unsigned char> pixels = picture(20, 16);
	Tessel4bppCompressor compressor(pixels.data(), 20, 16);
	compressor.preprocess(true);
	const std::vector<unsigned> before = compressor.coloursA;
	compressor.optimizeColoursAB(0, 4, 0, 4);
	unsigned changed = 0;
	for (unsigned i = 0; i < 20; ++i)
	{
		if (i % 5 == 4)
		{
			EXPECT_EQ(compressor.coloursA[i], before[i]);
		}
		changed += compressor.coloursA[i] != before[i] ? 1 : 0;
	}
	EXPECT_GT(changed, 4U);
	// Ends past the image are cut to it.
	compressor.calculateModulations(4, 99, 0, 99);
	compressor.optimizeColoursAB(4, 99, 0, 99);
}

TEST(TesselCompressor, TilesAreTruncated)
{
	using Tile = std::array<unsigned, 4>;
	const struct
	{
		unsigned blocksX;
		unsigned blocksY;
		unsigned threads;
		std::vector<Tile> tiles;
	} cases[] = {
	    {5, 4, 4, {{0, 2, 0, 2}, {2, 4, 0, 2}, {0, 2, 2, 4}, {2, 4, 2, 4}}}, // the fifth column belongs to none
	    {4, 5, 2, {{0, 4, 0, 2}, {0, 4, 2, 4}}},                             // s = 1, t = 2
	    {1, 7, 4, {{0, 1, 0, 3}, {0, 1, 3, 6}}},                             // narrower than s: one column of tiles
	    {6, 1, 4, {{0, 3, 0, 1}, {3, 6, 0, 1}}},                             // lower than t: one row
	    {7, 7, 1, {{0, 7, 0, 7}}},
	    {2, 2, 4, {{0, 1, 0, 1}, {1, 2, 0, 1}, {0, 1, 1, 2}, {1, 2, 1, 2}}}, // just as many
	    {9, 5, 6, {{0, 4, 0, 1}, {4, 8, 0, 1}, {0, 4, 1, 2}, {4, 8, 1, 2}, {0, 4, 2, 3}, {4, 8, 2, 3}}},
	    {0, 4, 4, {}},
	    {4, 0, 4, {}},
	    {4, 4, 0, {}},
	};
	for (const auto& test : cases)
	{
		std::vector<Tile> tiles;
		forEachTesselTile(test.blocksX, test.blocksY, test.threads,
		                  [&tiles](unsigned x0, unsigned x1, unsigned y0, unsigned y1) {
			                  tiles.push_back({x0, x1, y0, y1});
		                  });
		EXPECT_EQ(tiles, test.tiles) << test.blocksX << "x" << test.blocksY << " by " << test.threads;
	}
}

TEST(TesselCompressor, ThreadsAreLimitedByTheBlocks)
{
	const std::vector<unsigned char> pixels = picture(8, 4);
	Tessel2bppCompressor one(pixels.data(), 8, 4);
	EXPECT_EQ(TesselMultiThreadedCompressor(&one, 64).getNumberOfThreads(), 1U);
	Tessel4bppCompressor none(pixels.data(), 8, 3);
	none.numberOfIterations = 2;
	TesselMultiThreadedCompressor wrapper(&none, 64);
	EXPECT_EQ(wrapper.getNumberOfThreads(), 0U);
	EXPECT_EQ(wrapper.getNumberOfIterations(), 2U);
	EXPECT_EQ(wrapper.getModulationRecalculationInterval(), 1U);
	wrapper.preprocess(true);
	wrapper.compress();
}

TEST(TesselCompressor, UniformColourIsLeftAlone)
{
	// The residual is 0, so 8 iterations change nothing. 4bpp blue of A has 4 bits: 0xE7 gives 28 of 31 there and in B.
	std::vector<unsigned char> pixels;
	for (int i = 0; i < 16 * 16; ++i)
	{
		pixels.insert(pixels.end(), {0x42, 0x84, 0xE7, 0xFF});
	}
	const std::vector<unsigned char> data = encode(false, pixels, 16, 16, 0);
	EXPECT_EQ(encode(false, pixels, 16, 16, 8), data);
	// 8 = 01000, 16 = 10000; A: blue 1110; B: blue 11100.
	const std::uint32_t colours = 0x80008000U | (8U << 10) | (16U << 5) | (14U << 1) | (8U << 26) | (16U << 21) | (28U << 16);
	EXPECT_EQ(data, toBytes(std::vector<OracleBlock>(16, OracleBlock{0, colours})));
}

TEST(TesselCompress, SizesAndRefusals)
{
	std::vector<unsigned char> pixels = picture(12, 12);
	std::vector<unsigned char> out(std::size_t(12) * 12 / 2);
	// Whole blocks or nothing in the first generation; the query says what the second would write.
	const auto query = [](unsigned width, unsigned height, bool is2bpp, unsigned version)
	{
		return TesselCompress(nullptr, nullptr, width, height, true, is2bpp, version, 0);
	};
	EXPECT_EQ(query(12, 12, false, 0), 72U);
	EXPECT_EQ(query(12, 12, true, 0), 0U);
	EXPECT_EQ(query(16, 12, true, 0), 48U);
	EXPECT_EQ(query(16, 10, false, 0), 0U);
	EXPECT_EQ(query(12, 12, true, 1), 48U);
	EXPECT_EQ(query(1, 1, false, 1), 8U);
	EXPECT_EQ(query(1, 1, true, 1), 8U);
	EXPECT_EQ(query(32768, 32768, false, 0), 0x20000000U);
	EXPECT_EQ(TesselCompress(pixels.data(), out.data(), 12, 12, true, false, 0, 0), 72U);
	EXPECT_EQ(TesselCompress(pixels.data(), out.data(), 12, 12, true, true, 0, 0), 0U);
	EXPECT_EQ(TesselCompress(pixels.data(), out.data(), 0, 12, true, false, 0, 1), 0U);
	EXPECT_EQ(TesselCompress(pixels.data(), out.data(), 12, 0, true, true, 0, 1), 0U);
	EXPECT_EQ(TesselCompress(pixels.data(), out.data(), 12, 12, true, false, 2, 0), 0U);
}

TEST(TesselCompress, DropsBlocksPastTheEndOfTheData)
{
	// 6 x 6 blocks: the places of some lie past 36, and other places have no block and must be zero.
	const std::vector<unsigned char> pixels = picture(24, 24);
	const std::unique_ptr<unsigned char[]> out(new unsigned char[288]);
	std::fill_n(out.get(), 288, static_cast<unsigned char>(0xCD));
	ASSERT_EQ(TesselCompress(pixels.data(), out.get(), 24, 24, false, false, 0, 1), 288U);
	std::array<bool, 36> used = {};
	for (unsigned i = 0; i < 36; ++i)
	{
		const std::size_t place = oracleTwiddle(6, 6, i % 6, i / 6);
		if (place < 36)
		{
			used[place] = true;
		}
	}
	EXPECT_LT(std::count(used.begin(), used.end(), true), 36);
	for (std::size_t i = 0; i < 36; ++i)
	{
		EXPECT_EQ(std::all_of(out.get() + 8 * i, out.get() + 8 * i + 8, [](unsigned char byte) { return byte == 0; }), !used[i]) << i;
	}
}

TEST(TesselPadding, RepeatsColumnsThenRows)
{
	// Red tells the column, green the row.
	const auto padded = [](unsigned width, unsigned height, unsigned padX, unsigned padY)
	{
		std::vector<unsigned char> pixels;
		for (unsigned i = 0; i < width * height; ++i)
		{
			pixels.insert(pixels.end(), {static_cast<unsigned char>(i % width), static_cast<unsigned char>(i / width), 7, 255});
		}
		return padTesselImage(pixels.data(), width, height, padX, padY);
	};
	const std::vector<TesselPixel> image = padded(5, 6, 3, 2);
	ASSERT_EQ(image.size(), 64U);
	const int columns[] = {0, 1, 2, 3, 4, 2, 3, 4};
	const int rows[] = {0, 1, 2, 3, 4, 5, 4, 5};
	for (std::size_t i = 0; i < 64; ++i)
	{
		EXPECT_EQ(image[i].r, columns[i % 8]);
		EXPECT_EQ(image[i].g, rows[i / 8]);
		EXPECT_EQ(image[i].b, 7);
	}
	// Too small to reach padX back: repeated from the first.
	const std::vector<TesselPixel> narrow = padded(2, 1, 6, 3);
	const int narrowColumns[] = {0, 1, 0, 1, 0, 1, 0, 1};
	for (std::size_t i = 0; i < 32; ++i)
	{
		EXPECT_EQ(narrow[i].r, narrowColumns[i % 8]);
		EXPECT_EQ(narrow[i].g, 0);
	}
}
