#include "TesselBands.h"

#include "TesselLanes.h"

namespace zortexture
{
namespace
{
/// Pixels made at once: two areas at 4bpp, one at 2bpp.
constexpr unsigned kGroup = 8;
/// Registers of 16-bit channels that hold them.
constexpr unsigned kRegisters = 4 * kGroup / I16::kCount;

/// The offset of each channel's pixel from the centre on its left, at 4 and at 2bpp.
constexpr std::int16_t kOffsets[2][4 * kGroup] = {
    {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3},
    {0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 6, 6, 6, 6, 7, 7, 7, 7},
};

ZORT_INLINE U32 field(U32 words, int position, std::uint32_t mask)
{
	return (words >> position) & U32::filled(mask);
}

/// Four bits in every byte to five.
ZORT_INLINE U32 widened(U32 channels)
{
	return (channels << 1) | ((channels >> 3) & U32::filled(0x01010101));
}

/// The weights of a register's pixels, one in each channel.
ZORT_INLINE I16 spread(const std::uint8_t* weights)
{
	std::uint32_t some = 0;
	std::memcpy(&some, weights, kTesselPixels);
#if defined(__AVX2__)
	alignas(32) static constexpr std::uint8_t kPlaces[32] = {0, 128, 0, 128, 0, 128, 0, 128, 1, 128, 1, 128, 1, 128, 1, 128,
	                                                         2, 128, 2, 128, 2, 128, 2, 128, 3, 128, 3, 128, 3, 128, 3, 128};
	return as<std::int16_t>(shuffleBytes(as<std::uint8_t>(U32::filled(some)), U8::load(kPlaces)));
#else
	const U8 bytes = as<std::uint8_t>(U32::filled(some));
	const U16 words = as<std::uint16_t>(interleaveLow(bytes, U8::filled(0)));
	const U16 pairs = interleaveLow(words, words);
	return as<std::int16_t>(interleaveLow(as<std::uint32_t>(pairs), as<std::uint32_t>(pairs)));
#endif
}

/// Colours of a row of pixels v below the centres, at the places of the centres, scaled by 4.
ZORT_INLINE void mixRows(const std::uint32_t* above, const std::uint32_t* below, unsigned v, std::size_t columns, std::int16_t* line)
{
	const std::uint32_t* second = v >= 3 ? below : above;
	const std::uint32_t* third = v >= 2 ? below : above;
	const std::uint32_t* fourth = v >= 1 ? below : above;
	for (std::size_t i = 0; i < columns; i += U32::kCount)
	{
		storeWide(U8::load(above + i) + U8::load(second + i) + U8::load(third + i) + U8::load(fourth + i), line + 4 * i);
	}
}

/// The colours of a row of blocks at 8 bits a channel.
ZORT_INLINE void expandRow(const std::uint32_t* colours, std::size_t columns, std::int16_t* line)
{
	for (std::size_t i = 0; i < columns; i += U32::kCount)
	{
		// Five bits: the top ones repeated below. Four bits of alpha, doubled: 17 times.
		constexpr std::uint64_t kDown = 0x8000400040004000ULL;
		std::int16_t channels[U8::kCount];
		storeWide(U8::load(colours + i), channels);
		for (unsigned part = 0; part < 2; ++part)
		{
			const U16 c = U16::load(channels + part * U16::kCount);
			((c << 3) + multiplyHigh(c, as<std::uint16_t>(U64::filled(kDown)))).store(line + 4 * i + part * U16::kCount);
		}
	}
}

/// The eight bits of an upscaled plane for register r of the group that begins with the area at `line`.
template<unsigned kWidth>
ZORT_INLINE I16 upscaled(const std::int16_t* line, unsigned r)
{
	constexpr bool kWide = kWidth == 8;
	const unsigned area = r * kTesselPixels / kWidth;
	const I16 left = repeatedColour(line + 4 * area);
	const I16 right = repeatedColour(line + 4 * area + 4);
	const I16 t = (left << (kWide ? 3 : 2)) + (right - left) * I16::load(kOffsets[kWide ? 1 : 0] + r * I16::kCount);
	// Full scale becomes 255 without a division: the low part repeats the high bits, five of colours and four of alpha.
	constexpr std::uint64_t kRepeat = kWide ? 0x0400020002000200ULL : 0x0800040004000400ULL;
	return (t >> (kWide ? 2 : 1)) + multiplyHigh(t, as<std::int16_t>(U64::filled(kRepeat)));
}

/// What a row of pixels is made of: the line of each plane between the blocks, and of the blocks themselves.
struct Lines
{
	const std::int16_t* a;
	const std::int16_t* b;
	const std::int16_t* ownA;
	const std::int16_t* ownB;
	const std::uint8_t* weights;
	const std::uint8_t* hard;
};

/// The group of pixels that begins with the area of a column, as bytes.
template<unsigned kWidth, bool kSecond>
ZORT_INLINE void writeGroup(const Lines& lines, std::size_t column, unsigned char* out)
{
	// The areas of a group that are hard, from the column's at the right; one area is all of a group at 2bpp.
	unsigned hard = 0;
	if (kSecond && lines.hard != nullptr)
	{
		hard = lines.hard[column] != 0 ? 1 : 0;
		hard |= (kWidth == 8 ? hard : (lines.hard[column + 1] != 0 ? 1U : 0U)) << 1;
	}
	I16 colours[kRegisters];
	for (unsigned r = 0; r < kRegisters; ++r)
	{
		const std::int16_t* lineA = lines.a + 4 * column;
		const std::int16_t* lineB = lines.b + 4 * column;
		const bool isHard = kSecond && ((hard >> (r * kTesselPixels / 4)) & 1) != 0;
		const I16 a = isHard ? coloursOfHalves<kWidth>(lines.ownA + 4 * column, r) : upscaled<kWidth>(lineA, r);
		const I16 b = isHard ? coloursOfHalves<kWidth>(lines.ownB + 4 * column, r) : upscaled<kWidth>(lineB, r);
		I16 weight = spread(lines.weights + kWidth * column + kWidth / 2 + r * kTesselPixels);
		if constexpr (kWidth == 8)
		{
			colours[r] = a + (((b - a) * weight) >> 3);
		}
		else
		{
			// Coloured transparency in the first generation, transparent black in the second.
			constexpr std::uint64_t kCleared = kSecond ? ~0ULL : 0xFFFF000000000000ULL;
			const I16 isClear = (weight > I16::filled(kTesselBandPunch - 1)) & as<std::int16_t>(U64::filled(kCleared));
			weight &= I16::filled(kTesselBandPunch - 1);
			colours[r] = (a + (((b - a) * weight) >> 3)) & ~isClear;
		}
	}
	for (unsigned r = 0; r < kRegisters; r += 2)
	{
		packedPixels(colours[r], colours[r + 1]).store(out + r * (U8::kCount / 2));
	}
}

template<unsigned kWidth, bool kSecond>
ZORT_INLINE void writeRow(const Lines& lines, std::size_t width, unsigned char* out)
{
	const auto end = static_cast<std::ptrdiff_t>(width);
	std::ptrdiff_t x = -static_cast<std::ptrdiff_t>(kWidth / 2);
	for (std::size_t column = 0; x < end; column += kGroup / kWidth, x += kGroup)
	{
		if (x >= 0 && x + static_cast<std::ptrdiff_t>(kGroup) <= end)
		{
			writeGroup<kWidth, kSecond>(lines, column, out + 4 * x);
			continue;
		}
		unsigned char group[4 * kGroup];
		writeGroup<kWidth, kSecond>(lines, column, group);
		const std::ptrdiff_t from = x < 0 ? -x : 0;
		const std::ptrdiff_t to = x + static_cast<std::ptrdiff_t>(kGroup) > end ? end - x : static_cast<std::ptrdiff_t>(kGroup);
		std::memcpy(out + 4 * (x + from), group + 4 * from, static_cast<std::size_t>(4 * (to - from)));
	}
}

template<unsigned kWidth, bool kSecond>
ZORT_INLINE void writeBand(const TesselBand& band, unsigned char* pixels)
{
	for (unsigned v = band.first; v < band.end; ++v, pixels += 4 * band.pitch)
	{
		const TesselBandRow& row = v < 2 ? *band.upper : *band.lower;
		mixRows(band.upper->a, band.lower->a, v, band.columns, band.lines[0]);
		mixRows(band.upper->b, band.lower->b, v, band.columns, band.lines[1]);
		if (kSecond && band.hard != nullptr && (v == band.first || v == 2))
		{
			expandRow(row.a, band.columns, band.lines[2]);
			expandRow(row.b, band.columns, band.lines[3]);
		}
		const Lines lines = {band.lines[0], band.lines[1], band.lines[2], band.lines[3], row.weights[(v + 2) % 4], band.hard};
		writeRow<kWidth, kSecond>(lines, band.width, pixels);
	}
}

/// Gives the left-out pixels of one row of pixels their weights. Stored pixels alone are read, which stay as they are.
ZORT_INLINE void fillRow(const TesselBandRow& row, std::uint8_t* weights, const std::uint8_t* above, const std::uint8_t* below,
                         std::uint16_t leftOut, std::size_t pixels)
{
	const U8 isLeftOut = as<std::uint8_t>(U16::filled(leftOut));
	for (std::size_t i = 0; i < pixels; i += U8::kCount)
	{
		const U8 left = U8::load(weights + i - 1);
		const U8 right = U8::load(weights + i + 1);
		const U8 up = U8::load(above + i);
		const U8 down = U8::load(below + i);
		const U8 four = ((left + right + up + down + U8::filled(2)) >> 2) & U8::load(row.modes[0] + i);
		const U8 horizontal = roundedMean(left, right) & U8::load(row.modes[1] + i);
		const U8 vertical = roundedMean(up, down) & U8::load(row.modes[2] + i);
		const U8 own = U8::load(weights + i);
		(own | ((four | horizontal | vertical) & isLeftOut)).store(weights + i);
	}
}
} // namespace

template<ESimdLevel level>
void unpackTesselBandColours(const TesselBandRow& row, std::size_t columns, bool isSecondGeneration)
{
	constexpr std::uint32_t kOpaqueAlpha = 30U << 24;
	for (std::size_t i = 0; i < columns; i += U32::kCount)
	{
		const U32 words = U32::load(row.colourWords + i);
		const I32 isOpaqueB = as<std::int32_t>(words) >> 31;
		const I32 isOpaqueA = isSecondGeneration ? isOpaqueB : as<std::int32_t>(words << 16) >> 31;

		const U32 blueA = field(words, 1, 15);
		const U32 opaqueA = field(words, 10, 31) | (field(words, 5, 31) << 8) | (((blueA << 1) | (blueA >> 3)) << 16);
		const U32 blueOf3 = field(words, 1, 7);
		const U32 clearA = widened(field(words, 8, 15) | (field(words, 4, 15) << 8)) | (((blueOf3 << 2) | (blueOf3 >> 1)) << 16) |
		                   (field(words, 12, 7) << 26);
		select(isOpaqueA, opaqueA | U32::filled(kOpaqueAlpha), clearA).store(row.a + i);

		const U32 opaqueB = field(words, 26, 31) | (field(words, 21, 31) << 8) | (field(words, 16, 31) << 16);
		// The second generation's alpha levels of B are the odd ones, so that it reaches 15.
		const U32 clearB = widened(field(words, 24, 15) | (field(words, 20, 15) << 8) | (field(words, 16, 15) << 16)) |
		                   (field(words, 28, 7) << 26) | U32::filled(isSecondGeneration ? 2U << 24 : 0U);
		select(isOpaqueB, opaqueB | U32::filled(kOpaqueAlpha), clearB).store(row.b + i);
	}
}

template<ESimdLevel level>
void fillTesselBandWeights(const TesselBandRow& upper, const TesselBandRow& lower, std::size_t columns)
{
	constexpr std::uint16_t kOddColumns = 0xFF00;
	constexpr std::uint16_t kEvenColumns = 0x00FF;
	const std::size_t pixels = 8 * columns;
	fillRow(upper, upper.weights[2], upper.weights[1], upper.weights[3], kOddColumns, pixels);
	fillRow(upper, upper.weights[3], upper.weights[2], lower.weights[0], kEvenColumns, pixels);
	fillRow(lower, lower.weights[0], upper.weights[3], lower.weights[1], kOddColumns, pixels);
	fillRow(lower, lower.weights[1], lower.weights[0], lower.weights[2], kEvenColumns, pixels);
}

template<ESimdLevel level>
void writeTesselBand(const TesselBand& band, bool is2bpp, bool isSecondGeneration, unsigned char* pixels)
{
	if (isSecondGeneration)
	{
		is2bpp ? writeBand<8, true>(band, pixels) : writeBand<4, true>(band, pixels);
	}
	else
	{
		is2bpp ? writeBand<8, false>(band, pixels) : writeBand<4, false>(band, pixels);
	}
}

template void unpackTesselBandColours<kLanesLevel>(const TesselBandRow&, std::size_t, bool);
template void fillTesselBandWeights<kLanesLevel>(const TesselBandRow&, const TesselBandRow&, std::size_t);
template void writeTesselBand<kLanesLevel>(const TesselBand&, bool, bool, unsigned char*);
} // namespace zortexture
