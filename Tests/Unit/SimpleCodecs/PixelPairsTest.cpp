#include <climits>
#include <gtest/gtest.h>
#include <vector>

#include "SimpleCodecs.h"

using namespace zortexture;
using Bytes = std::vector<unsigned char>;

namespace
{
using PairCodec = unsigned int (*)(const void*, void*, const unsigned int&, const unsigned int&, const EZORTPixelFormat&);

struct PairFormat
{
	EZORTPixelFormat format;
	PairCodec compress;
	PairCodec decompress;
	EZORTPixelFormat foreign; ///< a format of the other kind
};
const PairFormat kFormats[] = {
    {ePF_RGBG8888, RGBGCompress, RGBGDecompress, ePF_UYVY},
    {ePF_GRGB8888, RGBGCompress, RGBGDecompress, ePF_YUY2},
    {ePF_UYVY, YUVCompress, YUVDecompress, ePF_RGBG8888},
    {ePF_YUY2, YUVCompress, YUVDecompress, ePF_GRGB8888},
};

TEST(PixelPairs, KnownWords)
{
	const Bytes pixels = {10, 20, 30, 40, 50, 60, 70, 80};
	// Y of the first pixel: 2.57 + 10.08 + 2.94 + 16.5 = 32.09; of the second: 12.85 + 30.24 + 6.86 + 16.5 = 66.45.
	// U of the first: -1.48 - 5.82 + 13.17 + 128.5 = 134.37; V of the second: 21.95 - 22.08 - 4.97 + 128.5 = 123.4.
	const Bytes words[] = {{10, 20, 30, 60}, {20, 10, 60, 30}, {134, 32, 123, 66}, {32, 134, 66, 123}};
	for (int i = 0; i < 4; ++i)
	{
		const PairFormat& f = kFormats[i];
		Bytes coded(4);
		EXPECT_EQ(f.compress(pixels.data(), coded.data(), 2, 1, f.format), 4u);
		EXPECT_EQ(coded, words[i]) << f.format;
	}

	// Y 32 and 66, U 134, V 123 decode by hand: 298 * 32 - 4640 = 4896, and 298 * 66 - 4640 = 15028;
	// r adds 409 * -5 = -2045, g -600 + 1040 = 440, b 517 * 6 = 3102; all over 256.
	const Bytes decodedYUV = {11, 20, 31, 255, 50, 60, 70, 255};
	const Bytes decodedRGBG = {10, 20, 30, 255, 10, 60, 30, 255};
	for (int i = 0; i < 4; ++i)
	{
		const PairFormat& f = kFormats[i];
		Bytes decoded(8);
		EXPECT_EQ(f.decompress(words[i].data(), decoded.data(), 2, 1, f.format), 8u);
		EXPECT_EQ(decoded, i < 2 ? decodedRGBG : decodedYUV) << f.format;
	}
}

/// Words are counted width / 2 a row in both directions.
TEST(PixelPairs, OddWidths)
{
	for (const PairFormat& f : kFormats)
	{
		constexpr unsigned int kWidth = 3;
		constexpr unsigned int kHeight = 3;
		Bytes pixels;
		for (unsigned int i = 0; i < kWidth * kHeight * 4; ++i)
		{
			pixels.push_back(static_cast<unsigned char>(i * 7));
		}
		// One word a row; the last column has no pair.
		Bytes coded(kHeight * 4 + 1, 99);
		EXPECT_EQ(f.compress(pixels.data(), coded.data(), kWidth, kHeight, f.format), kWidth * kHeight * 2);
		EXPECT_EQ(coded.back(), 99);
		coded.pop_back();
		for (unsigned int y = 0; y < kHeight; ++y)
		{
			Bytes row(4);
			f.compress(&pixels[y * kWidth * 4], row.data(), 2, 1, f.format);
			EXPECT_TRUE(std::equal(row.begin(), row.end(), &coded[y * 4]));
		}

		// The last pixel of a row is the first one of the next row's word, and nothing follows the last row.
		coded.insert(coded.end(), {1, 2, 3, 4});
		Bytes decoded(kWidth * kHeight * 4);
		EXPECT_EQ(f.decompress(coded.data(), decoded.data(), kWidth, kHeight, f.format), kWidth * kHeight * 4);
		for (unsigned int y = 0; y < kHeight; ++y)
		{
			Bytes two(2 * 2 * 4);
			f.decompress(&coded[y * 4], two.data(), 4, 1, f.format);
			EXPECT_TRUE(std::equal(two.begin(), two.begin() + 12, &decoded[y * kWidth * 4])) << f.format << " row " << y;
		}

		// A single column has no pairs at all, and decodes from one word.
		Bytes untouched(1, 99);
		EXPECT_EQ(f.compress(pixels.data(), untouched.data(), 1, 4, f.format), 8u);
		EXPECT_EQ(untouched[0], 99);
		Bytes column(4 * 4);
		EXPECT_EQ(f.decompress(coded.data(), column.data(), 1, 4, f.format), 16u);
		EXPECT_TRUE(std::equal(column.begin(), column.begin() + 4, column.begin() + 12));
	}
}

TEST(PixelPairs, Refusals)
{
	for (const PairFormat& f : kFormats)
	{
		Bytes pixels(8, 1);
		Bytes coded(4, 2);
		for (const EZORTPixelFormat format : {f.foreign, ePF_ETC1, ePF_NumCompressedPFs})
		{
			EXPECT_EQ(f.compress(pixels.data(), coded.data(), 2, 1, format), 0u);
			EXPECT_EQ(f.decompress(coded.data(), pixels.data(), 2, 1, format), 0u);
		}
		EXPECT_EQ(f.compress(pixels.data(), coded.data(), 2, 0, f.format), 0u);
		EXPECT_EQ(f.decompress(coded.data(), pixels.data(), 2, 0, f.format), 0u);
		EXPECT_EQ(f.compress(pixels.data(), coded.data(), 0, 2, f.format), 0u);
		EXPECT_EQ(f.decompress(coded.data(), pixels.data(), 0, 2, f.format), 0u);
		EXPECT_EQ(f.compress(nullptr, coded.data(), 2, 1, f.format), 0u);
		EXPECT_EQ(f.decompress(coded.data(), nullptr, 2, 1, f.format), 0u);
		EXPECT_EQ(pixels, Bytes(8, 1));
		EXPECT_EQ(coded, Bytes(4, 2));
	}
}

TEST(YUV, KnownColours)
{
	struct
	{
		Pixel<unsigned char> first, second;
		unsigned char y0, y1, u, v;
	} const cases[] = {
	    {{0, 0, 0, 0}, {255, 255, 255, 0}, 16, 235, 128, 128},
	    {{255, 255, 255, 9}, {0, 0, 0, 9}, 235, 16, 128, 128},
	    // 65.535 + 16.5, and U -37.74 + 128.5; green 128.52 + 16.5, V -93.84 + 128.5
	    {{255, 0, 0, 255}, {0, 255, 0, 255}, 82, 145, 90, 34},
	    // blue 24.99 + 16.5, U 111.945 + 128.5; red V 111.945 + 128.5
	    {{0, 0, 255, 255}, {255, 0, 0, 255}, 41, 82, 240, 240},
	};
	for (const auto& c : cases)
	{
		unsigned char y0 = 0, y1 = 0, u = 0, v = 0;
		ConvertRGBToYUV(c.first, c.second, y0, y1, u, v);
		EXPECT_EQ(y0, c.y0);
		EXPECT_EQ(y1, c.y1);
		EXPECT_EQ(u, c.u);
		EXPECT_EQ(v, c.v);
	}

	struct
	{
		int y, u, v;
		int r, g, b;
	} const decoded[] = {
	    {16, 128, 128, 0, 0, 0},
	    {235, 128, 128, 255, 255, 255},
	    {17, 128, 128, 1, 1, 1},        // 426 / 256
	    {0, 128, 128, 0, 0, 0},         // below zero
	    {255, 255, 255, 255, 125, 255}, // g: 75990 - 12700 - 26416 - 4640 = 32234
	    {82, 90, 240, 255, 1, 0},       // g: 24436 + 3800 - 23296 - 4640 = 300; b: 19796 - 19646 = 150
	    {INT_MAX, INT_MIN, INT_MAX, 255, 255, 0},
	    {INT_MIN, INT_MAX, INT_MIN, 0, 0, 255},
	};
	for (const auto& c : decoded)
	{
		unsigned char r = 7, g = 7, b = 7;
		ConvertYUVToRGB(c.y, c.u, c.v, r, g, b);
		EXPECT_EQ(int(r), c.r) << c.y << " " << c.u << " " << c.v;
		EXPECT_EQ(int(g), c.g) << c.y << " " << c.u << " " << c.v;
		EXPECT_EQ(int(b), c.b) << c.y << " " << c.u << " " << c.v;
	}
}
} // namespace
