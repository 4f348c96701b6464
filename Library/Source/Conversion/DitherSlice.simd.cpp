// Each pixel takes errors from its left, upper left and upper neighbour, in the order in which a walk by columns reaches these: upper left,
// left, upper. No other order between pixels matters, so that rows can be walked side by side, each one pixel behind the row above. The
// four channels of a few rows make one register; all that a step needs lies in the registers of the two steps before.

#include "DitherSlice.h"

#include "Simd/Lanes.h"
#include "Unrolled.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kRows = I16::kCount / 4;

/// One pixel of each row; all moves between registers, since bytes stored one by one cannot be loaded as one at once.
using Pixels = Lanes<std::uint32_t, kRows>;

ZORT_INLINE I16 widened(Pixels pixels)
{
	return convert<std::int16_t>(as<std::uint8_t>(pixels));
}

/// The numbers, which are within 8 bits, as pixels.
ZORT_INLINE Pixels narrowed(I16 numbers)
{
	const U32 packed = as<std::uint32_t>(packUnsigned(numbers, numbers));
#if defined(__AVX2__)
	return shuffle<0, 1, 4, 5>(packed); // packed by halves
#else
	return shuffle<0, 1>(packed);
#endif
}

ZORT_INLINE I16 clamped(I16 value)
{
	return least(greatest(value, I16::filled(0)), I16::filled(255));
}

/// What a step keeps for the next ones.
struct SWave
{
	I16 error;        ///< of every row's last pixel
	I16 quarter;      ///< of it
	I16 upperQuarter; ///< the quarters of the row above, one pixel further back
};

struct SReduction
{
	I16 mask;
	U16 scale; ///< its high half of a product is a shift by the depth
};

/// Reduces one pixel of each row.
/// @param carried  the quarter that the row above the first one passes down to this pixel
ZORT_INLINE I16 step(SWave& wave, const SReduction& reduction, I16 pixel, std::uint64_t carried)
{
#if defined(__AVX2__)
	const U64 upper = shuffle<4, 0, 1, 2>(as<std::uint64_t>(wave.quarter), U64::filled(carried));
#else
	const U64 upper = shuffle<2, 0>(as<std::uint64_t>(wave.quarter), U64::filled(carried));
#endif
	const I16 fromAbove = as<std::int16_t>(upper);
	const I16 half = (wave.error - (wave.error >> 15)) >> 1; // towards zero
	I16 value = clamped(pixel + wave.upperQuarter);
	value = clamped(value + half);
	value = clamped(value + fromAbove);

	const I16 repeatedBits = as<std::int16_t>(multiplyHigh(as<std::uint16_t>(value), reduction.scale));
	const I16 reduced = least((value & reduction.mask) + repeatedBits, I16::filled(255));
	wave.error = value - reduced;
	wave.quarter = (wave.error + ((wave.error >> 15) & I16::filled(3))) >> 2;
	wave.upperQuarter = fromAbove;
	return reduced;
}

/// The last row's lanes.
ZORT_INLINE std::uint64_t lastRowOf(I16 value)
{
	return as<std::uint64_t>(value)[kRows - 1];
}

/// A few rows; those from `numRows` on are not there.
void ditherRows(unsigned char* pixels, SReduction reduction, std::size_t width, std::size_t numRows, std::int16_t* carried)
{
	SWave wave = {I16::filled(0), I16::filled(0), I16::filled(0)};
	const std::size_t stride = width * 4;
	const auto pixelAt = [=](std::size_t row, std::size_t time)
	{
		std::uint32_t pixel;
		std::memcpy(&pixel, pixels + row * stride + (time - row) * 4, sizeof(pixel));
		return pixel;
	};
	const auto storePixel = [=](std::size_t row, std::size_t time, std::uint32_t pixel)
	{
		std::memcpy(pixels + row * stride + (time - row) * 4, &pixel, sizeof(pixel));
	};
	const auto edgeStep = [&](std::size_t time)
	{
		// Pixels that are not there are 0 and have no error, as long as none of their row has been.
		Pixels pixel = Pixels::filled(0);
		for (std::size_t row = 0; row < numRows; ++row)
		{
			if (time >= row && time - row < width)
			{
				pixel.v[row] = pixelAt(row, time);
			}
		}
		std::uint64_t above = 0;
		if (time < width)
		{
			std::memcpy(&above, carried + time * 4, sizeof(above));
		}
		const Pixels reduced = narrowed(step(wave, reduction, widened(pixel), above));
		for (std::size_t row = 0; row < numRows; ++row)
		{
			if (time >= row && time - row < width)
			{
				storePixel(row, time, reduced[static_cast<unsigned int>(row)]);
			}
		}
		if (time >= kRows - 1 && time - (kRows - 1) < width)
		{
			const std::uint64_t passed = lastRowOf(wave.quarter);
			std::memcpy(carried + (time - (kRows - 1)) * 4, &passed, sizeof(passed));
		}
	};

	std::size_t time = 0;
	if (numRows == kRows)
	{
		for (; time < kRows - 1; ++time)
		{
			edgeStep(time);
		}
		SWave inner = wave; // a copy that no closure holds stays in registers
		for (; time < width; ++time)
		{
			Pixels pixel;
			unrolled<kRows>([&](auto row) { pixel.v[row.value] = pixelAt(row, time); });
			std::uint64_t above;
			std::memcpy(&above, carried + time * 4, sizeof(above));
			const Pixels reduced = narrowed(step(inner, reduction, widened(pixel), above));
			unrolled<kRows>([&](auto row) { storePixel(row, time, reduced[row]); });
			const std::uint64_t passed = lastRowOf(inner.quarter);
			std::memcpy(carried + (time - (kRows - 1)) * 4, &passed, sizeof(passed));
		}
		wave = inner;
	}
	for (; time < width + kRows - 1; ++time)
	{
		edgeStep(time);
	}
}
} // namespace

template<ESimdLevel level>
void ditherSlice(unsigned char* pixels, const unsigned char* depths, std::size_t width, std::size_t height, std::int16_t* carried)
{
	std::int16_t masks[I16::kCount];
	std::uint16_t scales[U16::kCount];
	for (unsigned int i = 0; i < I16::kCount; ++i)
	{
		const unsigned int depth = depths[i % 4];
		const bool isReduced = depth > 0 && depth < 8;
		masks[i] = isReduced ? static_cast<std::int16_t>(0xFF << (8 - depth) & 0xFF) : 0xFF;
		scales[i] = isReduced ? static_cast<std::uint16_t>(1u << (16 - depth)) : 0;
	}
	const SReduction reduction = {I16::load(masks), U16::load(scales)};
	std::memset(carried, 0, width * 4 * sizeof(*carried));
	for (std::size_t row = 0; row < height; row += kRows)
	{
		ditherRows(pixels + row * width * 4, reduction, width, height - row < kRows ? height - row : kRows, carried);
	}
}
template void ditherSlice<kLanesLevel>(unsigned char*, const unsigned char*, std::size_t, std::size_t, std::int16_t*);
} // namespace zortexture
