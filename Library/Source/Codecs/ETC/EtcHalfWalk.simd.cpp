#include "Codecs/ETC/EtcHalfWalk.h"

#include "Codecs/ETC/EtcWideLanes.h"

namespace zortexture
{
using Tables = WideLanes<std::int32_t, 8>;
using TablePairs = WideLanes<std::int16_t, 16>;

template<ESimdLevel level>
void fillTableErrors(EtcSearchSpace& space)
{
	fillTableErrorsBy<Tables, TablePairs>(space);
}

template<ESimdLevel level>
unsigned int walkHalf(EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found)
{
	return walkHalfBy<Tables>(space, walk, found);
}

template void fillTableErrors<kLanesLevel>(EtcSearchSpace& space);
template unsigned int walkHalf<kLanesLevel>(EtcSearchSpace& space, const HalfWalk& walk, HalfColour* found);
} // namespace zortexture
