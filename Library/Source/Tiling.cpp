#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "ZORTUtilities.h"

namespace
{
/// Spreads the low 16 bits so that bit k comes to bit 2k.
std::uint32_t spreadBits(std::uint32_t value)
{
	value &= 0x0000FFFFu;
	value = (value | value << 8) & 0x00FF00FFu;
	value = (value | value << 4) & 0x0F0F0F0Fu;
	value = (value | value << 2) & 0x33333333u;
	return (value | value << 1) & 0x55555555u;
}

/// The inverse: gathers bits 0, 2, 4, ... in the low 16 bits.
std::uint32_t gatherBits(std::uint32_t value)
{
	value &= 0x55555555u;
	value = (value | value >> 1) & 0x33333333u;
	value = (value | value >> 2) & 0x0F0F0F0Fu;
	value = (value | value >> 4) & 0x00FF00FFu;
	return (value | value >> 8) & 0x0000FFFFu;
}

/// Pixels of an image, each level at least minWidth x minHeight. The product of one level wraps at 32 bits.
std::uint64_t countPixels(std::uint32_t width, std::uint32_t height, std::uint32_t minWidth, std::uint32_t minHeight, bool mipMapped)
{
	std::uint64_t total = 0;
	for (;;)
	{
		total += std::max(width, minWidth) * std::max(height, minHeight);
		if (!mipMapped || (width < 2 && height < 2))
		{
			return total;
		}
		width >>= 1;
		height >>= 1;
	}
}
} // namespace

void ZORTTextureTwiddle(unsigned int& twiddled, unsigned int x, unsigned int y)
{
	twiddled = spreadBits(y) | spreadBits(x) << 1;
}

void ZORTTextureDeTwiddle(unsigned int& x, unsigned int& y, unsigned int twiddled)
{
	x = gatherBits(twiddled >> 1);
	y = gatherBits(twiddled);
}

void ZORTTextureLoadTiled(unsigned char* dst, unsigned int dstWidth, unsigned int dstHeight, const unsigned char* src,
                          unsigned int srcWidth, unsigned int srcHeight, unsigned int elementSize, bool twiddled)
{
	if (srcWidth == 0 || srcHeight == 0 || elementSize == 0)
	{
		return;
	}
	const unsigned int numElements = dstWidth * dstHeight;
	for (unsigned int i = 0; i < numElements; ++i)
	{
		std::size_t source = 0;
		if (twiddled)
		{
			unsigned int x = 0;
			unsigned int y = 0;
			unsigned int index = 0;
			ZORTTextureDeTwiddle(x, y, i);
			ZORTTextureTwiddle(index, x % srcWidth, y % srcHeight);
			source = index;
		}
		else
		{
			source = static_cast<std::size_t>((i / dstWidth) % srcHeight) * srcWidth + (i % dstWidth) % srcWidth;
		}
		std::memcpy(dst + static_cast<std::size_t>(i) * elementSize, src + source * elementSize, elementSize);
	}
}

ZORTextureHeaderV3* ZORTTextureCreate(unsigned int width, unsigned int height, unsigned int minWidth, unsigned int minHeight,
                                      unsigned int bitsPerPixel, bool mipMapped)
{
	std::uint64_t bits = 0;
	if (__builtin_mul_overflow(countPixels(width, height, minWidth, minHeight, mipMapped), std::uint64_t{bitsPerPixel}, &bits))
	{
		return nullptr;
	}
	auto* const header = static_cast<ZORTextureHeaderV3*>(std::calloc((bits >> 3) + sizeof(ZORTextureHeaderV3), 1));
	if (header == nullptr)
	{
		return nullptr;
	}
	header->version = kZORTextureMagic;
	header->pixelFormat = ePF_NumCompressedPFs;
	header->colourSpace = eCS_lRGB;
	header->channelType = eVT_UnsignedByteNorm;
	header->height = height;
	header->width = width;
	header->depth = 1;
	header->numSurfaces = 1;
	header->numFaces = 1;
	header->numMipMaps = 1;
	return header;
}
