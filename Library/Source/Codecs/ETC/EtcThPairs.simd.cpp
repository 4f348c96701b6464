#include "Codecs/ETC/EtcThPairs.h"

#include "Codecs/ETC/EtcWideLanes.h"

namespace zortexture
{
template<ESimdLevel level, TwoColourMode Mode>
void walkPairs(PairWalk& walk)
{
	CPairWalk<WideLanes<std::int16_t, 16>, Mode>(walk).run();
}

template void walkPairs<kLanesLevel, TwoColourMode::T>(PairWalk& walk);
template void walkPairs<kLanesLevel, TwoColourMode::H>(PairWalk& walk);
} // namespace zortexture
