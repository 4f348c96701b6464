#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ProcessingTestSupport.h"
#include "Resampling.h"

using namespace zortexture;

namespace
{
using Values = std::vector<int>;

struct Size
{
	unsigned int width, height, depth;
};

struct ResizeCase
{
	const char* name;
	Values source;
	Size from, to;
	Values expected[3]; ///< nearest, linear, cubic
};

const Values kRow = {4, 10, 20, 30, 100, 200, 250, 255};
const Values kSquare = {0, 16, 32, 255, 64, 80, 96, 128, 200, 40, 60, 20, 8, 3, 250, 99};
const Values kCube = {0, 80, 160, 240, 255, 20, 40, 60};
const Values kBox = {0, 80, 160, 240, 255, 20, 40, 60, 7, 77, 177, 222, 200, 100, 50, 25};

// clang-format off
const ResizeCase kCases[] = {
    // Linear samples at 0.5, 2.5, 4.5, 6.5. Cubic: smoothed to 68 11 20 45 107 187 238 253 (the first pixel has the last
    // one as its left neighbour), then -1 9 9 -1 over 16: the first is (9 * (68 + 11) - 68 - 20) / 16.
    {"halve a row", kRow, {8, 1, 1}, {4, 1, 1}, {{4, 20, 100, 250}, {7, 25, 150, 252}, {38, 29, 147, 248}}},
    {"quarter a row in two steps", kRow, {8, 1, 1}, {2, 1, 1}, {{4, 100}, {16, 201}, {68, 187}}},
    {"an odd ratio in two steps", kRow, {8, 1, 1}, {3, 1, 1}, {{4, 20, 100}, {11, 87, 226}, {80, 94, 207}}},
    // The last step is to one sample, which is position 0 of the two before it, not their mean.
    {"down to one", {9, 50, 255, 1, 2}, {5, 1, 1}, {1, 1, 1}, {{9}, {33}, {46}}},
    // Positions 0, 0.5, 1, ...; the last two clamp to the last pixel. Cubic at 3.5 is (9 * (40 + 40) - 255 - 40) / 16.
    {"double a row", {0, 80, 255, 40}, {4, 1, 1}, {8, 1, 1},
     {{0, 0, 80, 80, 255, 255, 40, 40}, {0, 40, 80, 167, 255, 147, 40, 40}, {0, 29, 80, 185, 255, 158, 40, 26}}},
    {"halve a square", kSquare, {4, 4, 1}, {2, 2, 1}, {{0, 32, 200, 60}, {40, 127, 62, 107}, {61, 120, 69, 100}}},
    {"double a square", {0, 255, 100, 50}, {2, 2, 1}, {4, 4, 1},
     {{0, 0, 255, 255, 0, 0, 255, 255, 100, 100, 50, 50, 100, 100, 50, 50},
      {0, 127, 255, 255, 50, 101, 152, 152, 100, 75, 50, 50, 100, 75, 50, 50},
      {0, 127, 255, 255, 50, 101, 152, 158, 100, 75, 50, 46, 106, 71, 37, 32}}},
    // The axis that keeps its size is sampled at 1, 4/3, 5/3, 2.
    {"halve the height alone", {0, 80, 160, 240, 0, 80, 160, 240}, {4, 2, 1}, {4, 1, 1},
     {{0, 80, 160, 240}, {80, 106, 133, 160}, {80, 101, 131, 160}}},
    {"halve the width alone", kSquare, {4, 4, 1}, {2, 4, 1},
     {{0, 32, 64, 96, 200, 60, 8, 250}, {72, 112, 87, 88, 104, 64, 120, 40}, {74, 100, 79, 91, 82, 83, 81, 82}}},
    {"three of four on both axes", kSquare, {4, 4, 1}, {3, 3, 1},
     {{0, 16, 32, 64, 80, 96, 200, 40, 60}, {20, 40, 179, 114, 69, 75, 45, 107, 110}, {62, 69, 144, 86, 74, 90, 59, 95, 106}}},
    // Growing one axis makes the other take every second pixel as it stands.
    {"narrower and higher", kCube, {4, 2, 1}, {2, 4, 1},
     {{0, 160, 0, 160, 255, 40, 255, 40}, {0, 160, 127, 100, 255, 40, 255, 40}, {0, 160, 127, 100, 255, 40, 255, 32}}},
    {"a row to a column in three steps", kRow, {8, 1, 1}, {1, 8, 1}, {Values(8, 4), Values(8, 4), Values(8, 4)}},
    // The bright last column reaches the first one, and not the other way round.
    {"bright last column", {0, 0, 0, 240, 0, 0, 0, 240}, {4, 2, 1}, {2, 2, 1}, {{0, 0, 0, 0}, {0, 120, 0, 120}, {26, 123, 26, 123}}},
    {"a cube to one", kCube, {2, 2, 2}, {1, 1, 1}, {{0}, {0}, {106}}},
    {"double the depth", {0, 200}, {1, 1, 2}, {1, 1, 4}, {{0, 0, 200, 200}, {0, 100, 200, 200}, {0, 100, 200, 212}}},
    {"widen a cube", kCube, {2, 2, 2}, {3, 2, 2},
     {{0, 0, 80, 160, 160, 240, 255, 255, 20, 40, 40, 60},
      {0, 53, 80, 160, 213, 240, 255, 98, 20, 40, 53, 60},
      {0, 56, 85, 160, 216, 245, 255, 89, 2, 40, 54, 61}}},
    {"halve the width of a box", kBox, {4, 2, 2}, {2, 2, 2},
     {{0, 160, 255, 40, 7, 177, 200, 50}, {150, 37, 42, 199, 137, 50, 40, 200}, {111, 78, 99, 116, 110, 79, 98, 117}}},
    {"narrower and deeper", kCube, {2, 2, 2}, {1, 2, 4},
     {{0, 160, 0, 160, 255, 40, 255, 40}, {0, 160, 127, 100, 255, 40, 255, 40}, {0, 160, 127, 100, 255, 40, 255, 32}}},
};
// clang-format on

class ResizeExact : public testing::TestWithParam<ResizeCase>
{
};

/// The values stand in one channel after the other, with zeroes in the other three.
TEST_P(ResizeExact, GivesTheExpectedBytes)
{
	const ResizeCase& c = GetParam();
	for (unsigned int mode = eResizeNearest; mode <= eResizeCubic; ++mode)
	{
		const Values& expected = c.expected[mode];
		for (std::size_t channel = 0; channel < 4; ++channel)
		{
			std::vector<unsigned char> bytes(c.source.size() * 4);
			for (std::size_t i = 0; i < c.source.size(); ++i)
			{
				bytes[i * 4 + channel] = static_cast<unsigned char>(c.source[i]);
			}
			CZORTexture texture(standardHeader<unsigned char>(c.from.width, c.from.height, c.from.depth), bytes.data());
			ASSERT_TRUE(Resize(texture, c.to.width, c.to.height, c.to.depth, static_cast<EResizeMode>(mode)));
			ASSERT_EQ(texture.getDataSize(), expected.size() * 4);
			const auto* result = static_cast<const unsigned char*>(texture.getDataPtr(0, 0, 0));
			Values values;
			for (std::size_t i = 0; i < expected.size() * 4; ++i)
			{
				if (i % 4 == channel)
				{
					values.push_back(result[i]);
				}
				else
				{
					ASSERT_EQ(result[i], 0);
				}
			}
			EXPECT_EQ(values, expected) << "mode " << mode << ", channel " << channel;
		}
	}
}

INSTANTIATE_TEST_SUITE_P(Cases, ResizeExact, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<ResizeCase>& test)
                         {
	                         std::string name = test.param.name;
	                         for (char& letter : name)
	                         {
		                         letter = letter == ' ' ? '_' : letter;
	                         }
	                         return name;
                         });

template<typename T>
class ResizeElements : public testing::Test
{
};
using ElementTypes = testing::Types<unsigned char, unsigned short, unsigned int, float>;
TYPED_TEST_SUITE(ResizeElements, ElementTypes);

/// An edge from 0 to the largest value, doubled. The spline gives -1/16 before it and 17/16 behind it.
TYPED_TEST(ResizeElements, OvershootIsLimitedAndTruncated)
{
	using T = TypeParam;
	const T top = std::is_same_v<T, float> ? static_cast<T>(1) : static_cast<T>(~0ull);
	const std::vector<Pixel<T>> edge = {{}, {}, {top, 0, top, top}, {top, 0, top, top}};
	std::vector<T> expected;
	if constexpr (std::is_same_v<T, float>)
	{
		expected = {0, 0, 0, 0.5f, 1, 1.0625f, 1, 1};
	}
	else if constexpr (sizeof(T) == 4)
	{
		// The largest value is 2^32 as a float, and wraps when it is stored.
		expected = {0, 0, 0, 0x80000000u, 0, 0, 0, 0};
	}
	else
	{
		expected = {0, 0, 0, static_cast<T>(top / 2), top, top, top, top};
	}
	CZORTexture texture = standardTexture<T>(4, 1, edge);
	ASSERT_TRUE(Resize(texture, 8, 1, 1, eResizeCubic));
	const std::vector<Pixel<T>> result = pixelsOfTexture<T>(texture);
	ASSERT_EQ(result.size(), 8u);
	for (std::size_t i = 0; i < 8; ++i)
	{
		EXPECT_EQ(result[i], (Pixel<T>{expected[i], 0, expected[i], expected[i]})) << i;
	}
}

TYPED_TEST(ResizeElements, ConstantsStay)
{
	using T = TypeParam;
	const Size sizes[] = {{1, 1, 1}, {2, 3, 1}, {9, 5, 1}, {16, 4, 1}, {3, 4, 5}, {1, 1, 6}};
	for (const T value : {static_cast<T>(0), static_cast<T>(1), static_cast<T>(100), static_cast<T>(255), static_cast<T>(65535)})
	{
		for (const Size& from : sizes)
		{
			for (const Size& to : sizes)
			{
				for (const EResizeMode mode : {eResizeNearest, eResizeLinear, eResizeCubic})
				{
					std::vector<Pixel<T>> pixels(std::size_t{from.width} * from.height * from.depth, {value, value, value, value});
					CZORTexture texture = standardTexture<T>(from.width, from.height, pixels, from.depth);
					ASSERT_TRUE(Resize(texture, to.width, to.height, to.depth, mode));
					for (const Pixel<T>& pixel : pixelsOfTexture<T>(texture))
					{
						if constexpr (std::is_same_v<T, float>)
						{
							ASSERT_NEAR(pixel.a, value, value * 1e-6f) << "mode " << mode;
						}
						else
						{
							// Linear weights can add up to a little less than 1.
							ASSERT_LE(value - pixel.a, mode == eResizeLinear ? 1u : 0u) << value << " mode " << mode;
						}
					}
				}
			}
		}
	}
}
} // namespace
