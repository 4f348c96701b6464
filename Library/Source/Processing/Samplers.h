/// @file Samplers.h
/// Linear and cubic samples of an image, from the pixels that a position touches on each axis.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "AxisTaps.h"
#include "ElementDispatch.h"

namespace zortexture
{
/// The pixel below a position, limited to an axis of `size` pixels (at least 1); 0 for NaN.
inline std::size_t clampToAxis(float position, unsigned int size)
{
	if (!(position > 0.0f))
	{
		return 0;
	}
	// The last coordinate may round up when it becomes a float.
	const unsigned int last = size - 1;
	const float limited = std::min(position, static_cast<float>(last));
	return static_cast<std::size_t>(std::min<std::uint64_t>(static_cast<std::uint64_t>(limited), last));
}

template<unsigned int Count>
inline AxisTaps<Count> tapsAt(float position, unsigned int size)
{
	constexpr int first = 1 - static_cast<int>(Count / 2);
	AxisTaps<Count> taps{};
	for (unsigned int i = 0; i < Count; ++i)
	{
		taps.index[i] = clampToAxis(position + static_cast<float>(first + static_cast<int>(i)), size);
	}
	taps.fraction = position - std::trunc(position);
	return taps;
}

/// Limits a filtered channel to what T holds and truncates it. NaN becomes 0.
template<typename T>
inline T clampToElement(float value)
{
	constexpr float ceiling = kElementCeiling<T>;
	return value > 0.0f ? toElement<T>(value < ceiling ? value : ceiling) : static_cast<T>(0);
}

template<typename T>
inline Pixel<T> clampToPixel(const Pixel<float>& value)
{
	return {clampToElement<T>(value.r), clampToElement<T>(value.g), clampToElement<T>(value.b), clampToElement<T>(value.a)};
}

template<typename T>
inline Pixel<float> toFloat(const Pixel<T>& pixel)
{
	return {static_cast<float>(pixel.r), static_cast<float>(pixel.g), static_cast<float>(pixel.b), static_cast<float>(pixel.a)};
}

/// Catmull-Rom spline from p1 (t = 0) to p2 (t = 1).
inline float spline(float p0, float p1, float p2, float p3, float t)
{
	const float t2 = t * t;
	const float t3 = t2 * t;
	return 0.5f * (2.0f * p1 + (p2 - p0) * t + (2.0f * p0 - 5.0f * p1 + 4.0f * p2 - p3) * t2 + (-p0 + 3.0f * p1 - 3.0f * p2 + p3) * t3);
}

inline Pixel<float> spline(const Pixel<float> (&p)[4], float t)
{
	return {spline(p[0].r, p[1].r, p[2].r, p[3].r, t), spline(p[0].g, p[1].g, p[2].g, p[3].g, t), spline(p[0].b, p[1].b, p[2].b, p[3].b, t),
	        spline(p[0].a, p[1].a, p[2].a, p[3].a, t)};
}

/// Trilinear sample: the sum of eight weighted pixels, x fastest. `height` is that of the image, for the stride of its slices.
template<typename T>
inline Pixel<T> samplePixel(const Pixel<T>* source, std::size_t width, std::size_t height, unsigned int /*depth*/, const LinearTaps& x,
                            const LinearTaps& y, const LinearTaps& z)
{
	const float weightX[2] = {1.0f - x.fraction, x.fraction};
	const float weightY[2] = {1.0f - y.fraction, y.fraction};
	const float weightZ[2] = {1.0f - z.fraction, z.fraction};
	Pixel<float> sum{};
	for (unsigned int k = 0; k < 2; ++k)
	{
		for (unsigned int j = 0; j < 2; ++j)
		{
			const Pixel<T>* row = source + (z.index[k] * height + y.index[j]) * width;
			for (unsigned int i = 0; i < 2; ++i)
			{
				const float weight = weightX[i] * weightY[j] * weightZ[k];
				const Pixel<T>& pixel = row[x.index[i]];
				sum.r += static_cast<float>(pixel.r) * weight;
				sum.g += static_cast<float>(pixel.g) * weight;
				sum.b += static_cast<float>(pixel.b) * weight;
				sum.a += static_cast<float>(pixel.a) * weight;
			}
		}
	}
	return clampToPixel<T>(sum);
}

/// Tricubic sample: splines along x, then y, then z; only the first slice of an image of depth 1. Nothing is clamped in between.
template<typename T>
inline Pixel<T> samplePixel(const Pixel<T>* source, std::size_t width, std::size_t height, unsigned int depth, const CubicTaps& x,
                            const CubicTaps& y, const CubicTaps& z)
{
	const auto sampleSlice = [&](std::size_t slice)
	{
		Pixel<float> rows[4];
		for (unsigned int j = 0; j < 4; ++j)
		{
			const Pixel<T>* row = source + (slice * height + y.index[j]) * width;
			rows[j] = spline({toFloat(row[x.index[0]]), toFloat(row[x.index[1]]), toFloat(row[x.index[2]]), toFloat(row[x.index[3]])},
			                 x.fraction);
		}
		return spline(rows, y.fraction);
	};
	if (depth == 1)
	{
		return clampToPixel<T>(sampleSlice(0));
	}
	return clampToPixel<T>(
	    spline({sampleSlice(z.index[0]), sampleSlice(z.index[1]), sampleSlice(z.index[2]), sampleSlice(z.index[3])}, z.fraction));
}
} // namespace zortexture
