#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

#include "PixelLayouts.h"
#include "Transcode.h"

using namespace zortexture;

namespace
{
using Bytes = std::vector<unsigned char>;

/// Red channels of an image in rows; the other channels are 0.
Bytes ditheredReds(const Bytes& reds, PixelType target, unsigned int width, unsigned int height, unsigned int depth)
{
	Bytes pixels(reds.size() * 4);
	for (std::size_t i = 0; i < reds.size(); ++i)
	{
		pixels[i * 4] = reds[i];
	}
	Dither(pixels.data(), target, width, height, depth);
	Bytes result;
	for (std::size_t i = 0; i < reds.size(); ++i)
	{
		result.push_back(pixels[i * 4]);
	}
	return result;
}
} // namespace

TEST(Dither, SpreadsTheErrorRightAndBelow)
{
	const PixelType four = layout("rgba4.4.4.4");
	const PixelType one = layout("r1");
	// 100 becomes 102 and gives its right neighbour -1; 199 becomes 204 and gives the pixel below -1.
	EXPECT_EQ(ditheredReds({100, 200, 50, 10}, four, 2, 2, 1), (Bytes{102, 204, 51, 0}));
	// The last pixel has received -16 from the left, which it cannot take, before +12 from above.
	EXPECT_EQ(ditheredReds({0, 100, 192, 0}, one, 2, 2, 1), (Bytes{0, 50, 224, 6}));
	// A quarter goes diagonally: 100 becomes 50; +25 right, +12 below and below right; 37 becomes 18 and gives +9 right.
	EXPECT_EQ(ditheredReds({100, 0, 25, 40}, one, 2, 2, 1), (Bytes{50, 12, 18, 32}));
	// Slices are images of their own, and rows do not wrap.
	EXPECT_EQ(ditheredReds({100, 100, 100, 100}, one, 1, 1, 4), (Bytes{50, 50, 50, 50}));
	EXPECT_EQ(ditheredReds({100, 0, 100, 0}, one, 2, 1, 2), (Bytes{50, 12, 50, 12}));
	Dither(nullptr, four, 1, 1, 1);
}

TEST(Dither, DepthsFollowTheTarget)
{
	struct
	{
		PixelType target;
		unsigned int depths[4];
	} const cases[] = {
	    {ePF_TesselI_2bpp_RGB, {5, 5, 5, 0}},
	    {ePF_TesselI_4bpp_RGBA, {4, 4, 4, 3}},
	    {ePF_TesselII_4bpp, {4, 4, 4, 3}},
	    {ePF_ETC1, {4, 4, 4, 4}},
	    {ePF_DXT1, {5, 6, 5, 1}},
	    {ePF_DXT4, {5, 6, 5, 8}},
	    {ePF_BC5, {8, 8, 0, 0}},
	    {ePF_UYVY, {8, 8, 8, 0}},
	    {ePF_BW1bpp, {1, 1, 1, 0}},
	    {ePF_R9G9B9E5, {14, 14, 14, 0}},
	    {ePF_ETC2_RGB, {4, 4, 4, 0}},
	    {ePF_ETC2_RGBA, {4, 4, 4, 4}},
	    {ePF_ETC2_RGB_A1, {5, 5, 5, 1}},
	    {ePF_EAC_RG11, {11, 11, 0, 0}},
	    {ePF_ASTC_4x4, {0, 0, 0, 0}},
	    {layout("rgb5.6.5"), {5, 6, 5, 0}},
	    {layout("xbgr1.5.4.3"), {3, 4, 5, 1}},
	    {layout("lgr6.5.5"), {5, 5, 6, 0}},
	    {layout("gl5.3"), {3, 3, 3, 0}},
	    {layout("ai4.4"), {4, 4, 4, 4}},
	};
	// 94 cut to each depth.
	const unsigned char reduced[9] = {94, 47, 87, 75, 85, 90, 93, 94, 94};
	for (const auto& test : cases)
	{
		Bytes pixel(4, 94);
		Dither(pixel.data(), test.target, 1, 1, 1);
		for (unsigned int channel = 0; channel < 4; ++channel)
		{
			EXPECT_EQ(pixel[channel], reduced[std::min(test.depths[channel], 8u)]) << std::hex << test.target.id << " channel " << channel;
		}
	}
}
