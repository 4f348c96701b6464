#include "EacBlock.h"
#include "EtcBlock.h"

namespace zortexture
{
namespace
{
/// Writes `value(index)` of each texel; the indices run from the top bits of bytes 2 to 7, down the columns.
template<typename T, typename Value>
void decodeTexels(const unsigned char* block, T* image, unsigned int width, unsigned int startX, unsigned int startY, Value&& value)
{
	std::uint64_t indices = 0;
	for (unsigned int byte = 2; byte < 8; ++byte)
	{
		indices = (indices << 8) | block[byte];
	}
	unsigned int shift = 48;
	for (unsigned int x = 0; x < 4; ++x)
	{
		for (unsigned int y = 0; y < 4; ++y)
		{
			shift -= 3;
			image[texelIndex(width, startX + x, startY + y)] = value(static_cast<unsigned int>(indices >> shift) & 7);
		}
	}
}
} // namespace

void packEacIndices(const unsigned int (&indices)[16], unsigned char* block)
{
	std::uint64_t packed = 0;
	for (const unsigned int index : indices)
	{
		packed = (packed << 3) | index;
	}
	for (unsigned int byte = 7; byte >= 2; --byte)
	{
		block[byte] = static_cast<unsigned char>(packed);
		packed >>= 8;
	}
}

void decompressBlockAlpha(const unsigned char* block, unsigned char* image, unsigned int width, unsigned int startX, unsigned int startY,
                          const AlphaTable& table)
{
	const int base = block[0];
	const std::array<int, 8>& row = table[block[1]];
	decodeTexels(block, image, width, startX, startY, [&](unsigned int index) { return clamp(base + row[index]); });
}

void decompressBlockAlpha16bit(const unsigned char* block, std::uint16_t* image, unsigned int width, unsigned int startX,
                               unsigned int startY, bool isSigned)
{
	const int base = isSigned ? block[0] ^ 128 : block[0]; // two's complement plus 128
	const unsigned int table = block[1] & 15;
	const unsigned int multiplier = block[1] >> 4;
	decodeTexels(block, image, width, startX, startY,
	             [&](unsigned int index) { return get16bits11bits(base, table, multiplier, index, isSigned); });
}
} // namespace zortexture
