/// @file optimise.h
/// One phase of a pass: every block of the rows of one parity is fitted again while its neighbours stand still.
#pragma once

#include "evaluate.h"
#include "kiln.h"

/// Thread entry.
/// @param threadRecord  a KilnThreadRecord.
void* RunAnOptimisePhaseThread(void* threadRecord);

/// The least-squares step of the pair of a block.
struct KilnFit
{
	KilnColourF deltaA = {};
	KilnColourF deltaB = {};
	/// 0 both, 1 only B has influence (or none has), 2 only A, 3 the two are collinear.
	int kind = 0;
};

KilnFit FitOnlyCentralRepPairsToWeights(const KilnSettings& settings, const KilnFittingParams& params);

/// Moves x, which has influence, by delta, and lets y, which has little, follow.
void AdjustUnderusedCandidates(const KilnColourF& x, const KilnColourF& y, const KilnColourF& delta, KilnColourF& outX, KilnColourF& outY);

/// By error, then by secondary error: -1, 0 or 1.
int CompareCandidates(const void* a, const void* b);
