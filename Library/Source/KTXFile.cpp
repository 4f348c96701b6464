#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <istream>
#include <memory>
#include <ostream>
#include <string>

#include "ContainerFiles.h"
#include "FormatMaps.h"
#include "ImageWalk.h"
#include "StreamFile.h"
#include "ZORTexture.h"

namespace zortexture
{
namespace
{
constexpr unsigned char kKTXIdentifier[12] = {0xAB, 'K', 'T', 'X', ' ', '1', '1', 0xBB, '\r', '\n', 0x1A, '\n'};
constexpr unsigned int kKTXEndianness = 0x04030201u;
constexpr char kstrKTXOrientationKey[] = "KTXorientation";
constexpr unsigned int kKeySize = sizeof(kstrKTXOrientationKey); // with its terminator

/// The header of a KTX 1.1 file.
struct KTXHeader
{
	unsigned char identifier[12];
	unsigned int endianness;
	unsigned int glType;
	unsigned int glTypeSize;
	unsigned int glFormat;
	unsigned int glInternalFormat;
	unsigned int glBaseInternalFormat;
	unsigned int pixelWidth;
	unsigned int pixelHeight;
	unsigned int pixelDepth;
	unsigned int numberOfArrayElements;
	unsigned int numberOfFaces;
	unsigned int numberOfMipmapLevels;
	unsigned int bytesOfKeyValueData;
};
static_assert(sizeof(KTXHeader) == 64, "the header must have the layout of the file");

/// Bytes up to the next multiple of four.
unsigned int paddingTo4(unsigned int size)
{
	return (0u - size) & 3u;
}

/// Rows of these formats are padded to four bytes in a file.
bool hasRows(PixelType pixelType)
{
	return !pixelType.isCompressed() || pixelType.id == ePF_R9G9B9E5;
}

/// The orientation that a text such as "S=r,T=d,R=i" tells: letters count, not their places.
unsigned int orientationFromText(const std::string& text)
{
	const auto isOnce = [&](char letter)
	{
		return std::count(text.begin(), text.end(), letter) == 1;
	};
	return (isOnce('d') ? 0u : static_cast<unsigned int>(eOrient_Up)) | (isOnce('l') ? static_cast<unsigned int>(eOrient_Left) : 0u) |
	       (isOnce('o') ? static_cast<unsigned int>(eOrient_Out) : 0u);
}

std::string orientationText(const CZORTextureHeader& header)
{
	std::string text = "S=";
	text += header.getOrientation(eAxis_X) == eOrient_Left ? 'l' : 'r';
	text += ",T=";
	text += header.getOrientation(eAxis_Y) == eOrient_Up ? 'u' : 'd';
	text += ",R=";
	text += header.getOrientation(eAxis_Z) == eOrient_Out ? 'o' : 'i';
	return text;
}

/// Reads the pairs up to their declared end. The header gets an orientation from any pair, also from one of another key.
/// False when memory runs out.
bool readKeyValueData(std::istream& stream, unsigned int bytesOfKeyValueData, CZORTextureHeader& header)
{
	const std::streamoff end = static_cast<std::streamoff>(sizeof(KTXHeader)) + bytesOfKeyValueData;
	unsigned int orientation = 0;
	do
	{
		unsigned int size = 0;
		stream.read(reinterpret_cast<char*>(&size), sizeof(size));
		std::string pair;
		if (!readGrowing(stream, size, pair))
		{
			return false;
		}
		if (pair.size() > kKeySize - 1 && std::memcmp(pair.data(), kstrKTXOrientationKey, kKeySize) == 0)
		{
			const char* text = pair.data() + kKeySize;
			orientation |= orientationFromText(std::string(text, strnlen(text, pair.size() - kKeySize)));
		}
		header.setOrientation(static_cast<EZORTOrientation>(orientation));
		stream.seekg(paddingTo4(size), std::ios_base::cur);
	} while (std::streamoff(stream.tellg()) < end);
	return true;
}

void writeZeroes(std::ostream& stream, unsigned int count)
{
	constexpr char zeroes[4] = {};
	stream.write(zeroes, count);
}
} // namespace

bool CZORTexture::privateLoadKTXFile(std::FILE* stream)
{
	return loadThroughMemory(stream, [this](std::istream& memory) { return privateLoadKTXFile(memory); });
}

bool saveKTXFile(const CZORTexture& texture, const std::string& path)
{
	try
	{
		std::ofstream stream(path, std::ios_base::binary);
		texture.toKTX(stream); // a path that cannot be opened goes unnoticed
		return true;
	}
	catch (const std::ios_base::failure&)
	{
		return false;
	}
}

CZORTexture CZORTexture::fromKTX(std::istream& stream)
{
	CZORTexture texture;
	texture.privateLoadKTXFile(stream);
	return texture;
}

bool CZORTexture::privateLoadKTXFile(std::istream& stream)
{
	stream.exceptions(std::ios_base::failbit | std::ios_base::badbit | std::ios_base::eofbit);
	stream.seekg(0);
	KTXHeader file{};
	stream.read(reinterpret_cast<char*>(&file), sizeof(file));
	if (std::memcmp(file.identifier, kKTXIdentifier, sizeof(kKTXIdentifier)) != 0 || file.endianness != kKTXEndianness)
	{
		return false;
	}

	setWidth(file.pixelWidth);
	setHeight(file.pixelHeight == 0 ? 1 : file.pixelHeight);
	setDepth(file.pixelDepth == 0 ? 1 : file.pixelDepth);
	setNumMIPLevels(file.numberOfMipmapLevels);
	setNumFaces(file.numberOfFaces);
	setNumArrayMembers(file.numberOfArrayElements == 0 ? 1 : file.numberOfArrayElements);
	const bool isFormatKnown = setOGLFormat(file.glInternalFormat, file.glFormat, file.glType);

	if (file.bytesOfKeyValueData != 0 && !readKeyValueData(stream, file.bytesOfKeyValueData, *this))
	{
		return false;
	}
	if (getNumMIPLevels() > kMaxFileLevels)
	{
		return false;
	}

	allocateBlock();
	m_dataSize = m_blockSize;
	stream.seekg(static_cast<std::streamoff>(sizeof(KTXHeader)) + file.bytesOfKeyValueData);
	if (m_dataSize != 0)
	{
		const bool isCubeMap = getNumFaces() == 6 && file.numberOfArrayElements == 0;
		for (unsigned int level = 0; level < getNumMIPLevels(); ++level)
		{
			if (!readKTXLevel(stream, level, isCubeMap))
			{
				return false;
			}
		}
	}
	return isFormatKnown;
}

bool CZORTexture::readPaddedRows(std::istream& stream, unsigned int level, unsigned long long image, unsigned int rowPadding)
{
	const unsigned int bytesPerPixel = getBitsPerPixel() >> 3;
	const unsigned int rowBytes = getWidth(level) * bytesPerPixel;
	const unsigned long long rowStep = static_cast<unsigned long long>(getWidth(level)) * bytesPerPixel;
	const unsigned long long rows = static_cast<unsigned long long>(getHeight(level)) * getDepth(level);
	for (unsigned long long row = 0; row < rows; ++row)
	{
		const unsigned long long offset = image + row * rowStep;
		if (offset > m_blockSize || rowBytes > m_blockSize - offset)
		{
			return false;
		}
		unsigned char* const destination = m_textureData + offset;
		if (row < 2)
		{
			stream.read(reinterpret_cast<char*>(destination), rowBytes);
			// Paddings are sought from the start of the file: only files without any load whole.
			stream.seekg(rowPadding);
		}
		else
		{
			// From the second row on, every row is read from the same place.
			std::memcpy(destination, destination - rowStep, rowBytes);
		}
	}
	return true;
}

bool CZORTexture::readKTXLevel(std::istream& stream, unsigned int level, bool isCubeMap)
{
	const int mipLevel = static_cast<int>(level);
	unsigned int imageSize = 0;
	stream.read(reinterpret_cast<char*>(&imageSize), sizeof(imageSize));
	const unsigned int cubePadding = isCubeMap ? paddingTo4(imageSize) : 0;
	const unsigned int mipTotal = isCubeMap ? (imageSize + cubePadding) * 6 : imageSize;
	const unsigned int mipPadding = paddingTo4(mipTotal);

	const unsigned int bytesPerPixel = getBitsPerPixel() >> 3;
	const unsigned int rowBytes = getWidth(level) * bytesPerPixel;
	// Writers that do not pad rows are known by their image size.
	const bool isUnpadded = imageSize == getDataSize(mipLevel, !isCubeMap, !isCubeMap);
	const unsigned int rowPadding = hasRows(getPixelType()) && !isUnpadded ? paddingTo4(rowBytes) : 0;

	const unsigned int faceSize = getDataSize(mipLevel, false, false);
	unsigned long long levelOffset = 0;
	for (unsigned int above = 0; above < level; ++above)
	{
		levelOffset += getDataSize(static_cast<int>(above), true, true);
	}
	// Images without bytes move nothing, however many the file claims: one of them stands for all.
	const bool isEmpty = faceSize == 0 && rowPadding == 0;
	const unsigned int members = isEmpty ? std::min(1u, getNumArrayMembers()) : getNumArrayMembers();
	const unsigned int faces = isEmpty ? std::min(1u, getNumFaces()) : getNumFaces();
	// With a padding, every image from the second on is read from the same place.
	const bool repeats = rowPadding != 0 || cubePadding != 0;
	const unsigned char* previous = nullptr;
	unsigned long long numRead = 0;
	for (unsigned int member = 0; member < members; ++member)
	{
		for (unsigned int face = 0; face < faces; ++face)
		{
			const unsigned long long image = levelOffset + static_cast<unsigned long long>(member) * getDataSize(mipLevel, false, true) +
			                                 static_cast<unsigned long long>(face) * faceSize;
			if (rowPadding == 0 || numRead >= 2)
			{
				if (image > m_blockSize || faceSize > m_blockSize - image)
				{
					return false;
				}
			}
			unsigned char* const destination = m_textureData + image;
			if (repeats && numRead >= 2)
			{
				std::memmove(destination, previous, faceSize);
			}
			else if (rowPadding == 0)
			{
				stream.read(reinterpret_cast<char*>(destination), faceSize);
			}
			else if (!readPaddedRows(stream, level, image, rowPadding))
			{
				return false;
			}
			if (cubePadding != 0)
			{
				stream.seekg(cubePadding);
			}
			previous = destination;
			++numRead;
		}
	}
	if (mipPadding != 0)
	{
		stream.seekg(mipPadding);
	}
	return true;
}

void CZORTexture::toKTX(std::ostream& stream) const
{
	KTXHeader file{};
	std::memcpy(file.identifier, kKTXIdentifier, sizeof(kKTXIdentifier));
	file.endianness = kKTXEndianness;
	getOpenGLFormat(getPixelType().id, getChannelType(), getColourSpace(), file.glInternalFormat, file.glBaseInternalFormat, file.glFormat,
	                file.glType, file.glTypeSize);
	const ZORTextureHeaderV3 fields = getFileHeader();
	const auto zeroForOne = [](unsigned int value)
	{
		return value == 1 ? 0 : value;
	};
	file.pixelWidth = fields.width;
	file.pixelHeight = zeroForOne(fields.height);
	file.pixelDepth = zeroForOne(fields.depth);
	file.numberOfArrayElements = zeroForOne(fields.numSurfaces);
	file.numberOfFaces = fields.numFaces;
	file.numberOfMipmapLevels = fields.numMipMaps;

	const std::string text = orientationText(*this);
	const auto textSize = static_cast<unsigned int>(text.size());
	const unsigned int keyAndValueByteSize = kKeySize + textSize + 1;
	const unsigned int textPadding = (4 - textSize % 4) % 4;
	file.bytesOfKeyValueData = textSize + textPadding + 20;

	stream.write(reinterpret_cast<const char*>(&file), sizeof(file));
	stream.write(reinterpret_cast<const char*>(&keyAndValueByteSize), sizeof(keyAndValueByteSize));
	stream.write(kstrKTXOrientationKey, kKeySize);
	stream.write(text.c_str(), textSize + 1);
	writeZeroes(stream, textPadding);

	// Without surfaces or faces there are still the sizes of no images.
	const bool hasImages = fields.numSurfaces != 0 && fields.numFaces != 0;
	if (m_textureData == nullptr || fields.numMipMaps > kMaxFileLevels || (hasImages && !isDataComplete()))
	{
		return;
	}
	const bool isCubeMap = fields.numFaces == 6 && fields.numSurfaces == 1;
	for (unsigned int level = 0; level < fields.numMipMaps; ++level)
	{
		writeKTXLevel(stream, level, isCubeMap);
	}
}

void CZORTexture::writeKTXLevel(std::ostream& stream, unsigned int level, bool isCubeMap) const
{
	const bool isPacked = !hasRows(getPixelType());
	const unsigned int rowBytes = getWidth(level) * (getBitsPerPixel() >> 3);
	const unsigned int rowPadding = isPacked ? 0 : paddingTo4(rowBytes);
	const unsigned int rows = getHeight(level) * getDepth(level);
	const unsigned int faceSize = isPacked ? getDataSize(static_cast<int>(level), false, false) : rows * (rowBytes + rowPadding);
	const unsigned int cubePadding = isCubeMap ? paddingTo4(faceSize) : 0;
	const unsigned int mipTotal = getNumFaces() * (faceSize + cubePadding) * getNumArrayMembers();
	const unsigned int imageSize = isCubeMap ? faceSize : mipTotal;

	stream.write(reinterpret_cast<const char*>(&imageSize), sizeof(imageSize));
	if (faceSize == 0 || getNumFaces() == 0)
	{
		return; // images without bytes or members without images, however many there are
	}
	for (unsigned int member = 0; member < getNumArrayMembers(); ++member)
	{
		for (unsigned int face = 0; face < getNumFaces(); ++face)
		{
			const char* image = static_cast<const char*>(getDataPtr(level, member, face));
			if (isPacked)
			{
				stream.write(image, faceSize);
			}
			else
			{
				for (unsigned int row = 0; row < rows; ++row)
				{
					stream.write(image + static_cast<std::size_t>(row) * rowBytes, rowBytes);
					writeZeroes(stream, rowPadding);
				}
			}
			writeZeroes(stream, cubePadding);
		}
	}
	writeZeroes(stream, paddingTo4(mipTotal));
}
} // namespace zortexture
