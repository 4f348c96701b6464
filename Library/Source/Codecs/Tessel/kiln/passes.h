/// @file passes.h
/// What the quality of the high-quality compressor, 0 to 6, stands for.
#pragma once

#include "kiln.h"

constexpr int kKilnBestQuality = 6;

/// Passes of a run.
int kilnPassCount(int quality, bool tessel2);

/// Sets the parameters of a pass. Passes are entered in order, with the settings that the pass before has left.
/// @param meanError  of a block after the pass before; not used in pass 0.
void kilnEnterPass(KilnSettings& settings, int quality, int pass, std::uint64_t meanError);
