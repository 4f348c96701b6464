#include "Transcode.h"

namespace zortexture
{
namespace
{
std::map<EZORTPixelFormat, CodecType> makeCodecMap()
{
	std::map<EZORTPixelFormat, CodecType> codecs = {
	    {ePF_TesselI_2bpp_RGB, eCodecTessel},
	    {ePF_TesselI_2bpp_RGBA, eCodecTessel},
	    {ePF_TesselI_4bpp_RGB, eCodecTessel},
	    {ePF_TesselI_4bpp_RGBA, eCodecTessel},
	    {ePF_TesselII_2bpp, eCodecTessel},
	    {ePF_TesselII_4bpp, eCodecTessel},
	    {ePF_ETC1, eCodecETC},
	    {ePF_DXT1, eCodecDXT},
	    {ePF_DXT2, eCodecDXT},
	    {ePF_DXT3, eCodecDXT},
	    {ePF_DXT4, eCodecDXT},
	    {ePF_DXT5, eCodecDXT},
	    {ePF_BC4, eCodecBC},
	    {ePF_BC5, eCodecBC},
	    {ePF_BC6, eCodecBC},
	    {ePF_BC7, eCodecBC},
	    {ePF_UYVY, eCodecYUV},
	    {ePF_YUY2, eCodecYUV},
	    {ePF_BW1bpp, eCodecOneBPP},
	    {ePF_R9G9B9E5, eCodecSharedExponent},
	    {ePF_RGBG8888, eCodecRGBG},
	    {ePF_GRGB8888, eCodecRGBG},
	    {ePF_ETC2_RGB, eCodecETC},
	    {ePF_ETC2_RGBA, eCodecETC},
	    {ePF_ETC2_RGB_A1, eCodecETC},
	    {ePF_EAC_R11, eCodecEAC},
	    {ePF_EAC_RG11, eCodecEAC},
	};
	for (unsigned int format = ePF_ASTC_4x4; format <= ePF_ASTC_6x6x6; ++format)
	{
		codecs.emplace(static_cast<EZORTPixelFormat>(format), eCodecASTC);
	}
	return codecs;
}
} // namespace

const std::map<EZORTPixelFormat, CodecType> formatToCodecMap = makeCodecMap();

CodecType getCodecType(EZORTPixelFormat format)
{
	const auto entry = formatToCodecMap.find(format);
	return entry == formatToCodecMap.end() ? eCodecNone : entry->second;
}
} // namespace zortexture
