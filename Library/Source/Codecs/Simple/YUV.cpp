#include <algorithm>

#include "PixelPairs.h"
#include "SimpleCodecs.h"

namespace zortexture
{
namespace
{
/// Where a word keeps its four values.
struct YUVLayout
{
	unsigned int firstY;
	unsigned int u;
	unsigned int secondY;
	unsigned int v;
};
constexpr YUVLayout kUYVYLayout{1, 0, 3, 2};
constexpr YUVLayout kYUY2Layout{0, 1, 2, 3};

/// The layout of a format; null for a format that is not of this kind.
const YUVLayout* layoutOf(EZORTPixelFormat format)
{
	switch (format)
	{
	case ePF_UYVY:
		return &kUYVYLayout;
	case ePF_YUY2:
		return &kYUY2Layout;
	default:
		return nullptr;
	}
}

unsigned char clampAndTruncate(float value)
{
	return static_cast<unsigned char>(std::clamp(value, 0.0f, 255.0f));
}

float luma(const BytePixel& pixel)
{
	return 0.257f * pixel.r + 0.504f * pixel.g + 0.098f * pixel.b + 16.5f;
}

/// Undoes the scaling by 256 of a channel.
unsigned char clampScaled(long long value)
{
	return static_cast<unsigned char>(std::clamp(value >> 8, 0ll, 255ll));
}
} // namespace

void ConvertRGBToYUV(Pixel<unsigned char> first, Pixel<unsigned char> second, unsigned char& y0, unsigned char& y1, unsigned char& u,
                     unsigned char& v)
{
	y0 = clampAndTruncate(luma(first));
	y1 = clampAndTruncate(luma(second));
	// Chroma is sampled, not averaged: U where the first pixel is, V where the second one is.
	u = clampAndTruncate(-0.148f * first.r - 0.291f * first.g + 0.439f * first.b + 128.5f);
	v = clampAndTruncate(0.439f * second.r - 0.368f * second.g - 0.071f * second.b + 128.5f);
}

void ConvertYUVToRGB(int y, int u, int v, unsigned char& r, unsigned char& g, unsigned char& b)
{
	// The offset of Y, scaled, less a half for rounding. The sums are wide enough for any arguments.
	constexpr long long kOffset = 298 * 16 - 128;
	const long long c = 298ll * y;
	const long long d = u - 128ll;
	const long long e = v - 128ll;
	r = clampScaled(c + 409 * e - kOffset);
	g = clampScaled(c - 100 * d - 208 * e - kOffset);
	b = clampScaled(c + 517 * d - kOffset);
}

unsigned int YUVCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                         const EZORTPixelFormat& format)
{
	const YUVLayout* layout = layoutOf(format);
	if (layout == nullptr || source == nullptr || destination == nullptr)
	{
		return 0;
	}
	encodePairs(static_cast<const unsigned char*>(source), static_cast<unsigned char*>(destination), width, height,
	            [at = *layout](const BytePixel& first, const BytePixel& second, unsigned char* word)
	            { ConvertRGBToYUV(first, second, word[at.firstY], word[at.secondY], word[at.u], word[at.v]); });
	return width * height * 2;
}

unsigned int YUVDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                           const EZORTPixelFormat& format)
{
	const YUVLayout* layout = layoutOf(format);
	if (layout == nullptr || source == nullptr || destination == nullptr)
	{
		return 0;
	}
	decodePairs(static_cast<const unsigned char*>(source), static_cast<unsigned char*>(destination), width, height,
	            [at = *layout](const unsigned char* word, BytePixel& first, BytePixel& second)
	            {
		            const int u = word[at.u];
		            const int v = word[at.v];
		            ConvertYUVToRGB(word[at.firstY], u, v, first.r, first.g, first.b);
		            ConvertYUVToRGB(word[at.secondY], u, v, second.r, second.g, second.b);
	            });
	return width * height * 4;
}
} // namespace zortexture
