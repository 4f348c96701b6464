#include "FormatNames.h"

#include <gtest/gtest.h>

#include "FormatCapabilities.h"
#include "Layouts.h"

using namespace zortexture;
using namespace zortex;

namespace
{
struct LayoutCase
{
	const char* name;
	PixelType pixelType;
	EZORTVariableType type;
	/// What the layout is called; null for the name itself.
	const char* canonical;
};

class LayoutNames : public testing::TestWithParam<LayoutCase>
{
};

TEST_P(LayoutNames, AreReadAndWritten)
{
	const LayoutCase& expected = GetParam();
	const std::optional<NamedFormat> format = parseFormat(expected.name);
	ASSERT_TRUE(format.has_value());
	EXPECT_EQ(format->pixelType.id, expected.pixelType.id);
	EXPECT_EQ(format->type, expected.type);
	EXPECT_EQ(layoutProblem(format->pixelType, format->type), "");

	const char* canonical = expected.canonical != nullptr ? expected.canonical : expected.name;
	EXPECT_EQ(formatName(format->pixelType, format->type), canonical);
	EXPECT_EQ(parseFormat(canonical)->pixelType.id, expected.pixelType.id);
	EXPECT_EQ(parseFormat(canonical)->type, expected.type);
}

INSTANTIATE_TEST_SUITE_P(
    All, LayoutNames,
    testing::Values(LayoutCase{"rgba8888", ZORStandard8PixelType, eVT_UnsignedByteNorm, nullptr},
                    LayoutCase{"RGBA8", ZORStandard8PixelType, eVT_UnsignedByteNorm, "rgba8888"},
                    LayoutCase{"r8", PixelType('r', 0, 0, 0, 8, 0, 0, 0), eVT_UnsignedByteNorm, nullptr},
                    LayoutCase{"rgb332", PixelType('r', 'g', 'b', 0, 3, 3, 2, 0), eVT_UnsignedByteNorm, nullptr},
                    LayoutCase{"rgb565", PixelType('r', 'g', 'b', 0, 5, 6, 5, 0), eVT_UnsignedShortNorm, nullptr},
                    LayoutCase{"rgb5.6.5", PixelType('r', 'g', 'b', 0, 5, 6, 5, 0), eVT_UnsignedShortNorm, "rgb565"},
                    LayoutCase{"argb1555", PixelType('a', 'r', 'g', 'b', 1, 5, 5, 5), eVT_UnsignedShortNorm, nullptr},
                    LayoutCase{"rg16", PixelType('r', 'g', 0, 0, 16, 16, 0, 0), eVT_UnsignedShortNorm, nullptr},
                    LayoutCase{"rg1616", PixelType('r', 'g', 0, 0, 16, 16, 0, 0), eVT_UnsignedShortNorm, "rg16"},
                    LayoutCase{"rg32", PixelType('r', 'g', 0, 0, 32, 32, 0, 0), eVT_UnsignedIntegerNorm, nullptr},
                    LayoutCase{"la44", PixelType('l', 'a', 0, 0, 4, 4, 0, 0), eVT_UnsignedByteNorm, nullptr},
                    LayoutCase{"rg32f", PixelType('r', 'g', 0, 0, 32, 32, 0, 0), eVT_SignedFloat, nullptr},
                    LayoutCase{"rgba16f", ZORStandard16PixelType, eVT_SignedFloat, nullptr},
                    LayoutCase{"abgr2.10.10.10", PixelType('a', 'b', 'g', 'r', 2, 10, 10, 10), eVT_UnsignedIntegerNorm, nullptr},
                    LayoutCase{"bgr10.11.11", PixelType('b', 'g', 'r', 0, 10, 11, 11, 0), eVT_UnsignedFloat, nullptr},
                    LayoutCase{"bgr10.11.11f", PixelType('b', 'g', 'r', 0, 10, 11, 11, 0), eVT_UnsignedFloat, "bgr10.11.11"}));

TEST(FormatNames, NonsenseNamesNothing)
{
	for (const char* name : {"", "rgb", "8", "rgbaa88888", "rgb8.8", "rgb8.8.8.8", "rgb8..8", "rgb888.", "rgb0", "rgb-8", "q8", "rgb8 ",
	                         "rgbf", "f", "etc3", "tessel1"})
	{
		EXPECT_FALSE(parseFormat(name).has_value()) << name;
	}
}

TEST(FormatNames, CompressedFormatsHaveOneNameEach)
{
	for (unsigned int id = 0; id < ePF_NumCompressedPFs; ++id)
	{
		const std::string name = formatName(PixelType(id), eVT_UnsignedByteNorm);
		ASSERT_TRUE(parseFormat(name).has_value()) << name;
		EXPECT_EQ(parseFormat(name)->pixelType.id, id) << name;
	}
	EXPECT_EQ(formatName(PixelType(ePF_NumCompressedPFs), eVT_UnsignedByteNorm).substr(0, 2), "0x");
}

TEST(FormatNames, ChannelTypesTakeTheirWidthFromTheFormat)
{
	EXPECT_EQ(parseChannelType("snorm16", ZORStandard8PixelType), eVT_SignedShortNorm);
	EXPECT_EQ(parseChannelType("SNorm", ZORStandard8PixelType), eVT_SignedByteNorm);
	EXPECT_EQ(parseChannelType("snorm", PixelType(ePF_EAC_R11)), eVT_SignedShortNorm);
	EXPECT_EQ(parseChannelType("uint", PixelType('r', 'g', 'b', 0, 5, 6, 5, 0)), eVT_UnsignedShort);
	EXPECT_EQ(parseChannelType("float", ZORStandard32PixelType), eVT_SignedFloat);
	EXPECT_FALSE(parseChannelType("unorm9", ZORStandard8PixelType).has_value());
	EXPECT_FALSE(parseChannelType("", ZORStandard8PixelType).has_value());
}
} // namespace
