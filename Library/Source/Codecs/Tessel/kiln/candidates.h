/// @file candidates.h
/// The pairs that were tried for one mode of a block, and which of them remain.
#pragma once

#include "kiln.h"

/// The best pair that came of one seed, and under which flips of the neighbours' hard flags.
struct KilnTrial
{
	KilnCandidate candidate;
	std::uint32_t hardVariant = 0;
};

/// The trials of one mode.
struct KilnTrialList
{
	/// More than all seeds of a mode under all flips.
	static constexpr int kCapacity = 512;

	int count = 0;
	std::array<KilnTrial, kCapacity> trials;
	std::array<KilnTrial, kCapacity> sortScratch;
};

/// Adds a trial; in a full list it replaces the last if it is better.
void addTrial(KilnTrialList& list, const KilnCandidate& candidate, int hardVariant);
/// Sorts by error, then by the error of the block's own area, then by the order of trial.
void sortTrials(KilnTrialList& list);
/// The best of the list so far, null in an empty list.
const KilnTrial* bestTrial(const KilnTrialList& list);
/// Keeps the first `keep` different pairs of a sorted list in a mode's slot.
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
