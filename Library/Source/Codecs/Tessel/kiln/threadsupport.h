/// @file threadsupport.h
/// Threads of the high-quality compressor.
#pragma once

#include <pthread.h>

#include "kiln.h"

using KilnThreadRoutine = void* (*)(void*);

/// The processors online, else those configured, else 1; or what a test has set.
int DetermineNumberOfCores();

/// @return 0 if the thread cannot be made.
int LaunchThread(KilnThreadRoutine routine, void* argument, pthread_t* handle);

/// Joins threads. A join that fails ends the process with a message.
void WaitForThreads(const pthread_t* handles, int count);

/// Threads for a stage over block rows: as many as are of use, at most `cores`; at most 4 when that is 0, unknown.
int kilnThreadCount(int cores, int blocksY);

/// Runs the pieces of a stage, all but the last in threads of their own. Pieces without rows are left out.
/// @return false if a piece could not do its work.
bool kilnRunStage(KilnThreadRoutine routine, std::vector<KilnThreadRecord>& pieces);

/// For tests: the number of processors to report, 0 for the true one.
void kilnForceCores(int cores);
/// For tests: of every `period` launches the last is refused, 0 for none.
void kilnRefuseLaunches(int period);
