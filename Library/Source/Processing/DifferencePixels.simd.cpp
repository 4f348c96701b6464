#include "DifferencePixels.h"

#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
using Channels = Lanes<float, 4>;
using Words = Lanes<std::uint32_t, 4>;

/// Bytes come out four pixels at a time, a register of the narrow unit: what feeds it takes longer than it.
constexpr std::size_t kPixelsAtOnce = 4;

template<unsigned int N>
ZORT_INLINE Lanes<float, N> magnitudeOf(Lanes<float, N> difference)
{
	using Floats = Lanes<float, N>;
	const Floats limited = least(Floats::filled(1.0f), absolute(difference));
	return select(difference == difference, limited, Floats::filled(0.0f));
}

template<unsigned int N>
ZORT_INLINE void drawColour(const float* a, const float* b, float multiplier, float* pixels)
{
	using Floats = Lanes<float, N>;
	const Floats magnitude = magnitudeOf((Floats::load(a) - Floats::load(b)) * Floats::filled(multiplier));
	const auto isAlpha = (Lanes<std::int32_t, N>::counted() & Lanes<std::int32_t, N>::filled(3)) == Lanes<std::int32_t, N>::filled(3);
	(select(isAlpha, Floats::filled(1.0f) - magnitude, magnitude) + Floats::filled(0.5f)).store(pixels);
}

ZORT_INLINE Channels interleaved(Channels a, Channels b, bool isHigh)
{
	const Words left = as<std::uint32_t>(a);
	const Words right = as<std::uint32_t>(b);
	return as<float>(isHigh ? interleaveHigh(left, right) : interleaveLow(left, right));
}

/// The largest of the four lanes of each argument.
ZORT_INLINE Channels largestOfEach(const Channels (&pixels)[kPixelsAtOnce])
{
	const Channels first = greatest(interleaved(pixels[0], pixels[1], false), interleaved(pixels[0], pixels[1], true));
	const Channels second = greatest(interleaved(pixels[2], pixels[3], false), interleaved(pixels[2], pixels[3], true));
	return greatest(shuffle<0, 1, 4, 5>(first, second), shuffle<2, 3, 6, 7>(first, second));
}

struct Tolerance
{
	ZORT_INLINE void operator()(const float* a, const float* b, unsigned char* pixels) const
	{
		Channels magnitudes[kPixelsAtOnce];
		for (unsigned int i = 0; i < kPixelsAtOnce; ++i)
		{
			magnitudes[i] = magnitudeOf(Channels::load(a + 4 * i) - Channels::load(b + 4 * i));
		}
		const Channels largest = largestOfEach(magnitudes);
		const Words blueOrRed = select(Channels::filled(limit) > largest, Words::filled(0xFFFF0000), Words::filled(0xFF0000FF));
		select(largest * Channels::filled(255.0f) < Channels::filled(1.0f), Words::filled(0xFF000000), blueOrRed).store(pixels);
	}

	float limit;
};

struct Blend
{
	/// Towards zero and modulo 256. From 2^31 on floats are multiples of 256, and beyond 2^63 they stop at 2^63 - 1.
	ZORT_INLINE static Lanes<std::int32_t, 4> wrapped(Channels value)
	{
		const auto low = truncated(value) & Lanes<std::int32_t, 4>::filled(0xFF);
		return select(value >= Channels::filled(9223372036854775808.0f), Lanes<std::int32_t, 4>::filled(0xFF), low);
	}

	ZORT_INLINE void operator()(const float* a, const float* b, unsigned char* pixels) const
	{
		Lanes<std::int32_t, 4> bytes[kPixelsAtOnce];
		for (unsigned int i = 0; i < kPixelsAtOnce; ++i)
		{
			const Channels blend =
			    Channels::load(a + 4 * i) * Channels::filled(shareOfA) + Channels::load(b + 4 * i) * Channels::filled(1.0f - shareOfA);
			bytes[i] = wrapped(blend * Channels::filled(255.0f));
		}
		packUnsigned(packSigned(bytes[0], bytes[1]), packSigned(bytes[2], bytes[3])).store(pixels);
	}

	float shareOfA;
};

/// Runs over all pixels, the last ones on the side.
template<typename Draw>
ZORT_INLINE void drawAll(const float* a, const float* b, std::size_t numPixels, unsigned char* pixels, const Draw& draw)
{
	std::size_t i = 0;
	for (; i + kPixelsAtOnce <= numPixels; i += kPixelsAtOnce)
	{
		draw(a + 4 * i, b + 4 * i, pixels + 4 * i);
	}
	if (i != numPixels)
	{
		float last[2][4 * kPixelsAtOnce] = {};
		unsigned char lastPixels[4 * kPixelsAtOnce];
		std::memcpy(last[0], a + 4 * i, 4 * (numPixels - i) * sizeof(float));
		std::memcpy(last[1], b + 4 * i, 4 * (numPixels - i) * sizeof(float));
		draw(last[0], last[1], lastPixels);
		std::memcpy(pixels + 4 * i, lastPixels, 4 * (numPixels - i));
	}
}
} // namespace

template<ESimdLevel level>
void drawColours(const float* a, const float* b, std::size_t numPixels, float multiplier, float* pixels)
{
	std::size_t i = 0;
	for (; i + F32::kCount <= 4 * numPixels; i += F32::kCount)
	{
		drawColour<F32::kCount>(a + i, b + i, multiplier, pixels + i);
	}
	for (; i < 4 * numPixels; i += 4)
	{
		drawColour<4>(a + i, b + i, multiplier, pixels + i);
	}
}

template<ESimdLevel level>
void drawTolerance(const float* a, const float* b, std::size_t numPixels, float tolerance, unsigned char* pixels)
{
	drawAll(a, b, numPixels, pixels, Tolerance{tolerance});
}

template<ESimdLevel level>
void drawBlend(const float* a, const float* b, std::size_t numPixels, float shareOfA, unsigned char* pixels)
{
	drawAll(a, b, numPixels, pixels, Blend{shareOfA});
}

template void drawColours<kLanesLevel>(const float*, const float*, std::size_t, float, float*);
template void drawTolerance<kLanesLevel>(const float*, const float*, std::size_t, float, unsigned char*);
template void drawBlend<kLanesLevel>(const float*, const float*, std::size_t, float, unsigned char*);
} // namespace zortexture
