#include <array>
#include <cstdio>
#include <cstring>
#include <istream>
#include <ostream>

#include "ContainerFiles.h"
#include "StreamFile.h"
#include "ZORTexture.h"

namespace zortexture
{
namespace
{
constexpr unsigned char kASTCMagic[4] = {0x13, 0xAB, 0xA1, 0x5C};

/// The header of an .astc file: bytes only, so that it has no gaps.
struct ASTCHeader
{
	unsigned char magic[4];
	unsigned char blockWidth;
	unsigned char blockHeight;
	unsigned char blockDepth;
	unsigned char width[3]; ///< little-endian, like the two below
	unsigned char height[3];
	unsigned char depth[3];
};
static_assert(sizeof(ASTCHeader) == 16, "the header must have the layout of the file");

unsigned int from24Bits(const unsigned char (&bytes)[3])
{
	return bytes[0] | static_cast<unsigned int>(bytes[1]) << 8 | static_cast<unsigned int>(bytes[2]) << 16;
}

void to24Bits(unsigned int value, unsigned char (&bytes)[3])
{
	bytes[0] = static_cast<unsigned char>(value);
	bytes[1] = static_cast<unsigned char>(value >> 8);
	bytes[2] = static_cast<unsigned char>(value >> 16);
}

bool isASTC(unsigned long long pixelFormat)
{
	return pixelFormat >= ePF_ASTC_4x4 && pixelFormat <= ePF_ASTC_6x6x6;
}

/// The format with blocks of these dimensions; ePF_NumCompressedPFs when there is none.
EZORTPixelFormat formatOfBlock(unsigned int width, unsigned int height, unsigned int depth)
{
	for (unsigned int id = ePF_ASTC_4x4; id <= ePF_ASTC_6x6x6; ++id)
	{
		unsigned int x = 0;
		unsigned int y = 0;
		unsigned int z = 0;
		ZORTGetFormatMinDims(id, x, y, z);
		if (x == width && y == height && z == depth)
		{
			return static_cast<EZORTPixelFormat>(id);
		}
	}
	return ePF_NumCompressedPFs;
}

ASTCHeader makeHeader(const CZORTextureHeader& texture)
{
	ASTCHeader file{};
	std::memcpy(file.magic, kASTCMagic, sizeof(kASTCMagic));
	const unsigned long long pixelFormat = texture.getPixelType().id;
	if (isASTC(pixelFormat)) // any other format is written with blocks of 0
	{
		unsigned int x = 0;
		unsigned int y = 0;
		unsigned int z = 0;
		ZORTGetFormatMinDims(pixelFormat, x, y, z);
		file.blockWidth = static_cast<unsigned char>(x);
		file.blockHeight = static_cast<unsigned char>(y);
		file.blockDepth = static_cast<unsigned char>(z);
	}
	to24Bits(texture.getWidth(), file.width);
	to24Bits(texture.getHeight(), file.height);
	to24Bits(texture.getDepth(), file.depth);
	return file;
}
} // namespace

bool CZORTexture::privateLoadASTCFile(std::FILE* stream)
{
	return loadThroughMemory(stream, [this](std::istream& memory) { return privateLoadASTCFile(memory); });
}

CZORTexture CZORTexture::fromASTC(std::istream& stream)
{
	CZORTexture texture;
	texture.privateLoadASTCFile(stream);
	return texture;
}

bool CZORTexture::privateLoadASTCFile(std::istream& stream)
{
	stream.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
	ASTCHeader file{};
	stream.read(reinterpret_cast<char*>(&file), sizeof(file));
	if (std::memcmp(file.magic, kASTCMagic, sizeof(kASTCMagic)) != 0)
	{
		return false;
	}
	const EZORTPixelFormat format = formatOfBlock(file.blockWidth, file.blockHeight, file.blockDepth);
	if (format == ePF_NumCompressedPFs)
	{
		return false;
	}
	setPixelFormat(format);
	setWidth(from24Bits(file.width));
	setHeight(from24Bits(file.height));
	setDepth(from24Bits(file.depth));

	allocateBlock(); // the data size stays: a texture from a stream is copied without its pixels
	stream.read(reinterpret_cast<char*>(m_textureData), static_cast<std::streamsize>(m_blockSize));
	return true;
}

bool CZORTexture::saveASTCFile(const std::string& filePath) const
{
	return writeFileOrRemove(filePath, [this](std::FILE* file) { return privateSaveASTCFile(file); });
}

bool CZORTexture::privateSaveASTCFile(std::FILE* stream) const
{
	if (stream == nullptr)
	{
		return false;
	}
	const ASTCHeader file = makeHeader(*this);
	const unsigned int size = getDataSize(0, false, false);
	return std::fwrite(&file, sizeof(file), 1, stream) == 1 && size <= m_blockSize &&
	       (size == 0 || std::fwrite(m_textureData, 1, size, stream) == size);
}

void CZORTexture::toASTC(std::ostream& stream) const
{
	stream.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
	const ASTCHeader file = makeHeader(*this);
	stream.write(reinterpret_cast<const char*>(&file), sizeof(file));
	const unsigned int size = getDataSize(0, false, false);
	if (size > m_blockSize)
	{
		stream.setstate(std::ios_base::failbit);
		return;
	}
	stream.write(reinterpret_cast<const char*>(m_textureData), size);
}
} // namespace zortexture
