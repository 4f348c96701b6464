/// @file optimise.h
/// One phase of a pass: every block of the rows of one parity is fitted again while its neighbours stand still.
#pragma once

#include "evaluate.h"
#include "kiln.h"

/// Thread entry.
/// @param threadRecord  a KilnThreadRecord.
void* RunAnOptimisePhaseThread(void* threadRecord);

/// The i-th of `count` columns in the order of a phase: in exchanged pairs, 0, 2, 1, 4, 3 and so on, an even count with its last column
/// last. Most blocks so are visited between neighbours that both were, or both were not.
constexpr int exchangedColumn(int i, int count)
{
	if (i == 0)
	{
		return 0;
	}
	if (i % 2 == 0)
	{
		return i - 1;
	}
	return i + 1 < count ? i + 1 : i;
}

/// The least-squares step of the pair of a block.
struct KilnFit
{
	KilnColourF deltaA = {};
	KilnColourF deltaB = {};
	/// 0 both, 1 only B has influence (or none has), 2 only A, 3 the two are collinear.
	int kind = 0;
};

KilnFit FitOnlyCentralRepPairsToWeights(const KilnKernelTable& kernels, const KilnSettings& settings, const KilnFittingParams& params);

/// Moves x, which has influence, by delta, and lets y, which has little, follow.
void AdjustUnderusedCandidates(const KilnColourF& x, const KilnColourF& y, const KilnColourF& delta, KilnColourF& outX, KilnColourF& outY);

/// By error, then by secondary error: -1, 0 or 1.
int CompareCandidates(const void* a, const void* b);
