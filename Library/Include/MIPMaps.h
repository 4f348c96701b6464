/// @file MIPMaps.h
/// MIP chains of textures in the standard layouts.
#ifndef ZORT_MIPMAPS_H
#define ZORT_MIPMAPS_H

#include "Resampling.h"
#include "ZORTexture.h"

namespace zortexture
{
/// Asks GenerateMIPMaps for every level down to 1 x 1 x 1.
inline constexpr unsigned int kFullMIPChain = 0xFFFFFFFFu;

/// Replaces the levels below the top one; each is made from the level before it, in one step. A number of levels is taken
/// as it stands, also beyond the first level of 1 x 1 x 1.
/// @param mipLevels  levels to end up with, the top one included: at least 1, or kFullMIPChain. Files hold 256 at most.
/// False, with the texture unchanged, for a layout that is not standard, no levels, a texture without all of its data, or
/// a result too large.
ZORT_API bool GenerateMIPMaps(CZORTexture& texture, EResizeMode mode, unsigned int mipLevels = kFullMIPChain);

/// Paints every level but the top one in a tint of its own grey (the plain mean of r, g and b), so that a viewer shows
/// which level it samples: green, blue, cyan, magenta, yellow, red, and again from green. Alpha stays. False, with the
/// texture unchanged, for a layout that is not standard or a texture without all of its data.
ZORT_API bool ColourMIPMaps(CZORTexture& texture);
} // namespace zortexture

#endif // ZORT_MIPMAPS_H
