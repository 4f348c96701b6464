#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <new>

#include "ChannelAccess.h"
#include "Channels.h"
#include "ElementDispatch.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
// The same numbers in all layouts: an alpha element between the two, in a float layout, is neither.
constexpr unsigned int kLargestTransparentAlpha = 7;
constexpr unsigned int kSmallestOpaqueAlpha = 8;
/// How far the neighbourhood of a pixel reaches on each axis.
constexpr unsigned int kReach = 8;

/// The part of an axis of `size` pixels around a coordinate.
struct Span
{
	Span(unsigned int centre, unsigned int size)
	    : begin(centre - std::min(centre, kReach)), end(centre + 1 + std::min(size - 1 - centre, kReach))
	{
	}

	unsigned int begin;
	unsigned int end;
};

template<typename T>
T truncatedMean(float sum, float count)
{
	return toElement<T>(std::trunc(sum / count));
}

/// The mean colour of the opaque pixels in a box, truncated; black when there are none. Alpha is 0.
template<typename T>
Pixel<T> meanOpaqueColour(const Pixel<T>* image, std::size_t width, std::size_t height, const Span& spanX, const Span& spanY,
                          const Span& spanZ)
{
	Pixel<float> sum{};
	unsigned int count = 0;
	for (unsigned int z = spanZ.begin; z < spanZ.end; ++z)
	{
		for (unsigned int y = spanY.begin; y < spanY.end; ++y)
		{
			const Pixel<T>* row = image + (z * height + y) * width;
			for (unsigned int x = spanX.begin; x < spanX.end; ++x)
			{
				if (row[x].a >= static_cast<T>(kSmallestOpaqueAlpha))
				{
					sum.r += static_cast<float>(row[x].r);
					sum.g += static_cast<float>(row[x].g);
					sum.b += static_cast<float>(row[x].b);
					++count;
				}
			}
		}
	}
	if (count == 0)
	{
		return {};
	}
	const auto divisor = static_cast<float>(count);
	return {truncatedMean<T>(sum.r, divisor), truncatedMean<T>(sum.g, divisor), truncatedMean<T>(sum.b, divisor), T{}};
}
} // namespace

template<typename T>
bool Bleed(Pixel<T>* image, const unsigned int& width, const unsigned int& height, const unsigned int& depth)
{
	if (image == nullptr)
	{
		return false;
	}
	// Neighbours are read from a copy, so that filled pixels do not feed each other.
	const std::size_t numPixels = static_cast<std::size_t>(width) * height * depth;
	const std::unique_ptr<Pixel<T>[]> snapshot(new (std::nothrow) Pixel<T>[numPixels]);
	if (snapshot == nullptr)
	{
		return false;
	}
	std::copy_n(image, numPixels, snapshot.get());
	Pixel<T>* pixel = image;
	for (unsigned int z = 0; z < depth; ++z)
	{
		const Span spanZ(z, depth);
		for (unsigned int y = 0; y < height; ++y)
		{
			const Span spanY(y, height);
			for (unsigned int x = 0; x < width; ++x, ++pixel)
			{
				if (pixel->a <= static_cast<T>(kLargestTransparentAlpha))
				{
					const Pixel<T> mean = meanOpaqueColour(snapshot.get(), width, height, Span(x, width), spanY, spanZ);
					pixel->r = mean.r;
					pixel->g = mean.g;
					pixel->b = mean.b;
				}
			}
		}
	}
	return true;
}

bool Bleed(CZORTexture& texture)
{
	if (!isProcessable(texture))
	{
		return false;
	}
	return withElementType(texture.getChannelType(),
	                       [&]<typename T>(std::type_identity<T>)
	                       {
		                       bool result = true;
		                       forEachImage(texture,
		                                    [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
		                                    {
			                                    result &=
			                                        Bleed(pixelsOf<T>(texture, mipLevel, arrayMember, face), texture.getWidth(mipLevel),
			                                              texture.getHeight(mipLevel), texture.getDepth(mipLevel));
		                                    });
		                       return result;
	                       });
}

#define ZORT_BLEED(T) template ZORT_API bool Bleed(Pixel<T>*, const unsigned int&, const unsigned int&, const unsigned int&);
ZORT_BLEED(unsigned char)
ZORT_BLEED(unsigned short)
ZORT_BLEED(unsigned int)
ZORT_BLEED(float)
#undef ZORT_BLEED
} // namespace zortexture
