// Encoding of 16-bit values: the channels of the one- and two-channel formats. The result is that of trying every parameter set in
// order, but most sets are never looked at: a lower bound of their error shows that they cannot win.

#include <algorithm>
#include <cmath>
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

/// The search of one block. Multipliers from 1 on only reach values that lie whole steps apart (a step is 8 of the 2048 values), the
/// same ones for all of them, so that the distances of the texels from these are worked out once.
class Search
{
public:
	struct Parameters
	{
		unsigned int base;
		unsigned int table;
		unsigned int multiplier;
	};

	Search(const std::uint16_t (&texels)[16], bool isSigned, const std::uint16_t* valueTable)
	    : m_texels(texels), m_isSigned(isSigned), m_valueTable(valueTable),
	      m_distances(texels, -1, 256, [this](int step) { return valueOf(step); })
	{
		for (unsigned int i = 0; i < 16; ++i)
		{
			m_ordered[i] = ordered(texels[i], isSigned);
		}
		const auto ends = std::minmax_element(m_ordered, m_ordered + 16);
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
	static constexpr int kStepCount = EacDistances::kLastStep - EacDistances::kFirstStep + 1;
	static constexpr int kUnreachable = std::numeric_limits<int>::max() / 2;

	std::uint16_t valueOf(int step) const
	{
		// Table 13 holds the modifiers 0 and -1; a base just inside reaches the ends, where it is clamped.
		if (step <= 0)
		{
			return m_valueTable[getPremulIndex(0, 13, step < 0 || m_isSigned ? 15 : 1, step < 0 || m_isSigned ? 3 : 4)];
		}
		return step > 255 ? m_valueTable[getPremulIndex(255, 13, 15, 7)]
		                  : m_valueTable[getPremulIndex(static_cast<std::uint32_t>(step), 13, 1, 4)];
	}

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
		if (error >= std::int64_t{EacDistances::kFar} * EacDistances::kFar)
		{
			error =
			    static_cast<std::int64_t>(calcError(m_texels, 1, 0, 0, 4, base, table, multiplier, kWorstError, m_valueTable, m_isSigned));
			if (error > m_bestError || (error == m_bestError && set >= m_bestSet))
			{
				return;
			}
		}
		m_bestError = error;
		m_bestRoot = std::sqrt(static_cast<double>(error));
		m_bestSet = set;
	}

	/// Returns the error, which may be too small where it is not exact.
	int tryCoarse(unsigned int base, unsigned int table, unsigned int multiplier)
	{
		const std::array<int, 8>& offsets = alphaTable[multiplier * 16 + table];
		const std::int16_t* centre = m_distances.row(centreOf(base));
		const auto at = [&](unsigned int index)
		{
			return centre + std::ptrdiff_t{offsets[index]} * 16;
		};
		const std::int16_t* const a = at(0);
		const std::int16_t* const b = at(1);
		const std::int16_t* const c = at(2);
		const std::int16_t* const d = at(3);
		const std::int16_t* const e = at(4);
		const std::int16_t* const f = at(5);
		const std::int16_t* const g = at(6);
		const std::int16_t* const h = at(7);
		int sum = 0;
		for (unsigned int i = 0; i < 16; ++i)
		{
			const std::int16_t least =
			    std::min(std::min(std::min(a[i], b[i]), std::min(c[i], d[i])), std::min(std::min(e[i], f[i]), std::min(g[i], h[i])));
			sum += least * least;
		}
		consider(sum, base, table, multiplier);
		return sum;
	}

	/// How many of the bases that follow one of this error cannot win. From base to base a value moves by at most 257, and so the root
	/// of the sum of sixteen squares by four times that.
	int hopeless(int error) const
	{
		constexpr double kSlope = 4 * 257;
		constexpr double kRounding = 1e-6;
		return std::max(static_cast<int>((std::sqrt(static_cast<double>(error)) - m_bestRoot) * (1 / kSlope) - kRounding), 0);
	}

	void tryFinest(unsigned int base)
	{
		for (unsigned int table = 0; table < 16; ++table)
		{
			const std::uint16_t* values = m_valueTable + getPremulIndex(base, table, 0, 0);
			std::int16_t least[16];
			std::fill_n(least, 16, EacDistances::kFar);
			for (unsigned int index = 0; index < 8; ++index)
			{
				std::int16_t distances[16];
				EacDistances::fill(m_texels, values[index], distances);
				for (unsigned int i = 0; i < 16; ++i)
				{
					least[i] = std::min(least[i], distances[i]);
				}
			}
			int sum = 0;
			for (const std::int16_t distance : least)
			{
				sum += distance * distance;
			}
			consider(sum, base, table, 0);
		}
	}

	/// A good first guess: for each table, the multipliers whose spread fits that of the texels.
	void seed()
	{
		const int middle = (m_low + m_high) / 2;
		for (unsigned int table = 0; table < 16; ++table)
		{
			const int spread = -2 * alphaBase[table][0] - 1; // between the outermost modifiers, in steps
			const int fitting = (m_high - m_low) / (spread * 256);
			for (int multiplier = std::max(fitting, 1); multiplier <= std::min(fitting + 1, 15); ++multiplier)
			{
				const int base = (middle + multiplier * 128) / 256;
				tryCoarse(static_cast<unsigned int>(std::min(base, 255)), table, static_cast<unsigned int>(multiplier));
			}
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
		const auto square = [](int distance, int toEnd)
		{
			const int nearest = std::min({distance, toEnd, int{EacDistances::kFar}});
			return nearest * nearest;
		};
		m_endBelow = enclosingLow() - EacDistances::kFirstStep;
		std::fill_n(m_below, m_endBelow, 0);
		for (; m_endBelow < kStepCount; ++m_endBelow)
		{
			const int value = orderedStep(m_endBelow);
			int sum = 0;
			for (unsigned int i = 0; i < 16 && value > m_low; ++i)
			{
				sum += m_ordered[i] < value ? square(value - m_ordered[i], m_ordered[i] + 1) : 0;
			}
			if (sum > m_bestError)
			{
				break;
			}
			m_below[m_endBelow] = sum;
		}
		m_beginAbove = enclosingHigh() - EacDistances::kFirstStep;
		std::fill(m_above + m_beginAbove, m_above + kStepCount, 0);
		for (; m_beginAbove > 0; --m_beginAbove)
		{
			const int value = orderedStep(m_beginAbove - 1);
			int sum = 0;
			for (unsigned int i = 0; i < 16 && value < m_high; ++i)
			{
				sum += m_ordered[i] > value ? square(m_ordered[i] - value, 65536 - m_ordered[i]) : 0;
			}
			if (sum > m_bestError)
			{
				break;
			}
			m_above[m_beginAbove - 1] = sum;
		}
	}

	int orderedStep(int row) const
	{
		return ordered(valueOf(std::clamp(row + EacDistances::kFirstStep, -1, 256)), m_isSigned);
	}

	/// The least error of any values from step `first` to `last`.
	int outside(int first, int last) const
	{
		return m_below[first - EacDistances::kFirstStep] + m_above[last - EacDistances::kFirstStep];
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
		const int first = std::max(m_beginAbove + EacDistances::kFirstStep - 14 * multiplier - 1, 0);
		const int last = std::min(m_endBelow + EacDistances::kFirstStep + 15 * multiplier, lastBase());
		if (first > last)
		{
			return;
		}
		int bounds[15];
		m_distances.boundBases(multiplier, enclosingLow(), enclosingHigh(), bounds);
		if (*std::min_element(bounds, bounds + multiplier) > m_bestError)
		{
			return;
		}
		int nextBase[16] = {};
		for (int base = first; base <= last && base <= lastBase(); ++base)
		{
			const int centre = centreOf(static_cast<unsigned int>(base));
			const int error =
			    std::max(bounds[EacDistances::boundOf(centre, multiplier)], outside(centre - 15 * multiplier, centre + 14 * multiplier));
			if (mayWin(error, static_cast<unsigned int>(base), static_cast<unsigned int>(multiplier)))
			{
				searchTables(static_cast<unsigned int>(base), multiplier, nextBase);
			}
		}
	}

	/// `nextBase` holds the first base that may win, for each table.
	void searchTables(unsigned int base, int multiplier, int (&nextBase)[16])
	{
		const int* below = m_below + centreOf(base) - EacDistances::kFirstStep;
		const int* above = m_above + centreOf(base) - EacDistances::kFirstStep - multiplier;
		unsigned int tables[16];
		unsigned int count = 0;
		for (unsigned int table = 0; table < 16; ++table)
		{
			// Tables come in the order of their reach: if this one is too narrow, the others are.
			const int reach = -alphaBase[table][0] * multiplier;
			if (below[-reach] + above[reach] > m_bestError)
			{
				break;
			}
			tables[count] = table;
			count += static_cast<int>(base) >= nextBase[table] ? 1 : 0;
		}
		for (unsigned int i = 0; i < count; ++i)
		{
			const int error = tryCoarse(base, tables[i], static_cast<unsigned int>(multiplier));
			nextBase[tables[i]] = static_cast<int>(base) + 1 + hopeless(error);
		}
	}

	const std::uint16_t (&m_texels)[16];
	bool m_isSigned;
	const std::uint16_t* m_valueTable;
	int m_ordered[16];
	int m_low;
	int m_high;
	EacDistances m_distances;
	int m_below[kStepCount];
	int m_above[kStepCount];
	int m_endBelow = 0;
	int m_beginAbove = 0;
	std::int64_t m_bestError = static_cast<std::int64_t>(kWorstError);
	double m_bestRoot = 1048576.0;
	unsigned int m_bestSet = std::numeric_limits<unsigned int>::max();
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

	const Search::Parameters best = Search(texels, isSigned, valueTable).run();
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
