// The walks of a texture through a codec: one face of one MIP level at a time.

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "CodecDispatch.h"
#include "Processing/ElementDispatch.h"
#include "TextureSize.h"

namespace zortexture
{
namespace
{
/// The dimensions of a level, and the same raised to the least that a format's codec works on.
struct SLevelShape
{
	SLevelShape(const CZORTextureHeader& texture, unsigned int mipLevel, PixelType format)
	    : width(texture.getWidth(mipLevel)), height(texture.getHeight(mipLevel)), depth(texture.getDepth(mipLevel))
	{
		unsigned int minX = 1;
		unsigned int minY = 1;
		unsigned int minZ = 1;
		ZORTGetFormatMinDims(format.id, minX, minY, minZ);
		paddedWidth = std::max(width, minX);
		paddedHeight = std::max(height, minY);
		paddedDepth = std::max(depth, minZ);
	}

	bool isPadded() const
	{
		return paddedWidth != width || paddedHeight != height || paddedDepth != depth;
	}

	std::size_t numPixels() const
	{
		return static_cast<std::size_t>(width) * height * depth;
	}

	std::size_t numPaddedPixels() const
	{
		return static_cast<std::size_t>(paddedWidth) * paddedHeight * paddedDepth;
	}

	unsigned int width;
	unsigned int height;
	unsigned int depth;
	unsigned int paddedWidth;
	unsigned int paddedHeight;
	unsigned int paddedDepth;
};

/// A level with its columns repeated to the padded width. Rows below the level are what follows it in the block; zero
/// where the block ends.
std::vector<unsigned char> padLevel(const unsigned char* level, const unsigned char* blockEnd, const SLevelShape& shape,
                                    std::size_t bytesPerPixel)
{
	std::vector<unsigned char> padded(shape.numPaddedPixels() * bytesPerPixel);
	const auto available = static_cast<std::size_t>(blockEnd - level) / bytesPerPixel;
	unsigned char* out = padded.data();
	for (std::size_t z = 0; z < shape.paddedDepth; ++z)
	{
		for (std::size_t y = 0; y < shape.paddedHeight; ++y)
		{
			for (std::size_t x = 0; x < shape.paddedWidth; ++x, out += bytesPerPixel)
			{
				const std::size_t pixel = x % shape.width + (y + z * shape.height) * shape.width;
				if (pixel < available)
				{
					std::memcpy(out, level + pixel * bytesPerPixel, bytesPerPixel);
				}
			}
		}
	}
	return padded;
}
} // namespace

unsigned int DecompressNonTrivial(CZORTexture& texture)
{
	return decodeTexture(texture, texture);
}

unsigned int decodeTexture(const CZORTexture& texture, CZORTexture& result)
{
	const PixelType format = texture.getPixelType();
	PixelType intermediate;
	EZORTVariableType intermediateType = eVT_UnsignedByteNorm;
	IntermediateTranscodeFormat(format, texture.getChannelType(), intermediate, intermediateType);
	CZORTextureHeader header(texture.getHeader());
	header.setPixelFormat(intermediate);
	header.setChannelType(intermediateType);
	if (!format.isCompressed() || !texture.isDataComplete() || !isDataSizeExact(header.getFileHeader()))
	{
		return 0;
	}
	CZORTexture decoded(header);

	const std::size_t bytesPerPixel = decoded.getBitsPerPixel() / 8;
	// Tessel and one-bit decoders write just the level's own pixels, whatever its size.
	const bool mayNeedScratch = format.id > ePF_TesselII_4bpp && format.id != ePF_BW1bpp;
	const bool takesPaddedSize = getCodecType(static_cast<EZORTPixelFormat>(format.id)) == eCodecDXT;
	SCodecImage image;
	image.format = static_cast<EZORTPixelFormat>(format.id);
	image.colourSpace = texture.getColourSpace();
	image.isSigned = isSigned(intermediateType);

	unsigned int bytesDecoded = 0;
	forEachImage(texture,
	             [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
	             {
		             const SLevelShape shape(texture, mipLevel, format);
		             void* const level = decoded.getDataPtr(mipLevel, arrayMember, face);
		             std::vector<unsigned char> scratch;
		             if (mayNeedScratch && shape.isPadded())
		             {
			             scratch.resize(shape.numPaddedPixels() * bytesPerPixel);
		             }
		             image.source = texture.getDataPtr(mipLevel, arrayMember, face);
		             image.destination = scratch.empty() ? level : scratch.data();
		             image.width = takesPaddedSize ? shape.paddedWidth : shape.width;
		             image.height = takesPaddedSize ? shape.paddedHeight : shape.height;
		             image.depth = shape.depth;
		             bytesDecoded += decodeImage(image);
		             if (!scratch.empty())
		             {
			             // By linear index: the level's rows follow each other in the scratch without its padding.
			             std::memcpy(level, scratch.data(), shape.numPixels() * bytesPerPixel);
		             }
	             });
	result = std::move(decoded);
	return bytesDecoded;
}

unsigned int CompressNonTrivial(CZORTexture& texture, PixelType target, ECompressorQuality quality)
{
	PixelType intermediate;
	EZORTVariableType intermediateType = eVT_UnsignedByteNorm;
	IntermediateTranscodeFormat(target, texture.getChannelType(), intermediate, intermediateType);
	CZORTextureHeader header(texture.getHeader());
	header.setPixelFormat(target);
	if (!target.isCompressed() || texture.getPixelType().id != intermediate.id || !texture.isDataComplete() ||
	    !isDataSizeExact(header.getFileHeader()))
	{
		return 0;
	}
	CZORTexture encoded(header);

	const std::size_t bytesPerPixel = texture.getBitsPerPixel() / 8;
	auto* const block = static_cast<unsigned char*>(texture.getDataPtr(0, 0, 0));
	const unsigned char* const blockEnd = block + texture.getDataSize(-1, true, true);
	const bool isOpaque = target.id == ePF_TesselI_2bpp_RGB || target.id == ePF_TesselI_4bpp_RGB;
	SCodecImage image;
	image.format = static_cast<EZORTPixelFormat>(target.id);
	image.colourSpace = texture.getColourSpace();
	image.isSigned = isSigned(texture.getChannelType());
	image.quality = quality;

	unsigned int bytesEncoded = 0;
	forEachImage(texture,
	             [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
	             {
		             const SLevelShape shape(texture, mipLevel, target);
		             auto* pixels = static_cast<unsigned char*>(texture.getDataPtr(mipLevel, arrayMember, face));
		             std::vector<unsigned char> scratch;
		             if (shape.isPadded())
		             {
			             scratch = padLevel(pixels, blockEnd, shape, bytesPerPixel);
			             pixels = scratch.data();
		             }
		             if (isOpaque)
		             {
			             for (std::size_t pixel = 0; pixel < shape.numPaddedPixels(); ++pixel)
			             {
				             pixels[pixel * bytesPerPixel + 3] = 255;
			             }
		             }
		             image.source = pixels;
		             image.destination = encoded.getDataPtr(mipLevel, arrayMember, face);
		             image.width = shape.paddedWidth;
		             image.height = shape.paddedHeight;
		             image.depth = shape.paddedDepth;
		             bytesEncoded += encodeImage(image);
	             });
	texture = std::move(encoded);
	return bytesEncoded;
}
} // namespace zortexture
