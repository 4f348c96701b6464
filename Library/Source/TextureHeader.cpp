#include <algorithm>
#include <cstring>
#include <memory>

#include "ContainerFiles.h"
#include "TextureSize.h"
#include "ZORTextureHeader.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kBumpMapOrderLength = 4;
constexpr unsigned int kMaxCubeFaces = 6;

constexpr ZORTextureHeaderV3 kDefaultHeader = {
    kZORTextureMagic, 0, ePF_NumCompressedPFs, eCS_lRGB, eVT_UnsignedByteNorm, 1, 1, 1, 1, 1, 1, 0};

unsigned int dimensionOfLevel(unsigned int dimension, unsigned int numMipMaps, unsigned int mipLevel)
{
	return mipLevel < numMipMaps ? std::max(dimension >> (mipLevel % kLevelPeriod), 1u) : 0u;
}

/// Copies `count` bytes from `offset` of a block. Blocks come from files and can be of any size: bytes that one does
/// not have, or that a missing block would have, read as 0.
void readBlock(const MetaDataBlock* block, unsigned int offset, void* destination, unsigned int count)
{
	std::memset(destination, 0, count);
	if (block != nullptr && block->data != nullptr && offset < block->dataSize)
	{
		std::memcpy(destination, block->data + offset, std::min(count, block->dataSize - offset));
	}
}

/// Up to N letters from `offset` of a block, ending at the first zero.
template<unsigned int N>
std::string readLetters(const MetaDataBlock* block, unsigned int offset)
{
	char letters[N + 1] = {};
	readBlock(block, offset, letters, N);
	return letters;
}

const MetaDataBlock* findBlock(const MetaDataMap& table, unsigned int fourCC, unsigned int key)
{
	const unsigned int outer = table.Find(fourCC);
	if (outer >= table.size)
	{
		return nullptr;
	}
	const CZORTMap<unsigned int, MetaDataBlock>& blocks = table.values[outer];
	const unsigned int inner = blocks.Find(key);
	return inner < blocks.size ? &blocks.values[inner] : nullptr;
}
} // namespace

CZORTextureHeader::CZORTextureHeader() : m_header(kDefaultHeader)
{
}

CZORTextureHeader::CZORTextureHeader(ZORTextureHeaderV3 fileHeader, unsigned int metaDataCount, MetaDataBlock* metaData)
    : m_header(fileHeader)
{
	if (metaData == nullptr)
	{
		return;
	}
	for (unsigned int i = 0; i < metaDataCount; ++i)
	{
		addMetaData(metaData[i]);
	}
}

CZORTextureHeader::CZORTextureHeader(unsigned long long pixelFormat, unsigned int height, unsigned int width, unsigned int depth,
                                     unsigned int numMipMaps, unsigned int numSurfaces, unsigned int numFaces, EZORTColourSpace colourSpace,
                                     EZORTVariableType channelType, bool preMultiplied)
    : m_header(kDefaultHeader)
{
	m_header.flags = preMultiplied ? kHeaderFlagPreMultiplied : 0u;
	m_header.pixelFormat = pixelFormat;
	m_header.colourSpace = colourSpace;
	m_header.channelType = channelType;
	m_header.height = height;
	m_header.width = width;
	m_header.depth = depth;
	m_header.numSurfaces = numSurfaces;
	m_header.numFaces = numFaces;
	m_header.numMipMaps = numMipMaps;
}

CZORTextureHeader::CZORTextureHeader(const CZORTextureHeader& other) = default;

CZORTextureHeader& CZORTextureHeader::operator=(const CZORTextureHeader& other)
{
	if (this != &other)
	{
		m_metaData = other.m_metaData;
		m_header = other.m_header;
	}
	return *this;
}

CZORTextureHeader::~CZORTextureHeader() = default;

ZORTextureHeaderV3 CZORTextureHeader::getFileHeader() const
{
	return m_header;
}

PixelType CZORTextureHeader::getPixelType() const
{
	return PixelType(m_header.pixelFormat);
}

unsigned int CZORTextureHeader::getBitsPerPixel() const
{
	return ZORTGetBitsPerPixel(m_header.pixelFormat);
}

EZORTColourSpace CZORTextureHeader::getColourSpace() const
{
	return static_cast<EZORTColourSpace>(m_header.colourSpace);
}

EZORTVariableType CZORTextureHeader::getChannelType() const
{
	return static_cast<EZORTVariableType>(m_header.channelType);
}

unsigned int CZORTextureHeader::getWidth(unsigned int mipLevel) const
{
	return dimensionOfLevel(m_header.width, m_header.numMipMaps, mipLevel);
}

unsigned int CZORTextureHeader::getHeight(unsigned int mipLevel) const
{
	return dimensionOfLevel(m_header.height, m_header.numMipMaps, mipLevel);
}

unsigned int CZORTextureHeader::getDepth(unsigned int mipLevel) const
{
	return dimensionOfLevel(m_header.depth, m_header.numMipMaps, mipLevel);
}

unsigned int CZORTextureHeader::getNumArrayMembers() const
{
	return m_header.numSurfaces;
}

unsigned int CZORTextureHeader::getNumMIPLevels() const
{
	return m_header.numMipMaps;
}

unsigned int CZORTextureHeader::getNumFaces() const
{
	return m_header.numFaces;
}

unsigned int CZORTextureHeader::getMetaDataSize() const
{
	return m_header.metaDataSize;
}

unsigned int CZORTextureHeader::getDataSize(int mipLevel, bool allSurfaces, bool allFaces) const
{
	return ZORTGetTextureDataSize(m_header, mipLevel, allSurfaces, allFaces);
}

unsigned int CZORTextureHeader::getTextureSize(int mipLevel, bool allSurfaces, bool allFaces) const
{
	const unsigned int bitsPerPixel = getBitsPerPixel();
	if (bitsPerPixel == 0)
	{
		return 0;
	}
	return static_cast<unsigned int>(getDataSize(mipLevel, allSurfaces, allFaces) * 8ull / bitsPerPixel);
}

bool CZORTextureHeader::isFileCompressed() const
{
	return (m_header.flags & kHeaderFlagFileCompressed) != 0;
}

bool CZORTextureHeader::isPreMultiplied() const
{
	return (m_header.flags & kHeaderFlagPreMultiplied) != 0;
}

EZORTOrientation CZORTextureHeader::getOrientation(EZORTAxis axis) const
{
	unsigned char bits = 0;
	readBlock(findOwnMetaData(kMetaKeyOrientation), axis, &bits, 1);
	return static_cast<EZORTOrientation>(bits);
}

bool CZORTextureHeader::isBumpMap() const
{
	return findOwnMetaData(kMetaKeyBumpMap) != nullptr;
}

float CZORTextureHeader::getBumpMapScale() const
{
	float scale = 0.0f;
	readBlock(findOwnMetaData(kMetaKeyBumpMap), 0, &scale, sizeof(scale));
	return scale;
}

std::string CZORTextureHeader::getBumpMapOrder() const
{
	return readLetters<kBumpMapOrderLength>(findOwnMetaData(kMetaKeyBumpMap), sizeof(float));
}

unsigned int CZORTextureHeader::getNumTextureAtlasMembers() const
{
	const MetaDataBlock* const block = findOwnMetaData(kMetaKeyAtlas);
	const bool isLarger = std::max({m_header.width, m_header.height, m_header.depth}) > 1;
	if (block == nullptr || m_header.numMipMaps == 0 || !isLarger)
	{
		return 0;
	}
	return block->dataSize / sizeof(float);
}

const float* CZORTextureHeader::getTextureAtlasData() const
{
	const MetaDataBlock* const block = findOwnMetaData(kMetaKeyAtlas);
	// Blocks come from array new, which aligns them for every fundamental type.
	return block == nullptr ? nullptr : static_cast<const float*>(static_cast<const void*>(block->data));
}

std::string CZORTextureHeader::getCubeMapOrder() const
{
	return m_header.numFaces < 2 ? std::string() : readLetters<kMaxCubeFaces>(findOwnMetaData(kMetaKeyCubeOrder), 0);
}

void CZORTextureHeader::getBorder(unsigned int& x, unsigned int& y, unsigned int& z) const
{
	unsigned int border[3] = {};
	readBlock(findOwnMetaData(kMetaKeyBorder), 0, border, sizeof(border));
	x = border[0];
	y = border[1];
	z = border[2];
}

MetaDataBlock CZORTextureHeader::getMetaData(unsigned int fourCC, unsigned int key) const
{
	const MetaDataBlock* const block = findBlock(m_metaData, fourCC, key);
	return block == nullptr ? MetaDataBlock() : *block;
}

bool CZORTextureHeader::hasMetaData(unsigned int /*fourCC*/, unsigned int key) const
{
	return findOwnMetaData(key) != nullptr;
}

const MetaDataMap* CZORTextureHeader::getMetaDataMap() const
{
	return &m_metaData;
}

void CZORTextureHeader::setPixelFormat(PixelType pixelType)
{
	m_header.pixelFormat = pixelType.id;
}

void CZORTextureHeader::setColourSpace(EZORTColourSpace colourSpace)
{
	m_header.colourSpace = colourSpace;
}

void CZORTextureHeader::setChannelType(EZORTVariableType channelType)
{
	m_header.channelType = channelType;
}

void CZORTextureHeader::setWidth(unsigned int width)
{
	m_header.width = width;
}

void CZORTextureHeader::setHeight(unsigned int height)
{
	m_header.height = height;
}

void CZORTextureHeader::setDepth(unsigned int depth)
{
	m_header.depth = depth;
}

void CZORTextureHeader::setNumArrayMembers(unsigned int numMembers)
{
	m_header.numSurfaces = numMembers;
}

void CZORTextureHeader::setNumMIPLevels(unsigned int numLevels)
{
	m_header.numMipMaps = numLevels;
}

void CZORTextureHeader::setNumFaces(unsigned int numFaces)
{
	m_header.numFaces = numFaces;
}

void CZORTextureHeader::setIsFileCompressed(bool isFileCompressed)
{
	m_header.flags = isFileCompressed ? m_header.flags | kHeaderFlagFileCompressed : 0u;
}

void CZORTextureHeader::setIsPreMultiplied(bool isPreMultiplied)
{
	m_header.flags = isPreMultiplied ? m_header.flags | kHeaderFlagPreMultiplied : 0u;
}

void CZORTextureHeader::setOrientation(EZORTOrientation orientation)
{
	unsigned char* const data = renewOwnMetaData(kMetaKeyOrientation, 3);
	data[eAxis_X] = static_cast<unsigned char>(orientation & eOrient_Left);
	data[eAxis_Y] = static_cast<unsigned char>(orientation & eOrient_Up);
	data[eAxis_Z] = static_cast<unsigned char>(orientation & eOrient_Out);
}

void CZORTextureHeader::setBumpMap(float bumpScale, const std::string& bumpOrder)
{
	unsigned char* const data = renewOwnMetaData(kMetaKeyBumpMap, sizeof(bumpScale) + kBumpMapOrderLength);
	std::memcpy(data, &bumpScale, sizeof(bumpScale));
	std::copy_n(bumpOrder.data(), std::min<std::size_t>(bumpOrder.size(), kBumpMapOrderLength), data + sizeof(bumpScale));
}

void CZORTextureHeader::setTextureAtlas(const float* atlasData, unsigned int numAtlasMembers)
{
	const unsigned int dataSize = numAtlasMembers * static_cast<unsigned int>(sizeof(float));
	unsigned char* const data = renewOwnMetaData(kMetaKeyAtlas, dataSize);
	if (atlasData != nullptr)
	{
		std::memcpy(data, atlasData, dataSize);
	}
}

void CZORTextureHeader::setCubeMapOrder(const std::string& cubeMapOrder)
{
	const unsigned int length = static_cast<unsigned int>(std::min<std::size_t>(cubeMapOrder.size(), kMaxCubeFaces));
	std::copy_n(cubeMapOrder.data(), length, renewOwnMetaData(kMetaKeyCubeOrder, length));
}

void CZORTextureHeader::setBorder(unsigned int x, unsigned int y, unsigned int z)
{
	const unsigned int border[3] = {x, y, z};
	std::memcpy(renewOwnMetaData(kMetaKeyBorder, sizeof(border)), border, sizeof(border));
}

void CZORTextureHeader::addMetaData(const MetaDataBlock& metaData)
{
	// The argument may lie in the table itself, which inserting can move.
	MetaDataBlock copy(metaData);
	MetaDataBlock& slot = m_metaData[copy.fourCC][copy.key];
	slot.fourCC = copy.fourCC;
	slot.key = copy.key;
	slot.dataSize = copy.dataSize;
	std::swap(slot.data, copy.data);
	m_header.metaDataSize += kBlockHeadSize + slot.dataSize;
}

unsigned int CZORTextureHeader::removeMetaData(const unsigned int& fourCC, const unsigned int& key)
{
	// By value: the arguments may be the fields of the very block.
	const unsigned int outerKey = fourCC;
	const unsigned int innerKey = key;
	CZORTMap<unsigned int, MetaDataBlock>& blocks = m_metaData[outerKey];
	const unsigned int index = blocks.Find(innerKey);
	m_header.metaDataSize -= kBlockHeadSize + (index < blocks.size ? blocks.values[index].dataSize : 0u);
	return blocks.Remove(innerKey);
}

const MetaDataBlock* CZORTextureHeader::findOwnMetaData(unsigned int key) const
{
	return findBlock(m_metaData, kZORTextureMagic, key);
}

unsigned char* CZORTextureHeader::renewOwnMetaData(unsigned int key, unsigned int dataSize)
{
	std::unique_ptr<unsigned char[]> data(new unsigned char[dataSize]());
	MetaDataBlock& block = m_metaData[kZORTextureMagic][key];
	if (block.data != nullptr)
	{
		m_header.metaDataSize -= kBlockHeadSize + block.dataSize;
		delete[] block.data;
	}
	else
	{
		block.fourCC = kZORTextureMagic;
		block.key = key;
	}
	block.dataSize = dataSize;
	block.data = data.release();
	m_header.metaDataSize += kBlockHeadSize + dataSize;
	return block.data;
}
} // namespace zortexture
