// Pixels of one layout into another, for whole textures: by the two encoders pixel by pixel, which is what the results are defined by, or
// by the fast conversions that give the same bytes.

#include <algorithm>
#include <cstring>
#include <utility>

#include "BulkConversion.h"
#include "Processing/ElementDispatch.h"
#include "Simd/SimdLevel.h"
#include "Transcode.h"

namespace zortexture
{
namespace
{
/// As fewer pixels convert one by one in the time that any other way takes to prepare.
constexpr unsigned long long kFewPixels = 64;

/// The pixels that an image of a texture has by a header and by the bytes of a pixel: the encoders are the caller's.
unsigned int numPixelsOf(const CZORTextureHeader& shape, const CZORTextureHeader& texture, unsigned int mipLevel, unsigned int step)
{
	const int level = static_cast<int>(mipLevel);
	const unsigned int numPixels = shape.getTextureSize(level, false, false);
	return step != 0 ? std::min(numPixels, texture.getDataSize(level, false, false) / step) : numPixels;
}

/// Calls `function(source, destination, numPixels)` for every image that both textures have, with the pixels that both hold.
template<typename Function>
void forEachImagePair(const CZORTexture& source, const CZORTexture& destination, unsigned int sourceStep, unsigned int destinationStep,
                      Function&& function)
{
	forEachImage(source,
	             [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
	             {
		             const auto* in = static_cast<const unsigned char*>(source.getDataPtr(mipLevel, arrayMember, face));
		             auto* out = static_cast<unsigned char*>(destination.getDataPtr(mipLevel, arrayMember, face));
		             if (in != nullptr && out != nullptr)
		             {
			             function(in, out,
			                      std::min(numPixelsOf(source, source, mipLevel, sourceStep),
			                               numPixelsOf(source, destination, mipLevel, destinationStep)));
		             }
	             });
}

/// The fastest way that suits the layouts; null where the encoders are it.
std::unique_ptr<CBulkConversion> makeBulkConversion(SConversionTask&& task)
{
	if (simdLevel() == eSimdPlain || task.numPixels < kFewPixels)
	{
		return nullptr;
	}
	std::unique_ptr<CBulkConversion> conversion = makeTableConversion(task);
	return conversion != nullptr ? std::move(conversion) : makeArithmeticConversion(task);
}
} // namespace

unsigned int TranscodeTrivial(CZORTexture& source, CZORTexture& destination, CPixelEncoder& sourceEncoder,
                              CPixelEncoder& destinationEncoder, EZORTColourSpace targetSpace, EZORTColourSpace sourceSpace)
{
	if (!source.isDataComplete() || !destination.isDataComplete())
	{
		return 0;
	}
	const unsigned int sourceStep = sourceEncoder.GetBitsPerPixel() / 8;
	const unsigned int destinationStep = destinationEncoder.GetBitsPerPixel() / 8;
	// A pixel has 16 bytes at most; wider layouts are none that an encoder takes.
	const unsigned int destinationBytes = std::min(destinationEncoder.GetColourDataSize(), 16u);
	const auto convertByEncoders = [&](const unsigned char* in, unsigned char* out, unsigned int numPixels)
	{
		for (unsigned int pixel = 0; pixel < numPixels; ++pixel, in += sourceStep, out += destinationStep)
		{
			sourceEncoder.OverwriteColourData(in);
			destinationEncoder.EncodeFrom(sourceEncoder);
			destinationEncoder.ConvertToColourSpace(targetSpace, sourceSpace);
			std::memcpy(out, destinationEncoder.GetColourData(), destinationBytes);
		}
	};

	unsigned long long pixelsInAll = 0;
	forEachImagePair(source, destination, sourceStep, destinationStep,
	                 [&](const unsigned char*, unsigned char*, unsigned int numPixels) { pixelsInAll += numPixels; });
	// Pixels of a texture that is converted within itself can depend on those before them, and an encoder that is on both sides clears a
	// pixel before it reads it.
	std::unique_ptr<CBulkConversion> conversion;
	if (&source != &destination && &sourceEncoder != &destinationEncoder)
	{
		conversion = makeBulkConversion({sourceEncoder, destinationEncoder, SPixelLayout(sourceEncoder), SPixelLayout(destinationEncoder),
		                                 targetSpace, sourceSpace, pixelsInAll});
	}

	unsigned int bytesWritten = 0;
	forEachImagePair(source, destination, sourceStep, destinationStep,
	                 [&](const unsigned char* in, unsigned char* out, unsigned int numPixels)
	                 {
		                 if (conversion == nullptr || numPixels == 0)
		                 {
			                 convertByEncoders(in, out, numPixels);
		                 }
		                 else
		                 {
			                 // The encoders are left with the last pixel, whichever way the others went.
			                 const std::size_t last = numPixels - 1;
			                 conversion->convert(in, out, last);
			                 convertByEncoders(in + last * sourceStep, out + last * destinationStep, 1);
		                 }
		                 bytesWritten += destinationStep * numPixels;
	                 });
	return bytesWritten;
}
} // namespace zortexture
