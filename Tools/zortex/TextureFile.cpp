#include "TextureFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "AtomicOutput.h"
#include "OtherContainers.h"
#include "PngFile.h"
#include "Refusal.h"
#include "Text.h"

namespace zortex
{
using namespace zortexture;
namespace fs = std::filesystem;

namespace
{
constexpr Container kContainers[] = {
    {"zor", "native texture", true, true}, {"png", "PNG picture", true, true},   {"ktx", "KTX texture", true, true},
    {"dds", "DDS texture", true, true},    {"astc", "ASTC texture", true, true}, {"h", "C header", false, true},
};
constexpr const Container& kNative = kContainers[0];
constexpr const Container& kPng = kContainers[1];

/// Whether a file is loaded by its extension through another container's loader.
bool isOther(const Container* container)
{
	return container != nullptr && container != &kNative && container != &kPng && container->reads;
}

constexpr unsigned int kHeaderBytes = sizeof(ZORTextureHeaderV3);
constexpr unsigned int kMaxLevels = 256;

/// First words of native files that are not of version 3.
constexpr unsigned int kVersion1Word = 44;
constexpr unsigned int kVersion2Word = 52;
constexpr unsigned int kSwappedMagic = 0x5A4F5203u;

struct OpenFile
{
	std::ifstream stream;
	unsigned long long size = 0;
	unsigned char start[kHeaderBytes] = {};
	std::size_t startBytes = 0;
};

OpenFile openFile(const std::string& path)
{
	std::error_code error;
	const fs::file_status status = fs::status(path, error);
	if (fs::exists(status) && !fs::is_regular_file(status))
	{
		throw Refusal(path, fs::is_directory(status) ? "is a directory" : "is no regular file");
	}
	OpenFile file;
	errno = 0;
	file.stream.open(path, std::ios::binary);
	if (!file.stream)
	{
		throw Refusal(path, std::string("cannot be opened: ") + std::strerror(errno != 0 ? errno : EIO));
	}
	file.size = fs::file_size(path, error);
	if (error)
	{
		throw Refusal(path, "cannot be read: " + error.message());
	}
	file.stream.read(reinterpret_cast<char*>(file.start), sizeof(file.start));
	file.startBytes = static_cast<std::size_t>(file.stream.gcount());
	file.stream.clear();
	file.stream.seekg(0);
	return file;
}

bool isPng(const OpenFile& file, const std::string& path)
{
	return isPngSignature(file.start, file.startBytes) || extensionOf(path) == kPng.extension;
}

CZORTexture loadPng(OpenFile& file, const std::string& path)
{
	std::vector<unsigned char> content(file.size);
	file.stream.read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(content.size()));
	if (static_cast<std::size_t>(file.stream.gcount()) != content.size())
	{
		throw Refusal(path, "cannot be read to its end");
	}
	return decodePng(content, path);
}

/// The header of a native file; refuses a file that has none.
ZORTextureHeaderV3 readNativeHeader(const OpenFile& file, const std::string& path)
{
	unsigned int word = 0;
	if (file.startBytes >= sizeof(word))
	{
		std::memcpy(&word, file.start, sizeof(word));
	}
	if (word == kSwappedMagic)
	{
		throw Refusal(path, "is a native texture with the other byte order, which cannot be read");
	}
	if (word != kZORTextureMagic)
	{
		throw Refusal(path, "is neither a native texture nor a PNG file");
	}
	if (file.startBytes < kHeaderBytes)
	{
		throw Refusal(path, "is cut short in its header");
	}
	ZORTextureHeaderV3 header;
	std::memcpy(&header, file.start, kHeaderBytes);
	return header;
}

/// Why the texture behind a header cannot be loaded from a file of that size; empty when nothing speaks against it.
/// Asked before the texture takes memory.
std::string nativeProblem(const ZORTextureHeaderV3& header, unsigned long long fileBytes)
{
	if (header.numMipMaps > kMaxLevels)
	{
		return "its header is damaged: " + counted(header.numMipMaps, "level");
	}
	const double topBytes = ZORTGetTextureDataSize(header, 0, false, false);
	const double texels = static_cast<double>(header.width) * header.height * header.depth;
	const double described =
	    std::max(topBytes, texels * ZORTGetBitsPerPixel(header.pixelFormat) / 8.0) * header.numSurfaces * header.numFaces;
	if (described > 4294967295.0)
	{
		return "its header describes more than 4 GiB of pixels";
	}
	const unsigned int dataBytes = ZORTGetTextureDataSize(header, -1, true, true);
	if (dataBytes == 0)
	{
		return "its header describes no pixels";
	}
	const unsigned long long expected = 0ull + kHeaderBytes + header.metaDataSize + dataBytes;
	if (fileBytes < expected)
	{
		return "is cut short: " + std::to_string(fileBytes) + " of " + std::to_string(expected) + " bytes";
	}
	return {};
}

bool isLegacy(const OpenFile& file)
{
	unsigned int word = 0;
	std::memcpy(&word, file.start, sizeof(word));
	return file.startBytes >= sizeof(word) && (word == kVersion1Word || word == kVersion2Word);
}

CZORTexture loadLegacy(const OpenFile& file, const std::string& path)
{
	CZORTexture texture(path.c_str());
	if (texture.getPixelType().id == ePF_NumCompressedPFs)
	{
		throw Refusal(path, "is a native texture of an old version, in a format that is not known");
	}
	if (!texture.isDataComplete() || file.size < 0ull + kVersion1Word + texture.getDataSize())
	{
		throw Refusal(path, "is a native texture of an old version, cut short or damaged");
	}
	return texture;
}

CZORTexture loadNative(const std::string& path)
{
	CZORTexture texture(path.c_str());
	if (texture.getDataPtr() == nullptr || !texture.isDataComplete())
	{
		throw Refusal(path, "is a damaged native texture");
	}
	return texture;
}

/// Bytes that the file of a texture takes; refuses one with a block that the file format cannot hold.
unsigned long long nativeFileBytes(const CZORTexture& texture, const std::string& path)
{
	unsigned long long bytes = kHeaderBytes + texture.getDataSize();
	const MetaDataMap& table = *texture.getMetaDataMap();
	for (unsigned int i = 0; i < table.size; ++i)
	{
		for (unsigned int j = 0; j < table.values[i].size; ++j)
		{
			const MetaDataBlock& block = table.values[i].values[j];
			if (block.dataSize == 0)
			{
				throw Refusal(path, "cannot be written: the texture has an empty metadata block");
			}
			bytes += 12ull + block.dataSize;
		}
	}
	return bytes;
}
} // namespace

std::span<const Container> containers()
{
	return kContainers;
}

const Container* containerOf(const std::string& path)
{
	const std::string extension = extensionOf(path);
	const auto* const found = std::find_if(std::begin(kContainers), std::end(kContainers),
	                                       [&extension](const Container& container) { return container.extension == extension; });
	return found != std::end(kContainers) ? found : nullptr;
}

LoadedTexture loadTexture(const std::string& path)
{
	OpenFile file = openFile(path);
	if (isPng(file, path))
	{
		return {&kPng, loadPng(file, path), file.size};
	}
	const Container* container = containerOf(path);
	if (isOther(container))
	{
		return {container, loadOther(path, container->extension, file.size), file.size};
	}
	if (isLegacy(file))
	{
		return {&kNative, loadLegacy(file, path), file.size};
	}
	const std::string problem = nativeProblem(readNativeHeader(file, path), file.size);
	if (!problem.empty())
	{
		throw Refusal(path, problem);
	}
	return {&kNative, loadNative(path), file.size};
}

InspectedFile inspectTexture(const std::string& path)
{
	OpenFile file = openFile(path);
	if (isPng(file, path))
	{
		return {&kPng, loadPng(file, path), file.size, {}};
	}
	const Container* container = containerOf(path);
	if (isOther(container))
	{
		return {container, loadOther(path, container->extension, file.size), file.size, {}};
	}
	if (isLegacy(file))
	{
		return {&kNative, loadLegacy(file, path), file.size, {}};
	}
	const ZORTextureHeaderV3 header = readNativeHeader(file, path);
	const std::string problem = nativeProblem(header, file.size);
	if (!problem.empty())
	{
		return {&kNative, CZORTextureHeader(header), file.size, problem};
	}
	return {&kNative, loadNative(path), file.size, {}};
}

unsigned long long sizeOfFile(const std::string& path)
{
	std::error_code error;
	const std::uintmax_t bytes = fs::file_size(path, error);
	return error ? 0 : bytes;
}

void saveNative(const CZORTexture& texture, const std::string& path)
{
	const unsigned long long expected = nativeFileBytes(texture, path);
	AtomicOutput output(path);
	errno = 0;
	// What the last buffer lacks on a full disk shows in the size alone.
	if (!texture.saveFile(output.path()) || output.size() != expected)
	{
		throw Refusal(path, std::string("cannot be written: ") + (errno != 0 ? std::strerror(errno) : "the disk may be full"));
	}
	output.commit();
}
} // namespace zortex
