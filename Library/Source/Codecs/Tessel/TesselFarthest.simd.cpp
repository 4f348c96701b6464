#include "TesselFarthest.h"

#include "TesselLanes.h"

// Of the 2016 pairs of a window of 8 by 8 most cannot be the farthest: a pixel's distance to the farthest corner of the box around all
// pixels bounds its distance to any of them, and a pixel whose bound stays below a distance already found needs no look. On the photograph
// 6 pixels of 64 are left.

namespace zortexture
{
namespace
{
constexpr unsigned kMostRegisters = kMostTesselWindowPixels / I32::kCount;

struct Window
{
	ColourPairs pixels[kMostRegisters];
	unsigned registers;

	ZORT_INLINE ColourPairs pixel(unsigned i) const
	{
		std::uint32_t redBlue;
		std::uint32_t greenAlpha;
		std::memcpy(&redBlue, reinterpret_cast<const char*>(&pixels[i / I32::kCount].redBlue) + 4 * (i % I32::kCount), 4);
		std::memcpy(&greenAlpha, reinterpret_cast<const char*>(&pixels[i / I32::kCount].greenAlpha) + 4 * (i % I32::kCount), 4);
		return {as<std::int16_t>(U32::filled(redBlue)), as<std::int16_t>(U32::filled(greenAlpha))};
	}
};

ZORT_INLINE U8 boxEnd(const Pixel<unsigned char>* pixels, unsigned count, bool greatestWanted)
{
	U8 end = U8::load(pixels);
	for (unsigned i = U32::kCount; i < count; i += U32::kCount)
	{
		const U8 some = U8::load(pixels + i);
		end = greatestWanted ? greatest(end, some) : least(end, some);
	}
	// The same four channels in all lanes.
	const auto fold = [greatestWanted](U8 a, U8 b) __attribute__((always_inline))
	{
		return greatestWanted ? greatest(a, b) : least(a, b);
	};
#if defined(__AVX2__)
	end = fold(end, as<std::uint8_t>(shuffle<2, 3, 0, 1>(as<std::uint64_t>(end))));
	end = fold(end, as<std::uint8_t>(shuffle<1, 0, 3, 2>(as<std::uint64_t>(end))));
	return fold(end, as<std::uint8_t>(shuffle<1, 0, 3, 2, 5, 4, 7, 6>(as<std::uint32_t>(end))));
#else
	end = fold(end, as<std::uint8_t>(shuffle<1, 0>(as<std::uint64_t>(end))));
	return fold(end, as<std::uint8_t>(shuffle<1, 0, 3, 2>(as<std::uint32_t>(end))));
#endif
}

ZORT_INLINE int greatestLane(I32 a)
{
	Lanes<std::int32_t, 4> four;
#if defined(__AVX2__)
	four = greatest(lower(a), upper(a));
#else
	four = a;
#endif
	four = greatest(four, shuffle<2, 3, 0, 1>(four));
	return greatest(four, shuffle<1, 0, 3, 2>(four))[0];
}

/// The lowest lane of all registers from `begin` on that holds a number, which is there.
ZORT_INLINE unsigned firstAmong(const I32* numbers, unsigned begin, int number)
{
	for (unsigned r = begin;; ++r)
	{
		const unsigned found = bitsOfMask(numbers[r] == I32::filled(number));
		if (found != 0)
		{
			return r * I32::kCount + static_cast<unsigned>(__builtin_ctz(found));
		}
	}
}

/// The distances of all pixels from register `begin` on to one; returns the greatest of every lane.
ZORT_INLINE I32 distancesTo(const Window& window, ColourPairs pixel, unsigned begin, I32* distances)
{
	I32 most = I32::filled(0);
	for (unsigned r = begin; r < window.registers; ++r)
	{
		distances[r] = squaredDistances(window.pixels[r], pixel);
		most = greatest(most, distances[r]);
	}
	return most;
}
} // namespace

template<ESimdLevel level>
void findFarthestTesselPixels(Pixel<unsigned char>* pixels, unsigned count, unsigned& first, unsigned& second)
{
	first = 0;
	second = 0;
	Window window;
	window.registers = (count + I32::kCount - 1) / I32::kCount;
	const unsigned filled = window.registers * I32::kCount;
	// Copies of the last pixel add no distance and come after it.
	for (unsigned i = count; i < filled; ++i)
	{
		pixels[i] = pixels[count - 1];
	}
	const U8 low = boxEnd(pixels, filled, false);
	const U8 high = boxEnd(pixels, filled, true);
	I32 bounds[kMostRegisters];
	I32 most = I32::filled(0);
	for (unsigned r = 0; r < window.registers; ++r)
	{
		const U8 some = U8::load(pixels + r * U32::kCount);
		window.pixels[r] = colourPairs(some);
		const ColourPairs reach = colourPairs(greatest(high - some, some - low));
		bounds[r] = sumsOfProducts(reach.redBlue, reach.redBlue) + sumsOfProducts(reach.greenAlpha, reach.greenAlpha);
		most = greatest(most, bounds[r]);
	}
	// From the pixel of the greatest bound on: its way to the farthest is nearly always the longest. Going on from there to look for a
	// longer one leaves no fewer pixels.
	const unsigned end = firstAmong(bounds, 0, greatestLane(most));
	I32 distances[kMostRegisters];
	int longest = greatestLane(distancesTo(window, window.pixel(end), 0, distances));
	if (longest == 0)
	{
		return; // all are equal
	}
	longest -= 1; // the pair itself is yet to be found, or an earlier one
	for (unsigned r = 0; r < window.registers; ++r)
	{
		unsigned candidates = bitsOfMask(bounds[r] > I32::filled(longest));
		for (; candidates != 0; candidates &= candidates - 1)
		{
			const unsigned i = r * I32::kCount + static_cast<unsigned>(__builtin_ctz(candidates));
			// A longer way to an earlier pixel would have been found from there.
			const I32 found = distancesTo(window, window.pixel(i), r, distances);
			if (isAny(found > I32::filled(longest)))
			{
				longest = greatestLane(found);
				first = i;
				second = firstAmong(distances, r, longest);
			}
		}
	}
}

template void findFarthestTesselPixels<kLanesLevel>(Pixel<unsigned char>*, unsigned, unsigned&, unsigned&);
} // namespace zortexture
