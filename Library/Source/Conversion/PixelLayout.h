/// @file PixelLayout.h
/// An encoder's layout as code sees it that converts many pixels at once.
#pragma once

#include <cstdint>

#include "PixelEncoder.h"

namespace zortexture
{
struct SPixelLayout
{
	explicit SPixelLayout(const CPixelEncoder& encoder);

	/// The position of a channel, or -1.
	int positionOf(EChannelName channel) const;

	/// The largest value of the bits of a position.
	std::uint32_t maskOf(unsigned int position) const
	{
		return bits[position] < 32 ? (1u << bits[position]) - 1u : 0xFFFFFFFFu;
	}

	/// Whether the layout is valid, and all of its channels are elements of one width (`isElements`) or all of them bit fields of the
	/// first 64 bits. Only then are the other members of use. Layouts that mix the two forms, or read in the other form than they are
	/// written in, have overlapping channels.
	bool isOrdinary = false;
	bool isElements = false;
	EZORTVariableType type;
	unsigned int numChannels = 0;
	unsigned int bytes = 0;
	EChannelName names[4] = {};
	unsigned int bits[4] = {};
	unsigned int shifts[4] = {}; ///< the lowest bit of each position in the pixel, a little-endian number
};

/// Where a channel of a destination comes from.
enum EChannelOrigin
{
	eFromPosition,
	eFromZero,
	eFromOpaque,
	eFromLuminance, ///< of the source's colours
	eFromMean
};

struct SChannelOrigin
{
	EChannelOrigin kind = eFromZero;
	unsigned int position = 0; ///< of the source, for eFromPosition
};

/// The origin of what stands at a position of the destination.
SChannelOrigin originOf(const SPixelLayout& source, const SPixelLayout& destination, unsigned int position);

/// Whether writing a channel can never change the bits of its neighbours, whatever value the source has: elements, and fields into which
/// all values fit that come from such a source. Signs and roundings of other values run into the field above.
bool hasSeparateChannels(const SPixelLayout& source, const SPixelLayout& destination);

/// Whether a colour space conversion changes the channel at a position.
bool isColour(const SPixelLayout& layout, unsigned int position);
} // namespace zortexture
