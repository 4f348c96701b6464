/// @file ImageWalk.h
/// The walk of the loaders and writers over the images of a block, in the order of containers that nest otherwise than
/// the memory: array member, face, then MIP level.
#pragma once

#include <array>

#include "ContainerFiles.h"
#include "ZORTextureHeader.h"

namespace zortexture
{
/// Calls `function(pointer, size)` for one face of one level at a time. The sizes of a header wrap at 32 bits, so that the
/// images may not fit the block: the walk ends with false at the first one that does not, and when `function` returns
/// false. It does nothing for a block of no bytes.
/// @param block     `blockSize` bytes, in the memory order of textures.
template<typename Byte, typename Function>
bool forEachImageOfFile(const CZORTextureHeader& header, Byte* block, unsigned long long blockSize, Function&& function)
{
	const unsigned int levels = header.getNumMIPLevels();
	if (levels > kMaxFileLevels)
	{
		return false;
	}
	if (blockSize == 0)
	{
		return true;
	}
	struct Level
	{
		unsigned long long offset;
		unsigned long long memberSize;
		unsigned long long imageSize;
	};
	std::array<Level, kMaxFileLevels> table;
	unsigned long long offset = 0;
	unsigned long long bytesOfOnePass = 0;
	for (unsigned int level = 0; level < levels; ++level)
	{
		const int mipLevel = static_cast<int>(level);
		table[level] = {offset, header.getDataSize(mipLevel, false, true), header.getDataSize(mipLevel, false, false)};
		offset += header.getDataSize(mipLevel, true, true);
		bytesOfOnePass += table[level].imageSize;
	}
	if (bytesOfOnePass == 0)
	{
		return true; // every image rounds down to no bytes: nothing to move, however many there are
	}
	for (unsigned int member = 0; member < header.getNumArrayMembers(); ++member)
	{
		for (unsigned int face = 0; face < header.getNumFaces(); ++face)
		{
			for (unsigned int level = 0; level < levels; ++level)
			{
				const Level& entry = table[level];
				const unsigned long long start = entry.offset + member * entry.memberSize + face * entry.imageSize;
				if (start > blockSize || entry.imageSize > blockSize - start || !function(block + start, entry.imageSize))
				{
					return false;
				}
			}
		}
	}
	return true;
}
} // namespace zortexture
