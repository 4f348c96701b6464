#include <cstdio>

#include "DDSFormat.h"
#include "FormatMaps.h"
#include "ImageWalk.h"
#include "ZORTexture.h"

namespace zortexture
{
namespace
{
constexpr long kClassicFileSize = 4 + static_cast<long>(sizeof(dds::Header));
constexpr long kExtendedFileSize = kClassicFileSize + static_cast<long>(sizeof(dds::ExtendedHeader));

template<typename T>
bool readOne(std::FILE* stream, T& value)
{
	return std::fread(&value, sizeof(T), 1, stream) == 1;
}

template<typename T>
bool writeOne(std::FILE* stream, const T& value)
{
	return std::fwrite(&value, sizeof(T), 1, stream) == 1;
}

/// Takes over shape and format from the extended header. An unknown format number leaves the format as it is.
bool applyExtendedHeader(const dds::ExtendedHeader& extended, CZORTextureHeader& header)
{
	switch (extended.resourceDimension)
	{
	case dds::kDimension1D:
		header.setHeight(1);
		header.setDepth(1);
		break;
	case dds::kDimension2D:
		header.setDepth(1);
		break;
	case dds::kDimension3D:
		break;
	default:
		return false;
	}
	if ((extended.miscFlag & dds::kMiscCubeMap) != 0)
	{
		header.setNumFaces(6);
	}
	header.setNumArrayMembers(extended.arraySize == 0 ? 1 : extended.arraySize);
	header.setDXGIFormat(extended.dxgiFormat);
	return true;
}

dds::ExtendedHeader makeExtendedHeader(const CZORTextureHeader& header)
{
	dds::ExtendedHeader extended{};
	getDirectXGIFormat(header.getPixelType().id, header.getChannelType(), header.getColourSpace(), extended.dxgiFormat);
	const ZORTextureHeaderV3 fields = header.getFileHeader();
	extended.resourceDimension = fields.depth >= 2 ? dds::kDimension3D : fields.height < 2 ? dds::kDimension1D : dds::kDimension2D;
	extended.miscFlag = fields.numFaces == 6 ? dds::kMiscCubeMap : 0;
	extended.arraySize = fields.numSurfaces;
	return extended;
}
} // namespace

bool CZORTexture::privateLoadDDSFile(std::FILE* stream)
{
	if (stream == nullptr || std::fseek(stream, 0, SEEK_END) != 0)
	{
		return false;
	}
	const long length = std::ftell(stream);
	if (length < kClassicFileSize || std::fseek(stream, 0, SEEK_SET) != 0)
	{
		return false;
	}
	unsigned int magic = 0;
	dds::Header file{};
	if (!readOne(stream, magic) || magic != dds::kMagic || !readOne(stream, file) || file.size != sizeof(dds::Header))
	{
		return false;
	}

	setWidth(file.width);
	setHeight(file.height);
	setDepth((file.flags & dds::kFlagDepth) != 0 ? file.depth : 1);
	setNumMIPLevels((file.flags & dds::kFlagMIPMapCount) != 0 ? file.mipMapCount : 1);
	setNumFaces(((file.caps2 >> 8) & 0xFF) >= 2 ? 6 : 1);
	setNumArrayMembers(1);

	if (file.pixelFormat.fourCC == dds::kFourCCExtended && (file.pixelFormat.flags & dds::kPixelFourCC) != 0)
	{
		dds::ExtendedHeader extended{};
		if (length < kExtendedFileSize || !readOne(stream, extended) || !applyExtendedHeader(extended, *this))
		{
			return false;
		}
	}
	else if (!setD3DFormat(dds::recognise(file.pixelFormat)))
	{
		return false;
	}
	if (getNumMIPLevels() > kMaxFileLevels)
	{
		return false;
	}

	allocateBlock();
	m_dataSize = m_blockSize;
	unsigned long long bytesRead = 0;
	forEachImageOfFile(getHeader(), m_textureData, m_blockSize,
	                   [&](unsigned char* image, unsigned long long size)
	                   {
		                   const std::size_t got = std::fread(image, 1, size, stream);
		                   bytesRead += got;
		                   return got == size;
	                   });
	return bytesRead == m_dataSize;
}

bool CZORTexture::privateSaveDDSFile(std::FILE* stream) const
{
	if (stream == nullptr)
	{
		return false;
	}
	const ZORTextureHeaderV3 fields = getFileHeader();
	const bool isVolume = fields.depth >= 2;
	const bool isCubeMap = fields.numFaces == 6;
	const bool hasMIPMaps = fields.numMipMaps >= 2;

	dds::Header file{};
	unsigned int d3dFormat = 0;
	getDirect3DFormat(fields.pixelFormat, getChannelType(), getColourSpace(), d3dFormat);
	const bool isExtended = fields.numSurfaces > 1 || !dds::describe(d3dFormat, getBitsPerPixel(), file.pixelFormat);
	if (isExtended)
	{
		file.pixelFormat = {};
		file.pixelFormat.flags = dds::kPixelFourCC;
		file.pixelFormat.fourCC = dds::kFourCCExtended;
	}
	file.pixelFormat.size = sizeof(dds::PixelFormat);
	file.size = sizeof(dds::Header);
	file.flags = dds::kFlagsAlways | (hasMIPMaps ? dds::kFlagMIPMapCount : 0) | (isVolume ? dds::kFlagDepth : 0);
	file.height = fields.height;
	file.width = fields.width;
	file.depth = fields.depth;
	file.mipMapCount = fields.numMipMaps;
	file.caps = hasMIPMaps ? dds::kCapsMIPMaps : isCubeMap ? dds::kCapsCubeMap : dds::kCapsTexture;
	file.caps2 = (isCubeMap ? dds::kCaps2CubeMapAllFaces : 0) + (isVolume ? dds::kCaps2Volume : 0);
	if (getPixelType().isCompressed())
	{
		file.flags |= dds::kFlagLinearSize;
		file.pitchOrLinearSize = getDataSize(-1, true, true); // of the whole data, not of the top level
	}
	else
	{
		file.flags |= dds::kFlagPitch;
		file.pitchOrLinearSize = (getBitsPerPixel() * fields.width + 7) >> 3;
	}

	if (!writeOne(stream, dds::kMagic) || !writeOne(stream, file) || (isExtended && !writeOne(stream, makeExtendedHeader(*this))))
	{
		return false;
	}
	unsigned long long bytesWritten = 0;
	forEachImageOfFile(getHeader(), m_textureData, m_blockSize,
	                   [&](const unsigned char* image, unsigned long long size)
	                   {
		                   const std::size_t put = std::fwrite(image, 1, size, stream);
		                   bytesWritten += put;
		                   return put == size;
	                   });
	return bytesWritten == getDataSize(-1, true, true);
}
} // namespace zortexture
