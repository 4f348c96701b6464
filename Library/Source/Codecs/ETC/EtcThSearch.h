/// @file EtcThSearch.h
/// The search over the eight distances of a T or H block for given colours, as a template over error scale and mode.
#pragma once

#include <algorithm>
#include <limits>
#include <type_traits>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
using Clustering = void (*)(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                            EtcColourPair& colours);

/// A 4-bit colour as one number, R << 8 | G << 4 | B.
inline unsigned int packRgb444(const unsigned char (&colour)[3])
{
	return static_cast<unsigned int>(colour[0]) << 8 | static_cast<unsigned int>(colour[1]) << 4 | colour[2];
}

inline void unpackRgb444(unsigned int packed, unsigned char (&colour)[3])
{
	colour[0] = static_cast<unsigned char>(packed >> 8 & 15);
	colour[1] = static_cast<unsigned char>(packed >> 4 & 15);
	colour[2] = static_cast<unsigned char>(packed & 15);
}

enum class TwoColourMode
{
	T,
	H
};

/// What a block gets from its colours: the distance index, and the indices in raster order, the first texel in the top bits.
struct DistanceChoice
{
	unsigned int error = std::numeric_limits<unsigned int>::max();
	unsigned int distance = 0;
	unsigned int indices = 0;
};

inline unsigned int giveChoice(const DistanceChoice& choice, unsigned int& distance, unsigned int& indices)
{
	distance = choice.distance;
	indices = choice.indices;
	return choice.error;
}

/// Which texels are matched with which paint colours. A texel left out adds no error and takes the reserved index; the others keep clear
/// of that one.
struct MatchAll
{
	static constexpr bool leavesOut(unsigned int /*texel*/)
	{
		return false;
	}
	static constexpr unsigned int reserved()
	{
		return 4;
	}
};

/// The rule of blocks without transparency, whatever the distance.
inline constexpr auto kMatchAll = [](unsigned int /*distance*/)
{
	return MatchAll{};
};

struct MatchSome
{
	unsigned int leftOut; ///< Bit i for texel i in raster order.
	unsigned int reservedIndex;

	[[nodiscard]] bool leavesOut(unsigned int texel) const
	{
		return (leftOut >> texel & 1) != 0;
	}
	[[nodiscard]] unsigned int reserved() const
	{
		return reservedIndex;
	}
};

/// The nearest paint colour for every texel, the lowest index on a tie. Given up as soon as the error reaches that of `best`;
/// a choice that is strictly better replaces it and gives true.
template<typename Scale, typename Rule>
bool matchPaintColours(const SearchTexels<16>& texels, const EtcPaintColours& paint, const Rule& rule, unsigned int distance,
                       DistanceChoice& best)
{
	static_assert(std::is_same_v<typename Scale::Error, unsigned int>);
	unsigned int total = 0;
	unsigned int indices = 0;
	for (unsigned int i = 0; i < 16; ++i)
	{
		indices <<= 2;
		if (rule.leavesOut(i))
		{
			indices |= rule.reserved();
			continue;
		}
		// Error and index in one number: the least one is the least error and, among equals, the lowest index. The greatest
		// error of a texel is 65025000, so two bits are free.
		unsigned int least = std::numeric_limits<unsigned int>::max();
		for (unsigned int index = 0; index < 4; ++index)
		{
			if (index != rule.reserved())
			{
				least = std::min(least, colourError<Scale>(texels.rgb[i], paint[index]) << 2 | index);
			}
		}
		total += least >> 2;
		indices |= least & 3;
		if (total >= best.error)
		{
			return false;
		}
	}
	// Texels left out at the end pass by the test above, and with them an equal error.
	if (total >= best.error)
	{
		return false;
	}
	best = {total, distance, indices};
	return true;
}

/// The best of the eight distances, the first on a tie, if it is strictly better than `best`; true if there is one.
/// `colours` are of 8 bits; `ruleOf` gives the matching rule of a distance.
template<typename Scale, TwoColourMode Mode, typename RuleOf>
bool searchDistances(const SearchTexels<16>& texels, const EtcColourPair& colours, const RuleOf& ruleOf, DistanceChoice& best)
{
	bool isBetter = false;
	for (unsigned int distance = 0; distance < 8; ++distance)
	{
		EtcPaintColours paint;
		if constexpr (Mode == TwoColourMode::T)
		{
			calculatePaintColors59T(distance, kEtcPatternT, colours, paint);
		}
		else
		{
			calculatePaintColors58H(distance, kEtcPatternH, colours, paint);
		}
		isBetter |= matchPaintColours<Scale>(texels, paint, ruleOf(distance), distance, best);
	}
	return isBetter;
}

/// The best distance for two 4-bit colours.
template<typename Scale, TwoColourMode Mode, typename RuleOf>
DistanceChoice searchPackedColours(const SearchTexels<16>& texels, const EtcColourPair& packed, const RuleOf& ruleOf)
{
	EtcColourPair colours;
	decompressColor(4, 4, 4, packed, colours);
	DistanceChoice best;
	searchDistances<Scale, Mode>(texels, colours, ruleOf, best);
	return best;
}
} // namespace zortexture
