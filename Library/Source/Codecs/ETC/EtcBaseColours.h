/// @file EtcBaseColours.h
/// The base colours of individual and differential blocks in the first word. Colours are of 4 or 5 bits a channel, R, G, B.
#pragma once

#include "Codecs/ETC/EtcTableSearch.h"

namespace zortexture
{
using BaseColour = int[3];

/// A step between two 5-bit colours that three bits hold.
inline constexpr int kLeastDelta = -4;
inline constexpr int kGreatestDelta = 3;

/// True if the second 5-bit colour can be stored as a step from the first in every channel.
inline bool isDifferentialPair(const BaseColour& first, const BaseColour& second)
{
	for (int channel = 0; channel < 3; ++channel)
	{
		const int delta = second[channel] - first[channel];
		if (delta < kLeastDelta || delta > kGreatestDelta)
		{
			return false;
		}
	}
	return true;
}

/// The colour bits of an individual block.
inline unsigned int packIndividualColours(const BaseColour& first, const BaseColour& second)
{
	unsigned int word = 0;
	for (int channel = 0; channel < 3; ++channel)
	{
		word |= static_cast<unsigned int>(first[channel]) << (28 - 8 * channel);
		word |= static_cast<unsigned int>(second[channel]) << (24 - 8 * channel);
	}
	return word;
}

/// The colour bits of a differential block; the diff bit is not among them.
inline unsigned int packDifferentialColours(const BaseColour& first, const BaseColour& second)
{
	unsigned int word = 0;
	for (int channel = 0; channel < 3; ++channel)
	{
		word |= static_cast<unsigned int>(first[channel]) << (27 - 8 * channel);
		word |= (static_cast<unsigned int>(second[channel] - first[channel]) & 7) << (24 - 8 * channel);
	}
	return word;
}

/// The 8-bit colours of 4-bit and 5-bit ones.
inline void expandIndividualColour(const BaseColour& colour, unsigned char (&expanded)[3])
{
	for (int channel = 0; channel < 3; ++channel)
	{
		expanded[channel] = static_cast<unsigned char>((colour[channel] << 4) | colour[channel]);
	}
}

inline void expandDifferentialColour(const BaseColour& colour, unsigned char (&expanded)[3])
{
	for (int channel = 0; channel < 3; ++channel)
	{
		expanded[channel] = static_cast<unsigned char>((colour[channel] << 3) | (colour[channel] >> 2));
	}
}

/// What stands beside the colours: the table codewords with the flip bit, and the index word of both halves.
inline unsigned int packTables(const HalfBits& first, const HalfBits& second, bool isFlipped)
{
	return first.table << 5 | second.table << 2 | (isFlipped ? 1U : 0U);
}

inline unsigned int packIndices(const HalfBits& first, const HalfBits& second, bool isFlipped)
{
	const unsigned int shift = isFlipped ? 2 : 8;
	return (first.highBits | second.highBits << shift) << 16 | first.lowBits | second.lowBits << shift;
}
} // namespace zortexture
