/// @file EtcThBruteForce.h
/// The exhaustive T and H searches beside a plain loop over pairs of colours.
#pragma once

#include <gtest/gtest.h>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcThSearch.h"
#include "EtcExhaustiveSupport.h"

namespace etctest
{
using zortexture::TwoColourMode;

/// A pair in the order of the search: R, G, B, in each the colour with the distance (T) or the lower one (H) first.
struct PairResult
{
	unsigned int error = 0;
	std::array<unsigned int, 6> levels{};
	bool operator==(const PairResult&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const PairResult& pair)
{
	stream << pair.error << ":";
	for (const unsigned int level : pair.levels)
	{
		stream << " " << level;
	}
	return stream;
}

/// First and last level for each place of PairResult::levels.
using PairRange = std::array<std::pair<unsigned int, unsigned int>, 6>;

/// Reads the words that a search gave, and checks that its error is theirs.
inline PairResult readWords(const Rgb16& block, const Measure& measure, TwoColourMode mode, unsigned int error, unsigned int word1,
                            unsigned int word2)
{
	const bool isT = mode == TwoColourMode::T;
	const auto decoded = decodeWith(isT ? zortexture::decompressBlockTHUMB59T : zortexture::decompressBlockTHUMB58H, word1, word2);
	EXPECT_EQ(error, weightedError(block, decoded, measure.weights));
	unsigned int first = isT ? word1 >> 3 & 0xFFF : word1 >> 14 & 0xFFF;
	unsigned int second = isT ? word1 >> 15 & 0xFFF : word1 >> 2 & 0xFFF;
	if (!isT && first > second)
	{
		std::swap(first, second);
	}
	return {error, {first >> 8, second >> 8, first >> 4 & 15, second >> 4 & 15, first & 15, second & 15}};
}

inline PairResult runExhaustive(const Rgb16& block, const Measure& measure, TwoColourMode mode)
{
	using namespace zortexture;
	const bool isPlain = &measure == &kPlain;
	const auto t = isPlain ? compressBlockTHUMB59TExhaustive : compressBlockTHUMB59TExhaustivePerceptual;
	const auto h = isPlain ? compressBlockTHUMB58HExhaustive : compressBlockTHUMB58HExhaustivePerceptual;
	unsigned int word1 = 0;
	unsigned int word2 = 0;
	const unsigned int error = (mode == TwoColourMode::T ? t : h)(block.data(), 4, 0, 0, word1, word2, measure.ceiling, searchSpace());
	return readWords(block, measure, mode, error, word1, word2);
}

/// The fast search that the exhaustive one starts from.
inline PairResult runSeed(const Rgb16& block, const Measure& measure, TwoColourMode mode)
{
	using namespace zortexture;
	unsigned int word1 = 0;
	unsigned int word2 = 0;
	double error = 0.0;
	if (&measure == &kPlain)
	{
		error =
		    (mode == TwoColourMode::T ? compressBlockTHUMB59TFastest : compressBlockTHUMB58HFastest)(block.data(), 4, 0, 0, word1, word2);
	}
	else
	{
		const auto search =
		    mode == TwoColourMode::T ? compressBlockTHUMB59TFastestPerceptual1000 : compressBlockTHUMB58HFastestPerceptual1000;
		error = search(block.data(), 4, 0, 0, word1, word2);
	}
	return readWords(block, measure, mode, static_cast<unsigned int>(error), word1, word2);
}

/// The error of a pair at its best distance, or anything from `limit` on if it is not below.
inline unsigned int pairError(const Rgb16& block, const Measure& measure, TwoColourMode mode, const std::array<unsigned int, 6>& levels,
                              unsigned int limit)
{
	constexpr int kDistances[8] = {3, 6, 11, 16, 23, 32, 41, 64};
	// Both colours by channel, then by which of them a paint colour starts from and how many distances it is away.
	constexpr struct
	{
		unsigned int colour;
		int steps;
	} kPaint[2][4] = {{{1, 0}, {0, 1}, {0, 0}, {0, -1}}, {{0, 1}, {0, -1}, {1, 1}, {1, -1}}};
	for (const int distance : kDistances)
	{
		int paint[4][3];
		for (unsigned int i = 0; i < 4; ++i)
		{
			const auto& [colour, steps] = kPaint[mode == TwoColourMode::T ? 0 : 1][i];
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				paint[i][channel] = std::clamp(static_cast<int>(levels[channel * 2 + colour]) * 17 + steps * distance, 0, 255);
			}
		}
		unsigned int error = 0;
		for (unsigned int texel = 0; texel < 16 && error < limit; ++texel)
		{
			int least = static_cast<int>(measure.ceiling);
			for (const auto& colour : paint)
			{
				int square = 0;
				for (unsigned int channel = 0; channel < 3; ++channel)
				{
					const int difference = block[texel * 3 + channel] - colour[channel];
					square += measure.weights[channel] * difference * difference;
				}
				least = std::min(least, square);
			}
			error += static_cast<unsigned int>(least);
		}
		limit = std::min(limit, error);
	}
	return limit;
}

/// The first of the best pairs in a range, if it is strictly better than `seed`.
inline PairResult bruteForce(const Rgb16& block, const Measure& measure, TwoColourMode mode, const PairRange& range, const PairResult& seed)
{
	PairResult best = seed;
	std::array<unsigned int, 6> levels;
	for (unsigned int i = 0; i < 6; ++i)
	{
		levels[i] = range[i].first;
	}
	for (;;)
	{
		const unsigned int first = levels[0] << 8 | levels[2] << 4 | levels[4];
		const unsigned int second = levels[1] << 8 | levels[3] << 4 | levels[5];
		if (mode == TwoColourMode::T || first < second)
		{
			const unsigned int error = pairError(block, measure, mode, levels, best.error);
			if (error < best.error)
			{
				best = {error, levels};
			}
		}
		unsigned int place = 6;
		while (place > 0 && levels[place - 1] == range[place - 1].second)
		{
			levels[place - 1] = range[place - 1].first;
			--place;
		}
		if (place == 0)
		{
			return best;
		}
		++levels[place - 1];
	}
}
} // namespace etctest
