#include <array>
#include <gtest/gtest.h>
#include <memory>

#include "Simd/SimdLevels.h"
#include "TesselCodec.h"
#include "TesselOracle.h"

using namespace zortexture;

namespace
{
using Rgba = std::array<int, 4>;

/// A black, B white, both opaque; mode flag clear.
constexpr std::uint32_t kBlackWhite = 0xFFFF8000U;
constexpr std::uint32_t kMode1 = 1U;

/// Decodes blocks from a buffer of exactly their size, so that the sanitizer sees every read past it.
std::vector<std::uint8_t> decode(const std::vector<OracleBlock>& blocks, unsigned width, unsigned height, bool is2bpp, unsigned version)
{
	const std::vector<std::uint8_t> bytes = toBytes(blocks);
	const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[bytes.size()]);
	std::copy(bytes.begin(), bytes.end(), exact.get());
	std::vector<std::uint8_t> pixels(std::size_t(4) * width * height, 0xCD);
	EXPECT_EQ(TesselDecompress(exact.get(), pixels.data(), width, height, is2bpp, version), pixels.size());
	return pixels;
}

Rgba at(const std::vector<std::uint8_t>& pixels, unsigned width, unsigned x, unsigned y)
{
	const std::uint8_t* pixel = &pixels[4 * (std::size_t(y) * width + x)];
	return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

/// All blocks alike: nothing is interpolated, and the modulation alone makes the picture.
std::vector<OracleBlock> alike(std::size_t count, std::uint32_t modulation, std::uint32_t colours)
{
	return std::vector<OracleBlock>(count, OracleBlock{modulation, colours});
}
} // namespace

TEST(TesselDecoder, WeighsEveryIndexOf4bpp)
{
	// The first row holds indices 0, 1, 2, 3. Weights of white: 0, 3, 5, 8 and 0, 4, 4, 8 eighths of 255.
	for (const unsigned version : {0U, 1U})
	{
		const std::vector<std::uint8_t> standard = decode(alike(4, 0xE4, kBlackWhite & ~(version << 15)), 8, 8, false, version);
		const int expected[] = {0, 95, 159, 255};
		for (unsigned x = 0; x < 8; ++x)
		{
			EXPECT_EQ(at(standard, 8, x, 4), (Rgba{expected[x % 4], expected[x % 4], expected[x % 4], 255}));
			EXPECT_EQ(at(standard, 8, x, 5), (Rgba{0, 0, 0, 255}));
		}
		const std::vector<std::uint8_t> punched = decode(alike(4, 0xE4, (kBlackWhite & ~(version << 15)) | kMode1), 8, 8, false, version);
		EXPECT_EQ(at(punched, 8, 0, 0), (Rgba{0, 0, 0, 255}));
		EXPECT_EQ(at(punched, 8, 1, 0), (Rgba{127, 127, 127, 255}));
		EXPECT_EQ(at(punched, 8, 2, 0), version == 0 ? (Rgba{127, 127, 127, 0}) : (Rgba{0, 0, 0, 0}));
		EXPECT_EQ(at(punched, 8, 3, 0), (Rgba{255, 255, 255, 255}));
	}
}

TEST(TesselDecoder, ReadsDirect2bppBits)
{
	// One bit in each row: pixels (0,0), (3,1), (5,2), (7,3).
	const std::vector<std::uint8_t> pixels = decode(alike(4, 0x80200801U, kBlackWhite), 16, 8, true, 0);
	for (unsigned y = 0; y < 8; ++y)
	{
		for (unsigned x = 0; x < 16; ++x)
		{
			const unsigned lit[] = {0, 3, 5, 7};
			EXPECT_EQ(at(pixels, 16, x, y)[0], x % 8 == lit[y % 4] ? 255 : 0) << x << "," << y;
		}
	}
}

TEST(TesselDecoder, Interpolates2bppLeftOutPixels)
{
	// Row 0 stores 0 (x = 0) and 3 (x = 2); row 1 stores 1 (x = 1), row 3 stores 2 (x = 1), the rest 0. All blocks alike, so
	// row -1 is row 3. Pixel (1, 0) is left out: left 0, right 8, above 5, below 3.
	const std::uint32_t word = (3U << 2) | (1U << 8) | (2U << 24);
	const struct
	{
		std::uint32_t selectors;
		int weight;
	} cases[] = {
	    {0, 4},               // (0 + 8 + 5 + 3 + 2) / 4
	    {1U, 4},              // (0 + 8 + 1) / 2
	    {1U | (1U << 20), 4}, // (5 + 3 + 1) / 2
	    {2U, 6},              // pixel (0, 0) is 3: (8 + 8 + 5 + 3 + 2) / 4
	    {3U, 8},              // (8 + 8 + 1) / 2
	    {3U | (1U << 20), 4}, // unchanged
	};
	for (const auto& test : cases)
	{
		for (const unsigned version : {0U, 1U})
		{
			const std::uint32_t colours = (kBlackWhite & ~(version << 15)) | kMode1;
			const std::vector<std::uint8_t> pixels = decode(alike(4, word | test.selectors, colours), 16, 8, true, version);
			EXPECT_EQ(at(pixels, 16, 1, 0)[0], test.weight * 255 / 8) << test.selectors;
			EXPECT_EQ(at(pixels, 16, 0, 0)[0], (test.selectors & 2) != 0 ? 255 : 0);
			EXPECT_EQ(at(pixels, 16, 2, 0)[0], 255);
			EXPECT_EQ(at(pixels, 16, 1, 1)[0], 95);
		}
	}
	// Pixel (4, 2) owns both its bits when the four neighbours are meant, bit 21 alone otherwise.
	const auto weightOfCentre = [](std::uint32_t modulation)
	{
		return at(decode(alike(4, modulation, kBlackWhite | kMode1), 16, 8, true, 0), 16, 4, 2)[0];
	};
	EXPECT_EQ(weightOfCentre(1U << 20), 95);
	EXPECT_EQ(weightOfCentre(1U << 21), 159);
	EXPECT_EQ(weightOfCentre((1U << 20) | 1U), 0);
	EXPECT_EQ(weightOfCentre((1U << 21) | 1U), 255);
}

TEST(TesselDecoder, UpscalesBetweenBlockCentres)
{
	// Only block (0, 0) is red; twiddled and linear order agree on it.
	std::vector<OracleBlock> blocks = alike(4, 0, 0x80008000U);
	blocks[0].colours |= 31U << 10;
	const std::vector<std::uint8_t> four = decode(blocks, 8, 8, false, 0);
	const int row4[] = {127, 191, 255, 191, 127, 63, 0, 63};
	for (unsigned x = 0; x < 8; ++x)
	{
		EXPECT_EQ(at(four, 8, x, 2)[0], row4[x]);
		EXPECT_EQ(at(four, 8, 2, x)[0], row4[x]);
		EXPECT_EQ(at(four, 8, x, 6)[0], 0);
	}
	EXPECT_EQ(at(four, 8, 0, 0)[0], 63);
	EXPECT_EQ(at(four, 8, 3, 3)[0], 143); // 9/16: t = 279, 139 + 4

	const std::vector<std::uint8_t> two = decode(blocks, 16, 8, true, 0);
	const int row2[] = {127, 159, 191, 223, 255, 223, 191, 159, 127, 95, 63, 31, 0, 31, 63, 95};
	for (unsigned x = 0; x < 16; ++x)
	{
		EXPECT_EQ(at(two, 16, x, 2)[0], row2[x]) << x;
	}
}

TEST(TesselDecoder, AlphaLevelsOfTheGenerations)
{
	// Alpha fields of 7, B's index everywhere, then A's.
	const std::vector<OracleBlock> allB = alike(4, 0xFFFFFFFFU, 0x7FFF7FFEU);
	const std::vector<OracleBlock> allA = alike(4, 0, 0x7FFF7FFEU);
	EXPECT_EQ(at(decode(allB, 8, 8, false, 0), 8, 2, 2)[3], 238);
	EXPECT_EQ(at(decode(allA, 8, 8, false, 0), 8, 2, 2)[3], 238);
	EXPECT_EQ(at(decode(allB, 8, 8, false, 1), 8, 2, 2)[3], 255);
	EXPECT_EQ(at(decode(allA, 8, 8, false, 1), 8, 2, 2)[3], 238);
}

TEST(TesselDecoder, HardBlocksKeepTheirOwnColours)
{
	// Second generation, four blocks with a grey A of 5, 10, 20, 30 of 31, B black. All are hard.
	std::vector<OracleBlock> blocks;
	for (const unsigned level : {5U, 10U, 20U, 30U})
	{
		blocks.push_back({0, 0x80008000U | (level << 10)});
	}
	const int red[] = {41, 82, 165, 247};
	const std::vector<std::uint8_t> rectangles = decode(blocks, 8, 8, false, 1);
	for (unsigned y = 0; y < 8; ++y)
	{
		for (unsigned x = 0; x < 8; ++x)
		{
			EXPECT_EQ(at(rectangles, 8, x, y)[0], red[x / 4 + y / 4 * 2]) << x << "," << y;
		}
	}
	// With the mode flag, index 2 of pixel (3, 2), u 1 and v 0 of the first block, is Q's A; index 2 on the centre weighs 5/8 of B.
	for (OracleBlock& block : blocks)
	{
		block.colours |= kMode1;
		block.modulation = 0xAAAAAAAAU;
	}
	const std::vector<std::uint8_t> palette = decode(blocks, 8, 8, false, 1);
	EXPECT_EQ(at(palette, 8, 3, 2), (Rgba{82, 0, 0, 255}));
	EXPECT_EQ(at(palette, 8, 2, 2), (Rgba{41 * 3 / 8, 0, 0, 255}));
}

TEST(TesselDecoder, EqualsTheOracleAtAllSizesAndVectorLevels)
{
	std::mt19937 random(7);
	const std::vector<unsigned> widths = {1, 2, 3, 4, 5, 7, 8, 9, 11, 12, 15, 16, 17, 20, 24, 31, 32, 36, 40, 67, 128};
	const std::vector<unsigned> heights = {1, 2, 3, 4, 5, 7, 8, 9, 10, 11, 12, 16, 17, 23, 32};
	for (const unsigned height : heights)
	{
		for (const unsigned width : widths)
		{
			for (const unsigned variant : {0U, 1U, 2U, 3U})
			{
				const bool is2bpp = (variant & 1) != 0;
				const bool second = (variant & 2) != 0;
				// As few blocks as the documented data sizes have.
				const std::size_t count = std::size_t(oracleBlocksX(width, is2bpp, second)) * oracleBlocksY(height, second);
				const std::vector<OracleBlock> blocks = randomBlocks(count, random);
				const std::vector<std::uint8_t> expected = oracleDecode(blocks, width, height, is2bpp, second);
				for (const ESimdLevel level : {eSimdPlain, eSimdSse2, eSimdAvx2})
				{
					ASSERT_EQ(atSimdLevel(level, [&]() { return decode(blocks, width, height, is2bpp, second ? 1 : 0); }), expected)
					    << width << "x" << height << " variant " << variant << " level " << level;
				}
			}
		}
	}
}

TEST(TesselDecoder, ReportsSizesAndConsumedBytes)
{
	std::vector<std::uint8_t> data(64);
	std::vector<std::uint8_t> pixels(64 * 4);
	EXPECT_EQ(TesselDecompress(nullptr, pixels.data(), 5, 3, false, 0), 60U);
	EXPECT_EQ(TesselDecompress(data.data(), nullptr, 5, 3, true, 1), 60U);
	EXPECT_EQ(TesselDecompress(data.data(), pixels.data(), 0, 3, false, 0), 0U);
	EXPECT_EQ(TesselDecompress(data.data(), pixels.data(), 3, 0, false, 1), 0U);
	EXPECT_EQ(ZORTDecompressTessel(data.data(), 1, 8, 8, pixels.data()), 32);
	EXPECT_EQ(ZORTDecompressTessel(data.data(), 0, 1, 1, pixels.data()), 32);
	EXPECT_EQ(ZORTDecompressTessel(data.data(), 0, 8, 4, pixels.data()), 32);
	EXPECT_EQ(ZORTDecompressTessel(data.data(), 0, 16, 4, pixels.data()), 64);
}
