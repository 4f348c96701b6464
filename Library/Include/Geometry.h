/// @file Geometry.h
/// Rearranging the pixels of textures in the standard layouts: mirrors, quarter turns, canvas and borders.
#ifndef ZORT_GEOMETRY_H
#define ZORT_GEOMETRY_H

#include "Pixel.h"
#include "ZORTexture.h"

namespace zortexture
{
/// Mirrors every image of a texture along an axis, in place. An unknown axis does nothing and gives true. The
/// orientation metadata is not touched. False, with the texture unchanged, for a layout that is not standard or a texture
/// without all of its data.
ZORT_API bool Flip(CZORTexture& texture, EZORTAxis axis);

/// Turns every image of a texture by a quarter about the z axis; `forward` is clockwise with y downwards, so that the left
/// column becomes the top row. About the x and y axes only the
/// dimensions change and the content is zero: height and depth swap about x; about y the height takes the value of the
/// width. An unknown axis gives false and zero content. False, with the texture unchanged, for a layout that is not
/// standard, a texture without all of its data, or a result too large.
ZORT_API bool Rotate90(CZORTexture& texture, EZORTAxis axis, bool forward);

/// Changes the frame around the top level and drops the other levels. The old image's first pixel lands at the offset; what
/// falls outside is cut off, and what is new is transparent black. The stored border is scaled along. False, with the
/// texture unchanged, for a layout that is not standard, a dimension of 0, a texture without all of its data, or a result
/// too large.
ZORT_API bool ResizeCanvas(CZORTexture& texture, const unsigned int& width, const unsigned int& height, const unsigned int& depth,
                           const int& xOffset, const int& yOffset, const int& zOffset);

/// Extends the top level on both sides of each axis by its mirror image, stores the border as metadata, and drops the
/// other levels. Three borders of 0 change nothing. In depth, the mirror in front starts with the first slice itself, and
/// slices at the back are overwritten by the empty ones behind them. False, with the texture unchanged, for a layout
/// that is not standard, a texture without all of its data, or a result too large.
ZORT_API bool Border(CZORTexture& texture, unsigned int borderX, unsigned int borderY, unsigned int borderZ);

// The templates below are instantiated for unsigned char, unsigned short, unsigned int and float. Images are
// width x height x depth pixels, x fastest; the caller owns all buffers. Null images give false.

/// The worker of Flip on one image.
template<typename T>
ZORT_API bool Flip(Pixel<T>* image, const unsigned int& width, const unsigned int& height, const unsigned int& depth, EZORTAxis axis);

/// The worker of Rotate90 on one image; the dimensions are those of `source`. About the z axis `destination` receives
/// the turned image. About x and y the copy runs the other way: `source` receives what a turn of it would have brought to
/// `destination`, an image of width x depth x height pixels about x and of width x width x depth pixels about y (pixels
/// beyond that are skipped). False, with nothing written, for an unknown axis.
template<typename T>
ZORT_API bool Rotate90(Pixel<T>* source, Pixel<T>* destination, const unsigned int& width, const unsigned int& height,
                       const unsigned int& depth, EZORTAxis axis, bool forward);

/// The worker of Border on one image. Mirrors wider than the image read what the destination holds there. False, with
/// nothing written, when a new dimension is below the old one.
template<typename T>
ZORT_API bool Border(Pixel<T>* source, Pixel<T>* destination, unsigned int width, unsigned int height, unsigned int depth,
                     unsigned int newWidth, unsigned int newHeight, unsigned int newDepth);
} // namespace zortexture

#endif // ZORT_GEOMETRY_H
