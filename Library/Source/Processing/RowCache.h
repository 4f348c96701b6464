/// @file RowCache.h
/// Rows made from those of an image, kept as long as neighbouring rows of a result need them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "Pixel.h"

namespace zortexture
{
/// Images wider than this are filtered pixel by pixel: a few of their rows as floats could be larger than the image.
inline constexpr unsigned int kWidestCachedRow = 1u << 16;

/// Whether two runs of pixels share memory, so that writing one may change what is read of the other.
template<typename T>
inline bool isOverlapping(const Pixel<T>* a, std::size_t sizeOfA, const Pixel<T>* b, std::size_t sizeOfB)
{
	const auto beginOfA = reinterpret_cast<std::uintptr_t>(a);
	const auto beginOfB = reinterpret_cast<std::uintptr_t>(b);
	return beginOfA < beginOfB + sizeOfB * sizeof(Pixel<T>) && beginOfB < beginOfA + sizeOfA * sizeof(Pixel<T>);
}

/// Numbers whose first values are of no account.
inline std::unique_ptr<float[]> numbersOf(std::size_t numPixels)
{
	return std::make_unique_for_overwrite<float[]>(numPixels * 4);
}

/// A fixed number of rows of floats, four a pixel, each known by a number of the caller's.
class RowCache
{
public:
	RowCache(std::size_t numRows, std::size_t width) : m_width(width), m_keys(numRows, SIZE_MAX), m_rows(numbersOf(numRows * width))
	{
	}

	/// Finds the rows of all keys, not more than there is room for, at once. Those that are not there are made by `make(key, row)`.
	template<typename Make>
	void find(const std::size_t* keys, std::size_t numKeys, const float** rows, Make&& make)
	{
		const std::size_t* end = keys + numKeys;
		for (std::size_t i = 0; i < numKeys; ++i)
		{
			auto slot = std::find(m_keys.begin(), m_keys.end(), keys[i]);
			const bool isMissing = slot == m_keys.end();
			if (isMissing)
			{
				slot = std::find_if(m_keys.begin(), m_keys.end(), [&](std::size_t key) { return std::find(keys, end, key) == end; });
				*slot = keys[i];
			}
			float* row = m_rows.get() + static_cast<std::size_t>(slot - m_keys.begin()) * m_width * 4;
			if (isMissing)
			{
				make(keys[i], row);
			}
			rows[i] = row;
		}
	}

private:
	std::size_t m_width;
	std::vector<std::size_t> m_keys;
	std::unique_ptr<float[]> m_rows;
};
} // namespace zortexture
