// The header's view of the formats of graphics APIs. No API's formats are known, so that nothing is recognised.

#include "ZORTextureHeader.h"

namespace zortexture
{
bool CZORTextureHeader::getOGLFormat(unsigned int& /*internalFormat*/, unsigned int& /*format*/, unsigned int& /*type*/) const
{
	return false;
}

bool CZORTextureHeader::getOGLESFormat(unsigned int& /*internalFormat*/, unsigned int& /*format*/, unsigned int& /*type*/) const
{
	return false;
}

unsigned int CZORTextureHeader::getVulkanFormat() const
{
	return 0;
}

unsigned int CZORTextureHeader::getD3DFormat() const
{
	return 0;
}

unsigned int CZORTextureHeader::getDXGIFormat() const
{
	return 0;
}

bool CZORTextureHeader::setOGLFormat(const unsigned int& /*internalFormat*/, const unsigned int& /*format*/, const unsigned int& /*type*/)
{
	return false;
}

bool CZORTextureHeader::setOGLESFormat(const unsigned int& internalFormat, const unsigned int& format, const unsigned int& type)
{
	return setOGLFormat(internalFormat, format, type);
}

bool CZORTextureHeader::setD3DFormat(const unsigned int& /*format*/)
{
	// The flags are written for an unknown format too: all but the premultiplied bit are lost.
	setIsPreMultiplied(isPreMultiplied());
	return false;
}

bool CZORTextureHeader::setDXGIFormat(const unsigned int& /*format*/)
{
	return false;
}
} // namespace zortexture
