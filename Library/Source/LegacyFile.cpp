// Native files before version 3. In a file the images lie by array member, face and level.

#include <cstdio>
#include <cstring>

#include "ContainerFiles.h"
#include "ImageWalk.h"
#include "LegacyTexture.h"
#include "ZORTexture.h"

namespace zortexture
{
namespace
{
std::size_t headerSizeOf(const ZORTextureHeaderV2& old)
{
	return old.headerSize == sizeof(ZORTextureHeaderV1) ? sizeof(ZORTextureHeaderV1) : sizeof(ZORTextureHeaderV2);
}

/// Whether the levels, which are one more than the header counts, are as many as a file may have.
bool hasFewLevels(const ZORTextureHeaderV2& old)
{
	return old.mipMapCount + 1 <= kMaxFileLevels; // wraps to 0 levels, which are few
}

void convert(const ZORTextureHeaderV2& old, ZORTextureHeaderV3& header, MetaDataMap& metaData)
{
	if (headerSizeOf(old) == sizeof(ZORTextureHeaderV1))
	{
		ConvertTextureHeader1To3(old, header, metaData);
	}
	else
	{
		ConvertTextureHeader2To3(old, header, metaData);
	}
}
} // namespace

bool CZORTexture::privateLoadLegacyZORFile(std::FILE* stream)
{
	ZORTextureHeaderV2 old{};
	if (std::fread(&old.headerSize, sizeof(old.headerSize), 1, stream) != 1)
	{
		return false;
	}
	const std::size_t rest = headerSizeOf(old) - sizeof(old.headerSize);
	if (std::fread(&old.height, 1, rest, stream) != rest || !hasFewLevels(old))
	{
		return false;
	}
	convert(old, m_header, m_metaData);
	allocateBlock();
	m_dataSize = m_blockSize;
	return forEachImageOfFile(getHeader(), m_textureData, m_blockSize,
	                          [&](unsigned char* image, unsigned long long size) { return std::fread(image, 1, size, stream) == size; });
}

bool CZORTexture::privateLoadLegacyZORImage(const unsigned char* image)
{
	ZORTextureHeaderV2 old{};
	std::memcpy(&old.headerSize, image, sizeof(old.headerSize));
	std::memcpy(&old, image, headerSizeOf(old));
	if (!hasFewLevels(old))
	{
		return false;
	}
	convert(old, m_header, m_metaData);
	allocateBlock();
	m_dataSize = m_blockSize;
	if (!isDataComplete())
	{
		return false;
	}
	// Only the first array member is filled; the others stay zero.
	const unsigned char* source = image + headerSizeOf(old);
	for (unsigned int face = 0; face < getNumFaces(); ++face)
	{
		for (unsigned int level = 0; level < getNumMIPLevels(); ++level)
		{
			const unsigned int size = getDataSize(static_cast<int>(level), false, false);
			std::memcpy(getDataPtr(level, 0, face), source, size);
			source += size;
		}
	}
	return true;
}

bool CZORTexture::saveFileLegacyZOR(const std::string& filePath, ELegacyApi api) const
{
	if (writeFileOrRemove(filePath, [this, api](std::FILE* file) { return privateSaveLegacyZORFile(file, api); }))
	{
		return true;
	}
	std::remove(filePath.c_str()); // also what could not be opened
	return false;
}

bool CZORTexture::privateSaveLegacyZORFile(std::FILE* stream, ELegacyApi api) const
{
	if (stream == nullptr || getFileHeader().depth > 1)
	{
		return false;
	}
	// A texture with images but without all of their bytes cannot be written.
	const ZORTextureHeaderV3 fields = getFileHeader();
	const bool hasImages = fields.numMipMaps != 0 && fields.numSurfaces != 0 && fields.numFaces != 0;
	if (hasImages && (!isDataComplete() || getDataSize(-1, true, true) == 0))
	{
		return false;
	}
	const ZORTextureHeaderV2 old = ConvertTextureHeader3To2(getHeader(), api);
	if (old.pixelFormatAndFlags == eLegacyPixelType_None || std::fwrite(&old, sizeof(old), 1, stream) != 1)
	{
		return false;
	}
	return forEachImageOfFile(getHeader(), m_textureData, m_blockSize,
	                          [&](const unsigned char* image, unsigned long long size)
	                          { return std::fwrite(image, size, 1, stream) == 1; });
}
} // namespace zortexture
