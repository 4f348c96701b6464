#include <algorithm>
#include <cstddef>

#include "ElementDispatch.h"
#include "Resampling.h"

namespace zortexture
{
namespace
{
/// The pixel that tap `tap` of `kernelSize` reads. The coordinate is unsigned, so that one before the first pixel wraps and
/// lands on the last pixel, as one past the last pixel does.
std::size_t tapCoordinate(unsigned int centre, unsigned int tap, unsigned int kernelSize, unsigned int size)
{
	return std::min(size - 1, centre + tap - kernelSize / 2);
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
	const float scale = 1.0f / weight;
	Pixel<T>* output = destination;
	for (unsigned int z = 0; z < depth; ++z)
	{
		for (unsigned int y = 0; y < height; ++y)
		{
			for (unsigned int x = 0; x < width; ++x)
			{
				Pixel<float> sum{};
				const float* tap = kernel;
				for (unsigned int kz = 0; kz < kernelDepth; ++kz)
				{
					const std::size_t slice = tapCoordinate(z, kz, kernelDepth, depth) * height;
					for (unsigned int ky = 0; ky < kernelHeight; ++ky)
					{
						const Pixel<T>* row = source + (slice + tapCoordinate(y, ky, kernelHeight, height)) * width;
						for (unsigned int kx = 0; kx < kernelWidth; ++kx, ++tap)
						{
							const Pixel<T>& pixel = row[tapCoordinate(x, kx, kernelWidth, width)];
							sum.r += *tap * static_cast<float>(pixel.r);
							sum.g += *tap * static_cast<float>(pixel.g);
							sum.b += *tap * static_cast<float>(pixel.b);
							sum.a += *tap * static_cast<float>(pixel.a);
						}
					}
				}
				*output++ = {toElement<T>(sum.r * scale), toElement<T>(sum.g * scale), toElement<T>(sum.b * scale),
				             toElement<T>(sum.a * scale)};
			}
		}
	}
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
