/// @file TextureSize.h
/// Byte counts of texture data: as the library counts them, wrapping at 32 bits, and exactly.
#pragma once

#include <cstdint>

#include "ZORTDefines.h"

namespace zortexture
{
/// Level shifts are taken modulo this, so level sizes repeat with this period.
constexpr std::uint32_t kLevelPeriod = 32;

/// Bytes of all levels below `mipLevel` with all surfaces and faces, each level rounded down to bytes; wraps at 32
/// bits. The time taken does not grow with the level.
std::uint32_t levelOffset(const ZORTextureHeaderV3& header, std::uint32_t mipLevel);

/// Whether the size of the whole data, and of each level, is below 2^32 bytes, so that ZORTGetTextureDataSize and
/// levelOffset have not wrapped anywhere. False for a header without levels, surfaces or faces.
bool isDataSizeExact(const ZORTextureHeaderV3& header);
} // namespace zortexture
