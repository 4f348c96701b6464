// Encoding of 8-bit values: the alpha half of ETC2 RGBA.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "EacBlock.h"
#include "EacDistances.h"
#include "EtcBlock.h"
#include "EtcTables.h"

namespace zortexture
{
namespace
{
/// Bases around a centre are tried at distances of up to `reach`, `scale` apart.
struct Pass
{
	int scale;
	int reach;
};

struct Fast
{
	static constexpr bool kSlow = false;
	static constexpr Pass kPasses[3] = {{16, 64}, {4, 8}, {1, 2}};
};

struct Slow
{
	static constexpr bool kSlow = true;
	static constexpr Pass kPasses[3] = {{32, 128}, {4, 16}, {1, 4}};
};

struct Best
{
	int sum = 1000000000;
	int base = 128;
	int row = -3;
};

/// Rows below have multiplier 0.
constexpr int kFirstSpread = 16;

/// The sixteen values in raster order, their sum and that of their squares, and their rounded mean.
struct Values
{
	std::uint16_t texels[16];
	int sum;
	int sumOfSquares;
	int average;
};

Values gather(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width)
{
	Values values;
	values.sum = 0;
	values.sumOfSquares = 0;
	for (unsigned int i = 0; i < 16; ++i)
	{
		values.texels[i] = source[texelIndex(width, startX + i % 4, startY + i / 4)];
		values.sum += values.texels[i];
		values.sumOfSquares += values.texels[i] * values.texels[i];
	}
	values.average = (values.sum + 8) / 16;
	return values;
}

/// What the steps decode to.
constexpr std::array<std::uint16_t, 256> kBytes = []
{
	std::array<std::uint16_t, 256> bytes{};
	for (unsigned int value = 0; value < 256; ++value)
	{
		bytes[value] = static_cast<std::uint16_t>(value);
	}
	return bytes;
}();

/// What the search asks again and again: the distances from each byte, and lower bounds of the errors of rows. All are of the
/// errors without regard to bases' sides, which are never larger.
template<ESimdLevel level>
class Bounds
{
public:
	explicit Bounds(const Values& values) : distances(values.texels, kBytes.data(), 0, 255)
	{
		std::copy_n(values.texels, 16, texels);
		std::copy_n(values.texels, 16, m_sorted);
		std::sort(m_sorted, m_sorted + 16);
	}

	/// No base of the row has a smaller error: texels further apart than the outermost entries cannot both be met.
	int ofRow(const std::array<int, 8>& row) const
	{
		const int spread = row[7] - row[3];
		int sum = 0;
		for (unsigned int i = 0; i < 8; ++i)
		{
			const int excess = std::max(m_sorted[15 - i] - m_sorted[i] - spread, 0);
			sum += (excess * excess + 1) / 2;
		}
		return sum;
	}

	int ofMultiplier(int multiplier)
	{
		load(multiplier);
		return *std::min_element(m_bounds, m_bounds + multiplier);
	}

	/// The tables that may have an error of at most `limit` with some base, a bit for each. `limit` is at least the bound of the
	/// multiplier.
	unsigned int tablesWithin(int multiplier, int limit)
	{
		load(multiplier);
		// The outermost texels must not lie too far beyond the outermost modifiers.
		const auto slack = static_cast<int>(std::sqrt(static_cast<float>(limit))) + 1;
		const int last = std::min(m_sorted[0] + 15 * multiplier + slack, 255);
		const auto errorsAt = [&](int base, std::int16_t reach)
		{
			int errors[16];
			return EacSums<level>::tableErrors(distances.row(base), multiplier, reach, limit, errors);
		};
		// Neighbouring bases are much alike: five at once are ruled out by the one in their middle, since a value moves by one a base.
		constexpr int kReach = 2;
		unsigned int tables = 0;
		for (int base = std::max(m_sorted[15] - 14 * multiplier - slack, 0); base <= last; base += 2 * kReach + 1)
		{
			if ((errorsAt(std::min(base + kReach, 255), kReach) & ~tables) != 0)
			{
				for (int each = base; each <= std::min(base + 2 * kReach, last); ++each)
				{
					tables |= errorsAt(each, 0);
				}
			}
		}
		return tables;
	}

	/// The row of the least error at a few likely bases: the middle of the texels amid some table's spread.
	int likelyRow() const
	{
		const int range = m_sorted[15] - m_sorted[0];
		const int middle = (m_sorted[15] + m_sorted[0]) / 2;
		int least = std::numeric_limits<int>::max();
		int likely = kFirstSpread;
		for (int multiplier = std::max(range / 29, 1); multiplier <= std::min(range / 17 + 1, 15); ++multiplier)
		{
			int errors[16] = {};
			EacSums<level>::tableErrors(distances.row(std::min(middle + multiplier / 2, 255)), multiplier, 0, 0, errors);
			const int* found = std::min_element(errors, errors + 16);
			if (*found < least)
			{
				least = *found;
				likely = multiplier * 16 + static_cast<int>(found - errors);
			}
		}
		return likely;
	}

	const EacDistances<level> distances;
	EacRow texels;

private:
	void load(int multiplier)
	{
		if (multiplier != m_multiplier)
		{
			distances.boundBases(multiplier, m_sorted[0], m_sorted[15], m_bounds);
			m_multiplier = multiplier;
		}
	}

	int m_sorted[16];
	int m_multiplier = 0;
	int m_bounds[15] = {};
};

int squareTo(const int* clamped, int entry, int texel)
{
	const int difference = clamped[entry] - texel;
	return difference * difference;
}

/// As many bases as a pass has at most.
constexpr unsigned int kMostBases = 9;

/// The best base of a row: each pass looks around what the pass before found, from the mean on. The fast search gives up on bases
/// that cannot beat the best row so far, so the row may end without a base. `fillErrors(bases, errors)` fills the errors of all bases.
template<typename Search, typename FillErrors>
Best searchRow(int average, int row, const Best& overall, FillErrors&& fillErrors)
{
	Best best;
	best.row = row;
	int centre = average;
	for (const Pass& pass : Search::kPasses)
	{
		const int first = clamp(centre - pass.reach);
		const EacBases bases = {first, pass.scale, static_cast<unsigned int>((clamp(centre + pass.reach) - first) / pass.scale) + 1};
		int errors[kMostBases] = {};
		fillErrors(bases, errors);
		// The least, the first on a tie: the number stands below the error.
		int least = errors[0] * 16;
		for (unsigned int i = 1; i < bases.count; ++i)
		{
			least = std::min(least, errors[i] * 16 + static_cast<int>(i));
		}
		const int bound = Search::kSlow ? best.sum - 1 : std::min(best.sum - 1, overall.sum);
		if (least / 16 <= bound)
		{
			best.sum = least / 16;
			best.base = bases.first + least % 16 * bases.step;
		}
		centre = best.sum < Best().sum ? best.base : centre;
	}
	return best;
}

/// The rows without spread are all alike, and the best of their bases is the mean.
template<typename Search>
Best searchWithoutSpread(const Values& values, int row)
{
	return searchRow<Search>(values.average, row, Best(),
	                         [&](const EacBases& bases, int* errors)
	                         {
		                         for (unsigned int i = 0; i < bases.count; ++i)
		                         {
			                         const int base = bases.first + static_cast<int>(i) * bases.step;
			                         errors[i] = base * (16 * base - 2 * values.sum) + values.sumOfSquares;
		                         }
	                         });
}

template<typename Search, ESimdLevel level>
Best searchSpread(const Bounds<level>& bounds, const Values& values, const AlphaTable& table, int row, const Best& overall)
{
	const std::array<int, 8>& entries = table[static_cast<unsigned int>(row)];
	return searchRow<Search>(
	    values.average, row, overall,
	    [&](const EacBases& bases, int* errors)
	    { EacSums<level>::baseErrors(bounds.distances.row(bases.first), bounds.texels, entries.data(), Search::kSlow, bases, errors); });
}

/// The best of some rows, in their order: what the fast search finds in a row depends on those before it.
template<ESimdLevel level>
Best searchInOrder(const Values& values, const AlphaTable& table, int firstRow, int endRow)
{
	const Best first = firstRow < kFirstSpread ? searchWithoutSpread<Fast>(values, firstRow) : Best();
	if (first.sum == 0 || endRow <= kFirstSpread)
	{
		return first;
	}
	Best best = first;
	Bounds<level> bounds(values);
	for (int row = std::max(firstRow, kFirstSpread); row < endRow && best.sum != 0; ++row)
	{
		if (bounds.ofRow(table[static_cast<unsigned int>(row)]) >= best.sum || bounds.ofMultiplier(row / 16) >= best.sum)
		{
			continue;
		}
		const Best candidate = searchSpread<Fast>(bounds, values, table, row, best);
		best = candidate.sum < best.sum ? candidate : best;
	}
	return best;
}

/// The best of all rows, the first on a tie. Rows do not depend on each other, so that the likely one is searched first, and then those
/// that bounds do not rule out.
template<ESimdLevel level>
Best searchAll(const Values& values, const AlphaTable& table)
{
	Best best = searchWithoutSpread<Slow>(values, 0);
	if (best.sum == 0)
	{
		return best;
	}
	Bounds<level> bounds(values);
	const auto search = [&](int row)
	{
		const Best candidate = searchSpread<Slow>(bounds, values, table, row, best);
		if (candidate.sum < best.sum || (candidate.sum == best.sum && row < best.row))
		{
			best = candidate;
		}
	};
	const int likely = bounds.likelyRow();
	search(likely);
	for (int multiplier = 1; multiplier < 16; ++multiplier)
	{
		if (bounds.ofMultiplier(multiplier) > best.sum)
		{
			continue;
		}
		unsigned int tables = bounds.tablesWithin(multiplier, best.sum);
		for (; tables != 0; tables &= tables - 1)
		{
			const int row = multiplier * 16 + std::countr_zero(tables);
			if (row != likely && bounds.ofRow(table[static_cast<unsigned int>(row)]) <= best.sum)
			{
				search(row);
			}
		}
	}
	return best;
}

/// Writes the block; every texel takes the nearest of all eight entries, the first on a tie.
void writeBlock(const Values& values, const AlphaTable& table, const Best& best, unsigned char* block)
{
	const int* clamped = clamp_table.data() + 255 + best.base;
	const std::array<int, 8>& row = table[static_cast<unsigned int>(best.row)];
	unsigned int indices[16];
	for (unsigned int number = 0; number < 16; ++number)
	{
		const int texel = values.texels[number % 4 * 4 + number / 4];
		int least = 1000000;
		indices[number] = 0;
		for (unsigned int index = 0; index < 8; ++index)
		{
			const int square = squareTo(clamped, row[index], texel);
			if (square < least)
			{
				least = square;
				indices[number] = index;
			}
		}
	}
	block[0] = static_cast<unsigned char>(best.base);
	block[1] = static_cast<unsigned char>(best.row);
	packEacIndices(indices, block);
}
} // namespace

void compressBlockAlphaFast(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width, unsigned char* block,
                            const AlphaTable& table)
{
	const Values values = gather(source, startX, startY, width);
	int maxDistance = 0;
	for (const int texel : values.texels)
	{
		maxDistance = std::max(maxDistance, std::abs(texel - values.average));
	}
	// The row whose spread fits the largest distance from the mean: rows grow roughly in spread.
	const int approximateRow = std::min(maxDistance * 255 / 160 - 4, 255);
	const int first = std::max(approximateRow - 15, 0);
	const int end = std::min(approximateRow + 15, 255);
	const Best best = withSimdLevel([&](auto level) { return searchInOrder<level>(values, table, first, end); });
	writeBlock(values, table, best, block);
}

void compressBlockAlphaSlow(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width, unsigned char* block,
                            const AlphaTable& table)
{
	const Values values = gather(source, startX, startY, width);
	const Best best = withSimdLevel([&](auto level) { return searchAll<level>(values, table); });
	writeBlock(values, table, best, block);
}
} // namespace zortexture
