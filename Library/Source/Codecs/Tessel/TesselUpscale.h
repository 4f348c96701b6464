/// @file TesselUpscale.h
/// Bilinear upscaling between block centres, as decoder and fast compressor share it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace zortexture
{
/// A colour, one channel an element.
using TesselColour = std::array<int, 4>;

inline TesselColour unpackTesselColour(unsigned packed)
{
	return {static_cast<int>(packed & 255), static_cast<int>((packed >> 8) & 255), static_cast<int>((packed >> 16) & 255),
	        static_cast<int>(packed >> 24)};
}

/// Upscales one colour plane over the area between the centres of four blocks, P and Q above R and S. The area is one block in
/// size. Calls emit(u, v, channels) for every pixel in row order, where each channel is scaled by 4 * BlockWidth.
template<int BlockWidth, typename Emit>
void upscaleTesselArea(const TesselColour& p, const TesselColour& q, const TesselColour& r, const TesselColour& s, Emit&& emit)
{
	TesselColour left;
	TesselColour right;
	for (int c = 0; c < 4; ++c)
	{
		left[c] = 4 * p[c];
		right[c] = 4 * q[c];
	}
	for (int v = 0; v < 4; ++v)
	{
		TesselColour sum;
		TesselColour step;
		for (int c = 0; c < 4; ++c)
		{
			sum[c] = BlockWidth * left[c];
			step[c] = right[c] - left[c];
		}
		for (int u = 0; u < BlockWidth; ++u)
		{
			emit(u, v, sum);
			for (int c = 0; c < 4; ++c)
			{
				sum[c] += step[c];
			}
		}
		for (int c = 0; c < 4; ++c)
		{
			left[c] += r[c] - p[c];
			right[c] += s[c] - q[c];
		}
	}
}

/// The part of an area along one axis that lies inside the image: offsets [first, end) into the area, whose first pixel is
/// `origin`.
struct TesselAreaSpan
{
	TesselAreaSpan(std::int64_t areaOrigin, std::int64_t areaSize, std::int64_t imageSize)
	    : origin(areaOrigin), first(std::clamp<std::int64_t>(-areaOrigin, 0, areaSize)),
	      end(std::clamp<std::int64_t>(imageSize - areaOrigin, first, areaSize))
	{
	}

	std::int64_t origin;
	std::int64_t first;
	std::int64_t end;
};

/// The area that follows the centre of block `block`; -1 is the half block at the image's start.
inline TesselAreaSpan tesselAreaSpan(std::int64_t block, std::int64_t blockSize, std::int64_t imageSize)
{
	return {block * blockSize + blockSize / 2, blockSize, imageSize};
}
} // namespace zortexture
