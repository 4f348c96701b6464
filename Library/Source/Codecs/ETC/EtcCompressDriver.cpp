// The encoder of whole images: cuts the image into blocks, pads the partial ones, and runs the search that format and quality select.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "Codecs/BlockTexels.h"
#include "ETCCodec.h"
#include "EacBlock.h"
#include "EtcBlock.h"
#include "EtcFastSearch.h"
#include "EtcLadder.h"
#include "EtcSearchSpace.h"

namespace zortexture
{
namespace
{
/// A format's texels and blocks in memory.
struct Layout
{
	unsigned int texelBytes;
	unsigned int blockBytes;
};

/// Zeros for a format that is none of this family's.
Layout layoutOf(unsigned int format)
{
	switch (format)
	{
	case ePF_ETC1:
	case ePF_ETC2_RGB:
		return {3, 8};
	case ePF_ETC2_RGBA:
		return {4, 16};
	case ePF_ETC2_RGB_A1:
		return {4, 8};
	case ePF_EAC_R11:
		return {2, 8};
	case ePF_EAC_RG11:
		return {4, 16};
	default:
		return {0, 0};
	}
}

bool isEac(unsigned int format)
{
	return format == ePF_EAC_R11 || format == ePF_EAC_RG11;
}

/// Whether the level tries all blocks of the format's modes. One-bit alpha and EAC have one search at every level.
bool isExhaustive(unsigned int format, int level)
{
	return level >= ETCQualityExhaustive && format != ePF_ETC2_RGB_A1 && !isEac(format);
}

/// The bytes of the padded image, for any format: the size query does not refuse.
unsigned int compressedSize(unsigned int width, unsigned int height, unsigned int format)
{
	const unsigned int texels = ((width + 3) & ~3U) * ((height + 3) & ~3U); // wraps like every size of the library
	return layoutOf(format).blockBytes == 8 ? texels / 2 : texels;
}

void split(const unsigned char* rgba, TexelBlock& texels)
{
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		std::memcpy(texels.colours + texel * 3, rgba + texel * 4, 3);
		texels.alphas[texel] = rgba[texel * 4 + 3];
	}
}

void storeBigEndian(unsigned int word, unsigned char* bytes)
{
	for (unsigned int byte = 0; byte < 4; ++byte)
	{
		bytes[byte] = static_cast<unsigned char>(word >> (24 - 8 * byte));
	}
}

/// What is the same for all blocks of an image.
struct Encoding
{
	unsigned int format;
	int level;
	bool isSigned;
	EtcSearchSpace* space; ///< Null but for the exhaustive levels.
	decltype(&compressColoursFast<eSimdPlain>) fast;
};

/// Encodes the colour words. A level below 0 selects no search; what the bytes held is turned into big-endian words all the same.
void encodeColours(const TexelBlock& texels, const Encoding& encoding, unsigned char* block)
{
	const unsigned int format = encoding.format;
	const int level = encoding.level;
	if (level < ETCQualityFast && format != ePF_ETC2_RGB_A1)
	{
		std::reverse(block, block + 4);
		std::reverse(block + 4, block + 8);
		return;
	}

	unsigned int word1 = 0;
	unsigned int word2 = 0;
	if (encoding.space != nullptr)
	{
		unsigned char decoded[16 * 3];
		const bool isPlain = level == ETCQualityExhaustive;
		const auto etc1 = isPlain ? compressBlockETC1Exhaustive : compressBlockETC1ExhaustivePerceptual;
		const auto etc2 = isPlain ? compressBlockETC2Exhaustive : compressBlockETC2ExhaustivePerceptual;
		(format == ePF_ETC1 ? etc1 : etc2)(texels.colours, decoded, 4, 0, 0, word1, word2, *encoding.space);
	}
	else
	{
		encoding.fast(texels, format, level, word1, word2);
	}
	storeBigEndian(word1, block);
	storeBigEndian(word2, block + 4);
}

void encodeAlpha(const TexelBlock& texels, int level, unsigned char* block)
{
	if (level == ETCQualityFast || level == ETCQualityFastPerceptual)
	{
		compressBlockAlphaFast(texels.alphas, 0, 0, 4, block, alphaTable);
	}
	else if (level == ETCQualityExhaustive || level == ETCQualityExhaustivePerceptual)
	{
		compressBlockAlphaSlow(texels.alphas, 0, 0, 4, block, alphaTable);
	}
}

/// Encodes 4 by 4 texels of the format's layout.
void encodeBlock(const unsigned char* raw, const Encoding& encoding, unsigned char* block)
{
	const unsigned int format = encoding.format;
	if (isEac(format))
	{
		const unsigned int channels = format == ePF_EAC_R11 ? 1 : 2;
		std::uint16_t values[16 * 2];
		std::memcpy(values, raw, channels * 32);
		const std::uint16_t* valueTable = encoding.isSigned ? valueTableSigned() : valueTableUnsigned();
		for (unsigned int channel = 0; channel < channels; ++channel)
		{
			compressBlockAlpha16(values + channel, channels, 0, 0, 4, block + channel * 8, encoding.isSigned, valueTable);
		}
		return;
	}

	TexelBlock texels;
	if (format == ePF_ETC1 || format == ePF_ETC2_RGB)
	{
		std::memcpy(texels.colours, raw, sizeof(texels.colours));
		encodeColours(texels, encoding, block);
		return;
	}
	split(raw, texels);
	if (format == ePF_ETC2_RGBA)
	{
		encodeAlpha(texels, encoding.level, block);
		block += 8;
	}
	encodeColours(texels, encoding, block);
}
} // namespace

unsigned int ETCCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height, int quality,
                         unsigned int format, bool isSigned)
{
	const unsigned int size = compressedSize(width, height, format);
	if (source == nullptr || destination == nullptr || width == 0 || height == 0)
	{
		return size;
	}
	if (quality > 5)
	{
		return 0;
	}
	int level = quality;
	if (quality >= 4)
	{
		level = quality - 2;
	}
	else if (isSigned && !isEac(format))
	{
		return 0; // only this spelling of the levels refuses signed texels
	}
	const Layout layout = layoutOf(format);
	if (layout.blockBytes == 0)
	{
		return 0;
	}
	std::unique_ptr<EtcSearchSpace> space;
	if (isExhaustive(format, level))
	{
		space.reset(new (std::nothrow) EtcSearchSpace);
		if (space == nullptr)
		{
			std::fputs("Out of memory allocating ", stdout);
			return 0;
		}
	}
	const auto fast = withSimdLevel([](auto simd) { return &compressColoursFast<simd>; });
	const Encoding encoding{format, level, isSigned, space.get(), fast};

	const auto* image = static_cast<const unsigned char*>(source);
	auto* block = static_cast<unsigned char*>(destination);
	for (std::size_t y = 0; y < height; y += 4)
	{
		for (std::size_t x = 0; x < width; x += 4, block += layout.blockBytes)
		{
			unsigned char texels[16 * 4];
			gatherTexels(image, width, height, x, y, layout.texelBytes, texels);
			encodeBlock(texels, encoding, block);
		}
	}
	return size;
}
} // namespace zortexture
