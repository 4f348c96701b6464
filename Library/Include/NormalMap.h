/// @file NormalMap.h
/// Tangent-space normal maps from height maps.
#ifndef ZORT_NORMAL_MAP_H
#define ZORT_NORMAL_MAP_H

#include <string>

#include "Pixel.h"
#include "ZORTexture.h"

namespace zortexture
{
/// Turns a height map (the red elements of a standard layout) into a normal map of 32-bit floats, and stores scale and
/// order as its bump-map metadata. Heights are compared by central differences that wrap at the edges; each level is
/// made from its own heights. Float heights count against the whole range of float, so ordinary ones come out flat.
/// @param scale         the steepness; a negative one turns x and y about.
/// @param channelOrder  up to four letters, one for each of r, g, b and a: 'x', 'y', 'z' for the normal, packed to 0..1,
///                      and 'h' for the height; upper case counts as lower case. Other elements become 1.0. Of a repeated
///                      letter the last position holds.
/// False for a layout that is not standard or a texture without all of its data, which stays unchanged; false also for a
/// scale of 0, but then the texture is replaced by zeroes in the float layout, with the metadata set.
ZORT_API bool GenerateNormalMap(CZORTexture& texture, float scale, const std::string& channelOrder);

/// The worker of GenerateNormalMap on one image of width x height x depth pixels, x fastest, instantiated for unsigned
/// char, unsigned short, unsigned int and float. Of the letters only the lower case is known here; a null order means
/// "xyz". False, with nothing written, for a scale of 0 or a null image.
template<typename T>
ZORT_API bool CreateNormalMap(Pixel<T>* source, Pixel<float>* destination, unsigned int width, unsigned int height, unsigned int depth,
                              float scale, const char* channelOrder);
} // namespace zortexture

#endif // ZORT_NORMAL_MAP_H
