/// @file PngFile.h
/// PNG files to and from textures.
#ifndef ZORTEX_PNG_FILE_H
#define ZORTEX_PNG_FILE_H

#include <ZORTexLib.h>
#include <string>
#include <vector>

namespace zortex
{
/// Whether a file starts as every PNG file does.
bool isPngSignature(const unsigned char* bytes, std::size_t count);

/// Decodes a PNG file's content to the closest layout: l, la, rgb or rgba, of 8 or 16 bits; palettes and transparent
/// colours are expanded, fewer than 8 bits widened to 8. The colour space is sRGB, unless the file says that its pixels
/// are linear (a gamma of 1 and no sRGB or ICC profile). Refuses, naming `path`, whatever is no whole PNG picture.
zortexture::CZORTexture decodePng(const std::vector<unsigned char>& content, const std::string& path);

/// The layout and channel type in which a texture's picture goes into a PNG file: grey or colour, with or without alpha,
/// 16 bits where a channel has more than 8.
void pngLayout(const zortexture::CZORTextureHeader& header, zortexture::PixelType& layout, EZORTVariableType& type);

/// Whether a layout and channel type is one of the eight that a PNG file holds.
bool isPngLayout(zortexture::PixelType layout, EZORTVariableType type);

/// Writes one depth slice of the first image of a texture in a layout that a PNG file holds.
void savePng(const zortexture::CZORTexture& texture, unsigned int slice, const std::string& path);
} // namespace zortex

#endif // ZORTEX_PNG_FILE_H
