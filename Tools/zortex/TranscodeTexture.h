/// @file TranscodeTexture.h
/// The library's Transcode, with what the program does itself.
#ifndef ZORTEX_TRANSCODE_TEXTURE_H
#define ZORTEX_TRANSCODE_TEXTURE_H

#include <ZORTexLib.h>

namespace zortex
{
/// Converts a texture in place as Transcode does. Formats of the DXT family are targets too, which Transcode does not encode, and their
/// levels below a block are decoded as images of their own size, where Transcode takes texels from the block's first rows and reports a
/// failure. False when a stage failed; the texture is of no use then.
bool transcodeTexture(zortexture::CZORTexture& texture, zortexture::PixelType target, EZORTVariableType type, EZORTColourSpace space,
                      int quality = 0, bool dither = false);

/// The same with the result in another texture, for callers who need the source later; see TranscodeInto. `result` may be the source
/// itself.
bool transcodeInto(const zortexture::CZORTexture& source, zortexture::CZORTexture& result, zortexture::PixelType target,
                   EZORTVariableType type, EZORTColourSpace space, int quality = 0, bool dither = false);
} // namespace zortex

#endif // ZORTEX_TRANSCODE_TEXTURE_H
