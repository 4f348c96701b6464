#include "candidates.h"

#include <algorithm>
#include <cstring>

#include "optimise.h"

void addTrial(KilnTrialList& list, const KilnCandidate& candidate, int hardVariant)
{
	const auto begin = list.trials.begin();
	const auto end = begin + list.count;
	const auto same = std::find_if(begin, end, [&candidate](const KilnTrial& trial) { return trial.candidate.pair == candidate.pair; });
	const auto place =
	    std::find_if(begin, end, [&candidate](const KilnTrial& trial) { return CompareCandidates(&candidate, &trial.candidate) < 0; });
	if (place > same || place == list.trials.end())
	{
		return;
	}
	// The same pair moves up; else the last one makes room in a full list.
	auto last = same;
	if (same == end)
	{
		list.count = std::min(list.count + 1, kKilnMaxKept);
		last = begin + list.count - 1;
	}
	std::move_backward(place, last, last + 1);
	*place = {candidate, hardVariant};
}

void keepTrials(const KilnTrialList& list, int keep, KilnModeSlot& slot)
{
	slot.count = static_cast<std::uint8_t>(std::min(list.count, keep));
	for (int i = 0; i < slot.count; ++i)
	{
		slot.kept[i] = {list.trials[i].candidate.pair, list.trials[i].candidate.error};
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
