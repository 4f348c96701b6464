/// @file EtcFastLadder.cpp
/// The fast levels on vector units: the choices of EtcLadder.cpp, made of what the vector searches tell.
#include "Codecs/ETC/EtcFastKernels.h"
#include "Codecs/ETC/EtcLadder.h"
#include "ZORTDefines.h"

#if ZORT_HAS_SIMD

namespace zortexture
{
namespace
{
template<ESimdLevel level, EtcMeasure measure>
EtcCandidate diffFlip(const TexelBlock& texels)
{
	return searchDiffFlipFast<level, measure>(texels.colours);
}
} // namespace

template<ESimdLevel level>
void compressColoursFast(const TexelBlock& texels, unsigned int format, int quality, unsigned int& word1, unsigned int& word2)
{
	if (format == ePF_ETC1)
	{
		const EtcCandidate best =
		    quality == ETCQualityFast ? diffFlip<level, EtcMeasure::Plain>(texels) : diffFlip<level, EtcMeasure::Perceptual>(texels);
		if (!best.isOpen)
		{
			word1 = best.word1;
			word2 = best.word2;
			return;
		}
	}
	compressColoursFast<eSimdPlain>(texels, format, quality, word1, word2);
}

template void compressColoursFast<eSimdSse2>(const TexelBlock&, unsigned int, int, unsigned int&, unsigned int&);
template void compressColoursFast<eSimdAvx2>(const TexelBlock&, unsigned int, int, unsigned int&, unsigned int&);
} // namespace zortexture

#endif
