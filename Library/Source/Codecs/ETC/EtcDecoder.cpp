// The decoder of whole images in every format of the family.

#include <cstdint>
#include <cstring>

#include "Codecs/BlockTexels.h"
#include "ETCCodec.h"
#include "EacBlock.h"
#include "EtcBlock.h"
#include "EtcDecodeBlocks.h"

namespace zortexture
{
namespace
{
unsigned int bytesOfTexel(unsigned int format)
{
	switch (format)
	{
	case ePF_ETC1:
	case ePF_ETC2_RGB:
		return 3;
	case ePF_ETC2_RGBA:
	case ePF_ETC2_RGB_A1:
	case ePF_EAC_RG11:
		return 4;
	case ePF_EAC_R11:
		return 2;
	default:
		return 0;
	}
}

unsigned int bytesOfBlock(unsigned int format)
{
	return format == ePF_ETC2_RGBA || format == ePF_EAC_RG11 ? 16 : 8;
}

/// The big-endian word of a block in native form.
unsigned int wordAt(const unsigned char* bytes)
{
	return (static_cast<unsigned int>(bytes[0]) << 24) | (static_cast<unsigned int>(bytes[1]) << 16) |
	       (static_cast<unsigned int>(bytes[2]) << 8) | bytes[3];
}

void interleave(const TexelBlock& texels, unsigned char* decoded)
{
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		std::memcpy(decoded + texel * 4, texels.colours + texel * 3, 3);
		decoded[texel * 4 + 3] = texels.alphas[texel];
	}
}

/// Decodes the block into 4 by 4 texels of the format, row after row.
void decodeBlock(const unsigned char* block, unsigned char* decoded, unsigned int format, bool isSigned)
{
	TexelBlock texels;
	std::uint16_t channels[2][16];
	switch (format)
	{
	case ePF_ETC2_RGBA:
		decompressBlockAlpha(block, texels.alphas, 4, 0, 0, alphaTable);
		decompressBlockETC2(wordAt(block + 8), wordAt(block + 12), texels.colours, 4, 0, 0);
		interleave(texels, decoded);
		break;
	case ePF_ETC2_RGB_A1:
		decompressBlockETC21BitAlpha(wordAt(block), wordAt(block + 4), texels.colours, texels.alphas, 4, 0, 0);
		interleave(texels, decoded);
		break;
	case ePF_EAC_R11:
		decompressBlockAlpha16bit(block, channels[0], 4, 0, 0, isSigned);
		std::memcpy(decoded, channels[0], sizeof(channels[0]));
		break;
	case ePF_EAC_RG11:
		decompressBlockAlpha16bit(block, channels[0], 4, 0, 0, isSigned);
		decompressBlockAlpha16bit(block + 8, channels[1], 4, 0, 0, isSigned);
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			std::memcpy(decoded + texel * 4, &channels[0][texel], 2);
			std::memcpy(decoded + texel * 4 + 2, &channels[1][texel], 2);
		}
		break;
	default: // ETC1 blocks signal the further modes like those of ETC2
		decompressBlockETC2(wordAt(block), wordAt(block + 4), decoded, 4, 0, 0);
		break;
	}
}
} // namespace

template<>
void decodeEtcBlocks<eSimdPlain>(const EtcRun& run, unsigned int format, bool isSigned)
{
	const std::size_t texelRowBytes = std::size_t{4} * bytesOfTexel(format);
	for (std::size_t i = 0; i < run.count; ++i)
	{
		unsigned char decoded[16 * 4];
		decodeBlock(run.blocks + i * bytesOfBlock(format), decoded, format, isSigned);
		for (std::size_t row = 0; row < 4; ++row)
		{
			std::memcpy(run.texels + row * run.rowBytes + i * texelRowBytes, decoded + row * texelRowBytes, texelRowBytes);
		}
	}
}

unsigned int ETCDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                           unsigned int format, bool isSigned)
{
	const unsigned int texelBytes = bytesOfTexel(format);
	if (texelBytes == 0)
	{
		return 0;
	}
	const unsigned int size = width * texelBytes * height; // wraps like every size of the library
	if (source == nullptr || destination == nullptr)
	{
		return size;
	}

	withSimdLevel(
	    [&](auto level)
	    {
		    scatterBlocks(static_cast<const unsigned char*>(source), bytesOfBlock(format), static_cast<unsigned char*>(destination), width,
		                  height, texelBytes,
		                  [&](const unsigned char* blocks, std::size_t count, unsigned char* texels, std::size_t rowBytes) {
			                  decodeEtcBlocks<level>({blocks, count, texels, rowBytes}, format, isSigned);
		                  });
	    });
	return size;
}
} // namespace zortexture
