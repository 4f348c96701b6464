/// @file Codec.h
/// Images through the installed ASTC codec library.
#ifndef ASTCENC_CODEC_H
#define ASTCENC_CODEC_H

#include <ZORTexLib.h>

namespace astcenc
{
/// Effort levels of the codec library for the switches -veryfast to -exhaustive.
struct QualitySwitch
{
	const char* name;
	float effort;
};
extern const QualitySwitch kQualitySwitches[5];

/// Encodes one image of 8-bit rgba pixels on all processors; the blocks do not depend on their number. An image tagged sRGB is encoded for
/// decoders that read it as sRGB. Throws std::runtime_error where the codec library refuses.
zortexture::CZORTexture encode(const zortexture::CZORTexture& pixels, EZORTPixelFormat format, float effort);

/// Decodes one image to 8-bit rgba pixels, which are tagged linear: with `isSRGB`, too, they are the values that the blocks hold.
/// Throws std::runtime_error where the codec library refuses.
zortexture::CZORTexture decode(const zortexture::CZORTexture& blocks, bool isSRGB);
} // namespace astcenc

#endif // ASTCENC_CODEC_H
