/// @file ConvolvedRows.h
/// A convolution by whole rows, for the levels of vector units.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "RowCache.h"
#include "RowFilters.h"

namespace zortexture
{
/// The pixel that tap `tap` of `kernelSize` reads. The coordinate is unsigned, so that one before the first pixel wraps and
/// lands on the last pixel, as one past the last pixel does.
inline std::size_t tapCoordinate(unsigned int centre, unsigned int tap, unsigned int kernelSize, unsigned int size)
{
	return std::min(size - 1, centre + tap - kernelSize / 2);
}

/// A kernel of odd sizes with kx fastest, and what its sums are multiplied by.
struct Kernel
{
	const float* taps;
	float scale;
	unsigned int width;
	unsigned int height;
	unsigned int depth;
};

/// Rows of an image convolved, as numbers that are not truncated yet.
template<ESimdLevel level, typename T>
class ConvolvedRows
{
public:
	ConvolvedRows(const Pixel<T>* image, unsigned int width, unsigned int height, unsigned int depth, const Kernel& kernel)
	    : m_image(image), m_width(width), m_height(height), m_depth(depth), m_kernel(kernel), m_margin(kernel.width / 2),
	      m_keys(std::size_t{kernel.height} * kernel.depth), m_rows(m_keys.size()),
	      m_cache(m_keys.size(), width + std::size_t{2} * m_margin)
	{
	}

	void make(unsigned int y, unsigned int z, float* numbers)
	{
		auto key = m_keys.begin();
		for (unsigned int kz = 0; kz < m_kernel.depth; ++kz)
		{
			const std::size_t slice = tapCoordinate(z, kz, m_kernel.depth, m_depth) * m_height;
			for (unsigned int ky = 0; ky < m_kernel.height; ++ky)
			{
				*key++ = slice + tapCoordinate(y, ky, m_kernel.height, m_height);
			}
		}
		m_cache.find(m_keys.data(), m_keys.size(), m_rows.data(), [this](std::size_t row, float* expanded) { expand(row, expanded); });
		convolveRow<level>(m_rows.data(), m_rows.size(), m_kernel.taps, m_kernel.width, m_kernel.scale, numbers, m_width);
	}

private:
	/// A row between margins, both of the last pixel.
	void expand(std::size_t row, float* numbers) const
	{
		float* first = numbers + m_margin * 4;
		float* end = first + std::size_t{m_width} * 4;
		expandRow<level>(m_image + row * m_width, first, m_width);
		for (std::size_t i = 0; i < m_margin; ++i)
		{
			std::copy_n(end - 4, 4, numbers + i * 4);
			std::copy_n(end - 4, 4, end + i * 4);
		}
	}

	const Pixel<T>* m_image;
	unsigned int m_width;
	unsigned int m_height;
	unsigned int m_depth;
	Kernel m_kernel;
	std::size_t m_margin;
	std::vector<std::size_t> m_keys;
	std::vector<const float*> m_rows;
	RowCache m_cache;
};
} // namespace zortexture
