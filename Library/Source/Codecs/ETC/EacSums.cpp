// The plain forms; EacSums.simd.cpp holds the same with lanes.

#include "EacSums.h"

#include <algorithm>

#include "EacBlock.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kTexels = 16;

/// The error of one texel each by the least of its distances.
class Least
{
public:
	void take(const EacRow& row)
	{
		for (unsigned int i = 0; i < kTexels; ++i)
		{
			m_distances[i] = std::min(m_distances[i], row[i]);
		}
	}
	void shorten(std::int16_t slack)
	{
		for (std::int16_t& distance : m_distances)
		{
			distance = static_cast<std::int16_t>(std::max(distance - slack, 0));
		}
	}
	int sumOfSquares() const
	{
		int sum = 0;
		for (const std::int16_t distance : m_distances)
		{
			sum += distance * distance;
		}
		return sum;
	}
	std::int16_t operator[](unsigned int texel) const
	{
		return m_distances[texel];
	}

private:
	EacRow m_distances = {kEacFar, kEacFar, kEacFar, kEacFar, kEacFar, kEacFar, kEacFar, kEacFar,
	                      kEacFar, kEacFar, kEacFar, kEacFar, kEacFar, kEacFar, kEacFar, kEacFar};
};
} // namespace

template<>
void EacSums<eSimdPlain>::fillRows(const std::uint16_t (&texels)[16], const std::uint16_t* values, unsigned int count, EacRow* rows)
{
	for (unsigned int i = 0; i < count; ++i)
	{
		for (unsigned int texel = 0; texel < kTexels; ++texel)
		{
			const auto difference = static_cast<std::int16_t>(texels[texel] - values[i]);
			rows[i][texel] = static_cast<std::int16_t>(std::min(difference < 0 ? -difference : difference, int{kEacFar}));
		}
	}
}

template<>
void EacSums<eSimdPlain>::leastErrors(const EacRow* rows, int first, int last, int multiplier, const EacRow& end1, const EacRow& end2,
                                      int* errors)
{
	for (int i = 0; i < multiplier; ++i)
	{
		Least least;
		least.take(end1);
		least.take(end2);
		for (int step = first + i; step <= last; step += multiplier)
		{
			least.take(rows[step]);
		}
		errors[i] = least.sumOfSquares();
	}
}

template<>
unsigned int EacSums<eSimdPlain>::tableErrors(const EacRow* centre, int multiplier, std::int16_t slack, int limit, int (&errors)[16])
{
	unsigned int within = 0;
	for (unsigned int table = 0; table < 16; ++table)
	{
		Least least;
		for (unsigned int index = 0; index < 8; ++index)
		{
			least.take(centre[alphaModifier(table, index) * multiplier]);
		}
		least.shorten(slack);
		errors[table] = least.sumOfSquares();
		within |= (errors[table] <= limit ? 1U : 0U) << table;
	}
	return within;
}

template<>
int EacSums<eSimdPlain>::errorBeyond(const EacRow& row, const EacRow& ends, const EacRow& texels, std::int16_t value, bool isAbove)
{
	int sum = 0;
	for (unsigned int i = 0; i < kTexels; ++i)
	{
		if (isAbove ? texels[i] > value : texels[i] < value)
		{
			const int distance = std::min(row[i], ends[i]);
			sum += distance * distance;
		}
	}
	return sum;
}

template<>
void EacSums<eSimdPlain>::baseErrors(const EacRow* centre, const EacRow& texels, const int* offsets, bool isFifthForAll,
                                     const EacBases& bases, int* errors)
{
	for (unsigned int i = 0; i < bases.count; ++i, centre += bases.step)
	{
		Least lower;
		Least upper;
		for (unsigned int index = 0; index < 8; ++index)
		{
			(index < 4 ? lower : upper).take(centre[offsets[index]]);
		}
		if (isFifthForAll)
		{
			lower.take(centre[offsets[4]]);
		}
		int sum = 0;
		for (unsigned int texel = 0; texel < kTexels; ++texel)
		{
			const int base = bases.first + static_cast<int>(i) * bases.step;
			const int distance = texels[texel] > base ? upper[texel] : lower[texel];
			sum += distance * distance;
		}
		errors[i] = sum;
	}
}
} // namespace zortexture
