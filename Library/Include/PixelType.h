/// @file PixelType.h
/// The 64-bit identifier of a pixel layout, and the names of channels.
#ifndef ZORT_PIXEL_TYPE_H
#define ZORT_PIXEL_TYPE_H

#include "ZORTDefines.h"

namespace zortexture
{
/// Names of channels, in the order of the letters "rgbalix".
enum EChannelName : unsigned int
{
	eCh_None = 0,
	eCh_Red = 1,
	eCh_Green = 2,
	eCh_Blue = 3,
	eCh_Alpha = 4,
	eCh_Luminance = 5,
	eCh_Intensity = 6,
	/// A channel whose content is ignored.
	eCh_Unused = 7
};

/// The channel that a letter of a pixel type names: 'r', 'g', 'b', 'a', 'l', 'i', 'x' (lower case only);
/// eCh_None for every other byte.
ZORT_API EChannelName MapCharToEnum(unsigned char letter);

/// The letter of a channel; 0 for eCh_None and for values that name no channel.
ZORT_API unsigned char MapEnumToChar(EChannelName channel);

/// The upper four bytes of a pixel type, as an array of four.
class PixelTypeBits
{
public:
	operator unsigned char*()
	{
		return m_bytes + 4;
	}

	operator const unsigned char*() const
	{
		return m_bytes + 4;
	}

	unsigned char* begin()
	{
		return m_bytes + 4;
	}

	unsigned char* end()
	{
		return m_bytes + 8;
	}

	const unsigned char* begin() const
	{
		return m_bytes + 4;
	}

	const unsigned char* end() const
	{
		return m_bytes + 8;
	}

private:
	unsigned char m_bytes[8];
};

/// A pixel layout as an 8-byte value: up to four channel letters and their widths in bits, in channel order.
/// All widths zero means a compressed format, an EZORTPixelFormat in the low 32 bits.
class PixelType
{
public:
	/// The identifier 0. Note that this is also the number of ePF_TesselI_2bpp_RGB.
	constexpr PixelType() : id(0)
	{
	}

	/// Takes an identifier, or an EZORTPixelFormat, as it stands.
	constexpr PixelType(unsigned long long identifier) : id(identifier)
	{
	}

	/// Four channel letters and their widths in bits; 0 and 0 where there is no channel. Nothing is validated.
	constexpr PixelType(unsigned char c1, unsigned char c2, unsigned char c3, unsigned char c4, unsigned char bits1, unsigned char bits2,
	                    unsigned char bits3, unsigned char bits4)
	    : id(c1 | static_cast<unsigned long long>(c2) << 8 | static_cast<unsigned long long>(c3) << 16 |
	         static_cast<unsigned long long>(c4) << 24 | static_cast<unsigned long long>(bits1) << 32 |
	         static_cast<unsigned long long>(bits2) << 40 | static_cast<unsigned long long>(bits3) << 48 |
	         static_cast<unsigned long long>(bits4) << 56)
	{
	}

	/// True for a compressed format: the one condition by which the library tells the two kinds apart.
	constexpr bool isCompressed() const
	{
		return (id >> 32) == 0;
	}

	/// Three views of the same eight bytes; the letters are bytes 0 to 3 of `id`, the widths bytes 4 to 7.
	union
	{
		unsigned long long id;
		unsigned char channelName[4];
		PixelTypeBits channelBits;
	};
};
static_assert(sizeof(PixelType) == 8, "a pixel type is eight bytes");

/// The layouts that the image-processing functions work on: rgba at 8, 16 and 32 bits a channel.
inline constexpr PixelType ZORStandard8PixelType(0x0808080861626772ull);
inline constexpr PixelType ZORStandard16PixelType(0x1010101061626772ull);
inline constexpr PixelType ZORStandard32PixelType(0x2020202061626772ull);
} // namespace zortexture

#endif // ZORT_PIXEL_TYPE_H
