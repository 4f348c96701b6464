/// @file OtherContainers.h
/// The containers of other programs: what they can hold, and loading and saving them with a reason when it fails.
#ifndef ZORTEX_OTHER_CONTAINERS_H
#define ZORTEX_OTHER_CONTAINERS_H

#include <ZORTexLib.h>
#include <string>
#include <string_view>
#include <vector>

#include "ConvertTarget.h"

namespace zortex
{
/// Loads a .ktx, .dds or .astc file, by the extension (without the dot). Throws a Refusal.
zortexture::CZORTexture loadOther(const std::string& path, std::string_view extension, unsigned long long fileBytes);

/// Saves a .ktx, .dds, .astc or .h file. Throws a Refusal.
void saveOther(const zortexture::CZORTexture& texture, const std::string& path, std::string_view extension);

/// Saves a native file of version 2 with the format numbers of an API. Throws a Refusal.
void saveLegacy(const zortexture::CZORTexture& texture, const std::string& path, zortexture::ELegacyApi api);

/// The API of a name such as "gl" or "d3d"; null for an unknown one.
const zortexture::ELegacyApi* findLegacyApi(const std::string& name);

/// Changes a target to what a container can hold, and that other programs and this one read back as it is, and tells so in
/// `notes`. A format that was asked for is kept where it can be written at all; one that cannot is a UsageError.
/// @param shape  the texture as it will be written, but for its format.
void fitTarget(const zortexture::CZORTextureHeader& shape, std::string_view extension, bool isFormatAskedFor, Target& target,
               std::vector<std::string>& notes);
} // namespace zortex

#endif // ZORTEX_OTHER_CONTAINERS_H
