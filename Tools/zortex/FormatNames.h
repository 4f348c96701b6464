/// @file FormatNames.h
/// Names of formats, channel types and colour spaces, both ways.
///
/// Compressed formats have a name each, such as "etc2-rgb". An uncompressed layout is written as its channel letters and
/// their widths: one digit a channel ("rgba8888", "rgb565"), one number for all channels ("rgba16", "r16f"), or the
/// widths with dots between ("bgr10.11.11"). A final "f" makes the channels floats.
#ifndef ZORTEX_FORMAT_NAMES_H
#define ZORTEX_FORMAT_NAMES_H

#include <ZORTexLib.h>
#include <optional>
#include <string>
#include <string_view>

namespace zortex
{
struct NamedFormat
{
	zortexture::PixelType pixelType;
	/// The channel type that a final "f" asks for, or the usual one of the format.
	EZORTVariableType type = eVT_UnsignedByteNorm;
	/// Whether the name settles the type, so that another one contradicts it.
	bool isTypeFixed = false;
};

/// Reads a format's name, in any case. Nothing when it names no format and no layout; a layout may still be one that
/// pixels cannot be converted to.
std::optional<NamedFormat> parseFormat(std::string_view name);

/// The name that parseFormat reads; the number in hexadecimal when there is none.
std::string formatName(zortexture::PixelType pixelType, EZORTVariableType type);

/// The type that a format has unless told otherwise.
EZORTVariableType defaultChannelType(zortexture::PixelType pixelType);

/// Reads "unorm8", "sint32", "float" and so on. Without a number ("snorm") the width is the usual one of the format.
std::optional<EZORTVariableType> parseChannelType(std::string_view name, zortexture::PixelType pixelType);

/// All names of channel types, by number.
inline constexpr std::string_view kChannelTypeNames[] = {"unorm8", "snorm8",  "uint8",   "sint8",  "unorm16", "snorm16", "uint16",
                                                         "sint16", "unorm32", "snorm32", "uint32", "sint32",  "float",   "ufloat"};

/// The name of a channel type; "unknown (N)" for a number that is none.
std::string channelTypeName(EZORTVariableType type);

/// Reads "linear" or "srgb".
std::optional<EZORTColourSpace> parseColourSpace(std::string_view name);

/// "linear" or "srgb", as the library takes the number.
std::string colourSpaceName(EZORTColourSpace space);
} // namespace zortex

#endif // ZORTEX_FORMAT_NAMES_H
