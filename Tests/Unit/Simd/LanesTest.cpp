// The words of the vector layer that stand for single instructions, at each width, against plain numbers.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "Simd/LaneWords.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;

namespace
{
template<typename T>
T saturated(long long value)
{
	return static_cast<T>(std::clamp<long long>(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

/// Within each 16 bytes: the lanes of a and then those of b, or by turns from one half.
constexpr unsigned int kChunk = 16;

LaneBytes plainWord(ELaneWord word, const LaneBytes& a, const LaneBytes& b, unsigned int bytes)
{
	LaneBytes r{};
	for (unsigned int i = 0; i < bytes; ++i)
	{
		const unsigned int chunk = i / kChunk * kChunk;
		const unsigned int within = i % kChunk;
		switch (word)
		{
		case eAddSaturatedU8:
			r.u8[i] = saturated<std::uint8_t>(a.u8[i] + b.u8[i]);
			break;
		case eAddSaturatedI8:
			r.i8[i] = saturated<std::int8_t>(a.i8[i] + b.i8[i]);
			break;
		case eSubtractSaturatedU8:
			r.u8[i] = saturated<std::uint8_t>(a.u8[i] - b.u8[i]);
			break;
		case eRoundedMean:
			r.u8[i] = static_cast<std::uint8_t>((a.u8[i] + b.u8[i] + 1) / 2);
			break;
		case eSumsOfDifferences:
			r.u64[i / 8] += static_cast<std::uint64_t>(std::abs(a.u8[i] - b.u8[i]));
			break;
		case ePackSigned16:
			r.i8[i] = saturated<std::int8_t>((within < 8 ? a : b).i16[chunk / 2 + within % 8]);
			break;
		case ePackUnsigned16:
			r.u8[i] = saturated<std::uint8_t>((within < 8 ? a : b).i16[chunk / 2 + within % 8]);
			break;
		case eInterleaveLow8:
			r.u8[i] = (within % 2 == 0 ? a : b).u8[chunk + within / 2];
			break;
		case eBitsOfMask8:
			r.u32[0] |= (a.u8[i] < b.u8[i] ? 1u : 0u) << i;
			break;
		default:
			break;
		}
	}
	for (unsigned int i = 0; i < bytes / 2; ++i)
	{
		const unsigned int chunk = i / (kChunk / 2) * (kChunk / 2);
		const unsigned int within = i % (kChunk / 2);
		switch (word)
		{
		case eAddSaturatedU16:
			r.u16[i] = saturated<std::uint16_t>(a.u16[i] + b.u16[i]);
			break;
		case eAddSaturatedI16:
			r.i16[i] = saturated<std::int16_t>(a.i16[i] + b.i16[i]);
			break;
		case eSubtractSaturatedU16:
			r.u16[i] = saturated<std::uint16_t>(a.u16[i] - b.u16[i]);
			break;
		case eSubtractSaturatedI16:
			r.i16[i] = saturated<std::int16_t>(a.i16[i] - b.i16[i]);
			break;
		case eMultiplyHighU16:
			r.u16[i] = static_cast<std::uint16_t>((std::uint32_t{a.u16[i]} * b.u16[i]) >> 16);
			break;
		case eMultiplyHighI16:
			r.i16[i] = static_cast<std::int16_t>((a.i16[i] * b.i16[i]) >> 16);
			break;
		case eGreatestI16:
			r.i16[i] = std::max(a.i16[i], b.i16[i]);
			break;
		case eSumsOfProducts:
			r.u32[i / 2] += static_cast<std::uint32_t>(a.i16[i] * b.i16[i]);
			break;
		case ePackSigned32:
			r.i16[i] = saturated<std::int16_t>((within < 4 ? a : b).i32[chunk / 2 + within % 4]);
			break;
		case eInterleaveHigh16:
			r.u16[i] = (within % 2 == 0 ? a : b).u16[chunk + 4 + within / 2];
			break;
		default:
			break;
		}
	}
	for (unsigned int i = 0; i < bytes / 4; ++i)
	{
		switch (word)
		{
		case eInterleaveLow32:
			r.u32[i] = (i % 2 == 0 ? a : b).u32[i / 4 * 4 + i % 4 / 2];
			break;
		case eTruncated:
			r.i32[i] = std::fabs(a.f32[i]) < 2147483648.0f ? static_cast<std::int32_t>(a.f32[i]) : INT32_MIN;
			break;
		case eSquareRootF32:
			r.f32[i] = std::sqrt(a.f32[i]);
			break;
		case eLeastF32:
			r.f32[i] = a.f32[i] < b.f32[i] ? a.f32[i] : b.f32[i];
			break;
		case eBitsOfMask32:
			r.u32[0] |= (a.i32[i] < b.i32[i] ? 1u : 0u) << i;
			break;
		default:
			break;
		}
	}
	for (unsigned int i = 0; i < bytes / 8 && word == eSquareRootF64; ++i)
	{
		r.f64[i] = std::sqrt(a.f64[i]);
	}
	return r;
}

TEST(Lanes, WordsGiveWhatPlainNumbersGive)
{
	std::mt19937 random(1);
	for (unsigned int round = 0; round < 2000; ++round)
	{
		LaneBytes a;
		LaneBytes b;
		for (unsigned int i = 0; i < 8; ++i)
		{
			a.u32[i] = static_cast<std::uint32_t>(random());
			b.u32[i] = static_cast<std::uint32_t>(random());
			if (round % 4 == 0)
			{
				a.f32[i] = static_cast<float>(static_cast<std::int32_t>(a.u32[i] >> (random() % 32))) / 7.0f;
				b.i16[2 * i] = static_cast<std::int16_t>(random() % 2 == 0 ? INT16_MIN : INT16_MAX);
			}
		}
		for (unsigned int word = 0; word < eNumLaneWords; ++word)
		{
			const auto name = static_cast<ELaneWord>(word);
			for (const ESimdLevel level : kVectorLevels)
			{
				LaneBytes result{};
				unsigned int bytes = 0;
				atSimdLevel(level,
				            [&]
				            {
					            withSimdLevel(
					                [&](auto unit)
					                {
						                if constexpr (unit() != eSimdPlain)
						                {
							                bytes = applyLaneWord<unit()>(name, a, b, result);
						                }
					                });
				            });
				const LaneBytes wanted = plainWord(name, a, b, bytes);
				// A square root of nothing real is no number, of whatever sign.
				const bool isNegative = (word == eSquareRootF32 || word == eSquareRootF64);
				for (unsigned int i = 0; i < bytes / 4; ++i)
				{
					const bool bothNaN =
					    isNegative && (word == eSquareRootF32 ? std::isnan(result.f32[i]) && std::isnan(wanted.f32[i])
					                                          : std::isnan(result.f64[i / 2]) && std::isnan(wanted.f64[i / 2]));
					ASSERT_TRUE(bothNaN || result.u32[i] == wanted.u32[i]) << "word " << word << ", level " << level << ", lane " << i;
				}
			}
		}
	}
}
} // namespace
