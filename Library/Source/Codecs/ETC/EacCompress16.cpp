// Encoding of 16-bit values: the channels of the one- and two-channel formats. Every parameter set is tried; what keeps this usable
// is that a set is abandoned within a few texels once a decent one is known, and that a candidate value costs one load.

#include "EacBlock.h"
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

	double least = kWorstError;
	unsigned int bestBase = 0;
	unsigned int bestTable = 0;
	unsigned int bestMultiplier = 0;
	for (unsigned int base = 0; base < 256; ++base)
	{
		for (unsigned int table = 0; table < 16; ++table)
		{
			for (unsigned int multiplier = 0; multiplier < 16; ++multiplier)
			{
				const double error = calcError(texels, 1, 0, 0, 4, base, table, multiplier, least, valueTable, isSigned);
				if (error < least)
				{
					least = error;
					bestBase = base;
					bestTable = table;
					bestMultiplier = multiplier;
				}
			}
		}
	}

	std::uint16_t candidates[8];
	for (unsigned int index = 0; index < 8; ++index)
	{
		candidates[index] = get16bits11bits(static_cast<int>(bestBase), bestTable, bestMultiplier, index, isSigned);
	}
	unsigned int indices[16];
	for (unsigned int number = 0; number < 16; ++number)
	{
		indices[number] = nearestIndex(texels[number % 4 * 4 + number / 4], candidates, isSigned);
	}
	block[0] = static_cast<unsigned char>(isSigned ? bestBase ^ 128 : bestBase);
	block[1] = static_cast<unsigned char>(bestMultiplier * 16 + bestTable);
	packEacIndices(indices, block);
}
} // namespace zortexture
