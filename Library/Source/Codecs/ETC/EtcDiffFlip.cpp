// Individual and differential mode: two sub-blocks, each with a base colour and a table of intensity modifiers.

#include "EtcBlock.h"
#include "EtcTables.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kFlipBit = 1;
constexpr unsigned int kDiffBit = 2;

struct BaseColours
{
	unsigned char channels[2][3];
};

BaseColours individualBases(unsigned int word1)
{
	BaseColours bases;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const unsigned int nibbles = word1 >> (24 - 8 * channel);
		bases.channels[0][channel] = static_cast<unsigned char>(expandBits((nibbles >> 4) & 15, 4));
		bases.channels[1][channel] = static_cast<unsigned char>(expandBits(nibbles & 15, 4));
	}
	return bases;
}

BaseColours differentialBases(unsigned int word1)
{
	BaseColours bases;
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const unsigned int deltaLow = 24 - 8 * channel;
		const unsigned int first = (word1 >> (deltaLow + 3)) & 31;
		const unsigned int second = (first + static_cast<unsigned int>(signedDelta(word1, deltaLow))) & 31;
		bases.channels[0][channel] = static_cast<unsigned char>(expandBits(first, 5));
		bases.channels[1][channel] = static_cast<unsigned char>(expandBits(second, 5));
	}
	return bases;
}

/// The opaque form (alpha unused), and the punch-through form, where indices 0 and 2 have no modifier and index 2 is transparent.
template<bool PunchThrough>
void decodeTexels(const BaseColours& bases, unsigned int word1, unsigned int word2, unsigned char* image, unsigned char* alpha,
                  unsigned int width, unsigned int startX, unsigned int startY)
{
	const bool flip = (word1 & kFlipBit) != 0;
	const unsigned int codewords[2] = {(word1 >> 5) & 7, (word1 >> 2) & 7};
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			const unsigned int half = (flip ? y : x) >> 1;
			const unsigned int number = x * 4 + y;
			const unsigned int index = getbit(word2, number + 16, 1) | getbit(word2, number, 0);
			const std::size_t texel = texelIndex(width, startX + x, startY + y);
			unsigned char* pixel = image + texel * 3;
			int modifier = compressParams[2 * codewords[half]][unscramble[index]];
			if constexpr (PunchThrough)
			{
				if (index == 2)
				{
					pixel[0] = pixel[1] = pixel[2] = 0;
					alpha[texel] = 0;
					continue;
				}
				alpha[texel] = 255;
				modifier = index == 0 ? 0 : modifier;
			}
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				pixel[channel] = clamp(bases.channels[half][channel] + modifier);
			}
		}
	}
}
} // namespace

void decompressBlockDiffFlip(unsigned int word1, unsigned int word2, unsigned char* image, unsigned int width, unsigned int startX,
                             unsigned int startY)
{
	const BaseColours bases = (word1 & kDiffBit) != 0 ? differentialBases(word1) : individualBases(word1);
	decodeTexels<false>(bases, word1, word2, image, nullptr, width, startX, startY);
}

void decompressBlockDifferentialWithAlpha(unsigned int word1, unsigned int word2, unsigned char* image, unsigned char* alpha,
                                          unsigned int width, unsigned int startX, unsigned int startY)
{
	const BaseColours bases = differentialBases(word1);
	if ((word1 & kDiffBit) == 0)
	{
		decodeTexels<true>(bases, word1, word2, image, alpha, width, startX, startY);
		return;
	}
	decodeTexels<false>(bases, word1, word2, image, nullptr, width, startX, startY);
	fillAlpha(alpha, 255, width, startX, startY);
}
} // namespace zortexture
