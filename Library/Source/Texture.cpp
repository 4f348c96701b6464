#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "ContainerFiles.h"
#include "StringUtils.h"
#include "TextureSize.h"
#include "ZORTexture.h"

namespace zortexture
{
namespace
{
/// What follows the last dot of the path, in lower case; empty without a dot and when nothing follows it. A dot in a
/// folder's name counts.
std::string lowerCaseExtension(const std::string& path)
{
	const std::size_t dot = path.rfind('.');
	if (dot == std::string::npos)
	{
		return {};
	}
	std::string extension = path.substr(dot + 1);
	std::transform(extension.begin(), extension.end(), extension.begin(),
	               [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
	return extension;
}

/// A block of `size` bytes with the content of another one, as far as that goes; null for none.
std::unique_ptr<unsigned char[]> copyOfBlock(const unsigned char* block, unsigned long long blockSize, unsigned long long size)
{
	if (block == nullptr)
	{
		return nullptr;
	}
	std::unique_ptr<unsigned char[]> copy(new unsigned char[size]);
	const unsigned long long common = std::min(blockSize, size);
	std::memcpy(copy.get(), block, common);
	std::memset(copy.get() + common, 0, size - common);
	return copy;
}
} // namespace

CZORTexture::CZORTexture() : m_dataSize(getDataSize(-1, true, true))
{
}

CZORTexture::CZORTexture(const CZORTextureHeader& header, const void* data)
    : CZORTextureHeader(header), m_dataSize(getDataSize(-1, true, true))
{
	if (data == nullptr)
	{
		allocateBlock();
		return;
	}
	m_textureData = copyOfBlock(static_cast<const unsigned char*>(data), m_dataSize, m_dataSize).release();
	m_blockSize = m_dataSize;
}

CZORTexture::CZORTexture(const CZORTexture& other)
    : CZORTextureHeader(other), m_dataSize(other.m_dataSize),
      m_textureData(copyOfBlock(other.m_textureData, other.m_blockSize, other.m_dataSize).release()),
      m_blockSize(m_textureData == nullptr ? 0 : other.m_dataSize)
{
}

CZORTexture::CZORTexture(const char* filePath) : CZORTexture()
{
	if (filePath == nullptr)
	{
		return;
	}
	const std::string extension = lowerCaseExtension(filePath);
	const FilePointer file(std::fopen(filePath, "rb"));
	if (extension == "ktx")
	{
		privateLoadKTXFile(file.get());
	}
	else if (extension == "dds")
	{
		privateLoadDDSFile(file.get());
	}
	else if (extension == "astc")
	{
		privateLoadASTCFile(file.get());
	}
	else
	{
		privateLoadZORFile(file.get());
	}
	m_dataSize = getDataSize(-1, true, true);
}

CZORTexture& CZORTexture::operator=(const CZORTexture& other)
{
	if (this == &other)
	{
		return *this;
	}
	std::unique_ptr<unsigned char[]> block = copyOfBlock(other.m_textureData, other.m_blockSize, other.m_dataSize);
	CZORTextureHeader::operator=(other);
	delete[] m_textureData;
	m_textureData = block.release();
	m_dataSize = other.m_dataSize;
	m_blockSize = m_textureData == nullptr ? 0 : other.m_dataSize;
	return *this;
}

// NOLINTBEGIN(performance-noexcept-move-constructor): metadata has no other way than to be copied
CZORTexture::CZORTexture(CZORTexture&& other)
{
	*this = std::move(other);
}

CZORTexture& CZORTexture::operator=(CZORTexture&& other)
{
	if (this == &other)
	{
		return *this;
	}
	if (other.m_dataSize != other.m_blockSize)
	{
		return *this = std::as_const(other); // a copy of it has a block of another size
	}
	CZORTextureHeader::operator=(other);
	delete[] m_textureData;
	m_textureData = std::exchange(other.m_textureData, nullptr);
	m_dataSize = other.m_dataSize;
	m_blockSize = std::exchange(other.m_blockSize, 0);
	return *this;
}
// NOLINTEND(performance-noexcept-move-constructor)

void CZORTexture::allocateBlock()
{
	const unsigned long long size = getDataSize(-1, true, true);
	unsigned char* const block = new unsigned char[size]();
	delete[] m_textureData;
	m_textureData = block;
	m_blockSize = size;
}

CZORTexture::~CZORTexture()
{
	delete[] m_textureData;
}

const CZORTextureHeader& CZORTexture::getHeader() const
{
	return *this;
}

void* CZORTexture::getDataPtr(unsigned int mipLevel, unsigned int arrayMember, unsigned int face) const
{
	constexpr unsigned int kAllLevels = 0xFFFFFFFFu;
	if (mipLevel == kAllLevels || mipLevel >= m_header.numMipMaps || arrayMember >= m_header.numSurfaces || face >= m_header.numFaces)
	{
		return nullptr;
	}
	const int level = static_cast<int>(mipLevel);
	const unsigned int offset =
	    levelOffset(m_header, mipLevel) + arrayMember * getDataSize(level, false, true) + face * getDataSize(level, false, false);
	// On integers, since the block can be null and a wrapped offset can lie outside it.
	return reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(m_textureData) + offset); // NOLINT(performance-no-int-to-ptr)
}

bool CZORTexture::isDataComplete() const
{
	return m_textureData != nullptr && isDataSizeExact(m_header) && getDataSize(-1, true, true) <= m_blockSize;
}

void CZORTexture::addPaddingMetaData(unsigned int alignment)
{
	if (alignment < 2)
	{
		return;
	}
	// The file's header and the head of the block to be added stand ahead of the filler.
	const unsigned int unpadded = static_cast<unsigned int>(sizeof(ZORTextureHeaderV3)) + kBlockHeadSize + getMetaDataSize();
	const unsigned int excess = unpadded % alignment;
	MetaDataBlock block;
	block.fourCC = kZORTextureMagic;
	block.key = kMetaKeyPadding;
	block.dataSize = excess == 0 ? 0 : alignment - excess;
	block.data = new unsigned char[block.dataSize]();
	addMetaData(block);
}

bool CZORTexture::saveFile(const std::string& filePath) const
{
	const std::string extension = lowerCaseExtension(filePath);
	if (extension == "ktx")
	{
		return saveKTXFile(*this, filePath);
	}
	if (extension == "dds")
	{
		return writeFileOrRemove(filePath, [this](std::FILE* file) { return privateSaveDDSFile(file); });
	}
	if (extension == "h")
	{
		const std::string fileName = StringUtils::getFileName(filePath);
		const std::string arrayName = fileName.substr(0, fileName.find('.'));
		return writeFileOrRemove(filePath, [&](std::FILE* file) { return privateSaveCHeaderFile(file, arrayName); });
	}
	return writeFileOrRemove(extension == "zor" ? filePath : filePath + ".zor",
	                         [this](std::FILE* file) { return privateSaveZORFile(file); });
}
} // namespace zortexture
