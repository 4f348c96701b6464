#include "bitmap.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

void** util_alloc_2d(std::size_t width, std::size_t height, std::size_t elementSize, const void* fill)
{
	if (width == 0 || height == 0 || elementSize == 0)
	{
		return nullptr;
	}
	if (height > SIZE_MAX / 2 / elementSize || width > SIZE_MAX / 2 / (height * elementSize + sizeof(void*)))
	{
		return nullptr;
	}
	const std::size_t columnSize = height * elementSize;
	void** columns = static_cast<void**>(std::calloc(1, width * (sizeof(void*) + columnSize)));
	if (columns == nullptr)
	{
		return nullptr;
	}
	void* const data = columns + width;
	char* element = static_cast<char*>(data);
	for (std::size_t x = 0; x < width; ++x)
	{
		columns[x] = element;
		if (fill == nullptr)
		{
			element += columnSize;
			continue;
		}
		for (std::size_t y = 0; y < height; ++y, element += elementSize)
		{
			std::memcpy(element, fill, elementSize);
		}
	}
	return columns;
}

void util_free_2d(void** array)
{
	std::free(static_cast<void*>(array));
}

bitmap* new_bitmap(int width, int height, bool hasAlpha, const bitmap_colour* fillColour)
{
	if (width <= 0 || height <= 0)
	{
		return nullptr;
	}
	const bitmap_colour clearColour = {255, 0, 255, 255};
	const bitmap_colour* fill = fillColour != nullptr ? fillColour : &clearColour;
	void** pixels = util_alloc_2d(static_cast<std::size_t>(width), static_cast<std::size_t>(height), sizeof(bitmap_colour), fill);
	if (pixels == nullptr)
	{
		return nullptr;
	}
	auto* image = new (std::nothrow) bitmap{width, height, reinterpret_cast<bitmap_colour**>(pixels), hasAlpha, kBitmapOk};
	if (image == nullptr)
	{
		util_free_2d(pixels);
	}
	return image;
}

void delete_bitmap(bitmap* image)
{
	if (image != nullptr)
	{
		util_free_2d(reinterpret_cast<void**>(image->pixels));
		delete image;
	}
}

void bitmap_get_size(const bitmap* image, int* width, int* height)
{
	*width = image->width;
	*height = image->height;
}

bool bitmap_set_pixel_rgba(bitmap* image, int x, int y, unsigned char r, unsigned char g, unsigned char b, unsigned char a)
{
	if (image->pixels == nullptr)
	{
		image->lastError = kBitmapNoData;
		return false;
	}
	if (x < 0 || y < 0 || x >= image->width || y >= image->height)
	{
		image->lastError = kBitmapOutOfRange;
		return false;
	}
	image->pixels[x][y] = {b, g, r, image->hasAlpha ? a : static_cast<unsigned char>(255)};
	return true;
}
