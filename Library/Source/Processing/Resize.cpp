#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "ElementDispatch.h"
#include "Resampling.h"
#include "RowCache.h"
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

/// The steps of a mode that is no filter, none of which writes: two buffers take turns, of which one has the source and the other zeroes.
template<typename T>
void takeEmptySteps(const Pixel<T>* source, Pixel<T>* destination, ImageSize current, const ImageSize& target)
{
	std::vector<Pixel<T>> front(source, source + current.numPixels());
	std::vector<Pixel<T>> back;
	for (; current != target; current = nextSize(current, target))
	{
		std::swap(front, back);
	}
	front.resize(target.numPixels());
	std::copy(front.begin(), front.end(), destination);
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

	if (current == target)
	{
		std::memmove(destination, source, current.numPixels() * sizeof(Pixel<T>));
		return true;
	}
	if (mode > eResizeCubic)
	{
		takeEmptySteps(source, destination, current, target);
		return true;
	}

	// The first step reads the source and the last one writes the destination; what is between stands in two buffers at most. Only a single
	// step does both, and then they may be the same image.
	const auto buffer = [](const ImageSize& size)
	{
		return std::make_unique_for_overwrite<Pixel<T>[]>(size.numPixels());
	};
	std::unique_ptr<Pixel<T>[]> owned;
	std::unique_ptr<Pixel<T>[]> room;
	Pixel<T>* image = source;
	if (nextSize(current, target) == target && isOverlapping(source, current.numPixels(), destination, target.numPixels()))
	{
		owned = buffer(current);
		std::copy_n(source, current.numPixels(), owned.get());
		image = owned.get();
	}
	while (current != target)
	{
		const ImageSize next = nextSize(current, target);
		if (next != target)
		{
			room = buffer(next);
		}
		Pixel<T>* result = next == target ? destination : room.get();
		StretchImage(image, result, current.width, current.height, current.depth, next.width, next.height, next.depth, mode);
		owned.swap(room);
		room.reset();
		image = result;
		current = next;
	}
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
