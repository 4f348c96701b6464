#include "TesselRounds.h"

#include <type_traits>
#include <utility>

#include "TesselLanes.h"

// All sums of the fit are exact in single precision: weights are eighths, residuals multiples of an eighth, their products of a 64th, and
// no sum comes near 2^24 of these. So they are made in integers here, in any order, and give the very floats that adding one by one gives.

namespace zortexture
{
namespace
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

// Modulation.

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

// Fit.

/// The means of the residuals and so on, for the blocks worked on.
template<bool kIs2bpp>
struct Means
{
	using Channels = typename Shape<kIs2bpp>::Channels;
	Channels residual;         ///< of each channel
	Channels weightedResidual; ///< times the weight
	Channels weight;           ///< the same in all channels of a block
	Channels squaredWeight;
};

/// The weights of the blocks worked on, each in both halves of its pixel's lane.
template<bool kIs2bpp>
ZORT_INLINE void loadWeights(const std::uint8_t* const (&from)[Shape<kIs2bpp>::kBlocks], I16 (&weights)[Shape<kIs2bpp>::kRegisters])
{
	using Half = Lanes<std::uint8_t, 16>;
	if constexpr (kIs2bpp)
	{
		for (unsigned y = 0; y < 4; y += 2)
		{
			const Half rows = Half::load(from[0] + 8 * y);
			const auto upper = as<std::int16_t>(interleaveLow(rows, Half::filled(0)));
			const auto lower = as<std::int16_t>(interleaveHigh(rows, Half::filled(0)));
			for (unsigned i = 0; i < Shape<true>::kPerRow; ++i)
			{
				weights[y * Shape<true>::kPerRow + i] = inPairs(upper, i);
				weights[(y + 1) * Shape<true>::kPerRow + i] = inPairs(lower, i);
			}
		}
	}
	else
	{
		U8 bytes;
#if defined(__AVX2__)
		bytes = join(Half::load(from[0]), Half::load(from[1]));
#else
		bytes = Half::load(from[0]);
#endif
		const I16 upper = as<std::int16_t>(interleaveLow(bytes, U8::filled(0)));
		const I16 lower = as<std::int16_t>(interleaveHigh(bytes, U8::filled(0)));
		weights[0] = interleaveLow(upper, upper);
		weights[1] = interleaveHigh(upper, upper);
		weights[2] = interleaveLow(lower, lower);
		weights[3] = interleaveHigh(lower, lower);
	}
}

template<bool kIs2bpp>
ZORT_INLINE Means<kIs2bpp> meansOf(const Work<kIs2bpp>& work, const I16 (&weights)[Shape<kIs2bpp>::kRegisters])
{
	using S = Shape<kIs2bpp>;
	using Channels = typename S::Channels;
	// Residuals in eighths, of at most 2550: eight of them stay within 16 bits.
	I16 redBlue = I16::filled(0);
	I16 greenAlpha = I16::filled(0);
	I16 weightSums = I16::filled(0);
	// Sums of red and blue of pixels 0 and 2 of a row, then of pixels 1 and 3; the same of green and alpha.
	I32 weightedRedBlue = I32::filled(0);
	I32 weightedGreenAlpha = I32::filled(0);
	I32 squaredWeights = I32::filled(0);
	for (unsigned r = 0; r < S::kRegisters; r += 2)
	{
		ColourPairs residuals[2];
		for (unsigned i = 0; i < 2; ++i)
		{
			const auto residual = [&weights, r, i ](I16 pixel, I16 a, I16 b) __attribute__((always_inline))
			{
				return ((pixel - a) << 3) - (b - a) * weights[r + i];
			};
			residuals[i] = {residual(work.pixels[r + i].redBlue, work.a[r + i].redBlue, work.b[r + i].redBlue),
			                residual(work.pixels[r + i].greenAlpha, work.a[r + i].greenAlpha, work.b[r + i].greenAlpha)};
			redBlue += residuals[i].redBlue;
			greenAlpha += residuals[i].greenAlpha;
			weightSums += weights[r + i];
			squaredWeights += sumsOfProducts(weights[r + i], weights[r + i]);
		}
		const I16 low = interleaveLow(weights[r], weights[r + 1]);
		const I16 high = interleaveHigh(weights[r], weights[r + 1]);
		weightedRedBlue += sumsOfProducts(interleaveLow(residuals[0].redBlue, residuals[1].redBlue), low) +
		                   sumsOfProducts(interleaveHigh(residuals[0].redBlue, residuals[1].redBlue), high);
		weightedGreenAlpha += sumsOfProducts(interleaveLow(residuals[0].greenAlpha, residuals[1].greenAlpha), low) +
		                      sumsOfProducts(interleaveHigh(residuals[0].greenAlpha, residuals[1].greenAlpha), high);
	}
	const I16 lowHalves = as<std::int16_t>(U32::filled(1));
	const I16 highHalves = as<std::int16_t>(U32::filled(0x10000));
	const auto residual = perBlock<kIs2bpp>(sumsOfFours(sumsOfProducts(redBlue, lowHalves), sumsOfProducts(greenAlpha, lowHalves),
	                                                    sumsOfProducts(redBlue, highHalves), sumsOfProducts(greenAlpha, highHalves)));
	const auto weighted =
	    perBlock<kIs2bpp>(interleaveLow(weightedRedBlue, weightedGreenAlpha) + interleaveHigh(weightedRedBlue, weightedGreenAlpha));
	const I32 sums = sumsOfProducts(weightSums, lowHalves);
	const auto weight = perBlock<kIs2bpp>(sumsOfFours(sums, sums, sums, sums));
	// Each square was counted twice, for both halves of the lane.
	const auto squared = perBlock<kIs2bpp>(sumsOfFours(squaredWeights, squaredWeights, squaredWeights, squaredWeights) >> 1);
	constexpr float kEighths = 1.0F / (8 * S::kPixels);
	constexpr float k64ths = 1.0F / (64 * S::kPixels);
	return {convert<float>(residual) * Channels::filled(kEighths), convert<float>(weighted) * Channels::filled(k64ths),
	        convert<float>(weight) * Channels::filled(kEighths), convert<float>(squared) * Channels::filled(k64ths)};
}

template<typename Channels>
ZORT_INLINE Channels clamped(Channels value, float low, float high)
{
	return least(greatest(value, Channels::filled(low)), Channels::filled(high));
}

/// The corrected colours of the blocks worked on; `settled` where a block keeps its own.
template<bool kIs2bpp>
ZORT_INLINE void correct(const Means<kIs2bpp>& means, typename Shape<kIs2bpp>::Integers isSettled,
                         typename Shape<kIs2bpp>::Integers& colourA, typename Shape<kIs2bpp>::Integers& colourB)
{
	using Channels = typename Shape<kIs2bpp>::Channels;
	const Channels e = means.residual;
	const Channels m = means.weight;
	const Channels one = Channels::filled(1.0F);
	const Channels variance = means.squaredWeight - m * m;
	const auto isFlat = ~(variance >= Channels::filled(1e-10F));
	const Channels a = convert<float>(colourA);
	const Channels b = convert<float>(colourB);

	const Channels slope = (means.weightedResidual - e * m) / variance;
	const Channels intercept = e - m * slope;
	Channels newA = a + clamped(intercept, -100.0F, 100.0F);
	Channels newB = b + clamped(slope + intercept, -100.0F, 100.0F);
	if (isAny(isFlat))
	{
		// One weight throughout: both ends move by their share of the residual, then towards each other.
		const Channels flatA = clamped(a + e * (one - m), 0.0F, 255.0F);
		const Channels flatB = clamped(b + e * m, 0.0F, 255.0F);
		const Channels between = flatB - flatA;
		const Channels difference = select(absolute(between) < one, Channels::filled(0.0F), between);
		newA = select(isFlat, flatA + (Channels::filled(0.5F) * m) * difference, newA);
		newB = select(isFlat, flatB - (Channels::filled(0.5F) * (one - m)) * difference, newB);
	}
	colourA = select(isSettled, colourA, truncated(clamped(newA, 0.0F, 255.0F)));
	colourB = select(isSettled, colourB, truncated(clamped(newB, 0.0F, 255.0F)));
}

/// The four channels of each block's colour in a lane each.
template<bool kIs2bpp>
ZORT_INLINE auto loadColours(const std::uint32_t* const (&corners)[Shape<kIs2bpp>::kBlocks], std::size_t stride)
{
	constexpr unsigned kBlocks = Shape<kIs2bpp>::kBlocks;
	const Lanes<std::uint32_t, 4> colours = {{corners[0][stride + 1], corners[kBlocks - 1][stride + 1], 0, 0}};
	const auto zero = Lanes<std::uint8_t, 16>::filled(0);
	const auto words = as<std::uint16_t>(interleaveLow(as<std::uint8_t>(colours), zero));
	const auto first = as<std::int32_t>(interleaveLow(words, as<std::uint16_t>(zero)));
	if constexpr (kBlocks == 2)
	{
		return join(first, as<std::int32_t>(interleaveHigh(words, as<std::uint16_t>(zero))));
	}
	else
	{
		return first;
	}
}

template<typename Integers>
ZORT_INLINE void storeColours(Integers channels, std::uint32_t* out)
{
	const auto words = packSigned(channels, channels);
	const auto bytes = as<std::uint32_t>(packUnsigned(words, words));
	for (unsigned i = 0; i < Integers::kCount / 4; ++i)
	{
		out[i] = bytes[4 * i];
	}
}

/// All steps for the blocks from `at` on.
template<bool kIs2bpp>
ZORT_INLINE void runBlocks(const TesselRound& round, std::size_t at)
{
	using S = Shape<kIs2bpp>;
	using Channels = typename S::Channels;
	const std::uint32_t* cornersA[S::kBlocks];
	const std::uint32_t* cornersB[S::kBlocks];
	const std::uint8_t* weightsOfBlocks[S::kBlocks];
	std::uint32_t places[S::kBlocks];
	const Pixel<unsigned char>* pixels[S::kBlocks];
	for (unsigned i = 0; i < S::kBlocks; ++i)
	{
		// The last block twice where their number is odd: it comes out the same.
		const std::uint32_t place = round.blocks[at + i < round.count ? at + i : round.count - 1];
		const std::size_t x = place % round.blocksX;
		const std::size_t y = place / round.blocksX;
		places[i] = place;
		cornersA[i] = round.coloursA + y * round.stride + x;
		cornersB[i] = round.coloursB + y * round.stride + x;
		weightsOfBlocks[i] = round.weights + std::size_t(S::kPixels) * place;
		pixels[i] = round.pixels + 4 * y * round.pitch + S::kWidth * x;
	}
	Work<kIs2bpp> work;
	loadPixels<kIs2bpp>(pixels, round.pitch, work.pixels);
	loadPlane<kIs2bpp>(cornersA, round.stride, work.a);
	loadPlane<kIs2bpp>(cornersB, round.stride, work.b);

	const auto choose = [&]() __attribute__((always_inline))
	{
		std::uint8_t chosen[S::kBlocks * S::kPixels];
		std::uint8_t modes[S::kBlocks];
		if constexpr (kIs2bpp)
		{
			modes[0] = choose2bpp(work, chosen);
		}
		else
		{
			const Choice4bpp choice = choose4bpp(work);
			choice.weights.store(chosen);
			for (unsigned i = 0; i < S::kBlocks; ++i)
			{
				modes[i] = choice.isMode1[4 * i] != 0 ? 1 : 0;
			}
		}
		for (unsigned i = 0; i < S::kBlocks; ++i)
		{
			std::uint8_t* weights = round.weights + std::size_t(S::kPixels) * places[i];
			const std::uint8_t* own = chosen + i * S::kPixels;
			bool isNew = round.modes[places[i]] != modes[i];
			for (unsigned k = 0; k < S::kPixels; k += 16)
			{
				using Half = Lanes<std::uint8_t, 16>;
				const Half some = Half::load(own + k);
				isNew = isAny(some != Half::load(weights + k)) || isNew;
				some.store(weights + k);
			}
			round.isModulationNew[at + i] = isNew ? 1 : 0;
			round.modes[places[i]] = modes[i];
		}
	};
	if (round.choosesFirst)
	{
		choose();
	}
	if (round.corrects)
	{
		I16 weights[S::kRegisters];
		loadWeights<kIs2bpp>(weightsOfBlocks, weights);
		const Means<kIs2bpp> means = meansOf<kIs2bpp>(work, weights);
		const Channels squares = means.residual * means.residual;
		const Channels squaredLength =
		    repeatedLane<0>(squares) + repeatedLane<1>(squares) + repeatedLane<2>(squares) + repeatedLane<3>(squares);
		const auto isSettled = squaredLength < Channels::filled(kIs2bpp ? 128.0F : 32.0F);
		if (isAll(isSettled))
		{
			for (unsigned i = 0; i < S::kBlocks; ++i)
			{
				round.newA[at + i] = cornersA[i][round.stride + 1];
				round.newB[at + i] = cornersB[i][round.stride + 1];
			}
		}
		else
		{
			auto colourA = loadColours<kIs2bpp>(cornersA, round.stride);
			auto colourB = loadColours<kIs2bpp>(cornersB, round.stride);
			correct<kIs2bpp>(means, isSettled, colourA, colourB);
			storeColours(colourA, round.newA + at);
			storeColours(colourB, round.newB + at);
		}
	}
	if (round.choosesLast)
	{
		choose();
	}
}

template<bool kIs2bpp>
ZORT_INLINE void runAll(const TesselRound& round)
{
	for (std::size_t at = 0; at < round.count; at += Shape<kIs2bpp>::kBlocks)
	{
		runBlocks<kIs2bpp>(round, at);
	}
}
} // namespace

template<ESimdLevel level>
void runTesselRound(const TesselRound& round, bool is2bpp)
{
	is2bpp ? runAll<true>(round) : runAll<false>(round);
}

template void runTesselRound<kLanesLevel>(const TesselRound&, bool);
} // namespace zortexture
