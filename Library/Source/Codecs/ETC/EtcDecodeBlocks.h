/// @file EtcDecodeBlocks.h
/// The decoders of whole blocks, side by side in four rows of the image.
#pragma once

#include <cstddef>

#include "Simd/SimdLevel.h"
#include "ZORTDefines.h"

namespace zortexture
{
/// `count` blocks that follow each other, and where they go: four rows of texels whose starts are `rowBytes` apart.
struct EtcRun
{
	const unsigned char* blocks;
	std::size_t count;
	unsigned char* texels;
	std::size_t rowBytes;
};

/// Decodes blocks of any format of the family into its texels: R, G, B; R, G, B, A; or one or two 16-bit values.
template<ESimdLevel level>
void decodeEtcBlocks(const EtcRun& run, unsigned int format, bool isSigned);
template<>
void decodeEtcBlocks<eSimdPlain>(const EtcRun& run, unsigned int format, bool isSigned);

/// Decodes ETC1 blocks into R, G, B, A texels, without the modes that ETC2 reads out of sums beyond the range.
template<ESimdLevel level>
void decodeEtc1Blocks(const EtcRun& run);
template<>
void decodeEtc1Blocks<eSimdPlain>(const EtcRun& run);
} // namespace zortexture
