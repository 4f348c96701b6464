#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "ElementDispatch.h"
#include "Resampling.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
struct ImageSize
{
	unsigned int width;
	unsigned int height;
	unsigned int depth;

	bool operator==(const ImageSize&) const = default;

	std::size_t numPixels() const
	{
		return static_cast<std::size_t>(width) * height * depth;
	}
};

/// One step of an axis toward its target: half or double at most, never past it.
unsigned int nextSize(unsigned int current, unsigned int target)
{
	if (target <= current)
	{
		return std::max(current >> 1, target);
	}
	return static_cast<unsigned int>(std::min<std::uint64_t>(std::uint64_t{current} * 2, target));
}

ImageSize nextSize(const ImageSize& current, const ImageSize& target)
{
	return {nextSize(current.width, target.width), nextSize(current.height, target.height), nextSize(current.depth, target.depth)};
}

/// Pixels of the largest image on the way from one size to another, both included.
std::size_t largestStep(ImageSize current, const ImageSize& target)
{
	std::size_t largest = current.numPixels();
	while (current != target)
	{
		current = nextSize(current, target);
		largest = std::max(largest, current.numPixels());
	}
	return largest;
}
} // namespace

template<typename T>
bool SteppedStretchImage(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                         unsigned int newWidth, unsigned int newHeight, unsigned int newDepth, EResizeMode mode)
{
	ImageSize current{width, height, depth};
	const ImageSize target{newWidth, newHeight, newDepth};
	if (source == nullptr || destination == nullptr)
	{
		return false;
	}
	if (target.numPixels() == 0)
	{
		return true;
	}
	if (current.numPixels() == 0)
	{
		return false;
	}

	// Two buffers take turns, however many steps there are; source and destination may be the same image.
	const std::size_t capacity = largestStep(current, target);
	std::vector<Pixel<T>> front(capacity);
	std::vector<Pixel<T>> back(capacity);
	std::copy_n(source, current.numPixels(), front.data());
	while (current != target)
	{
		const ImageSize next = nextSize(current, target);
		StretchImage(front.data(), back.data(), current.width, current.height, current.depth, next.width, next.height, next.depth, mode);
		std::swap(front, back);
		current = next;
	}
	std::copy_n(front.data(), target.numPixels(), destination);
	return true;
}

bool Resize(CZORTexture& texture, const unsigned int& width, const unsigned int& height, const unsigned int& depth, EResizeMode mode)
{
	if (!isProcessable(texture) || width == 0 || height == 0 || depth == 0)
	{
		return false;
	}
	const ImageSize oldSize{texture.getWidth(), texture.getHeight(), texture.getDepth()};
	const ImageSize newSize{width, height, depth};
	if (newSize == oldSize)
	{
		return true;
	}

	CZORTextureHeader header(texture.getHeader());
	header.setWidth(newSize.width);
	header.setHeight(newSize.height);
	header.setDepth(newSize.depth);
	header.setNumMIPLevels(1);
	setScaledBorder(header, texture);
	CZORTexture resized = createTexture(header);
	if (!resized.isDataComplete())
	{
		return false;
	}

	const bool result = withElementType(texture.getChannelType(),
	                                    [&]<typename T>(std::type_identity<T>)
	                                    {
		                                    bool last = false;
		                                    forEachImage(resized,
		                                                 [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
		                                                 {
			                                                 last = SteppedStretchImage(pixelsOf<T>(texture, mipLevel, arrayMember, face),
			                                                                            pixelsOf<T>(resized, mipLevel, arrayMember, face),
			                                                                            oldSize.width, oldSize.height, oldSize.depth,
			                                                                            newSize.width, newSize.height, newSize.depth, mode);
		                                                 });
		                                    return last;
	                                    });
	texture = std::move(resized);
	return result;
}

#define ZORT_STEPPED_STRETCH_IMAGE(T)                                                                                                      \
	template ZORT_API bool SteppedStretchImage(Pixel<T>*, Pixel<T>*, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, \
	                                           unsigned int, EResizeMode);
ZORT_STEPPED_STRETCH_IMAGE(unsigned char)
ZORT_STEPPED_STRETCH_IMAGE(unsigned short)
ZORT_STEPPED_STRETCH_IMAGE(unsigned int)
ZORT_STEPPED_STRETCH_IMAGE(float)
#undef ZORT_STEPPED_STRETCH_IMAGE
} // namespace zortexture
