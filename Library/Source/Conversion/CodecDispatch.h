/// @file CodecDispatch.h
/// The one place where codecs plug into the pipeline.
#pragma once

#include "Transcode.h"

namespace zortexture
{
/// One face of one MIP level on its way through a codec. Both buffers are large enough for what the format's codec reads
/// and writes at these dimensions.
struct SCodecImage
{
	const void* source = nullptr;
	void* destination = nullptr;
	unsigned int width = 0;
	unsigned int height = 0;
	unsigned int depth = 0;
	EZORTPixelFormat format = ePF_NumCompressedPFs; ///< the compressed side's
	EZORTColourSpace colourSpace = eCS_lRGB;
	bool isSigned = false;                   ///< of the uncompressed side's channels
	ECompressorQuality quality = eQuality_0; ///< for encoding
};

/// Run the codec of the image's format. They return the bytes that the codec reports; 0, with nothing written, for a
/// format without a codec.
unsigned int decodeImage(const SCodecImage& image);
unsigned int encodeImage(const SCodecImage& image);

/// DecompressNonTrivial into another texture, which may be the same one. Where that leaves its texture unchanged, this leaves `result`.
unsigned int decodeTexture(const CZORTexture& texture, CZORTexture& result);
} // namespace zortexture
