#include "ptpreprocess.h"

#include <new>

#include "messages.h"

namespace
{
constexpr std::uint8_t kTransparentBelow = 5;
constexpr int kReach = 5;
constexpr std::array<std::int64_t, 2 * kReach + 1> kFilter = {1, 4, 16, 64, 256, 1024, 256, 64, 16, 4, 1};

/// The mean around a pixel, weighted by the filter in both directions and by alpha; the pixel itself does not count.
KilnColour meanAround(const KilnImage& image, int x, int y)
{
	const auto wrapped = [](int position, int size)
	{
		return (position % size + size) % size;
	};
	std::array<std::int64_t, 3> sums = {};
	std::int64_t total = 0;
	for (int dy = -kReach; dy <= kReach; ++dy)
	{
		const KilnColour* row = image.row(wrapped(y + dy, image.height));
		for (int dx = -kReach; dx <= kReach; ++dx)
		{
			if (dx == 0 && dy == 0)
			{
				continue;
			}
			const KilnColour& pixel = row[wrapped(x + dx, image.width)];
			const std::int64_t weight = kFilter[dx + kReach] * kFilter[dy + kReach] * pixel[3];
			for (int c = 0; c < 3; ++c)
			{
				sums[c] += weight * pixel[c];
			}
			total += weight;
		}
	}
	total = total == 0 ? 1 : total;
	const auto mean = [total](std::int64_t sum)
	{
		return static_cast<std::uint8_t>((2 * sum + total) / (2 * total));
	};
	return {mean(sums[0]), mean(sums[1]), mean(sums[2]), 0};
}

void bleedIntoTransparentPixels(KilnImage& image)
{
	try
	{
		const KilnImage original = image;
		for (int y = 0; y < image.height; ++y)
		{
			KilnColour* row = image.row(y);
			for (int x = 0; x < image.width; ++x)
			{
				if (row[x][3] < kTransparentBelow)
				{
					row[x] = meanAround(original, x, y);
				}
			}
		}
	}
	catch (const std::bad_alloc&)
	{
		fprintf_flush(stderr, "Malloc failed in PTPreProcTessel1. Aborting filter\n");
	}
}
} // namespace

void PTPreprocess(KilnImage& image, int version)
{
	if (version == 0)
	{
		bleedIntoTransparentPixels(image);
		return;
	}
	for (KilnColour& pixel : image.pixels)
	{
		if (pixel[3] < kTransparentBelow)
		{
			pixel = {};
		}
	}
}
