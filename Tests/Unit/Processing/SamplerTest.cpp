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

/// The last bit of a sum depends on its order: taps with x fastest, then y, then z; splines along x, then y, then z.
TEST(Samplers, RoundInTheOrderOfTheAxes)
{
	const float values[] = {0.1f, 7.3f, 1e-3f, 123.456f, 0.7f, 3.3e4f, 9.1f, 0.05f};
	std::vector<Float4> cube;
	for (const float value : values)
	{
		cube.push_back({value, value, value, value});
	}
	Float4 sample{};
	SampleLinear(cube.data(), &sample, 2, 2, 2, 0.3f, 0.7f, 0.6f);
	EXPECT_EQ(sample.g, 0x1.c0da5ap+10f); // z fastest ends in 5c
	SampleCubic(cube.data(), &sample, 2, 2, 2, 0.3f, 0.7f, 0.6f);
	EXPECT_EQ(sample.b, 0x1.59bea4p+10f); // y first ends in a0
	const float points[4] = {0.1f, 7.3f, -1e-3f, 123.456f};
	EXPECT_EQ(evaluateSplines(points, 0.37f), 0x1.93c5p-6f);

	// Positions of samples that no resize by halves meets.
	EXPECT_EQ(calculateDownscalePosition(1, 3, 0.75, 4.0 / 3.0), 1.5f);
	EXPECT_EQ(calculateDownscalePosition(0, 1, 0.25, 4.0), 0.0f);
	EXPECT_EQ(calculateDownscalePosition(0, 0, 0.5, 2.0), 0.0f);

	std::vector<Float4> square;
	for (const float value : {0.1f, 7.3f, 1e-3f, 123.456f, 0.7f, 3.3e4f, 9.1f, 0.05f, 2.2f})
	{
		square.push_back({value, value, value, value});
	}
	std::vector<Float4> result(9);
	const float kernel[9] = {0.1f, 0.7f, 0.3f, 1.9f, 2.3f, 0.6f, 0.05f, 1.1f, 0.9f};
	ASSERT_TRUE(ConvolutionKernel(square.data(), result.data(), 3, 3, 1, kernel, 7.7f, 3, 3, 1));
	EXPECT_EQ(result[4].r, 0x1.4562dcp+11f);
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
