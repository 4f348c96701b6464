// The containers that the library knows by name only. Each loader fails as on a file that cannot be read, and each
// writer as on one that cannot be written.

#include <istream>
#include <ostream>

#include "ContainerFiles.h"
#include "ZORTexture.h"

namespace zortexture
{
bool CZORTexture::privateLoadLegacyZORFile(std::FILE* /*stream*/)
{
	return false;
}

bool CZORTexture::privateLoadLegacyZORImage(const unsigned char* /*image*/)
{
	return false;
}

bool CZORTexture::privateLoadKTXFile(std::FILE* /*stream*/)
{
	return false;
}

bool CZORTexture::privateLoadKTXFile(std::istream& /*stream*/)
{
	return false;
}

bool CZORTexture::privateLoadDDSFile(std::FILE* /*stream*/)
{
	return false;
}

bool CZORTexture::privateLoadASTCFile(std::FILE* /*stream*/)
{
	return false;
}

bool CZORTexture::privateLoadASTCFile(std::istream& /*stream*/)
{
	return false;
}

bool CZORTexture::privateSaveDDSFile(std::FILE* /*stream*/) const
{
	return false;
}

bool CZORTexture::privateSaveASTCFile(std::FILE* /*stream*/) const
{
	return false;
}

bool CZORTexture::privateSaveCHeaderFile(std::FILE* /*stream*/, const std::string& /*name*/) const
{
	return false;
}

bool CZORTexture::privateSaveLegacyZORFile(std::FILE* /*stream*/, ELegacyApi /*api*/) const
{
	return false;
}

bool CZORTexture::saveASTCFile(const std::string& filePath) const
{
	return writeFileOrRemove(filePath, [this](std::FILE* file) { return privateSaveASTCFile(file); });
}

bool CZORTexture::saveFileLegacyZOR(const std::string& filePath, ELegacyApi api) const
{
	return writeFileOrRemove(filePath, [this, api](std::FILE* file) { return privateSaveLegacyZORFile(file, api); });
}

CZORTexture CZORTexture::fromKTX(std::istream& stream)
{
	CZORTexture texture;
	texture.privateLoadKTXFile(stream);
	return texture;
}

void CZORTexture::toKTX(std::ostream& stream) const
{
	stream.setstate(std::ios_base::failbit);
}

CZORTexture CZORTexture::fromASTC(std::istream& stream)
{
	CZORTexture texture;
	texture.privateLoadASTCFile(stream);
	return texture;
}

void CZORTexture::toASTC(std::ostream& stream) const
{
	stream.setstate(std::ios_base::failbit);
}

bool saveKTXFile(const CZORTexture& /*texture*/, const std::string& /*path*/)
{
	return false;
}
} // namespace zortexture
