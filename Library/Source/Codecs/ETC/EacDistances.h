/// @file EacDistances.h
/// The distances of a block's sixteen texels from every value that a base plus a modifier times a multiplier can reach. The searches try
/// thousands of parameter sets a block; with the distances at hand the error of a set is a few vector instructions.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "EacSums.h"

namespace zortexture
{
template<ESimdLevel level>
class EacDistances
{
public:
	/// Steps from base 0; the outermost modifiers are -15 and 14, the largest multiplier is 15.
	static constexpr int kFirstStep = -15 * 15;
	static constexpr int kLastStep = 255 + 14 * 15;

	static constexpr int kStepCount = kLastStep - kFirstStep + 1;

	/// `values` is what the steps decode to, from step `first` to `last`; those outside are clamped to these.
	EacDistances(const std::uint16_t (&texels)[16], const std::uint16_t* values, int first, int last)
	{
		const auto rows = [this](int step)
		{
			return m_rows + (step - kFirstStep);
		};
		EacSums<level>::fillRows(texels, values, static_cast<unsigned int>(last - first) + 1, rows(first));
		for (EacRow* row = m_rows; row != rows(first); ++row)
		{
			std::memcpy(*row, *rows(first), sizeof(EacRow));
		}
		for (EacRow* row = rows(last + 1); row != m_rows + kStepCount; ++row)
		{
			std::memcpy(*row, *rows(last), sizeof(EacRow));
		}
	}

	const EacRow* row(int step) const
	{
		return m_rows + (step - kFirstStep);
	}

	/// What no base can undercut (see boundOf): the error if every `multiplier`-th step from it on were there to choose from. All texels
	/// lie between the values of steps `low` and `high`.
	void boundBases(int multiplier, int low, int high, int (&bounds)[15]) const
	{
		const int first = std::max(low - multiplier, kFirstStep);
		const int last = std::min(high + multiplier, kLastStep);
		int errors[15] = {};
		EacSums<level>::leastErrors(row(0), first, last, multiplier, *row(kFirstStep), *row(kLastStep), errors);
		const auto start = static_cast<int>(boundOf(first, multiplier));
		for (int i = 0; i < multiplier; ++i)
		{
			bounds[start + i < multiplier ? start + i : start + i - multiplier] = errors[i];
		}
	}

	/// The entry of `bounds` that is a base's.
	static unsigned int boundOf(int base, int multiplier)
	{
		return static_cast<unsigned int>((base - kFirstStep) % multiplier);
	}

private:
	alignas(32) EacRow m_rows[kStepCount];
};
} // namespace zortexture
