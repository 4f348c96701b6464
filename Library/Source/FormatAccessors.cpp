// The header's view of the formats of graphics APIs: thin calls into the format maps.

#include "FormatMaps.h"
#include "ZORTextureHeader.h"

namespace zortexture
{
bool CZORTextureHeader::getOGLFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const
{
	unsigned int baseInternalFormat = 0;
	unsigned int typeSize = 0;
	return getOpenGLFormat(m_header.pixelFormat, getChannelType(), getColourSpace(), internalFormat, baseInternalFormat, format, type,
	                       typeSize);
}

bool CZORTextureHeader::getOGLESFormat(unsigned int& internalFormat, unsigned int& format, unsigned int& type) const
{
	unsigned int sizedInternalFormat = 0;
	unsigned int typeSize = 0;
	return getOpenGLFormat(m_header.pixelFormat, getChannelType(), getColourSpace(), sizedInternalFormat, internalFormat, format, type,
	                       typeSize);
}

unsigned int CZORTextureHeader::getVulkanFormat() const
{
	unsigned int value = 0;
	zortexture::getVulkanFormat(m_header.pixelFormat, getChannelType(), getColourSpace(), value);
	return value;
}

unsigned int CZORTextureHeader::getD3DFormat() const
{
	unsigned int value = 0;
	getDirect3DFormat(m_header.pixelFormat, getChannelType(), getColourSpace(), value);
	return value;
}

unsigned int CZORTextureHeader::getDXGIFormat() const
{
	unsigned int value = 0;
	getDirectXGIFormat(m_header.pixelFormat, getChannelType(), getColourSpace(), value);
	return value;
}

bool CZORTextureHeader::setOGLFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type)
{
	unsigned long long pixelFormat = m_header.pixelFormat;
	EZORTVariableType channelType = getChannelType();
	EZORTColourSpace colourSpace = getColourSpace();
	const bool isKnown = getZorvexFormatOGL(pixelFormat, channelType, colourSpace, internalFormat, format, type);
	setFormat(pixelFormat, channelType, colourSpace);
	return isKnown;
}

bool CZORTextureHeader::setOGLESFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type)
{
	return setOGLFormat(internalFormat, format, type);
}

bool CZORTextureHeader::setD3DFormat(const unsigned int& format)
{
	unsigned long long pixelFormat = m_header.pixelFormat;
	EZORTVariableType channelType = getChannelType();
	EZORTColourSpace colourSpace = getColourSpace();
	bool preMultiplied = isPreMultiplied();
	const bool isKnown = getZorvexFormatD3D(pixelFormat, channelType, colourSpace, preMultiplied, format);
	setFormat(pixelFormat, channelType, colourSpace);
	// The flags are written for an unknown format too, by the bit that the header had.
	setIsPreMultiplied(preMultiplied);
	return isKnown;
}

bool CZORTextureHeader::setDXGIFormat(const unsigned int& format)
{
	unsigned long long pixelFormat = m_header.pixelFormat;
	EZORTVariableType channelType = getChannelType();
	EZORTColourSpace colourSpace = getColourSpace();
	const bool isKnown = getZorvexFormatDXGI(pixelFormat, channelType, colourSpace, format);
	setFormat(pixelFormat, channelType, colourSpace);
	return isKnown;
}

void CZORTextureHeader::setFormat(unsigned long long pixelFormat, EZORTVariableType channelType, EZORTColourSpace colourSpace)
{
	setPixelFormat(pixelFormat);
	setChannelType(channelType);
	setColourSpace(colourSpace);
}
} // namespace zortexture
