#include "candidates.h"

#include <cstddef>
#include <cstring>

#include "KilnNumerics.h"
#include "optimise.h"

static_assert(offsetof(KilnTrial, candidate) == 0, "trials are compared as candidates");

void addTrial(KilnTrialList& list, const KilnCandidate& candidate, int hardVariant)
{
	const KilnTrial trial = {candidate, static_cast<std::uint32_t>(hardVariant)};
	if (list.count < KilnTrialList::kCapacity)
	{
		list.trials[list.count++] = trial;
	}
	else if (CompareCandidates(&trial, &list.trials.back()) < 0)
	{
		list.trials.back() = trial;
	}
}

void sortTrials(KilnTrialList& list)
{
	zormergesort(list.trials.data(), list.sortScratch.data(), static_cast<std::size_t>(list.count), sizeof(KilnTrial), CompareCandidates);
}

const KilnTrial* bestTrial(const KilnTrialList& list)
{
	const KilnTrial* best = nullptr;
	for (int i = 0; i < list.count; ++i)
	{
		if (best == nullptr || CompareCandidates(&list.trials[i], best) < 0)
		{
			best = &list.trials[i];
		}
	}
	return best;
}

void keepTrials(const KilnTrialList& list, int keep, KilnModeSlot& slot)
{
	slot.count = 0;
	for (int i = 0; i < list.count && slot.count < keep; ++i)
	{
		const KilnCandidate& candidate = list.trials[i].candidate;
		bool known = false;
		for (int j = 0; j < slot.count; ++j)
		{
			known = known || slot.kept[j].pair == candidate.pair;
		}
		if (!known)
		{
			slot.kept[slot.count++] = candidate;
		}
	}
}

void KilnPairSet::clear()
{
	m_count = 0;
	if (++m_round == 0)
	{
		m_entries.fill({});
		m_round = 1;
	}
}

bool KilnPairSet::insert(const KilnPair& pair)
{
	std::uint32_t a = 0;
	std::uint32_t b = 0;
	std::memcpy(&a, pair.a.data(), sizeof(a));
	std::memcpy(&b, pair.b.data(), sizeof(b));
	const std::uint64_t key = static_cast<std::uint64_t>(b) << 32 | a;

	std::uint32_t place = static_cast<std::uint32_t>((key * 0x9E3779B97F4A7C15U) >> 32) % kSize;
	while (m_entries[place].round == m_round)
	{
		if (m_entries[place].key == key)
		{
			return false;
		}
		place = (place + 1) % kSize;
	}
	// Some places stay free, so that the walk above ends.
	if (m_count < kSize / 4 * 3)
	{
		m_entries[place] = {key, m_round};
		++m_count;
	}
	return true;
}
