// Known answers of reading and writing one channel, worked out by hand from the storage rules.

#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "PixelLayouts.h"

using namespace zortexture;

namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

std::uint64_t lowWord(CPixelEncoder& encoder)
{
	std::uint64_t word;
	std::memcpy(&word, encoder.GetColourData(), sizeof(word));
	return word;
}

void setLowWord(CPixelEncoder& encoder, std::uint64_t word)
{
	std::memcpy(encoder.GetColourData(), &word, sizeof(word));
}

using Setter = void (CPixelEncoder::*)(EChannelName, const float&);

struct SWriteCase
{
	const char* layout;
	EZORTVariableType type;
	Setter setter;
	EChannelName channel;
	float value;
	std::uint64_t expected; ///< the first 8 bytes, little-endian
};

constexpr Setter kUNorm = &CPixelEncoder::SetChannelUNorm;
constexpr Setter kSNorm = &CPixelEncoder::SetChannelSNorm;
constexpr Setter kSFloat = &CPixelEncoder::SetChannelSFloat;
constexpr Setter kUFloat = &CPixelEncoder::SetChannelUFloat;

const SWriteCase kWriteCases[] = {
    // Unsigned elements: clamped, rounded; 1.0 in 32 bits wraps.
    {"r8", eVT_UnsignedByteNorm, kUNorm, eCh_Red, 0.5f, 128},
    {"r8", eVT_UnsignedByte, kUNorm, eCh_Red, 1.5f, 255},
    {"r8", eVT_UnsignedByteNorm, kUNorm, eCh_Red, -1.0f, 0},
    {"r8", eVT_UnsignedByteNorm, kUNorm, eCh_Red, kNaN, 0},
    {"r8", eVT_UnsignedByteNorm, kUNorm, eCh_Green, 1.0f, 0}, // absent
    {"rg16.16", eVT_UnsignedShortNorm, kUNorm, eCh_Green, 0.5f, 0x80000000u},
    {"r32", eVT_UnsignedIntegerNorm, kUNorm, eCh_Red, 0.5f, 0x80000000u},
    {"r32", eVT_UnsignedIntegerNorm, kUNorm, eCh_Red, 1.0f, 0},
    {"rgb8.8.8", eVT_UnsignedByteNorm, kUNorm, eCh_Red, 1.0f, 0x0000FF},
    // Unsigned fields: the first channel at the top.
    {"rgb8.8.8", eVT_UnsignedIntegerNorm, kUNorm, eCh_Red, 1.0f, 0xFF0000},
    {"rgb5.6.5", eVT_UnsignedShortNorm, kUNorm, eCh_Red, 1.0f, 0xF800},
    {"rgb5.6.5", eVT_UnsignedShortNorm, kUNorm, eCh_Green, 1.0f, 0x07E0},
    {"rgb5.6.5", eVT_UnsignedShortNorm, kUNorm, eCh_Blue, 0.5f, 0x0010},
    {"argb1.5.5.5", eVT_UnsignedShortNorm, kUNorm, eCh_Alpha, 0.5f, 0x8000},
    {"abgr2.10.10.10", eVT_UnsignedIntegerNorm, kUNorm, eCh_Red, 1.0f, 0x3FF},
    {"abgr16.16.16.16", eVT_UnsignedIntegerNorm, kUNorm, eCh_Alpha, 1.0f, 0xFFFF000000000000u},
    // Signed: sign and magnitude, not clamped.
    {"r8", eVT_SignedByteNorm, kSNorm, eCh_Red, 1.0f, 0x7F},
    {"r8", eVT_SignedByteNorm, kSNorm, eCh_Red, -1.0f, 0x80},
    {"r8", eVT_SignedByteNorm, kSNorm, eCh_Red, -0.25f, 0xA0},
    {"r8", eVT_SignedByte, kSNorm, eCh_Red, -0.0f, 0},
    {"r8", eVT_SignedByteNorm, kSNorm, eCh_Red, 2.0f, 0xFE},
    {"r32", eVT_SignedIntegerNorm, kSNorm, eCh_Red, 1.0f, 0x80000000u},
    {"lgr6.5.5", eVT_SignedIntegerNorm, kSNorm, eCh_Luminance, -1.0f, 0x8000},
    {"lgr6.5.5", eVT_SignedIntegerNorm, kSNorm, eCh_Green, 2.0f, 0x03C0},
    {"lgr6.5.5", eVT_SignedIntegerNorm, kSNorm, eCh_Green, 3.0f, 0x05A0}, // runs into luminance
    // Halves and whole floats.
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, 1.0f, 0x3C00},
    {"rg16.16", eVT_SignedFloat, kSFloat, eCh_Green, -1.0f, 0xBC000000u},
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, 1.9999999f, 0x3FFF},
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, 0x1p-14f, 0x0400},
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, 0x1.fp-15f, 0x0000},
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, -1e-10f, 0x8000},
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, 65536.0f, 0x7BFF},
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, kInfinity, 0x7800},
    {"r16", eVT_SignedFloat, kSFloat, eCh_Red, kNaN, 0x7A00},
    {"r32", eVT_SignedFloat, kSFloat, eCh_Red, -2.0f, 0xC0000000u},
    {"bgr10.11.11", eVT_SignedFloat, kSFloat, eCh_Red, 1.0f, 0},
    // Packed floats; a sign lands in the neighbour.
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Red, 1.0f, 0x3C0},
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Green, 1.5f, 0x3E0u << 11},
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Blue, 1.0f, 0x1E0u << 22},
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Red, -1.0f, 0xBC0},
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Red, kInfinity, 0x780},
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Red, 1e9f, 0x7BF},
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Blue, 1e9f, 0x3DFull << 22},
    {"bgr10.11.11", eVT_UnsignedFloat, kUFloat, eCh_Red, 1e-10f, 0},
    {"r16", eVT_UnsignedFloat, kUFloat, eCh_Red, -1.0f, 0xBC00},
    {"r32", eVT_UnsignedFloat, kUFloat, eCh_Red, 1.0f, 0},
};

struct SReadCase
{
	const char* layout;
	EZORTVariableType type;
	EChannelName channel;
	std::uint64_t pixel;
	float expected;
};

const SReadCase kReadCases[] = {
    {"r8", eVT_UnsignedByte, eCh_Red, 200, 200.0f / 255.0f},
    {"rgb5.6.5", eVT_UnsignedShortNorm, eCh_Green, 0x0020, 1.0f / 63.0f},
    {"r32", eVT_UnsignedInteger, eCh_Red, 0xFFFFFFFFu, 1.0f},
    {"abgr16.16.16.16", eVT_UnsignedIntegerNorm, eCh_Alpha, 0x8000000000000000u, 32768.0f / 65535.0f},
    {"r8", eVT_UnsignedByteNorm, eCh_Alpha, 0, 1.0f},
    {"r8", eVT_UnsignedByteNorm, eCh_Unused, 0, 1.0f},
    {"r8", eVT_UnsignedByteNorm, eCh_Luminance, 0xFF, 0.0f},
    {"r8", eVT_NumVarTypes, eCh_Red, 0xFF, 0.0f},
    // Signed elements, with their asymmetric divisor.
    {"r8", eVT_SignedByteNorm, eCh_Red, 0x7F, 1.0f},
    {"r8", eVT_SignedByteNorm, eCh_Red, 0x80, -0.0f},
    {"r8", eVT_SignedByteNorm, eCh_Red, 0xC0, -64.0f / 126.0f},
    {"r16", eVT_SignedShort, eCh_Red, 0xFFFF, -32767.0f / 32766.0f},
    {"r32", eVT_SignedIntegerNorm, eCh_Red, 0xC0000000u, -0.5f},
    // Signed fields: sign-extended at bit 31 alone, and 0 above it.
    {"abgr8.8.8.8", eVT_SignedIntegerNorm, eCh_Red, 0xC0, -0.5f},
    {"abgr8.8.8.8", eVT_SignedIntegerNorm, eCh_Alpha, 0xC0000000u, -64.0f / 126.0f},
    {"abgr2.10.10.10", eVT_SignedIntegerNorm, eCh_Alpha, 0xC0000000u, -1.0f},
    {"abgr16.16.16.16", eVT_SignedIntegerNorm, eCh_Green, 0xC0000000u, -16384.0f / 32766.0f},
    {"abgr16.16.16.16", eVT_SignedIntegerNorm, eCh_Blue, 0x4000ull << 32, 0.0f},
    {"abgr16.16.16.16", eVT_SignedIntegerNorm, eCh_Alpha, 0x4000ull << 48, 0.0f},
    {"argb1.5.5.5", eVT_SignedShortNorm, eCh_Alpha, 0x8000, -0.0f},
    {"argb1.5.5.5", eVT_SignedShortNorm, eCh_Alpha, 0x7FFF, 0.0f},
    // Small floats: an exponent of 0 is one like the others.
    {"r16", eVT_SignedFloat, eCh_Red, 0x0000, 0x1p-15f},
    {"r16", eVT_SignedFloat, eCh_Red, 0x8200, -0x1.8p-15f},
    {"r16", eVT_SignedFloat, eCh_Red, 0xBC00, -1.0f},
    {"r16", eVT_SignedFloat, eCh_Red, 0x7C00, kInfinity},
    {"r16", eVT_UnsignedFloat, eCh_Red, 0xBC00, 1.0f},
    {"bgr10.11.11", eVT_UnsignedFloat, eCh_Red, 0x3E0, 1.5f},
    {"bgr10.11.11", eVT_UnsignedFloat, eCh_Green, 0, 0x1p-15f},
    {"bgr10.11.11", eVT_SignedFloat, eCh_Blue, 0x1F0ull << 22, 1.5f},
    {"bgr10.11.11", eVT_UnsignedFloat, eCh_Blue, 0x3E0ull << 22, kInfinity},
    {"rgb8.8.8", eVT_SignedFloat, eCh_Red, 0xFFFFFF, 0.0f},
    {"r32", eVT_UnsignedFloat, eCh_Red, 0x3F800000u, 0.0f},
    {"rg32.32", eVT_SignedFloat, eCh_Green, 0xC000000000000000u, -2.0f},
};
} // namespace

TEST(EncoderChannels, WritesFollowTheStorageRules)
{
	for (const SWriteCase& test : kWriteCases)
	{
		CPixelEncoder encoder(layout(test.layout), test.type);
		(encoder.*test.setter)(test.channel, test.value);
		EXPECT_EQ(lowWord(encoder), test.expected) << test.layout << " type " << test.type << " value " << test.value;
	}
}

TEST(EncoderChannels, WritesKeepTheOtherFields)
{
	CPixelEncoder encoder(layout("rgb5.6.5"), eVT_UnsignedShortNorm);
	setLowWord(encoder, 0xFFFF);
	encoder.SetChannelUNorm(eCh_Green, 0.0f);
	EXPECT_EQ(lowWord(encoder), 0xF81Fu);
}

TEST(EncoderChannels, ReadsFollowTheStorageRules)
{
	for (const SReadCase& test : kReadCases)
	{
		CPixelEncoder encoder(layout(test.layout), test.type);
		setLowWord(encoder, test.pixel);
		const float value = encoder.GetChannelFloat(test.channel);
		EXPECT_EQ(value, test.expected) << test.layout << " type " << test.type << std::hex << " pixel " << test.pixel;
		EXPECT_EQ(std::signbit(value), std::signbit(test.expected)) << test.layout << std::hex << " pixel " << test.pixel;
	}
}

TEST(EncoderArithmetic, SmallFloatsOfAnyShape)
{
	const CPixelEncoder encoder(layout("r8"), eVT_UnsignedByteNorm);
	EXPECT_EQ(encoder.ShrinkFloat(1.5f, 3, 4, 7, true, false), 60u);
	EXPECT_EQ(encoder.ShrinkFloat(-1.5f, 3, 4, 7, false, false), 188u);
	EXPECT_EQ(encoder.ShrinkFloat(1e9f, 3, 4, 7, true, false), 127u);
	EXPECT_EQ(encoder.ShrinkFloat(1e9f, 3, 4, 7, true, true), 119u);
	EXPECT_EQ(encoder.ShrinkFloat(kInfinity, 3, 4, 7, true, false), 120u);
	EXPECT_EQ(encoder.ShrinkFloat(1e-9f, 3, 4, 7, true, false), 0u);
	EXPECT_EQ(encoder.ShrinkFloat(0.1f, 23, 8, 127, true, false), 0x3DCCCCCDu);
	EXPECT_EQ(encoder.GrowFloat(60, 3, 4, 7, true), 1.5f);
	EXPECT_EQ(encoder.GrowFloat(188, 3, 4, 7, true), -1.5f);
	EXPECT_EQ(encoder.GrowFloat(188, 3, 4, 7, false), 1.5f);
	EXPECT_EQ(encoder.GrowFloat(120, 3, 4, 7, true), kInfinity);
}

TEST(EncoderArithmetic, NormalisedIntegers)
{
	const CPixelEncoder encoder(layout("r8"), eVT_UnsignedByteNorm);
	EXPECT_EQ(encoder.ShrinkFloatToUNorm(2.0f, 5), 31u);
	EXPECT_EQ(encoder.ShrinkFloatToSNorm(-0.25f, 8), 0xA0);
	EXPECT_EQ(encoder.GrowUNormToFloat(31, 5), 1.0f);
	EXPECT_EQ(encoder.GrowSNormToFloat(-64, 8), -64.0f / 126.0f);
	EXPECT_EQ(encoder.ResizeSInt(0xFF, 8, 8), -1);
	EXPECT_EQ(encoder.ResizeSInt(0x80, 8, 8), -127);
	EXPECT_EQ(encoder.ResizeSInt(0x7FFF, 16, 8), 127);
	EXPECT_EQ(encoder.ResizeSInt(-70000, 32, 16), -32767);
	EXPECT_EQ(encoder.ResizeSInt(INT32_MIN, 32, 32), -INT32_MAX);
}

// Whatever layout a file names, the encoder stays inside its 16 bytes and shifts within the word.
TEST(EncoderChannels, NonsenseLayoutsAreHarmless)
{
	std::mt19937 random(5);
	for (int round = 0; round < 20000; ++round)
	{
		unsigned char bits[4];
		EChannelName names[4];
		for (int i = 0; i < 4; ++i)
		{
			bits[i] = static_cast<unsigned char>(round % 2 != 0 ? random() % 256 : random() % 5 * 8);
			names[i] = static_cast<EChannelName>(random() % 10);
		}
		CPixelEncoder encoder(static_cast<EZORTVariableType>(random() % 16), bits[0], bits[1], bits[2], bits[3], names[0], names[1],
		                      names[2], names[3]);
		const unsigned char pixel[16] = {0xFF, 1, 0x80, 3, 4, 0xF5, 6, 7, 0x88, 9, 10, 11, 12, 13, 14, 15};
		encoder.OverwriteColourData(pixel);
		const float value = std::ldexp(static_cast<float>(random()) - 2e9f, static_cast<int>(random() % 200) - 100);
		for (unsigned int i = 0; i < 10; ++i)
		{
			for (const Setter setter : {kUNorm, kSNorm, kUFloat, kSFloat})
			{
				(encoder.*setter)(static_cast<EChannelName>(i), value);
			}
		}
		encoder.ConvertToColourSpace(eCS_sRGB, eCS_lRGB);
		const CPixelEncoder copy(encoder);
		for (unsigned int i = 0; i < 10; ++i)
		{
			const float read = encoder.GetChannelFloat(static_cast<EChannelName>(i));
			const float again = copy.GetChannelFloat(static_cast<EChannelName>(i));
			EXPECT_EQ(std::memcmp(&read, &again, sizeof(read)), 0);
		}
		CPixelEncoder source(copy);
		encoder.EncodeFrom(source);

		// Widths that make no small float give 0.
		const bool isFloat = bits[0] <= 23 && bits[0] + bits[1] <= 31;
		const unsigned int small = encoder.ShrinkFloat(value, bits[0], bits[1], bits[2], true, (round & 1) != 0);
		const float grown = encoder.GrowFloat(small, bits[0], bits[1], bits[2], true);
		EXPECT_TRUE(isFloat || (small == 0 && grown == 0.0f));
		const int resized = encoder.ResizeSInt(static_cast<int>(random()), bits[0], bits[1]);
		EXPECT_NE(resized, INT32_MIN);
	}
}
