#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "SimpleCodecs.h"

namespace zortexture
{
namespace
{
constexpr int kMantissaBits = 9;
constexpr int kMantissaEnd = 1 << kMantissaBits;
constexpr unsigned int kMantissaMask = kMantissaEnd - 1;
constexpr int kExponentBias = 15;
constexpr unsigned int kExponentShift = 3 * kMantissaBits;
/// The largest value of a word: mantissa 511 at the exponent 31, 511 * 2^7.
constexpr float kLargestValue = 65408.0f;

constexpr std::size_t kFloatBytes = 3 * sizeof(float);
constexpr std::size_t kWordBytes = sizeof(rgb9e5);

int roundToNearest(double value)
{
	return static_cast<int>(std::floor(value + 0.5));
}
} // namespace

float ClampRange_for_rgb9e5(float value)
{
	// NaN fails the first comparison and becomes 0 as negative values do.
	if (value > 0.0f)
	{
		return value < kLargestValue ? value : kLargestValue;
	}
	return 0.0f;
}

float MaxOf3(float a, float b, float c)
{
	const float larger = a > b ? a : b;
	return larger > c ? larger : c;
}

int FloorLog2(float value)
{
	std::uint32_t bits = 0;
	std::memcpy(&bits, &value, sizeof(bits));
	return static_cast<int>(bits >> 23 & 0xFFu) - 127;
}

int Max(int a, int b)
{
	return a > b ? a : b;
}

rgb9e5 float3_to_rgb9e5(const float* rgb)
{
	const float red = ClampRange_for_rgb9e5(rgb[0]);
	const float green = ClampRange_for_rgb9e5(rgb[1]);
	const float blue = ClampRange_for_rgb9e5(rgb[2]);
	const float largest = MaxOf3(red, green, blue);

	// The step between mantissas puts the largest channel into the upper half of their range; where its mantissa would
	// round up to 512, twice the step.
	int exponent = Max(-kExponentBias - 1, FloorLog2(largest));
	double step = std::ldexp(1.0, exponent - (kMantissaBits - 1));
	if (roundToNearest(largest / step) == kMantissaEnd)
	{
		step *= 2.0;
		++exponent;
	}

	const auto mantissa = [step](float channel)
	{
		return static_cast<unsigned int>(roundToNearest(channel / step)) & kMantissaMask;
	};
	const auto biased = static_cast<unsigned int>(exponent + kExponentBias + 1);
	return mantissa(red) | mantissa(green) << kMantissaBits | mantissa(blue) << (2 * kMantissaBits) | biased << kExponentShift;
}

void rgb9e5_to_float3(rgb9e5 value, float* rgb)
{
	const double step = std::ldexp(1.0, static_cast<int>(value >> kExponentShift) - kExponentBias - kMantissaBits);
	for (int channel = 0; channel < 3; ++channel)
	{
		rgb[channel] = static_cast<float>((value >> (channel * kMantissaBits) & kMantissaMask) * step);
	}
}

// The buffers are only bytes to the caller, and may lie at any address: values go in and out through copies.

unsigned int RGB9E5Compress(const void* source, void* destination, const unsigned int& width, const unsigned int& height)
{
	const unsigned int numPixels = width * height;
	if (source != nullptr && destination != nullptr)
	{
		const auto* input = static_cast<const unsigned char*>(source);
		auto* output = static_cast<unsigned char*>(destination);
		for (unsigned int i = 0; i < numPixels; ++i, input += kFloatBytes, output += kWordBytes)
		{
			float rgb[3];
			std::memcpy(rgb, input, kFloatBytes);
			const rgb9e5 word = float3_to_rgb9e5(rgb);
			std::memcpy(output, &word, kWordBytes);
		}
	}
	return numPixels * static_cast<unsigned int>(kWordBytes);
}

unsigned int RGB9E5Decompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height)
{
	const unsigned int numPixels = width * height;
	if (source != nullptr && destination != nullptr)
	{
		const auto* input = static_cast<const unsigned char*>(source);
		auto* output = static_cast<unsigned char*>(destination);
		for (unsigned int i = 0; i < numPixels; ++i, input += kWordBytes, output += kFloatBytes)
		{
			rgb9e5 word = 0;
			std::memcpy(&word, input, kWordBytes);
			float rgb[3];
			rgb9e5_to_float3(word, rgb);
			std::memcpy(output, rgb, kFloatBytes);
		}
	}
	return numPixels * static_cast<unsigned int>(kFloatBytes);
}
} // namespace zortexture
