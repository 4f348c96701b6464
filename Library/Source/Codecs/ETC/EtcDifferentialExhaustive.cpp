/// @file EtcDifferentialExhaustive.cpp
/// All differential blocks. The colours of both halves are coupled, but only within the range of the delta: the colours that each half may
/// have in a block within the bound are listed first, and pairs are then sums of what is listed. Most blocks have none for one half
/// or the other.
#include <algorithm>
#include <cstdint>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcHalfWalk.h"
#include "Codecs/ETC/EtcSplit.h"

namespace zortexture
{
namespace
{
constexpr int kLevels = 32;

/// The best pair so far, and its split.
struct Pair
{
	unsigned int error;
	unsigned int first = 0; ///< As 5-bit colours in one number.
	unsigned int second = 0;
	bool isFlipped = false;
	bool isFound = false;
};

void unpackColour(unsigned int packed, BaseColour& colour)
{
	colour[0] = static_cast<int>(packed >> 10);
	colour[1] = static_cast<int>(packed >> 5 & 31);
	colour[2] = static_cast<int>(packed & 31);
}

/// The colours of a half by their red and green, each with the begin of its blues and their least error.
struct Rows
{
	unsigned int first = 1; ///< The rows outside have none.
	unsigned int last = 0;
	std::uint16_t begin[kLevels * kLevels + 1];
	unsigned int leastErrors[kLevels * kLevels];
};

void findRows(const HalfColour* colours, unsigned int count, unsigned int none, Rows& rows)
{
	if (count == 0)
	{
		return;
	}
	rows.first = colours[0].colour >> 5;
	rows.last = colours[count - 1].colour >> 5;
	unsigned int next = 0;
	for (unsigned int row = rows.first; row <= rows.last; ++row)
	{
		rows.begin[row] = static_cast<std::uint16_t>(next);
		rows.leastErrors[row] = none;
		for (; next < count && colours[next].colour >> 5 == row; ++next)
		{
			rows.leastErrors[row] = std::min(rows.leastErrors[row], colours[next].error);
		}
	}
	rows.begin[rows.last + 1] = static_cast<std::uint16_t>(next);
}

/// The pairs of a split that are better than the best; equally good ones if they come before it.
class CPairSearch
{
public:
	CPairSearch(const EtcSearchSpace& space, unsigned int count2, bool isFlipped, Pair& best)
	    : m_seconds(space.halfColours[1]), m_isFlipped(isFlipped), m_best(best)
	{
		findRows(m_seconds, count2, kNone, m_rows);
	}

	/// What pairs have to cost less than. One as good as the best of the other split may come before it, one of this split comes later.
	[[nodiscard]] unsigned int limit() const
	{
		return m_best.error + (m_best.isFound && m_best.isFlipped != m_isFlipped ? 1 : 0);
	}

	/// Tries all second colours of a first one. First colours have to come in their order.
	void searchSecondColours(const HalfColour& first)
	{
		BaseColour colour;
		unpackColour(first.colour, colour);
		const auto from = [&colour](unsigned int channel)
		{
			return std::max(colour[channel] + kLeastDelta, 0);
		};
		const auto last = [&colour](unsigned int channel)
		{
			return std::min(colour[channel] + kGreatestDelta, kLevels - 1);
		};
		for (int red = from(0); red <= last(0); ++red)
		{
			for (int green = from(1); green <= last(1); ++green)
			{
				const auto row = static_cast<unsigned int>(red * kLevels + green);
				if (row < m_rows.first || row > m_rows.last || m_rows.leastErrors[row] == kNone ||
				    first.error + m_rows.leastErrors[row] >= limit())
				{
					continue;
				}
				for (unsigned int i = m_rows.begin[row]; i < m_rows.begin[row + 1]; ++i)
				{
					const auto blue = static_cast<int>(m_seconds[i].colour & 31);
					if (blue >= from(2) && blue <= last(2))
					{
						offer(first, m_seconds[i]);
					}
				}
			}
		}
	}

private:
	static constexpr unsigned int kNone = 0xFFFFFFFF;

	void offer(const HalfColour& first, const HalfColour& second)
	{
		const unsigned int error = first.error + second.error;
		const bool isEarlier = (first.colour << 15 | second.colour) < (m_best.first << 15 | m_best.second);
		if (error < m_best.error || (error < limit() && isEarlier))
		{
			m_best = {error, first.colour, second.colour, m_isFlipped, true};
		}
	}

	const HalfColour* m_seconds;
	bool m_isFlipped;
	Pair& m_best;
	Rows m_rows;
};

unsigned int listColours(const HalfWalk& walk, EtcSearchSpace& space, HalfColour* found)
{
	return withSimdLevel([&](auto level) { return walkHalf<level>(space, walk, found); });
}

/// The least error of a half, as far as it is below the limit.
unsigned int leastError(EtcHalf half, unsigned int limit, unsigned int seedError, EtcSearchSpace& space)
{
	HalfColour* found = space.halfColours[0];
	const unsigned int count = listColours({half, std::min(limit, seedError), true}, space, found);
	return count > 0 ? found[count - 1].error : std::min(limit, seedError);
}

/// What a split needs to be searched: the least error of both halves, by themselves.
struct SplitBounds
{
	EtcHalf half1;
	EtcHalf half2;
	unsigned int least1;
	unsigned int least2;
};

/// The pairs of a split that cost less than the limit.
void searchPairs(const SplitBounds& split, unsigned int limit, EtcSearchSpace& space, Pair& best)
{
	auto& [colours1, colours2] = space.halfColours;
	const unsigned int count1 = listColours({split.half1, limit - split.least2, false}, space, colours1);
	const unsigned int count2 = listColours({split.half2, limit - split.least1, false}, space, colours2);
	CPairSearch pairs(space, count2, split.half1 == kTopHalf, best);
	for (unsigned int i = 0; i < count1; ++i)
	{
		if (colours1[i].error + split.least2 < pairs.limit())
		{
			pairs.searchSecondColours(colours1[i]);
		}
	}
}

void searchSplit(bool isFlipped, const EtcHalves& seed, EtcSearchSpace& space, Pair& best)
{
	SplitBounds split{isFlipped ? kTopHalf : kLeftHalf, isFlipped ? kBottomHalf : kRightHalf, 0, 0};
	const unsigned int limit = best.error + (best.isFound ? 1 : 0); // see CPairSearch::limit
	const unsigned int bound2 = lowerBoundOfHalf(space, split.half2);
	if (bound2 >= limit)
	{
		return;
	}
	split.least1 = leastError(split.half1, limit - bound2, seed.errors[split.half1], space);
	if (split.least1 + bound2 >= limit)
	{
		return;
	}
	split.least2 = leastError(split.half2, limit - split.least1, seed.errors[split.half2], space);
	if (split.least1 + split.least2 >= limit)
	{
		return;
	}
	// The best pair is mostly not much worse than its halves by themselves, and the lists grow fast with the limit.
	const unsigned int room = limit - split.least1 - split.least2;
	for (const unsigned int part : {room / 6 + 1, room})
	{
		const unsigned int partLimit = split.least1 + split.least2 + std::min(part, room);
		searchPairs(split, partLimit, space, best);
		if (best.error < partLimit)
		{
			return;
		}
	}
}

template<typename Scale, typename Seed>
unsigned int search(Seed&& seed, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	EtcHalves halves;
	const unsigned int seedError = seed(source, width, startX, startY, word1, word2, halves);
	Pair best{std::min(seedError, bound)};
	if (best.error == 0)
	{
		return seedError;
	}
	prepareHalfWalks<Scale>(loadBlockColumns(source, width, startX, startY), 5, space);
	for (const bool isFlipped : {false, true})
	{
		searchSplit(isFlipped, halves, space, best);
	}
	if (!best.isFound)
	{
		return seedError;
	}

	BaseColour first;
	BaseColour second;
	unpackColour(best.first, first);
	unpackColour(best.second, second);
	const auto result = best.isFlipped
	                        ? encodeSplit<Scale, HalfShape::Flipped>(loadSplitTexels<HalfShape::Flipped>(source, width, startX, startY),
	                                                                 ColourMode::Differential, first, second)
	                        : encodeSplit<Scale, HalfShape::Upright>(loadSplitTexels<HalfShape::Upright>(source, width, startX, startY),
	                                                                 ColourMode::Differential, first, second);
	word1 = result.word1;
	word2 = result.word2;
	return result.error;
}
} // namespace

unsigned int compressBlockDifferentialExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                                 unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale>(compressBlockOnlyDiffFlipAverage, source, width, startX, startY, word1, word2, bound, space);
}

unsigned int compressBlockDifferentialExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                           unsigned int startY, unsigned int& word1, unsigned int& word2,
                                                           unsigned int bound, EtcSearchSpace& space)
{
	return search<Perceptual1000Scale>(compressBlockOnlyDiffFlipAveragePerceptual1000, source, width, startX, startY, word1, word2, bound,
	                                   space);
}
} // namespace zortexture
