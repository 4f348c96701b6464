/// @file StandardForm.h
/// Bringing textures of any format into the layouts that image processing works on, and picking single images.
#ifndef ZORTEX_STANDARD_FORM_H
#define ZORTEX_STANDARD_FORM_H

#include <ZORTexLib.h>
#include <optional>
#include <string>

namespace zortex
{
/// Why a texture's pixels cannot be converted at all; empty when they can.
std::string sourceProblem(const zortexture::CZORTextureHeader& header);

/// The channel type of the standard layout that keeps the precision of a format: 8 or 16 bits, or floats.
EZORTVariableType standardType(zortexture::PixelType format, EZORTVariableType type);

/// Converts into the standard layout of a channel type (one of the three that standardType gives). `file` is named when
/// the pixels cannot be decoded.
void makeStandard(zortexture::CZORTexture& texture, EZORTVariableType type, EZORTColourSpace space, const std::string& file);

/// An index that is there: 0 unless told. Refuses, naming `file`, one that is not below `count`.
unsigned int pickIndex(const std::optional<unsigned int>& index, unsigned int count, const std::string& noun, const std::string& file);

/// Cuts a texture down to one image, with its metadata.
void cutToImage(zortexture::CZORTexture& texture, unsigned int level, unsigned int surface, unsigned int face);
} // namespace zortex

#endif // ZORTEX_STANDARD_FORM_H
