/// @file ZORTextureHeader.h
/// The description of a texture: the file header and the metadata table, apart from the pixels.
#ifndef ZORTEXTURE_HEADER_H
#define ZORTEXTURE_HEADER_H

#include <string>

#include "PixelType.h"
#include "ZORTMetaData.h"
#include "ZORTUtilities.h"

namespace zortexture
{
/// The shape of a texture. Any combination of fields may be set; nothing is validated. Sizes are 32-bit and wrap.
/// Used by one thread at a time.
class ZORT_API CZORTextureHeader
{
public:
	/// No pixel format, 1 x 1 x 1 pixels, one surface, face and level, no metadata.
	CZORTextureHeader();

	/// Takes over all 52 bytes, then adds each block. The blocks' sizes come on top of the header's `metaDataSize`,
	/// so pass 0 there together with blocks.
	CZORTextureHeader(ZORTextureHeaderV3 fileHeader, unsigned int metaDataCount = 0, MetaDataBlock* metaData = nullptr);

	/// Dimensions in pixels; height stands ahead of width.
	CZORTextureHeader(unsigned long long pixelFormat, unsigned int height, unsigned int width, unsigned int depth = 1,
	                  unsigned int numMipMaps = 1, unsigned int numSurfaces = 1, unsigned int numFaces = 1,
	                  EZORTColourSpace colourSpace = eCS_lRGB, EZORTVariableType channelType = eVT_UnsignedByteNorm,
	                  bool preMultiplied = false);

	CZORTextureHeader(const CZORTextureHeader& other);
	CZORTextureHeader& operator=(const CZORTextureHeader& other);
	~CZORTextureHeader();

	/// A copy of the 52 bytes.
	ZORTextureHeaderV3 getFileHeader() const;
	PixelType getPixelType() const;
	/// See ZORTGetBitsPerPixel.
	unsigned int getBitsPerPixel() const;
	EZORTColourSpace getColourSpace() const;
	EZORTVariableType getChannelType() const;

	/// Pixels at a MIP level, at least 1; 0 for a level that the texture does not have.
	unsigned int getWidth(unsigned int mipLevel = 0) const;
	unsigned int getHeight(unsigned int mipLevel = 0) const;
	unsigned int getDepth(unsigned int mipLevel = 0) const;

	unsigned int getNumArrayMembers() const;
	unsigned int getNumMIPLevels() const;
	unsigned int getNumFaces() const;
	/// Bytes that the metadata blocks take in a native file.
	unsigned int getMetaDataSize() const;

	/// Bytes of texture data; see ZORTGetTextureDataSize.
	unsigned int getDataSize(int mipLevel = -1, bool allSurfaces = true, bool allFaces = true) const;
	/// The same in pixels. Only for formats that have a number of bits per pixel; 0 for the others.
	unsigned int getTextureSize(int mipLevel = -1, bool allSurfaces = true, bool allFaces = true) const;

	bool isFileCompressed() const;
	bool isPreMultiplied() const;

	/// The OpenGL names of the format, the sized internal format among them; see getOpenGLFormat for what is written when
	/// there are none.
	bool getOGLFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const;
	/// The same with the base (unsized) internal format, as OpenGL ES wants it.
	bool getOGLESFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const;
	/// The format's number in the API; 0 when it has none.
	unsigned int getVulkanFormat() const;
	unsigned int getD3DFormat() const;
	unsigned int getDXGIFormat() const;

	/// The orientation bit of one axis, 0 when no orientation is stored.
	EZORTOrientation getOrientation(EZORTAxis axis) const;

	bool isBumpMap() const;
	/// 0.0 when the texture is no bump map.
	float getBumpMapScale() const;
	/// Up to four letters, such as "xyz"; empty when the texture is no bump map.
	std::string getBumpMapOrder() const;

	/// Floats in the texture atlas; 0 also for a 1 x 1 x 1 texture, however large its block is.
	unsigned int getNumTextureAtlasMembers() const;
	/// The atlas, owned by the header; null when there is none.
	const float* getTextureAtlasData() const;

	/// Up to six letters; empty when none is stored or the texture has one face.
	std::string getCubeMapOrder() const;

	/// Border in pixels on each axis; 0 where none is stored.
	void getBorder(unsigned int& x, unsigned int& y, unsigned int& z) const;

	/// A deep copy of a block; all zero when there is none.
	MetaDataBlock getMetaData(unsigned int fourCC, unsigned int key) const;
	/// Whether `key` exists under the library's own fourCC. The argument `fourCC` is not read.
	bool hasMetaData(unsigned int fourCC, unsigned int key) const;
	/// The whole table, owned by the header.
	const MetaDataMap* getMetaDataMap() const;

	void setPixelFormat(PixelType pixelType);
	void setColourSpace(EZORTColourSpace colourSpace);
	void setChannelType(EZORTVariableType channelType);
	void setWidth(unsigned int width);
	void setHeight(unsigned int height);
	void setDepth(unsigned int depth);
	void setNumArrayMembers(unsigned int numMembers);
	void setNumMIPLevels(unsigned int numLevels);
	void setNumFaces(unsigned int numFaces);

	/// Setting true sets the one flag; setting false clears all flags.
	void setIsFileCompressed(bool isFileCompressed);
	/// Setting true sets the one flag; setting false clears all flags.
	void setIsPreMultiplied(bool isPreMultiplied);

	/// Take pixel format, channel type and colour space from an API's format numbers. False, with the three unchanged,
	/// when the numbers are unknown.
	bool setOGLFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type);
	bool setOGLESFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type);
	/// Also sets or clears the flags by whether the format is premultiplied.
	bool setD3DFormat(const unsigned int& format);
	bool setDXGIFormat(const unsigned int& format);

	/// Stores a sum of three EZORTOrientation values, one for each axis.
	void setOrientation(EZORTOrientation orientation);
	/// Stores a scale and up to four letters of channel order.
	void setBumpMap(float bumpScale, const std::string& bumpOrder);
	/// Stores `numAtlasMembers` floats.
	void setTextureAtlas(const float* atlasData, unsigned int numAtlasMembers);
	/// Stores up to six letters, one a face.
	void setCubeMapOrder(const std::string& cubeMapOrder);
	/// Stores the border in pixels on each axis.
	void setBorder(unsigned int x, unsigned int y, unsigned int z);

	/// Adds or replaces a block. The metadata size grows by the block's size, also when a block is replaced.
	void addMetaData(const MetaDataBlock& metaData);
	/// Removes a block. Returns 1 when there was none (the metadata size drops by 12 all the same), else 0.
	unsigned int removeMetaData(const unsigned int& fourCC, const unsigned int& key);

private:
	friend class CZORTexture;

	void setFormat(unsigned long long pixelFormat, EZORTVariableType channelType, EZORTColourSpace colourSpace);

	/// The block of the library's own metadata under `key`; null when there is none.
	const MetaDataBlock* findOwnMetaData(unsigned int key) const;
	/// Replaces the library's own block under `key` by one of `dataSize` zeroed bytes, and returns these.
	unsigned char* renewOwnMetaData(unsigned int key, unsigned int dataSize);

	ZORTextureHeaderV3 m_header;
	MetaDataMap m_metaData;
};
} // namespace zortexture

#endif // ZORTEXTURE_HEADER_H
