#include "RowFilters.h"

#include "ElementCeiling.h"
#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kChannels = 4;
constexpr unsigned int kPixelsAtOnce = F32::kCount / kChannels; ///< in one register of floats: 1 or 2

template<unsigned int N>
using Floats = Lanes<float, N>;
using Integers = I32;

/// Elements as floats. Unsigned int is rounded once, as the language does.
template<unsigned int N, typename T>
ZORT_INLINE Floats<N> loadNumbers(const T* elements)
{
	if constexpr (sizeof(T) < 4)
	{
		return convert<float>(loadWidened<N>(elements));
	}
	else
	{
		return convert<float>(Lanes<T, N>::load(elements));
	}
}

/// The pixels of a row at one tap of N / 4 neighbouring pixels of the result.
template<unsigned int N, unsigned int Count>
ZORT_INLINE Floats<N> loadTaps(const float* row, const AxisTaps<Count>* taps, unsigned int tap)
{
	const auto first = Floats<kChannels>::load(row + taps[0].index[tap] * kChannels);
	if constexpr (N == kChannels)
	{
		return first;
	}
	else
	{
		return join(first, Floats<kChannels>::load(row + taps[1].index[tap] * kChannels));
	}
}

/// As the spline of one channel, operation by operation.
template<unsigned int N>
ZORT_INLINE Floats<N> spline(Floats<N> p0, Floats<N> p1, Floats<N> p2, Floats<N> p3, Floats<N> t)
{
	const auto two = Floats<N>::filled(2.0f);
	const auto three = Floats<N>::filled(3.0f);
	const Floats<N> t2 = t * t;
	const Floats<N> t3 = t2 * t;
	const Floats<N> square = two * p0 - Floats<N>::filled(5.0f) * p1 + Floats<N>::filled(4.0f) * p2 - p3;
	const Floats<N> cube = three * p1 - p0 - three * p2 + p3;
	return Floats<N>::filled(0.5f) * (two * p1 + (p2 - p0) * t + square * t2 + cube * t3);
}

template<unsigned int N>
ZORT_INLINE void splineAlong(const float* row, const RowTaps<4>& x, std::size_t pixel, float* numbers)
{
	const AxisTaps<4>* taps = x.taps + pixel;
	spline(loadTaps<N>(row, taps, 0), loadTaps<N>(row, taps, 1), loadTaps<N>(row, taps, 2), loadTaps<N>(row, taps, 3),
	       Floats<N>::load(x.fractions + pixel * kChannels))
	    .store(numbers + pixel * kChannels);
}

template<unsigned int N>
ZORT_INLINE void splineAcross(const float* const* rows, float fraction, std::size_t offset, float* numbers)
{
	spline(Floats<N>::load(rows[0] + offset), Floats<N>::load(rows[1] + offset), Floats<N>::load(rows[2] + offset),
	       Floats<N>::load(rows[3] + offset), Floats<N>::filled(fraction))
	    .store(numbers + offset);
}

/// The spline at t = 1/2.
template<unsigned int N>
ZORT_INLINE Floats<N> middle(Floats<N> p0, Floats<N> p1, Floats<N> p2, Floats<N> p3)
{
	return (Floats<N>::filled(9.0f) * (p1 + p2) - (p0 + p3)) * Floats<N>::filled(0.0625f);
}

/// From the pixel ahead of the two in the middle on. Two samples have a register each ahead of them, between, and behind.
template<unsigned int N>
ZORT_INLINE void middleAlong(const float* row, float* numbers)
{
	if constexpr (N == kChannels)
	{
		using Four = Floats<kChannels>;
		middle(Four::load(row), Four::load(row + 4), Four::load(row + 8), Four::load(row + 12)).store(numbers);
	}
	else
	{
		const F32 ahead = F32::load(row);
		const F32 between = F32::load(row + 8);
		const F32 behind = F32::load(row + 16);
		middle(join(lower(ahead), lower(between)), join(upper(ahead), upper(between)), join(lower(between), lower(behind)),
		       join(upper(between), upper(behind)))
		    .store(numbers);
	}
}

template<unsigned int N>
ZORT_INLINE void middleAcross(const float* const* rows, std::size_t offset, float* numbers)
{
	middle(Floats<N>::load(rows[0] + offset), Floats<N>::load(rows[1] + offset), Floats<N>::load(rows[2] + offset),
	       Floats<N>::load(rows[3] + offset))
	    .store(numbers + offset);
}

/// A weight on each row is that of the axis x times those of y and z, in this order.
template<unsigned int N, unsigned int NumSlices>
ZORT_INLINE void sampleLinear(const float* const* rows, const RowTaps<2>& x, const float (&weightY)[2], const float (&weightZ)[2],
                              std::size_t pixel, float* numbers)
{
	const AxisTaps<2>* taps = x.taps + pixel;
	const auto fraction = Floats<N>::load(x.fractions + pixel * kChannels);
	const Floats<N> weightX[2] = {Floats<N>::filled(1.0f) - fraction, fraction};
	auto sum = Floats<N>::filled(0.0f);
	for (unsigned int row = 0; row < NumSlices * 2; ++row)
	{
		for (unsigned int i = 0; i < 2; ++i)
		{
			Floats<N> weight = weightX[i] * Floats<N>::filled(weightY[row % 2]);
			if constexpr (NumSlices == 2)
			{
				weight *= Floats<N>::filled(weightZ[row / 2]);
			}
			sum += loadTaps<N>(rows[row], taps, i) * weight;
		}
	}
	sum.store(numbers + pixel * kChannels);
}

template<unsigned int NumSlices>
ZORT_INLINE void sampleLinearRow(const float* const* rows, const RowTaps<2>& x, float fractionY, float fractionZ, float* numbers)
{
	const float weightY[2] = {1.0f - fractionY, fractionY};
	const float weightZ[2] = {1.0f - fractionZ, fractionZ};
	std::size_t pixel = 0;
	for (; pixel + kPixelsAtOnce <= x.width; pixel += kPixelsAtOnce)
	{
		sampleLinear<F32::kCount, NumSlices>(rows, x, weightY, weightZ, pixel, numbers);
	}
	for (; pixel < x.width; ++pixel)
	{
		sampleLinear<kChannels, NumSlices>(rows, x, weightY, weightZ, pixel, numbers);
	}
}

/// Two registers side by side, so that one waits for its sum while the other adds. They may be the same.
template<unsigned int N>
ZORT_INLINE void convolve(const float* const* rows, std::size_t numRows, const float* kernel, unsigned int kernelWidth, float scale,
                          std::size_t first, std::size_t second, float* numbers)
{
	auto sumOfFirst = Floats<N>::filled(0.0f);
	auto sumOfSecond = Floats<N>::filled(0.0f);
	for (std::size_t row = 0; row < numRows; ++row)
	{
		const float* pixel = rows[row];
		for (unsigned int x = 0; x < kernelWidth; ++x, ++kernel, pixel += kChannels)
		{
			const auto tap = Floats<N>::filled(*kernel);
			sumOfFirst += tap * Floats<N>::load(pixel + first);
			sumOfSecond += tap * Floats<N>::load(pixel + second);
		}
	}
	(sumOfFirst * Floats<N>::filled(scale)).store(numbers + first);
	(sumOfSecond * Floats<N>::filled(scale)).store(numbers + second);
}

/// As many pixels as a register of elements holds, limited and truncated. Of unsigned int, 2^32 becomes 0.
template<typename T>
constexpr unsigned int kPixelsOfRegister = kLanesBytes / sizeof(Pixel<T>);

template<typename T>
ZORT_INLINE F32 loadLimited(const float* numbers)
{
	// A number that cannot be compared is no more than 0.
	return least(greatest(F32::load(numbers), F32::filled(0.0f)), F32::filled(kElementCeiling<T>));
}

template<typename T>
ZORT_INLINE I32 loadTruncated(const float* numbers)
{
	return truncated(loadLimited<T>(numbers));
}

ZORT_INLINE void clampPixels(const float* numbers, Pixel<unsigned char>* pixels)
{
	constexpr unsigned int kStep = F32::kCount;
	const auto low = packSigned(loadTruncated<unsigned char>(numbers), loadTruncated<unsigned char>(numbers + kStep));
	const auto high = packSigned(loadTruncated<unsigned char>(numbers + 2 * kStep), loadTruncated<unsigned char>(numbers + 3 * kStep));
	const auto packed = as<std::int32_t>(packUnsigned(low, high));
	if constexpr (kLanesLevel == eSimdAvx2)
	{
		shuffle<0, 4, 1, 5, 2, 6, 3, 7>(packed).store(pixels);
	}
	else
	{
		packed.store(pixels);
	}
}

ZORT_INLINE void clampPixels(const float* numbers, Pixel<unsigned short>* pixels)
{
	const auto packed =
	    as<std::int64_t>(packUnsigned(loadTruncated<unsigned short>(numbers), loadTruncated<unsigned short>(numbers + F32::kCount)));
	if constexpr (kLanesLevel == eSimdAvx2)
	{
		shuffle<0, 2, 1, 3>(packed).store(pixels);
	}
	else
	{
		packed.store(pixels);
	}
}

ZORT_INLINE void clampPixels(const float* numbers, Pixel<unsigned int>* pixels)
{
	// The processor converts to signed numbers: the upper half of the range moves down for that. 2^32 then is out of range, which the
	// processor answers with the top bit alone, and that goes out again.
	const F32 limited = loadLimited<unsigned int>(numbers);
	const F32 half = F32::filled(2147483648.0f);
	const auto isHigh = limited >= half;
	const I32 low = truncated(select(isHigh, limited - half, limited));
	(low ^ (isHigh & I32::filled(INT32_MIN))).store(pixels);
}

ZORT_INLINE void clampPixels(const float* numbers, Pixel<float>* pixels)
{
	loadLimited<float>(numbers).store(pixels);
}

/// Sums of the elements of one register of each row, from 2 * kLanesBytes bytes on: those of pixels 2n and 2n + 1 added, and divided by
/// their number.
template<unsigned int NumRows>
ZORT_INLINE void halvePixels(const Pixel<unsigned char>* const (&rows)[NumRows], Pixel<unsigned char>* result)
{
	constexpr int kShift = NumRows == 2 ? 2 : 3;
	const U8 zero = U8::filled(0);
	U16 means[2];
	for (unsigned int part = 0; part < 2; ++part)
	{
		U16 low = U16::filled(0);
		U16 high = U16::filled(0);
		for (unsigned int row = 0; row < NumRows; ++row)
		{
			const U8 elements = U8::load(reinterpret_cast<const unsigned char*>(rows[row]) + part * kLanesBytes);
			low += as<std::uint16_t>(interleaveLow(elements, zero));
			high += as<std::uint16_t>(interleaveHigh(elements, zero));
		}
		const U64 even = interleaveLow(as<std::uint64_t>(low), as<std::uint64_t>(high));
		const U64 odd = interleaveHigh(as<std::uint64_t>(low), as<std::uint64_t>(high));
		means[part] = (as<std::uint16_t>(even) + as<std::uint16_t>(odd)) >> kShift;
	}
	const auto packed = as<std::int64_t>(packUnsigned(as<std::int16_t>(means[0]), as<std::int16_t>(means[1])));
	if constexpr (kLanesLevel == eSimdAvx2)
	{
		shuffle<0, 2, 1, 3>(packed).store(result);
	}
	else
	{
		packed.store(result);
	}
}

template<unsigned int NumRows>
ZORT_INLINE void halvePixels(const Pixel<unsigned short>* const (&rows)[NumRows], Pixel<unsigned short>* result)
{
	constexpr int kShift = NumRows == 2 ? 2 : 3;
	const U16 zero = U16::filled(0);
	I32 means[2];
	for (unsigned int part = 0; part < 2; ++part)
	{
		U32 sum = U32::filled(0);
		for (unsigned int row = 0; row < NumRows; ++row)
		{
			const U16 elements = U16::load(reinterpret_cast<const unsigned char*>(rows[row]) + part * kLanesBytes);
			sum += as<std::uint32_t>(interleaveLow(elements, zero)) + as<std::uint32_t>(interleaveHigh(elements, zero));
		}
		means[part] = as<std::int32_t>(sum >> kShift);
	}
	const auto packed = as<std::int64_t>(packUnsigned(means[0], means[1]));
	if constexpr (kLanesLevel == eSimdAvx2)
	{
		shuffle<0, 2, 1, 3>(packed).store(result);
	}
	else
	{
		packed.store(result);
	}
}

template<unsigned int NumRows, typename T>
ZORT_INLINE void halveRows(const Pixel<T>* const* rows, Pixel<T>* result, std::size_t width)
{
	constexpr unsigned int kStep = kPixelsOfRegister<T>;
	const Pixel<T>* at[NumRows];
	std::size_t pixel = 0;
	for (; pixel + kStep <= width; pixel += kStep)
	{
		for (unsigned int row = 0; row < NumRows; ++row)
		{
			at[row] = rows[row] + pixel * 2;
		}
		halvePixels(at, result + pixel);
	}
	if (pixel < width)
	{
		Pixel<T> tails[NumRows][kStep * 2] = {};
		Pixel<T> means[kStep];
		for (unsigned int row = 0; row < NumRows; ++row)
		{
			std::memcpy(tails[row], rows[row] + pixel * 2, (width - pixel) * 2 * sizeof(Pixel<T>));
			at[row] = tails[row];
		}
		halvePixels(at, means);
		std::memcpy(result + pixel, means, (width - pixel) * sizeof(Pixel<T>));
	}
}

/// Smoothed values times 64 at most: of bytes in 16 bits, of words in 32.
template<typename T>
using Sum = std::conditional_t<sizeof(T) == 1, std::uint16_t, std::int32_t>;

ZORT_INLINE U16 loadSums(const unsigned char* elements)
{
	return loadWords(elements);
}
ZORT_INLINE I32 loadSums(const unsigned short* elements)
{
	return loadWidened<I32::kCount>(elements);
}

template<unsigned int N>
ZORT_INLINE Floats<N> loadSmoothed(const std::uint16_t* sums)
{
	return convert<float>(loadWidened<N>(sums));
}
template<unsigned int N>
ZORT_INLINE Floats<N> loadSmoothed(const std::int32_t* sums)
{
	return convert<float>(Lanes<std::int32_t, N>::load(sums));
}

/// The sum of three rows with the weights 1 2 1, at one register of sums.
template<typename T>
ZORT_INLINE FullLanes<Sum<T>> sumOfSlice(const T* const* rows, std::size_t offset)
{
	const FullLanes<Sum<T>> middle = loadSums(rows[1] + offset);
	return loadSums(rows[0] + offset) + middle + middle + loadSums(rows[2] + offset);
}

/// The sum of the rows of a slice, or with the same weights that of three slices.
template<unsigned int NumRows, typename T>
ZORT_INLINE void addRows(const T* const (&rows)[NumRows], std::size_t offset, Sum<T>* sums)
{
	if constexpr (NumRows == 3)
	{
		sumOfSlice(rows, offset).store(sums + offset);
	}
	else
	{
		const FullLanes<Sum<T>> middle = sumOfSlice(rows + 3, offset);
		(sumOfSlice(rows, offset) + middle + middle + sumOfSlice(rows + 6, offset)).store(sums + offset);
	}
}

/// One register of sums along a row, from three pixels on.
template<typename T>
ZORT_INLINE void addAlong(const Sum<T>* sums, int shift, Sum<T>* result)
{
	using Sums = FullLanes<Sum<T>>;
	const Sums middle = Sums::load(sums + kChannels);
	((Sums::load(sums) + middle + middle + Sums::load(sums + std::size_t{2} * kChannels)) >> shift).store(result);
}

/// `sums` has room for a pixel ahead of the row and for a register and a pixel behind it.
template<unsigned int NumRows, typename T>
ZORT_INLINE void smoothRows(const Pixel<T>* const* rows, Sum<T>* sums, float* numbers, std::size_t width)
{
	constexpr unsigned int kStep = kLanesBytes / sizeof(Sum<T>);
	constexpr int kShift = NumRows == 3 ? 4 : 6;
	const std::size_t count = width * kChannels;
	const T* elements[NumRows];
	for (unsigned int row = 0; row < NumRows; ++row)
	{
		elements[row] = reinterpret_cast<const T*>(rows[row]);
	}
	Sum<T>* inner = sums + kChannels;
	std::size_t i = 0;
	for (; i + kStep <= count; i += kStep)
	{
		addRows(elements, i, inner);
	}
	if (i < count)
	{
		T tails[NumRows][kStep] = {};
		for (unsigned int row = 0; row < NumRows; ++row)
		{
			std::memcpy(tails[row], elements[row] + i, (count - i) * sizeof(T));
			elements[row] = tails[row];
		}
		addRows(elements, 0, inner + i);
	}
	for (unsigned int channel = 0; channel < kChannels; ++channel)
	{
		sums[channel] = inner[count - kChannels + channel];
		inner[count + channel] = inner[count - kChannels + channel];
	}
	// The results go where the sums ahead of them were, which are not needed any more.
	for (i = 0; i < count; i += kStep)
	{
		addAlong<T>(sums + i, kShift, sums + i);
	}
	for (i = 0; i + F32::kCount <= count; i += F32::kCount)
	{
		loadSmoothed<F32::kCount>(sums + i).store(numbers + i);
	}
	for (; i < count; i += kChannels)
	{
		loadSmoothed<kChannels>(sums + i).store(numbers + i);
	}
}
} // namespace

template<ESimdLevel level, typename T>
void expandRow(const Pixel<T>* row, float* numbers, std::size_t width)
{
	const T* elements = reinterpret_cast<const T*>(row);
	const std::size_t count = width * kChannels;
	std::size_t i = 0;
	for (; i + F32::kCount <= count; i += F32::kCount)
	{
		loadNumbers<F32::kCount>(elements + i).store(numbers + i);
	}
	for (; i < count; i += kChannels)
	{
		loadNumbers<kChannels>(elements + i).store(numbers + i);
	}
}

template<ESimdLevel level, typename T>
void clampRow(const float* numbers, Pixel<T>* row, std::size_t width)
{
	constexpr unsigned int kStep = kPixelsOfRegister<T>;
	std::size_t pixel = 0;
	for (; pixel + kStep <= width; pixel += kStep)
	{
		clampPixels(numbers + pixel * kChannels, row + pixel);
	}
	if (pixel < width)
	{
		float tail[kStep * kChannels] = {};
		Pixel<T> pixels[kStep];
		std::memcpy(tail, numbers + pixel * kChannels, (width - pixel) * kChannels * sizeof(float));
		clampPixels(tail, pixels);
		std::memcpy(row + pixel, pixels, (width - pixel) * sizeof(Pixel<T>));
	}
}

template<ESimdLevel level>
void linearRow(const float* const* rows, unsigned int numSlices, const RowTaps<2>& x, float fractionY, float fractionZ, float* numbers)
{
	if (numSlices == 1)
	{
		sampleLinearRow<1>(rows, x, fractionY, fractionZ, numbers);
	}
	else
	{
		sampleLinearRow<2>(rows, x, fractionY, fractionZ, numbers);
	}
}

template<ESimdLevel level>
void splineAlongRow(const float* row, const RowTaps<4>& x, float* numbers)
{
	std::size_t pixel = 0;
	for (; pixel + kPixelsAtOnce <= x.width; pixel += kPixelsAtOnce)
	{
		splineAlong<F32::kCount>(row, x, pixel, numbers);
	}
	for (; pixel < x.width; ++pixel)
	{
		splineAlong<kChannels>(row, x, pixel, numbers);
	}
}

template<ESimdLevel level>
void splineAcrossRows(const float* const* rows, float fraction, float* numbers, std::size_t width)
{
	const std::size_t count = width * kChannels;
	std::size_t i = 0;
	for (; i + F32::kCount <= count; i += F32::kCount)
	{
		splineAcross<F32::kCount>(rows, fraction, i, numbers);
	}
	for (; i < count; i += kChannels)
	{
		splineAcross<kChannels>(rows, fraction, i, numbers);
	}
}

template<ESimdLevel level>
void middleAlongRow(const float* row, float* numbers, std::size_t width)
{
	std::size_t pixel = 0;
	for (; pixel + kPixelsAtOnce <= width; pixel += kPixelsAtOnce)
	{
		middleAlong<F32::kCount>(row + (2 * pixel - 1) * kChannels, numbers + pixel * kChannels);
	}
	for (; pixel < width; ++pixel)
	{
		middleAlong<kChannels>(row + (2 * pixel - 1) * kChannels, numbers + pixel * kChannels);
	}
}

template<ESimdLevel level>
void middleAcrossRows(const float* const* rows, float* numbers, std::size_t width)
{
	const std::size_t count = width * kChannels;
	std::size_t i = 0;
	for (; i + F32::kCount <= count; i += F32::kCount)
	{
		middleAcross<F32::kCount>(rows, i, numbers);
	}
	for (; i < count; i += kChannels)
	{
		middleAcross<kChannels>(rows, i, numbers);
	}
}

template<ESimdLevel level>
void convolveRow(const float* const* rows, std::size_t numRows, const float* kernel, unsigned int kernelWidth, float scale, float* numbers,
                 std::size_t width)
{
	const std::size_t count = width * kChannels;
	std::size_t i = 0;
	for (; i + 2 * F32::kCount <= count; i += 2 * F32::kCount)
	{
		convolve<F32::kCount>(rows, numRows, kernel, kernelWidth, scale, i, i + F32::kCount, numbers);
	}
	for (; i < count; i += kChannels)
	{
		convolve<kChannels>(rows, numRows, kernel, kernelWidth, scale, i, i, numbers);
	}
}

template<ESimdLevel level>
void truncateRow(float* numbers, std::size_t width)
{
	for (std::size_t i = 0; i < width * kChannels; i += kChannels)
	{
		using Four = Floats<kChannels>;
		const Four number = Four::load(numbers + i);
		// From 2^24 on every float is an integer.
		const Four integer = select(number < Four::filled(16777216.0f), convert<float>(truncated(number)), number);
		select(number < Four::filled(kElementCeiling<unsigned int>), integer, Four::filled(0.0f)).store(numbers + i);
	}
}

template<ESimdLevel level, typename T>
void smoothRow(const Pixel<T>* const* rows, unsigned int numRows, void* sums, float* numbers, std::size_t width)
{
	if (numRows == 3)
	{
		smoothRows<3>(rows, static_cast<Sum<T>*>(sums), numbers, width);
	}
	else
	{
		smoothRows<9>(rows, static_cast<Sum<T>*>(sums), numbers, width);
	}
}

template<ESimdLevel level, typename T>
void halveRow(const Pixel<T>* const* rows, unsigned int numRows, Pixel<T>* result, std::size_t width)
{
	if (numRows == 2)
	{
		halveRows<2>(rows, result, width);
	}
	else
	{
		halveRows<4>(rows, result, width);
	}
}

#define ZORT_ROW_FILTERS(T)                                                                                                                \
	template void expandRow<kLanesLevel>(const Pixel<T>*, float*, std::size_t);                                                            \
	template void clampRow<kLanesLevel>(const float*, Pixel<T>*, std::size_t);
ZORT_ROW_FILTERS(unsigned char)
ZORT_ROW_FILTERS(unsigned short)
ZORT_ROW_FILTERS(unsigned int)
ZORT_ROW_FILTERS(float)
#undef ZORT_ROW_FILTERS
template void linearRow<kLanesLevel>(const float* const*, unsigned int, const RowTaps<2>&, float, float, float*);
template void splineAlongRow<kLanesLevel>(const float*, const RowTaps<4>&, float*);
template void splineAcrossRows<kLanesLevel>(const float* const*, float, float*, std::size_t);
template void middleAlongRow<kLanesLevel>(const float*, float*, std::size_t);
template void middleAcrossRows<kLanesLevel>(const float* const*, float*, std::size_t);
template void convolveRow<kLanesLevel>(const float* const*, std::size_t, const float*, unsigned int, float, float*, std::size_t);
template void truncateRow<kLanesLevel>(float*, std::size_t);
template void smoothRow<kLanesLevel>(const Pixel<unsigned char>* const*, unsigned int, void*, float*, std::size_t);
template void smoothRow<kLanesLevel>(const Pixel<unsigned short>* const*, unsigned int, void*, float*, std::size_t);
template void halveRow<kLanesLevel>(const Pixel<unsigned char>* const*, unsigned int, Pixel<unsigned char>*, std::size_t);
template void halveRow<kLanesLevel>(const Pixel<unsigned short>* const*, unsigned int, Pixel<unsigned short>*, std::size_t);
} // namespace zortexture
