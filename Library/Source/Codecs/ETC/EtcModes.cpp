// Which mode a stored block is in. Modes beyond the plain differential one are signalled by a base plus its delta that leaves the
// five bits of a base; the channels are looked at in the order red, green, blue.

#include "EtcBlock.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kDiffBit = 2;

enum class Mode
{
	Differential,
	T,
	H,
	Planar
};

bool overflows(unsigned int word1, unsigned int deltaLow)
{
	const int sum = static_cast<int>((word1 >> (deltaLow + 3)) & 31) + signedDelta(word1, deltaLow);
	return sum < 0 || sum > 31;
}

Mode modeOf(unsigned int word1)
{
	if (overflows(word1, 24))
	{
		return Mode::T;
	}
	if (overflows(word1, 16))
	{
		return Mode::H;
	}
	return overflows(word1, 8) ? Mode::Planar : Mode::Differential;
}
} // namespace

void fillAlpha(unsigned char* alpha, unsigned char value, unsigned int width, unsigned int startX, unsigned int startY)
{
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			alpha[texelIndex(width, startX + x, startY + y)] = value;
		}
	}
}

void decompressBlockETC2(unsigned int word1, unsigned int word2, unsigned char* image, unsigned int width, unsigned int startX,
                         unsigned int startY)
{
	unsigned int packed1 = 0;
	unsigned int packed2 = 0;
	switch ((word1 & kDiffBit) != 0 ? modeOf(word1) : Mode::Differential)
	{
	case Mode::T:
		unstuff59bits(word1, word2, packed1, packed2);
		decompressBlockTHUMB59T(packed1, packed2, image, width, startX, startY);
		return;
	case Mode::H:
		unstuff58bits(word1, word2, packed1, packed2);
		decompressBlockTHUMB58H(packed1, packed2, image, width, startX, startY);
		return;
	case Mode::Planar:
		unstuff57bits(word1, word2, packed1, packed2);
		decompressBlockPlanar57(packed1, packed2, image, width, startX, startY);
		return;
	case Mode::Differential:
		decompressBlockDiffFlip(word1, word2, image, width, startX, startY);
		return;
	}
}

void decompressBlockETC21BitAlpha(unsigned int word1, unsigned int word2, unsigned char* image, unsigned char* alpha, unsigned int width,
                                  unsigned int startX, unsigned int startY)
{
	const Mode mode = modeOf(word1);
	const bool opaque = (word1 & kDiffBit) != 0;
	unsigned int packed1 = 0;
	unsigned int packed2 = 0;
	if (mode == Mode::Differential)
	{
		decompressBlockDifferentialWithAlpha(word1, word2, image, alpha, width, startX, startY);
	}
	else if (!opaque && mode == Mode::T)
	{
		unstuff59bits(word1, word2, packed1, packed2);
		decompressBlockTHUMB59TAlpha(packed1, packed2, image, alpha, width, startX, startY);
	}
	else if (!opaque && mode == Mode::H)
	{
		unstuff58bits(word1, word2, packed1, packed2);
		decompressBlockTHUMB58HAlpha(packed1, packed2, image, alpha, width, startX, startY);
	}
	else
	{
		// Opaque T and H, and planar, which has no transparent form: the decoders of the opaque format, chosen by the same sums.
		decompressBlockETC2(word1 | kDiffBit, word2, image, width, startX, startY);
		fillAlpha(alpha, 255, width, startX, startY);
	}
}
} // namespace zortexture
