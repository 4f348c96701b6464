#include "TextureSize.h"

#include <algorithm>

#include "FormatShape.h"
#include "ZORTUtilities.h"

namespace zortexture
{
namespace
{
std::uint32_t levelDimension(std::uint32_t dimension, std::uint32_t mipLevel)
{
	return std::max(dimension >> (mipLevel % kLevelPeriod), 1u);
}

std::uint64_t divideRoundingUp(std::uint64_t value, std::uint64_t divisor)
{
	return (value + divisor - 1) / divisor;
}

/// Unsigned arithmetic that stays at the largest value instead of wrapping.
std::uint64_t saturatingMultiply(std::uint64_t a, std::uint64_t b)
{
	std::uint64_t product = 0;
	return __builtin_mul_overflow(a, b, &product) ? UINT64_MAX : product;
}

std::uint64_t saturatingAdd(std::uint64_t a, std::uint64_t b)
{
	std::uint64_t sum = 0;
	return __builtin_add_overflow(a, b, &sum) ? UINT64_MAX : sum;
}

/// What a level is counted in (pixels, or blocks of ASTC), and the bits of one of these.
struct LevelExtent
{
	std::uint64_t width;
	std::uint64_t height;
	std::uint64_t depth;
	std::uint32_t bitsPerUnit;
};

LevelExtent levelExtent(const ZORTextureHeaderV3& header, std::uint32_t mipLevel)
{
	const FormatShape& shape = formatShape(header.pixelFormat);
	const std::uint64_t blocksX = divideRoundingUp(levelDimension(header.width, mipLevel), shape.minX);
	const std::uint64_t blocksY = divideRoundingUp(levelDimension(header.height, mipLevel), shape.minY);
	const std::uint64_t blocksZ = divideRoundingUp(levelDimension(header.depth, mipLevel), shape.minZ);
	if (isASTCFormat(header.pixelFormat))
	{
		return {blocksX, blocksY, blocksZ, 128};
	}
	return {blocksX * shape.minX, blocksY * shape.minY, blocksZ * shape.minZ, ZORTGetBitsPerPixel(header.pixelFormat)};
}

/// Bits of one face of one surface of a level. Wraps: at 32 bits for ASTC, at 64 bits for all others.
std::uint64_t levelBits(const ZORTextureHeaderV3& header, std::uint32_t mipLevel)
{
	const LevelExtent extent = levelExtent(header, mipLevel);
	const std::uint64_t bits = extent.width * extent.height * extent.depth * extent.bitsPerUnit;
	return isASTCFormat(header.pixelFormat) ? static_cast<std::uint32_t>(bits) : bits;
}

std::uint64_t saturatedLevelBits(const ZORTextureHeaderV3& header, std::uint32_t mipLevel)
{
	const LevelExtent extent = levelExtent(header, mipLevel);
	const std::uint64_t units = saturatingMultiply(saturatingMultiply(extent.width, extent.height), extent.depth);
	return saturatingMultiply(units, extent.bitsPerUnit);
}

std::uint32_t bytesOfBits(std::uint64_t bits)
{
	return static_cast<std::uint32_t>(bits >> 3);
}

/// The sum of a function of the level over `numLevels` levels, in the function's own wrapping type.
template<typename Function>
auto sumOverLevels(std::uint32_t numLevels, Function ofLevel)
{
	using Sum = decltype(ofLevel(0u));
	Sum period = 0;
	Sum remainder = 0;
	for (std::uint32_t level = 0; level < std::min(numLevels, kLevelPeriod); ++level)
	{
		const Sum value = ofLevel(level);
		period += value;
		if (level < numLevels % kLevelPeriod)
		{
			remainder += value;
		}
	}
	return static_cast<Sum>(period * static_cast<Sum>(numLevels / kLevelPeriod) + remainder);
}
} // namespace

std::uint32_t levelOffset(const ZORTextureHeaderV3& header, std::uint32_t mipLevel)
{
	return sumOverLevels(mipLevel, [&header](std::uint32_t level)
	                     { return bytesOfBits(levelBits(header, level)) * header.numFaces * header.numSurfaces; });
}

bool isDataSizeExact(const ZORTextureHeaderV3& header)
{
	if (header.numMipMaps == 0 || header.numSurfaces == 0 || header.numFaces == 0)
	{
		return false;
	}
	std::uint64_t bits = 0;
	for (std::uint32_t level = 0; level < std::min(header.numMipMaps, kLevelPeriod); ++level)
	{
		const std::uint64_t exact = saturatedLevelBits(header, level);
		if (exact != levelBits(header, level))
		{
			return false;
		}
		const std::uint64_t repeats = (static_cast<std::uint64_t>(header.numMipMaps) - level + kLevelPeriod - 1) / kLevelPeriod;
		bits = saturatingAdd(bits, saturatingMultiply(exact, repeats));
	}
	const std::uint64_t copies = static_cast<std::uint64_t>(header.numSurfaces) * header.numFaces;
	return saturatingMultiply(bits >> 3, copies) <= UINT32_MAX;
}
} // namespace zortexture

unsigned int ZORTGetTextureDataSize(ZORTextureHeaderV3 header, int mipLevel, bool allSurfaces, bool allFaces)
{
	using namespace zortexture;
	const std::uint64_t bits = mipLevel == -1
	                               ? sumOverLevels(header.numMipMaps, [&header](std::uint32_t level) { return levelBits(header, level); })
	                               : levelBits(header, static_cast<std::uint32_t>(mipLevel));
	return bytesOfBits(bits) * (allFaces ? header.numFaces : 1u) * (allSurfaces ? header.numSurfaces : 1u);
}
