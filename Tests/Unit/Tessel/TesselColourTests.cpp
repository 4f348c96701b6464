#include <gtest/gtest.h>
#include <random>

#include "Codecs/Tessel/TesselPlanes.h"
#include "TesselCompressor.h"

using namespace zortexture;

namespace
{
constexpr unsigned rgba(unsigned r, unsigned g, unsigned b, unsigned a)
{
	return r | (g << 8) | (b << 16) | (a << 24);
}

std::vector<TesselPixel> randomImage(unsigned width, unsigned height, unsigned seed)
{
	std::mt19937 random(seed);
	std::vector<TesselPixel> image(std::size_t(width) * height);
	for (TesselPixel& pixel : image)
	{
		const auto value = static_cast<std::uint32_t>(random());
		pixel = {static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8), static_cast<unsigned char>(value >> 16),
		         static_cast<unsigned char>(value >> 24)};
	}
	return image;
}
} // namespace

TEST(TesselColours, PicksTheFarthestPair)
{
	const struct
	{
		const char* what;
		std::vector<TesselPixel> pixels;
		unsigned a;
		unsigned b;
	} cases[] = {
	    {"one pixel", {{9, 8, 7, 6}}, rgba(9, 8, 7, 6), rgba(9, 8, 7, 6)},
	    {"all equal", {{5, 5, 5, 255}, {5, 5, 5, 255}}, rgba(5, 5, 5, 255), rgba(5, 5, 5, 255)},
	    {"the lighter comes first",
	     {{200, 200, 200, 255}, {10, 10, 10, 255}, {90, 90, 90, 255}},
	     rgba(10, 10, 10, 255),
	     rgba(200, 200, 200, 255)},
	    // The diagonals of a rectangle are equally long: the one met first wins.
	    {"first of equals", {{0, 0, 0, 0}, {40, 30, 0, 0}, {40, 0, 0, 0}, {0, 30, 0, 0}}, rgba(0, 0, 0, 0), rgba(40, 30, 0, 0)},
	    {"first of equals", {{40, 0, 0, 0}, {0, 0, 0, 0}, {40, 30, 0, 0}, {0, 30, 0, 0}}, rgba(40, 0, 0, 0), rgba(0, 30, 0, 0)},
	    {"alpha is a channel", {{0, 0, 0, 0}, {100, 0, 0, 0}, {0, 0, 0, 100}}, rgba(0, 0, 0, 100), rgba(100, 0, 0, 0)},
	    // Alpha counts for the distance, not for the luminance: equal luminance, the smaller packed value is A.
	    {"equal luminance", {{7, 7, 7, 200}, {7, 7, 7, 100}}, rgba(7, 7, 7, 100), rgba(7, 7, 7, 200)},
	    // 30 and 22 hundredths: as integers both luminances are 0, and the packed values decide the other way.
	    {"luminance is an integer", {{0, 0, 2, 0}, {1, 0, 0, 0}}, rgba(1, 0, 0, 0), rgba(0, 0, 2, 0)},
	};
	for (const auto& test : cases)
	{
		unsigned a = 0;
		unsigned b = 0;
		selectColoursAB_MaxDistance(test.pixels.data(), static_cast<unsigned>(test.pixels.size()), a, b);
		EXPECT_EQ(a, test.a) << test.what;
		EXPECT_EQ(b, test.b) << test.what;
	}
}

TEST(TesselColours, WindowWrapsHalfABlockAround)
{
	// A grey image with a black and a white pixel that only the wrapped window of block (0, 0) sees together.
	std::vector<unsigned char> grey(std::size_t(16) * 16 * 4, 128);
	const auto set = [&grey](unsigned x, unsigned y, unsigned char value)
	{
		std::fill_n(grey.begin() + 4 * (std::ptrdiff_t(y) * 16 + x), 3, value);
	};
	set(14, 14, 0);
	set(5, 5, 255);
	Tessel4bppCompressor compressor(grey.data(), 16, 16);
	const struct
	{
		unsigned x;
		unsigned y;
		bool overlap;
		unsigned a;
		unsigned b;
	} cases[] = {
	    {0, 0, true, rgba(0, 0, 0, 128), rgba(255, 255, 255, 128)},
	    {0, 0, false, rgba(128, 128, 128, 128), rgba(128, 128, 128, 128)},
	    {1, 1, false, rgba(128, 128, 128, 128), rgba(255, 255, 255, 128)},
	    {3, 3, true, rgba(0, 0, 0, 128), rgba(128, 128, 128, 128)},
	    {2, 2, true, rgba(128, 128, 128, 128), rgba(128, 128, 128, 128)}, // columns 6 to 13: neither
	};
	for (const auto& test : cases)
	{
		unsigned a = 0;
		unsigned b = 0;
		compressor.calculateColoursABForBlock(test.x, test.y, a, b, test.overlap);
		EXPECT_EQ(a, test.a) << test.x << " " << test.overlap;
		EXPECT_EQ(b, test.b) << test.x << " " << test.overlap;
	}
	// At 2bpp the flag of preprocess is ignored.
	const std::vector<TesselPixel> noise = randomImage(16, 8, 2);
	Tessel2bppCompressor two(noise.data(), 16, 8);
	two.preprocess(true);
	unsigned a = 0;
	unsigned b = 0;
	two.calculateColoursABForBlock(1, 1, a, b, false);
	EXPECT_EQ(two.coloursA[3], a);
	EXPECT_EQ(two.coloursB[3], b);
}

TEST(TesselColours, UpscaleEqualsTheProductForm)
{
	std::mt19937 random(11);
	for (const unsigned blockWidth : {4U, 8U})
	{
		for (const auto& blocks : {std::pair(1U, 1U), std::pair(2U, 3U), std::pair(5U, 1U)})
		{
			const unsigned numX = blocks.first;
			const unsigned numY = blocks.second;
			const unsigned width = numX * blockWidth;
			const unsigned height = numY * 4;
			const std::vector<TesselPixel> image = randomImage(width, height, 1);
			Tessel4bppCompressor four(image.data(), width, height);
			Tessel2bppCompressor two(image.data(), width, height);
			TesselCompressor& compressor = blockWidth == 4 ? static_cast<TesselCompressor&>(four) : two;
			for (std::size_t i = 0; i < compressor.coloursA.size(); ++i)
			{
				compressor.coloursA[i] = static_cast<unsigned>(random());
				compressor.coloursB[i] = static_cast<unsigned>(random());
			}
			compressor.interpolateColoursAB();
			for (unsigned y = 0; y < height; ++y)
			{
				for (unsigned x = 0; x < width; ++x)
				{
					const unsigned left = (x + width - blockWidth / 2) % width;
					const unsigned above = (y + height - 2) % height;
					const unsigned u = left % blockWidth;
					const unsigned v = above % 4;
					const auto colour = [&](const std::vector<unsigned>& colours, unsigned dx, unsigned dy, unsigned shift)
					{
						return (colours[(above / 4 + dy) % numY * numX + (left / blockWidth + dx) % numX] >> shift) & 255;
					};
					const auto expected = [&](const std::vector<unsigned>& colours)
					{
						unsigned packed = 0;
						for (unsigned shift = 0; shift < 32; shift += 8)
						{
							const unsigned sum =
							    (4 - v) * ((blockWidth - u) * colour(colours, 0, 0, shift) + u * colour(colours, 1, 0, shift)) +
							    v * ((blockWidth - u) * colour(colours, 0, 1, shift) + u * colour(colours, 1, 1, shift));
							packed |= sum / (4 * blockWidth) << shift;
						}
						return packed;
					};
					ASSERT_EQ(packTesselPixel(compressor.upscaledA[y * width + x]), expected(compressor.coloursA)) << x << "," << y;
					ASSERT_EQ(packTesselPixel(compressor.upscaledB[y * width + x]), expected(compressor.coloursB)) << x << "," << y;
				}
			}
		}
	}
}

TEST(TesselFit, LeavesSmallResidualsAndSolvesLargeOnes)
{
	// Planes of A 100 and B 200 in red, the rest 0. Half the pixels have weight 0 and half weight 1.
	TesselBlockPixels block = {};
	float weights[16];
	for (unsigned i = 0; i < 16; ++i)
	{
		weights[i] = i < 8 ? 0.0F : 1.0F;
		block.a[i] = {100, 0, 0, 0};
		block.b[i] = {200, 0, 0, 0};
	}
	const auto fit = [&block, &weights](int residualA, int residualB, float threshold)
	{
		for (unsigned i = 0; i < 16; ++i)
		{
			block.image[i].r = static_cast<unsigned char>(i < 8 ? 100 + residualA : 200 + residualB);
		}
		std::pair<unsigned, unsigned> colours = {rgba(100, 0, 0, 0), rgba(200, 0, 0, 0)};
		fitTesselColours(block, weights, 16, threshold, colours.first, colours.second);
		return colours;
	};
	// Mean residual 5 (squared 25), then 6 (36); then the threshold of 2bpp.
	EXPECT_EQ(fit(10, 0, 32.0F), std::pair(rgba(100, 0, 0, 0), rgba(200, 0, 0, 0)));
	EXPECT_EQ(fit(12, 0, 32.0F), std::pair(rgba(112, 0, 0, 0), rgba(200, 0, 0, 0)));
	EXPECT_EQ(fit(12, 0, 128.0F), std::pair(rgba(100, 0, 0, 0), rgba(200, 0, 0, 0)));
	// A mean residual whose square is the threshold itself is corrected.
	EXPECT_EQ(fit(16, 0, 64.0F), std::pair(rgba(116, 0, 0, 0), rgba(200, 0, 0, 0)));
	// Both ends; B's correction is slope and intercept together. Corrections end at 100, colours at 0 and 255.
	EXPECT_EQ(fit(20, -30, 16.0F), std::pair(rgba(120, 0, 0, 0), rgba(170, 0, 0, 0)));
	EXPECT_EQ(fit(120, -130, 1.0F), std::pair(rgba(200, 0, 0, 0), rgba(100, 0, 0, 0)));
	EXPECT_EQ(fit(-100, 55, 1.0F), std::pair(rgba(0, 0, 0, 0), rgba(255, 0, 0, 0)));
}

TEST(TesselFit, FlatModulationMovesBothEndsTogether)
{
	// One weight of 1/2 throughout: planes of 100 and 200 mix to 150, the pixels are 170. a = 110, b = 210; then each end takes a
	// quarter of their distance of 100 towards the other.
	TesselBlockPixels block = {};
	std::vector<float> weights(32, 0.5F);
	for (unsigned i = 0; i < 32; ++i)
	{
		block.a[i] = {100, 50, 0, 0};
		block.b[i] = {200, 50, 0, 0};
		block.image[i] = {170, 50, 0, 0};
	}
	unsigned a = rgba(100, 50, 0, 0);
	unsigned b = rgba(200, 50, 0, 0);
	fitTesselColours(block, weights.data(), 32, 128.0F, a, b);
	EXPECT_EQ(a, rgba(135, 50, 0, 0));
	EXPECT_EQ(b, rgba(185, 50, 0, 0));
	// All weight on A: A takes the whole residual and B half the way to it.
	weights.assign(32, 0.0F);
	a = rgba(100, 50, 0, 0);
	b = rgba(200, 50, 0, 0);
	fitTesselColours(block, weights.data(), 32, 128.0F, a, b);
	EXPECT_EQ(a, rgba(170, 50, 0, 0));
	EXPECT_EQ(b, rgba(185, 50, 0, 0));
	// A remaining distance below 1 counts as none: at weight 1/4 a residual of 18.59375 (3 pixels of 32 one higher) gives
	// a = 113.945 and b = 114.648; an eighth of their distance would lift a to 114.
	weights.assign(32, 0.25F);
	for (unsigned i = 0; i < 32; ++i)
	{
		block.a[i].r = 100;
		block.b[i].r = 110;
		block.image[i].r = i < 3 ? 122 : 121;
	}
	a = rgba(100, 50, 0, 0);
	b = rgba(110, 50, 0, 0);
	fitTesselColours(block, weights.data(), 32, 128.0F, a, b);
	EXPECT_EQ(a, rgba(113, 50, 0, 0));
	EXPECT_EQ(b, rgba(114, 50, 0, 0));
}
