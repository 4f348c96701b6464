#include <cstddef>
#include <vector>

#include "ElementDispatch.h"
#include "Resampling.h"
#include "Samplers.h"
#include "StretchRows.h"

namespace zortexture
{
namespace
{
/// One axis of a step: its sizes, and the ratios between positions in source and destination.
struct Axis
{
	Axis(unsigned int from, unsigned int to)
	    : sourceSize(from), size(to), ratio(static_cast<double>(from) / to), inverseRatio(from > to ? 1.0 / ratio : 0.0)
	{
	}

	bool isGrowing() const
	{
		return size > sourceSize;
	}

	unsigned int sourceSize;
	unsigned int size;
	double ratio;
	double inverseRatio;
};

/// The source position of a destination pixel. A step that enlarges any axis maps all axes by their plain ratios.
float sourcePosition(const Axis& axis, unsigned int index, bool isUpscaling)
{
	return isUpscaling ? static_cast<float>(index * axis.ratio)
	                   : calculateDownscalePosition(index, axis.size, axis.inverseRatio, axis.ratio);
}

/// The source pixel of a destination pixel without filtering. Always inside: index is at most size - 1, and both sizes are
/// too small for the rounding of a double to make up for that 1.
std::size_t nearestPixel(const Axis& axis, unsigned int index)
{
	return static_cast<std::size_t>(axis.ratio * index);
}

/// Rows of the result that take the same row of the source are copies of each other, unless the images share memory.
template<typename T>
void stretchNearest(const Pixel<T>* source, Pixel<T>* destination, const Axis& axisX, const Axis& axisY, const Axis& axisZ,
                    bool isOverlapping)
{
	std::vector<unsigned int> columns(axisX.size);
	for (unsigned int x = 0; x < axisX.size; ++x)
	{
		columns[x] = static_cast<unsigned int>(nearestPixel(axisX, x));
	}
	const Pixel<T>* previous = nullptr;
	for (unsigned int z = 0; z < axisZ.size; ++z)
	{
		const std::size_t slice = nearestPixel(axisZ, z) * axisY.sourceSize;
		for (unsigned int y = 0; y < axisY.size; ++y)
		{
			const Pixel<T>* row = source + (slice + nearestPixel(axisY, y)) * axisX.sourceSize;
			if (row == previous && !isOverlapping)
			{
				destination = std::copy_n(destination - axisX.size, axisX.size, destination);
				continue;
			}
			previous = row;
			for (const unsigned int column : columns)
			{
				*destination++ = row[column];
			}
		}
	}
}

template<unsigned int TapCount>
AxisTaps<TapCount> tapsOfPixel(const Axis& axis, unsigned int index, bool isUpscaling)
{
	return tapsAt<TapCount>(sourcePosition(axis, index, isUpscaling), axis.sourceSize);
}

template<unsigned int TapCount>
std::vector<AxisTaps<TapCount>> tapsOfAxis(const Axis& axis, bool isUpscaling)
{
	std::vector<AxisTaps<TapCount>> taps(axis.size);
	for (unsigned int i = 0; i < axis.size; ++i)
	{
		taps[i] = tapsOfPixel<TapCount>(axis, i, isUpscaling);
	}
	return taps;
}

/// Samples pixel by pixel, with `TapCount` taps an axis: 2 linear, 4 cubic.
template<unsigned int TapCount, typename T>
void stretchFiltered(const Pixel<T>* source, Pixel<T>* destination, const Axis& axisX, const Axis& axisY, const Axis& axisZ,
                     bool isUpscaling)
{
	const auto taps = [isUpscaling](const Axis& axis, unsigned int index)
	{
		return tapsOfPixel<TapCount>(axis, index, isUpscaling);
	};
	for (unsigned int z = 0; z < axisZ.size; ++z)
	{
		const AxisTaps<TapCount> tapsZ = taps(axisZ, z);
		for (unsigned int y = 0; y < axisY.size; ++y)
		{
			const AxisTaps<TapCount> tapsY = taps(axisY, y);
			for (unsigned int x = 0; x < axisX.size; ++x)
			{
				*destination++ = samplePixel(source, axisX.sourceSize, axisY.sourceSize, axisZ.sourceSize, taps(axisX, x), tapsY, tapsZ);
			}
		}
	}
}

/// The source smoothed, for a cubic reduction.
template<typename T>
std::vector<Pixel<T>> smooth(Pixel<T>* source, unsigned int width, unsigned int height, unsigned int depth)
{
	std::vector<Pixel<T>> smoothed(static_cast<std::size_t>(width) * height * depth);
	if (depth == 1)
	{
		ConvolutionKernel(source, smoothed.data(), width, height, depth, kSmoothing2D, 16.0f, 3, 3, 1);
	}
	else
	{
		ConvolutionKernel(source, smoothed.data(), width, height, depth, kSmoothing3D, 64.0f, 3, 3, 3);
	}
	return smoothed;
}

/// Linear with 2 taps an axis, cubic with 4; reductions of the latter are smoothed first.
template<unsigned int TapCount, typename T>
void stretch(Pixel<T>* source, Pixel<T>* destination, const Axis& axisX, const Axis& axisY, const Axis& axisZ, bool isOverlapping)
{
	const bool isUpscaling = axisX.isGrowing() || axisY.isGrowing() || axisZ.isGrowing();
	const bool isSmoothed = TapCount == 4 && !isUpscaling;
	const auto stretchRows = [&](auto level)
	{
		StretchStep<TapCount> step{axisX.sourceSize, axisY.sourceSize, axisZ.sourceSize, {}, {}, {}};
		step.x = tapsOfAxis<TapCount>(axisX, isUpscaling);
		step.y = tapsOfAxis<TapCount>(axisY, isUpscaling);
		step.z = tapsOfAxis<TapCount>(axisZ, isUpscaling);
		if constexpr (TapCount == 2)
		{
			stretchLinearRows<level>(source, destination, step);
		}
		else
		{
			stretchCubicRows<level>(source, destination, step, isSmoothed);
		}
	};
	const auto stretchPixels = [&]
	{
		if (isSmoothed)
		{
			const std::vector<Pixel<T>> smoothed = smooth(source, axisX.sourceSize, axisY.sourceSize, axisZ.sourceSize);
			stretchFiltered<TapCount>(smoothed.data(), destination, axisX, axisY, axisZ, isUpscaling);
		}
		else
		{
			stretchFiltered<TapCount>(source, destination, axisX, axisY, axisZ, isUpscaling);
		}
	};
	withSimdLevel(
	    [&](auto level)
	    {
		    if constexpr (level != eSimdPlain)
		    {
			    if (!isOverlapping && axisX.sourceSize <= kWidestCachedRow && axisX.size <= kWidestCachedRow)
			    {
				    return stretchRows(level);
			    }
		    }
		    stretchPixels();
	    });
}
} // namespace

float calculateDownscalePosition(unsigned int index, unsigned int count, double inverseRatio, double ratio)
{
	if (count <= 1)
	{
		return 0.0f;
	}
	const double t = static_cast<double>(index) / (count - 1);
	// The shift of the first and of the last sample, blended; on an axis that keeps its size it runs from 1 to -1.
	const auto a = static_cast<float>((1.0 - inverseRatio) * (1.0 - t) + inverseRatio * t);
	return static_cast<float>((t + index) * ratio + (a - 2.0 * t));
}

float evaluateSplines(const float* fourPoints, const float& t)
{
	return spline(fourPoints[0], fourPoints[1], fourPoints[2], fourPoints[3], t);
}

template<typename T>
void SampleLinear(Pixel<T>* source, Pixel<T>* destinationPixel, const unsigned int& width, const unsigned int& height,
                  const unsigned int& depth, const float& x, const float& y, const float& z)
{
	if (source == nullptr || destinationPixel == nullptr || width == 0 || height == 0 || depth == 0)
	{
		return;
	}
	*destinationPixel = samplePixel(source, width, height, depth, tapsAt<2>(x, width), tapsAt<2>(y, height), tapsAt<2>(z, depth));
}

template<typename T>
void SampleCubic(Pixel<T>* source, Pixel<T>* destinationPixel, const unsigned int& width, const unsigned int& height,
                 const unsigned int& depth, const float& x, const float& y, const float& z)
{
	if (source == nullptr || destinationPixel == nullptr || width == 0 || height == 0 || depth == 0)
	{
		return;
	}
	*destinationPixel = samplePixel(source, width, height, depth, tapsAt<4>(x, width), tapsAt<4>(y, height), tapsAt<4>(z, depth));
}

template<typename T>
bool StretchImage(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                  unsigned int newWidth, unsigned int newHeight, unsigned int newDepth, EResizeMode mode)
{
	if (source == nullptr || destination == nullptr)
	{
		return false;
	}
	if (newWidth == 0 || newHeight == 0 || newDepth == 0)
	{
		return true;
	}
	if (width == 0 || height == 0 || depth == 0)
	{
		return false;
	}
	const Axis axisX(width, newWidth);
	const Axis axisY(height, newHeight);
	const Axis axisZ(depth, newDepth);
	const bool overlaps =
	    isOverlapping(source, std::size_t{width} * height * depth, destination, std::size_t{newWidth} * newHeight * newDepth);
	switch (mode)
	{
	case eResizeNearest:
		stretchNearest(source, destination, axisX, axisY, axisZ, overlaps);
		break;
	case eResizeLinear:
		stretch<2>(source, destination, axisX, axisY, axisZ, overlaps);
		break;
	case eResizeCubic:
		stretch<4>(source, destination, axisX, axisY, axisZ, overlaps);
		break;
	default:
		break;
	}
	return true;
}

#define ZORT_STRETCH_IMAGE(T)                                                                                                              \
	template ZORT_API bool StretchImage(Pixel<T>*, Pixel<T>*, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int,        \
	                                    unsigned int, EResizeMode);                                                                        \
	template ZORT_API void SampleLinear(Pixel<T>*, Pixel<T>*, const unsigned int&, const unsigned int&, const unsigned int&, const float&, \
	                                    const float&, const float&);                                                                       \
	template ZORT_API void SampleCubic(Pixel<T>*, Pixel<T>*, const unsigned int&, const unsigned int&, const unsigned int&, const float&,  \
	                                   const float&, const float&);
ZORT_STRETCH_IMAGE(unsigned char)
ZORT_STRETCH_IMAGE(unsigned short)
ZORT_STRETCH_IMAGE(unsigned int)
ZORT_STRETCH_IMAGE(float)
#undef ZORT_STRETCH_IMAGE
} // namespace zortexture
