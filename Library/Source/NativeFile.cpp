// The native container: a 52-byte header, the metadata blocks, and the pixel data in the order of memory.

#include <cstring>

#include "ContainerFiles.h"
#include "ZORTexture.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kHeaderSize = sizeof(ZORTextureHeaderV3);

/// A legacy file begins with the size of its header instead of a magic number.
constexpr unsigned int kLegacyHeaderSizes[] = {44, 52};

/// Far more than a handful of keys. The table is searched one entry after the other, and each namespace in it takes
/// some hundred bytes, so that a file of nothing but empty blocks would cost out of all proportion to its size.
constexpr unsigned int kMaxFileBlocks = 65536;

constexpr unsigned int kNumBlockWords = kBlockHeadSize / sizeof(unsigned int);

bool isLegacyHeaderSize(unsigned int word)
{
	return word == kLegacyHeaderSizes[0] || word == kLegacyHeaderSizes[1];
}

/// The file's size; -1 for a stream that cannot seek. The position stays at the end.
long long sizeOfFile(std::FILE* stream)
{
	return std::fseek(stream, 0, SEEK_END) == 0 ? std::ftell(stream) : -1;
}

bool readBytes(std::FILE* stream, void* destination, std::size_t count)
{
	return std::fread(destination, 1, count, stream) == count;
}

/// Writes one item; false for an item without bytes.
bool writeItem(std::FILE* stream, const void* data, std::size_t size)
{
	return data != nullptr && std::fwrite(data, size, 1, stream) == 1;
}

/// Starts a block from the three words of its head, with a buffer for its data. The caller has made sure that the
/// file holds as many bytes.
void startBlock(MetaDataBlock& block, const unsigned int (&head)[kNumBlockWords])
{
	block.fourCC = head[0];
	block.key = head[1];
	block.dataSize = head[2];
	block.data = new unsigned char[block.dataSize];
}

bool writeBlock(std::FILE* stream, const MetaDataBlock& block)
{
	const unsigned int head[kNumBlockWords] = {block.fourCC, block.key, block.dataSize};
	return writeItem(stream, head, kBlockHeadSize) && writeItem(stream, block.data, block.dataSize);
}

/// Reads metadata up to `declaredSize` bytes and leaves the stream somewhere behind. False when the file ends in a
/// block; the blocks before it have been added then.
bool readMetaData(std::FILE* stream, long long fileSize, unsigned int declaredSize, CZORTextureHeader& header)
{
	long long position = kHeaderSize;
	const long long end = position + declaredSize;
	for (unsigned int numBlocks = 0; position < end; ++numBlocks)
	{
		unsigned int head[kNumBlockWords];
		if (numBlocks == kMaxFileBlocks || !readBytes(stream, head, kBlockHeadSize))
		{
			return false;
		}
		// Before anything is allocated: a size that the file does not hold costs nothing.
		position += kBlockHeadSize;
		if (head[2] > fileSize - position)
		{
			return false;
		}
		position += head[2];
		MetaDataBlock block;
		startBlock(block, head);
		if (!readBytes(stream, block.data, block.dataSize))
		{
			return false;
		}
		if (position > end)
		{
			return true; // runs past the metadata: its bytes are the first pixels
		}
		header.addMetaData(block);
	}
	return true;
}
} // namespace

bool CZORTexture::privateLoadZORFile(std::FILE* stream)
{
	if (stream == nullptr)
	{
		return false;
	}
	const long long fileSize = sizeOfFile(stream);
	unsigned int firstWord = 0;
	if (fileSize < 0 || std::fseek(stream, 0, SEEK_SET) != 0 || !readBytes(stream, &firstWord, sizeof(firstWord)) ||
	    std::fseek(stream, 0, SEEK_SET) != 0)
	{
		return false;
	}
	if (isLegacyHeaderSize(firstWord))
	{
		return privateLoadLegacyZORFile(stream);
	}
	ZORTextureHeaderV3 fileHeader;
	if (firstWord != kZORTextureMagic || !readBytes(stream, &fileHeader, kHeaderSize) || fileHeader.numMipMaps > kMaxFileLevels)
	{
		return false;
	}

	const unsigned int declaredMetaDataSize = fileHeader.metaDataSize;
	m_header = fileHeader;
	m_header.metaDataSize = 0;
	if (!readMetaData(stream, fileSize, declaredMetaDataSize, *this))
	{
		return false;
	}

	const unsigned int dataSize = getDataSize(-1, true, true);
	std::unique_ptr<unsigned char[]> block(new unsigned char[dataSize]);
	const long pixelPosition = static_cast<long>(kHeaderSize) + static_cast<long>(m_header.metaDataSize);
	const bool isPlaced = std::fseek(stream, pixelPosition, SEEK_SET) == 0;
	const std::size_t numRead = isPlaced ? std::fread(block.get(), 1, dataSize, stream) : 0;
	std::memset(block.get() + numRead, 0, dataSize - numRead);
	delete[] m_textureData;
	m_textureData = block.release();
	m_blockSize = dataSize;
	m_dataSize = dataSize;
	return numRead > 0;
}

CZORTexture::CZORTexture(const void* texture) : CZORTexture()
{
	if (texture == nullptr)
	{
		return;
	}
	const auto* const image = static_cast<const unsigned char*>(texture);
	unsigned int firstWord = 0;
	std::memcpy(&firstWord, image, sizeof(firstWord));
	if (isLegacyHeaderSize(firstWord))
	{
		privateLoadLegacyZORImage(image);
		return;
	}
	if (firstWord != kZORTextureMagic)
	{
		return;
	}
	ZORTextureHeaderV3 fileHeader;
	std::memcpy(&fileHeader, image, kHeaderSize);
	if (fileHeader.numMipMaps > kMaxFileLevels)
	{
		return;
	}

	const unsigned long long end = static_cast<unsigned long long>(kHeaderSize) + fileHeader.metaDataSize;
	m_header = fileHeader;
	m_header.metaDataSize = 0;
	// Counted in 64 bits: the metadata size wraps, and might never reach the declared one.
	unsigned long long position = kHeaderSize;
	while (position < end)
	{
		unsigned int head[kNumBlockWords];
		std::memcpy(head, image + position, kBlockHeadSize);
		MetaDataBlock block;
		startBlock(block, head);
		std::memcpy(block.data, image + position + kBlockHeadSize, block.dataSize);
		addMetaData(block);
		position += kBlockHeadSize + static_cast<unsigned long long>(block.dataSize);
	}
	m_dataSize = getDataSize(-1, true, true);
	m_textureData = new unsigned char[m_dataSize];
	m_blockSize = m_dataSize;
	std::memcpy(m_textureData, image + position, m_dataSize);
}

bool CZORTexture::privateSaveZORFile(std::FILE* stream) const
{
	// Not looked at: where this fails, the items behind it fail too.
	std::fwrite(&m_header, kHeaderSize, 1, stream);
	for (unsigned int outer = 0; outer < m_metaData.size; ++outer)
	{
		const CZORTMap<unsigned int, MetaDataBlock>& blocks = m_metaData.values[outer];
		for (unsigned int inner = 0; inner < blocks.size; ++inner)
		{
			if (!writeBlock(stream, blocks.values[inner]))
			{
				return false;
			}
		}
	}
	const unsigned int dataSize = getDataSize(-1, true, true);
	return dataSize <= m_blockSize && writeItem(stream, m_textureData, dataSize);
}
} // namespace zortexture
