#include "Codecs/ETC/EtcHalfWalk.h"

#include "Codecs/ETC/EtcPlainLanes.h"

namespace zortexture
{
using Tables = PlainLanes<std::int32_t, 8>;

template<>
void fillModifierErrors<eSimdPlain>(const unsigned char (&texels)[3][16], const unsigned int (&weights)[3], unsigned int bits,
                                    EtcSearchSpace& space)
{
	fillModifierErrorsBy<Tables>(texels, weights, bits, space);
}

template<>
unsigned int walkHalf<eSimdPlain>(const EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found)
{
	return walkHalfBy<Tables>(space, walk, found);
}
} // namespace zortexture
