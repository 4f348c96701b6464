#include "ImagingTextures.h"

using namespace imaging;

namespace
{
constexpr EResizeMode kModes[] = {eResizeNearest, eResizeLinear, eResizeCubic};

TEST(GenerateMIPMaps, CountsLevels)
{
	const struct
	{
		Shape size;
		unsigned int requested, levels;
	} cases[] = {{{1, 1, 1}, kFullMIPChain, 1},
	             {{2, 1, 1}, kFullMIPChain, 2},
	             {{256, 1, 1}, kFullMIPChain, 9},
	             {{5, 3, 1}, kFullMIPChain, 3},
	             {{4, 4, 4}, kFullMIPChain, 3},
	             {{3, 2, 9}, kFullMIPChain, 4},
	             {{4, 4, 1}, 20, 20},
	             {{4, 2, 1}, 1, 1},
	             {{3, 5, 2}, 300, 300}};
	for (const Layout& layout : kLayouts)
	{
		for (const auto& c : cases)
		{
			for (const EResizeMode mode : kModes)
			{
				CZORTexture texture = makeTexture(layout, c.size);
				EXPECT_TRUE(GenerateMIPMaps(texture, mode, c.requested));
				EXPECT_EQ(texture.getNumMIPLevels(), c.levels);
				EXPECT_TRUE(texture.isDataComplete());
			}
		}
	}
}

TEST(GenerateMIPMaps, MakesEachLevelFromTheOneBefore)
{
	CZORTexture texture = makeTexture(kByte, {4, 4, 1, 3});
	std::vector<double> values;
	for (const double grey : {0, 1, 20, 30, 2, 4, 40, 53, 100, 200, 9, 9, 50, 101, 9, 8})
	{
		values.insert(values.end(), {grey, grey, 0, 255});
	}
	setElements(texture, values);
	setLetters(texture, "a", 1); // replaced
	EXPECT_TRUE(GenerateMIPMaps(texture, eResizeLinear));
	EXPECT_EQ(elements(texture), values);
	// Means of four, truncated: 7 / 4, 143 / 4, 451 / 4, 35 / 4. A level of one pixel takes the position 0.
	EXPECT_EQ(elements(texture, 1), (std::vector<double>{1, 1, 0, 255, 35, 35, 0, 255, 112, 112, 0, 255, 8, 8, 0, 255}));
	EXPECT_EQ(elements(texture, 2), (std::vector<double>{1, 1, 0, 255}));
}

TEST(GenerateMIPMaps, TakesEveryImageAndKeepsMetadata)
{
	CZORTexture texture = makeTexture(kShort, {6, 5, 1, 2, 2, 6});
	fillLetters(texture);
	texture.setBorder(1, 2, 3);
	const CZORTexture before = texture;
	EXPECT_TRUE(GenerateMIPMaps(texture, eResizeNearest));
	EXPECT_TRUE(texture.hasMetaData(kZORTextureMagic, kMetaKeyBorder));
	for (unsigned int image = 0; image < 12; ++image)
	{
		const std::string top = letters(before, 0, image / 6, image % 6);
		EXPECT_EQ(letters(texture, 0, image / 6, image % 6), top);
		// Columns 0, 2, 4 of rows 0 and trunc(2.5).
		EXPECT_EQ(letters(texture, 1, image / 6, image % 6), (std::string{top[0], top[2], top[4], top[12], top[14], top[16]}));
	}
}

TEST(GenerateMIPMaps, ConstantsStay)
{
	for (const Layout& layout : {kByte, kShort})
	{
		for (const double value : {1.0, 77.0, 128.0, 254.0, 255.0})
		{
			for (const EResizeMode mode : kModes)
			{
				CZORTexture texture = makeTexture(layout, {13, 6, 3});
				setElements(texture, {value});
				EXPECT_TRUE(GenerateMIPMaps(texture, mode));
				for (unsigned int level = 1; level < texture.getNumMIPLevels(); ++level)
				{
					for (const double element : elements(texture, level))
					{
						// Linear weights may fall short of 1 together, and each level is truncated.
						EXPECT_LE(element, value);
						EXPECT_GE(element, mode == eResizeLinear ? value - level : value) << mode << " " << level;
					}
				}
			}
		}
	}
}

TEST(ColourMIPMaps, TintsLevelsInTurn)
{
	const struct
	{
		Layout layout;
		std::vector<double> source;
		double grey;
	} cases[] = {{kByte, {10, 20, 31, 7}, 20},
	             {kByte, {255, 255, 255, 7}, 255},
	             {kShort, {65535, 65535, 65534, 7}, 65534},
	             {kInt, {9, 9, 11, 7}, 9},
	             // The sum wraps to 2^32 - 3, which is 2^32 as a float; its third lies at 11184810.67 steps of 128.
	             {kInt, {4294967295.0, 4294967295.0, 4294967295.0, 7}, 11184811.0 * 128},
	             {kFloat, {10, 20, 31, 7}, 61.0f / 3.0f}};
	const std::vector<double> tints[] = {{0, 1, 0}, {0, 0, 1}, {0, 1, 1}, {1, 0, 1}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
	for (const auto& c : cases)
	{
		CZORTexture texture = makeTexture(c.layout, {256, 1, 3, 9, 1, 6});
		forEachImage(texture, [&](unsigned int level, unsigned int, unsigned int face) { setElements(texture, c.source, level, 0, face); });
		const std::vector<double> top = elements(texture, 0, 0, 5);
		EXPECT_TRUE(ColourMIPMaps(texture));
		EXPECT_EQ(elements(texture, 0, 0, 5), top);
		for (unsigned int level = 1; level < 9; ++level)
		{
			const std::vector<double>& tint = tints[level - 1];
			CZORTexture expected = makeTexture(c.layout, {texture.getWidth(level)});
			setElements(expected, {tint[0] * c.grey, tint[1] * c.grey, tint[2] * c.grey, 7});
			EXPECT_EQ(elements(texture, level, 0, 5), elements(expected)) << level;
		}
	}
}
} // namespace
