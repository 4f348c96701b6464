/// @file ZORTexture.h
/// The texture object: a header and one block of pixel data, loaded from and saved to files.
#ifndef ZORTEXTURE_H
#define ZORTEXTURE_H

#include <cstdio>
#include <iosfwd>
#include <string>

#include "ZORTextureHeader.h"

namespace zortexture
{
/// A texture. All pixel data lies in one block in the nesting MIP level (from the top one down), array member, face,
/// depth slice, row, pixel (or the block order of a compressed format), without padding. The plain setters of the
/// header can break the agreement of header and block; the library's functions then refuse the texture. Used by one
/// thread at a time.
class ZORT_API CZORTexture : public CZORTextureHeader
{
public:
	/// The default header and no data.
	CZORTexture();

	/// Copies the header and as many bytes of `data` as the header describes; zeroes with a null `data`.
	explicit CZORTexture(const CZORTextureHeader& header, const void* data = nullptr);

	CZORTexture(const CZORTexture& other);
	/// Like a copy, but takes the other texture's block over, which leaves that one without data. A block longer than its texture is
	/// copied.
	CZORTexture(CZORTexture&& other); // NOLINT(performance-noexcept-move-constructor): the header is copied

	/// Loads a file; the extension alone picks the format: ktx, dds, astc (in any case), and native for all others.
	/// Nothing is reported: test getDataPtr(0, 0, 0) against null. A file cut off in its pixels leaves zeroes at the end.
	explicit CZORTexture(const char* filePath);

	/// Loads a native file's image in memory, version 3 or legacy. The image must be whole and valid, since its length
	/// is unknown: never pass data from an untrusted source. Null, or an unknown first word, gives the default texture.
	explicit CZORTexture(const void* texture);

	CZORTexture& operator=(const CZORTexture& other);
	/// Like a copy, but takes the other texture's block over, which leaves that one without data. A block longer than its texture is
	/// copied.
	CZORTexture& operator=(CZORTexture&& other); // NOLINT(performance-noexcept-move-constructor)
	~CZORTexture();

	/// This texture's description.
	const CZORTextureHeader& getHeader() const;

	/// The first byte of one face of one array member of one level; null for a position that the texture does not
	/// have. A texture without data gives null for the position 0, 0, 0 (and no usable address for others).
	void* getDataPtr(unsigned int mipLevel = 0, unsigned int arrayMember = 0, unsigned int face = 0) const;

	/// Whether the block holds every byte that the header describes, counted without wrap: true for a texture that can
	/// be read and written at all of its positions. False without data, for a header whose sizes overflow 32 bits,
	/// and where setters have made header and block disagree.
	bool isDataComplete() const;

	/// Adds a block of filler metadata so that the pixels of a native file start at a multiple of `alignment` bytes.
	/// An alignment below 2 adds nothing.
	void addPaddingMetaData(unsigned int alignment);

	/// Saves to a file; the extension picks the format: ktx, dds, h (a C header), and native for all others, which
	/// appends ".zor" unless it is there. False, and no file left, on failure (but for ktx, which reports true for a
	/// path that cannot be opened).
	bool saveFile(const std::string& filePath) const;
	/// Saves an ASTC file. False on failure.
	bool saveASTCFile(const std::string& filePath) const;
	/// Saves a version-2 native file with the format numbers of `api`. False, and no file left, on failure.
	bool saveFileLegacyZOR(const std::string& filePath, ELegacyApi api) const;

	static CZORTexture fromKTX(std::istream& stream);
	void toKTX(std::ostream& stream) const;
	static CZORTexture fromASTC(std::istream& stream);
	void toASTC(std::ostream& stream) const;

private:
	bool privateLoadZORFile(std::FILE* stream);
	bool privateLoadLegacyZORFile(std::FILE* stream);
	bool privateLoadLegacyZORImage(const unsigned char* image);
	bool privateLoadKTXFile(std::FILE* stream);
	bool privateLoadKTXFile(std::istream& stream);
	bool privateLoadDDSFile(std::FILE* stream);
	bool privateLoadASTCFile(std::FILE* stream);
	bool privateLoadASTCFile(std::istream& stream);
	bool privateSaveZORFile(std::FILE* stream) const;
	bool privateSaveDDSFile(std::FILE* stream) const;
	bool privateSaveASTCFile(std::FILE* stream) const;
	bool privateSaveCHeaderFile(std::FILE* stream, const std::string& name) const;
	bool privateSaveLegacyZORFile(std::FILE* stream, ELegacyApi api) const;

	bool readKTXLevel(std::istream& stream, unsigned int level, bool isCubeMap);
	bool readPaddedRows(std::istream& stream, unsigned int level, unsigned long long image, unsigned int rowPadding);
	void writeKTXLevel(std::ostream& stream, unsigned int level, bool isCubeMap) const;

	/// Replaces the block by a zeroed one of the size that the header describes.
	void allocateBlock();

	unsigned long long m_dataSize = 0;      ///< bytes that a copy of this texture takes over
	unsigned char* m_textureData = nullptr; ///< owned, from array new
	unsigned long long m_blockSize = 0;     ///< bytes in the block, which m_dataSize does not count for a texture from fromASTC
};
} // namespace zortexture

#endif // ZORTEXTURE_H
