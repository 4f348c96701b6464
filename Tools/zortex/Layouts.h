/// @file Layouts.h
/// What the program has to know of uncompressed layouts beyond their names.
#ifndef ZORTEX_LAYOUTS_H
#define ZORTEX_LAYOUTS_H

#include <ZORTexLib.h>
#include <string>

namespace zortex
{
/// A layout of up to four channels of one width in bits.
zortexture::PixelType makeLayout(const char* letters, unsigned char bits);

/// Number of channels of an uncompressed layout.
unsigned int channelCount(zortexture::PixelType layout);

/// Width of the widest channel.
unsigned int widestChannel(zortexture::PixelType layout);

/// Whether all channels have one width.
bool hasEqualWidths(zortexture::PixelType layout);

/// Bits of a channel type; 0 for a number that is no type.
unsigned int channelTypeBits(EZORTVariableType type);

bool isFloatType(EZORTVariableType type);

/// Why the pixel encoder cannot work with a layout and channel type; empty when it can.
std::string layoutProblem(zortexture::PixelType layout, EZORTVariableType type);

/// The letters of the colour and alpha channels that an image of any format has, out of "rgba" (luminance and intensity
/// count as "rgb"). Empty for a number that is no format.
std::string imageChannels(zortexture::PixelType format);

/// The layout and channel type in which the pixels of a format are worked with: its own, or the one that its codec uses.
void workingLayout(zortexture::PixelType format, EZORTVariableType type, zortexture::PixelType& layout, EZORTVariableType& layoutType);

/// Adds what a layout of PNG files lacks to hold certain channels ("rgba"): colour where it is grey, alpha where it has
/// none. Other layouts stay.
void widenLayout(zortexture::CZORTextureHeader& header, const std::string& channels);
} // namespace zortex

#endif // ZORTEX_LAYOUTS_H
