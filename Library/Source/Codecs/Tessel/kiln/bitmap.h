/// @file bitmap.h
/// The working image of the block decoder, and two-dimensional arrays.
#pragma once

#include <cstddef>

/// One block of width columns of height elements each behind a table of column pointers, every element a copy of `fill`
/// (elementSize bytes) or zero when that is null. Null when memory fails; released with util_free_2d.
void** util_alloc_2d(std::size_t width, std::size_t height, std::size_t elementSize, const void* fill);
void util_free_2d(void** array);

/// A pixel in the order in which the working image stores it.
struct bitmap_colour
{
	unsigned char b;
	unsigned char g;
	unsigned char r;
	unsigned char a;
};

enum bitmap_error : unsigned
{
	kBitmapOk = 0,
	kBitmapNoData = 3,
	kBitmapOutOfRange = 4
};

struct bitmap
{
	int width;
	int height;
	/// First index x, second index y.
	bitmap_colour** pixels;
	/// When false, alpha is stored as 255.
	bool hasAlpha;
	bitmap_error lastError;
};

/// Null when a size is not above 0 or memory fails. Without a fill colour pixels are opaque magenta.
bitmap* new_bitmap(int width, int height, bool hasAlpha, const bitmap_colour* fillColour);
/// Accepts null.
void delete_bitmap(bitmap* image);
void bitmap_get_size(const bitmap* image, int* width, int* height);
/// False, with lastError set and nothing changed, for a pixel outside the image.
bool bitmap_set_pixel_rgba(bitmap* image, int x, int y, unsigned char r, unsigned char g, unsigned char b, unsigned char a);
