#include "EtcBlock.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kDiffBit = 2;

/// Whether two two-bit numbers add up to 4 or more, by their high and low bits: the carry that pushes a base of 28 and more out of
/// its five bits. When it is set, the base is filled with ones from the top; when it is not, the delta is made negative and the base
/// filled with zeros, so that the sum is below 0. Either way the sum overflows.
unsigned int carries(unsigned int word, unsigned int high1, unsigned int high2, unsigned int low1, unsigned int low2)
{
	const unsigned int a = getbit(word, high1, 0);
	const unsigned int b = getbit(word, high2, 0);
	return (a & b) | ((a ^ b) & getbit(word, low1, 0) & getbit(word, low2, 0));
}

/// A base of three filled bits above `baseLow` + 1, and the sign of the delta under the base.
unsigned int overflowBits(unsigned int carry, unsigned int baseLow)
{
	return carry != 0 ? 7U << (baseLow + 2) : 1U << (baseLow - 1);
}

unsigned int stuffT(unsigned int packed)
{
	const unsigned int fields = (packed & 1) | ((packed & 0x01FFFFFE) << 1) | ((packed & 0x06000000) << 2);
	return fields | overflowBits(carries(packed, 24, 26, 23, 25), 27);
}

unsigned int stuffH(unsigned int packed)
{
	const unsigned int fields = (packed & 1) | ((packed & 0x0001FFFE) << 1) | ((packed & 0x00060000) << 2) | ((packed & 0x03F80000) << 5);
	const unsigned int redInRange = getbit(~packed, 25, 31);
	return fields | redInRange | overflowBits(carries(packed, 16, 18, 15, 17), 19);
}
} // namespace

void stuff59bits(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2)
{
	word1 = stuffT(packed1) | kDiffBit;
	word2 = packed2;
}

void stuff59bitsDiffFalse(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2)
{
	word1 = stuffT(packed1);
	word2 = packed2;
}

void stuff58bits(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2)
{
	word1 = stuffH(packed1) | kDiffBit;
	word2 = packed2;
}

void stuff58bitsDiffFalse(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2)
{
	word1 = stuffH(packed1);
	word2 = packed2;
}

void stuff57bits(unsigned int packed1, unsigned int packed2, unsigned int& word1, unsigned int& word2)
{
	const unsigned int ro = packed1 >> 26;
	const unsigned int go = (packed1 >> 19) & 0x7F;
	const unsigned int bo = (packed1 >> 13) & 0x3F;
	const unsigned int rh = (packed1 >> 7) & 0x3F;
	const unsigned int gh = packed1 & 0x7F;

	unsigned int word = (ro << 25) | ((go >> 6) << 24) | ((go & 0x3F) << 17);
	word |= ((bo >> 5) << 16) | (((bo >> 3) & 3) << 11) | ((bo & 7) << 7);
	word |= ((rh >> 1) << 2) | (rh & 1);
	word |= getbit(~word, 30, 31) | getbit(~word, 22, 23); // red and green stay in range
	word |= overflowBits(carries(word, 9, 12, 8, 11), 11);

	word1 = word | kDiffBit;
	word2 = (gh << 25) | (packed2 >> 7);
}

void unstuff59bits(unsigned int word1, unsigned int word2, unsigned int& packed1, unsigned int& packed2)
{
	packed1 = (word1 & 1) | ((word1 >> 1) & 0x01FFFFFE) | ((word1 >> 2) & 0x06000000);
	packed2 = word2;
}

void unstuff58bits(unsigned int word1, unsigned int word2, unsigned int& packed1, unsigned int& packed2)
{
	packed1 = (word1 & 1) | ((word1 >> 1) & 0x0001FFFE) | ((word1 >> 2) & 0x00060000) | ((word1 >> 5) & 0x03F80000);
	packed2 = word2;
}

void unstuff57bits(unsigned int word1, unsigned int word2, unsigned int& packed1, unsigned int& packed2)
{
	const unsigned int ro = (word1 >> 25) & 0x3F;
	const unsigned int go = getbit(word1, 24, 6) | ((word1 >> 17) & 0x3F);
	const unsigned int bo = getbit(word1, 16, 5) | (((word1 >> 11) & 3) << 3) | ((word1 >> 7) & 7);
	const unsigned int rh = (((word1 >> 2) & 0x1F) << 1) | (word1 & 1);
	const unsigned int gh = word2 >> 25;

	packed1 = (ro << 26) | (go << 19) | (bo << 13) | (rh << 7) | gh;
	packed2 = word2 << 7;
}
} // namespace zortexture
