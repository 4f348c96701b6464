#include <gtest/gtest.h>
#include <memory>

#include "Codecs/Tessel/kiln/bitmap.h"
#include "Codecs/Tessel/kiln/decompress.h"
#include "TesselCodec.h"
#include "TesselOracle.h"

namespace
{
using Image = std::unique_ptr<bitmap, void (*)(bitmap*)>;

Image newImage(int width, int height)
{
	return {new_bitmap(width, height, true, nullptr), delete_bitmap};
}

std::vector<std::uint8_t> toRgba(const bitmap& image)
{
	std::vector<std::uint8_t> pixels;
	for (int y = 0; y < image.height; ++y)
	{
		for (int x = 0; x < image.width; ++x)
		{
			const bitmap_colour& pixel = image.pixels[x][y];
			pixels.insert(pixels.end(), {pixel.r, pixel.g, pixel.b, pixel.a});
		}
	}
	return pixels;
}

std::vector<std::uint8_t> decompress(const std::vector<OracleBlock>& blocks, int minimum, int version, int bpp, int width, int height,
                                     int wrap, int linear)
{
	const Image image = newImage(width, height);
	Decompress(toBytes(blocks).data(), minimum, version, kKilnWordType, bpp, width, height, wrap, 0, linear, image.get());
	return toRgba(*image);
}
} // namespace

TEST(KilnDecoder, AgreesWithTheBlockDecoderOnTheFirstGeneration)
{
	std::mt19937 random(3);
	for (const int bpp : {2, 4})
	{
		for (const int width : {16, 24, 64})
		{
			for (const int height : {8, 12, 32})
			{
				const std::vector<OracleBlock> blocks = randomBlocks(static_cast<std::size_t>(width * height * bpp / 64), random);
				std::vector<std::uint8_t> pixels(static_cast<std::size_t>(4 * width * height));
				zortexture::ZORTDecompressTessel(toBytes(blocks).data(), bpp == 2 ? 1 : 0, width, height, pixels.data());
				ASSERT_EQ(decompress(blocks, 0, 0, bpp, width, height, 1, 0), pixels) << bpp << ": " << width << "x" << height;
			}
		}
	}
}

TEST(KilnDecoder, LinearOrderOfTheFirstGeneration)
{
	// The same picture from blocks put in rows.
	std::mt19937 random(4);
	const std::vector<OracleBlock> twiddled = randomBlocks(32, random);
	std::vector<OracleBlock> linear(32);
	for (unsigned by = 0; by < 4; ++by)
	{
		for (unsigned bx = 0; bx < 8; ++bx)
		{
			linear[by * 8 + bx] = twiddled[oracleTwiddle(8, 4, bx, by)];
		}
	}
	EXPECT_EQ(decompress(linear, 0, 0, 4, 32, 16, 1, 1), decompress(twiddled, 0, 0, 4, 32, 16, 1, 0));
}

TEST(KilnDecoder, ClampedEdgesLeaveTheInteriorAlone)
{
	std::mt19937 random(5);
	for (const int bpp : {2, 4})
	{
		const int half = bpp == 2 ? 4 : 2;
		const std::vector<OracleBlock> blocks = randomBlocks(static_cast<std::size_t>(32 * 16 * bpp / 64), random);
		const std::vector<std::uint8_t> wrapped = decompress(blocks, 0, 1, bpp, 32, 16, 1, 1);
		const std::vector<std::uint8_t> clamped = decompress(blocks, 0, 1, bpp, 32, 16, 0, 1);
		EXPECT_NE(wrapped, clamped);
		for (int y = 2; y < 14; ++y)
		{
			for (int x = half; x < 32 - half; ++x)
			{
				const std::ptrdiff_t offset = 4 * (std::ptrdiff_t(y) * 32 + x);
				ASSERT_TRUE(std::equal(wrapped.begin() + offset, wrapped.begin() + offset + 4, clamped.begin() + offset)) << x << "," << y;
			}
		}
	}
}

TEST(KilnDecoder, ForcedMinimumCountsTwoBlocks)
{
	// One block's worth of image over four blocks: pixel (2, 2) is the centre of the first; towards (1, 1), reached by wrapping,
	// the other three come in, red in block 1 alone.
	std::vector<OracleBlock> blocks(4, OracleBlock{0, 0x80008000U});
	blocks[1].colours |= 31U << 10;
	const std::vector<std::uint8_t> forced = decompress(blocks, 1, 1, 4, 4, 4, 1, 1);
	blocks.resize(1);
	const std::vector<std::uint8_t> single = decompress(blocks, 0, 1, 4, 4, 4, 1, 1);
	// Hard flag (bit 15) is set on all: pixels of the right-hand member show block 1.
	EXPECT_EQ(forced[4 * (2 * 4 + 2)], 0);
	EXPECT_EQ(forced[4 * (2 * 4 + 1)], 255);
	EXPECT_EQ(single[4 * (2 * 4 + 1)], 0);
}

TEST(KilnDecoder, RefusesWithoutWriting)
{
	const std::vector<std::uint8_t> data = toBytes(std::vector<OracleBlock>(16));
	const Image image = newImage(8, 8);
	const std::vector<std::uint8_t> before = toRgba(*image);
	EXPECT_EQ(before[0], 255);
	EXPECT_EQ(before[1], 0);
	Decompress(data.data(), 0, 1, kKilnWordType, 4, 8, 12, 1, 0, 1, image.get());
	Decompress(data.data(), 0, 1, kKilnWordType, 4, 4, 8, 1, 0, 1, image.get());
	Decompress(data.data(), 0, 1, 1, 4, 8, 8, 1, 0, 1, image.get());
	Decompress(data.data(), 0, 1, kKilnWordType, 4, 8, 8, 1, 1, 1, image.get());
	Decompress(data.data(), 0, 1, kKilnWordType, 3, 8, 8, 1, 0, 1, image.get());
	EXPECT_EQ(toRgba(*image), before);
}

TEST(KilnDecoderDeathTest, OneBitAPixelEndsTheProcess)
{
	const std::vector<std::uint8_t> data = toBytes(std::vector<OracleBlock>(16));
	const Image image = newImage(8, 8);
	EXPECT_DEATH(Decompress(data.data(), 0, 0, kKilnWordType, 1, 8, 8, 1, 0, 0, image.get()),
	             "EXITING! 1BPP UnpackMods not yet implemented!\n");
}

TEST(KilnBitmap, GuardsItsBounds)
{
	EXPECT_EQ(new_bitmap(0, 4, true, nullptr), nullptr);
	EXPECT_EQ(new_bitmap(4, -1, true, nullptr), nullptr);
	EXPECT_EQ(util_alloc_2d(SIZE_MAX / 4, 8, 4, nullptr), nullptr);
	const bitmap_colour fill = {1, 2, 3, 4};
	const Image image(new_bitmap(2, 3, false, &fill), delete_bitmap);
	for (const auto& [x, y] : {std::pair(-1, 0), std::pair(0, -1), std::pair(2, 0), std::pair(0, 3)})
	{
		image->lastError = kBitmapOk;
		EXPECT_FALSE(bitmap_set_pixel_rgba(image.get(), x, y, 9, 9, 9, 9));
		EXPECT_EQ(image->lastError, kBitmapOutOfRange);
	}
	EXPECT_TRUE(bitmap_set_pixel_rgba(image.get(), 1, 2, 9, 8, 7, 6));
	const std::vector<std::uint8_t> pixels = toRgba(*image);
	EXPECT_EQ(std::vector<std::uint8_t>(pixels.end() - 8, pixels.end()), (std::vector<std::uint8_t>{3, 2, 1, 4, 9, 8, 7, 255}));
}
