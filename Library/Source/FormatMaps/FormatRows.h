/// @file FormatRows.h
/// The rows that the format tables are made of, and the search in them.
#pragma once

#include <optional>
#include <span>

#include "PixelType.h"

namespace zortexture
{
/// The identifier of an uncompressed layout: its channel letters and their widths in bits.
constexpr unsigned long long layout(const char* letters, unsigned char bits1, unsigned char bits2 = 0, unsigned char bits3 = 0,
                                    unsigned char bits4 = 0)
{
	unsigned long long id = static_cast<unsigned long long>(bits1) << 32 | static_cast<unsigned long long>(bits2) << 40 |
	                        static_cast<unsigned long long>(bits3) << 48 | static_cast<unsigned long long>(bits4) << 56;
	for (unsigned int i = 0; letters[i] != 0; ++i)
	{
		id |= static_cast<unsigned long long>(static_cast<unsigned char>(letters[i])) << (8 * i);
	}
	return id;
}

/// Where a table has no constant for a case. No API gives 0 to a format.
inline constexpr unsigned int kNoConstant = 0;
/// Where a constant has no format.
inline constexpr unsigned long long kNoFormat = ePF_NumCompressedPFs;

/// Classes of channel types, where a row serves several.
inline constexpr unsigned int kAnyType = 0x100;
inline constexpr unsigned int kAnySignedType = 0x101;
inline constexpr unsigned int kAnyUnsignedType = 0x102;

/// A format and its constants in an API.
struct ForwardRow
{
	unsigned long long pixelFormat;
	unsigned int channelType; ///< EZORTVariableType, or a class of them
	unsigned int linear;
	unsigned int sRGB; ///< kNoConstant: the linear one serves
};

/// A constant of an API and the format that it comes back as.
struct ReverseRow
{
	unsigned int constant;
	unsigned long long pixelFormat; ///< kNoFormat: the constant is refused
	EZORTVariableType channelType;
	EZORTColourSpace colourSpace;
};

/// What a constant stands for.
struct FormatDescription
{
	unsigned long long pixelFormat;
	EZORTVariableType channelType;
	EZORTColourSpace colourSpace;

	/// Writes the three where a caller wants them.
	void store(unsigned long long& pixelFormatOut, EZORTVariableType& channelTypeOut, EZORTColourSpace& colourSpaceOut) const
	{
		pixelFormatOut = pixelFormat;
		channelTypeOut = channelType;
		colourSpaceOut = colourSpace;
	}
};

/// Whether a row's channel type, or class of them, takes in a channel type.
constexpr bool rowServes(unsigned int rowType, EZORTVariableType channelType, bool isSignedType)
{
	switch (rowType)
	{
	case kAnyType:
		return true;
	case kAnySignedType:
		return isSignedType;
	case kAnyUnsignedType:
		return !isSignedType;
	default:
		return rowType == channelType;
	}
}

/// The channel type that a constant of a row comes back with: the row's own, or the 8-bit one of its class.
constexpr EZORTVariableType reverseType(unsigned int rowType)
{
	switch (rowType)
	{
	case kAnySignedType:
		return eVT_SignedByteNorm;
	case kAnyType:
	case kAnyUnsignedType:
		return eVT_UnsignedByteNorm;
	default:
		return static_cast<EZORTVariableType>(rowType);
	}
}

/// The constant of a format; kNoConstant when the table has none.
unsigned int findConstant(std::span<const ForwardRow> table, unsigned long long pixelFormat, EZORTVariableType channelType,
                          EZORTColourSpace colourSpace);

/// The format of a constant: by the exceptions first, then by the rows of the other direction.
std::optional<FormatDescription> findFormat(std::span<const ReverseRow> exceptions, std::span<const ForwardRow> table,
                                            unsigned int constant);

/// The row of a constant among the exceptions; null when it is none.
const ReverseRow* findException(std::span<const ReverseRow> exceptions, unsigned int constant);
} // namespace zortexture
