#include <array>
#include <cstring>
#include <gtest/gtest.h>

#include "Codecs/Tessel/TesselSectionCompressor.h"
#include "TesselCodec.h"
#include "TesselOracle.h"

using namespace zortexture;

namespace
{
constexpr std::uint32_t kOpaque = 1U << 31;
constexpr std::uint32_t kHard = 1U << 15;
constexpr std::uint32_t kPunch = 1U;

using Block = std::array<TesselPixel, 16>;

Block filled(TesselPixel pixel)
{
	Block block;
	block.fill(pixel);
	return block;
}

/// Encodes blocks one beside the other.
std::vector<OracleBlock> encode(const std::vector<Block>& sections)
{
	std::vector<TesselPixel> image(16 * sections.size());
	const unsigned width = static_cast<unsigned>(4 * sections.size());
	for (unsigned i = 0; i < image.size(); ++i)
	{
		const unsigned x = i % width;
		image[i] = sections[x / 4][4 * (i / width) + x % 4];
	}
	std::vector<OracleBlock> blocks(sections.size());
	EXPECT_EQ(Tessel2SectionCompress(image.data(), blocks.data(), width, 4), 1U);
	return blocks;
}

std::uint32_t grey(unsigned value)
{
	return value * 0x010101U | 0xFF000000U;
}

/// The colour fields of opaque greys A and B.
std::uint32_t opaqueGreys(unsigned a, unsigned b)
{
	return kOpaque | ((a >> 3) << 10) | ((a >> 3) << 5) | ((a >> 4) << 1) | ((b >> 3) << 26) | ((b >> 3) << 21) | ((b >> 3) << 16);
}

std::uint32_t repeated(unsigned index)
{
	return index * 0x55555555U;
}
} // namespace

TEST(TesselSection, OneColour)
{
	const TesselPixel colour = {0x80, 0x40, 0xF8, 255};
	const std::uint32_t fields = kOpaque | (16U << 10) | (8U << 5) | (15U << 1) | (16U << 26) | (8U << 21) | (31U << 16);
	Block holed = filled(colour);
	holed[7].a = 0; // no pixel that is looked at
	Block fromHole = filled(colour);
	fromHole[0].a = 0; // opaque and transparent of one colour count as one: the first stands for both
	const std::vector<OracleBlock> blocks = encode({filled(colour), holed, fromHole});
	EXPECT_EQ(blocks[0].modulation, 0U);
	EXPECT_EQ(blocks[0].colours, fields | kHard);
	EXPECT_EQ(blocks[1].modulation, repeated(1) ^ (3U << 14)); // index 2 for pixel 7
	EXPECT_EQ(blocks[1].colours, fields | kPunch);
	EXPECT_EQ(blocks[2].modulation, repeated(1) ^ 3U);
	// Translucent layout with alpha 0: 4, 4 and 3 bits in A, 4 each in B.
	EXPECT_EQ(blocks[2].colours, (8U << 8) | (4U << 4) | (7U << 1) | (8U << 24) | (4U << 20) | (15U << 16) | kPunch);
}

TEST(TesselSection, TwoColoursInTheOrderMet)
{
	Block block = filled({200, 200, 200, 255});
	block[5] = {16, 16, 16, 255};
	block[6] = {16, 16, 16, 255};
	block[2] = {90, 90, 90, 255}; // not looked at, and not B
	Block holed = block;
	holed[2].a = 0;
	Block translucent = block;
	translucent[6].a = 254; // differs from B in alpha alone
	Block third = block;
	third[9] = {17, 16, 16, 255};
	const std::vector<OracleBlock> blocks = encode({block, holed, translucent, third});
	const std::uint32_t b = (3U << 10) | (3U << 12);
	EXPECT_EQ(blocks[0].modulation, b);
	EXPECT_EQ(blocks[0].colours, opaqueGreys(200, 16) | kHard);
	EXPECT_EQ(blocks[1].modulation, b | (2U << 4));
	EXPECT_EQ(blocks[1].colours, opaqueGreys(200, 16) | kPunch);
	EXPECT_EQ(blocks[2].modulation, 3U << 10);
	EXPECT_EQ(blocks[3].colours & kOpaque, kOpaque);
	EXPECT_NE(blocks[3].colours, blocks[0].colours);

	TesselPixel palette[2];
	const struct
	{
		TesselPixel second;
		unsigned count;
	} alphas[] = {{{200, 200, 200, 0}, 1}, {{200, 200, 200, 128}, 2}, {{200, 200, 200, 255}, 1}};
	for (const auto& test : alphas)
	{
		Block pair = filled({200, 200, 200, 255});
		pair[1] = test.second;
		EXPECT_EQ(countColours(pair.data(), palette), test.count) << int(test.second.a);
	}
	EXPECT_EQ(countColours(third.data(), palette), 3U);
}

TEST(TesselSection, PrincipalAxisThroughItsWholeLength)
{
	const auto ends = [](const Block& block)
	{
		std::pair<unsigned, unsigned> colours;
		selectColoursOnPrincipalAxis(block.data(), colours.first, colours.second);
		return colours;
	};
	Block ramp;
	Block opposed;
	for (unsigned i = 0; i < 16; ++i)
	{
		const auto value = static_cast<unsigned char>(i * 16);
		ramp[i] = {value, 0, 0, 255};
		opposed[i] = {value, static_cast<unsigned char>(240 - value), 7, 255};
	}
	EXPECT_EQ(ends(ramp), std::pair(0xFF000000U, 0xFF0000F0U));
	// One channel up and one down is orthogonal to the first guess, all channels alike. Green is the lighter. Rounding of the axis
	// may cost the truncated end a step.
	const auto [a, b] = ends(opposed);
	EXPECT_GE(a & 255, 238U);
	EXPECT_LE((a >> 8) & 255, 1U);
	EXPECT_LE(b & 255, 1U);
	EXPECT_GE((b >> 8) & 255, 238U);
	EXPECT_EQ(ends(filled({9, 8, 7, 6})), std::pair(0x06070809U, 0x06070809U));

	// Grey of 16 steps from 0 to 240: below 3/16 (45) index 0, below 1/2 (120) index 1, below 0.8175 (196.2) index 2.
	Block greys;
	std::uint32_t expected = 0;
	for (unsigned i = 0; i < 16; ++i)
	{
		const unsigned value = i * 16;
		greys[i] = {static_cast<unsigned char>(value), static_cast<unsigned char>(value), static_cast<unsigned char>(value), 255};
		expected |= (value < 45 ? 0U : value < 120 ? 1U : value < 196 ? 2U : 3U) << (2 * i);
	}
	unsigned dark = 0;
	unsigned light = 0;
	selectColoursOnPrincipalAxis(greys.data(), dark, light);
	EXPECT_EQ(dark, grey(0));
	EXPECT_GE(light, grey(239)); // as above
	const OracleBlock block = encode({greys})[0];
	EXPECT_EQ(block.modulation, expected);
	EXPECT_EQ(block.colours, opaqueGreys(0, light & 255) | kHard);
}

TEST(TesselSection, PunchThroughOnTheAxis)
{
	// Greys as before, all transparent: every centred alpha is 0.
	Block hidden;
	for (unsigned i = 0; i < 16; ++i)
	{
		const auto value = static_cast<unsigned char>(i * 16);
		hidden[i] = {value, value, value, 0};
	}
	const OracleBlock all = encode({hidden})[0];
	EXPECT_EQ(all.modulation, repeated(1));
	EXPECT_EQ(all.colours & (kOpaque | kHard | kPunch), kPunch);
	// The even ones visible: no alpha is the mean of 127.5. Along alpha and grey the steps are halves, the middle one transparent.
	Block half = hidden;
	for (unsigned i = 0; i < 16; i += 2)
	{
		half[i].a = 255;
	}
	unsigned a = 0;
	unsigned b = 0;
	selectColoursOnPrincipalAxis(half.data(), a, b);
	const OracleBlock block = encode({half})[0];
	double direction[4];
	double length = 0.0;
	for (unsigned c = 0; c < 4; ++c)
	{
		direction[c] = double((b >> (8 * c)) & 255) - double((a >> (8 * c)) & 255);
		length += direction[c] * direction[c];
	}
	std::uint32_t expected = 0;
	for (unsigned i = 0; i < 16; ++i)
	{
		const double t = ((half[i].r - double(a & 255)) * direction[0] + (half[i].g - double((a >> 8) & 255)) * direction[1] +
		                  (half[i].b - double((a >> 16) & 255)) * direction[2] + (half[i].a - double(a >> 24)) * direction[3]) /
		                 length;
		expected |= (t < 0.25 ? 0U : t < 0.75 ? 2U : 3U) << (2 * i);
	}
	EXPECT_EQ(block.modulation, expected);
	EXPECT_NE(expected, 0U);
}
