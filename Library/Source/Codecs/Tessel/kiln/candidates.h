/// @file candidates.h
/// The pairs that were tried for one mode of a block, and which of them remain.
#pragma once

#include "kiln.h"

/// The best pair that came of one seed, and under which flips of the neighbours' hard flags.
struct KilnTrial
{
	KilnCandidate candidate;
	int hardVariant = 0;
};

/// The best trials of one mode, all of different pairs: by error, then by the error of the block's own area, then by the order of trial.
struct KilnTrialList
{
	int count = 0;
	std::array<KilnTrial, kKilnMaxKept> trials;
};

void addTrial(KilnTrialList& list, const KilnCandidate& candidate, int hardVariant);
/// Keeps the first `keep` pairs in a mode's slot.
void keepTrials(const KilnTrialList& list, int keep, KilnModeSlot& slot);

/// The pairs that have been evaluated since the set was cleared.
class KilnPairSet
{
public:
	void clear();
	/// @return whether the pair is new. A full set takes every pair for new.
	bool insert(const KilnPair& pair);

private:
	static constexpr std::uint32_t kSize = 2048;
	struct Entry
	{
		std::uint64_t key = 0;
		std::uint32_t round = 0;
	};

	std::array<Entry, kSize> m_entries;
	/// Entries of an earlier round are empty.
	std::uint32_t m_round = 0;
	std::uint32_t m_count = 0;
};
