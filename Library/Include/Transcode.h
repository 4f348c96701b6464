/// @file Transcode.h
/// Conversion of whole textures between any two formats.
#ifndef ZORT_TRANSCODE_H
#define ZORT_TRANSCODE_H

#include <map>

#include "PixelEncoder.h"
#include "ZORTexture.h"

namespace zortexture
{
/// Which codec serves a compressed format.
enum CodecType : unsigned int
{
	eCodecNone = 0,
	eCodecTessel = 1,
	eCodecETC = 2,
	eCodecEAC = 3,
	eCodecDXT = 4,
	/// Named formats without a codec.
	eCodecBC = 5,
	eCodecYUV = 6,
	eCodecRGBG = 7,
	eCodecOneBPP = 8,
	eCodecASTC = 9,
	eCodecSharedExponent = 10
};

/// The codec of each of the 51 compressed formats.
ZORT_API extern const std::map<EZORTPixelFormat, CodecType> formatToCodecMap;

/// The entry of formatToCodecMap; eCodecNone for anything else.
ZORT_API CodecType getCodecType(EZORTPixelFormat format);

/// A quality, passed as it is to the codec, which gives the number its meaning. Tessel: 0 fast, 1 fast with 8
/// iterations, 2 and above the high-quality compressor at level quality - 2. ETC and EAC: search levels 0 to 3, and 4
/// and 5 as 2 and 3. ASTC: 0 to 4, from fastest to exhaustive. The other codecs have one quality.
enum ECompressorQuality : int
{
	eQuality_0 = 0,
	eQuality_1 = 1,
	eQuality_2 = 2,
	eQuality_3 = 3,
	eQuality_4 = 4,
	eQuality_5 = 5,
	eQuality_6 = 6
};

/// Converts a texture in place to any pixel format, channel type and colour space, through the codecs where source or
/// target is compressed. Metadata, level counts, orientation and premultiplication are carried across.
/// @param dither  spread the quantisation error, for targets below 32 bits per pixel.
/// @return true when every stage delivered all bytes; a target without storage (BC6, BC7, a number above 51) gives an empty texture and
///         true. False with the texture unchanged when the target is ePF_NumCompressedPFs, the texture has no (or not all of its) data, or
///         a form on the way is larger than a texture can be; false with the texture replaced when a codec failed (what it did not write is
///         zero then; all of a target of the DXT family, whose encoder is called by itself: see DXTCompress).
/// @throws std::bad_alloc; the texture is left in one of the forms on the way.
ZORT_API bool Transcode(CZORTexture& texture, PixelType target, EZORTVariableType channelType, EZORTColourSpace colourSpace,
                        ECompressorQuality quality = eQuality_0, bool dither = false);

/// As Transcode, but leaves `source` as it is and puts what it becomes into `result`, for callers who need both: a copy of the source
/// stands beside them only where a codec works in place. `result` may be the source itself.
ZORT_API bool TranscodeInto(const CZORTexture& source, CZORTexture& result, PixelType target, EZORTVariableType channelType,
                            EZORTColourSpace colourSpace, ECompressorQuality quality = eQuality_0, bool dither = false);

/// Decodes a compressed texture in place to the intermediate form of its format. Returns the bytes that the codecs reported;
/// 0, with the texture unchanged, when it is not compressed, lacks data or is too large when decoded.
ZORT_API unsigned int DecompressNonTrivial(CZORTexture& texture);

/// Encodes a texture, which must be in the intermediate form of `target`, in place. Returns the bytes that the codecs reported;
/// 0, with the texture unchanged, when the target is not compressed, the texture is in another form or lacks data.
ZORT_API unsigned int CompressNonTrivial(CZORTexture& texture, PixelType target, ECompressorQuality quality);

/// Converts every pixel of `source` into `destination`, a texture of the same shape, through two encoders of their layouts.
/// Returns the destination's bytes per pixel times the pixels converted. Where shapes or layouts disagree, as many pixels
/// as both textures hold; none when one of them lacks data.
ZORT_API unsigned int TranscodeTrivial(CZORTexture& source, CZORTexture& destination, CPixelEncoder& sourceEncoder,
                                       CPixelEncoder& destinationEncoder, EZORTColourSpace targetSpace, EZORTColourSpace sourceSpace);

/// Error-diffusion dithering of 8-bit rgba pixels to the channel depths of `target`, in place.
ZORT_API void Dither(unsigned char* data, PixelType target, unsigned int width, unsigned int height, unsigned int depth);

/// The uncompressed form in which the codec of a compressed format reads and writes.
ZORT_API void IntermediateTranscodeFormat(const PixelType& format, const EZORTVariableType& channelType, PixelType& intermediate,
                                          EZORTVariableType& intermediateChannelType);
} // namespace zortexture

#endif // ZORT_TRANSCODE_H
