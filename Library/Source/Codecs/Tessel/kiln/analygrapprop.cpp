#include "analygrapprop.h"

#include <algorithm>

namespace
{
/// Squared distance, or squared second difference, below which colours count as flat: about 2 levels in each channel.
constexpr int kFlatLimit = 17;
constexpr std::uint8_t kUnassigned = 255;

/// Pixels at which the colours run straight on.
struct Flatness
{
	std::array<bool, kKilnMaxWindow> horizontal;
	std::array<bool, kKilnMaxWindow> vertical;
};

bool runsStraight(const KilnColour& before, const KilnColour& here, const KilnColour& after)
{
	int sum = 0;
	for (int c = 0; c < 4; ++c)
	{
		const int difference = before[c] + after[c] - 2 * here[c];
		sum += difference * difference;
	}
	return sum < kFlatLimit;
}

/// Rim pixels, which lack a neighbour, take the flags of the pixel inside of them.
void findFlatness(const KilnColour* window, int width, int height, Flatness& flatness)
{
	for (int y = 0; y < height; ++y)
	{
		for (int x = 0; x < width; ++x)
		{
			const int inner = std::clamp(y, 1, height - 2) * width + std::clamp(x, 1, width - 2);
			const KilnColour* here = window + inner;
			flatness.horizontal[y * width + x] = runsStraight(here[-1], here[0], here[1]);
			flatness.vertical[y * width + x] = runsStraight(here[-width], here[0], here[width]);
		}
	}
}
} // namespace

int AnalyseGraphicsProperties(const KilnColour* window, const KilnSettings& settings, KilnRegions& regions)
{
	const int width = settings.windowWidth;
	const int height = settings.windowHeight;
	const int pixels = settings.windowPixels();
	Flatness flatness;
	findFlatness(window, width, height, flatness);

	std::fill_n(regions.map.begin(), pixels, kUnassigned);
	regions.count = 0;
	std::array<std::uint8_t, kKilnMaxWindow> stack;
	int listed = 0;
	for (int seed = 0; seed < pixels; ++seed)
	{
		if (regions.map[seed] != kUnassigned)
		{
			continue;
		}
		int stacked = 0;
		const auto join = [&](int pixel)
		{
			regions.map[pixel] = static_cast<std::uint8_t>(regions.count);
			regions.order[listed++] = static_cast<std::uint8_t>(pixel);
			stack[stacked++] = static_cast<std::uint8_t>(pixel);
		};
		join(seed);
		while (stacked > 0)
		{
			const int popped = stack[--stacked];
			const int column = popped % width;
			const int row = popped / width;
			for (int y = std::max(row - 1, 0); y <= std::min(row + 1, height - 1); ++y)
			{
				for (int x = std::max(column - 1, 0); x <= std::min(column + 1, width - 1); ++x)
				{
					const int pixel = y * width + x;
					if (regions.map[pixel] != kUnassigned)
					{
						continue;
					}
					if (SQColDist(window[pixel], window[seed]) < kFlatLimit || (y == row && flatness.horizontal[pixel]) ||
					    (x == column && flatness.vertical[pixel]) ||
					    (settings.punchThrough && window[pixel][3] == 0 && window[seed][3] == 0))
					{
						join(pixel);
					}
				}
			}
		}
		++regions.count;
	}
	return regions.count;
}
