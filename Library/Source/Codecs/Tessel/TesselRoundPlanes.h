/// @file TesselRoundPlanes.h
/// The pixels of the blocks that a round of the fast compressors works on at once, and the planes of colour over them, in vectors. For
/// `*.simd.cpp` sources.
#pragma once

#include <type_traits>
#include <utility>

#include "TesselLanes.h"
#include "TesselRounds.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
/// A lane of 16 bytes holds a row of four pixels. At 4bpp it belongs to a block of its own, at 2bpp two make a row.
constexpr unsigned kHalves = I32::kCount / 4;

template<bool kIs2bpp>
struct Shape
{
	static constexpr unsigned kWidth = kIs2bpp ? 8 : 4;
	static constexpr unsigned kPixels = 4 * kWidth;
	/// Blocks worked on at once.
	static constexpr unsigned kBlocks = kIs2bpp ? 1 : kHalves;
	/// Registers for a row of their pixels, and for all.
	static constexpr unsigned kPerRow = kBlocks * kWidth / I32::kCount;
	static constexpr unsigned kRegisters = 4 * kPerRow;
	/// Registers of 16-bit channels for a row of one block.
	static constexpr unsigned kWidePerRow = 4 * kWidth / I16::kCount;
	/// Colours of the blocks that are worked on, four channels each.
	using Channels = Lanes<float, 4 * kBlocks>;
	using Integers = Lanes<std::int32_t, 4 * kBlocks>;
};

/// Image and planes of the blocks worked on.
template<bool kIs2bpp>
struct Work
{
	ColourPairs pixels[Shape<kIs2bpp>::kRegisters];
	ColourPairs a[Shape<kIs2bpp>::kRegisters];
	ColourPairs b[Shape<kIs2bpp>::kRegisters];
};

/// Offsets from the centre at the left of the pixels of a block.
constexpr std::int16_t kOffsets[2][32] = {
    {2, 2, 2, 2, 3, 3, 3, 3, 0, 0, 0, 0, 1, 1, 1, 1},
    {4, 4, 4, 4, 5, 5, 5, 5, 6, 6, 6, 6, 7, 7, 7, 7, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3},
};

/// Lane i of each four in all four.
template<int i, typename T, unsigned N>
ZORT_INLINE Lanes<T, N> repeatedLane(Lanes<T, N> a)
{
	if constexpr (N == 4)
	{
		return shuffle<i, i, i, i>(a);
	}
	else
	{
		return shuffle<i, i, i, i, i + 4, i + 4, i + 4, i + 4>(a);
	}
}

/// For each four lanes the sums of those of a, b, c and d.
template<unsigned N>
ZORT_INLINE Lanes<std::int32_t, N> sumsOfFours(Lanes<std::int32_t, N> a, Lanes<std::int32_t, N> b, Lanes<std::int32_t, N> c,
                                               Lanes<std::int32_t, N> d)
{
	const auto ab = as<std::uint64_t>(interleaveLow(a, b) + interleaveHigh(a, b));
	const auto cd = as<std::uint64_t>(interleaveLow(c, d) + interleaveHigh(c, d));
	return as<std::int32_t>(interleaveLow(ab, cd)) + as<std::int32_t>(interleaveHigh(ab, cd));
}

/// What stands for each of the blocks worked on, from sums over 16 bytes each.
template<bool kIs2bpp>
ZORT_INLINE auto perBlock(I32 sums)
{
	if constexpr (kIs2bpp && kHalves == 2)
	{
		return lower(sums) + upper(sums);
	}
	else
	{
		return sums;
	}
}

// Planes.

/// Registers of the channels of four columns of blocks.
constexpr unsigned kLineRegisters = 16 / I16::kCount;

/// For register r of a row of a block's pixels: in the left half of the block column kFirst of the line, in the right half the next.
template<unsigned kWidth, int kFirst, unsigned r>
ZORT_INLINE I16 columnsOf(const I16 (&line)[kLineRegisters])
{
#if defined(__AVX2__)
	if constexpr (kWidth == 4)
	{
		return as<std::int16_t>(shuffle<kFirst, kFirst, kFirst + 1, kFirst + 1>(as<std::uint64_t>(line[0])));
	}
	else
	{
		constexpr int kColumn = kFirst + static_cast<int>(r);
		return as<std::int16_t>(shuffle<kColumn, kColumn, kColumn, kColumn>(as<std::uint64_t>(line[0])));
	}
#else
	constexpr int kColumn = kFirst + static_cast<int>(kWidth == 4 ? r : r / 2);
	return as<std::int16_t>(shuffle<kColumn % 2, kColumn % 2>(as<std::uint64_t>(line[kColumn / 2])));
#endif
}

/// A row of a block's pixels from the line of colours between the columns of blocks.
template<bool kIs2bpp, unsigned... r>
ZORT_INLINE void upscaleRow(const I16 (&line)[kLineRegisters], I16* out, std::integer_sequence<unsigned, r...>)
{
	constexpr unsigned kWidth = Shape<kIs2bpp>::kWidth;
	const auto upscaled = [&line](auto number) __attribute__((always_inline))
	{
		constexpr unsigned kRegister = decltype(number)::value;
		const I16 left = columnsOf<kWidth, 0, kRegister>(line);
		const I16 right = columnsOf<kWidth, 1, kRegister>(line);
		const I16 offsets = I16::load(kOffsets[kIs2bpp ? 1 : 0] + kRegister * I16::kCount);
		return ((left << (kIs2bpp ? 3 : 2)) + (right - left) * offsets) >> (kIs2bpp ? 5 : 4);
	};
	((out[r] = upscaled(std::integral_constant<unsigned, r>{})), ...);
}

/// The lines of a block's four rows of pixels: 2 and 3 below the centre above it and 0 and 1 below its own.
ZORT_INLINE void mixLines(const std::uint32_t* colours, std::size_t stride, I16 (&lines)[4][kLineRegisters])
{
	I16 rows[3][kLineRegisters];
	for (unsigned i = 0; i < 3; ++i)
	{
		const auto bytes = Lanes<std::uint8_t, 16>::load(colours + i * stride);
#if defined(__AVX2__)
		rows[i][0] = convert<std::int16_t>(bytes);
#else
		rows[i][0] = as<std::int16_t>(interleaveLow(bytes, U8::filled(0)));
		rows[i][1] = as<std::int16_t>(interleaveHigh(bytes, U8::filled(0)));
#endif
	}
	for (unsigned i = 0; i < kLineRegisters; ++i)
	{
		const I16 own = rows[1][i];
		const I16 two = own + own;
		lines[0][i] = rows[0][i] + rows[0][i] + two;
		lines[1][i] = rows[0][i] + two + own;
		lines[2][i] = two + two;
		lines[3][i] = two + own + rows[2][i];
	}
}

/// One plane of the blocks worked on.
template<bool kIs2bpp>
ZORT_INLINE void loadPlane(const std::uint32_t* const (&corners)[Shape<kIs2bpp>::kBlocks], std::size_t stride, ColourPairs* plane)
{
	using S = Shape<kIs2bpp>;
	I16 lines[S::kBlocks][4][kLineRegisters];
	for (unsigned i = 0; i < S::kBlocks; ++i)
	{
		mixLines(corners[i], stride, lines[i]);
	}
	for (unsigned y = 0; y < 4; ++y)
	{
		I16 channels[S::kBlocks * S::kWidePerRow];
		for (unsigned i = 0; i < S::kBlocks; ++i)
		{
			upscaleRow<kIs2bpp>(lines[i][y], channels + i * S::kWidePerRow, std::make_integer_sequence<unsigned, S::kWidePerRow>{});
		}
		for (unsigned r = 0; r < S::kPerRow; ++r)
		{
			plane[y * S::kPerRow + r] = colourPairs(packedPixels(channels[2 * r], channels[2 * r + 1]));
		}
	}
}

/// The pixels of the blocks worked on.
template<bool kIs2bpp>
ZORT_INLINE void loadPixels(const Pixel<unsigned char>* const (&corners)[Shape<kIs2bpp>::kBlocks], std::size_t pitch, ColourPairs* pixels)
{
	using S = Shape<kIs2bpp>;
	for (unsigned y = 0; y < 4; ++y)
	{
		if constexpr (S::kBlocks == 2)
		{
			using Half = Lanes<std::uint8_t, 16>;
			pixels[y] = colourPairs(join(Half::load(corners[0] + y * pitch), Half::load(corners[S::kBlocks - 1] + y * pitch)));
		}
		else
		{
			for (unsigned r = 0; r < S::kPerRow; ++r)
			{
				pixels[y * S::kPerRow + r] = colourPairs(U8::load(corners[0] + y * pitch + r * I32::kCount));
			}
		}
	}
}
} // namespace ZORT_LANES_NAMESPACE
} // namespace zortexture
