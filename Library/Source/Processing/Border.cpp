#include <algorithm>
#include <cstddef>
#include <utility>

#include "ElementDispatch.h"
#include "Geometry.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// An image with its border around it, and the position of the image proper.
template<typename T>
struct BorderedImage
{
	Pixel<T>* pixels;
	std::size_t width;
	std::size_t height;
	std::size_t depth;
	std::size_t left;
	std::size_t top;
	std::size_t front;

	Pixel<T>* at(std::size_t x, std::size_t y, std::size_t z) const
	{
		return pixels + (z * height + y) * width + x;
	}
};

/// Copies the image's rows of one slice to another slice.
template<typename T>
void copySlice(const BorderedImage<T>& image, std::size_t from, std::size_t to, std::size_t numColumns, std::size_t numRows)
{
	if (from == to)
	{
		return;
	}
	for (std::size_t y = image.top; y < image.top + numRows; ++y)
	{
		std::copy_n(image.at(image.left, y, from), numColumns, image.at(image.left, y, to));
	}
}

/// The border in depth over the rows and columns of the image. Both ends are one off a mirror and stay so, since files
/// made with them exist: the front one ends a slice short, and the back one copies empty slices over the image's last.
template<typename T>
void extendDepth(const BorderedImage<T>& image, std::size_t numColumns, std::size_t numRows, std::size_t numSlices)
{
	for (std::size_t i = 0; i < image.front; ++i)
	{
		copySlice(image, image.front + i, image.front - i, numColumns, numRows);
	}
	const std::size_t last = image.front + numSlices - 1;
	for (std::size_t i = 0; i < image.front; ++i)
	{
		copySlice(image, last + i, last - i, numColumns, numRows);
	}
}

/// The border in height over the columns of the image, with the edge rows repeated.
template<typename T>
void extendHeight(const BorderedImage<T>& image, std::size_t numColumns)
{
	for (std::size_t z = 0; z < image.depth; ++z)
	{
		for (std::size_t i = 0; i < image.top; ++i)
		{
			const std::size_t bottom = image.height - image.top;
			std::copy_n(image.at(image.left, image.top + i, z), numColumns, image.at(image.left, image.top - 1 - i, z));
			std::copy_n(image.at(image.left, bottom - 1 - i, z), numColumns, image.at(image.left, bottom + i, z));
		}
	}
}

/// The border in width over all rows, those of the other borders included.
template<typename T>
void extendWidth(const BorderedImage<T>& image)
{
	for (std::size_t row = 0; row < image.height * image.depth; ++row)
	{
		Pixel<T>* left = image.pixels + row * image.width + image.left;
		Pixel<T>* right = image.pixels + (row + 1) * image.width - image.left;
		for (std::size_t i = 0; i < image.left; ++i)
		{
			*(left - 1 - i) = left[i];
			right[i] = *(right - 1 - i);
		}
	}
}
} // namespace

template<typename T>
bool Border(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth, unsigned int newWidth,
            unsigned int newHeight, unsigned int newDepth)
{
	if (source == nullptr || destination == nullptr || newWidth < width || newHeight < height || newDepth < depth)
	{
		return false;
	}
	const BorderedImage<T> image = {destination,           newWidth, newHeight, newDepth, (newWidth - width) / 2, (newHeight - height) / 2,
	                                (newDepth - depth) / 2};
	for (std::size_t z = 0; z < depth; ++z)
	{
		for (std::size_t y = 0; y < height; ++y)
		{
			std::copy_n(source + (z * height + y) * width, width, image.at(image.left, image.top + y, image.front + z));
		}
	}
	extendDepth(image, width, height, depth);
	extendHeight(image, width);
	extendWidth(image);
	return true;
}

template ZORT_API bool Border<unsigned char>(Pixel<unsigned char>*, Pixel<unsigned char>*, unsigned int, unsigned int, unsigned int,
                                             unsigned int, unsigned int, unsigned int);
template ZORT_API bool Border<unsigned short>(Pixel<unsigned short>*, Pixel<unsigned short>*, unsigned int, unsigned int, unsigned int,
                                              unsigned int, unsigned int, unsigned int);
template ZORT_API bool Border<unsigned int>(Pixel<unsigned int>*, Pixel<unsigned int>*, unsigned int, unsigned int, unsigned int,
                                            unsigned int, unsigned int, unsigned int);
template ZORT_API bool Border<float>(Pixel<float>*, Pixel<float>*, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int,
                                     unsigned int);

bool Border(CZORTexture& texture, unsigned int borderX, unsigned int borderY, unsigned int borderZ)
{
	if (!isProcessable(texture))
	{
		return false;
	}
	if (borderX == 0 && borderY == 0 && borderZ == 0)
	{
		return true;
	}
	// Sizes wrap at 32 bits; one that comes out below the old size has no room for the image.
	const unsigned int newWidth = texture.getWidth(0) + 2 * borderX;
	const unsigned int newHeight = texture.getHeight(0) + 2 * borderY;
	const unsigned int newDepth = texture.getDepth(0) + 2 * borderZ;
	if (newWidth < texture.getWidth(0) || newHeight < texture.getHeight(0) || newDepth < texture.getDepth(0))
	{
		return false;
	}

	CZORTextureHeader newHeader(texture.getHeader());
	newHeader.setWidth(newWidth);
	newHeader.setHeight(newHeight);
	newHeader.setDepth(newDepth);
	newHeader.setNumMIPLevels(1);
	CZORTexture newTexture = createTexture(newHeader);
	if (!newTexture.isDataComplete())
	{
		return false;
	}
	forEachImage(newTexture,
	             [&](unsigned int level, unsigned int arrayMember, unsigned int face)
	             {
		             withElementType(moverType(texture),
		                             [&](auto tag)
		                             {
			                             using T = typename decltype(tag)::type;
			                             return Border(pixelsOf<T>(texture, level, arrayMember, face),
			                                           pixelsOf<T>(newTexture, level, arrayMember, face), texture.getWidth(0),
			                                           texture.getHeight(0), texture.getDepth(0), newWidth, newHeight, newDepth);
		                             });
	             });
	texture = std::move(newTexture);
	texture.setBorder(borderX, borderY, borderZ);
	return true;
}
} // namespace zortexture
