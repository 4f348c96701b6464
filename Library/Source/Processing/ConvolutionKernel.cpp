#include <algorithm>
#include <cmath>
#include <cstddef>

#include "ConvolvedRows.h"
#include "ElementDispatch.h"
#include "Resampling.h"

namespace zortexture
{
namespace
{
template<typename T>
Pixel<T> toPixel(const Pixel<float>& value)
{
	return {toElement<T>(value.r), toElement<T>(value.g), toElement<T>(value.b), toElement<T>(value.a)};
}

template<typename T>
void convolvePixels(const Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                    const Kernel& kernel)
{
	for (unsigned int z = 0; z < depth; ++z)
	{
		for (unsigned int y = 0; y < height; ++y)
		{
			for (unsigned int x = 0; x < width; ++x)
			{
				Pixel<float> sum{};
				const float* tap = kernel.taps;
				for (unsigned int kz = 0; kz < kernel.depth; ++kz)
				{
					const std::size_t slice = tapCoordinate(z, kz, kernel.depth, depth) * height;
					for (unsigned int ky = 0; ky < kernel.height; ++ky)
					{
						const Pixel<T>* row = source + (slice + tapCoordinate(y, ky, kernel.height, height)) * width;
						for (unsigned int kx = 0; kx < kernel.width; ++kx, ++tap)
						{
							const Pixel<T>& pixel = row[tapCoordinate(x, kx, kernel.width, width)];
							sum.r += *tap * static_cast<float>(pixel.r);
							sum.g += *tap * static_cast<float>(pixel.g);
							sum.b += *tap * static_cast<float>(pixel.b);
							sum.a += *tap * static_cast<float>(pixel.a);
						}
					}
				}
				*destination++ = toPixel<T>({sum.r * kernel.scale, sum.g * kernel.scale, sum.b * kernel.scale, sum.a * kernel.scale});
			}
		}
	}
}

template<ESimdLevel level, typename T>
void convolveRows(const Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                  const Kernel& kernel)
{
	ConvolvedRows<level, T> rows(source, width, height, depth, kernel);
	std::vector<Pixel<float>> numbers(width);
	for (unsigned int z = 0; z < depth; ++z)
	{
		for (unsigned int y = 0; y < height; ++y)
		{
			rows.make(y, z, reinterpret_cast<float*>(numbers.data()));
			destination = std::transform(numbers.begin(), numbers.end(), destination, toPixel<T>);
		}
	}
}
} // namespace

template<typename T>
bool ConvolutionKernel(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                       const float* kernel, float weight, unsigned int kernelWidth, unsigned int kernelHeight, unsigned int kernelDepth)
{
	const bool isOdd = (kernelWidth & kernelHeight & kernelDepth & 1u) != 0;
	if (!isOdd || source == nullptr || destination == nullptr || kernel == nullptr)
	{
		return false;
	}
	const Kernel taps = {kernel, 1.0f / weight, kernelWidth, kernelHeight, kernelDepth};
	const std::size_t numPixels = std::size_t{width} * height * depth;
	// By rows what is of the sizes that filters have: enough pixels to gain from it, and few enough rows to hold. Which of two NaNs a
	// product keeps is left to the order that the compiler puts them in.
	const bool isByRows =
	    numPixels > 1 && width <= kWidestCachedRow && kernelWidth <= 64 && kernelHeight <= 64 && kernelDepth <= 64 &&
	    kernelHeight * kernelDepth <= 64 && !isOverlapping(source, numPixels, destination, numPixels) &&
	    std::none_of(kernel, kernel + std::size_t{kernelWidth} * kernelHeight * kernelDepth, [](float tap) { return std::isnan(tap); });
	withSimdLevel(
	    [&](auto level)
	    {
		    if constexpr (level != eSimdPlain)
		    {
			    if (isByRows)
			    {
				    return convolveRows<level>(source, destination, width, height, depth, taps);
			    }
		    }
		    convolvePixels(source, destination, width, height, depth, taps);
	    });
	return true;
}

#define ZORT_CONVOLUTION_KERNEL(T)                                                                                                         \
	template ZORT_API bool ConvolutionKernel(Pixel<T>*, Pixel<T>*, unsigned int, unsigned int, unsigned int, const float*, float,          \
	                                         unsigned int, unsigned int, unsigned int);
ZORT_CONVOLUTION_KERNEL(unsigned char)
ZORT_CONVOLUTION_KERNEL(unsigned short)
ZORT_CONVOLUTION_KERNEL(unsigned int)
ZORT_CONVOLUTION_KERNEL(float)
#undef ZORT_CONVOLUTION_KERNEL
} // namespace zortexture
