#include "ImagingTextures.h"

using namespace imaging;

namespace
{
/// A texture of heights 0 and 1 (the element type's largest value), from a string of '0' and '1'; g, b and a are 9.
CZORTexture makeHeights(const Layout& layout, const Shape& size, const std::string& heights)
{
	const double largest[] = {255, 65535, 4294967295.0, 3.4028235e38};
	CZORTexture texture = makeTexture(layout, size);
	std::vector<double> values;
	for (const char height : heights)
	{
		values.insert(values.end(), {height == '1' ? largest[layout.channelType >> 2] : 0, 9, 9, 9});
	}
	setElements(texture, values);
	return texture;
}

// What a difference of 1 (and of 0 in the other direction) packs to: 0.5 plus or minus half of 1 / sqrt(2).
constexpr double kLow = 0.14644661;
constexpr double kHigh = 0.85355339;

TEST(GenerateNormalMap, KnownAnswers)
{
	const struct
	{
		Shape size;
		const char* heights;
		float scale;
		const char* order;
		std::vector<double> expected;
	} cases[] = {
	    // Flat.
	    {{2, 2, 1}, "1111", -7.0f, "xyz", {.5, .5, 1, 1, .5, .5, 1, 1, .5, .5, 1, 1, .5, .5, 1, 1}},
	    // A ridge in columns, then in rows; the step at the seam shows at the other edge.
	    {{3, 1, 1}, "010", 1.0f, "xyz", {kLow, .5, kHigh, 1, .5, .5, 1, 1, kHigh, .5, kHigh, 1}},
	    {{1, 3, 1}, "010", 1.0f, "xyz", {.5, kLow, kHigh, 1, .5, .5, 1, 1, .5, kHigh, kHigh, 1}},
	    {{3, 1, 1}, "010", -1.0f, "xyz", {kHigh, .5, kHigh, 1, .5, .5, 1, 1, kLow, .5, kHigh, 1}},
	    // The rows of the second slice wrap to the first one, upwards and downwards.
	    {{1, 2, 2}, "0100", 1.0f, "xyz", {.5, .5, 1, 1, .5, .5, 1, 1, .5, kHigh, kHigh, 1, .5, .5, 1, 1}},
	    {{1, 2, 2}, "1000", 1.0f, "xyz", {.5, .5, 1, 1, .5, .5, 1, 1, .5, .5, 1, 1, .5, kLow, kHigh, 1}},
	    // Orders: reversed, with height, upper case, repeated letters, unknown ones, more than four, none.
	    {{3, 1, 1}, "100", 1.0f, "zyx", {1, .5, .5, 1, kHigh, .5, kHigh, 1, kHigh, .5, kLow, 1}},
	    {{3, 1, 1}, "110", 1.0f, "XYZH", {kLow, .5, kHigh, 1, kHigh, .5, kHigh, 1, .5, .5, 1, 0}},
	    {{3, 1, 1}, "010", 1.0f, "xhxq", {1, 0, kLow, 1, 1, 1, .5, 1, 1, 0, kHigh, 1}},
	    {{1, 1, 1}, "0", 1.0f, "qqqqh", {1, 1, 1, 1}},
	    {{1, 1, 1}, "0", 1.0f, "", {1, 1, 1, 1}},
	};
	for (const Layout& layout : kLayouts)
	{
		for (const auto& c : cases)
		{
			CZORTexture texture = makeHeights(layout, c.size, c.heights);
			EXPECT_TRUE(GenerateNormalMap(texture, c.scale, c.order));
			EXPECT_EQ(texture.getChannelType(), eVT_SignedFloat);
			EXPECT_EQ(texture.getBumpMapScale(), c.scale);
			const std::vector<double> result = elements(texture);
			for (std::size_t i = 0; i < c.expected.size(); ++i)
			{
				EXPECT_NEAR(result[i], c.expected[i], 1e-7) << c.heights << " " << c.order << " " << i;
			}
		}
	}
}

TEST(GenerateNormalMap, MakesEachLevelFromItsOwnHeights)
{
	CZORTexture texture = makeTexture(kShort, {6, 1, 1, 2, 2, 1});
	setElements(texture, {0, 0, 0, 0, 65535, 0, 0, 0, 0, 0, 0, 0}, 1, 1, 0); // the other images are flat
	EXPECT_TRUE(GenerateNormalMap(texture, 1.0f, "x"));
	EXPECT_EQ(elements(texture, 1, 0, 0)[0], 0.5);
	EXPECT_NEAR(elements(texture, 1, 1, 0)[0], kLow, 1e-7);
	EXPECT_NEAR(elements(texture, 1, 1, 0)[8], kHigh, 1e-7);
}

TEST(GenerateNormalMap, OrdinaryFloatHeightsAreFlat)
{
	CZORTexture texture = makeTexture(kFloat, {3, 1, 1});
	setElements(texture, {0, 0, 0, 0, 1000, 0, 0, 0, 0, 0, 0, 0});
	EXPECT_TRUE(GenerateNormalMap(texture, 10.0f, "xyz"));
	EXPECT_EQ(elements(texture), (std::vector<double>{.5, .5, 1, 1, .5, .5, 1, 1, .5, .5, 1, 1}));
}

TEST(GenerateNormalMap, ScaleZeroFailsAndReplacesTheTexture)
{
	CZORTexture texture = makeHeights(kByte, {2, 1, 1}, "01");
	EXPECT_FALSE(GenerateNormalMap(texture, 0.0f, "XyZHq"));
	EXPECT_EQ(texture.getPixelType().id, ZORStandard32PixelType.id);
	EXPECT_EQ(texture.getChannelType(), eVT_SignedFloat);
	EXPECT_EQ(elements(texture), std::vector<double>(8, 0.0));
	EXPECT_TRUE(texture.isBumpMap());
	EXPECT_EQ(texture.getBumpMapOrder(), "xyzh");
}

TEST(CreateNormalMap, KnowsLowerCaseOnlyAndADefaultOrder)
{
	CZORTexture source = makeHeights(kByte, {2, 1, 1}, "00");
	CZORTexture result = makeTexture(kFloat, {2, 1, 1});
	auto* heights = pixelsOf<unsigned char>(source, 0, 0, 0);
	auto* normals = pixelsOf<float>(result, 0, 0, 0);
	EXPECT_TRUE(CreateNormalMap(heights, normals, 2, 1, 1, 1.0f, "XYZH"));
	EXPECT_EQ(elements(result), std::vector<double>(8, 1.0));
	EXPECT_TRUE(CreateNormalMap(heights, normals, 2, 1, 1, 1.0f, nullptr));
	EXPECT_EQ(elements(result), (std::vector<double>{.5, .5, 1, 1, .5, .5, 1, 1}));
}
} // namespace
