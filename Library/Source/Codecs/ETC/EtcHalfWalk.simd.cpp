#include "Codecs/ETC/EtcHalfWalk.h"

#include "Codecs/ETC/EtcWideLanes.h"

namespace zortexture
{
using Tables = WideLanes<std::int32_t, 8>;

template<ESimdLevel level>
void fillModifierErrors(const unsigned char (&texels)[3][16], const unsigned int (&weights)[3], unsigned int bits, EtcSearchSpace& space)
{
	fillModifierErrorsBy<Tables>(texels, weights, bits, space);
}

template<ESimdLevel level>
unsigned int walkHalf(const EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found)
{
	return walkHalfBy<Tables>(space, walk, found);
}

template void fillModifierErrors<kLanesLevel>(const unsigned char (&texels)[3][16], const unsigned int (&weights)[3], unsigned int bits,
                                              EtcSearchSpace& space);
template unsigned int walkHalf<kLanesLevel>(const EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found);
} // namespace zortexture
