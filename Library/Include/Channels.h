/// @file Channels.h
/// Channel and alpha editing of textures in the standard layouts. Luminance and intensity address r, g and b together.
#ifndef ZORT_CHANNELS_H
#define ZORT_CHANNELS_H

#include "Pixel.h"
#include "ZORTexture.h"

namespace zortexture
{
/// Writes unscaled values into channels of every pixel; they are cut to the width of the layout's elements, and stored
/// as raw bits in a float layout. False for a layout that is not standard or a texture without all of its data.
ZORT_API bool SetChannels(CZORTexture& texture, unsigned int numChannels, EChannelName* channels, unsigned int* values);

/// The same with floats, truncated toward zero in the integer layouts.
ZORT_API bool SetChannelsFloat(CZORTexture& texture, unsigned int numChannels, EChannelName* channels, float* values);

/// Copies channels from a texture of the same shape, scaled to the element range of the destination. Source and
/// destination may be one texture. False when shapes differ, a layout is not standard or data is missing.
ZORT_API bool CopyChannels(CZORTexture& destination, const CZORTexture& source, unsigned int numChannels, EChannelName* destinationChannels,
                           EChannelName* sourceChannels);

/// The worker of CopyChannels on one image, for each pair of element types. The two images are the same or apart. False for null images.
template<typename S, typename D>
ZORT_API bool CopyChannels(Pixel<S>* source, Pixel<D>* destination, const unsigned int& width, const unsigned int& height,
                           const unsigned int& depth, const unsigned int& numChannels, EChannelName* destinationChannels,
                           EChannelName* sourceChannels);

/// Multiplies colour by alpha, keeping 8 bits of each product in every layout. False, with nothing changed, for a layout
/// that is not standard, a premultiplied texture, or one without all of its data.
ZORT_API bool PreMultiplyAlpha(CZORTexture& texture);

/// Gives pixels with an alpha element of at most 7 the mean colour of the pixels around them (up to 8 away on each axis)
/// whose alpha element is 8 or more; black when there are none.
ZORT_API bool Bleed(CZORTexture& texture);

/// The worker of Bleed on one image. False for a null image.
template<typename T>
ZORT_API bool Bleed(Pixel<T>* image, const unsigned int& width, const unsigned int& height, const unsigned int& depth);
} // namespace zortexture

#endif // ZORT_CHANNELS_H
