#include "Codecs/ETC/EtcHalfWalk.h"

#include "Codecs/ETC/EtcPlainLanes.h"

namespace zortexture
{
using Tables = PlainLanes<std::int32_t, 8>;
using TablePairs = PlainLanes<std::int16_t, 16>;

template<>
void fillTableErrors<eSimdPlain>(EtcSearchSpace& space)
{
	fillTableErrorsBy<Tables, TablePairs>(space);
}

template<>
unsigned int walkHalf<eSimdPlain>(EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found)
{
	return walkHalfBy<Tables>(space, walk, found);
}
} // namespace zortexture
