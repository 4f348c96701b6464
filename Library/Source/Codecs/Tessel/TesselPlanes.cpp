#include "TesselPlanes.h"

#include <algorithm>
#include <cstring>

#include "TesselFarthest.h"
#include "TesselUpscale.h"

namespace zortexture
{
namespace
{
unsigned luminance(unsigned colour)
{
	return (30U * (colour & 255) + 59U * ((colour >> 8) & 255) + 11U * ((colour >> 16) & 255)) / 100;
}

template<int BlockWidth>
void upscaleArea(unsigned p, unsigned q, unsigned r, unsigned s, TesselPixel* out)
{
	constexpr int kShift = BlockWidth == 8 ? 5 : 4;
	upscaleTesselArea<BlockWidth>(unpackTesselColour(p), unpackTesselColour(q), unpackTesselColour(r), unpackTesselColour(s),
	                              [out](int u, int v, const TesselColour& t)
	                              {
		                              const auto channel = [&t](unsigned c)
		                              {
			                              return static_cast<unsigned char>(t[c] >> kShift);
		                              };
		                              out[BlockWidth * v + u] = {channel(0), channel(1), channel(2), channel(3)};
	                              });
}

template<int BlockWidth>
void upscalePlane(const TesselPlanes& planes, const unsigned* colours, TesselPixel* upscaled)
{
	const std::int64_t numX = planes.blocksX;
	const std::int64_t numY = planes.blocksY;
	// -1 stands for the last block, the count for the first.
	const auto wrap = [](std::int64_t position, std::int64_t count)
	{
		return position < 0 ? count - 1 : (position == count ? 0 : position);
	};
	for (std::int64_t by = -1; by < numY; ++by)
	{
		const TesselAreaSpan rows = tesselAreaSpan(by, 4, numY * 4);
		const unsigned* upper = colours + wrap(by, numY) * numX;
		const unsigned* lower = colours + wrap(by + 1, numY) * numX;
		for (std::int64_t bx = -1; bx < numX; ++bx)
		{
			const TesselAreaSpan columns = tesselAreaSpan(bx, BlockWidth, numX * BlockWidth);
			const std::int64_t left = wrap(bx, numX);
			const std::int64_t right = wrap(bx + 1, numX);
			TesselPixel area[BlockWidth * 4];
			upscaleArea<BlockWidth>(upper[left], upper[right], lower[left], lower[right], area);
			for (std::int64_t v = rows.first; v < rows.end; ++v)
			{
				TesselPixel* line = upscaled + (rows.origin + v) * planes.width + columns.origin;
				std::copy(area + v * BlockWidth + columns.first, area + v * BlockWidth + columns.end, line + columns.first);
			}
		}
	}
}

std::int64_t wrapped(std::int64_t position, std::int64_t size)
{
	return position >= 0 && position < size ? position : ((position % size) + size) % size;
}

/// The pixels of kWidth columns and `height` rows from (left, top) on, around the edges of the image.
template<unsigned kWidth>
void collectPixels(const TesselPlanes& planes, std::int64_t left, std::int64_t top, unsigned height, TesselPixel* window)
{
	const bool wraps = left < 0 || left + kWidth > planes.width;
	for (unsigned row = 0; row < height; ++row, window += kWidth)
	{
		const TesselPixel* line = planes.image + wrapped(top + row, planes.height) * planes.width;
		if (!wraps)
		{
			std::memcpy(window, line + left, kWidth * sizeof(TesselPixel));
			continue;
		}
		for (unsigned column = 0; column < kWidth; ++column)
		{
			window[column] = line[wrapped(left + column, planes.width)];
		}
	}
}

/// The pixels of a block, or of a window of twice its size around it.
/// @return their number.
unsigned collectWindow(const TesselPlanes& planes, unsigned x, unsigned y, bool overlapWindow, TesselPixel* window)
{
	const unsigned scale = overlapWindow ? 2 : 1;
	const unsigned width = planes.blockWidth * scale;
	const unsigned height = planes.blockHeight * scale;
	const std::int64_t left = std::int64_t(x) * planes.blockWidth - (overlapWindow ? planes.blockWidth / 2 : 0);
	const std::int64_t top = std::int64_t(y) * planes.blockHeight - (overlapWindow ? planes.blockHeight / 2 : 0);
	const auto collect = width == 4 ? collectPixels<4> : (width == 8 ? collectPixels<8> : collectPixels<16>);
	collect(planes, left, top, height, window);
	return width * height;
}

template<ESimdLevel level>
void calculateColours(const TesselPlanes& planes, unsigned x, unsigned y, unsigned& colourA, unsigned& colourB, bool overlapWindow)
{
	TesselPixel window[kMostTesselWindowPixels];
	const unsigned count = collectWindow(planes, x, y, overlapWindow, window);
	if constexpr (level == eSimdPlain)
	{
		selectColoursAB_MaxDistance(window, count, colourA, colourB);
	}
	else
	{
		unsigned first = 0;
		unsigned second = 0;
		findFarthestTesselPixels<level>(window, count, first, second);
		colourA = packTesselPixel(window[first]);
		colourB = packTesselPixel(window[second]);
		orderTesselColours(colourA, colourB);
	}
}
} // namespace

unsigned calculateImageBlockErrorMeanSquared(const TesselPixel* a, const TesselPixel* b, unsigned count)
{
	unsigned error = 0;
	for (unsigned i = 0; i < count; ++i)
	{
		error += squareColourDistance(a[i], b[i]);
	}
	return error;
}

void orderTesselColours(unsigned& colourA, unsigned& colourB)
{
	const unsigned luminanceA = luminance(colourA);
	const unsigned luminanceB = luminance(colourB);
	if (luminanceA > luminanceB || (luminanceA == luminanceB && colourA > colourB))
	{
		std::swap(colourA, colourB);
	}
}

void selectColoursAB_MaxDistance(const TesselPixel* pixels, unsigned count, unsigned& colourA, unsigned& colourB)
{
	unsigned best = 0;
	unsigned first = 0;
	unsigned second = 0;
	for (unsigned i = 0; i < count; ++i)
	{
		for (unsigned j = i + 1; j < count; ++j)
		{
			const unsigned distance = squareColourDistance(pixels[i], pixels[j]);
			if (distance > best)
			{
				best = distance;
				first = i;
				second = j;
			}
		}
	}
	colourA = packTesselPixel(pixels[first]);
	colourB = packTesselPixel(pixels[second]);
	orderTesselColours(colourA, colourB);
}

void calculateColoursABForBlock(const TesselPlanes& planes, unsigned x, unsigned y, unsigned& colourA, unsigned& colourB,
                                bool overlapWindow)
{
	withSimdLevel([&](auto level) { calculateColours<level>(planes, x, y, colourA, colourB, overlapWindow); });
}

void calculateColoursAB(const TesselPlanes& planes, bool overlapWindow)
{
	withSimdLevel(
	    [&](auto level)
	    {
		    std::size_t block = 0;
		    for (unsigned y = 0; y < planes.blocksY; ++y)
		    {
			    for (unsigned x = 0; x < planes.blocksX; ++x, ++block)
			    {
				    calculateColours<level>(planes, x, y, planes.coloursA[block], planes.coloursB[block], overlapWindow);
			    }
		    }
	    });
}

void interpolateColours4x4_uint8(unsigned p, unsigned q, unsigned r, unsigned s, TesselPixel* out)
{
	upscaleArea<4>(p, q, r, s, out);
}

void interpolateColours8x4_uint8(unsigned p, unsigned q, unsigned r, unsigned s, TesselPixel* out)
{
	upscaleArea<8>(p, q, r, s, out);
}

void interpolateColoursAB(const TesselPlanes& planes)
{
	if (planes.blocksX == 0 || planes.blocksY == 0)
	{
		return;
	}
	const auto upscale = planes.blockWidth == 8 ? upscalePlane<8> : upscalePlane<4>;
	upscale(planes, planes.coloursA, planes.upscaledA);
	upscale(planes, planes.coloursB, planes.upscaledB);
}
} // namespace zortexture
