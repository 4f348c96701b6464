#include <algorithm>
#include <cstddef>

#include "ElementDispatch.h"
#include "Geometry.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// Swaps the first of `count` runs of pixels with the last, and so on inwards.
template<typename T>
void mirrorRuns(Pixel<T>* image, unsigned int count, std::size_t runLength)
{
	for (unsigned int i = 0; i < count / 2; ++i)
	{
		Pixel<T>* run = image + i * runLength;
		std::swap_ranges(run, run + runLength, image + (count - 1 - i) * runLength);
	}
}
} // namespace

template<typename T>
bool Flip(Pixel<T>* image, const unsigned int& width, const unsigned int& height, const unsigned int& depth, EZORTAxis axis)
{
	if (image == nullptr)
	{
		return false;
	}
	const std::size_t sliceSize = std::size_t{width} * height;
	switch (axis)
	{
	case eAxis_X:
		for (std::size_t row = 0; row < std::size_t{height} * depth; ++row)
		{
			mirrorRuns(image + row * width, width, 1);
		}
		break;
	case eAxis_Y:
		for (unsigned int z = 0; z < depth; ++z)
		{
			mirrorRuns(image + z * sliceSize, height, width);
		}
		break;
	case eAxis_Z:
		mirrorRuns(image, depth, sliceSize);
		break;
	default:
		break;
	}
	return true;
}

template ZORT_API bool Flip<unsigned char>(Pixel<unsigned char>*, const unsigned int&, const unsigned int&, const unsigned int&, EZORTAxis);
template ZORT_API bool Flip<unsigned short>(Pixel<unsigned short>*, const unsigned int&, const unsigned int&, const unsigned int&,
                                            EZORTAxis);
template ZORT_API bool Flip<unsigned int>(Pixel<unsigned int>*, const unsigned int&, const unsigned int&, const unsigned int&, EZORTAxis);
template ZORT_API bool Flip<float>(Pixel<float>*, const unsigned int&, const unsigned int&, const unsigned int&, EZORTAxis);

bool Flip(CZORTexture& texture, EZORTAxis axis)
{
	if (!isProcessable(texture))
	{
		return false;
	}
	bool result = false;
	forEachImage(texture,
	             [&](unsigned int level, unsigned int arrayMember, unsigned int face)
	             {
		             result = withElementType(texture.getChannelType(),
		                                      [&](auto tag)
		                                      {
			                                      using T = typename decltype(tag)::type;
			                                      return Flip(pixelsOf<T>(texture, level, arrayMember, face), texture.getWidth(level),
			                                                  texture.getHeight(level), texture.getDepth(level), axis);
		                                      });
	             });
	return result;
}
} // namespace zortexture
