// Encoding of 8-bit values: the alpha half of ETC2 RGBA.

#include <algorithm>
#include <cstdlib>

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

/// What the search asks again and again: the distances from each byte, and lower bounds of the errors of rows. All are of the
/// errors without regard to bases' sides, which are never larger.
template<ESimdLevel level>
class Bounds
{
public:
	explicit Bounds(const Values& values) : distances(values.texels, 0, 255, [](int value) { return static_cast<std::uint16_t>(value); })
	{
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

	const EacDistances<level> distances;

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
	int m_bounds[15];
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
		int errors[kMostBases];
		fillErrors(bases, errors);
		for (unsigned int i = 0; i < bases.count; ++i)
		{
			const int bound = Search::kSlow ? best.sum - 1 : std::min(best.sum - 1, overall.sum);
			if (errors[i] <= bound)
			{
				best.sum = errors[i];
				best.base = bases.first + static_cast<int>(i) * bases.step;
			}
		}
		centre = best.sum < Best().sum ? best.base : centre;
	}
	return best;
}

template<typename Search, ESimdLevel level>
Best searchRows(const Values& values, const AlphaTable& table, int firstRow, int endRow)
{
	Best best;
	if (firstRow < kFirstSpread)
	{
		// The rows without spread are all alike. The first one finds the mean, which the others cannot beat.
		best = searchRow<Search>(values.average, firstRow, best,
		                         [&](const EacBases& bases, int* errors)
		                         {
			                         for (unsigned int i = 0; i < bases.count; ++i)
			                         {
				                         const int base = bases.first + static_cast<int>(i) * bases.step;
				                         errors[i] = base * (16 * base - 2 * values.sum) + values.sumOfSquares;
			                         }
		                         });
	}
	if (best.sum == 0 || endRow <= kFirstSpread)
	{
		return best;
	}

	Bounds<level> bounds(values);
	EacRow texels;
	std::copy_n(values.texels, 16, texels);
	for (int row = std::max(firstRow, kFirstSpread); row < endRow && best.sum != 0; ++row)
	{
		const std::array<int, 8>& entries = table[static_cast<unsigned int>(row)];
		if (bounds.ofRow(entries) >= best.sum || bounds.ofMultiplier(row / 16) >= best.sum)
		{
			continue;
		}
		const Best candidate = searchRow<Search>(
		    values.average, row, best,
		    [&](const EacBases& bases, int* errors)
		    { EacSums<level>::baseErrors(bounds.distances.row(bases.first), texels, entries.data(), Search::kSlow, bases, errors); });
		if (candidate.sum < best.sum)
		{
			best = candidate;
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
	const Best best = withSimdLevel([&](auto level) { return searchRows<Fast, level>(values, table, first, end); });
	writeBlock(values, table, best, block);
}

void compressBlockAlphaSlow(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width, unsigned char* block,
                            const AlphaTable& table)
{
	const Values values = gather(source, startX, startY, width);
	const Best best = withSimdLevel([&](auto level) { return searchRows<Slow, level>(values, table, 0, 256); });
	writeBlock(values, table, best, block);
}
} // namespace zortexture
