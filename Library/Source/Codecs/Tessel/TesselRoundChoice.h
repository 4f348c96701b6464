/// @file TesselRoundChoice.h
/// The modulation of blocks between two planes, in vectors. For `*.simd.cpp` sources.
#pragma once

#include "TesselRoundPlanes.h"

namespace zortexture
{
inline namespace ZORT_LANES_NAMESPACE
{
/// The colour of a weight from 0 to 10, which stands in both halves of a pixel's lane. Weights above 8 can leave the range of a byte, and
/// wrap.
ZORT_INLINE I16 mixed(I16 a, I16 b, I16 weight)
{
	const I16 eighths = (a << 3) + (b - a) * weight;
	return ((eighths + ((eighths >> 15) & I16::filled(7))) >> 3) & I16::filled(255);
}

/// Distances to the mixes of the four standard weights; the nearest's, and its index, the lower of equals. Both stand in one number.
struct Nearest
{
	I32 key;

	ZORT_INLINE I32 distance() const
	{
		return key >> 2;
	}
	ZORT_INLINE I32 index() const
	{
		return key & I32::filled(3);
	}
};

ZORT_INLINE Nearest nearestOf(I32 d0, I32 d1, I32 d2, I32 d3)
{
	const I32 first = least(d0 << 2, (d1 << 2) | I32::filled(1));
	const I32 second = least((d2 << 2) | I32::filled(2), (d3 << 2) | I32::filled(3));
	return {least(first, second)};
}

/// The candidates between two planes.
struct Mixes
{
	ColourPairs third;  ///< weight 3
	ColourPairs middle; ///< 4
	ColourPairs fifth;  ///< 5
};

ZORT_INLINE Mixes mixesOf(ColourPairs a, ColourPairs b)
{
	Mixes mixes;
	const auto mix = [](I16 from, I16 to, I16 & third, I16 & middle, I16 & fifth) __attribute__((always_inline))
	{
		const I16 step = to - from;
		const I16 two = step + step;
		third = from + ((two + step) >> 3);
		middle = from + (step >> 1);
		fifth = from + ((two + two + step) >> 3);
	};
	mix(a.redBlue, b.redBlue, mixes.third.redBlue, mixes.middle.redBlue, mixes.fifth.redBlue);
	mix(a.greenAlpha, b.greenAlpha, mixes.third.greenAlpha, mixes.middle.greenAlpha, mixes.fifth.greenAlpha);
	return mixes;
}

/// Indices 0 to 3 to weights.
ZORT_INLINE U8 weightsOf(U8 indices)
{
	return indices + indices + indices - ((indices >> 1) & U8::filled(1));
}

/// Weights of both blocks, 16 bytes each, and whether they are in mode 1.
struct Choice4bpp
{
	U8 weights;
	I32 isMode1;
};

ZORT_INLINE Choice4bpp choose4bpp(const Work<false>& work)
{
	I32 standard[4];
	I32 punchThrough[4];
	I32 errorOf0 = I32::filled(0);
	I32 errorOf1 = I32::filled(0);
	for (unsigned r = 0; r < 4; ++r)
	{
		const ColourPairs pixel = work.pixels[r];
		const Mixes mixes = mixesOf(work.a[r], work.b[r]);
		const I32 toA = squaredDistances(pixel, work.a[r]);
		const I32 toB = squaredDistances(pixel, work.b[r]);
		const Nearest nearest = nearestOf(toA, squaredDistances(pixel, mixes.third), squaredDistances(pixel, mixes.fifth), toB);
		standard[r] = nearest.index();
		errorOf0 += nearest.distance();

		// The third candidate is the middle without alpha, so that it is the pixel's own alpha that counts.
		const I32 toMiddle = squaredDistances(pixel, mixes.middle);
		const I16 alphaOnly = as<std::int16_t>(U32::filled(0xFFFF0000U));
		const ColourPairs clear = {mixes.middle.redBlue, mixes.middle.greenAlpha & ~alphaOnly};
		const I32 toClear = squaredDistances(pixel, clear);
		const Nearest punched = nearestOf(toA, toMiddle, toClear, toB);
		punchThrough[r] = punched.index();
		// The simulation leaves such pixels their alpha.
		errorOf1 += select(punchThrough[r] == I32::filled(2), toMiddle, punched.distance());
	}
	const I32 errors = sumsOfFours(errorOf0, errorOf1, errorOf0, errorOf1);
	Choice4bpp choice;
	choice.isMode1 = repeatedLane<0>(errors) > repeatedLane<1>(errors);
	I32 chosen[4];
	for (unsigned r = 0; r < 4; ++r)
	{
		chosen[r] = select(choice.isMode1, punchThrough[r], standard[r]);
	}
	const I16 upperRows = packSigned(chosen[0], chosen[1]);
	const I16 lowerRows = packSigned(chosen[2], chosen[3]);
	choice.weights = weightsOf(as<std::uint8_t>(packSigned(upperRows, lowerRows)));
	return choice;
}

/// A row of a 2bpp block.
using Row = Lanes<std::int16_t, 8>;

ZORT_INLINE Row rowOf(const I32* registers)
{
#if defined(__AVX2__)
	return packSigned(lower(registers[0]), upper(registers[0]));
#else
	return packSigned(registers[0], registers[1]);
#endif
}

/// Every number of a row in both halves of a pixel's lane; register r of the row.
ZORT_INLINE I16 inPairs(Row row, unsigned r)
{
#if defined(__AVX2__)
	static_cast<void>(r);
	return join(interleaveLow(row, row), interleaveHigh(row, row));
#else
	return r == 0 ? interleaveLow(row, row) : interleaveHigh(row, row);
#endif
}

/// The weights that the modes 1, 2 and 3 simulate for the left-out pixels of a block, from its stored weights, left-out pixels 0.
/// Neighbours outside the block do not count.
ZORT_INLINE void simulate2bpp(const Row (&stored)[4], Row (&four)[4], Row (&upDown)[4], Row (&leftRight)[4])
{
	const Row none = Row::filled(0);
	const Row one = Row::filled(1);
	const Row isSide = {{-1, 0, 0, 0, 0, 0, 0, -1}};
	for (unsigned y = 0; y < 4; ++y)
	{
		const bool isRim = y == 0 || y == 3;
		const Row horizontal = shuffle<8, 0, 1, 2, 3, 4, 5, 6>(stored[y], none) + shuffle<1, 2, 3, 4, 5, 6, 7, 8>(stored[y], none);
		const Row vertical = (y > 0 ? stored[y - 1] : none) + (y < 3 ? stored[y + 1] : none);
		leftRight[y] = select(isSide, horizontal + one, (horizontal + one) >> 1);
		// Without halving at the edges.
		upDown[y] = isRim ? vertical + one + one : (vertical + one + one) >> 1;
		const Row sum = horizontal + vertical + one;
		const Row ofThree = (sum * Row::filled(171)) >> 9; // a third, of sums up to 25
		four[y] = isRim ? select(isSide, sum >> 1, ofThree) : select(isSide, ofThree, (sum + one) >> 2);
	}
}

/// Chooses mode and weights of a 2bpp block.
ZORT_INLINE std::uint8_t choose2bpp(const Work<true>& work, std::uint8_t* weights)
{
	using S = Shape<true>;
	const Row isLeftOut[2] = {{{0, -1, 0, -1, 0, -1, 0, -1}}, {{-1, 0, -1, 0, -1, 0, -1, 0}}};
	I32 directErrors = I32::filled(0);
	I32 storedErrors = I32::filled(0);
	Row direct[4];
	Row stored[4];
	for (unsigned y = 0; y < 4; ++y)
	{
		I32 indices[S::kPerRow];
		I32 isB[S::kPerRow];
		for (unsigned i = 0; i < S::kPerRow; ++i)
		{
			const unsigned r = y * S::kPerRow + i;
			const Mixes mixes = mixesOf(work.a[r], work.b[r]);
			const I32 toA = squaredDistances(work.pixels[r], work.a[r]);
			const I32 toB = squaredDistances(work.pixels[r], work.b[r]);
			isB[i] = ~(toA < toB);
			directErrors += least(toA, toB);
			const Nearest nearest =
			    nearestOf(toA, squaredDistances(work.pixels[r], mixes.third), squaredDistances(work.pixels[r], mixes.fifth), toB);
			indices[i] = nearest.index();
			storedErrors += nearest.distance() & ~as<std::int32_t>(inPairs(isLeftOut[y & 1], i));
		}
		direct[y] = rowOf(isB) & Row::filled(8);
		const Row index = rowOf(indices);
		stored[y] = (index + index + index - (index >> 1)) & ~isLeftOut[y & 1];
	}
	Row simulated[3][4];
	simulate2bpp(stored, simulated[0], simulated[1], simulated[2]);
	I32 errors[3];
	for (unsigned mode = 0; mode < 3; ++mode)
	{
		errors[mode] = storedErrors;
		for (unsigned r = 0; r < S::kRegisters; ++r)
		{
			const unsigned y = r / S::kPerRow;
			const I16 weight = inPairs(simulated[mode][y], r % S::kPerRow);
			const ColourPairs mix = {mixed(work.a[r].redBlue, work.b[r].redBlue, weight),
			                         mixed(work.a[r].greenAlpha, work.b[r].greenAlpha, weight)};
			errors[mode] += squaredDistances(work.pixels[r], mix) & as<std::int32_t>(inPairs(isLeftOut[y & 1], r % S::kPerRow));
		}
	}
	const auto sums = perBlock<true>(sumsOfFours(directErrors, errors[0], errors[1], errors[2]));
	std::uint8_t mode = 0;
	int best = sums[0] * 4;
	for (unsigned m = 1; m < 4; ++m)
	{
		const int error = sums[m] * (m == 3 ? 4 : 3);
		if (error < best)
		{
			best = error;
			mode = static_cast<std::uint8_t>(m);
		}
	}
	for (unsigned y = 0; y < 4; ++y)
	{
		const Row chosen = mode == 0 ? direct[y] : (stored[y] | (simulated[mode - 1][y] & isLeftOut[y & 1]));
		const auto bytes = as<std::uint64_t>(packUnsigned(chosen, chosen));
		const std::uint64_t eight = bytes[0];
		std::memcpy(weights + 8 * y, &eight, 8);
	}
	return mode;
}
} // namespace ZORT_LANES_NAMESPACE
} // namespace zortexture
