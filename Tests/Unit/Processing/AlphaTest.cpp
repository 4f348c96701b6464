#include <cfloat>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "Channels.h"
#include "ProcessingTestSupport.h"

using namespace zortexture;
using Byte4 = Pixel<unsigned char>;

namespace
{
template<typename T>
void expectPreMultiplied(const std::vector<Pixel<T>>& pixels, const std::vector<Pixel<T>>& expected)
{
	CZORTexture texture = standardTexture<T>(static_cast<unsigned int>(pixels.size()), 1, pixels);
	EXPECT_TRUE(PreMultiplyAlpha(texture));
	EXPECT_TRUE(texture.isPreMultiplied());
	EXPECT_EQ(pixelsOfTexture<T>(texture), expected);

	const UnchangedGuard guard(texture, texture.getDataSize());
	EXPECT_FALSE(PreMultiplyAlpha(texture));
	guard.expectUnchanged();
}

TEST(PreMultiplyAlpha, KeepsEightBitsOfEveryProduct)
{
	expectPreMultiplied<unsigned char>({{255, 255, 255, 0}, {200, 100, 50, 255}, {255, 100, 51, 128}, {255, 10, 0, 1}},
	                                   {{0, 0, 0, 0}, {200, 100, 50, 255}, {128, 50, 25, 128}, {1, 0, 0, 1}});
	expectPreMultiplied<unsigned short>({{65535, 256, 300, 65535}, {65535, 1000, 3, 257}, {9, 9, 9, 0}},
	                                    {{255, 0, 44, 65535}, {1, 3, 0, 257}, {0, 0, 0, 0}});
	// 2^32 - 1 is 2^32 as a float: its low bits are 0.
	expectPreMultiplied<unsigned int>({{0xFFFFFFFFu, 257, 300, 0xFFFFFFFFu}, {300, 1022, 0x10000000u, 0x80000000u}},
	                                  {{0, 1, 44, 0xFFFFFFFFu}, {150, 255, 0, 0x80000000u}});
	// A float alpha is measured against the largest float, and the products become whole numbers.
	expectPreMultiplied<float>({{300.75f, -1.0f, 0.5f, FLT_MAX}, {1, 1, 1, 1}, {7, 5, std::numeric_limits<float>::infinity(), FLT_MAX / 2}},
	                           {{44, 255, 0, FLT_MAX}, {0, 0, 0, 1}, {3, 2, 255, FLT_MAX / 2}});
}

/// One channel of a row after bleeding; the pixels carry their value in all three colours.
template<typename T>
struct Grey
{
	T value;
	T alpha;
};

template<typename T>
void expectBled(const std::vector<Grey<T>>& row, const std::vector<T>& expected)
{
	std::vector<Pixel<T>> pixels;
	for (const Grey<T>& grey : row)
	{
		pixels.push_back({grey.value, grey.value, grey.value, grey.alpha});
	}
	CZORTexture texture = standardTexture<T>(static_cast<unsigned int>(pixels.size()), 1, pixels);
	EXPECT_TRUE(Bleed(texture));
	const std::vector<Pixel<T>> result = pixelsOfTexture<T>(texture);
	for (std::size_t i = 0; i < row.size(); ++i)
	{
		EXPECT_EQ(result[i], (Pixel<T>{expected[i], expected[i], expected[i], row[i].alpha})) << i;
	}
}

TEST(Bleed, ThresholdsAreTheSameNumbersInAllLayouts)
{
	expectBled<unsigned char>({{100, 8}, {9, 7}, {201, 255}, {9, 0}}, {100, 150, 201, 150});
	expectBled<unsigned short>({{1000, 8}, {9, 7}, {2001, 65535}, {9, 0}}, {1000, 1500, 2001, 1500});
	expectBled<unsigned int>({{1000, 8}, {9, 7}, {2001, 0xFFFFFFFFu}, {9, 0}}, {1000, 1500, 2001, 1500});
	// Between 7 and 8 a pixel is neither read nor filled; nor is one without a number for alpha. Means are truncated.
	expectBled<float>({{1.5f, 8}, {9, 7}, {2, 100}, {77, 7.5f}, {9, -1}}, {1.5f, 1, 2, 77, 1});
	expectBled<float>({{-1.5f, 8}, {9, 1}, {-2, 100}}, {-1.5f, -1, -2});
	Pixel<float> strange{3, 3, 3, std::numeric_limits<float>::quiet_NaN()};
	EXPECT_TRUE(Bleed(&strange, 1, 1, 1));
	EXPECT_EQ(strange.r, 3.0f);
	// A mean of 2^32 wraps, as in every other store to 32 bits.
	expectBled<unsigned int>({{0xFFFFFFFFu, 8}, {9, 7}}, {0xFFFFFFFFu, 0});
}

TEST(Bleed, WholeImagesOfOneKind)
{
	expectBled<unsigned char>({{1, 8}, {2, 9}, {3, 255}}, {1, 2, 3});
	expectBled<unsigned char>({{1, 7}, {2, 0}, {3, 1}}, {0, 0, 0});
}

/// The box reaches 8 pixels to either side on each axis, is cut at the image, and filled pixels do not feed others.
TEST(Bleed, ReachesEightPixelsOnEveryAxis)
{
	constexpr unsigned int kSize = 20;
	const unsigned int shapes[][3] = {{kSize, 1, 1}, {1, kSize, 1}, {1, 1, kSize}};
	for (const auto& shape : shapes)
	{
		for (unsigned int opaque = 0; opaque < kSize; ++opaque)
		{
			std::vector<Byte4> image(kSize, {50, 60, 70, 3});
			image[opaque] = {100, 0, 255, 8};
			ASSERT_TRUE(Bleed(image.data(), shape[0], shape[1], shape[2]));
			for (unsigned int i = 0; i < kSize; ++i)
			{
				const unsigned int distance = i > opaque ? i - opaque : opaque - i;
				const Byte4 expected = distance == 0 ? Byte4{100, 0, 255, 8} : distance <= 8 ? Byte4{100, 0, 255, 3} : Byte4{0, 0, 0, 3};
				ASSERT_EQ(image[i], expected) << opaque << " at " << i;
			}
		}
	}

	// A box, not a ball: the far corner of 9 x 9 x 9 is seen, and weighs as much as the near one.
	std::vector<Byte4> cube(9 * 9 * 9);
	cube.back() = {101, 10, 0, 8};
	cube[1] = {200, 20, 1, 255};
	ASSERT_TRUE(Bleed(cube.data(), 9, 9, 9));
	EXPECT_EQ(cube[0], (Byte4{150, 15, 0, 0}));
}
} // namespace
