// Images on their way to the external encoder and back. Nothing that it makes is taken for granted: what differs from the request in
// any way is dropped before it comes near the caller's buffer.

#include "ASTCCodec.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>

#include "Platform/TemporaryFile.h"
#include "TextureSize.h"
#include "Transcode.h"

namespace zortexture
{
namespace
{
constexpr const char* kQualityStrings[] = {"-veryfast", "-fast", "-medium", "-thorough", "-exhaustive"};
constexpr unsigned int kDefaultQuality = 2;

/// The head of an .astc file.
constexpr std::uintmax_t kASTCHeaderSize = 16;

CZORTextureHeader oneImage(PixelType format, unsigned int width, unsigned int height, unsigned int depth)
{
	return CZORTextureHeader(format.id, height, width, depth, 1, 1, 1, eCS_lRGB, eVT_UnsignedByteNorm);
}

/// Whether an image has pixels, and all of its bytes can be counted. (A dimension of 0 counts as 1 in a size.)
bool isUsable(const CZORTextureHeader& image)
{
	const ZORTextureHeaderV3 fields = image.getFileHeader();
	return fields.width != 0 && fields.height != 0 && fields.depth != 0 && isDataSizeExact(fields);
}

/// The format with blocks of these dimensions; ePF_NumCompressedPFs when there is none.
EZORTPixelFormat formatOfBlock(unsigned char width, unsigned char height, unsigned char depth)
{
	for (const auto& [format, block] : astcBlockSizes)
	{
		if (block[0] == width && block[1] == height && block[2] == depth)
		{
			return format;
		}
	}
	return ePF_NumCompressedPFs;
}

bool isSameShape(const CZORTextureHeader& one, const CZORTextureHeader& other)
{
	return one.getWidth() == other.getWidth() && one.getHeight() == other.getHeight() && one.getDepth() == other.getDepth() &&
	       one.getNumMIPLevels() == other.getNumMIPLevels() && one.getNumArrayMembers() == other.getNumArrayMembers() &&
	       one.getNumFaces() == other.getNumFaces();
}

/// As saveFile does, with a disk that runs full noticed.
bool saveKTX(const CZORTexture& texture, const char* path)
{
	std::ofstream stream(path, std::ios_base::binary);
	texture.toKTX(stream);
	stream.close();
	return stream.good();
}

/// Takes over the blocks of an .astc file that holds exactly the image asked for.
bool loadBlocks(const char* path, const CZORTextureHeader& wanted, void* destination)
{
	std::error_code error;
	const unsigned int size = wanted.getDataSize();
	if (std::filesystem::file_size(path, error) != kASTCHeaderSize + size || error)
	{
		return false;
	}
	const CZORTexture encoded(path);
	if (encoded.getPixelType().id != wanted.getPixelType().id || !isSameShape(encoded, wanted) || !encoded.isDataComplete())
	{
		return false;
	}
	std::memcpy(destination, encoded.getDataPtr(), size);
	return true;
}

/// Takes over the pixels of a KTX file that holds an image of the shape asked for. A compressed one is no result: it would have to be
/// decoded in turn, by the same program.
bool loadPixels(const char* path, const CZORTextureHeader& wanted, void* destination)
{
	std::ifstream stream(path, std::ios_base::binary);
	CZORTexture decoded = CZORTexture::fromKTX(stream); // which tells of a file that is cut short
	if (decoded.getPixelType().isCompressed() || !isSameShape(decoded, wanted) || !decoded.isDataComplete() ||
	    !Transcode(decoded, wanted.getPixelType(), wanted.getChannelType(), wanted.getColourSpace(), eQuality_2) ||
	    decoded.getDataSize() != wanted.getDataSize())
	{
		return false;
	}
	std::memcpy(destination, decoded.getDataPtr(), decoded.getDataSize());
	return true;
}

/// A file of a foreign program may claim any size: what is thrown on the way through it is one more sign that it is not the right one.
template<typename Load>
bool loadResult(Load load, const char* path, const CZORTextureHeader& wanted, void* destination)
{
	try
	{
		return load(path, wanted, destination);
	}
	catch (const std::ios_base::failure&)
	{
		return false;
	}
	catch (const std::bad_alloc&)
	{
		return false;
	}
}

bool succeeds(const char* const* arguments)
{
	int exitCode = 0;
	return executeASTCEnc(arguments, &exitCode) && exitCode == 0;
}
} // namespace

unsigned int ASTCCompress(const void* source, void* destination, unsigned int width, unsigned int height, unsigned int depth,
                          unsigned char blockWidth, unsigned char blockHeight, unsigned char blockDepth, int quality)
{
	const EZORTPixelFormat format = formatOfBlock(blockWidth, blockHeight, blockDepth);
	const CZORTextureHeader pixels = oneImage(ZORStandard8PixelType, width, height, depth);
	const CZORTextureHeader blocks = oneImage(format, width, height, depth);
	if (source == nullptr || destination == nullptr || format == ePF_NumCompressedPFs || !isUsable(pixels) || !isUsable(blocks))
	{
		return 0;
	}

	const platform::CTemporaryFile pixelFile("ktx");
	if (pixelFile.path() == nullptr || !saveKTX(CZORTexture(pixels, source), pixelFile.path()))
	{
		return 0;
	}
	platform::CTemporaryFile blockFile("astc");
	if (blockFile.path() == nullptr)
	{
		return 0;
	}
	const std::string flat = std::to_string(blockWidth) + "x" + std::to_string(blockHeight);
	const std::string block = blockDepth == 1 ? flat : flat + "x" + std::to_string(blockDepth);
	const auto index = static_cast<unsigned int>(quality);
	const char* const qualityString = kQualityStrings[index < std::size(kQualityStrings) ? index : kDefaultQuality];
	const char* const arguments[] = {"-c", pixelFile.path(), blockFile.path(), block.c_str(), qualityString, nullptr};
	if (!succeeds(arguments))
	{
		blockFile.keep();
		return 0;
	}
	return loadResult(loadBlocks, blockFile.path(), blocks, destination) ? blocks.getDataSize() : 0;
}

unsigned int ASTCDecompress(const void* source, void* destination, unsigned int width, unsigned int height, unsigned int depth,
                            unsigned char /*blockWidth*/, unsigned char /*blockHeight*/, unsigned int pixelFormat,
                            EZORTColourSpace colourSpace)
{
	const CZORTextureHeader pixels = oneImage(ZORStandard8PixelType, width, height, depth);
	const CZORTextureHeader blocks = oneImage(pixelFormat, width, height, depth);
	if (source == nullptr || destination == nullptr || astcBlockSizes.count(static_cast<EZORTPixelFormat>(pixelFormat)) == 0 ||
	    !isUsable(pixels) || !isUsable(blocks))
	{
		return 0;
	}

	const platform::CTemporaryFile blockFile("astc");
	if (blockFile.path() == nullptr || !CZORTexture(blocks, source).saveASTCFile(blockFile.path()))
	{
		return 0;
	}
	const platform::CTemporaryFile pixelFile("ktx");
	const char* const arguments[] = {colourSpace == eCS_sRGB ? "-ds" : "-dl", blockFile.path(), pixelFile.path(), nullptr};
	if (pixelFile.path() == nullptr || !succeeds(arguments))
	{
		return 0;
	}
	return loadResult(loadPixels, pixelFile.path(), pixels, destination) ? pixels.getDataSize() : 0;
}
} // namespace zortexture
