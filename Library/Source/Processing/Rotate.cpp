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
/// Where the pixels of an image lie in the turned one: at start + x * strideX + y * strideY + z * strideZ.
struct TurnedLayout
{
	std::ptrdiff_t start;
	std::ptrdiff_t strideX;
	std::ptrdiff_t strideY;
	std::ptrdiff_t strideZ;
};

/// The layout for an image of the given dimensions. Forward takes y to -x about z, z to -y about x, and x to -z about y.
TurnedLayout turnedLayout(std::ptrdiff_t width, std::ptrdiff_t height, std::ptrdiff_t depth, EZORTAxis axis, bool forward)
{
	switch (axis)
	{
	case eAxis_X:
		return forward ? TurnedLayout{(depth - 1) * width, 1, depth * width, -width}
		               : TurnedLayout{(height - 1) * depth * width, 1, -depth * width, width};
	case eAxis_Y:
		return forward ? TurnedLayout{(width - 1) * height * depth, -height * depth, depth, 1}
		               : TurnedLayout{depth - 1, height * depth, depth, -1};
	default:
		return forward ? TurnedLayout{height - 1, height, -1, width * height}
		               : TurnedLayout{(width - 1) * height, -height, 1, width * height};
	}
}
/// Turns an image about z, a small square at a time: by whole rows or columns either the reads or the writes would come to a new line of
/// the cache with every pixel, and in large images to a new page.
template<typename T>
void turnPlanes(const Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                const TurnedLayout& layout)
{
	constexpr unsigned int kSide = 16;
	for (unsigned int z = 0; z < depth; ++z, source += std::size_t{width} * height)
	{
		for (unsigned int top = 0; top < height; top += kSide)
		{
			const unsigned int bottom = top + std::min(kSide, height - top);
			for (unsigned int left = 0; left < width; left += kSide)
			{
				const unsigned int right = left + std::min(kSide, width - left);
				for (unsigned int x = left; x < right; ++x)
				{
					std::ptrdiff_t index = layout.start + x * layout.strideX + top * layout.strideY + z * layout.strideZ;
					for (unsigned int y = top; y < bottom; ++y, index += layout.strideY)
					{
						destination[index] = source[std::size_t{y} * width + x];
					}
				}
			}
		}
	}
}
} // namespace

template<typename T>
bool Rotate90(Pixel<T>* source, Pixel<T>* destination, const unsigned int& width, const unsigned int& height, const unsigned int& depth,
              EZORTAxis axis, bool forward)
{
	if (source == nullptr || destination == nullptr || axis > eAxis_Z)
	{
		return false;
	}
	const TurnedLayout layout = turnedLayout(width, height, depth, axis, forward);
	if (axis == eAxis_Z)
	{
		turnPlanes(source, destination, width, height, depth, layout);
		return true;
	}
	// About y the turned image takes the width for its height, so a tall image has pixels without a place in it.
	const std::ptrdiff_t turnedSize = std::ptrdiff_t{width} * depth * (axis == eAxis_Y ? width : height);
	Pixel<T>* pixel = source;
	for (unsigned int z = 0; z < depth; ++z)
	{
		for (unsigned int y = 0; y < height; ++y)
		{
			std::ptrdiff_t index = layout.start + y * layout.strideY + z * layout.strideZ;
			for (unsigned int x = 0; x < width; ++x, ++pixel, index += layout.strideX)
			{
				if (index < turnedSize)
				{
					*pixel = destination[index];
				}
			}
		}
	}
	return true;
}

template ZORT_API bool Rotate90<unsigned char>(Pixel<unsigned char>*, Pixel<unsigned char>*, const unsigned int&, const unsigned int&,
                                               const unsigned int&, EZORTAxis, bool);
template ZORT_API bool Rotate90<unsigned short>(Pixel<unsigned short>*, Pixel<unsigned short>*, const unsigned int&, const unsigned int&,
                                                const unsigned int&, EZORTAxis, bool);
template ZORT_API bool Rotate90<unsigned int>(Pixel<unsigned int>*, Pixel<unsigned int>*, const unsigned int&, const unsigned int&,
                                              const unsigned int&, EZORTAxis, bool);
template ZORT_API bool Rotate90<float>(Pixel<float>*, Pixel<float>*, const unsigned int&, const unsigned int&, const unsigned int&,
                                       EZORTAxis, bool);

bool Rotate90(CZORTexture& texture, EZORTAxis axis, bool forward)
{
	if (!isProcessable(texture))
	{
		return false;
	}
	CZORTextureHeader newHeader(texture.getHeader());
	switch (axis)
	{
	case eAxis_X:
		newHeader.setHeight(texture.getDepth(0));
		newHeader.setDepth(texture.getHeight(0));
		break;
	case eAxis_Y:
		newHeader.setHeight(texture.getWidth(0));
		break;
	case eAxis_Z:
		newHeader.setHeight(texture.getWidth(0));
		newHeader.setWidth(texture.getHeight(0));
		break;
	default:
		break;
	}
	CZORTexture newTexture = createTexture(newHeader);
	if (!newTexture.isDataComplete())
	{
		return false;
	}

	bool result = false;
	forEachImage(texture,
	             [&](unsigned int level, unsigned int arrayMember, unsigned int face)
	             {
		             result =
		                 withElementType(moverType(texture),
		                                 [&](auto tag)
		                                 {
			                                 using T = typename decltype(tag)::type;
			                                 return Rotate90(pixelsOf<T>(texture, level, arrayMember, face),
			                                                 pixelsOf<T>(newTexture, level, arrayMember, face), texture.getWidth(level),
			                                                 texture.getHeight(level), texture.getDepth(level), axis, forward);
		                                 });
	             });
	texture = std::move(newTexture);
	return result;
}
} // namespace zortexture
