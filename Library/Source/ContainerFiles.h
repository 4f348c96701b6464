/// @file ContainerFiles.h
/// What the loaders and writers of the containers share.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace zortexture
{
class CZORTexture;

/// fourCC, key and size of a metadata block, in bytes.
constexpr unsigned int kBlockHeadSize = 12;

/// No file has more levels; a header that claims more is refused.
constexpr unsigned int kMaxFileLevels = 256;

struct FileCloser
{
	void operator()(std::FILE* file) const
	{
		std::fclose(file);
	}
};

/// An open file, or null.
using FilePointer = std::unique_ptr<std::FILE, FileCloser>;

/// Creates a file and calls `write` with it. False, and no file left, when that fails or the last bytes do not reach
/// the file; false also for a path that cannot be opened.
template<typename Write>
bool writeFileOrRemove(const std::string& path, Write write)
{
	FilePointer file(std::fopen(path.c_str(), "wb"));
	if (file == nullptr)
	{
		return false;
	}
	const bool isWritten = write(file.get());
	const bool isClosed = std::fclose(file.release()) == 0;
	if (isWritten && isClosed)
	{
		return true;
	}
	std::remove(path.c_str());
	return false;
}

/// Writes a KTX file through a stream.
bool saveKTXFile(const CZORTexture& texture, const std::string& path);
} // namespace zortexture
