#include <gtest/gtest.h>
#include <vector>

#include "ProcessingTestSupport.h"
#include "Resampling.h"

using namespace zortexture;
using Byte4 = Pixel<unsigned char>;

namespace
{
std::vector<Byte4> ramp(std::size_t count)
{
	std::vector<Byte4> pixels(count);
	for (std::size_t i = 0; i < count; ++i)
	{
		pixels[i] = {static_cast<unsigned char>(i), static_cast<unsigned char>(i * 37), static_cast<unsigned char>(i * 101),
		             static_cast<unsigned char>(~i)};
	}
	return pixels;
}

TEST(StandardLayout, FourPairsOfLayoutAndType)
{
	const PixelType layouts[] = {ZORStandard8PixelType, ZORStandard16PixelType, ZORStandard32PixelType,
	                             PixelType('r', 'g', 'b', 0, 8, 8, 8, 0), PixelType(ePF_TesselI_2bpp_RGB)};
	for (std::size_t layout = 0; layout < std::size(layouts); ++layout)
	{
		for (unsigned int type = 0; type <= eVT_NumVarTypes; ++type)
		{
			const bool expected = (layout == 0 && type == 0) || (layout == 1 && type == 4) || (layout == 2 && (type == 8 || type == 12));
			EXPECT_EQ(isStandardPixelType(layouts[layout], static_cast<EZORTVariableType>(type)), expected) << layout << " " << type;
		}
	}
}

TEST(Resize, KeepsMIPLevelsOnlyAtTheSameSize)
{
	CZORTexture texture(standardHeader<unsigned char>(4, 4, 1, 3), ramp(21).data());
	texture.setBorder(1, 1, 1);
	const UnchangedGuard guard(texture, 84);
	EXPECT_TRUE(Resize(texture, 4, 4, 1, eResizeCubic));
	guard.expectUnchanged();

	EXPECT_TRUE(Resize(texture, 4, 8, 1, eResizeNearest));
	EXPECT_EQ(texture.getNumMIPLevels(), 1u);
	EXPECT_EQ(texture.getDataSize(), 128u);
}

TEST(Resize, CarriesTheHeaderAndScalesTheBorder)
{
	struct
	{
		bool hasBorder;
		unsigned int border[3];
		unsigned int expected[3];
	} const cases[] = {
	    {true, {2, 3, 1}, {1, 7, 3}},           // 6 * 2 / 8, 10 * 3 / 4, 3 * 1 / 1
	    {true, {0x80000000u, 0, 0}, {0, 0, 0}}, // 6 * 2^31 wraps to 0
	    {true, {0x2AAAAAABu, 0, 0}, {0, 0, 0}}, // 6 * 0x2AAAAAAB wraps to 2
	    {false, {0, 0, 0}, {0, 0, 0}},
	};
	for (const auto& c : cases)
	{
		CZORTexture texture(standardHeader<unsigned char>(8, 4), ramp(32).data());
		texture.setColourSpace(eCS_sRGB);
		texture.setIsPreMultiplied(true);
		texture.setBumpMap(2.5f, "xyz");
		if (c.hasBorder)
		{
			texture.setBorder(c.border[0], c.border[1], c.border[2]);
		}
		ASSERT_TRUE(Resize(texture, 6, 10, 3, eResizeLinear));
		EXPECT_EQ(texture.getWidth(), 6u);
		EXPECT_EQ(texture.getHeight(), 10u);
		EXPECT_EQ(texture.getDepth(), 3u);
		EXPECT_EQ(texture.getColourSpace(), eCS_sRGB);
		EXPECT_TRUE(texture.isPreMultiplied());
		EXPECT_EQ(texture.getBumpMapOrder(), "xyz");
		EXPECT_TRUE(texture.hasMetaData(kZORTextureMagic, kMetaKeyBorder));
		unsigned int border[3] = {9, 9, 9};
		texture.getBorder(border[0], border[1], border[2]);
		EXPECT_TRUE(std::equal(border, border + 3, c.expected)) << border[0] << " " << border[1] << " " << border[2];
	}
}

TEST(Resize, ReachesEveryArrayMemberAndFace)
{
	// Twelve images of 2 x 1 with two levels; the levels below are skipped when reading.
	std::vector<Byte4> pixels;
	for (unsigned char i = 0; i < 24; ++i)
	{
		pixels.push_back({i, 0, 0, 255});
	}
	pixels.resize(36);
	CZORTexture texture(standardHeader<unsigned char>(2, 1, 1, 2, 2, 6), pixels.data());
	ASSERT_TRUE(Resize(texture, 1, 1, 1, eResizeNearest));
	const std::vector<Byte4> result = pixelsOfTexture<unsigned char>(texture);
	ASSERT_EQ(result.size(), 12u);
	for (unsigned char i = 0; i < 12; ++i)
	{
		EXPECT_EQ(result[i], (Byte4{static_cast<unsigned char>(i * 2), 0, 0, 255}));
	}
}

TEST(Resize, RefusalsChangeNothing)
{
	expectRefusesUnusableTextures([](CZORTexture& texture) { return Resize(texture, 2, 2, 1, eResizeNearest); });

	CZORTexture texture(standardHeader<unsigned char>(4, 4), ramp(16).data());
	const UnchangedGuard guard(texture, 64);
	// No side may be 0, and the result must be countable in 32 bits: these sizes wrap to 0, 262144 and 16 bytes.
	const unsigned int sizes[][3] = {{0, 4, 1}, {4, 0, 1}, {4, 4, 0}, {65536, 65536, 1}, {65536, 65537, 1}, {0x40000001u, 4, 1}};
	for (const auto& size : sizes)
	{
		for (const EResizeMode mode : {eResizeNearest, eResizeLinear, eResizeCubic})
		{
			EXPECT_FALSE(Resize(texture, size[0], size[1], size[2], mode));
			guard.expectUnchanged();
		}
	}
}

TEST(SteppedStretchImage, UsesItsOwnBuffers)
{
	std::vector<Byte4> source = ramp(8 * 3);
	// The image may be its own destination, and equal sizes copy.
	std::vector<Byte4> inPlace = ramp(24);
	std::vector<Byte4> apart(6);
	ASSERT_TRUE(SteppedStretchImage(source.data(), apart.data(), 8, 3, 1, 2, 3, 1, eResizeLinear));
	ASSERT_TRUE(SteppedStretchImage(inPlace.data(), inPlace.data(), 8, 3, 1, 2, 3, 1, eResizeLinear));
	inPlace.resize(6);
	EXPECT_EQ(inPlace, apart);
	ASSERT_TRUE(SteppedStretchImage(apart.data(), inPlace.data(), 2, 3, 1, 2, 3, 1, eResizeCubic));
	EXPECT_EQ(inPlace, apart);
	// A row becomes a column without room for their product.
	std::vector<Byte4> row(1u << 20, {7, 7, 7, 7});
	std::vector<Byte4> column(1u << 20);
	ASSERT_TRUE(SteppedStretchImage(row.data(), column.data(), 1u << 20, 1, 1, 1, 1u << 20, 1, eResizeNearest));
	EXPECT_EQ(column, row);
}

TEST(StretchImage, RefusesAndIgnores)
{
	std::vector<Byte4> image = ramp(4);
	std::vector<Byte4> untouched(4, {1, 2, 3, 4});
	const std::vector<Byte4> before = untouched;
	Byte4* const none = nullptr;
	EXPECT_FALSE(StretchImage(none, untouched.data(), 2, 2, 1, 1, 1, 1, eResizeLinear));
	EXPECT_FALSE(StretchImage(image.data(), none, 2, 2, 1, 1, 1, 1, eResizeLinear));
	EXPECT_FALSE(SteppedStretchImage(none, untouched.data(), 2, 2, 1, 1, 1, 1, eResizeLinear));
	EXPECT_FALSE(SteppedStretchImage(image.data(), none, 2, 2, 1, 1, 1, 1, eResizeLinear));
	EXPECT_FALSE(StretchImage(image.data(), untouched.data(), 0, 2, 1, 1, 1, 1, eResizeCubic));
	EXPECT_FALSE(SteppedStretchImage(image.data(), untouched.data(), 2, 0, 1, 4, 1, 1, eResizeCubic));
	EXPECT_TRUE(StretchImage(image.data(), untouched.data(), 2, 2, 1, 2, 0, 1, eResizeCubic));
	EXPECT_TRUE(SteppedStretchImage(image.data(), untouched.data(), 2, 2, 1, 0, 4, 1, eResizeCubic));
	EXPECT_TRUE(StretchImage(image.data(), untouched.data(), 2, 2, 1, 2, 2, 1, static_cast<EResizeMode>(3)));
	EXPECT_EQ(untouched, before);
}
} // namespace
