/// @file BulkConversion.h
/// Fast ways of converting many pixels of one layout into another. Each gives the bytes that the two encoders give pixel by pixel.
#pragma once

#include <cstddef>
#include <memory>

#include "PixelLayout.h"

namespace zortexture
{
/// What is to be done, analysed once for all pixels. The encoders are copies.
struct SConversionTask
{
	/// One pixel, as the encoders convert it; the result is in the destination's encoder.
	void convertPixel(const unsigned char* pixel)
	{
		sourceEncoder.OverwriteColourData(pixel);
		destinationEncoder.EncodeFrom(sourceEncoder);
		destinationEncoder.ConvertToColourSpace(targetSpace, sourceSpace);
	}

	CPixelEncoder sourceEncoder;
	CPixelEncoder destinationEncoder;
	SPixelLayout source;
	SPixelLayout destination;
	EZORTColourSpace targetSpace;
	EZORTColourSpace sourceSpace;
	unsigned long long numPixels; ///< in all: what preparing is worth
};

class CBulkConversion
{
public:
	virtual ~CBulkConversion() = default;

	/// The two images do not overlap. Nothing outside them is read or written.
	virtual void convert(const unsigned char* source, unsigned char* destination, std::size_t numPixels) const = 0;
};

/// By tables of all values of each channel of the source, where these are few. Null where they are not, or where making the tables
/// takes longer than the pixels.
std::unique_ptr<CBulkConversion> makeTableConversion(SConversionTask& task);

/// By the encoders' arithmetic on many channels at once. Null for layouts that are not ordinary.
std::unique_ptr<CBulkConversion> makeArithmeticConversion(SConversionTask& task);
} // namespace zortexture
