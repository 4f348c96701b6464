// Encoding of 16-bit values: the channels of the one- and two-channel formats. The result is that of trying every parameter set in
// order, but most sets are never looked at: a lower bound of their error shows that they cannot win.

#include <algorithm>
#include <bit>
#include <iterator>
#include <limits>

#include "EacBlock.h"
#include "EacDistances.h"
#include "EtcBlock.h"

namespace zortexture
{
namespace
{
constexpr double kWorstError = 1099511627776.0;   // 2^40
constexpr double kAbandoned = 1073741824.0;       // 2^30
constexpr std::int64_t kWorstSquare = 4228250625; // 65025 squared

/// The index of the candidate nearest to a value, the lowest on a tie; here differences do not wrap.
unsigned int nearestIndex(std::uint16_t texel, const std::uint16_t (&candidates)[8], bool isSigned)
{
	std::int64_t least = kWorstSquare;
	unsigned int nearest = 0;
	for (unsigned int index = 0; index < 8; ++index)
	{
		const std::int64_t difference =
		    isSigned ? static_cast<std::int16_t>(texel) - static_cast<std::int16_t>(candidates[index]) : texel - candidates[index];
		if (difference * difference < least)
		{
			least = difference * difference;
			nearest = index;
		}
	}
	return nearest;
}

/// A texel or value in the order of magnitude: signed patterns start with the most negative.
int ordered(std::uint16_t value, bool isSigned)
{
	return isSigned ? value ^ 0x8000 : value;
}

/// What the steps decode to: those that bases lie at, and one more at each end, where values are clamped.
class StepValues
{
public:
	static constexpr int kFirst = -1;
	static constexpr int kLast = 256;

	explicit StepValues(bool isSigned)
	{
		for (int step = kFirst; step <= kLast; ++step)
		{
			// Table 13 holds the modifiers -1 at index 3 and 0 at index 4. Signed values of base 0 lie a step higher.
			const bool isClamped = step < (isSigned ? 1 : 0);
			const std::uint16_t value = isClamped     ? get16bits11bits(0, 13, 15, 3, isSigned)
			                            : step == 256 ? get16bits11bits(255, 13, 15, 7, isSigned)
			                                          : get16bits11bits(step, 13, 1, 4, isSigned);
			values[step - kFirst] = value;
			m_ordered[step - kFirst] = ordered(value, isSigned);
		}
	}

	/// In the order of magnitude, for any step.
	int orderedAt(int step) const
	{
		return m_ordered[std::clamp(step, kFirst, kLast) - kFirst];
	}

	std::uint16_t values[kLast - kFirst + 1];

private:
	int m_ordered[kLast - kFirst + 1];
};

const StepValues& stepValues(bool isSigned)
{
	static const StepValues both[2] = {StepValues(false), StepValues(true)};
	return both[isSigned ? 1 : 0];
}

/// The parameters of a block.
struct Parameters
{
	unsigned int base;
	unsigned int table;
	unsigned int multiplier;
};

/// The search of one block. Multipliers from 1 on only reach values that lie whole steps apart (a step is 8 of the 2048 values), the
/// same ones for all of them, so that the distances of the texels from these are worked out once.
template<ESimdLevel level>
class Search
{
public:
	Search(const std::uint16_t (&texels)[16], bool isSigned, const std::uint16_t* valueTable)
	    : m_texels(texels), m_valueTable(valueTable), m_steps(stepValues(isSigned)),
	      m_distances(texels, m_steps.values, StepValues::kFirst, StepValues::kLast), m_isSigned(isSigned)
	{
		for (unsigned int i = 0; i < 16; ++i)
		{
			m_ordered[i] = ordered(texels[i], isSigned);
		}
		const auto ends = std::minmax_element(std::begin(m_ordered), std::end(m_ordered));
		m_low = *ends.first;
		m_high = *ends.second;
	}

	/// The set of the least error, the first of those in the order of bases, tables and multipliers.
	Parameters run()
	{
		seed();
		boundRanges();
		for (unsigned int base = 0; base < 256; ++base)
		{
			// The finest spread stays within two steps of the base.
			const int centre = centreOf(base);
			if (mayWin(outside(centre - 2, centre + 2), base, 0))
			{
				tryFinest(base);
			}
		}
		const int likely = static_cast<int>(m_bestSet & 15);
		if (likely != 0)
		{
			searchMultiplier(likely);
		}
		for (int multiplier = 1; multiplier < 16; ++multiplier)
		{
			if (multiplier != likely)
			{
				searchMultiplier(multiplier);
			}
		}
		return {m_bestSet >> 8, (m_bestSet >> 4) & 15, m_bestSet & 15};
	}

private:
	using Distances = EacDistances<level>;
	static constexpr int kFirstStep = Distances::kFirstStep;
	static constexpr int kStepCount = Distances::kStepCount;
	static constexpr int kReach = 2;
	static constexpr int kUnreachable = std::numeric_limits<int>::max() / 2;

	/// Steps between whose values all texels lie, whatever the rounding of the values.
	int enclosingLow() const
	{
		return m_low / 256 - 1;
	}
	int enclosingHigh() const
	{
		return m_high / 256 + 2;
	}

	/// The step at which a base lies: signed, the most negative base counts as the one above it.
	int centreOf(unsigned int base) const
	{
		return m_isSigned && base == 0 ? 1 : static_cast<int>(base);
	}

	static unsigned int setOf(unsigned int base, unsigned int table, unsigned int multiplier)
	{
		return getPremulIndex(base, table, multiplier, 0) >> 3;
	}

	/// Whether a set of this error or more, in its order from (base, table 0) on, could still replace the best.
	bool mayWin(std::int64_t error, unsigned int base, unsigned int multiplier) const
	{
		return error < m_bestError || (error == m_bestError && setOf(base, 0, multiplier) < m_bestSet);
	}

	/// A base above that of a set without error cannot win.
	int lastBase() const
	{
		return m_bestError == 0 ? static_cast<int>(m_bestSet >> 8) : 255;
	}

	/// Takes a set if it is the best so far; `error` may be too small where it is not exact.
	void consider(std::int64_t error, unsigned int base, unsigned int table, unsigned int multiplier)
	{
		const unsigned int set = setOf(base, table, multiplier);
		if (error > m_bestError || (error == m_bestError && set >= m_bestSet))
		{
			return;
		}
		if (error >= std::int64_t{kEacFar} * kEacFar)
		{
			error =
			    static_cast<std::int64_t>(calcError(m_texels, 1, 0, 0, 4, base, table, multiplier, kWorstError, m_valueTable, m_isSigned));
			if (error > m_bestError || (error == m_bestError && set >= m_bestSet))
			{
				return;
			}
		}
		m_bestError = error;
		m_bestSet = set;
	}

	/// The best error, as far as sums can reach.
	int limit() const
	{
		return static_cast<int>(std::min<std::int64_t>(m_bestError, std::numeric_limits<int>::max()));
	}

	/// Whether any table could win with a base up to kReach from this one. From base to base a value moves by at most 257.
	bool isHopefulAround(unsigned int base, int multiplier) const
	{
		int errors[16];
		return EacSums<level>::tableErrors(m_distances.row(centreOf(base)), multiplier, kReach * 257, limit(), errors) != 0;
	}

	/// All tables.
	void tryCoarse(unsigned int base, int multiplier)
	{
		int errors[16];
		unsigned int within = EacSums<level>::tableErrors(m_distances.row(centreOf(base)), multiplier, 0, limit(), errors);
		for (; within != 0; within &= within - 1)
		{
			const auto table = static_cast<unsigned int>(std::countr_zero(within));
			consider(errors[table], base, table, static_cast<unsigned int>(multiplier));
		}
	}

	void tryFinest(unsigned int base)
	{
		EacRow rows[8];
		for (unsigned int table = 0; table < 16; ++table)
		{
			EacSums<level>::fillRows(m_texels, m_valueTable + getPremulIndex(base, table, 0, 0), 8, rows);
			int error = 0;
			EacSums<level>::leastErrors(rows, 0, 7, 1, rows[0], rows[0], &error);
			consider(error, base, table, 0);
		}
	}

	/// A good first guess: the multipliers by which some table's spread fits that of the texels.
	void seed()
	{
		const int middle = (m_low + m_high) / 2;
		const auto fitting = [&](unsigned int table)
		{
			return (m_high - m_low) / ((-2 * alphaBase[table][0] - 1) * 256); // by the steps between the outermost modifiers
		};
		const int last = std::min(fitting(15) + 1, 15);
		for (int multiplier = std::max(fitting(0), 1); multiplier <= last; ++multiplier)
		{
			tryCoarse(static_cast<unsigned int>(std::min((middle + multiplier * 128) / 256, 255)), multiplier);
		}
		if (m_high - m_low < 8 * 256)
		{
			tryFinest(static_cast<unsigned int>(middle / 256));
		}
	}

	/// Fills the errors that texels below (above) a step make if no value lies beyond it, as far as these can win. Nearer values across
	/// the wrap are no nearer than the end of the range.
	void boundRanges()
	{
		std::fill_n(m_below, kStepCount, kUnreachable);
		std::fill_n(m_above, kStepCount, kUnreachable);
		EacRow texels;
		EacRow toFirst;
		EacRow toLast;
		for (unsigned int i = 0; i < 16; ++i)
		{
			texels[i] = static_cast<std::int16_t>(m_ordered[i] - 32768);
			toFirst[i] = static_cast<std::int16_t>(std::min(m_ordered[i] + 1, int{kEacFar}));
			toLast[i] = static_cast<std::int16_t>(std::min(65536 - m_ordered[i], int{kEacFar}));
		}
		const auto beyond = [&](int row, const EacRow& ends, bool isAbove)
		{
			const auto value = static_cast<std::int16_t>(orderedStep(row) - 32768);
			return EacSums<level>::errorBeyond(*m_distances.row(row + kFirstStep), ends, texels, value, isAbove);
		};
		m_endBelow = enclosingLow() - kFirstStep;
		std::fill_n(m_below, m_endBelow, 0);
		for (; m_endBelow < kStepCount; ++m_endBelow)
		{
			const int error = beyond(m_endBelow, toFirst, false);
			if (error > m_bestError)
			{
				break;
			}
			m_below[m_endBelow] = error;
		}
		m_beginAbove = enclosingHigh() - kFirstStep;
		std::fill(m_above + m_beginAbove, m_above + kStepCount, 0);
		for (; m_beginAbove > 0; --m_beginAbove)
		{
			const int error = beyond(m_beginAbove - 1, toLast, true);
			if (error > m_bestError)
			{
				break;
			}
			m_above[m_beginAbove - 1] = error;
		}
	}

	int orderedStep(int row) const
	{
		return m_steps.orderedAt(row + kFirstStep);
	}

	/// The least error of any values from step `first` to `last`.
	int outside(int first, int last) const
	{
		return m_below[first - kFirstStep] + m_above[last - kFirstStep];
	}

	void searchMultiplier(int multiplier)
	{
		// The bounds were made when less was known.
		while (m_endBelow > 0 && m_below[m_endBelow - 1] > m_bestError)
		{
			--m_endBelow;
		}
		while (m_beginAbove < kStepCount && m_above[m_beginAbove] > m_bestError)
		{
			++m_beginAbove;
		}
		// One base more at the front: the most negative one lies a step higher.
		const int first = std::max(m_beginAbove + kFirstStep - 14 * multiplier - 1, 0);
		const int last = std::min(m_endBelow + kFirstStep + 15 * multiplier, lastBase());
		if (first > last)
		{
			return;
		}
		int bounds[15] = {};
		m_distances.boundBases(multiplier, enclosingLow(), enclosingHigh(), bounds);
		if (*std::min_element(bounds, bounds + multiplier) > m_bestError)
		{
			return;
		}
		unsigned int nextBound = Distances::boundOf(first, multiplier);
		const auto mayWinNext = [&](int base)
		{
			const int centre = centreOf(static_cast<unsigned int>(base));
			const int bound = bounds[centre == base ? nextBound : Distances::boundOf(centre, multiplier)];
			nextBound = nextBound + 1 == static_cast<unsigned int>(multiplier) ? 0 : nextBound + 1;
			const int error = std::max(bound, outside(centre - 15 * multiplier, centre + 14 * multiplier));
			return mayWin(error, static_cast<unsigned int>(base), static_cast<unsigned int>(multiplier));
		};
		for (int base = first; base <= last && base <= lastBase(); ++base)
		{
			if (!mayWinNext(base))
			{
				continue;
			}
			// Few bases win, and neighbours are much alike: several at once are ruled out by the one in their middle.
			int candidates[2 * kReach + 1] = {base};
			unsigned int count = 1;
			const auto middle = static_cast<unsigned int>(std::min(base + kReach, 255));
			for (const int end = std::min(base + 2 * kReach, last); base < end;)
			{
				++base;
				candidates[count] = base;
				count += mayWinNext(base) ? 1 : 0;
			}
			if (count == 1 || isHopefulAround(middle, multiplier))
			{
				for (unsigned int i = 0; i < count; ++i)
				{
					tryCoarse(static_cast<unsigned int>(candidates[i]), multiplier);
				}
			}
		}
	}

	const std::uint16_t (&m_texels)[16];
	const std::uint16_t* m_valueTable;
	const StepValues& m_steps;
	int m_ordered[16];
	int m_low;
	int m_high;
	Distances m_distances;
	int m_below[kStepCount];
	int m_above[kStepCount];
	int m_endBelow = 0;
	int m_beginAbove = 0;
	std::int64_t m_bestError = static_cast<std::int64_t>(kWorstError);
	unsigned int m_bestSet = std::numeric_limits<unsigned int>::max();
	bool m_isSigned;
};
} // namespace

double calcError(const std::uint16_t* source, unsigned int step, unsigned int startX, unsigned int startY, unsigned int width,
                 unsigned int base, unsigned int table, unsigned int multiplier, double bound, const std::uint16_t* valueTable,
                 bool /*isSigned*/)
{
	const std::uint16_t* candidates = valueTable + getPremulIndex(base, table, multiplier, 0);
	std::int64_t sum = 0;
	for (unsigned int y = 0; y < 4; ++y)
	{
		for (unsigned int x = 0; x < 4; ++x)
		{
			const std::uint16_t texel = source[texelIndex(width, startX + x, startY + y) * step];
			std::int64_t least = kWorstSquare;
			for (unsigned int index = 0; index < 8; ++index)
			{
				const std::int64_t difference = static_cast<std::int16_t>(texel - candidates[index]);
				const std::int64_t square = difference * difference;
				least = square < least ? square : least;
			}
			sum += least;
			if (static_cast<double>(sum) >= bound)
			{
				return bound + kAbandoned;
			}
		}
	}
	return static_cast<double>(sum);
}

void compressBlockAlpha16(const std::uint16_t* source, unsigned int step, unsigned int startX, unsigned int startY, unsigned int width,
                          unsigned char* block, bool isSigned, const std::uint16_t* valueTable)
{
	std::uint16_t texels[16];
	for (unsigned int i = 0; i < 16; ++i)
	{
		texels[i] = source[texelIndex(width, startX + i % 4, startY + i / 4) * step];
	}

	const Parameters best = withSimdLevel([&](auto simd) { return Search<simd>(texels, isSigned, valueTable).run(); });
	std::uint16_t candidates[8];
	for (unsigned int index = 0; index < 8; ++index)
	{
		candidates[index] = get16bits11bits(static_cast<int>(best.base), best.table, best.multiplier, index, isSigned);
	}
	unsigned int indices[16];
	for (unsigned int number = 0; number < 16; ++number)
	{
		indices[number] = nearestIndex(texels[number % 4 * 4 + number / 4], candidates, isSigned);
	}
	block[0] = static_cast<unsigned char>(isSigned ? best.base ^ 128 : best.base);
	block[1] = static_cast<unsigned char>(best.multiplier * 16 + best.table);
	packEacIndices(indices, block);
}
} // namespace zortexture
