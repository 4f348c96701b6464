/// @file PixelEncoder.h
/// One pixel of any uncompressed layout, and its conversion into another.
#ifndef ZORT_PIXEL_ENCODER_H
#define ZORT_PIXEL_ENCODER_H

#include <cstdint>

#include "PixelType.h"

namespace zortexture
{
/// Bits of CPixelEncoder::GetError.
enum EPixelError : unsigned int
{
	/// Two positions hold the same channel.
	ePixelErrorDuplicateChannel = 1,
	/// A position has a channel but no bits.
	ePixelErrorNamedWithoutBits = 2,
	/// A position has bits but no channel.
	ePixelErrorBitsWithoutName = 4,
	/// A channel follows an empty position.
	ePixelErrorChannelGap = 8,
	/// The sum of the widths is no multiple of 8.
	ePixelErrorTotalBits = 16
};

/// Holds one pixel of a layout (channel letters, widths and a channel type) and converts pixels channel by channel
/// through floats of the range 0..1. A value object without heap memory, built once and reused for every pixel.
///
/// A channel whose width is that of the channel type is an element of the pixel's memory (halves are elements of the
/// float types too); all other channels are bit fields of one little-endian integer, the first channel at its most
/// significant end. Signed integers are sign and magnitude.
class ZORT_API CPixelEncoder
{
public:
	CPixelEncoder(PixelType pixelType, EZORTVariableType channelType);
	CPixelEncoder(EZORTVariableType channelType, unsigned char bits1, unsigned char bits2, unsigned char bits3, unsigned char bits4,
	              EChannelName name1, EChannelName name2, EChannelName name3, EChannelName name4);
	CPixelEncoder(const CPixelEncoder& other);
	CPixelEncoder& operator=(const CPixelEncoder& other) = default;

	/// A set of EPixelError bits; 0 for a valid layout.
	unsigned int GetError() const;
	/// Bits of the channel type; 0 for a type that does not exist.
	unsigned int GetTypeSize() const;
	unsigned int GetBitsPerPixel() const;
	/// Whole bytes of a pixel.
	unsigned int GetColourDataSize() const;
	/// The 16 bytes of the pixel.
	unsigned char* GetColourData();
	/// Copies a pixel in. False for a null pointer.
	bool OverwriteColourData(const unsigned char* colourData);

	/// Converts the source's pixel into this layout and returns this encoder. Nothing happens when either layout has an
	/// error. Channels that the source lacks: grey from its luminance or intensity, else 0; opaque for alpha.
	CPixelEncoder& EncodeFrom(CPixelEncoder& source);

	/// A channel's value; 1 for alpha and unused channels that the layout lacks, 0 for the others.
	float GetChannelFloat(EChannelName channel) const;

	/// Write one channel, in the storage rule that the name tells. Nothing happens when the layout lacks it.
	void SetChannelUFloat(EChannelName channel, const float& value);
	void SetChannelSFloat(EChannelName channel, const float& value);
	void SetChannelUNorm(EChannelName channel, const float& value);
	void SetChannelSNorm(EChannelName channel, const float& value);

	/// Moves r, g, b, l and i between linear and sRGB in place, by the library's own constants.
	void ConvertToColourSpace(EZORTColourSpace target, EZORTColourSpace source);

	/// For a position 0..3: its element number when its width is that of the channel type, else its bit mask.
	std::uint64_t GenerateChannelByteMask(unsigned char position) const;

	/// Set the bits of GetError; the constructors call the first, which calls the others.
	void CheckPixelValidity();
	void CheckChannelContinuity();
	void CheckDuplicatedChannels();
	void CheckInvalidChannelBits();
	void CheckValidTotalBits();

	/// A float as a small float of `exponentBits` with `bias` above `mantissaBits`, truncated; too small becomes 0, too
	/// large the largest value. The sign lands above the exponent, whatever `isSigned` says; `reserve` keeps the all-ones
	/// exponent for infinity.
	unsigned int ShrinkFloat(const float& value, const unsigned char& mantissaBits, const unsigned char& exponentBits,
	                         const unsigned char& bias, bool isSigned, bool reserve) const;
	/// A small float as a float. An all-ones exponent becomes infinity or NaN.
	float GrowFloat(const unsigned int& value, const unsigned char& mantissaBits, const unsigned char& exponentBits,
	                const unsigned char& bias, bool isSigned) const;
	/// The rules of reading and writing normalised channels of `bits` bits, as arithmetic.
	unsigned int ShrinkFloatToUNorm(const float& value, const unsigned char& bits) const;
	int ShrinkFloatToSNorm(const float& value, const unsigned char& bits) const;
	float GrowUNormToFloat(const unsigned int& value, const unsigned char& bits) const;
	float GrowSNormToFloat(const int& value, const unsigned char& bits) const;
	/// Sign-extends from `sourceBits`, then clamps to the symmetric range of `targetBits`.
	int ResizeSInt(const int& value, const unsigned char& sourceBits, const unsigned char& targetBits) const;

private:
	friend struct SPixelLayout;

	/// What a destination's luminance, intensity and missing colour channels receive.
	struct SGreyValues
	{
		float luminance = 0.0f;
		float intensity = 0.0f;
		float grey = 0.0f;
	};

	void Initialise(const unsigned char (&bits)[4], const EChannelName (&names)[4]);

	/// The position of a channel, or -1.
	int PositionOf(EChannelName channel) const;
	bool HasChannel(EChannelName channel) const;

	/// Whether integer channels are read as elements, not as bit fields.
	bool ReadsElements() const;
	std::uint64_t ReadUnsigned(int position) const;
	std::int32_t ReadSigned(int position) const;
	float ReadFloat(int position) const;

	/// Stores the low bits of an integer as an element or into a bit field.
	void WriteInteger(int position, std::uint32_t value);
	/// Writes one channel by the rule of the channel type.
	void SetChannel(EChannelName channel, float value);
	/// The same with the channel's largest value.
	void SetOpaque(EChannelName channel);
	void DeriveGrey(const CPixelEncoder& source, SGreyValues& values) const;

	std::uint32_t m_error;
	EZORTVariableType m_variableType;
	EChannelName m_channelNames[4];
	std::uint64_t m_channelMasks[4]; ///< a position's bit mask, or its element number
	std::int8_t m_channelIndex[8];   ///< by EChannelName: the position, or -1
	std::uint8_t m_channelStarts[4];
	std::uint8_t m_channelBits[4];
	std::uint8_t m_channelShifts[4];
	std::uint8_t m_totalBits;
	std::uint8_t m_typeBits;
	std::uint8_t m_numChannels;
	alignas(8) unsigned char m_colourData[16];
};
} // namespace zortexture

#endif // ZORT_PIXEL_ENCODER_H
