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
/// Appends `size` bytes in pieces, so that memory grows with what the source really holds and not with what is claimed.
/// `read(destination, count)` returns false where the source ends. Returns false then.
template<typename Read>
bool appendInPieces(std::string& bytes, unsigned long long size, Read&& read)
{
	constexpr unsigned long long kPiece = 1 << 16;
	while (size != 0)
	{
		const std::size_t before = bytes.size();
		const auto count = static_cast<std::size_t>(std::min(kPiece, size));
		bytes.resize(before + count);
		if (!read(bytes.data() + before, count))
		{
			return false;
		}
		size -= count;
	}
	return true;
}

/// Reads `size` bytes of a stream. A short read throws, by the stream's exception mask. False when memory runs out.
inline bool readGrowing(std::istream& stream, unsigned int size, std::string& bytes)
{
	try
	{
		return appendInPieces(bytes, size,
		                      [&](char* destination, std::size_t count)
		                      {
			                      stream.read(destination, static_cast<std::streamsize>(count));
			                      return true;
		                      });
	}
	catch (const std::bad_alloc&)
	{
		return false;
	}
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
	std::string bytes; // a folder, too, opens as a file and claims a length
	if (!appendInPieces(bytes, static_cast<unsigned long long>(length),
	                    [&](char* destination, std::size_t count) { return std::fread(destination, 1, count, file) == count; }))
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
