/// @file EacDistances.h
/// The distances of a block's sixteen texels from every value that a base plus a modifier times a multiplier can reach. The searches try
/// thousands of parameter sets a block; with the distances at hand the error of a set is a few vector instructions.
#pragma once

#include <algorithm>
#include <cstdint>

#include "EacBlock.h"

namespace zortexture
{
class EacDistances
{
public:
	/// Steps from base 0; the outermost modifiers are -15 and 14, the largest multiplier is 15.
	static constexpr int kFirstStep = -15 * 15;
	static constexpr int kLastStep = 255 + 14 * 15;
	/// Larger distances count as this one, so that sixteen squares fit an integer. A sum below its square is exact.
	static constexpr std::int16_t kFar = 11585;

	/// `value(step)` is what a step decodes to; steps below `first` and above `last` are clamped to these.
	template<typename Value>
	EacDistances(const std::uint16_t (&texels)[16], int first, int last, Value&& value)
	{
		for (int step = first; step <= last; ++step)
		{
			fill(texels, value(step), rowToFill(step));
		}
		for (int step = kFirstStep; step < first; ++step)
		{
			std::copy_n(row(first), 16, rowToFill(step));
		}
		for (int step = last + 1; step <= kLastStep; ++step)
		{
			std::copy_n(row(last), 16, rowToFill(step));
		}
	}

	const std::int16_t* row(int step) const
	{
		return m_rows[step - kFirstStep];
	}

	/// The distances from one value, taken in 16 bits.
	static void fill(const std::uint16_t (&texels)[16], std::uint16_t value, std::int16_t* distances)
	{
		for (unsigned int i = 0; i < 16; ++i)
		{
			const auto signedDifference = static_cast<std::int16_t>(texels[i] - value);
			const std::int16_t difference = std::min(std::max(signedDifference, static_cast<std::int16_t>(-kFar)), kFar);
			distances[i] = std::max(difference, static_cast<std::int16_t>(-difference));
		}
	}

	/// What no base can undercut (see boundOf): the error if every `multiplier`-th step from it on were there to choose from. All texels
	/// lie between the values of steps `low` and `high`.
	void boundBases(int multiplier, int low, int high, int (&bounds)[15]) const
	{
		const int first = std::max(low - multiplier, kFirstStep);
		const int last = std::min(high + multiplier, kLastStep);
		for (int start = first; start < first + multiplier; ++start)
		{
			std::int16_t least[16];
			minimum(row(kFirstStep), row(kLastStep), least);
			for (int step = start; step <= last; step += multiplier)
			{
				minimum(row(step), least, least);
			}
			int sum = 0;
			for (const std::int16_t distance : least)
			{
				sum += distance * distance;
			}
			bounds[(start - kFirstStep) % multiplier] = sum;
		}
	}

	/// The entry of `bounds` that is a base's.
	static unsigned int boundOf(int base, int multiplier)
	{
		return static_cast<unsigned int>((base - kFirstStep) % multiplier);
	}

private:
	std::int16_t* rowToFill(int step)
	{
		return m_rows[step - kFirstStep];
	}

	static void minimum(const std::int16_t* a, const std::int16_t* b, std::int16_t* least)
	{
		std::int16_t result[16];
		for (unsigned int i = 0; i < 16; ++i)
		{
			result[i] = std::min(a[i], b[i]);
		}
		std::copy_n(result, 16, least);
	}

	alignas(16) std::int16_t m_rows[kLastStep - kFirstStep + 1][16];
};
} // namespace zortexture
