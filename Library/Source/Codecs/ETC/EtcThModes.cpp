// T and H mode: two colours of four bits a channel and a distance give four paint colours for the whole block.

#include "EtcBlock.h"
#include "EtcTables.h"

namespace zortexture
{
namespace
{
void copyShifted(const unsigned char (&colour)[3], int distance, unsigned char (&paint)[3])
{
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		paint[channel] = clamp(colour[channel] + distance);
	}
}

/// Both colours of a packed word, the first channel of the first colour at bits `top` + 3 to `top`.
void unpackColours(unsigned int packed, unsigned int top, unsigned char (&colours)[2][3])
{
	unsigned char fields[2][3];
	for (unsigned int i = 0; i < 6; ++i)
	{
		fields[i / 3][i % 3] = (packed >> (top - 4 * i)) & 15;
	}
	decompressColor(4, 4, 4, fields, colours);
}

/// In the punch-through form index 2 is transparent black; the opaque form does not touch alpha.
template<bool PunchThrough>
void paintTexels(const unsigned char (&paint)[4][3], unsigned int indices, unsigned char* image, unsigned char* alpha, unsigned int width,
                 unsigned int startX, unsigned int startY)
{
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			const unsigned int number = x * 4 + y;
			const unsigned int index = getbit(indices, number + 16, 1) | getbit(indices, number, 0);
			const std::size_t texel = texelIndex(width, startX + x, startY + y);
			const bool transparent = PunchThrough && index == 2;
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				image[texel * 3 + channel] = transparent ? 0 : paint[index][channel];
			}
			if constexpr (PunchThrough)
			{
				alpha[texel] = transparent ? 0 : 255;
			}
		}
	}
}

void paletteOfT(unsigned int packed1, unsigned char (&paint)[4][3])
{
	unsigned char colours[2][3];
	unpackColours(packed1, 23, colours);
	paintColoursT(packed1 & 7, colours, paint);
}

void paletteOfH(unsigned int packed1, unsigned char (&paint)[4][3])
{
	unsigned char colours[2][3];
	unpackColours(packed1, 22, colours);
	const unsigned int first = (packed1 >> 14) & 0xFFF;
	const unsigned int second = (packed1 >> 2) & 0xFFF;
	paintColoursH(((packed1 & 3) << 1) | (first >= second ? 1U : 0U), colours, paint);
}
} // namespace

void decompressColor(unsigned int bitsR, unsigned int bitsG, unsigned int bitsB, const unsigned char (&packed)[2][3],
                     unsigned char (&colours)[2][3])
{
	const unsigned int bits[3] = {bitsR, bitsG, bitsB};
	for (unsigned int i = 0; i < 6; ++i)
	{
		colours[i / 3][i % 3] = static_cast<unsigned char>(expandBits(packed[i / 3][i % 3], bits[i % 3]));
	}
}

void paintColoursT(unsigned int distanceIndex, const unsigned char (&colours)[2][3], unsigned char (&paint)[4][3])
{
	const int distance = table58H[distanceIndex];
	copyShifted(colours[0], 0, paint[0]);
	copyShifted(colours[1], distance, paint[1]);
	copyShifted(colours[1], 0, paint[2]);
	copyShifted(colours[1], -distance, paint[3]);
}

void paintColoursH(unsigned int distanceIndex, const unsigned char (&colours)[2][3], unsigned char (&paint)[4][3])
{
	const int distance = table58H[distanceIndex];
	copyShifted(colours[0], distance, paint[0]);
	copyShifted(colours[0], -distance, paint[1]);
	copyShifted(colours[1], distance, paint[2]);
	copyShifted(colours[1], -distance, paint[3]);
}

void decompressBlockTHUMB59T(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY)
{
	unsigned char paint[4][3];
	paletteOfT(packed1, paint);
	paintTexels<false>(paint, packed2, image, nullptr, width, startX, startY);
}

void decompressBlockTHUMB59TAlpha(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned char* alpha,
                                  unsigned int width, unsigned int startX, unsigned int startY)
{
	unsigned char paint[4][3];
	paletteOfT(packed1, paint);
	paintTexels<true>(paint, packed2, image, alpha, width, startX, startY);
}

void decompressBlockTHUMB58H(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY)
{
	unsigned char paint[4][3];
	paletteOfH(packed1, paint);
	paintTexels<false>(paint, packed2, image, nullptr, width, startX, startY);
}

void decompressBlockTHUMB58HAlpha(unsigned int packed1, unsigned int packed2, unsigned char* image, unsigned char* alpha,
                                  unsigned int width, unsigned int startX, unsigned int startY)
{
	unsigned char paint[4][3];
	paletteOfH(packed1, paint);
	paintTexels<true>(paint, packed2, image, alpha, width, startX, startY);
}
} // namespace zortexture
