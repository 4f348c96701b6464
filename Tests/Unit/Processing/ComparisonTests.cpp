#include <cstring>
#include <limits>

#include "ImagingTextures.h"

using namespace imaging;

namespace
{
using Measure = SChannelDifference (*)(const CZORTexture&, const CZORTexture&, const unsigned int&, const unsigned int&,
                                       const unsigned int&);
constexpr Measure kMeasures[] = {GetMaxDifference, GetMeanErrorValue, GetRMSErrorValue, GetStandardDeviation, GetPSNRValue};

std::vector<double> figures(const SChannelDifference& difference)
{
	return {difference.red, difference.green, difference.blue, difference.alpha, difference.all};
}

CZORTexture makeFilled(const Layout& layout, const Shape& shape, const std::vector<double>& values)
{
	CZORTexture texture = makeTexture(layout, shape);
	setElements(texture, values);
	return texture;
}

TEST(Measures, KnownAnswers)
{
	// Signed differences of red are -3 and -1, their absolute mean is 2; of green 4 and 0, and 2. The roots are of 5
	// and 8, the distances from the mean 5 and 3 in red, 2 and 2 in green.
	const double expected[5][5] = {{3, 4, 0, 0, 4},
	                               {2, 2, 0, 0, 1},
	                               {2.2360680, 2.8284271, 0, 0, 2.2504433},
	                               {4.1231056, 2, 0, 0, 1.5307764},
	                               {44.635954, 43.615354, -1, -1, 44.608123}};
	for (const Layout& layoutOfA : kLayouts)
	{
		for (const Layout& layoutOfB : kLayouts)
		{
			const CZORTexture a = makeFilled(layoutOfA, {2, 1, 1}, {10, 20, 30, 40, 0, 4, 0, 0});
			const CZORTexture b = makeFilled(layoutOfB, {2, 1, 1}, {13, 16, 30, 40, 1, 4, 0, 0});
			// The types do not matter, but for the peak of the last.
			for (int m = 0; m < (layoutOfA.channelType == eVT_UnsignedByteNorm ? 5 : 4); ++m)
			{
				const std::vector<double> result = figures(kMeasures[m](a, b, 0, 0, 0));
				for (int i = 0; i < 5; ++i)
				{
					EXPECT_NEAR(result[i], expected[m][i], 4e-6) << m << layoutOfA.channelType << layoutOfB.channelType;
				}
			}
		}
	}
}

TEST(Measures, PeakFollowsTheFirstTexture)
{
	const float expected[4] = {36.089603f, 84.288267f, -std::numeric_limits<float>::infinity(), -12.0412f};
	for (const Layout& layout : kLayouts)
	{
		// The root of the root of 16^2 is 4, against peaks of 255, 65535, 0 and 1.
		const CZORTexture a = makeFilled(layout, {}, {16, 0, 0, 0});
		EXPECT_FLOAT_EQ(GetPSNRValue(a, makeTexture(kByte, {}), 0, 0, 0).red, expected[layout.channelType >> 2]);
	}
}

TEST(Measures, EqualTexturesAndInvalidPairs)
{
	CZORTexture texture = makeTexture(kShort, {6, 5, 2, 2, 2, 6});
	fillLetters(texture);
	CZORTexture smaller = makeTexture(kShort, {6, 5, 2, 1, 1, 1});
	CZORTexture narrower = makeTexture(kShort, {5, 5, 2, 2, 2, 6});
	CZORTexture incomplete = texture;
	incomplete.setNumArrayMembers(3);
	CZORTexture otherLayout = texture;
	otherLayout.setChannelType(eVT_SignedShortNorm);
	const std::vector<double> invalid(5, -1.0);
	for (int m = 0; m < 5; ++m)
	{
		EXPECT_EQ(figures(kMeasures[m](texture, texture, 1, 1, 5)), std::vector<double>(5, m == 4 ? -1.0 : 0.0));
		EXPECT_NE(figures(kMeasures[m](texture, smaller, 0, 0, 0)), invalid);
		EXPECT_EQ(figures(kMeasures[m](texture, smaller, 1, 0, 0)), invalid);
		EXPECT_EQ(figures(kMeasures[m](smaller, texture, 0, 1, 0)), invalid);
		EXPECT_EQ(figures(kMeasures[m](texture, smaller, 0, 0, 1)), invalid);
		EXPECT_EQ(figures(kMeasures[m](texture, narrower, 0, 0, 0)), invalid);
		EXPECT_EQ(figures(kMeasures[m](incomplete, texture, 0, 0, 0)), invalid);
		EXPECT_EQ(figures(kMeasures[m](texture, otherLayout, 0, 0, 0)), invalid);
		EXPECT_EQ(figures(kMeasures[m](CZORTexture(), texture, 0, 0, 0)), invalid);
	}
	EXPECT_EQ(ColourDiff(texture, narrower, 1).getDataPtr(0, 0, 0), nullptr);
	EXPECT_EQ(ToleranceDiff(incomplete, texture, 1).getDataPtr(0, 0, 0), nullptr);
	EXPECT_EQ(BlendDiff(texture, otherLayout, 1).getDataPtr(0, 0, 0), nullptr);
}

TEST(Measures, ReadTheGivenImageToItsEnd)
{
	const Shape shape = {40, 19, 2, 2, 2, 6}; // a level 1 of 20 x 9 x 1, more pixels at level 0 than one run
	CZORTexture a = makeTexture(kInt, shape);
	CZORTexture b = makeTexture(kByte, shape);
	std::vector<double> values(4 * 40 * 19 * 2, 0.0);
	values.back() = 3000000000.0;
	setElements(a, values, 0, 1, 4);
	setElements(b, std::vector<double>(4 * 20 * 9, 2.0), 1, 0, 3);
	EXPECT_EQ(figures(GetMaxDifference(a, b, 0, 1, 4)), (std::vector<double>{0, 0, 0, 3e9, 3e9}));
	EXPECT_EQ(figures(GetMeanErrorValue(a, b, 1, 0, 3)), (std::vector<double>{2, 2, 2, 2, 2}));
	EXPECT_EQ(GetMaxDifference(a, b, 0, 1, 3).all, 0.0f);
}

TEST(ColourDiff, ShowsScaledDifferences)
{
	const double kNaN = std::numeric_limits<double>::quiet_NaN();
	const struct
	{
		Layout layout;
		std::vector<double> a, b;
		float multiplier;
		std::vector<double> expected;
	} cases[] = {{kByte, {7, 8, 9, 10}, {7, 8, 9, 10}, 5, {.5, .5, .5, 1.5}},
	             {kByte, {51, 0, 255, 51}, {0, 102, 0, 0}, 1, {.7f, .9f, 1.5, 1.3f}},
	             {kShort, {13107, 0, 65535, 65535}, {0, 13107, 0, 0}, -2, {.9f, .9f, 1.5, .5}},
	             {kInt, {2147483648.0, 0, 0, 0}, {0, 1073741824.0, 0, 0}, 1, {1.0, .75, .5, 1.5}},
	             {kFloat, {kNaN, -3, .25, .25}, {0, 0, 0, 0}, 1, {.5, 1.5, .75, 1.25}},
	             {kFloat, {1, 2, 3, 4}, {0, 0, 0, 0}, 0, {.5, .5, .5, 1.5}}};
	for (const auto& c : cases)
	{
		const CZORTexture result = ColourDiff(makeFilled(c.layout, {}, c.a), makeFilled(c.layout, {}, c.b), c.multiplier);
		EXPECT_EQ(result.getPixelType().id, ZORStandard32PixelType.id);
		EXPECT_EQ(result.getChannelType(), eVT_SignedFloat);
		const std::vector<double> values = elements(result);
		for (int i = 0; i < 4; ++i)
		{
			EXPECT_NEAR(values[i], c.expected[i], 1e-7);
		}
	}
}

TEST(ColourDiff, PairsImagesOfDifferentCounts)
{
	CZORTexture a = makeTexture(kByte, {20, 20, 1, 3, 2, 1});
	CZORTexture b = makeTexture(kFloat, {20, 20, 1, 2, 3, 6});
	b.setBorder(1, 2, 3);
	std::vector<double> lastPixel(1600, 0.0);
	lastPixel[1596] = 255;
	setElements(a, lastPixel, 0, 1, 0);
	setElements(a, {255}, 1, 1, 0);
	const CZORTexture result = ColourDiff(a, b, 1);
	EXPECT_EQ(result.getNumMIPLevels(), 2u);
	EXPECT_EQ(result.getNumArrayMembers(), 2u);
	EXPECT_EQ(result.getNumFaces(), 1u);
	EXPECT_TRUE(result.hasMetaData(kZORTextureMagic, kMetaKeyBorder));
	EXPECT_EQ(elements(result, 1, 1, 0)[0], 1.5);
	EXPECT_EQ(elements(result, 0, 1, 0)[1592], 0.5);
	EXPECT_EQ(elements(result, 0, 1, 0)[1596], 1.5);
}

TEST(ToleranceDiff, SortsPixelsByTheirLargestDifference)
{
	// Pixels that differ by 0, 1, 10 and 51 of 255 in one channel, and by less than a step of 8 bits.
	const CZORTexture a = makeFilled(kShort, {5, 1, 1}, {0, 0, 0, 0, 0, 257, 0, 0, 0, 0, 0, 2570, 13107, 0, 0, 0, 256, 256, 256, 256});
	const Pixel<unsigned char> black = {0, 0, 0, 255};
	const Pixel<unsigned char> blue = {0, 0, 255, 255};
	const Pixel<unsigned char> red = {255, 0, 0, 255};
	const struct
	{
		float tolerance;
		Pixel<unsigned char> expected[5];
	} cases[] = {{0.0f, {black, red, red, red, black}}, {0.1f, {black, blue, blue, red, black}}, {0.25f, {black, blue, blue, blue, black}}};
	for (const auto& c : cases)
	{
		const CZORTexture result = ToleranceDiff(a, makeTexture(kFloat, {5, 1, 1}), c.tolerance);
		EXPECT_EQ(std::memcmp(result.getDataPtr(0, 0, 0), c.expected, sizeof(c.expected)), 0) << c.tolerance;
	}
}

TEST(BlendDiff, MixesAndWraps)
{
	const struct
	{
		Layout layout;
		std::vector<double> a, b;
		float ratio;
		std::vector<double> expected;
	} cases[] = {{kByte, {1, 100, 254, 255}, {5, 6, 7, 8}, 1, {1, 100, 254, 255}},
	             {kByte, {1, 100, 254, 255}, {5, 6, 7, 8}, 2, {1, 100, 254, 255}},
	             {kByte, {1, 100, 254, 255}, {5, 6, 7, 8}, -1, {5, 6, 7, 8}},
	             {kByte, {3, 101, 200, 255}, {0, 4, 101, 0}, .5, {1, 52, 150, 127}},
	             {kShort, {65535, 256, 257, 0}, {0, 0, 0, 0}, 1, {255, 0, 1, 0}},
	             {kInt, {4294967295.0, 2147483648.0, 0, 0}, {0, 0, 0, 0}, 1, {255, 127, 0, 0}},
	             {kFloat, {2, -1, 3.4e38, std::numeric_limits<double>::quiet_NaN()}, {0, 0, 0, 0}, 1, {254, 1, 255, 0}}};
	for (const auto& c : cases)
	{
		EXPECT_EQ(elements(BlendDiff(makeFilled(c.layout, {}, c.a), makeFilled(c.layout, {}, c.b), c.ratio)), c.expected);
	}
}

TEST(BlendDiff, WalksInStorageOrder)
{
	CZORTexture a = makeTexture(kByte, {2, 2, 1, 2, 1, 1});
	CZORTexture b = makeTexture(kFloat, {2, 2, 1, 1, 2, 1});
	setLetters(a, "abcd");
	setLetters(a, "e", 1);
	const CZORTexture result = BlendDiff(a, b, 1);
	EXPECT_EQ(result.getTextureSize(), 4u);
	EXPECT_EQ(letters(result), "abcd");
	// Level 1 of this result takes its pixel from the second member of the first texture's level 0.
	CZORTexture members = makeTexture(kByte, {2, 2, 1, 2, 2, 1});
	setLetters(members, "fghi", 0, 1, 0);
	EXPECT_EQ(letters(BlendDiff(members, a, 1), 1), "f");
}
} // namespace
