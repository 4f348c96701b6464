#include "DifferenceSums.h"

#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
using Channels = Lanes<float, 4>;
using TwoDoubles = Lanes<double, 2>;

constexpr unsigned int kPixelsInRegister = kLanesBytes / 4;

ZORT_INLINE TwoDoubles squareOfDistance(TwoDoubles distance)
{
	return distance * distance;
}

/// One step of a sum that is kept in single precision and added to in double.
ZORT_INLINE TwoDoubles roundedSum(TwoDoubles sum, TwoDoubles term)
{
	return toDoubles(toFloats(sum + term));
}

ZORT_INLINE U8 absoluteDifference(U8 a, U8 b)
{
	return subtractSaturated(a, b) | subtractSaturated(b, a);
}

/// Adds what one register of pixels has to sums of lanes: red and blue are the low bytes of 16 bits, green and alpha the high ones.
template<EDifferenceSum kind>
struct ByteSums
{
	U8 largest = U8::filled(0);
	U16 redBlue = U16::filled(0);
	U16 greenAlpha = U16::filled(0);
	U32 squares[4] = {U32::filled(0), U32::filled(0), U32::filled(0), U32::filled(0)};

	ZORT_INLINE void add(U8 difference)
	{
		const U16 low = as<std::uint16_t>(difference) & U16::filled(0xFF);
		const U16 high = as<std::uint16_t>(difference) >> 8;
		if constexpr (kind == eLargestDifference)
		{
			largest = greatest(largest, difference);
		}
		else if constexpr (kind == eSumOfDifferences)
		{
			redBlue += low;
			greenAlpha += high;
		}
		else
		{
			const U32 lowSquares = as<std::uint32_t>(low * low);
			const U32 highSquares = as<std::uint32_t>(high * high);
			squares[0] += lowSquares & U32::filled(0xFFFF);
			squares[1] += highSquares & U32::filled(0xFFFF);
			squares[2] += lowSquares >> 16;
			squares[3] += highSquares >> 16;
		}
	}

	/// The lanes of each channel together.
	ZORT_INLINE void join(unsigned int* sums) const
	{
		std::uint8_t bytes[kLanesBytes];
		std::uint16_t words[2][kLanesBytes / 2];
		std::uint32_t longs[4][kPixelsInRegister];
		largest.store(bytes);
		redBlue.store(words[0]);
		greenAlpha.store(words[1]);
		for (unsigned int c = 0; c < 4; ++c)
		{
			squares[c].store(longs[c]);
			unsigned int sum = 0;
			for (unsigned int pixel = 0; pixel < kPixelsInRegister; ++pixel)
			{
				if constexpr (kind == eLargestDifference)
				{
					sum = bytes[4 * pixel + c] > sum ? bytes[4 * pixel + c] : sum;
				}
				else if constexpr (kind == eSumOfDifferences)
				{
					sum += words[c % 2][2 * pixel + c / 2];
				}
				else
				{
					sum += longs[c][pixel];
				}
			}
			sums[c] = sum;
		}
	}
};
} // namespace

template<ESimdLevel level, EDifferenceSum kind>
void addDifferences(const float* a, const float* b, std::size_t numPixels, const float* means, float* sums)
{
	Channels sum = Channels::load(sums);
	if constexpr (kind == eSumOfDeviations)
	{
		const Channels mean = Channels::load(means);
		TwoDoubles redGreen = toDoubles(sum);
		TwoDoubles blueAlpha = toDoubles(shuffle<2, 3, 2, 3>(sum));
		for (std::size_t i = 0; i < numPixels; ++i)
		{
			const Channels distance = Channels::load(a + 4 * i) - Channels::load(b + 4 * i) - mean;
			redGreen = roundedSum(redGreen, squareOfDistance(toDoubles(distance)));
			blueAlpha = roundedSum(blueAlpha, squareOfDistance(toDoubles(shuffle<2, 3, 2, 3>(distance))));
		}
		sum = shuffle<0, 1, 4, 5>(toFloats(redGreen), toFloats(blueAlpha));
	}
	else
	{
		for (std::size_t i = 0; i < numPixels; ++i)
		{
			const Channels difference = Channels::load(a + 4 * i) - Channels::load(b + 4 * i);
			if constexpr (kind == eLargestDifference)
			{
				sum = greatest(absolute(difference), sum); // a difference that is no number is passed over
			}
			else if constexpr (kind == eSumOfDifferences)
			{
				sum += absolute(difference);
			}
			else
			{
				sum += difference * difference;
			}
		}
	}
	sum.store(sums);
}

template<ESimdLevel level, EDifferenceSum kind>
void sumByteDifferences(const unsigned char* a, const unsigned char* b, std::size_t numPixels, unsigned int* sums)
{
	// 1024 pixels are at most 256 registers: 256 * 255 fits 16 bits.
	static_assert(kMaxBytePixels / kPixelsInRegister * 255 <= 0xFFFF);
	ByteSums<kind> lanes;
	std::size_t i = 0;
	for (; i + kPixelsInRegister <= numPixels; i += kPixelsInRegister)
	{
		lanes.add(absoluteDifference(U8::load(a + 4 * i), U8::load(b + 4 * i)));
	}
	if (i != numPixels)
	{
		unsigned char lastOfA[kLanesBytes] = {};
		unsigned char lastOfB[kLanesBytes] = {};
		std::memcpy(lastOfA, a + 4 * i, 4 * (numPixels - i));
		std::memcpy(lastOfB, b + 4 * i, 4 * (numPixels - i));
		lanes.add(absoluteDifference(U8::load(lastOfA), U8::load(lastOfB)));
	}
	lanes.join(sums);
}

#define ZORT_BYTE_DIFFERENCES(kind)                                                                                                        \
	template void sumByteDifferences<kLanesLevel, kind>(const unsigned char*, const unsigned char*, std::size_t, unsigned int*);
#define ZORT_DIFFERENCES(kind)                                                                                                             \
	template void addDifferences<kLanesLevel, kind>(const float*, const float*, std::size_t, const float*, float*);
ZORT_BYTE_DIFFERENCES(eLargestDifference)
ZORT_BYTE_DIFFERENCES(eSumOfDifferences)
ZORT_BYTE_DIFFERENCES(eSumOfSquares)
ZORT_DIFFERENCES(eLargestDifference)
ZORT_DIFFERENCES(eSumOfDifferences)
ZORT_DIFFERENCES(eSumOfSquares)
ZORT_DIFFERENCES(eSumOfDeviations)
#undef ZORT_DIFFERENCES
#undef ZORT_BYTE_DIFFERENCES
} // namespace zortexture
