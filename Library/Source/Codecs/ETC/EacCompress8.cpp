// Encoding of 8-bit values: the alpha half of ETC2 RGBA.

#include <algorithm>
#include <cstdlib>

#include "EacBlock.h"
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

/// The sixteen values in raster order and their rounded mean.
struct Values
{
	int texels[16];
	int average;
};

Values gather(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width)
{
	Values values;
	int sum = 0;
	for (unsigned int i = 0; i < 16; ++i)
	{
		values.texels[i] = source[texelIndex(width, startX + i % 4, startY + i / 4)];
		sum += values.texels[i];
	}
	values.average = (sum + 8) / 16;
	return values;
}

int squareTo(const int* clamped, int entry, int texel)
{
	const int difference = clamped[entry] - texel;
	return difference * difference;
}

/// The squared error of a texel, found by walking the sorted entries on its side of the base until the error stops falling. Clamping
/// and ties can end the walk early, so this may lie above the true least error.
template<typename Search>
int texelError(const int* clamped, const std::array<int, 8>& row, int base, int texel)
{
	if (base >= texel)
	{
		int least = squareTo(clamped, row[0], texel);
		for (unsigned int index = 1; index < 4; ++index)
		{
			const int square = squareTo(clamped, row[index], texel);
			if (square >= least)
			{
				break;
			}
			least = square;
		}
		if constexpr (Search::kSlow)
		{
			least = std::min(least, squareTo(clamped, row[4], texel));
		}
		return least;
	}
	int least = squareTo(clamped, row[7], texel);
	for (unsigned int index = 6; index >= 4; --index)
	{
		const int square = squareTo(clamped, row[index], texel);
		if (square > least)
		{
			break;
		}
		least = square;
	}
	return least;
}

/// The error of all texels, or a partial sum above `bound`.
template<typename Search>
int sumOfErrors(const Values& values, const std::array<int, 8>& row, int base, int bound)
{
	const int* clamped = clamp_table.data() + 255 + base;
	int sum = 0;
	for (const int texel : values.texels)
	{
		sum += texelError<Search>(clamped, row, base, texel);
		if (sum > bound)
		{
			break;
		}
	}
	return sum;
}

/// The best base of a row: each pass looks around what the pass before found, from the mean on. The fast search gives up on bases
/// that cannot beat the best row so far, so the row may end without a base.
template<typename Search>
Best searchRow(const Values& values, const AlphaTable& table, int row, const Best& overall)
{
	Best best;
	best.row = row;
	int centre = values.average;
	for (const Pass& pass : Search::kPasses)
	{
		const int last = clamp(centre + pass.reach);
		for (int base = clamp(centre - pass.reach); base <= last; base += pass.scale)
		{
			const int bound = Search::kSlow ? best.sum : overall.sum;
			const int sum = sumOfErrors<Search>(values, table[static_cast<unsigned int>(row)], base, bound);
			if (sum <= bound && sum < best.sum)
			{
				best.sum = sum;
				best.base = base;
			}
		}
		centre = best.sum < Best().sum ? best.base : centre;
	}
	return best;
}

template<typename Search>
Best searchRows(const Values& values, const AlphaTable& table, int firstRow, int endRow)
{
	Best best;
	for (int row = firstRow; row < endRow && best.sum != 0; ++row)
	{
		const Best candidate = searchRow<Search>(values, table, row, best);
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
	const Best best = searchRows<Fast>(values, table, std::max(approximateRow - 15, 0), std::min(approximateRow + 15, 255));
	writeBlock(values, table, best, block);
}

void compressBlockAlphaSlow(const unsigned char* source, unsigned int startX, unsigned int startY, unsigned int width, unsigned char* block,
                            const AlphaTable& table)
{
	const Values values = gather(source, startX, startY, width);
	writeBlock(values, table, searchRows<Slow>(values, table, 0, 256), block);
}
} // namespace zortexture
