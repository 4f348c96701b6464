#include <cstdio>
#include <cstring>
#include <new>

#include "kiln.h"

std::unique_ptr<KilnImage> NewImage(int width, int height)
{
	const auto refuse = [width, height]
	{
		std::fprintf(stderr, "Failed to allocate a %ld*%ld image\n", static_cast<long>(width), static_cast<long>(height));
		return nullptr;
	};
	if (width <= 0 || height <= 0)
	{
		return nullptr;
	}
	if (width > kKilnMaxSize || height > kKilnMaxSize)
	{
		return refuse();
	}
	try
	{
		auto image = std::make_unique<KilnImage>();
		image->width = width;
		image->height = height;
		image->pixels.resize(static_cast<std::size_t>(width) * height);
		return image;
	}
	catch (const std::bad_alloc&)
	{
		return refuse();
	}
}

namespace
{
int wrapped(int position, int size)
{
	return (position % size + size) % size;
}
} // namespace

void CopyWindow(const KilnImage& image, const KilnSettings& settings, int blockX, int blockY, KilnColour* window)
{
	const int left = blockX * settings.blockWidth - settings.blockWidth / 2;
	const int top = blockY * settings.blockHeight - settings.blockHeight / 2;
	const bool inside = left >= 0 && left + settings.windowWidth <= image.width;
	for (int y = 0; y < settings.windowHeight; ++y)
	{
		const KilnColour* row = image.row(wrapped(top + y, image.height));
		KilnColour* out = window + y * settings.windowWidth;
		if (inside)
		{
			std::memcpy(out, row + left, static_cast<std::size_t>(settings.windowWidth) * sizeof(KilnColour));
			continue;
		}
		for (int x = 0; x < settings.windowWidth; ++x)
		{
			out[x] = row[wrapped(left + x, image.width)];
		}
	}
}

void GatherNeighbours(const KilnBlockRows& blocks, const KilnSettings& settings, int blockX, int blockY, KilnNeighbourColours& colours,
                      KilnNeighbourModes& modes)
{
	for (int i = 0; i < 9; ++i)
	{
		const int x = wrapped(blockX + i % 3 - 1, settings.blocksX);
		const int y = wrapped(blockY + i / 3 - 1, settings.blocksY);
		const KilnBlock& block = blocks[y][x];
		colours[i] = block.current().pair;
		modes[i] = block.currentMode;
	}
}
