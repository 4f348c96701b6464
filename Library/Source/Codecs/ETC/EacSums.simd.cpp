// The texels in lanes.

#include "EacSums.h"

#include <cstddef>

#include "EacBlock.h"
#include "Simd/Lanes.h"

namespace zortexture
{
namespace
{
/// Sixteen numbers, in as many registers as they fill.
struct Texels
{
	I16 first;
#if !defined(__AVX2__)
	I16 second;
#endif
};

#if defined(__AVX2__)
ZORT_INLINE Texels load(const void* row)
{
	return {I16::load(row)};
}
ZORT_INLINE Texels filled(std::int16_t value)
{
	return {I16::filled(value)};
}
ZORT_INLINE void store(Texels a, void* row)
{
	a.first.store(row);
}
/// `function` of both, register by register.
template<typename Function>
ZORT_INLINE Texels apply(Texels a, Texels b, Function function)
{
	return {function(a.first, b.first)};
}
/// The sums of squares of some lanes each, which make the whole together.
ZORT_INLINE I32 squares(Texels a)
{
	return sumsOfProducts(a.first, a.first);
}
ZORT_INLINE Lanes<std::int32_t, 4> folded(I32 a)
{
	return lower(a) + upper(a);
}
#else
ZORT_INLINE Texels load(const void* row)
{
	return {I16::load(row), I16::load(static_cast<const char*>(row) + 16)};
}
ZORT_INLINE Texels filled(std::int16_t value)
{
	return {I16::filled(value), I16::filled(value)};
}
ZORT_INLINE void store(Texels a, void* row)
{
	a.first.store(row);
	a.second.store(static_cast<char*>(row) + 16);
}
template<typename Function>
ZORT_INLINE Texels apply(Texels a, Texels b, Function function)
{
	return {function(a.first, b.first), function(a.second, b.second)};
}
ZORT_INLINE I32 squares(Texels a)
{
	return sumsOfProducts(a.first, a.first) + sumsOfProducts(a.second, a.second);
}
ZORT_INLINE Lanes<std::int32_t, 4> folded(I32 a)
{
	return a;
}
#endif

ZORT_INLINE Texels nearer(Texels a, Texels b)
{
	return apply(a, b, [](I16 x, I16 y) { return least(x, y); });
}

ZORT_INLINE int sumOf(I32 a)
{
	const auto four = folded(a);
	const auto two = four + shuffle<2, 3, 0, 1>(four);
	return two[0] + two[1];
}

/// The four sums.
ZORT_INLINE Lanes<std::int32_t, 4> sumsOf(I32 a, I32 b, I32 c, I32 d)
{
	const auto ab = as<std::uint64_t>(interleaveLow(a, b) + interleaveHigh(a, b));
	const auto cd = as<std::uint64_t>(interleaveLow(c, d) + interleaveHigh(c, d));
	return folded(as<std::int32_t>(interleaveLow(ab, cd)) + as<std::int32_t>(interleaveHigh(ab, cd)));
}

/// For a magnitude of modifiers, m, the nearer of the values at -m and at m - 1: tables hold both or neither.
class Pairs
{
public:
	ZORT_INLINE Pairs(const EacRow* centre, int multiplier, Texels slack)
	{
		fill<1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15>(centre, multiplier, slack);
	}

	template<unsigned int table>
	ZORT_INLINE I32 squaresOf() const
	{
		constexpr int kFirst = -alphaBase[table][0];
		constexpr int kSecond = -alphaBase[table][1];
		constexpr int kThird = -alphaBase[table][2];
		constexpr int kFourth = -alphaBase[table][3];
		return squares(nearer(nearer(m_nearer[kFirst], m_nearer[kSecond]), nearer(m_nearer[kThird], m_nearer[kFourth])));
	}
	template<unsigned int table>
	ZORT_INLINE unsigned int fourTables(int limit, int* errors) const
	{
		const auto sums = sumsOf(squaresOf<table>(), squaresOf<table + 1>(), squaresOf<table + 2>(), squaresOf<table + 3>());
		sums.store(errors + table);
		return bitsOfMask(sums <= Lanes<std::int32_t, 4>::filled(limit)) << table;
	}

private:
	template<int... magnitudes>
	ZORT_INLINE void fill(const EacRow* centre, int multiplier, Texels slack)
	{
		const auto shorter = [](I16 distances, I16 by)
		{
			return as<std::int16_t>(subtractSaturated(as<std::uint16_t>(distances), as<std::uint16_t>(by)));
		};
		((m_nearer[magnitudes] =
		      apply(nearer(load(centre[-magnitudes * multiplier]), load(centre[(magnitudes - 1) * multiplier])), slack, shorter)),
		 ...);
	}

	Texels m_nearer[16];
};
} // namespace

template<ESimdLevel level>
void EacSums<level>::fillRows(const std::uint16_t (&texels)[16], const std::uint16_t* values, unsigned int count, EacRow* rows)
{
	const Texels all = load(texels);
	for (unsigned int i = 0; i < count; ++i)
	{
		const Texels distances = apply(all, filled(static_cast<std::int16_t>(values[i])),
		                               [](I16 texel, I16 value)
		                               {
			                               // Wraps. The least difference has no positive counterpart: cut off first.
			                               const auto wrapped = as<std::int16_t>(as<std::uint16_t>(texel) - as<std::uint16_t>(value));
			                               const I16 difference = greatest(wrapped, I16::filled(-kEacFar));
			                               return least(greatest(difference, I16::filled(0) - difference), I16::filled(kEacFar));
		                               });
		store(distances, rows[i]);
	}
}

template<ESimdLevel level>
void EacSums<level>::leastErrors(const EacRow* rows, int first, int last, int multiplier, const EacRow& end1, const EacRow& end2,
                                 int* errors)
{
	const Texels ends = nearer(load(end1), load(end2));
	for (int i = 0; i < multiplier; ++i)
	{
		Texels all = ends;
		for (int step = first + i; step <= last; step += multiplier)
		{
			all = nearer(all, load(rows[step]));
		}
		errors[i] = sumOf(squares(all));
	}
}

template<ESimdLevel level>
unsigned int EacSums<level>::tableErrors(const EacRow* centre, int multiplier, std::int16_t slack, int limit, int (&errors)[16])
{
	const Pairs pairs(centre, multiplier, filled(slack));
	return pairs.fourTables<0>(limit, errors) | pairs.fourTables<4>(limit, errors) | pairs.fourTables<8>(limit, errors) |
	       pairs.fourTables<12>(limit, errors);
}

template<ESimdLevel level>
int EacSums<level>::errorBeyond(const EacRow& row, const EacRow& ends, const EacRow& texels, std::int16_t value, bool isAbove)
{
	const auto isBelow = [](I16 a, I16 b)
	{
		return a < b;
	};
	const Texels limit = filled(value);
	const Texels isBeyond = isAbove ? apply(limit, load(texels), isBelow) : apply(load(texels), limit, isBelow);
	const Texels distances = nearer(load(row), load(ends));
	return sumOf(squares(apply(distances, isBeyond, [](I16 a, I16 b) { return a & b; })));
}

template<ESimdLevel level>
void EacSums<level>::baseErrors(const EacRow* centre, const EacRow& texels, const int* offsets, bool isFifthForAll, const EacBases& bases,
                                int* errors)
{
	const Texels all = load(texels);
	// Addresses once for all bases.
	const EacRow* const a = centre + offsets[0];
	const EacRow* const b = centre + offsets[1];
	const EacRow* const c = centre + offsets[2];
	const EacRow* const d = centre + offsets[3];
	const EacRow* const e = centre + offsets[4];
	const EacRow* const f = centre + offsets[5];
	const EacRow* const g = centre + offsets[6];
	const EacRow* const h = centre + offsets[7];
	const EacRow* const helping = isFifthForAll ? e : d;
	Texels base = filled(static_cast<std::int16_t>(bases.first));
	const Texels step = filled(static_cast<std::int16_t>(bases.step));
	for (unsigned int i = 0; i < bases.count; ++i)
	{
		const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(i) * bases.step;
		const Texels lower = nearer(nearer(nearer(load(a[at]), load(b[at])), nearer(load(c[at]), load(d[at]))), load(helping[at]));
		const Texels upper = nearer(nearer(load(e[at]), load(f[at])), nearer(load(g[at]), load(h[at])));
		const Texels isAbove = apply(all, base, [](I16 x, I16 y) { return x > y; });
		const Texels aboves = apply(upper, isAbove, [](I16 x, I16 mask) { return x & mask; });
		const Texels belows = apply(lower, isAbove, [](I16 x, I16 mask) { return x & ~mask; });
		errors[i] = sumOf(squares(apply(aboves, belows, [](I16 x, I16 y) { return x | y; })));
		base = apply(base, step, [](I16 x, I16 y) { return x + y; });
	}
}

template struct EacSums<kLanesLevel>;
} // namespace zortexture
