// The alpha halves of DXT2 to DXT5 blocks.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "DXTBlock.h"
#include "DXTCodec.h"

namespace zortexture
{
namespace
{
/// Index 0 stands for the largest alpha of a block, 1 for the smallest, 2 to 7 for the steps from the largest down. These are the
/// indices by the number of steps above the smallest.
constexpr std::uint64_t kIndexOfStep[] = {1, 7, 6, 5, 4, 3, 2, 0};
} // namespace

void storeAlpha(const Pixel<unsigned char>* pixels, unsigned char* block, unsigned int rowStride)
{
	for (unsigned int y = 0; y < kDXTBlockSide; ++y)
	{
		const Pixel<unsigned char>* row = pixels + static_cast<std::size_t>(y) * rowStride;
		for (unsigned int x = 0; x < kDXTBlockSide; x += 2)
		{
			*block++ = static_cast<unsigned char>(row[x].a >> 4 | (row[x + 1].a & 0xF0));
		}
	}
}

void storeInterpolatedAlpha(const Pixel<unsigned char>* pixels, unsigned char* block, unsigned int rowStride)
{
	unsigned char alphas[kDXTBlockTexels];
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		alphas[texel] = pixels[static_cast<std::size_t>(texel / kDXTBlockSide) * rowStride + texel % kDXTBlockSide].a;
	}
	const auto [minimum, maximum] = std::minmax_element(std::begin(alphas), std::end(alphas));
	std::uint64_t word = *maximum | static_cast<unsigned int>(*minimum) << 8;
	if (*minimum != *maximum)
	{
		const auto range = static_cast<unsigned int>(*maximum - *minimum);
		for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
		{
			// The nearest step, of two equally near ones the upper: alpha * 7 / range + 1/2, on integers.
			const unsigned int step = (static_cast<unsigned int>(alphas[texel] - *minimum) * 14 + range) / (2 * range);
			word |= kIndexOfStep[step] << (16 + 3 * texel);
		}
	}
	for (unsigned int byte = 0; byte < 8; ++byte)
	{
		block[byte] = static_cast<unsigned char>(word >> (8 * byte));
	}
}

bool canHavePunchThrough(const unsigned char* alphas)
{
	return std::any_of(alphas, alphas + kDXTBlockTexels, [](unsigned char alpha) { return alpha < kDXTOpaqueAlpha; });
}
} // namespace zortexture
