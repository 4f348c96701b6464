#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <vector>

#include "ProcessingTestSupport.h"
#include "Resampling.h"

using namespace zortexture;
using Byte4 = Pixel<unsigned char>;
using Float4 = Pixel<float>;

namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

Byte4 grey(int value)
{
	const auto v = static_cast<unsigned char>(value);
	return {v, v, v, v};
}

TEST(DownscalePosition, KnownPositions)
{
	struct
	{
		unsigned int index, count;
		double inverse, ratio;
		float expected;
	} const cases[] = {
	    {0, 1, 0.25, 4.0, 0.0f},
	    {0, 0, 0.5, 2.0, 0.0f},
	    // 2 to 1: between the pair.
	    {0, 4, 0.5, 2.0, 0.5f},
	    {1, 4, 0.5, 2.0, 2.5f},
	    {3, 4, 0.5, 2.0, 6.5f},
	    // An axis that keeps its size: from 1 to count - 2.
	    {0, 5, 0.0, 1.0, 1.0f},
	    {2, 5, 0.0, 1.0, 2.0f},
	    {4, 5, 0.0, 1.0, 3.0f},
	    // 4 to 2 in one step of ratio 4/3 and three samples: 0.25, then (0.5 + 1) * 4/3 + 0.5 - 1, then 4 + 0.75 - 2.
	    {0, 3, 0.75, 4.0 / 3.0, 0.25f},
	    {1, 3, 0.75, 4.0 / 3.0, 1.5f},
	    {2, 3, 0.75, 4.0 / 3.0, 2.75f},
	};
	for (const auto& c : cases)
	{
		EXPECT_EQ(calculateDownscalePosition(c.index, c.count, c.inverse, c.ratio), c.expected) << c.index << " of " << c.count;
	}
}

TEST(Spline, PassesThroughItsPointsAndKeepsLines)
{
	const float points[4] = {3, -7, 11, 100};
	EXPECT_EQ(evaluateSplines(points, 0.0f), -7.0f);
	EXPECT_EQ(evaluateSplines(points, 1.0f), 11.0f);
	// (9 * (-7 + 11) - 3 - 100) / 16
	EXPECT_EQ(evaluateSplines(points, 0.5f), -4.1875f);
	// Weights at 1/4: -9, 111, 29, -3 over 128.
	EXPECT_EQ(evaluateSplines(points, 0.25f), (-27.0f - 777.0f + 319.0f - 300.0f) / 128.0f);
	const float line[4] = {1, 2, 3, 4};
	EXPECT_EQ(evaluateSplines(line, 0.375f), 2.375f);
}

TEST(Samplers, WeighNeighboursOnEveryAxis)
{
	// 2 x 2 x 2, bit 0 of the index is x, bit 1 y, bit 2 z.
	std::vector<Byte4> cube = {{0, 0, 0, 8},   {128, 0, 0, 8},   {0, 128, 0, 8},   {128, 128, 0, 8},
	                           {0, 0, 128, 8}, {128, 0, 128, 8}, {0, 128, 128, 8}, {128, 128, 128, 8}};
	Byte4 sample{};
	SampleLinear(cube.data(), &sample, 2, 2, 2, 0.25f, 0.5f, 0.125f);
	EXPECT_EQ(sample, (Byte4{32, 64, 16, 8}));
	// At t = 1/2 with clamped taps the spline is the mean; at 1/4 it is (111 - 9) * 0 + (29 - 3) * 128 over 128.
	SampleCubic(cube.data(), &sample, 2, 2, 2, 0.25f, 0.5f, 0.0f);
	EXPECT_EQ(sample, (Byte4{26, 64, 0, 8}));
	SampleCubic(cube.data(), &sample, 2, 2, 2, 0.0f, 0.0f, 0.25f);
	EXPECT_EQ(sample, (Byte4{0, 0, 26, 8}));
	// In an image of depth 1 a cubic sample does not look at z.
	SampleCubic(cube.data(), &sample, 2, 2, 1, 0.5f, 0.0f, 0.25f);
	EXPECT_EQ(sample, (Byte4{64, 0, 0, 8}));
}

TEST(Samplers, FractionsAreThoseOfThePositionBeforeItIsClamped)
{
	std::vector<Byte4> row = {grey(100), grey(200), grey(50)};
	struct
	{
		float x;
		int linear, cubic;
	} const cases[] = {
	    {0.0f, 100, 100}, {1.75f, 87, 82},  // cubic at 3/4: -3, 29, 111, -9 over 128 of 100 200 50 50
	    {2.5f, 50, 40},                     // taps 200 50 50 50 at 1/2
	    {7.25f, 50, 50},  {-0.5f, 100, 81}, // taps 100 100 100 200 at -1/2, where the last weighs -3/16
	};
	for (const auto& c : cases)
	{
		Byte4 sample{};
		SampleLinear(row.data(), &sample, 3, 1, 1, c.x, 0.0f, 0.0f);
		EXPECT_EQ(sample, grey(c.linear)) << c.x;
		SampleCubic(row.data(), &sample, 3, 1, 1, c.x, 0.0f, 0.0f);
		EXPECT_EQ(sample, grey(c.cubic)) << c.x;
	}
}

TEST(Samplers, AnyPositionReadsInsideTheImage)
{
	const float positions[] = {0.0f, -0.5f, -1.0f, -1e30f, -kInfinity, kNaN, 0.999f, 1.0f, 2.0f, 1e9f, 5e9f, 1e30f, kInfinity};
	// Images of their exact size, for the address sanitizer.
	const unsigned int sizes[][3] = {{1, 1, 1}, {2, 1, 1}, {1, 3, 1}, {2, 2, 2}, {1, 1, 3}};
	for (const auto& size : sizes)
	{
		std::vector<Float4> image(std::size_t{size[0]} * size[1] * size[2], {1, 1, 1, 1});
		for (const float x : positions)
		{
			for (const float y : positions)
			{
				for (const float z : positions)
				{
					Float4 linear{-1, -1, -1, -1};
					Float4 cubic{-1, -1, -1, -1};
					SampleLinear(image.data(), &linear, size[0], size[1], size[2], x, y, z);
					SampleCubic(image.data(), &cubic, size[0], size[1], size[2], x, y, z);
					// A constant stays, except where a fraction is infinite or no number: these give 0.
					ASSERT_TRUE(linear.r == 1.0f || linear.r == 0.0f) << x << " " << y << " " << z;
					ASSERT_TRUE(cubic.a == 1.0f || cubic.a == 0.0f) << x << " " << y << " " << z;
				}
			}
		}
	}
	// Nothing to read: nothing is written.
	Float4 sample{5, 5, 5, 5};
	SampleLinear(&sample, &sample, 0, 1, 1, 0.0f, 0.0f, 0.0f);
	SampleCubic(&sample, &sample, 1, 0, 1, 0.0f, 0.0f, 0.0f);
	EXPECT_EQ(sample, (Float4{5, 5, 5, 5}));
}

TEST(ConvolutionKernel, CoordinatesBeforeTheFirstPixelReadTheLast)
{
	std::vector<Byte4> row = {grey(1), grey(10), grey(100)};
	std::vector<Byte4> result(3);
	const float left[3] = {1, 0, 0};
	const float right[3] = {0, 0, 1};
	ASSERT_TRUE(ConvolutionKernel(row.data(), result.data(), 3, 1, 1, left, 1.0f, 3, 1, 1));
	EXPECT_EQ(result, (std::vector<Byte4>{grey(100), grey(1), grey(10)}));
	ASSERT_TRUE(ConvolutionKernel(row.data(), result.data(), 3, 1, 1, right, 1.0f, 3, 1, 1));
	EXPECT_EQ(result, (std::vector<Byte4>{grey(10), grey(100), grey(100)}));
	ASSERT_TRUE(ConvolutionKernel(row.data(), result.data(), 1, 3, 1, left, 1.0f, 1, 3, 1));
	EXPECT_EQ(result, (std::vector<Byte4>{grey(100), grey(1), grey(10)}));
	ASSERT_TRUE(ConvolutionKernel(row.data(), result.data(), 1, 1, 3, left, 1.0f, 1, 1, 3));
	EXPECT_EQ(result, (std::vector<Byte4>{grey(100), grey(1), grey(10)}));
	// A kernel that reaches far past a small image.
	const float reach[7] = {1, 0, 0, 0, 0, 0, 2};
	ASSERT_TRUE(ConvolutionKernel(row.data(), result.data(), 3, 1, 1, reach, 3.0f, 7, 1, 1));
	EXPECT_EQ(result, (std::vector<Byte4>(3, grey(100))));
}

TEST(ConvolutionKernel, TruncatesAndWrapsWithoutLimits)
{
	struct
	{
		float kernel, weight;
		int expected;
	} const cases[] = {{1, 3, 50}, {2, 1, 44}, {-1, 1, 106}, {0.5f, 100, 0}, {1, 0, 255}, {0, 0, 0}};
	for (const auto& c : cases)
	{
		Byte4 pixel = grey(150);
		Byte4 result{};
		ASSERT_TRUE(ConvolutionKernel(&pixel, &result, 1, 1, 1, &c.kernel, c.weight, 1, 1, 1));
		EXPECT_EQ(result, grey(c.expected)) << c.kernel << " " << c.weight;
	}
	Float4 pixel{-1.5f, 2, 0, 8};
	const float kernel = 3;
	ASSERT_TRUE(ConvolutionKernel(&pixel, &pixel, 1, 1, 1, &kernel, 2.0f, 1, 1, 1));
	EXPECT_EQ(pixel, (Float4{-2.25f, 3, 0, 12}));
}

TEST(ConvolutionKernel, Refusals)
{
	Byte4 pixel = grey(1);
	Byte4 result = grey(9);
	const float kernel[8] = {1, 1, 1, 1, 1, 1, 1, 1};
	const unsigned int sizes[][3] = {{2, 1, 1}, {1, 2, 1}, {1, 1, 2}, {0, 1, 1}, {2, 2, 2}};
	for (const auto& size : sizes)
	{
		EXPECT_FALSE(ConvolutionKernel(&pixel, &result, 1, 1, 1, kernel, 1.0f, size[0], size[1], size[2]));
	}
	Byte4* const none = nullptr;
	EXPECT_FALSE(ConvolutionKernel(none, &result, 1, 1, 1, kernel, 1.0f, 1, 1, 1));
	EXPECT_FALSE(ConvolutionKernel(&pixel, none, 1, 1, 1, kernel, 1.0f, 1, 1, 1));
	EXPECT_EQ(result, grey(9));
}
} // namespace
