#include <algorithm>
#include <cstring>

#include "Processing/ElementDispatch.h"
#include "Transcode.h"

namespace zortexture
{
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
	unsigned int bytesWritten = 0;
	forEachImage(source,
	             [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
	             {
		             const int level = static_cast<int>(mipLevel);
		             const auto* in = static_cast<const unsigned char*>(source.getDataPtr(mipLevel, arrayMember, face));
		             auto* out = static_cast<unsigned char*>(destination.getDataPtr(mipLevel, arrayMember, face));
		             if (in == nullptr || out == nullptr)
		             {
			             return;
		             }
		             // The encoders are the caller's: never more pixels than both images hold by their steps.
		             unsigned int numPixels = source.getTextureSize(level, false, false);
		             if (sourceStep != 0)
		             {
			             numPixels = std::min(numPixels, source.getDataSize(level, false, false) / sourceStep);
		             }
		             if (destinationStep != 0)
		             {
			             numPixels = std::min(numPixels, destination.getDataSize(level, false, false) / destinationStep);
		             }
		             for (unsigned int pixel = 0; pixel < numPixels; ++pixel, in += sourceStep, out += destinationStep)
		             {
			             sourceEncoder.OverwriteColourData(in);
			             destinationEncoder.EncodeFrom(sourceEncoder);
			             destinationEncoder.ConvertToColourSpace(targetSpace, sourceSpace);
			             std::memcpy(out, destinationEncoder.GetColourData(), destinationBytes);
		             }
		             bytesWritten += destinationStep * numPixels;
	             });
	return bytesWritten;
}
} // namespace zortexture
