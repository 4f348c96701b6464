#include "flatness.h"

#include "Simd/Lanes.h"

using namespace zortexture;

namespace
{
constexpr int kPixels = static_cast<int>(kLanesBytes) / 4;

ZORT_INLINE U8 loadPixels(const KilnPaddedWindow& window, int pixel)
{
	return U8::load(window.bytes + 4 * (KilnPaddedWindow::kMargin + pixel));
}

/// Channels in 16 bits, of the first and the second half of each 16 bytes.
struct Wide
{
	I16 low;
	I16 high;
};

ZORT_INLINE Wide widen(U8 pixels)
{
	const U8 none = U8::filled(0);
	return {as<std::int16_t>(interleaveLow(pixels, none)), as<std::int16_t>(interleaveHigh(pixels, none))};
}

/// A bit for each pixel whose channels have a square sum below the limit.
template<unsigned int N>
ZORT_INLINE std::uint32_t bitsOfFlat(Lanes<std::int16_t, N> low, Lanes<std::int16_t, N> high)
{
	const auto squaresLow = sumsOfProducts(low, low);
	const auto squaresHigh = sumsOfProducts(high, high);
	I32 sums;
	if constexpr (N == 8)
	{
		sums = shuffle<0, 2, 4, 6>(squaresLow, squaresHigh) + shuffle<1, 3, 5, 7>(squaresLow, squaresHigh);
	}
	else
	{
		sums = shuffle<0, 2, 8, 10, 4, 6, 12, 14>(squaresLow, squaresHigh) + shuffle<1, 3, 9, 11, 5, 7, 13, 15>(squaresLow, squaresHigh);
	}
	return bitsOfMask(sums < I32::filled(kKilnFlatLimit));
}
} // namespace

template<ESimdLevel level>
void KilnFlatness<level>::findAlike(const KilnPaddedWindow& window, int pixelCount, int pixel, KilnPixelBits& bits)
{
	std::uint32_t colour = 0;
	std::memcpy(&colour, window.bytes + 4 * (KilnPaddedWindow::kMargin + pixel), sizeof(colour));
	const Wide seed = widen(as<std::uint8_t>(U32::filled(colour)));
	for (int first = 0; first < pixelCount; first += 32)
	{
		std::uint32_t word = 0;
		for (int i = 0; i < 32; i += kPixels)
		{
			const Wide here = widen(loadPixels(window, first + i));
			word |= bitsOfFlat(here.low - seed.low, here.high - seed.high) << i;
		}
		bits.words[first / 32] = word;
	}
}

template<ESimdLevel level>
void KilnFlatness<level>::findStraight(const KilnPaddedWindow& window, int pixelCount, int step, KilnPixelBits& bits)
{
	for (int first = 0; first < pixelCount; first += 32)
	{
		std::uint32_t word = 0;
		for (int i = 0; i < 32; i += kPixels)
		{
			const Wide before = widen(loadPixels(window, first + i - step));
			const Wide here = widen(loadPixels(window, first + i));
			const Wide behind = widen(loadPixels(window, first + i + step));
			word |= bitsOfFlat(before.low + behind.low - here.low - here.low, before.high + behind.high - here.high - here.high) << i;
		}
		bits.words[first / 32] = word;
	}
}

template void KilnFlatness<kLanesLevel>::findAlike(const KilnPaddedWindow&, int, int, KilnPixelBits&);
template void KilnFlatness<kLanesLevel>::findStraight(const KilnPaddedWindow&, int, int, KilnPixelBits&);
