/// @file ConversionTables.h
/// Tables of what each value of a channel becomes.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "BulkConversion.h"
#include "ChannelNumbers.h"
#include "PixelShuffle.h"

namespace zortexture
{
constexpr unsigned int kMaxWordBytes = 8; ///< of a source's pixel
constexpr std::size_t kByteValues = 256;

struct SField
{
	unsigned int shift = 0;
	std::uint64_t mask = 0;
};

/// Grey of three colours: a sum of three floats, written as an unsigned channel is.
struct SGreySum
{
	SField fields[3];
	std::vector<float> terms[3];
	float count = 1.0f;     ///< of the colours, for their mean
	bool isOfBytes = false; ///< every colour is a byte of the source's pixel
	bool isPixel = false;   ///< the rounded sum is the destination's pixel, in the rule's bytes
	SChannelRule rule;      ///< of the sum, once it is rounded
	unsigned int shift = 0;
	std::vector<std::uint64_t> converted; ///< by the rounded value, the bits in their place; empty when that is the value itself
};

/// What each value of each field of a source's pixel puts into the destination's.
struct SConversionTables
{
	unsigned int sourceBytes = 0;
	unsigned int destinationBytes = 0;

	/// For destinations of up to eight bytes: the fields of the source and what each value gives, to be ORed.
	unsigned int numFields = 0;
	SField fields[4];
	std::vector<std::uint64_t> words[4];
	std::vector<std::uint64_t> byteWords; ///< all of them in one, where the fields are bytes next to each other
	bool hasGrey = false;                 ///< beside the words, which are of the other channels
	bool isMean = false;
	SGreySum grey;

	/// For channels of 32 bits: the field behind each element of the destination and its values.
	unsigned int numElements = 0;
	SField elementFields[4];
	std::vector<std::uint32_t> elements[4];

	bool isShuffle = false;
	SPixelShuffle shuffle;
};

/// Lets the encoders of a task convert all values. None where channels are too wide or not independent of each other, or where there
/// are so few pixels that making the tables would take longer.
std::optional<SConversionTables> makeConversionTables(SConversionTask& task);
} // namespace zortexture
