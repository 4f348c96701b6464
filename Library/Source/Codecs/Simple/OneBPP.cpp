#include <cstddef>
#include <cstring>

#include "SimpleCodecs.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kPixelsPerByte = 8;
constexpr unsigned int kChannels = 4;
constexpr unsigned int kWhiteMean = 128;
} // namespace

unsigned int OneBPPCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height)
{
	const unsigned int numBytes = width * height / kPixelsPerByte;
	if (source == nullptr || destination == nullptr)
	{
		return numBytes;
	}
	const auto* pixel = static_cast<const unsigned char*>(source);
	auto* output = static_cast<unsigned char*>(destination);
	for (unsigned int i = 0; i < numBytes; ++i)
	{
		unsigned int bits = 0;
		for (unsigned int k = 0; k < kPixelsPerByte; ++k, pixel += kChannels)
		{
			const unsigned int mean = (static_cast<unsigned int>(pixel[0]) + pixel[1] + pixel[2]) / 3;
			bits |= static_cast<unsigned int>(mean >= kWhiteMean) << k;
		}
		output[i] = static_cast<unsigned char>(bits);
	}
	return numBytes;
}

unsigned int OneBPPDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height)
{
	const unsigned int numPixels = width * height;
	if (source == nullptr || destination == nullptr)
	{
		return numPixels * kChannels;
	}
	const auto* input = static_cast<const unsigned char*>(source);
	auto* pixel = static_cast<unsigned char*>(destination);
	for (unsigned int i = 0; i < numPixels; ++i, pixel += kChannels)
	{
		const unsigned int bit = input[i / kPixelsPerByte] >> (i % kPixelsPerByte) & 1u;
		std::memset(pixel, bit != 0 ? 255 : 0, 3);
		pixel[3] = 255;
	}
	return numPixels * kChannels;
}
} // namespace zortexture
