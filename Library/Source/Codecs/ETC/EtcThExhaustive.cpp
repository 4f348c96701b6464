/// @file EtcThExhaustive.cpp
/// All T and H blocks: pairs of 4-bit colours, the first of which carries the distance, as the second does in H. Pairs are refused by their
/// red, then by red and green, then by all channels, each time with one table look-up for a texel, a colour and all eight distances.
///
/// The tables hold errors scaled down and rounded down to 15 bits, so that eight distances fit a register. Their sums never exceed
/// the true error scaled down, so that a pair they refuse is never better than the bound; a pair that passes is measured exactly.
#include <algorithm>

#include "Codecs/ETC/EtcExhaustiveSearch.h"
#include "Codecs/ETC/EtcLanes.h"
#include "Codecs/ETC/EtcSearchSpace.h"
#include "Codecs/ETC/EtcThSearch.h"

namespace zortexture
{
namespace
{
/// The distances that a colour's paint colours are away from it.
enum class Paint
{
	Alone,      ///< The plain colour of T.
	WithBoth,   ///< The other colour of T: itself, lighter and darker.
	OnlyShifted ///< Both colours of H: lighter and darker.
};

using namespace etc_lanes;

constexpr unsigned int kPaintErrorCeiling = 32767;
constexpr OffsetErrors kNoOffsets = {};

/// The texels in an order in which the first ones differ most: each is the one farthest from all before it. Pairs of colours that do not
/// fit a block are then refused by its first texels.
SearchTexels<16> sortByContrast(const SearchTexels<16>& texels)
{
	SearchTexels<16> sorted = texels;
	unsigned int distances[16]; // to the nearest of the sorted ones
	std::fill_n(distances, 16, PlainScale::kBlockCeiling);
	for (unsigned int count = 1; count < 16; ++count)
	{
		unsigned int farthest = count;
		for (unsigned int i = count; i < 16; ++i)
		{
			distances[i] = std::min(distances[i], colourError<PlainScale>(sorted.rgb[i], sorted.rgb[count - 1]));
			farthest = distances[i] > distances[farthest] ? i : farthest;
		}
		std::swap(distances[count], distances[farthest]);
		std::swap(sorted.rgb[count], sorted.rgb[farthest]);
	}
	return sorted;
}

/// Fills the errors of one level of a channel.
template<typename Scale>
void precomputeOffsets(const SearchTexels<16>& texels, unsigned int channel, unsigned int level, OffsetErrors& errors)
{
	const int base = static_cast<int>(expandBits(level, 4));
	for (int sign = -1; sign <= 1; ++sign)
	{
		for (unsigned int distance = 0; distance < 8; ++distance)
		{
			const int colour = clamp(base + sign * table58H[distance]);
			for (unsigned int texel = 0; texel < 16; ++texel)
			{
				const int difference = texels.rgb[texel][channel] - colour;
				errors.at[sign + 1][texel][distance] = Scale::kWeights[channel] * static_cast<unsigned int>(difference * difference);
			}
		}
	}
}

void addOffsets(const OffsetErrors& a, const OffsetErrors& b, OffsetErrors& sum)
{
	for (unsigned int shift = 0; shift < 3; ++shift)
	{
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			(UInt31x8::load(a.at[shift][texel]) + UInt31x8::load(b.at[shift][texel])).store(sum.at[shift][texel]);
		}
	}
}

/// The least over the paint colours for the sum of two errors, scaled down.
template<Paint Kind>
void leastOverPaint(const OffsetErrors& a, const OffsetErrors& b, unsigned int scale, PaintErrors& errors)
{
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		const auto sum = [&a, &b, texel](unsigned int shift)
		{
			return UInt31x8::load(a.at[shift][texel]) + UInt31x8::load(b.at[shift][texel]);
		};
		UInt31x8 best = sum(Kind == Paint::Alone ? 1 : 0);
		if constexpr (Kind != Paint::Alone)
		{
			best = least(best, sum(2));
		}
		if constexpr (Kind == Paint::WithBoth)
		{
			best = least(best, sum(1));
		}
		storeScaled(best, scale, errors.at[texel]);
	}
}

/// Whether, at any distance, the texels with the better colour of both cost less than the limit. Sums stop at the ceiling.
bool passes(const PaintErrors& first, const PaintErrors& second, Int16x8 limit)
{
	Int16x8 sum = Int16x8::filled(0);
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		sum = addSaturated(sum, least(Int16x8::load(first.at[texel]), Int16x8::load(second.at[texel])));
		if (texel == 3 && !anyBelow(sum, limit))
		{
			return false;
		}
	}
	return anyBelow(sum, limit);
}

/// The search on one block. The first colour of a pair is the one that carries the distance in T, the lower one in H.
template<typename Scale, TwoColourMode Mode>
class CPairSearch
{
public:
	CPairSearch(const SearchTexels<16>& texels, unsigned int bound, EtcSearchSpace& space) : m_texels(texels), m_space(space)
	{
		m_best.error = bound;
		// As exact as the bound lets the tables be.
		while (bound >> m_scale >= kPaintErrorCeiling)
		{
			++m_scale;
		}
		const SearchTexels<16> sorted = sortByContrast(texels);
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			for (unsigned int level = 0; level < 16; ++level)
			{
				precomputeOffsets<Scale>(sorted, channel, level, space.offsetErrors[channel][level]);
			}
		}
		for (unsigned int red = 0; red < 16; ++red)
		{
			fillPaintErrors(space.offsetErrors[0][red], kNoOffsets, space.paintErrorsR[0][red], space.paintErrorsR[1][red]);
		}
	}

	/// True if there is a pair strictly below the bound: the first of the best ones.
	bool run()
	{
		for (unsigned int red0 = 0; red0 < 16; ++red0)
		{
			for (unsigned int red1 = kIsOrdered ? red0 : 0; red1 < 16; ++red1)
			{
				if (passes(m_space.paintErrorsR[0][red0], m_space.paintErrorsR[kSecond][red1], limit()))
				{
					searchGreen(red0, red1);
				}
			}
		}
		return m_isFound;
	}

	[[nodiscard]] const DistanceChoice& choice() const
	{
		return m_best;
	}
	[[nodiscard]] const EtcColourPair& colours() const
	{
		return m_colours;
	}

private:
	/// The colours of H are interchangeable, so that the second never counts below the first.
	static constexpr bool kIsOrdered = Mode == TwoColourMode::H;
	/// The tables of the second colour.
	static constexpr unsigned int kSecond = kIsOrdered ? 0 : 1;

	/// What scaled sums have to be below; 0 if nothing is below the bound.
	[[nodiscard]] Int16x8 limit() const
	{
		return Int16x8::filled(static_cast<std::int16_t>(m_best.error == 0 ? 0 : ((m_best.error - 1) >> m_scale) + 1));
	}

	/// The tables of the sum of two errors.
	void fillPaintErrors(const OffsetErrors& a, const OffsetErrors& b, PaintErrors& first, PaintErrors& second) const
	{
		if constexpr (Mode == TwoColourMode::H)
		{
			leastOverPaint<Paint::OnlyShifted>(a, b, m_scale, first);
		}
		else
		{
			leastOverPaint<Paint::WithBoth>(a, b, m_scale, first);
			leastOverPaint<Paint::Alone>(a, b, m_scale, second);
		}
	}

	/// Fills the tables of all colours of a red once, when a pair with that red passes for the first time.
	void fillRedGreen(unsigned int red)
	{
		if (m_hasRedGreen[red])
		{
			return;
		}
		m_hasRedGreen[red] = true;
		for (unsigned int green = 0; green < 16; ++green)
		{
			const unsigned int colour = red * 16 + green;
			fillPaintErrors(m_space.offsetErrors[0][red], m_space.offsetErrors[1][green], m_space.paintErrorsRG[0][colour],
			                m_space.paintErrorsRG[1][colour]);
		}
	}

	/// The same for all colours of a red and a green.
	void fillAll(unsigned int redGreen)
	{
		if (m_hasAll[redGreen])
		{
			return;
		}
		m_hasAll[redGreen] = true;
		OffsetErrors sum;
		addOffsets(m_space.offsetErrors[0][redGreen / 16], m_space.offsetErrors[1][redGreen % 16], sum);
		for (unsigned int blue = 0; blue < 16; ++blue)
		{
			const unsigned int colour = redGreen * 16 + blue;
			fillPaintErrors(sum, m_space.offsetErrors[2][blue], m_space.paintErrorsRGB[0][colour], m_space.paintErrorsRGB[1][colour]);
		}
	}

	void searchGreen(unsigned int red0, unsigned int red1)
	{
		fillRedGreen(red0);
		fillRedGreen(red1);
		for (unsigned int green0 = 0; green0 < 16; ++green0)
		{
			const unsigned int redGreen0 = red0 * 16 + green0;
			for (unsigned int green1 = kIsOrdered && red0 == red1 ? green0 : 0; green1 < 16; ++green1)
			{
				const unsigned int redGreen1 = red1 * 16 + green1;
				if (passes(m_space.paintErrorsRG[0][redGreen0], m_space.paintErrorsRG[kSecond][redGreen1], limit()))
				{
					searchBlue(redGreen0, redGreen1);
				}
			}
		}
	}

	void searchBlue(unsigned int redGreen0, unsigned int redGreen1)
	{
		fillAll(redGreen0);
		fillAll(redGreen1);
		for (unsigned int blue0 = 0; blue0 < 16; ++blue0)
		{
			const unsigned int colour0 = redGreen0 * 16 + blue0;
			for (unsigned int blue1 = kIsOrdered && redGreen0 == redGreen1 ? blue0 + 1 : 0; blue1 < 16; ++blue1)
			{
				const unsigned int colour1 = redGreen1 * 16 + blue1;
				if (passes(m_space.paintErrorsRGB[0][colour0], m_space.paintErrorsRGB[kSecond][colour1], limit()))
				{
					measure(colour0, colour1);
				}
			}
		}
	}

	/// Takes the pair if it is strictly better. In a T block the plain colour stands first.
	void measure(unsigned int colour0, unsigned int colour1)
	{
		EtcColourPair packed;
		unpackRgb444(Mode == TwoColourMode::T ? colour1 : colour0, packed[0]);
		unpackRgb444(Mode == TwoColourMode::T ? colour0 : colour1, packed[1]);
		EtcColourPair colours;
		decompressColor(4, 4, 4, packed, colours);
		if (searchDistances<Scale, Mode>(m_texels, colours, kMatchAll, m_best))
		{
			copyColors(packed, m_colours);
			m_isFound = true;
		}
	}

	const SearchTexels<16>& m_texels;
	EtcSearchSpace& m_space;
	DistanceChoice m_best;
	EtcColourPair m_colours = {};
	bool m_isFound = false;
	unsigned int m_scale = 0; ///< Errors in tables are divided by 2 to this power.
	bool m_hasRedGreen[16] = {};
	bool m_hasAll[256] = {};
};

template<typename Scale, TwoColourMode Mode, typename Seed, typename Pack>
unsigned int search(Seed&& seed, Pack&& pack, const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                    unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	const auto seedError = static_cast<unsigned int>(seed(source, width, startX, startY, word1, word2));
	const SearchTexels<16> texels = loadBlockTexels(source, width, startX, startY);
	CPairSearch<Scale, Mode> pairs(texels, std::min(seedError, bound), space);
	if (!pairs.run())
	{
		return seedError;
	}
	const DistanceChoice& choice = pairs.choice();
	pack(pairs.colours(), choice.distance, choice.indices, word1, word2);
	return choice.error;
}
} // namespace

unsigned int compressBlockTHUMB59TExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale, TwoColourMode::T>(compressBlockTHUMB59TFastest, packBlock59T, source, width, startX, startY, word1, word2,
	                                            bound, space);
}

unsigned int compressBlockTHUMB59TExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       EtcSearchSpace& space)
{
	return search<Perceptual1000Scale, TwoColourMode::T>(compressBlockTHUMB59TFastestPerceptual1000, packBlock59T, source, width, startX,
	                                                     startY, word1, word2, bound, space);
}

unsigned int compressBlockTHUMB58HExhaustive(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                             unsigned int& word1, unsigned int& word2, unsigned int bound, EtcSearchSpace& space)
{
	return search<PlainScale, TwoColourMode::H>(compressBlockTHUMB58HFastest, packBlock58H, source, width, startX, startY, word1, word2,
	                                            bound, space);
}

unsigned int compressBlockTHUMB58HExhaustivePerceptual(const unsigned char* source, unsigned int width, unsigned int startX,
                                                       unsigned int startY, unsigned int& word1, unsigned int& word2, unsigned int bound,
                                                       EtcSearchSpace& space)
{
	return search<Perceptual1000Scale, TwoColourMode::H>(compressBlockTHUMB58HFastestPerceptual1000, packBlock58H, source, width, startX,
	                                                     startY, word1, word2, bound, space);
}
} // namespace zortexture
