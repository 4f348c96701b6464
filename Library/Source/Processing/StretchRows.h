/// @file StretchRows.h
/// One step of a resize by whole rows, for the levels of vector units.
///
/// What pixels touch on an axis depends on their coordinate alone and is worked out once. Rows of the source are made numbers once, and
/// those of a cubic step are sampled along x once for all rows of the result that use them; these are the same operations as those
/// of a single sample, and so the same bits.
#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

#include "ConvolvedRows.h"
#include "RowCache.h"
#include "RowFilters.h"

namespace zortexture
{
/// The size of the source, and what the pixels of the result touch on each axis.
template<unsigned int Count>
struct StretchStep
{
	unsigned int width;
	unsigned int height;
	unsigned int depth;
	std::vector<AxisTaps<Count>> x;
	std::vector<AxisTaps<Count>> y;
	std::vector<AxisTaps<Count>> z;
};

// Binomial smoothing ahead of a cubic reduction; the outer products of 1 2 1.
inline constexpr float kSmoothing2D[9] = {1, 2, 1, 2, 4, 2, 1, 2, 1};
inline constexpr float kSmoothing3D[27] = {1, 2, 1, 2, 4, 2, 1, 2, 1, 2, 4, 2, 4, 8, 4, 2, 4, 2, 1, 2, 1, 2, 4, 2, 1, 2, 1};

/// The fractions on the x axis, once a channel.
template<unsigned int Count>
std::vector<float> fractionsOfChannels(const std::vector<AxisTaps<Count>>& taps)
{
	std::vector<float> fractions;
	fractions.reserve(taps.size() * 4);
	for (const AxisTaps<Count>& pixel : taps)
	{
		fractions.insert(fractions.end(), 4, pixel.fraction);
	}
	return fractions;
}

/// Whether each sample lies in the middle between two pixels of its own. The taps of splines beyond these are their neighbours then,
/// or, at the ends, the same pixels.
template<unsigned int Count>
bool isHalving(const std::vector<AxisTaps<Count>>& taps)
{
	for (std::size_t i = 0; i < taps.size(); ++i)
	{
		const std::size_t* middle = taps[i].index + Count / 2 - 1;
		if (taps[i].fraction != 0.5f || middle[0] != 2 * i || middle[1] != 2 * i + 1)
		{
			return false;
		}
	}
	return true;
}

template<ESimdLevel level, typename T>
void stretchLinearRows(const Pixel<T>* source, Pixel<T>* destination, const StretchStep<2>& step)
{
	constexpr bool isSmallInteger = sizeof(T) < 4;
	const std::size_t width = step.x.size();
	const bool isHalvingX = isHalving(step.x);
	const std::vector<float> fractions = fractionsOfChannels(step.x);
	const RowTaps<2> tapsX = {step.x.data(), fractions.data(), width};
	RowCache cache(std::is_same_v<T, float> ? 0 : 4, step.width);
	const auto numbers = numbersOf(width);
	for (const LinearTaps& z : step.z)
	{
		for (const LinearTaps& y : step.y)
		{
			// A second slice of no weight adds nothing; but floats may be infinite, or no numbers, and then it does.
			const unsigned int numSlices = z.fraction == 0.0f && !std::is_same_v<T, float> ? 1 : 2;
			std::size_t keys[4];
			for (unsigned int i = 0; i < 4; ++i)
			{
				keys[i] = z.index[i / 2] * step.height + y.index[i % 2];
			}
			if (isSmallInteger && isHalvingX && y.fraction == 0.5f && (numSlices == 1 || z.fraction == 0.5f))
			{
				if constexpr (isSmallInteger)
				{
					const Pixel<T>* rows[4];
					std::transform(keys, keys + 4, rows, [&](std::size_t key) { return source + key * step.width; });
					halveRow<level>(rows, numSlices * 2, destination, width);
				}
			}
			else
			{
				const float* rows[4];
				if constexpr (std::is_same_v<T, float>)
				{
					std::transform(keys, keys + 4, rows,
					               [&](std::size_t key) { return reinterpret_cast<const float*>(source + key * step.width); });
				}
				else
				{
					cache.find(keys, numSlices * 2, rows,
					           [&](std::size_t key, float* row) { expandRow<level>(source + key * step.width, row, step.width); });
				}
				linearRow<level>(rows, numSlices, tapsX, y.fraction, z.fraction, numbers.get());
				clampRow<level>(numbers.get(), destination, width);
			}
			destination += width;
		}
	}
}

/// Rows of an image as numbers: smoothed for a reduction, or as they stand.
template<ESimdLevel level, typename T>
class SourceRows
{
public:
	SourceRows(const Pixel<T>* image, unsigned int width, unsigned int height, unsigned int depth, bool isSmoothed)
	    : m_image(image), m_width(width), m_height(height), m_depth(depth), m_isSmoothed(isSmoothed),
	      m_numbers(numbersOf(width + std::size_t{2})), m_sums(kIsSmallInteger && isSmoothed ? smoothingRoom(width) / sizeof(int) : 0),
	      m_convolved(image, width, height, depth, kernel())
	{
	}

	/// Row `row` of all slices; valid until the next call. Rows of integers stand between copies of their first and last pixels.
	const float* find(std::size_t row)
	{
		float* first = m_numbers.get() + 4;
		if (m_isSmoothed)
		{
			smooth(static_cast<unsigned int>(row % m_height), static_cast<unsigned int>(row / m_height), first);
		}
		else if constexpr (std::is_same_v<T, float>)
		{
			return reinterpret_cast<const float*>(m_image + row * m_width);
		}
		else
		{
			expandRow<level>(m_image + row * m_width, first, m_width);
		}
		float* end = first + std::size_t{m_width} * 4;
		std::copy_n(first, 4, first - 4);
		std::copy_n(end - 4, 4, end);
		return first;
	}

private:
	static constexpr bool kIsSmallInteger = sizeof(T) < 4;

	Kernel kernel() const
	{
		if (!m_isSmoothed || kIsSmallInteger)
		{
			return {nullptr, 0, 0, 0, 0};
		}
		return m_depth == 1 ? Kernel{kSmoothing2D, 1.0f / 16.0f, 3, 3, 1} : Kernel{kSmoothing3D, 1.0f / 64.0f, 3, 3, 3};
	}

	void smooth(unsigned int y, unsigned int z, float* numbers)
	{
		if constexpr (kIsSmallInteger)
		{
			const unsigned int numSlices = m_depth == 1 ? 1 : 3;
			const Pixel<T>* rows[9];
			for (unsigned int i = 0; i < numSlices * 3; ++i)
			{
				const std::size_t slice = tapCoordinate(z, i / 3, numSlices, m_depth);
				rows[i] = m_image + (slice * m_height + tapCoordinate(y, i % 3, 3, m_height)) * m_width;
			}
			smoothRow<level>(rows, numSlices * 3, m_sums.data(), numbers, m_width);
		}
		else
		{
			m_convolved.make(y, z, numbers);
			if constexpr (!std::is_same_v<T, float>)
			{
				truncateRow<level>(numbers, m_width);
			}
		}
	}

	const Pixel<T>* m_image;
	unsigned int m_width;
	unsigned int m_height;
	unsigned int m_depth;
	bool m_isSmoothed;
	std::unique_ptr<float[]> m_numbers;
	std::vector<int> m_sums;
	ConvolvedRows<level, T> m_convolved;
};

/// Which of the shorter ways to a spline give its very bits.
template<typename T>
struct CubicShortcuts
{
	explicit CubicShortcuts(const std::vector<CubicTaps>& x)
	    : isMiddleAlong(sizeof(T) < 4 && isHalving(x)),
	      isMiddleAcross(
	          sizeof(T) == 1 &&
	          std::all_of(x.begin(), x.end(), [](const CubicTaps& taps) { return taps.fraction == 0.5f || taps.fraction == 0.0f; }))
	{
	}

	bool isMiddleAlong;  ///< middleAlongRow for all rows
	bool isMiddleAcross; ///< middleAcrossRows where the fraction is 1/2
	/// The second of four rows as it is where the fraction is 0; but floats may be infinite, or no numbers, and then the others show.
	static constexpr bool isSecondRow = !std::is_same_v<T, float>;
};

template<ESimdLevel level, typename T>
void stretchCubicRows(const Pixel<T>* source, Pixel<T>* destination, const StretchStep<4>& step, bool isSmoothed)
{
	const std::size_t width = step.x.size();
	const std::vector<float> fractions = fractionsOfChannels(step.x);
	const RowTaps<4> tapsX = {step.x.data(), fractions.data(), width};
	const CubicShortcuts<T> shortcuts(step.x);
	const unsigned int numSlices = step.depth == 1 ? 1 : 4;
	SourceRows<level, T> sourceRows(source, step.width, step.height, step.depth, isSmoothed);
	RowCache cache(numSlices * std::size_t{4}, width);
	const auto numbers = numbersOf((numSlices + 1) * width);
	const auto sampleAlong = [&](std::size_t key, float* row)
	{
		if (shortcuts.isMiddleAlong)
		{
			middleAlongRow<level>(sourceRows.find(key), row, width);
		}
		else
		{
			splineAlongRow<level>(sourceRows.find(key), tapsX, row);
		}
	};
	const auto sampleAcross = [&](const float* const* rows, float fraction, bool isExact, float* result) -> const float*
	{
		if (shortcuts.isSecondRow && fraction == 0.0f)
		{
			return rows[1];
		}
		if (isExact && fraction == 0.5f)
		{
			middleAcrossRows<level>(rows, result, width);
		}
		else
		{
			splineAcrossRows<level>(rows, fraction, result, width);
		}
		return result;
	};
	for (const CubicTaps& z : step.z)
	{
		for (const CubicTaps& y : step.y)
		{
			std::size_t keys[16];
			for (unsigned int i = 0; i < numSlices * 4; ++i)
			{
				keys[i] = z.index[i / 4] * step.height + y.index[i % 4];
			}
			const float* rows[16];
			cache.find(keys, numSlices * std::size_t{4}, rows, sampleAlong);
			const float* slices[4];
			for (unsigned int i = 0; i < numSlices; ++i)
			{
				slices[i] = sampleAcross(rows + i * std::size_t{4}, y.fraction, shortcuts.isMiddleAcross, numbers.get() + i * width * 4);
			}
			const float* result = numSlices == 1 ? slices[0] : sampleAcross(slices, z.fraction, false, numbers.get() + 4 * width * 4);
			clampRow<level>(result, destination, width);
			destination += width;
		}
	}
}
} // namespace zortexture
