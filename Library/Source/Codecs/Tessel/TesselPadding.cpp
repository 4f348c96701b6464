#include "TesselPadding.h"

#include <cstddef>
#include <cstring>

namespace zortexture
{
namespace
{
/// The position that an added one repeats.
std::size_t repeated(std::size_t position, std::size_t size, std::size_t pad)
{
	return position >= pad ? position - pad : position % size;
}
} // namespace

std::vector<Pixel<unsigned char>> padTesselImage(const void* pixels, unsigned width, unsigned height, unsigned padX, unsigned padY)
{
	using PixelType8 = Pixel<unsigned char>;
	if (width == 0 || height == 0)
	{
		return {};
	}
	const std::size_t paddedWidth = std::size_t(width) + padX;
	const std::size_t paddedHeight = std::size_t(height) + padY;
	std::vector<PixelType8> padded(paddedWidth * paddedHeight);
	for (std::size_t y = 0; y < height; ++y)
	{
		PixelType8* row = &padded[y * paddedWidth];
		std::memcpy(row, static_cast<const unsigned char*>(pixels) + y * width * sizeof(PixelType8), width * sizeof(PixelType8));
		for (std::size_t x = width; x < paddedWidth; ++x)
		{
			row[x] = row[repeated(x, width, padX)];
		}
	}
	for (std::size_t y = height; y < paddedHeight; ++y)
	{
		std::memcpy(&padded[y * paddedWidth], &padded[repeated(y, height, padY) * paddedWidth], paddedWidth * sizeof(PixelType8));
	}
	return padded;
}
} // namespace zortexture
