/// @file FormatCapabilities.h
/// The compressed formats, and what their codecs can do so far.
#ifndef ZORTEX_FORMAT_CAPABILITIES_H
#define ZORTEX_FORMAT_CAPABILITIES_H

#include <ZORTexLib.h>
#include <span>
#include <string>
#include <string_view>

namespace zortex
{
/// Which image sizes a codec encodes to a true result.
enum class SizeRule
{
	any,
	/// Both sides powers of two.
	powersOfTwo,
	/// The width of every level a multiple of the format's unit, or below it.
	wholeUnits
};

/// The named steps of --quality, in the order of Codec::namedQualities.
inline constexpr std::string_view kQualityNames[] = {"fast", "normal", "high", "best"};
inline constexpr unsigned int kDefaultQualityName = 1;

/// What a codec can do so far.
struct Codec
{
	std::string_view title;
	bool decodes;
	bool encodes;
	/// Qualities go from 0 to this number.
	int bestQuality;
	/// The numbers behind fast, normal, high and best.
	int namedQualities[4];
	SizeRule sizeRule;
};

struct CompressedFormat
{
	EZORTPixelFormat id;
	std::string_view name;
	/// Channels that a decoded image has, in the letters "rgba".
	std::string_view channels;
	const Codec* codec;
};

/// All rows, in the order in which they are shown: by family.
std::span<const CompressedFormat> compressedFormats();

/// The row of a compressed format; null for an uncompressed layout and a number that is no format.
const CompressedFormat* findCompressedFormat(zortexture::PixelType format);
const CompressedFormat* findCompressedFormat(std::string_view name);

/// Whether textures of the format can take part in a conversion as source, as target. Uncompressed layouts always can.
bool canDecode(zortexture::PixelType format);
bool canEncode(zortexture::PixelType format);

/// Whether images of more than one depth slice exist in the format. ASTC holds them slice by slice in its flat blocks, too.
bool canHoldVolume(zortexture::PixelType format);

/// Block dimensions of a compressed format in texels.
void blockSize(const CompressedFormat& format, unsigned int& x, unsigned int& y, unsigned int& z);

/// Bits per texel, ASTC included; 0 for a format without storage.
double bitsPerTexel(const CompressedFormat& format);

/// Why a texture's size cannot be encoded to `format`, with a size that can; empty when it can.
std::string sizeProblem(const zortexture::CZORTextureHeader& header, zortexture::PixelType format);
} // namespace zortex

#endif // ZORTEX_FORMAT_CAPABILITIES_H
