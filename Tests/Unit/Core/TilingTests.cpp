#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

#include "ZORTUtilities.h"

namespace
{
TEST(Twiddle, InterleavesWithYInTheLowestBit)
{
	const struct
	{
		unsigned int x, y, index;
	} cases[] = {{0, 1, 1}, {1, 0, 2}, {3, 0, 10}, {2, 3, 13}, {0xFFFF, 0, 0xAAAAAAAAu}, {0x10000, 0x20005, 0x11}};
	for (const auto& c : cases)
	{
		unsigned int index = 99;
		ZORTTextureTwiddle(index, c.x, c.y);
		EXPECT_EQ(index, c.index) << c.x << ", " << c.y;
	}
	std::mt19937 random(1);
	for (unsigned int i = 0; i < 1000; ++i)
	{
		const unsigned int index = random();
		unsigned int x = 0;
		unsigned int y = 0;
		unsigned int again = 0;
		ZORTTextureDeTwiddle(x, y, index);
		ZORTTextureTwiddle(again, x, y);
		EXPECT_EQ(again, index);
	}
}

std::string tiled(unsigned int width, unsigned int height, const std::string& source, unsigned int sourceWidth, unsigned int sourceHeight,
                  unsigned int elementSize, bool isTwiddled)
{
	std::string result(static_cast<std::size_t>(width) * height * elementSize, '?');
	ZORTTextureLoadTiled(reinterpret_cast<unsigned char*>(result.data()), width, height,
	                     reinterpret_cast<const unsigned char*>(source.data()), sourceWidth, sourceHeight, elementSize, isTwiddled);
	return result;
}

TEST(LoadTiled, RepeatsTheSource)
{
	EXPECT_EQ(tiled(5, 3, "abcdef", 2, 3, 1, false), "ababa"
	                                                 "cdcdc"
	                                                 "efefe");
	EXPECT_EQ(tiled(3, 2, "AaBb", 2, 1, 2, false), "AaBbAaAaBbAa");
	EXPECT_EQ(tiled(4, 4, "abcd", 2, 2, 1, true), "abcdabcdabcdabcd");
	// A source of 4 x 2 in Morton order has its elements at indices 0 to 3 and 8 to 11; the rows repeat at bit 2.
	EXPECT_EQ(tiled(4, 4, "abcd----efgh", 4, 2, 1, true), "abcdabcdefghefgh");
	EXPECT_EQ(tiled(2, 2, "", 0, 2, 1, false), "????");
	EXPECT_EQ(tiled(0, 7, "a", 1, 1, 1, false), "");
}

TEST(TextureCreate, MakesRoomForTheLevels)
{
	const struct
	{
		unsigned int width, height, minWidth, minHeight, bitsPerPixel;
		bool isMipMapped;
		unsigned int size;
	} cases[] = {{3, 5, 4, 4, 4, false, 10}, {4, 2, 1, 1, 8, true, 11}, {1, 1, 8, 8, 4, true, 32}, {0, 0, 0, 0, 8, true, 0}};
	for (const auto& c : cases)
	{
		const std::unique_ptr<ZORTextureHeaderV3, decltype(&std::free)> texture(
		    ZORTTextureCreate(c.width, c.height, c.minWidth, c.minHeight, c.bitsPerPixel, c.isMipMapped), &std::free);
		ASSERT_NE(texture, nullptr);
		EXPECT_EQ(texture->version, 0x03524F5Au);
		EXPECT_EQ(texture->pixelFormat, 51u);
		EXPECT_EQ(texture->height, c.height);
		EXPECT_EQ(texture->width, c.width);
		EXPECT_EQ(texture->numMipMaps, 1u);
		const auto* const pixels = reinterpret_cast<const unsigned char*>(texture.get() + 1);
		EXPECT_TRUE(std::all_of(pixels, pixels + c.size, [](unsigned char byte) { return byte == 0; }));
	}
	EXPECT_EQ(ZORTTextureCreate(65535, 65535, 1, 1, 0xFFFFFFFFu, true), nullptr) << "more than 64 bits can count";
}
} // namespace
