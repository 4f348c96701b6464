#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "ETCCodec.h"

namespace zortexture
{
bool expandToWidthDivByFour(unsigned char*& image, int width, int height, int& expandedWidth, int& expandedHeight, int bitRate)
{
	if (width % 4 == 0)
	{
		std::printf("Image already of even width");
		expandedWidth = width;
		expandedHeight = height;
		return false;
	}

	const std::size_t pixelBytes = bitRate < 0 ? 0 : static_cast<std::size_t>(bitRate) * 3 / 8;
	const std::size_t newWidth = width < 0 ? 0 : static_cast<std::size_t>(width) / 4 * 4 + 4;
	const std::size_t rows = height < 0 ? 0 : static_cast<std::size_t>(height);
	const bool tooLarge = newWidth > INT_MAX || (rows * pixelBytes != 0 && newWidth > SIZE_MAX / (rows * pixelBytes));
	auto* expanded = newWidth == 0 || tooLarge ? nullptr : new (std::nothrow) unsigned char[newWidth * rows * pixelBytes];
	if (expanded == nullptr)
	{
		std::printf("Could not allocate memory to expand width");
		return false;
	}
	const std::size_t rowBytes = static_cast<std::size_t>(width) * pixelBytes;
	for (std::size_t row = 0; row < rows; ++row)
	{
		const unsigned char* from = image + row * rowBytes;
		unsigned char* to = expanded + row * newWidth * pixelBytes;
		std::memcpy(to, from, rowBytes);
		for (std::size_t column = static_cast<std::size_t>(width); column < newWidth; ++column)
		{
			std::memcpy(to + column * pixelBytes, from + rowBytes - pixelBytes, pixelBytes);
		}
	}
	delete[] image;
	image = expanded;
	expandedWidth = static_cast<int>(newWidth);
	expandedHeight = height;
	return true;
}
} // namespace zortexture
