#include "Codecs/ETC/EtcThPairs.h"

#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
/// The errors of one texel at 16 levels, in one register or two.
struct Levels
{
	static constexpr unsigned int kParts = 16 / I16::kCount;
	I16 parts[kParts];

	ZORT_INLINE static Levels load(const std::int16_t (&values)[16])
	{
		Levels result;
		for (unsigned int i = 0; i < kParts; ++i)
		{
			result.parts[i] = I16::load(values + i * I16::kCount);
		}
		return result;
	}
	ZORT_INLINE static Levels filled(std::int16_t value)
	{
		Levels result;
		for (unsigned int i = 0; i < kParts; ++i)
		{
			result.parts[i] = I16::filled(value);
		}
		return result;
	}
	ZORT_INLINE void store(std::int16_t (&values)[16]) const
	{
		for (unsigned int i = 0; i < kParts; ++i)
		{
			parts[i].store(values + i * I16::kCount);
		}
	}
};

ZORT_INLINE Levels operator-(Levels a, Levels b)
{
	for (unsigned int i = 0; i < Levels::kParts; ++i)
	{
		a.parts[i] -= b.parts[i];
	}
	return a;
}

ZORT_INLINE Levels leastOf(Levels a, Levels b)
{
	for (unsigned int i = 0; i < Levels::kParts; ++i)
	{
		a.parts[i] = least(a.parts[i], b.parts[i]);
	}
	return a;
}

ZORT_INLINE Levels addSaturated(Levels a, Levels b)
{
	for (unsigned int i = 0; i < Levels::kParts; ++i)
	{
		a.parts[i] = addSaturated(a.parts[i], b.parts[i]);
	}
	return a;
}

/// weight * a * a shifted right and cut at 32767.
ZORT_INLINE Levels scaledSquares(Levels a, int weight, int shift)
{
	for (I16& part : a.parts)
	{
		// Both halves of a register are taken apart and put together again in the same order.
		const I32 low = as<std::int32_t>(interleaveLow(part, I16::filled(0)));
		const I32 high = as<std::int32_t>(interleaveHigh(part, I16::filled(0)));
		const auto scaled = [weight, shift](I32 v)
		{
			return (sumsOfProducts(as<std::int16_t>(v), as<std::int16_t>(v)) * I32::filled(weight)) >> shift;
		};
		part = packSigned(scaled(low), scaled(high));
	}
	return a;
}

/// One bit for every lane of a that is below that of b, lane 0 lowest.
ZORT_INLINE unsigned int lanesBelow(Levels a, Levels b)
{
	if constexpr (Levels::kParts == 2)
	{
		return bitsOfMask(packSigned(a.parts[0] < b.parts[0], a.parts[1] < b.parts[1]));
	}
	else
	{
		const auto isBelow = a.parts[0] < b.parts[0];
		return bitsOfMask(packSigned(lower(isBelow), upper(isBelow)));
	}
}
} // namespace

template<ESimdLevel level, TwoColourMode Mode>
void walkPairs(PairWalk& walk)
{
	CPairWalk<Levels, Mode>(walk).run();
}

template void walkPairs<kLanesLevel, TwoColourMode::T>(PairWalk& walk);
template void walkPairs<kLanesLevel, TwoColourMode::H>(PairWalk& walk);
} // namespace zortexture
