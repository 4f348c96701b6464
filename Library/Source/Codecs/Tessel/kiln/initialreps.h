/// @file initialreps.h
/// Statistics of each block's window and the first pair of every mode.
#pragma once

#include "kiln.h"

/// Thread entry: fills the block records of its rows.
/// @param threadRecord  a KilnThreadRecord.
void* RunAGenerateStatsSetThread(void* threadRecord);
