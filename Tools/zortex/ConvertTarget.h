/// @file ConvertTarget.h
/// What a conversion shall make: checked against the command line, then completed by the input's own format.
#ifndef ZORTEX_CONVERT_TARGET_H
#define ZORTEX_CONVERT_TARGET_H

#include <ZORTexLib.h>
#include <optional>
#include <string>

#include "FormatNames.h"

namespace zortex
{
/// The options of the command line as they were given.
struct TargetOptions
{
	std::string format;
	std::string type;
	std::string space;
	std::string quality;
	bool dither = false;
	/// The output is a PNG file, which holds eight layouts.
	bool isPng = false;
};

struct Target
{
	zortexture::PixelType pixelType;
	EZORTVariableType type;
	EZORTColourSpace space;
	int quality;
	bool dither;
};

/// A target that may leave format and colour space to the input.
class TargetRequest
{
public:
	/// Throws a UsageError for options that no input can satisfy.
	explicit TargetRequest(const TargetOptions& options);

	/// The target for a texture. Where no format is asked for it is the texture's own, or in a PNG file the closest one.
	/// Throws a UsageError for options that do not suit the texture's format.
	Target resolve(const zortexture::CZORTextureHeader& header) const;

	/// Whether quality or dithering is asked for, so that even the texture's own format is encoded anew.
	bool asksForEncoding() const;

private:
	TargetOptions m_options;
	std::optional<NamedFormat> m_format;
	std::optional<EZORTColourSpace> m_space;
};
} // namespace zortex

#endif // ZORTEX_CONVERT_TARGET_H
