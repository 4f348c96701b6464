/// @file DXTCodec.h
/// Entry points of the DXT family. The uncompressed side is R, G, B, A bytes in tightly packed rows of the image's own size; the
/// compressed side is whole 4 by 4 blocks in rows, 8 bytes a block for DXT1 and 16 for the others. Formats go by their number: 1 for
/// ePF_DXT1 to 5 for ePF_DXT5. DXT2 and DXT4 are coded as DXT3 and DXT5: colours are neither multiplied nor divided by alpha.
///
/// `Transcode` decodes these formats, but does not encode them: that is done by calling `DXTCompress`.
#ifndef ZORT_DXT_CODEC_H
#define ZORT_DXT_CODEC_H

#include "Pixel.h"
#include "ZORTExport.h"

namespace zortexture
{
/// Encodes one image. A DXT1 block with an alpha below 128 has its transparent texels cut out; any other alpha is lost in DXT1.
/// @param source  sides that are no multiple of 4 are padded with their last texels, shifted into the pad.
/// @param number  the format, 1 to 5; any other gives 0.
/// @return bytes written. A null pointer makes it a size query, which counts the sides as they are instead of whole blocks: width *
///         height bytes, or half of that for DXT1.
ZORT_API unsigned int DXTCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                                  const unsigned int& number);

/// Decodes one image; nothing is written outside width x height texels. The palette's colours between the two stored ones are
/// weighted by 42 and 22 sixty-fourths where other decoders divide by three. DXT4 and DXT5 know the three-colour mode of DXT1 too.
/// @param source  the blocks of both sides rounded up to a multiple of 4.
/// @return width * height * 4, also as the answer to a size query (a null pointer); 0 for a number other than 1 to 5.
ZORT_API unsigned int DXTDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                                    const unsigned int& number);

/// The alpha halves of a block, 8 bytes: four bits a texel, and two alphas with three-bit indices between them.
/// @param pixels     4 by 4 texels.
/// @param rowStride  pixels from one row to the next.
ZORT_API void storeAlpha(const Pixel<unsigned char>* pixels, unsigned char* block, unsigned int rowStride);
ZORT_API void storeInterpolatedAlpha(const Pixel<unsigned char>* pixels, unsigned char* block, unsigned int rowStride);

/// The number of distinct colours of 16 texels in 5:6:5 bits, 3 standing for three or more. The colours found go to `colours`, which
/// has room for three, in the order of their first appearance.
ZORT_API unsigned int countColours(const unsigned char* red, const unsigned char* green, const unsigned char* blue,
                                   unsigned short* colours);

/// Whether any of 16 alphas is below 128, so that a DXT1 block needs its transparent palette entry.
ZORT_API bool canHavePunchThrough(const unsigned char* alphas);
} // namespace zortexture

#endif // ZORT_DXT_CODEC_H
