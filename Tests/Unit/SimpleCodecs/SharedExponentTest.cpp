#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "SimpleCodecs.h"

using namespace zortexture;

namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

unsigned int word(unsigned int r, unsigned int g, unsigned int b, unsigned int exponent)
{
	return r + (g << 9) + (b << 18) + (exponent << 27);
}

TEST(SharedExponent, KnownWords)
{
	struct
	{
		float rgb[3];
		unsigned int expected;
	} const cases[] = {
	    {{0, 0, 0}, 0},
	    {{-1, -0.0f, kNaN}, 0},
	    {{1, 0, 0}, word(256, 0, 0, 16)},
	    {{1, 0.5f, 0.25f}, word(256, 128, 64, 16)},
	    {{-3, 2, kNaN}, word(0, 256, 0, 17)},
	    {{65408, 0, 0}, word(511, 0, 0, 31)},
	    {{0, 65409, 0}, word(0, 511, 0, 31)},
	    {{0, 1e30f, kInfinity}, word(0, 511, 511, 31)},
	    // 511/256 + a little less than half a step stays; half a step and above moves to the next exponent, where the
	    // other channels are quantised anew: 3/256 is 1.5 of the doubled steps.
	    {{511.0f / 256 + 0.49f / 256, 3.0f / 256, 0}, word(511, 3, 0, 16)},
	    {{511.0f / 256 + 0.5f / 256, 3.0f / 256, 0}, word(256, 2, 0, 17)},
	    // The smallest exponent: steps of 2^-24, half of one rounds up.
	    {{0, 0, std::ldexp(1.0f, -24)}, word(0, 0, 1, 0)},
	    {{0, 0, std::ldexp(1.0f, -25)}, word(0, 0, 1, 0)},
	    {{0, std::nextafter(std::ldexp(1.0f, -25), 0.0f), 0}, 0},
	    {{std::numeric_limits<float>::denorm_min(), 0, 0}, 0},
	    {{std::ldexp(511.0f, -24), std::ldexp(511.5f, -24), 0}, word(256, 256, 0, 1)},
	};
	for (const auto& c : cases)
	{
		EXPECT_EQ(float3_to_rgb9e5(c.rgb), c.expected) << c.rgb[0] << " " << c.rgb[1] << " " << c.rgb[2];
	}
}

TEST(SharedExponent, EveryMantissaAtEveryExponentDecodes)
{
	// The other form of the value: m / 2^9 * 2^(E - 15).
	for (unsigned int exponent = 0; exponent < 32; ++exponent)
	{
		for (unsigned int m = 0; m < 512; ++m)
		{
			float rgb[3];
			rgb9e5_to_float3(word(m, 511 - m, m ^ 1u, exponent), rgb);
			const float scale = std::exp2f(static_cast<float>(exponent) - 15.0f);
			ASSERT_EQ(rgb[0], static_cast<float>(m) / 512.0f * scale);
			ASSERT_EQ(rgb[1], static_cast<float>(511 - m) / 512.0f * scale);
			ASSERT_EQ(rgb[2], static_cast<float>(m ^ 1u) / 512.0f * scale);
		}
	}
}

TEST(SharedExponent, NormalisedWordsEncodeToThemselves)
{
	// A word is normalised when its largest mantissa uses the top bit, or its exponent is the smallest.
	std::mt19937 random(9);
	for (int i = 0; i < 20000; ++i)
	{
		const unsigned int exponent = random() % 32;
		const unsigned int bits = word(exponent == 0 ? random() % 512 : 256 + random() % 256, random() % 512, random() % 512, exponent);
		float rgb[3];
		rgb9e5_to_float3(bits, rgb);
		ASSERT_EQ(float3_to_rgb9e5(rgb), bits);
	}
}

TEST(SharedExponent, ImagesAreRowsOfWords)
{
	const float pixels[3 * 3] = {1, 0, 0, 0, 2, 0, 0, 0, 65408};
	unsigned int words[4] = {0, 0, 0, 77};
	EXPECT_EQ(RGB9E5Compress(pixels, words, 1, 3), 12u);
	EXPECT_EQ(words[0], word(256, 0, 0, 16));
	EXPECT_EQ(words[1], word(0, 256, 0, 17));
	EXPECT_EQ(words[2], word(0, 0, 511, 31));
	EXPECT_EQ(words[3], 77u);
	float decoded[3 * 3 + 1];
	decoded[9] = 77;
	EXPECT_EQ(RGB9E5Decompress(words, decoded, 3, 1), 36u);
	EXPECT_EQ(std::memcmp(decoded, pixels, sizeof(pixels)), 0);
	EXPECT_EQ(decoded[9], 77.0f);

	EXPECT_EQ(RGB9E5Compress(nullptr, words, 5, 3), 60u);
	EXPECT_EQ(RGB9E5Compress(pixels, nullptr, 5, 3), 60u);
	EXPECT_EQ(RGB9E5Decompress(nullptr, decoded, 5, 3), 180u);
	EXPECT_EQ(RGB9E5Decompress(words, nullptr, 5, 3), 180u);
	EXPECT_EQ(RGB9E5Compress(pixels, words, 0, 3), 0u);
	EXPECT_EQ(RGB9E5Decompress(words, decoded, 3, 0), 0u);
	EXPECT_EQ(words[0], word(256, 0, 0, 16));
}

} // namespace
