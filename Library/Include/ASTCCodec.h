/// @file ASTCCodec.h
/// ASTC, coded by an external program: `astcenc`, found on the process's search path, gets and gives images in temporary files
/// of the folder named by TMPDIR (by default /tmp). A missing or failing program shows as a result of 0 and nothing else; one that
/// hangs hangs the caller. Several threads may code at once.
#ifndef ZORT_ASTC_CODEC_H
#define ZORT_ASTC_CODEC_H

#include <array>
#include <map>

#include "ZORTDefines.h"
#include "ZORTExport.h"

namespace zortexture
{
/// Block width, height and depth in texels of each ASTC format.
ZORT_API extern const std::map<EZORTPixelFormat, std::array<unsigned char, 3>> astcBlockSizes;

/// The block of a format: width in bits 7 to 0, height in 15 to 8, depth in 23 to 16. 1 x 1 x 1 for formats other than ASTC.
ZORT_API unsigned int getASTCBlockSizes(EZORTPixelFormat format);

/// Encodes 8-bit rgba pixels, x fastest, then y, then z, without padding.
/// @param destination  takes one 16-byte block for every block that the image touches.
/// @param quality  0 to 4, from fastest to exhaustive; any other number acts as 2.
/// @return the bytes written. 0, with nothing written, for a null pointer, a block size that no format has, an image without
///         pixels or of 2^32 bytes and more, and when the program is missing, fails, or makes an image of another kind. What a
///         program that is killed or ends with an exit code of failure has written of its .astc file stays in the temporary folder.
ZORT_API unsigned int ASTCCompress(const void* source, void* destination, unsigned int width, unsigned int height, unsigned int depth,
                                   unsigned char blockWidth, unsigned char blockHeight, unsigned char blockDepth, int quality);

/// Decodes to 8-bit rgba pixels. The pixel format alone tells the block size: the two arguments of that name are not used.
/// @param source  holds one 16-byte block for every block that the image touches.
/// @param colourSpace  how the program is to interpret the blocks; the pixels are not converted between spaces.
/// @return the bytes written: four for each pixel. 0, with nothing written, in the cases of ASTCCompress and for formats other than
///         ASTC.
ZORT_API unsigned int ASTCDecompress(const void* source, void* destination, unsigned int width, unsigned int height, unsigned int depth,
                                     unsigned char blockWidth, unsigned char blockHeight, unsigned int pixelFormat,
                                     EZORTColourSpace colourSpace);

/// Whether `astcenc` can be started: it runs once, without arguments, and any exit code counts.
ZORT_API bool isASTCEncAvailable();

/// Runs `astcenc` with its output thrown away, and waits for its end.
/// @param arguments  ended by a null pointer; without the program's name.
/// @param exitCode  takes the program's exit code; may be null.
/// @return false, with `exitCode` unchanged, when the program cannot be started or is killed.
ZORT_API bool executeASTCEnc(const char* const* arguments, int* exitCode);
} // namespace zortexture

#endif // ZORT_ASTC_CODEC_H
