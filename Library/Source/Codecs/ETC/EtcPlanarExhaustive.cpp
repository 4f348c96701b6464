/// @file EtcPlanarExhaustive.cpp
/// All planar blocks. The channels do not interact, and in a channel the top row depends on two corners of three alone, as do the left
/// column and the anti-diagonal: six texels are left that depend on all three.
#include <algorithm>

#include "Codecs/ETC/EtcBlock.h"
#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcPlanarCorners.h"
#include "Codecs/ETC/EtcSearchSpace.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
namespace
{
struct ChannelResult
{
	PlanarCorners corners;
	unsigned int error;
};

/// One channel of a block against planes.
class CPlanarChannel
{
public:
	CPlanarChannel(const SearchTexels<16>& texels, unsigned int channel, unsigned int weight) : m_weight(weight)
	{
		for (unsigned int i = 0; i < 16; ++i)
		{
			m_values[i] = texels.rgb[i][channel];
		}
	}

	/// What texel (x, y) costs in the plane of the 8-bit corners.
	template<int X, int Y>
	[[nodiscard]] unsigned int error(int origin, int horizontal, int vertical) const
	{
		const int sum = X * (horizontal - origin) + Y * (vertical - origin) + 4 * origin + 2;
		const int difference = m_values[Y * 4 + X] - (sum < 0 ? 0 : std::min(sum >> 2, 255));
		return m_weight * static_cast<unsigned int>(difference * difference);
	}

	/// The left column without the top left texel: whatever the horizontal corner.
	[[nodiscard]] unsigned int columnError(int origin, int vertical) const
	{
		return error<0, 1>(origin, 0, vertical) + error<0, 2>(origin, 0, vertical) + error<0, 3>(origin, 0, vertical);
	}

	/// The texels with x + y = 4: whatever the origin.
	[[nodiscard]] unsigned int diagonalError(int horizontal, int vertical) const
	{
		return error<3, 1>(0, horizontal, vertical) + error<2, 2>(0, horizontal, vertical) + error<1, 3>(0, horizontal, vertical);
	}

	/// The top row, whatever the vertical corner. Anything from the limit on may be returned if the row reaches it.
	[[nodiscard]] unsigned int rowError(int origin, int horizontal, unsigned int limit) const
	{
		const unsigned int sum = error<0, 0>(origin, horizontal, 0) + error<1, 0>(origin, horizontal, 0);
		return sum >= limit ? sum : sum + error<2, 0>(origin, horizontal, 0) + error<3, 0>(origin, horizontal, 0);
	}

	/// `sum` with the six texels that depend on all corners, with the same freedom.
	[[nodiscard]] unsigned int addInnerError(unsigned int sum, int origin, int horizontal, int vertical, unsigned int limit) const
	{
		sum += error<1, 1>(origin, horizontal, vertical) + error<2, 1>(origin, horizontal, vertical) +
		       error<1, 2>(origin, horizontal, vertical);
		return sum >= limit ? sum
		                    : sum + error<3, 2>(origin, horizontal, vertical) + error<2, 3>(origin, horizontal, vertical) +
		                          error<3, 3>(origin, horizontal, vertical);
	}

private:
	int m_values[16];
	unsigned int m_weight;
};

/// The first of the best corners of `Bits` bits whose error is at most the bound; `seed` if there are none.
template<unsigned int Bits>
ChannelResult searchChannel(const CPlanarChannel& channel, unsigned int bound, const ChannelResult& seed, EtcSearchSpace& space)
{
	constexpr unsigned int kLevels = 1U << Bits;
	const auto colour = [](unsigned int level)
	{
		return static_cast<int>(expandBits(level, Bits));
	};
	unsigned int leastColumns[kLevels];
	unsigned int leastDiagonals[kLevels];
	for (unsigned int other = 0; other < kLevels; ++other)
	{
		auto& columns = space.columnErrors[other];
		auto& diagonals = space.diagonalErrors[other];
		for (unsigned int vertical = 0; vertical < kLevels; ++vertical)
		{
			columns[vertical] = channel.columnError(colour(other), colour(vertical));
			diagonals[vertical] = channel.diagonalError(colour(other), colour(vertical));
		}
		leastColumns[other] = *std::min_element(columns, columns + kLevels);
		leastDiagonals[other] = *std::min_element(diagonals, diagonals + kLevels);
	}

	ChannelResult best = seed;
	unsigned int limit = bound + 1; // what is sought is below it: the first time equal to the bound, then better
	for (unsigned int origin = 0; origin < kLevels; ++origin)
	{
		for (unsigned int horizontal = 0; horizontal < kLevels; ++horizontal)
		{
			const unsigned int rowError = channel.rowError(colour(origin), colour(horizontal), limit);
			if (rowError + leastColumns[origin] + leastDiagonals[horizontal] >= limit)
			{
				continue;
			}
			for (unsigned int vertical = 0; vertical < kLevels; ++vertical)
			{
				unsigned int sum = rowError + space.columnErrors[origin][vertical] + space.diagonalErrors[horizontal][vertical];
				if (sum >= limit)
				{
					continue;
				}
				sum = channel.addInnerError(sum, colour(origin), colour(horizontal), colour(vertical), limit);
				if (sum < limit)
				{
					best = {{origin, horizontal, vertical}, sum};
					limit = sum;
				}
			}
		}
	}
	return best;
}

template<typename Scale>
unsigned int search(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, unsigned int& word1,
                    unsigned int& word2, unsigned int bound, const unsigned int (&seedErrors)[3], EtcSearchSpace& space)
{
	compressBlockPlanar57(source, width, startX, startY, word1, word2);
	PlanarCorners seeds[3];
	unpackPlanarCorners(word1, word2, seeds[0], seeds[1], seeds[2]);
	const SearchTexels<16> texels = loadBlockTexels(source, width, startX, startY);
	ChannelResult best[3];
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		const CPlanarChannel values(texels, channel, Scale::kWeights[channel]);
		const unsigned int channelBound = std::min(bound, seedErrors[channel]);
		const ChannelResult seed{seeds[channel], seedErrors[channel]};
		best[channel] =
		    channel == 1 ? searchChannel<7>(values, channelBound, seed, space) : searchChannel<6>(values, channelBound, seed, space);
	}
	packPlanarCorners(best[0].corners, best[1].corners, best[2].corners, word1, word2);
	return best[0].error + best[1].error + best[2].error;
}
} // namespace

unsigned int compressBlockPlanar57Exhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound,
                                             const unsigned int (&seedErrors)[3], EtcSearchSpace& space)
{
	return search<PlainScale>(source, width, startX, startY, word1, word2, bound, seedErrors, space);
}

unsigned int compressBlockPlanar57ExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       const unsigned int (&seedErrors)[3], EtcSearchSpace& space)
{
	return search<Perceptual1000Scale>(source, width, startX, startY, word1, word2, bound, seedErrors, space);
}
} // namespace zortexture
