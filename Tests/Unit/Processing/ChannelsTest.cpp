#include "Channels.h"

#include <cfloat>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "ProcessingTestSupport.h"

using namespace zortexture;

namespace
{
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

template<typename T>
Pixel<T> setAll(unsigned int value, EChannelName channel)
{
	CZORTexture texture = standardTexture<T>(1, 1, {{1, 2, 3, 4}});
	EXPECT_TRUE(SetChannels(texture, 1, &channel, &value));
	return pixelsOfTexture<T>(texture)[0];
}

TEST(SetChannels, NamesAddressElements)
{
	// A bit for every element that a name addresses, r first.
	struct
	{
		EChannelName channel;
		unsigned int elements;
	} const cases[] = {{eCh_None, 0},
	                   {eCh_Red, 1},
	                   {eCh_Green, 2},
	                   {eCh_Blue, 4},
	                   {eCh_Alpha, 8},
	                   {eCh_Luminance, 7},
	                   {eCh_Intensity, 7},
	                   {eCh_Unused, 8},
	                   {static_cast<EChannelName>(8), 0},
	                   {static_cast<EChannelName>(0xFFFFFFFFu), 0}};
	for (const auto& c : cases)
	{
		const auto expected = [&](unsigned int element)
		{
			return static_cast<unsigned char>((c.elements >> element & 1u) != 0 ? 9 : element + 1);
		};
		EXPECT_EQ(setAll<unsigned char>(9, c.channel), (Pixel<unsigned char>{expected(0), expected(1), expected(2), expected(3)}))
		    << c.channel;
	}
	// In the order of the list.
	CZORTexture texture = standardTexture<unsigned char>(1, 1, {{1, 2, 3, 4}});
	EChannelName channels[] = {eCh_Red, eCh_Luminance, eCh_Green};
	unsigned int values[] = {50, 60, 70};
	EXPECT_TRUE(SetChannels(texture, 3, channels, values));
	EXPECT_EQ(pixelsOfTexture<unsigned char>(texture), (std::vector<Pixel<unsigned char>>{{60, 70, 60, 4}}));
}

TEST(SetChannels, ValuesAreCutNotScaled)
{
	EXPECT_EQ(setAll<unsigned char>(300, eCh_Red).r, 44);
	EXPECT_EQ(setAll<unsigned short>(65537, eCh_Red).r, 1);
	EXPECT_EQ(setAll<unsigned int>(0xFEDCBA98u, eCh_Red).r, 0xFEDCBA98u);
	EXPECT_EQ(setAll<float>(0x3FC00000u, eCh_Red).r, 1.5f); // the bits of 1.5
}

template<typename T>
T setFloat(float value)
{
	CZORTexture texture = standardTexture<T>(1, 1, {{1, 2, 3, 4}});
	EChannelName channel = eCh_Alpha;
	EXPECT_TRUE(SetChannelsFloat(texture, 1, &channel, &value));
	return pixelsOfTexture<T>(texture)[0].a;
}

TEST(SetChannels, FloatsAreTruncatedAndWrap)
{
	struct
	{
		float value;
		unsigned int byte, word, integer;
	} const cases[] = {
	    {0.5f, 0, 0, 0},        {1.0f, 1, 1, 1},         {-0.99f, 0, 0, 0},        {-1.0f, 255, 65535, 0xFFFFFFFFu},
	    {300.9f, 44, 300, 300}, {65537.0f, 1, 1, 65537}, {4294967296.0f, 0, 0, 0}, {kNaN, 0, 0, 0},
	};
	for (const auto& c : cases)
	{
		EXPECT_EQ(setFloat<unsigned char>(c.value), c.byte) << c.value;
		EXPECT_EQ(setFloat<unsigned short>(c.value), c.word) << c.value;
		EXPECT_EQ(setFloat<unsigned int>(c.value), c.integer) << c.value;
		const float stored = setFloat<float>(c.value);
		EXPECT_EQ(std::memcmp(&stored, &c.value, sizeof(float)), 0) << c.value;
	}
}

/// 4 x 2 and three levels, two members, six faces: (8 + 2 + 1) * 12 pixels.
CZORTexture textureOfManyImages()
{
	return CZORTexture(standardHeader<unsigned char>(4, 2, 1, 3, 2, 6), std::vector<Pixel<unsigned char>>(132, {200, 100, 50, 0}).data());
}

TEST(Channels, EveryImageIsReached)
{
	const auto allAre = [](const CZORTexture& texture, const Pixel<unsigned char>& expected)
	{
		return pixelsOfTexture<unsigned char>(texture) == std::vector<Pixel<unsigned char>>(132, expected);
	};
	CZORTexture texture = textureOfManyImages();
	EChannelName red = eCh_Red;
	EChannelName green = eCh_Green;
	unsigned int seven = 7;
	ASSERT_TRUE(SetChannels(texture, 1, &red, &seven));
	EXPECT_TRUE(allAre(texture, {7, 100, 50, 0}));
	float eight = 8.5f;
	ASSERT_TRUE(SetChannelsFloat(texture, 1, &red, &eight));
	EXPECT_TRUE(allAre(texture, {8, 100, 50, 0}));
	ASSERT_TRUE(CopyChannels(texture, textureOfManyImages(), 1, &green, &red));
	EXPECT_TRUE(allAre(texture, {8, 200, 50, 0}));
	CZORTexture bled = texture;
	ASSERT_TRUE(Bleed(bled));
	EXPECT_TRUE(allAre(bled, {0, 0, 0, 0}));
	ASSERT_TRUE(PreMultiplyAlpha(texture));
	EXPECT_TRUE(allAre(texture, {0, 0, 0, 0}));
}

TEST(Channels, RefusalsChangeNothing)
{
	EChannelName red = eCh_Red;
	unsigned int value = 7;
	float real = 7.0f;
	CZORTexture whole = standardTexture<unsigned char>(4, 3, std::vector<Pixel<unsigned char>>(12));
	expectRefusesUnusableTextures([&](CZORTexture& texture) { return SetChannels(texture, 1, &red, &value); });
	expectRefusesUnusableTextures([&](CZORTexture& texture) { return SetChannelsFloat(texture, 1, &red, &real); });
	expectRefusesUnusableTextures([&](CZORTexture& texture) { return CopyChannels(texture, whole, 1, &red, &red); });
	expectRefusesUnusableTextures([&](CZORTexture& texture) { return CopyChannels(whole, texture, 1, &red, &red); });
	expectRefusesUnusableTextures([](CZORTexture& texture) { return CopyChannels(texture, texture, 0, nullptr, nullptr); });
	expectRefusesUnusableTextures([](CZORTexture& texture) { return PreMultiplyAlpha(texture); });
	expectRefusesUnusableTextures([](CZORTexture& texture) { return Bleed(texture); });

	const UnchangedGuard guard(whole, 48);
	EXPECT_FALSE(SetChannels(whole, 1, nullptr, &value));
	EXPECT_FALSE(SetChannels(whole, 1, &red, nullptr));
	EXPECT_FALSE(SetChannelsFloat(whole, 1, &red, nullptr));
	EXPECT_FALSE(CopyChannels(whole, whole, 1, nullptr, &red));
	EXPECT_FALSE(CopyChannels(whole, whole, 1, &red, nullptr));
	EXPECT_TRUE(SetChannels(whole, 0, nullptr, nullptr));
	EXPECT_TRUE(CopyChannels(whole, whole, 0, nullptr, nullptr));
	Pixel<unsigned char> pixel{};
	Pixel<float>* const none = nullptr;
	EXPECT_FALSE(CopyChannels(&pixel, none, 1, 1, 1, 1, &red, &red));
	EXPECT_FALSE(CopyChannels(none, &pixel, 1, 1, 1, 1, &red, &red));
	EXPECT_TRUE(CopyChannels(&pixel, &pixel, 1, 0, 1, 1, &red, &red));
	EXPECT_FALSE(Bleed(none, 1, 1, 1));
	EXPECT_TRUE(Bleed(&pixel, 0, 1, 1));
	guard.expectUnchanged();
}

TEST(CopyChannels, ShapesMustAgree)
{
	const CZORTexture source = textureOfManyImages();
	CZORTextureHeader headers[6];
	for (CZORTextureHeader& header : headers)
	{
		header = standardHeader<unsigned short>(4, 2, 1, 3, 2, 6);
	}
	headers[0].setWidth(5);
	headers[1].setHeight(1);
	headers[2].setDepth(2);
	headers[3].setNumMIPLevels(2);
	headers[4].setNumArrayMembers(3);
	headers[5].setNumFaces(1);
	EChannelName red = eCh_Red;
	for (const CZORTextureHeader& header : headers)
	{
		CZORTexture destination(header);
		const UnchangedGuard guard(destination, destination.getDataSize());
		EXPECT_FALSE(CopyChannels(destination, source, 1, &red, &red));
		guard.expectUnchanged();
	}
	CZORTexture destination(standardHeader<unsigned short>(4, 2, 1, 3, 2, 6));
	EXPECT_TRUE(CopyChannels(destination, source, 1, &red, &red));
}

/// One element copied to another type. The source channel is not the destination channel, to tell both sides apart.
template<typename S, typename D>
D convert(S value)
{
	Pixel<S> source{0, value, 0, 0};
	Pixel<D> destination{};
	EChannelName green = eCh_Green;
	EChannelName alpha = eCh_Alpha;
	EXPECT_TRUE(CopyChannels(&source, &destination, 1, 1, 1, 1, &alpha, &green));
	return destination.a;
}

TEST(CopyChannels, ElementsScaleBetweenTheRangesOfTheTypes)
{
	for (unsigned int i = 0; i < 256; ++i)
	{
		const auto byte = static_cast<unsigned char>(i);
		ASSERT_EQ((convert<unsigned char, unsigned char>(byte)), byte);
		ASSERT_EQ((convert<unsigned char, unsigned short>(byte)), i * 257);
		ASSERT_EQ((convert<unsigned short, unsigned char>(static_cast<unsigned short>(i * 257))), byte);
	}
	EXPECT_EQ((convert<unsigned short, unsigned char>(256)), 0); // 0.996
	EXPECT_EQ((convert<unsigned short, unsigned char>(65534)), 254);
	EXPECT_EQ((convert<unsigned short, unsigned short>(65535)), 65535);
	EXPECT_EQ((convert<unsigned short, unsigned short>(259)), 258); // 259 * 65535 does not fit a float

	// The range of unsigned int is 2^32, where its largest values wrap.
	EXPECT_EQ((convert<unsigned char, unsigned int>(255)), 0u);
	EXPECT_EQ((convert<unsigned char, unsigned int>(1)), 16843010u); // 16843009.004, rounded to a float
	EXPECT_EQ((convert<unsigned int, unsigned char>(0xFFFFFFFFu)), 255);
	EXPECT_EQ((convert<unsigned int, unsigned char>(0x80000000u)), 127);
	EXPECT_EQ((convert<unsigned int, unsigned short>(0x80000000u)), 32767);
	EXPECT_EQ((convert<unsigned short, unsigned int>(0)), 0u);
	EXPECT_EQ((convert<unsigned int, unsigned int>(0xFFFFFFFFu)), 0u);
	EXPECT_EQ((convert<unsigned int, unsigned int>(16777217u)), 16777216u);

	// The range of float is its largest number.
	EXPECT_EQ((convert<unsigned char, float>(0)), 0.0f);
	EXPECT_EQ((convert<unsigned char, float>(1)), FLT_MAX / 255.0f);
	EXPECT_EQ((convert<unsigned char, float>(2)), kInfinity);
	EXPECT_EQ((convert<unsigned short, float>(1)), FLT_MAX / 65535.0f);
	EXPECT_EQ((convert<unsigned int, float>(1)), FLT_MAX / 4294967296.0f);
	EXPECT_EQ((convert<float, unsigned char>(1.0f)), 0);
	EXPECT_EQ((convert<float, unsigned char>(FLT_MAX)), 255); // infinity, saturated in 64 bits and cut
	EXPECT_EQ((convert<float, unsigned short>(kNaN)), 0);
	EXPECT_EQ((convert<float, unsigned short>(FLT_MAX / 65536.0f)), 0);
	EXPECT_EQ((convert<float, unsigned int>(FLT_MAX / 4294967296.0f)), 1u);
	EXPECT_EQ((convert<float, float>(0.3f)), 0.3f);
	EXPECT_EQ((convert<float, float>(1.0f)), 1.0f);
	EXPECT_EQ((convert<float, float>(1.5f)), kInfinity);
	EXPECT_EQ((convert<float, float>(-1.5f)), -kInfinity);
}

TEST(CopyChannels, GreyIsWeighedBeforeItIsTruncated)
{
	struct
	{
		Pixel<unsigned char> pixel;
		unsigned char luminance, intensity;
	} const cases[] = {
	    {{100, 50, 200, 0}, 71, 116}, // 21.26 + 35.76 + 14.44 = 71.46; 350 / 3
	    {{1, 2, 2, 0}, 1, 1},         // 1.787; 1.67
	    {{0, 0, 255, 0}, 18, 85},     // 18.4
	    {{255, 0, 0, 9}, 54, 85},     // 54.2
	    {{0, 255, 0, 9}, 182, 85},    // 182.4
	};
	for (const auto& c : cases)
	{
		Pixel<unsigned char> source = c.pixel;
		Pixel<unsigned char> destination{};
		EChannelName from[] = {eCh_Luminance, eCh_Intensity};
		EChannelName to[] = {eCh_Red, eCh_Alpha};
		ASSERT_TRUE(CopyChannels(&source, &destination, 1, 1, 1, 2, to, from));
		EXPECT_EQ(destination, (Pixel<unsigned char>{c.luminance, 0, 0, c.intensity}));
	}
	// The weights apply to colours already in the destination's range: the luminance of (1, 1, 0) in bytes is 0.9278,
	// in 16 bits 238.4.
	Pixel<unsigned char> source{1, 1, 0, 0};
	Pixel<unsigned short> destination{};
	EChannelName from = eCh_Luminance;
	EChannelName to = eCh_Intensity;
	ASSERT_TRUE(CopyChannels(&source, &destination, 1, 1, 1, 1, &to, &from));
	EXPECT_EQ(destination, (Pixel<unsigned short>{238, 238, 238, 0}));
}

TEST(CopyChannels, PermutesWithinOneTexture)
{
	CZORTexture texture = standardTexture<unsigned char>(2, 1, {{1, 2, 3, 4}, {10, 20, 30, 40}});
	EChannelName from[] = {eCh_Blue, eCh_Red, eCh_Alpha, eCh_Green};
	EChannelName to[] = {eCh_Red, eCh_Green, eCh_Blue, eCh_Unused};
	ASSERT_TRUE(CopyChannels(texture, texture, 4, to, from));
	EXPECT_EQ(pixelsOfTexture<unsigned char>(texture), (std::vector<Pixel<unsigned char>>{{3, 1, 4, 2}, {30, 10, 40, 20}}));
	// A name that is no channel reads 0, and is ignored as a destination.
	EChannelName strange[] = {eCh_None, eCh_Red, static_cast<EChannelName>(99)};
	EChannelName mixed[] = {eCh_Red, static_cast<EChannelName>(0x80000000u), eCh_Alpha};
	ASSERT_TRUE(CopyChannels(texture, texture, 3, mixed, strange));
	EXPECT_EQ(pixelsOfTexture<unsigned char>(texture), (std::vector<Pixel<unsigned char>>{{0, 1, 4, 0}, {0, 10, 40, 0}}));
}
} // namespace
