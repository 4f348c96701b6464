/// @file TextureDescription.h
/// Everything that a texture's header says, as JSON; the other reports pick from it.
#ifndef ZORTEX_TEXTURE_DESCRIPTION_H
#define ZORTEX_TEXTURE_DESCRIPTION_H

#include <ZORTexLib.h>
#include <nlohmann/json.hpp>
#include <string>

namespace zortex
{
using Json = nlohmann::ordered_json;

/// Format, shape, levels, flags and metadata of a texture.
Json describeTexture(const zortexture::CZORTextureHeader& header);

/// "tessel1-4bpp-rgb, 512x512, srgb" and so on: the one-line form.
std::string summariseTexture(const zortexture::CZORTextureHeader& header);

/// JSON as text for a terminal or another program. Text that is no UTF-8 (a file name) has its stray bytes replaced.
std::string jsonText(const Json& json);
} // namespace zortex

#endif // ZORTEX_TEXTURE_DESCRIPTION_H
