#include "ChannelNumbers.h"

#include "Simd/Lanes.h"
#include "Unrolled.h"

namespace zortexture
{
namespace
{
constexpr std::size_t kCount = F32::kCount;

/// The parameters of one rule, by lane. Widths repeat after four, and a register holds a multiple of that.
template<typename Lane, typename T>
ZORT_INLINE Lane repeated(const T (&four)[4])
{
	T lanes[Lane::kCount];
	for (unsigned int i = 0; i < Lane::kCount; ++i)
	{
		lanes[i] = four[i % 4];
	}
	return Lane::load(lanes);
}

/// kCount numbers of memory as 32-bit integers.
template<typename Number>
ZORT_INLINE U32 loadNumbers(const unsigned char* numbers)
{
	return convert<std::uint32_t>(Lanes<Number, kCount>::load(numbers));
}
template<>
ZORT_INLINE U32 loadNumbers<std::uint32_t>(const unsigned char* numbers)
{
	return U32::load(numbers);
}

/// Rounded as a conversion of 32-bit integers is: both halves are exact, so that the sum alone rounds.
ZORT_INLINE F32 toFloat(U32 number)
{
	const F32 high = convert<float>(as<std::int32_t>(number >> 16));
	const F32 low = convert<float>(as<std::int32_t>(number & U32::filled(0xFFFFu)));
	return high * F32::filled(65536.0f) + low;
}

template<typename Number>
struct UnsignedReader
{
	explicit UnsignedReader(const SChannelRule& rule) : ceiling(repeated<F32>(rule.ceilings))
	{
	}

	ZORT_INLINE F32 operator()(const unsigned char* numbers) const
	{
		const U32 number = loadNumbers<Number>(numbers);
		if constexpr (sizeof(Number) < 4)
		{
			return convert<float>(as<std::int32_t>(number)) / ceiling;
		}
		else
		{
			return toFloat(number) / ceiling;
		}
	}

	F32 ceiling;
};

/// Of elements: the divisor of negative numbers is a step less than the ceiling.
template<typename Number>
struct SignedReader
{
	explicit SignedReader(const SChannelRule& rule)
	    : ceiling(F32::filled(rule.ceilings[0])), negativeCeiling(F32::filled(static_cast<float>((rule.signs[0] - 1u) - 1u))),
	      magnitude(I32::filled(static_cast<std::int32_t>(rule.signs[0] - 1u)))
	{
	}

	ZORT_INLINE F32 operator()(const unsigned char* numbers) const
	{
		const I32 number = as<std::int32_t>(convert<std::int32_t>(Lanes<Number, kCount>::load(numbers)));
		const auto isNegative = number < I32::filled(0);
		const F32 value = convert<float>(number & magnitude) / select(isNegative, negativeCeiling, ceiling);
		return as<float>(as<std::uint32_t>(value) | (as<std::uint32_t>(isNegative) & U32::filled(0x80000000u)));
	}

	F32 ceiling;
	F32 negativeCeiling;
	I32 magnitude;
};

struct HalfReader
{
	explicit HalfReader(const SChannelRule& rule) : sign(U32::filled(rule.hasSign ? 0x8000u : 0u))
	{
	}

	ZORT_INLINE F32 operator()(const unsigned char* numbers) const
	{
		const U32 half = loadNumbers<std::uint16_t>(numbers);
		const U32 magnitude = half & U32::filled(0x7FFFu);
		// No exponent is special but that of infinity, which moves up by as much again.
		const auto isSpecial = as<std::int32_t>(magnitude) > I32::filled(0x7BFF);
		const U32 bits = (magnitude << 13) + U32::filled(0x38000000u) + (as<std::uint32_t>(isSpecial) & U32::filled(0x38000000u));
		return as<float>(bits | ((half & sign) << 16));
	}

	U32 sign;
};

template<typename Reader>
std::size_t readAll(const Reader& reader, unsigned int bytes, const unsigned char* numbers, float* values, std::size_t count)
{
	std::size_t i = 0;
	for (; count - i >= kCount; i += kCount)
	{
		reader(numbers + i * bytes).store(values + i);
	}
	return i;
}

/// Numbers that are narrower than the lanes: two or four registers of lanes make one of numbers. Only the low bits are kept.
ZORT_INLINE U16 narrowed(U32 a, U32 b)
{
	// The sign is extended first, since there are saturating instructions alone. Registers of 32 bytes are packed by halves.
	const I16 packed = packSigned(as<std::int32_t>(a << 16) >> 16, as<std::int32_t>(b << 16) >> 16);
#if defined(__AVX2__)
	return as<std::uint16_t>(shuffle<0, 2, 1, 3>(as<std::uint64_t>(packed)));
#else
	return as<std::uint16_t>(packed);
#endif
}
ZORT_INLINE U8 narrowed(U32 a, U32 b, U32 c, U32 d)
{
	const U32 low = U32::filled(0xFFu);
	const I16 ab = packSigned(as<std::int32_t>(a & low), as<std::int32_t>(b & low));
	const I16 cd = packSigned(as<std::int32_t>(c & low), as<std::int32_t>(d & low));
	const U8 packed = packUnsigned(ab, cd);
#if defined(__AVX2__)
	return as<std::uint8_t>(shuffle<0, 4, 1, 5, 2, 6, 3, 7>(as<std::uint32_t>(packed)));
#else
	return packed;
#endif
}

/// Clamped to 0..1 and rounded; NaN is 0.
struct UnsignedWriter
{
	explicit UnsignedWriter(const SChannelRule& rule) : ceiling(repeated<F32>(rule.ceilings))
	{
	}

	ZORT_INLINE bool suits(F32) const
	{
		return true;
	}

	ZORT_INLINE U32 operator()(F32 value) const
	{
		const F32 clamped = least(greatest(value, F32::filled(0.0f)), F32::filled(1.0f));
		return as<std::uint32_t>(truncated(ceiling * clamped + F32::filled(0.5f)));
	}

	F32 ceiling;
};

/// The same of up to 32 bits, where the ceiling is 2^32 and wraps to 0.
struct WideUnsignedWriter
{
	explicit WideUnsignedWriter(const SChannelRule& rule) : ceiling(repeated<F32>(rule.ceilings))
	{
	}

	ZORT_INLINE bool suits(F32) const
	{
		return true;
	}

	ZORT_INLINE U32 operator()(F32 value) const
	{
		const F32 clamped = least(greatest(value, F32::filled(0.0f)), F32::filled(1.0f));
		const F32 scaled = ceiling * clamped + F32::filled(0.5f);
		const F32 half = F32::filled(2147483648.0f);
		const auto isUpper = scaled >= half;
		const F32 rest = select(isUpper, scaled - half, scaled);
		return as<std::uint32_t>(truncated(rest)) ^ (as<std::uint32_t>(isUpper) & U32::filled(0x80000000u));
	}

	F32 ceiling;
};

struct SignedWriter
{
	explicit SignedWriter(const SChannelRule& rule)
	    : ceiling(repeated<F32>(rule.ceilings)), floor(repeated<F32>(rule.floors)), sign(repeated<U32>(rule.signs))
	{
	}

	/// Magnitudes are not clamped: those that are large wrap at 64 bits, which the plain form does.
	ZORT_INLINE bool suits(F32 value) const
	{
		return isAll(floor * absolute(value) + F32::filled(0.5f) < F32::filled(2147483648.0f));
	}

	ZORT_INLINE U32 operator()(F32 value) const
	{
		const auto isNegative = value < F32::filled(0.0f);
		const F32 scaled = select(isNegative, floor, ceiling) * absolute(value) + F32::filled(0.5f);
		return as<std::uint32_t>(truncated(scaled)) | (as<std::uint32_t>(isNegative) & sign);
	}

	F32 ceiling;
	F32 floor;
	U32 sign;
};

/// Truncates. What is too small is 0, what is too large has the exponent 30.
struct HalfWriter
{
	explicit HalfWriter(const SChannelRule&)
	{
	}

	ZORT_INLINE bool suits(F32) const
	{
		return true;
	}

	ZORT_INLINE U32 operator()(F32 value) const
	{
		const U32 bits = as<std::uint32_t>(value);
		const I32 magnitude = as<std::int32_t>(bits & U32::filled(0x7FFFFFFFu));
		const U32 field = (as<std::uint32_t>(magnitude) >> 13) - U32::filled(112u << 10);
		const U32 mantissa = (bits >> 13) & U32::filled(0x3FFu);
		const auto isLarge = magnitude >= I32::filled(143 << 23);
		const auto isSpecial = magnitude >= I32::filled(255 << 23);
		const auto isSmall = magnitude < I32::filled(113 << 23);
		U32 half = select(isLarge, U32::filled(0x7BFFu), field);
		half = select(isSpecial, U32::filled(0x7800u) | mantissa, half);
		half = select(isSmall, U32::filled(0u), half);
		return half | ((bits >> 16) & U32::filled(0x8000u));
	}
};

template<typename Number, typename Writer>
std::size_t writeAll(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count)
{
	const Writer writer(rule);
	constexpr unsigned int kRegisters = 4 / sizeof(Number);
	constexpr std::size_t kStep = kRegisters * kCount;
	std::size_t i = 0;
	for (; count - i >= kStep; i += kStep)
	{
		const float* const in = values + i;
		unsigned char* const out = numbers + i * sizeof(Number);
		bool suits = true;
		unrolled<kRegisters>([&](auto k) { suits = suits && writer.suits(F32::load(in + k * kCount)); });
		if (!suits)
		{
			writeChannels<eSimdPlain>(rule, in, out, kStep);
			continue;
		}
		const auto written = [&](unsigned int k)
		{
			return writer(F32::load(in + k * kCount));
		};
		if constexpr (kRegisters == 4)
		{
			narrowed(written(0), written(1), written(2), written(3)).store(out);
		}
		else if constexpr (kRegisters == 2)
		{
			narrowed(written(0), written(1)).store(out);
		}
		else
		{
			written(0).store(out);
		}
	}
	return i;
}

template<typename Writer>
std::size_t writeByBytes(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count)
{
	switch (rule.bytes)
	{
	case 1:
		return writeAll<std::uint8_t, Writer>(rule, values, numbers, count);
	case 2:
		return writeAll<std::uint16_t, Writer>(rule, values, numbers, count);
	default:
		return writeAll<std::uint32_t, Writer>(rule, values, numbers, count);
	}
}

std::size_t read(const SChannelRule& rule, const unsigned char* numbers, float* values, std::size_t count)
{
	switch (rule.kind)
	{
	case eUnsignedChannels:
		switch (rule.bytes)
		{
		case 1:
			return readAll(UnsignedReader<std::uint8_t>(rule), 1, numbers, values, count);
		case 2:
			return readAll(UnsignedReader<std::uint16_t>(rule), 2, numbers, values, count);
		default:
			return readAll(UnsignedReader<std::uint32_t>(rule), 4, numbers, values, count);
		}
	case eSignedChannels:
		if (!rule.isUniform)
		{
			return 0;
		}
		switch (rule.bytes)
		{
		case 1:
			return readAll(SignedReader<std::int8_t>(rule), 1, numbers, values, count);
		case 2:
			return readAll(SignedReader<std::int16_t>(rule), 2, numbers, values, count);
		default:
			return readAll(SignedReader<std::int32_t>(rule), 4, numbers, values, count);
		}
	case eHalfChannels:
		return readAll(HalfReader(rule), 2, numbers, values, count);
	default:
		return 0;
	}
}

std::size_t write(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count)
{
	switch (rule.kind)
	{
	case eUnsignedChannels:
		return rule.bytes == 4 ? writeAll<std::uint32_t, WideUnsignedWriter>(rule, values, numbers, count)
		                       : writeByBytes<UnsignedWriter>(rule, values, numbers, count);
	case eSignedChannels:
		return writeByBytes<SignedWriter>(rule, values, numbers, count);
	case eHalfChannels:
		return writeAll<std::uint16_t, HalfWriter>(rule, values, numbers, count);
	default:
		return 0;
	}
}
#if defined(__AVX2__)
/// The words of eight pixels.
ZORT_INLINE U32 packedWords(const std::uint32_t* numbers, U32 masks, U32 shifts)
{
	const auto placed = [&](unsigned int pair)
	{
		const U32 fields = U32::load(numbers + pair * 8) & masks;
		return as<std::uint64_t>(U32{fields.v << shifts.v});
	};
	// Two pixels in a register, one in each half: positions 0 and 1 of two of them beside 2 and 3, then 0 beside 1.
	const auto ofFour = [&](unsigned int pair)
	{
		const U64 first = placed(pair);
		const U64 second = placed(pair + 1);
		const U64 both = interleaveLow(first, second) | interleaveHigh(first, second);
		return as<std::uint32_t>(both | (both >> 32));
	};
	return shuffle<0, 4, 2, 6, 8, 12, 10, 14>(ofFour(0), ofFour(2));
}
#endif
} // namespace

template<ESimdLevel level>
std::size_t packFields(const SFieldPlaces& places, unsigned int bytes, const std::uint32_t* numbers, unsigned char* pixels,
                       std::size_t numPixels)
{
	std::size_t done = 0;
#if defined(__AVX2__)
	const U32 masks = repeated<U32>(places.masks);
	const U32 shifts = repeated<U32>(places.shifts);
	if (bytes == 4)
	{
		for (; numPixels - done >= 8; done += 8)
		{
			packedWords(numbers + done * 4, masks, shifts).store(pixels + done * 4);
		}
	}
	else
	{
		for (; numPixels - done >= 16; done += 16)
		{
			const U32 low = packedWords(numbers + done * 4, masks, shifts);
			narrowed(low, packedWords(numbers + done * 4 + 32, masks, shifts)).store(pixels + done * 2);
		}
	}
#else
	(void)places;
	(void)bytes;
	(void)numbers;
	(void)pixels;
	(void)numPixels;
#endif
	return done;
}
template std::size_t packFields<kLanesLevel>(const SFieldPlaces&, unsigned int, const std::uint32_t*, unsigned char*, std::size_t);

template<ESimdLevel level>
void readChannels(const SChannelRule& rule, const unsigned char* numbers, float* values, std::size_t count)
{
	const std::size_t done = read(rule, numbers, values, count);
	readChannels<eSimdPlain>(rule, numbers + done * rule.bytes, values + done, count - done);
}
template void readChannels<kLanesLevel>(const SChannelRule&, const unsigned char*, float*, std::size_t);

template<ESimdLevel level>
void writeChannels(const SChannelRule& rule, const float* values, unsigned char* numbers, std::size_t count)
{
	const std::size_t done = write(rule, values, numbers, count);
	writeChannels<eSimdPlain>(rule, values + done, numbers + done * rule.bytes, count - done);
}
template void writeChannels<kLanesLevel>(const SChannelRule&, const float*, unsigned char*, std::size_t);
} // namespace zortexture
