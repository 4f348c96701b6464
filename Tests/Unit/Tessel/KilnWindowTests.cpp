#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "Codecs/Tessel/kiln/analygrapprop.h"
#include "Codecs/Tessel/kiln/paletteentries.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;

namespace
{
using Window = std::array<KilnColour, kKilnMaxWindow>;

constexpr KilnColour kBlack = {0, 0, 0, 255};
constexpr KilnColour kRed = {255, 0, 0, 255};
constexpr KilnColour kWhite = {255, 255, 255, 255};

KilnSettings settingsOf(int bpp)
{
	KilnSettings settings;
	settings.bpp = bpp;
	settings.blockWidth = bpp == 2 ? 8 : 4;
	settings.windowWidth = 2 * settings.blockWidth + 1;
	return settings;
}

/// Every pixel's region, as text of letters, after a check that the order lists all pixels region by region.
std::string regionsOf(const Window& window, const KilnSettings& settings, int& count)
{
	KilnRegions regions;
	count = AnalyseGraphicsProperties(window.data(), settings, regions);
	EXPECT_EQ(count, regions.count);
	std::string text;
	std::vector<int> places;
	for (int i = 0; i < settings.windowPixels(); ++i)
	{
		text += static_cast<char>('a' + regions.map[i]);
		places.push_back(regions.order[i]);
		EXPECT_TRUE(i == 0 || regions.map[regions.order[i - 1]] <= regions.map[regions.order[i]]);
	}
	std::sort(places.begin(), places.end());
	for (int i = 0; i < settings.windowPixels(); ++i)
	{
		EXPECT_EQ(places[i], i);
	}
	return text;
}
} // namespace

TEST(KilnWindow, FlatAreasAreRegions)
{
	// A red frame with a black core and one white pixel.
	Window window;
	window.fill(kRed);
	std::string expected(81, 'a');
	for (int y = 3; y < 6; ++y)
	{
		for (int x = 3; x < 6; ++x)
		{
			window[9 * y + x] = kBlack;
			expected[9 * y + x] = 'c';
		}
	}
	window[10] = kWhite;
	expected[10] = 'b';
	int count = 0;
	// The core's own second differences do not vanish, but its colours are alike.
	EXPECT_EQ(regionsOf(window, settingsOf(4), count), expected);
	EXPECT_EQ(count, 3);

	// A corner takes the flags of the pixel inside of it, between alike neighbours: it runs on from any colour.
	window.fill(kRed);
	window[80] = kWhite;
	regionsOf(window, settingsOf(4), count);
	EXPECT_EQ(count, 1);
}

TEST(KilnWindow, SlopesJoinAlongTheirStraightDirection)
{
	// Steps of 6 a column are far from the seed's colour soon, but run straight.
	const KilnSettings settings = settingsOf(2);
	Window window;
	for (int i = 0; i < settings.windowPixels(); ++i)
	{
		window[i] = {static_cast<std::uint8_t>(6 * (i % 17)), 0, 0, 255};
	}
	int count = 0;
	EXPECT_EQ(regionsOf(window, settings, count), std::string(153, 'a'));

	// No two pixels alike, nothing straight: every pixel is its own region.
	for (int i = 0; i < settings.windowPixels(); ++i)
	{
		const int x = i % 17;
		const int y = i / 17;
		window[i] = {static_cast<std::uint8_t>(x * x % 7 * 36), static_cast<std::uint8_t>(y * y % 5 * 50), static_cast<std::uint8_t>(i),
		             static_cast<std::uint8_t>((x ^ y) % 3 * 80)};
	}
	regionsOf(window, settings, count);
	EXPECT_GT(count, 100);
}

// A slow restatement: pixel by pixel from a stack.
TEST(KilnWindow, RegionsAreWhatAFloodReaches)
{
	std::mt19937 random(8);
	for (int round = 0; round < 200; ++round)
	{
		KilnSettings settings = settingsOf(round % 2 == 0 ? 4 : 2);
		settings.punchThrough = round % 3 == 0;
		const int width = settings.windowWidth;
		const int height = settings.windowHeight;
		const unsigned step = random() % 6;
		Window window;
		for (KilnColour& pixel : window)
		{
			const auto channel = [&random, step]
			{
				return static_cast<std::uint8_t>(100 + random() % (1 + 2 * step));
			};
			pixel = {channel(), channel(), channel(), random() % 4 == 0 ? std::uint8_t{0} : channel()};
		}
		const auto isFlat = [&](int pixel, int axis)
		{
			const int inner = std::clamp(pixel / width, 1, height - 2) * width + std::clamp(pixel % width, 1, width - 2);
			int sum = 0;
			for (int c = 0; c < 4; ++c)
			{
				const int bend = window[inner - axis][c] + window[inner + axis][c] - 2 * window[inner][c];
				sum += bend * bend;
			}
			return sum < 17;
		};
		std::string expected(static_cast<std::size_t>(settings.windowPixels()), '\0');
		int regions = 0;
		for (int seed = 0; seed < settings.windowPixels(); ++seed)
		{
			std::vector<int> stack;
			if (expected[seed] == 0)
			{
				expected[seed] = static_cast<char>('a' + regions++);
				stack.push_back(seed);
			}
			while (!stack.empty())
			{
				const int from = stack.back();
				stack.pop_back();
				for (int pixel = 0; pixel < settings.windowPixels(); ++pixel)
				{
					const int dx = std::abs(pixel % width - from % width);
					const int dy = std::abs(pixel / width - from / width);
					const bool clear = settings.punchThrough && window[pixel][3] == 0 && window[seed][3] == 0;
					if (expected[pixel] == 0 && dx <= 1 && dy <= 1 &&
					    (SQColDist(window[pixel], window[seed]) < 17 || clear || (dy == 0 && isFlat(pixel, 1)) ||
					     (dx == 0 && isFlat(pixel, width))))
					{
						expected[pixel] = expected[seed];
						stack.push_back(pixel);
					}
				}
			}
		}
		for (const ESimdLevel level : {eSimdPlain, eSimdSse2, eSimdAvx2})
		{
			const ForcedSimdLevel forced(level);
			int count = 0;
			ASSERT_EQ(regionsOf(window, settings, count), expected) << round << " level " << level;
			EXPECT_EQ(kilnIsGraphics(window.data(), settings), 4 * count < settings.windowPixels());
		}
	}
}

TEST(KilnWindow, TransparentPixelsAreOneRegionWhenPunchedThrough)
{
	Window window;
	for (int i = 0; i < 81; ++i)
	{
		const auto noise = static_cast<std::uint8_t>(i * 89);
		window[i] = {noise, static_cast<std::uint8_t>(noise * 3), static_cast<std::uint8_t>(noise * 7), 0};
	}
	KilnSettings settings = settingsOf(4);
	int count = 0;
	regionsOf(window, settings, count);
	EXPECT_GT(count, 20);
	settings.punchThrough = true;
	regionsOf(window, settings, count);
	EXPECT_EQ(count, 1);
}

TEST(KilnWindow, PaletteEntriesAreTheColoursOfTheWindow)
{
	// Three colours in the reach of the palette, in 1 to 29 pixels; outside of it there is a fourth.
	Window window;
	window.fill({0, 255, 0, 255});
	for (int i = 0; i < kKilnWindow4Bpp; ++i)
	{
		if (PalettePixels4bpp[i] != 0)
		{
			window[i] = i / 9 < 4 ? kBlack : kWhite;
		}
	}
	window[40] = {132, 66, 0, 255};
	KilnBlock block;
	InitOrientedBBox(block.boxes[2], {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}});
	const auto entries = [&block, &window]
	{
		return GeneratePaletteEntries(block, window.data(), PalettePixels4bpp.data(), kKilnWindow4Bpp, kKilnPaletteEntries, 36);
	};
	// 15 black pixels with one counted 8 times are 22, white ones 21.
	EXPECT_EQ(entries(), (std::vector<KilnColour>{{132, 66, 0, 255}, kWhite, kBlack}));

	window.fill(kRed);
	EXPECT_EQ(entries(), (std::vector<KilnColour>{kRed}));

	// More colours than entries.
	for (int i = 0; i < kKilnWindow4Bpp; ++i)
	{
		window[i] = {static_cast<std::uint8_t>(i * 53), static_cast<std::uint8_t>(i * 91), static_cast<std::uint8_t>(i * 177), 255};
	}
	EXPECT_EQ(entries().size(), 5U);
}
