/// @file StreamFile.h
/// What the loaders of stream-based containers share.
#pragma once

#include <algorithm>
#include <cstdio>
#include <istream>
#include <new>
#include <stdexcept>
#include <string>

#include "OneShotReadBuf.h"

namespace zortexture
{
/// Reads `size` bytes in pieces, so that memory grows with what the stream really holds and not with what a file claims.
/// A short read throws, by the stream's exception mask. False when memory runs out.
inline bool readGrowing(std::istream& stream, unsigned int size, std::string& bytes)
{
	constexpr std::size_t kPiece = 1 << 16;
	try
	{
		while (bytes.size() < size)
		{
			const std::size_t before = bytes.size();
			bytes.resize(before + std::min<std::size_t>(kPiece, size - before));
			stream.read(bytes.data() + before, static_cast<std::streamsize>(bytes.size() - before));
		}
	}
	catch (const std::bad_alloc&)
	{
		return false;
	}
	return true;
}

/// Reads a whole file into memory and calls `load(std::istream&)` on it. False when the file cannot be read whole, and when
/// the loader throws what streams throw.
template<typename Load>
bool loadThroughMemory(std::FILE* file, Load&& load)
{
	if (file == nullptr || std::fseek(file, 0, SEEK_END) != 0)
	{
		return false;
	}
	const long length = std::ftell(file);
	if (length < 0 || std::fseek(file, 0, SEEK_SET) != 0)
	{
		return false;
	}
	std::string bytes(static_cast<std::size_t>(length), '\0');
	if (std::fread(bytes.data(), 1, bytes.size(), file) != bytes.size())
	{
		return false;
	}
	OneShotReadBuf buffer(bytes.data(), bytes.size());
	std::istream stream(&buffer);
	try
	{
		return load(stream);
	}
	catch (const std::runtime_error&)
	{
		return false;
	}
}
} // namespace zortexture
