#include "DifferencePixels.h"

#include <algorithm>
#include <cmath>

#include "Numbers.h"

namespace zortexture
{
namespace
{
/// The size of a difference, at most 1. One that is not a number counts as none.
float magnitudeOf(float difference)
{
	return difference == difference ? std::min(std::fabs(difference), 1.0f) : 0.0f;
}
} // namespace

template<>
void drawColours<eSimdPlain>(const float* a, const float* b, std::size_t numPixels, float multiplier, float* pixels)
{
	for (std::size_t i = 0; i < 4 * numPixels; ++i)
	{
		const float magnitude = magnitudeOf((a[i] - b[i]) * multiplier);
		pixels[i] = (i % 4 == 3 ? 1.0f - magnitude : magnitude) + 0.5f;
	}
}

template<>
void drawTolerance<eSimdPlain>(const float* a, const float* b, std::size_t numPixels, float tolerance, unsigned char* pixels)
{
	constexpr unsigned char kBlack[] = {0, 0, 0, 255};
	constexpr unsigned char kBlue[] = {0, 0, 255, 255};
	constexpr unsigned char kRed[] = {255, 0, 0, 255};
	for (std::size_t i = 0; i < 4 * numPixels; i += 4)
	{
		float largest = 0.0f;
		for (unsigned int c = 0; c < 4; ++c)
		{
			largest = std::max(largest, magnitudeOf(a[i + c] - b[i + c]));
		}
		std::copy_n(largest * 255.0f < 1.0f ? kBlack : tolerance > largest ? kBlue : kRed, 4, pixels + i);
	}
}

template<>
void drawBlend<eSimdPlain>(const float* a, const float* b, std::size_t numPixels, float shareOfA, unsigned char* pixels)
{
	const float shareOfB = 1.0f - shareOfA;
	for (std::size_t i = 0; i < 4 * numPixels; ++i)
	{
		pixels[i] = wrapToUnsigned<unsigned char>((a[i] * shareOfA + b[i] * shareOfB) * 255.0f);
	}
}
} // namespace zortexture
