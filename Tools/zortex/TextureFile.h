/// @file TextureFile.h
/// Loading and saving textures in any container, with a reason when it fails.
#ifndef ZORTEX_TEXTURE_FILE_H
#define ZORTEX_TEXTURE_FILE_H

#include <ZORTexLib.h>
#include <span>
#include <string>
#include <string_view>

namespace zortex
{
struct Container
{
	/// Extension in lower case, without the dot.
	std::string_view extension;
	std::string_view title;
	bool reads;
	bool writes;
};

/// All containers that the program knows.
std::span<const Container> containers();

/// The container of a path's extension; null for an extension that none has.
const Container* containerOf(const std::string& path);

struct LoadedTexture
{
	const Container* container;
	zortexture::CZORTexture texture;
	unsigned long long fileBytes;
};

/// Loads a texture with all of its pixels. A file that starts like a PNG file is one whatever its extension.
LoadedTexture loadTexture(const std::string& path);

struct InspectedFile
{
	const Container* container;
	/// Without metadata when there is a problem.
	zortexture::CZORTextureHeader header;
	unsigned long long fileBytes;
	/// Why the texture cannot be loaded, though it has a header; empty when it can.
	std::string problem;
};

/// Reads what a file says of its texture, also when its pixels are not all there.
InspectedFile inspectTexture(const std::string& path);

/// Bytes of a file; 0 when there is none.
unsigned long long sizeOfFile(const std::string& path);

/// Saves a native file.
void saveNative(const zortexture::CZORTexture& texture, const std::string& path);
} // namespace zortex

#endif // ZORTEX_TEXTURE_FILE_H
