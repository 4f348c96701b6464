// Converting whole pixels: layout errors, grey and opaque rules, round trips, colour spaces.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

#include "PixelLayouts.h"

using namespace zortexture;

namespace
{
/// The same channels as whole floats: conversion to it and back shows what a layout can hold.
CPixelEncoder floatTwin(PixelType type)
{
	for (unsigned int i = 0; i < 4; ++i)
	{
		type.channelBits[i] = type.channelBits[i] != 0 ? 32 : 0;
	}
	return CPixelEncoder(type, eVT_SignedFloat);
}

CPixelEncoder floatLayout(const std::string& letters)
{
	std::string text = letters + "32";
	for (std::size_t i = 1; i < letters.size(); ++i)
	{
		text += ".32";
	}
	return CPixelEncoder(layout(text), eVT_SignedFloat);
}

unsigned int numChannels(const PixelType& type)
{
	unsigned int count = 0;
	while (count < 4 && type.channelBits[count] != 0)
	{
		++count;
	}
	return count;
}

EChannelName channelAt(const PixelType& type, unsigned int position)
{
	return MapCharToEnum(type.channelName[position]);
}
} // namespace

TEST(EncodeFrom, LayoutErrors)
{
	struct
	{
		PixelType type;
		unsigned int expected;
	} const cases[] = {
	    {PixelType('r', 'g', 'b', 0, 5, 6, 5, 0), 0},
	    {PixelType('r', 0, 'b', 0, 8, 0, 8, 0), ePixelErrorChannelGap},
	    {PixelType(0, 0, 0, 'a', 0, 0, 0, 8), ePixelErrorChannelGap},
	    {PixelType('r', 'r', 0, 0, 8, 8, 0, 0), ePixelErrorDuplicateChannel},
	    {PixelType('r', 'g', 0, 0, 8, 0, 0, 0), ePixelErrorNamedWithoutBits},
	    {PixelType('r', 'q', 0, 0, 8, 8, 0, 0), ePixelErrorBitsWithoutName},
	    {PixelType('r', 'g', 'b', 0, 1, 1, 1, 0), ePixelErrorTotalBits},
	    {PixelType(0, 'g', 'g', 'a', 3, 0, 4, 4), ePixelErrorChannelGap | ePixelErrorDuplicateChannel | ePixelErrorNamedWithoutBits |
	                                                  ePixelErrorBitsWithoutName | ePixelErrorTotalBits},
	};
	CPixelEncoder valid(layout("rgb5.6.5"), eVT_UnsignedShortNorm);
	for (const auto& test : cases)
	{
		CPixelEncoder encoder(test.type, eVT_UnsignedByteNorm);
		EXPECT_EQ(encoder.GetError(), test.expected) << std::hex << test.type.id;
		// With an error on either side nothing happens.
		std::memset(encoder.GetColourData(), 0x5A, 16);
		std::memset(valid.GetColourData(), 0x5A, 16);
		encoder.EncodeFrom(valid);
		valid.EncodeFrom(encoder);
		EXPECT_EQ(encoder.GetColourData()[15] == 0x5A, test.expected != 0);
		EXPECT_EQ(valid.GetColourData()[15] == 0x5A, test.expected != 0);
	}
	EXPECT_FALSE(valid.OverwriteColourData(nullptr));
}

TEST(EncodeFrom, MissingChannelsAreDerived)
{
	const float luminance = 0.2126f * 0.5f + 0.7152f * 0.25f + 0.0722f * 1.0f;
	const float luminanceOfTwo = 0.2126f * 0.5f + 0.7152f * 0.25f;
	struct
	{
		const char* from;
		float values[4];
		const char* to;
		float expected[4];
	} const cases[] = {
	    {"r", {0.5f}, "rgba", {0.5f, 0.0f, 0.0f, 1.0f}},
	    {"l", {0.5f}, "rgba", {0.5f, 0.5f, 0.5f, 1.0f}},
	    {"l", {0.5f}, "l", {0.5f}},
	    {"l", {0.5f}, "i", {0.5f}},
	    {"l", {0.5f}, "li", {0.5f, 0.0f}},
	    {"i", {0.5f}, "rgbx", {0.5f, 0.5f, 0.5f, 1.0f}},
	    {"i", {0.5f}, "l", {0.5f}},
	    {"i", {0.5f}, "lr", {0.5f, 0.5f}},
	    {"i", {0.5f}, "i", {0.5f}},
	    {"i", {0.5f}, "li", {0.0f, 0.5f}},
	    {"li", {0.25f, 0.75f}, "l", {0.25f}},
	    {"li", {0.25f, 0.75f}, "lr", {0.25f, 0.25f}},
	    {"li", {0.25f, 0.75f}, "ir", {0.75f, 0.75f}},
	    {"li", {0.25f, 0.75f}, "li", {0.25f, 0.0f}},
	    {"li", {0.25f, 0.75f}, "r", {0.75f}},
	    {"lr", {0.25f, 0.75f}, "rg", {0.75f, 0.25f}},
	    {"rgb", {0.5f, 0.25f, 1.0f}, "l", {luminance}},
	    {"rg", {0.5f, 0.25f}, "l", {luminanceOfTwo}},
	    {"rgb", {0.5f, 0.25f, 1.0f}, "i", {1.75f / 3.0f}},
	    {"rg", {0.5f, 0.25f}, "i", {0.375f}},
	    {"rgb", {0.5f, 0.25f, 1.0f}, "lir", {luminance, 0.0f, 0.5f}},
	    {"a", {0.5f}, "lir", {0.0f, 0.0f, 0.0f}},
	    {"a", {0.5f}, "i", {0.0f}},
	    {"ra", {0.5f, 0.25f}, "xa", {0.25f, 0.25f}},
	    {"rx", {0.5f, 0.25f}, "ax", {0.25f, 0.25f}},
	    {"ax", {0.5f, 0.25f}, "ax", {0.5f, 0.25f}},
	    {"r", {0.5f}, "x", {1.0f}},
	};
	for (const auto& test : cases)
	{
		CPixelEncoder from = floatLayout(test.from);
		CPixelEncoder to = floatLayout(test.to);
		from.OverwriteColourData(reinterpret_cast<const unsigned char*>(test.values));
		EXPECT_EQ(&to.EncodeFrom(from), &to);
		EXPECT_EQ(std::memcmp(to.GetColourData(), test.expected, 4 * std::strlen(test.to)), 0) << test.from << " to " << test.to;
	}
}

TEST(EncodeFrom, MissingAlphaIsOpaqueInEveryType)
{
	struct
	{
		const char* to;
		EZORTVariableType type;
		std::uint32_t expected;
	} const cases[] = {
	    {"a8", eVT_UnsignedByteNorm, 255},       {"a16", eVT_UnsignedShort, 0xFFFF},
	    {"a32", eVT_UnsignedIntegerNorm, 0},     {"a8", eVT_SignedByteNorm, 127},
	    {"a32", eVT_SignedInteger, 0x7FFFFFFFu}, {"a16", eVT_SignedFloat, 0x3C00},
	    {"a32", eVT_SignedFloat, 0x3F800000u},   {"argb1.5.5.5", eVT_UnsignedShortNorm, 0x8000},
	    {"x16", eVT_UnsignedFloat, 0x3C00},      {"abgr2.10.10.10", eVT_SignedIntegerNorm, 0x40000000u},
	};
	CPixelEncoder empty(layout("r8"), eVT_UnsignedByteNorm);
	for (const auto& test : cases)
	{
		CPixelEncoder to(layout(test.to), test.type);
		to.EncodeFrom(empty);
		std::uint32_t pixel;
		std::memcpy(&pixel, to.GetColourData(), sizeof(pixel));
		EXPECT_EQ(pixel, test.expected) << test.to << " type " << test.type;
	}
}

// Every unsigned layout of at most 16 bits a channel survives the way through floats bit by bit.
TEST(EncodeFrom, UnsignedPixelsSurviveFloats)
{
	std::mt19937 random(1);
	for (const SLayoutsOfType& group : kUnsignedLayouts)
	{
		for (const std::string& text : words(group.layouts))
		{
			const PixelType type = layout(text);
			CPixelEncoder encoder(type, group.type);
			ASSERT_EQ(encoder.GetError(), 0u) << text;
			CPixelEncoder twin = floatTwin(type);
			for (int round = 0; round < 400 && type.channelBits[0] <= 16; ++round)
			{
				unsigned char pixel[16] = {};
				for (unsigned int i = 0; i < encoder.GetColourDataSize(); ++i)
				{
					pixel[i] = static_cast<unsigned char>(random());
				}
				encoder.OverwriteColourData(pixel);
				twin.EncodeFrom(encoder);
				encoder.EncodeFrom(twin);
				ASSERT_EQ(std::memcmp(encoder.GetColourData(), pixel, 16), 0) << text << " type " << group.type;
			}
		}
	}
}

TEST(EncodeFrom, ValuesSurviveToThePrecisionOfTheNarrowestChannel)
{
	std::mt19937 random(2);
	std::uniform_real_distribution<float> distribution(0.0f, 0.999f);
	const auto check = [&](const SLayoutsOfType& group, bool isFloat)
	{
		for (const std::string& text : words(group.layouts))
		{
			const PixelType type = layout(text);
			unsigned int narrowest = 32;
			for (unsigned int i = 0; i < numChannels(type); ++i)
			{
				narrowest = std::min<unsigned int>(narrowest, type.channelBits[i]);
			}
			double tolerance = 0.5 / (std::ldexp(1.0, static_cast<int>(narrowest)) - 1.0) + std::ldexp(1.0, -24);
			if (isFloat)
			{
				tolerance = narrowest == 32 ? 0.0 : std::ldexp(1.0, -11);
			}
			CPixelEncoder encoder(type, group.type);
			CPixelEncoder before = floatTwin(type);
			CPixelEncoder after(before);
			for (int round = 0; round < 400; ++round)
			{
				for (unsigned int i = 0; i < numChannels(type); ++i)
				{
					before.SetChannelSFloat(channelAt(type, i), distribution(random));
				}
				encoder.EncodeFrom(before);
				after.EncodeFrom(encoder);
				for (unsigned int i = 0; i < numChannels(type); ++i)
				{
					const EChannelName channel = channelAt(type, i);
					ASSERT_NEAR(after.GetChannelFloat(channel), before.GetChannelFloat(channel), tolerance)
					    << text << " type " << group.type;
				}
			}
		}
	};
	for (const SLayoutsOfType& group : kUnsignedLayouts)
	{
		check(group, false);
	}
	for (const SLayoutsOfType& group : kElementFloatLayouts)
	{
		check(group, true);
	}
}

// One half and minus one half in every signed layout: the bits of each width, and what they read back as where the sign
// is extended (elements, and fields that end at bit 31) and where it is not.
TEST(EncodeFrom, SignedLayoutsHoldSignAndMagnitude)
{
	struct SHalves
	{
		unsigned int width;
		std::uint32_t positive;
		std::uint32_t negative;
		float readPositive;
		float readExtended;
		float readField;
	};
	const SHalves halves[] = {
	    {2, 1, 3, 1.0f, -1.0f, -0.5f},
	    {5, 8, 24, 8.0f / 15.0f, 0.0f, -0.5f},
	    {6, 16, 48, 16.0f / 31.0f, 0.0f, -0.5f},
	    {8, 0x40, 0xC0, 64.0f / 127.0f, -64.0f / 126.0f, -0.5f},
	    {10, 0x100, 0x300, 256.0f / 511.0f, -256.0f / 510.0f, -0.5f},
	    {16, 0x4000, 0xC000, 16384.0f / 32767.0f, -16384.0f / 32766.0f, -0.5f},
	    {32, 0x40000000, 0xC0000000, 0.5f, -0.5f, -0.5f},
	};
	for (const SLayoutsOfType& group : kSignedLayouts)
	{
		for (const std::string& text : words(group.layouts))
		{
			const PixelType type = layout(text);
			CPixelEncoder encoder(type, group.type);
			unsigned int start = 0;
			for (unsigned int i = 0; i < numChannels(type); ++i)
			{
				const unsigned int width = type.channelBits[i];
				const SHalves& expected =
				    *std::find_if(std::begin(halves), std::end(halves), [&](const SHalves& h) { return h.width == width; });
				const bool isElement = width == encoder.GetTypeSize();
				const unsigned int lowBit = isElement ? i * width : encoder.GetBitsPerPixel() - start - width;
				start += width;
				for (const bool isNegative : {false, true})
				{
					CPixelEncoder source = floatTwin(type);
					source.SetChannelSFloat(channelAt(type, i), isNegative ? -0.5f : 0.5f);
					encoder.EncodeFrom(source);
					const std::uint32_t bits = isNegative ? expected.negative : expected.positive;
					for (unsigned int bit = 0; bit < 128; ++bit)
					{
						const bool isSet = (encoder.GetColourData()[bit / 8] >> (bit % 8) & 1) != 0;
						const bool inField = bit >= lowBit && bit < lowBit + width;
						ASSERT_EQ(isSet, inField && (bits >> (bit - lowBit) & 1) != 0) << text << " channel " << i << " bit " << bit;
					}
					float read = expected.readPositive;
					if (isNegative)
					{
						read = isElement || lowBit + width == 32 ? expected.readExtended : expected.readField;
					}
					const bool isUnreadable = !isElement && lowBit >= 32;
					EXPECT_EQ(encoder.GetChannelFloat(channelAt(type, i)), isUnreadable ? 0.0f : read) << text << " channel " << i;
				}
			}
		}
	}
}

TEST(EncodeFrom, PackedFloatsTruncate)
{
	const float values[3] = {0.3f, -2.0f, 70000.0f};
	CPixelEncoder source = floatLayout("rgb");
	source.OverwriteColourData(reinterpret_cast<const unsigned char*>(values));
	CPixelEncoder unsignedFloat(layout("bgr10.11.11"), eVT_UnsignedFloat);
	unsignedFloat.EncodeFrom(source);
	std::uint32_t pixel;
	std::memcpy(&pixel, unsignedFloat.GetColourData(), sizeof(pixel));
	// 0.3 is 1.2 x 2^-2: exponent 13, mantissa 0.2 x 64 = 12. -2 is exponent 16 with its sign in blue's lowest bit. 70000
	// is beyond the largest value.
	EXPECT_EQ(pixel, 13u << 6 | 12u | (16u << 6) << 11 | 1u << 22 | 0x3DFu << 22);

	CPixelEncoder signedFloat(layout("bgr10.11.11"), eVT_SignedFloat);
	signedFloat.EncodeFrom(source);
	EXPECT_EQ(signedFloat.GetColourData()[0], 0) << "the signed type has no packed widths to write";
	signedFloat.OverwriteColourData(unsignedFloat.GetColourData());
	EXPECT_EQ(signedFloat.GetChannelFloat(eCh_Red), 0x1.3p-2f);
	EXPECT_EQ(signedFloat.GetChannelFloat(eCh_Blue), 0x1.f8p15f);
}

TEST(ColourSpace, CurvesHaveTheirOwnConstants)
{
	for (const double x : {0.0, 0.003, 0.00304, 0.0031, 0.0392, 0.0394, 0.25, 0.5, 1.0, 2.0})
	{
		CPixelEncoder encoder = floatLayout("rgla");
		for (const EChannelName channel : {eCh_Red, eCh_Green, eCh_Luminance, eCh_Alpha})
		{
			encoder.SetChannelSFloat(channel, static_cast<float>(x));
		}
		CPixelEncoder other(encoder);
		encoder.ConvertToColourSpace(eCS_lRGB, eCS_sRGB);
		other.ConvertToColourSpace(eCS_sRGB, eCS_lRGB);
		const double linear = x <= 0.03928 ? x / 12.92 : std::pow((x + 0.0556) / 1.0556, 2.4);
		const double sRGB = x <= 0.00304 ? 12.92 * x : 1.0556 * std::pow(x, 0.41666666) - 0.0556;
		for (const EChannelName channel : {eCh_Red, eCh_Green, eCh_Luminance})
		{
			EXPECT_NEAR(encoder.GetChannelFloat(channel), linear, 2e-6) << x;
			EXPECT_NEAR(other.GetChannelFloat(channel), sRGB, 1e-6) << x;
		}
		EXPECT_EQ(encoder.GetChannelFloat(eCh_Alpha), static_cast<float>(x));
	}
}

TEST(ColourSpace, ResultsAreStoredByType)
{
	struct
	{
		const char* layout;
		EZORTVariableType type;
		std::uint32_t pixel;
		std::uint32_t expected;
		EZORTColourSpace target = eCS_lRGB;
		EZORTColourSpace source = eCS_sRGB;
	} const cases[] = {
	    {"r8", eVT_UnsignedByteNorm, 128, 55},
	    {"i8", eVT_UnsignedByteNorm, 128, 55},
	    {"a8", eVT_UnsignedByteNorm, 128, 128},
	    {"x8", eVT_UnsignedByteNorm, 128, 128},
	    {"r8", eVT_UnsignedByteNorm, 255, 255, eCS_sRGB, eCS_lRGB},
	    {"r8", eVT_SignedByteNorm, 64, 28},     // 64/127 is 0.21814 x 127 = 27.7
	    {"r8", eVT_SignedByteNorm, 0xC0, 0x85}, // -64/126 / 12.92 x 128 = -5.03
	    {"r16", eVT_SignedFloat, 0x3800, 0x32DB},
	    {"r16", eVT_UnsignedFloat, 0x3800, 0x32DB},
	    {"bgr10.11.11", eVT_UnsignedFloat, 0x380, 0x380},
	    {"r8", eVT_UnsignedByteNorm, 128, 128, static_cast<EZORTColourSpace>(2), eCS_sRGB},
	    {"r8", eVT_UnsignedByteNorm, 128, 128, eCS_sRGB, static_cast<EZORTColourSpace>(2)},
	};
	for (const auto& test : cases)
	{
		CPixelEncoder encoder(layout(test.layout), test.type);
		std::memcpy(encoder.GetColourData(), &test.pixel, sizeof(test.pixel));
		encoder.ConvertToColourSpace(test.target, test.source);
		std::uint32_t pixel;
		std::memcpy(&pixel, encoder.GetColourData(), sizeof(pixel));
		EXPECT_EQ(pixel, test.expected) << test.layout << " type " << test.type << " from " << test.pixel;
	}
}
