// Names every exported function without a qualifier and links against each of them: what the shared library hides by
// mistake does not link.

#include <ZORTexLib.h>
#include <cstdio>

using namespace zortexture;

namespace
{
unsigned int g_count;

template<typename Function>
void use(Function function)
{
	g_count += function != nullptr ? 1 : 0;
}

/// The instances for one element type.
template<typename T>
void useTemplates()
{
	use(&SteppedStretchImage<T>);
	use(&StretchImage<T>);
	use(&SampleLinear<T>);
	use(&SampleCubic<T>);
	use(&ConvolutionKernel<T>);
	use(&CreateNormalMap<T>);
	using Images = const unsigned int&;
	use(static_cast<bool (*)(Pixel<T>*, Images, Images, Images)>(&Bleed<T>));
	use(static_cast<bool (*)(Pixel<T>*, Images, Images, Images, EZORTAxis)>(&Flip<T>));
	use(static_cast<bool (*)(Pixel<T>*, Pixel<T>*, Images, Images, Images, EZORTAxis, bool)>(&Rotate90<T>));
	use(static_cast<bool (*)(Pixel<T>*, Pixel<T>*, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, unsigned int)>(
	    &Border<T>));
	use(&CopyChannels<T, unsigned char>);
	use(&CopyChannels<T, unsigned short>);
	use(&CopyChannels<T, unsigned int>);
	use(&CopyChannels<T, float>);
}

void useClasses()
{
	CZORTexture texture(CZORTextureHeader(ZORStandard8PixelType.id, 8, 8));
	texture.addPaddingMetaData(16);
	CPixelEncoder encoder(texture.getPixelType(), texture.getChannelType());
	encoder.EncodeFrom(encoder).ConvertToColourSpace(eCS_sRGB, eCS_lRGB);
	const MetaDataBlock block = texture.getMetaData(kZORTextureMagic, kMetaKeyPadding);
	const unsigned int width = 8;
	Tessel4bppCompressor compressor(texture.getDataPtr(), width, width);
	TesselMultiThreadedCompressor threads(&compressor, 1);
	threads.preprocess(true);
	threads.compress();
	TesselII2bppCompressor secondGeneration(texture.getDataPtr(), width, width);
	TesselIIMultiThreadedCompressor(&secondGeneration, 1).preprocess(true);
	g_count += block.key == kMetaKeyPadding && formatToCodecMap.size() == 51 && astcBlockSizes.size() == 24 &&
	                   StringUtils::getFileName("a/b") == "b"
	               ? 1
	               : 0;
}
} // namespace

int main()
{
	use(&MapCharToEnum);
	use(&MapEnumToChar);
	use(&isSigned);
	use(&channel_type::isSigned);
	use(&ZORTGetBitsPerPixel);
	use(&ZORTGetFormatMinDims);
	use(&ZORTGetTextureDataSize);
	use(&ZORTTextureTwiddle);
	use(&ZORTTextureDeTwiddle);
	use(&ZORTTextureLoadTiled);
	use(&ZORTTextureCreate);

	use(&getOpenGLFormat);
	use(&getVulkanFormat);
	use(&getDirect3DFormat);
	use(&getDirectXGIFormat);
	use(&getZorvexFormatOGL);
	use(&getZorvexFormatVulkan);
	use(&getZorvexFormatD3D);
	use(&getZorvexFormatDXGI);
	use(&getFormatConstantName);

	use(&ZORTMapLegacyTextureEnumToNewFormat);
	use(&ZORTConvertOldTextureHeaderToV3);
	use(&ConvertTextureHeader1To3);
	use(&ConvertTextureHeader2To3);
	use(&ConvertTextureHeader3To2);
	use(&MapLegacyEnumToNewFormat);
	use(&MapNewFormatToLegacyEnum);

	use(&getCodecType);
	use(&Transcode);
	use(&DecompressNonTrivial);
	use(&CompressNonTrivial);
	use(&TranscodeTrivial);
	use(&Dither);
	use(&IntermediateTranscodeFormat);

	use(&isStandardPixelType);
	use(&Resize);
	use(&calculateDownscalePosition);
	use(&evaluateSplines);
	use(&GenerateMIPMaps);
	use(&ColourMIPMaps);
	use(&GenerateNormalMap);
	use(static_cast<bool (*)(CZORTexture&, EZORTAxis)>(&Flip));
	use(static_cast<bool (*)(CZORTexture&, EZORTAxis, bool)>(&Rotate90));
	use(&ResizeCanvas);
	use(static_cast<bool (*)(CZORTexture&, unsigned int, unsigned int, unsigned int)>(&Border));
	use(&SetChannels);
	use(&SetChannelsFloat);
	use(static_cast<bool (*)(CZORTexture&, const CZORTexture&, unsigned int, EChannelName*, EChannelName*)>(&CopyChannels));
	use(&PreMultiplyAlpha);
	use(static_cast<bool (*)(CZORTexture&)>(&Bleed));
	use(&TexturesAreValidForDiff);
	use(&GetMaxDifference);
	use(&GetMeanErrorValue);
	use(&GetRMSErrorValue);
	use(&GetStandardDeviation);
	use(&GetPSNRValue);
	use(&ColourDiff);
	use(&ToleranceDiff);
	use(&BlendDiff);
	useTemplates<unsigned char>();
	useTemplates<unsigned short>();
	useTemplates<unsigned int>();
	useTemplates<float>();

	use(&OneBPPCompress);
	use(&OneBPPDecompress);
	use(&RGB9E5Compress);
	use(&RGB9E5Decompress);
	use(&RGBGCompress);
	use(&RGBGDecompress);
	use(&YUVCompress);
	use(&YUVDecompress);
	use(&ConvertYUVToRGB);
	use(&ConvertRGBToYUV);
	use(&float3_to_rgb9e5);
	use(&rgb9e5_to_float3);
	use(&ClampRange_for_rgb9e5);
	use(&MaxOf3);
	use(&FloorLog2);
	use(&Max);
	use(&TesselDecompress);
	use(&TesselCompress);
	use(&ZORTDecompressTessel);
	use(&tesselCompressMW);
	use(&tesselCompress2bppMW);
	use(&tesselCompress4bppMW);
	use(&tessel2Compress);
	use(&tessel2Compress2bpp);
	use(&tessel2Compress4bpp);
	use(&Tessel2SectionCompress);
	use(&DXTCompress);
	use(&DXTDecompress);
	use(&storeAlpha);
	use(&storeInterpolatedAlpha);
	use(&countColours);
	use(&canHavePunchThrough);
	use(&getASTCBlockSizes);
	use(&ASTCCompress);
	use(&ASTCDecompress);
	use(&isASTCEncAvailable);
	use(&executeASTCEnc);
	use(&ETCDecompress);
	use(&ETCCompress);
	use(&ZORTDecompressETC);
	use(&expandToWidthDivByFour);
	use(&compressBlockTHUMB59TFastestOnlyColor);
	use(&compressBlockTHUMB59TFastestOnlyColorPerceptual1000);

	useClasses();
	std::printf("%u exported names\n", g_count);
	return 0;
}
