#include "CodecDispatch.h"

#include "ASTCCodec.h"
#include "DXTCodec.h"
#include "ETCCodec.h"
#include "SimpleCodecs.h"
#include "TesselCodec.h"

namespace zortexture
{
namespace
{
/// What the entry points of the Tessel codec want to know of a format.
struct STesselVariant
{
	bool hasAlpha;
	bool is2bpp;
	unsigned int version;
};

constexpr STesselVariant kTesselVariants[] = {
    {false, true, 0},  // ePF_TesselI_2bpp_RGB
    {true, true, 0},   // ePF_TesselI_2bpp_RGBA
    {false, false, 0}, // ePF_TesselI_4bpp_RGB
    {true, false, 0},  // ePF_TesselI_4bpp_RGBA
    {false, true, 1},  // ePF_TesselII_2bpp
    {false, false, 1}, // ePF_TesselII_4bpp
};

/// One dimension of an ASTC block: 0 its width, 1 its height, 2 its depth.
unsigned char blockSide(unsigned int block, unsigned int dimension)
{
	return static_cast<unsigned char>(block >> dimension * 8);
}
} // namespace

unsigned int decodeImage(const SCodecImage& image)
{
	switch (getCodecType(image.format))
	{
	case eCodecTessel:
	{
		const STesselVariant& variant = kTesselVariants[image.format];
		return TesselDecompress(image.source, image.destination, image.width, image.height, variant.is2bpp, variant.version);
	}
	case eCodecETC:
		return ETCDecompress(image.source, image.destination, image.width, image.height, image.format, false);
	case eCodecEAC:
		return ETCDecompress(image.source, image.destination, image.width, image.height, image.format, image.isSigned);
	case eCodecDXT:
		return DXTDecompress(image.source, image.destination, image.width, image.height, image.format - ePF_DXT1 + 1U);
	case eCodecYUV:
		return YUVDecompress(image.source, image.destination, image.width, image.height, image.format);
	case eCodecRGBG:
		return RGBGDecompress(image.source, image.destination, image.width, image.height, image.format);
	case eCodecOneBPP:
		return OneBPPDecompress(image.source, image.destination, image.width, image.height);
	case eCodecASTC:
	{
		const unsigned int block = getASTCBlockSizes(image.format);
		return ASTCDecompress(image.source, image.destination, image.width, image.height, image.depth, blockSide(block, 0),
		                      blockSide(block, 1), image.format, image.colourSpace);
	}
	case eCodecSharedExponent:
		return RGB9E5Decompress(image.source, image.destination, image.width, image.height);
	default:
		return 0;
	}
}

unsigned int encodeImage(const SCodecImage& image)
{
	switch (getCodecType(image.format))
	{
	case eCodecTessel:
	{
		const STesselVariant& variant = kTesselVariants[image.format];
		return TesselCompress(image.source, image.destination, image.width, image.height, variant.hasAlpha, variant.is2bpp, variant.version,
		                      static_cast<unsigned int>(image.quality));
	}
	case eCodecETC:
		return ETCCompress(image.source, image.destination, image.width, image.height, image.quality, image.format, false);
	case eCodecEAC:
		return ETCCompress(image.source, image.destination, image.width, image.height, image.quality, image.format, image.isSigned);
	case eCodecYUV:
		return YUVCompress(image.source, image.destination, image.width, image.height, image.format);
	case eCodecRGBG:
		return RGBGCompress(image.source, image.destination, image.width, image.height, image.format);
	case eCodecOneBPP:
		return OneBPPCompress(image.source, image.destination, image.width, image.height);
	case eCodecASTC:
	{
		const unsigned int block = getASTCBlockSizes(image.format);
		return ASTCCompress(image.source, image.destination, image.width, image.height, image.depth, blockSide(block, 0),
		                    blockSide(block, 1), blockSide(block, 2), image.quality);
	}
	case eCodecSharedExponent:
		return RGB9E5Compress(image.source, image.destination, image.width, image.height);
	default:
		return 0;
	}
}
} // namespace zortexture
