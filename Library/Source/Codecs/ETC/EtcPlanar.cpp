// Planar mode: a colour at the top left texel (O) and those four texels to the right (H) and below (V) span a plane a channel.

#include "EtcBlock.h"

namespace zortexture
{
namespace
{
struct Plane
{
	int origin;
	int horizontal;
	int vertical;
};

unsigned char planeAt(const Plane& plane, int x, int y)
{
	const int sum = x * (plane.horizontal - plane.origin) + y * (plane.vertical - plane.origin) + 4 * plane.origin + 2;
	if (sum < 0)
	{
		return 0;
	}
	return sum >= 1024 ? 255 : static_cast<unsigned char>(sum >> 2);
}

Plane expandPlane(unsigned int origin, unsigned int horizontal, unsigned int vertical, unsigned int bits)
{
	const unsigned int mask = (1U << bits) - 1;
	return {static_cast<int>(expandBits(origin & mask, bits)), static_cast<int>(expandBits(horizontal & mask, bits)),
	        static_cast<int>(expandBits(vertical & mask, bits))};
}
} // namespace

void decompressBlockPlanar57(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY)
{
	const Plane planes[3] = {expandPlane(packed1 >> 26, packed1 >> 7, packed2 >> 20, 6),
	                         expandPlane(packed1 >> 19, packed1, packed2 >> 13, 7),
	                         expandPlane(packed1 >> 13, packed2 >> 26, packed2 >> 7, 6)};
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			unsigned char* pixel = image + texelIndex(width, startX + x, startY + y) * 3;
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				pixel[channel] = planeAt(planes[channel], static_cast<int>(x), static_cast<int>(y));
			}
		}
	}
}

void decompressBlockPlanar57errorPerComponent(unsigned int packed1, unsigned int packed2, unsigned char* decoded, unsigned int width,
                                              unsigned int startX, unsigned int startY, const unsigned char* source, unsigned int& errorRed,
                                              unsigned int& errorGreen, unsigned int& errorBlue)
{
	decompressBlockPlanar57(packed1, packed2, decoded, 4, 0, 0);
	unsigned int errors[3] = {0, 0, 0};
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			const unsigned char* wanted = source + texelIndex(width, startX + x, startY + y) * 3;
			const unsigned char* found = decoded + (y * 4 + x) * 3;
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				const int difference = wanted[channel] - found[channel];
				errors[channel] += static_cast<unsigned int>(difference * difference);
			}
		}
	}
	errorRed = errors[0];
	errorGreen = errors[1];
	errorBlue = errors[2];
}
} // namespace zortexture
