#include "rowlanes.h"

using namespace zortexture;

namespace
{
/// Pixels of a vector.
constexpr int kPixels = static_cast<int>(U16::kCount) / 2;

/// The pair of the block, R and G, then B and alpha: the bits that blend, and for palettes all of them.
struct PairLanes
{
	U16 a[2];
	U16 b[2];
	U16 wholeA[2];
	U16 wholeB[2];
};

ZORT_INLINE PairLanes lanesOf(const KilnPair& pair)
{
	std::uint8_t bytes[8];
	static_assert(sizeof(pair) == sizeof(bytes));
	std::memcpy(bytes, &pair, sizeof(bytes));
	PairLanes lanes;
	for (int half = 0; half < 2; ++half)
	{
		lanes.wholeA[half] = inTurns(bytes[2 * half], bytes[2 * half + 1]);
		lanes.wholeB[half] = inTurns(bytes[4 + 2 * half], bytes[5 + 2 * half]);
		const U16 working = half == 0 ? inTurns(0xf8, 0xf8) : inTurns(0xf8, 0xf0);
		lanes.a[half] = lanes.wholeA[half] & working;
		lanes.b[half] = lanes.wholeB[half] & working;
	}
	return lanes;
}

/// The candidates 0 to 3 of two channels: A and B, and their mixes at 3 and 5 eighths. With punch-through both mixes are at 4 eighths, and
/// the second is transparent, in the second generation black.
template<int kHalf, bool kMixed>
ZORT_INLINE void mixCandidates(const KilnWindowModel& model, int place, const PairLanes& pair, U16 (&candidates)[4])
{
	const U16 share = loadRow(model.share, place);
	const U16 a = upscaled<kHalf>(loadRow(model.aroundA[kHalf], place), share, pair.a[kHalf]);
	const U16 b = upscaled<kHalf>(loadRow(model.aroundB[kHalf], place), share, pair.b[kHalf]);
	const U16 sum = a + b;
	const U16 three = sum + sum + sum;
	candidates[0] = a;
	candidates[3] = b;
	if constexpr (!kMixed)
	{
		candidates[1] = (three + a + a) >> 3;
		candidates[2] = (three + b + b) >> 3;
		return;
	}
	const U16 punched = loadRow(model.punched, place);
	const U16 shown = model.tessel2 ? U16::filled(0) : kHalf == 0 ? U16::filled(0xffff) : inTurns(0xffff, 0);
	candidates[1] = (three + ((punched & sum) | (~punched & (a + a)))) >> 3;
	candidates[2] = ((three + ((punched & sum) | (~punched & (b + b)))) >> 3) & (~punched | shown);
	if ((model.groupKinds[place / kKilnGroupPlaces] & kKilnPaletteGroup) != 0)
	{
		const U16 palette = loadRow(model.isPalette, place);
		for (int i = 0; i < 4; ++i)
		{
			const U16 colour = loadRow(model.fixed[i][kHalf], place) | (loadRow(model.showsA[i], place) & pair.wholeA[kHalf]) |
			                   (loadRow(model.showsB[i], place) & pair.wholeB[kHalf]);
			candidates[i] = (palette & colour) | (~palette & candidates[i]);
		}
	}
}

/// What the candidates of some pixels leave, two channels each, and cost.
struct Measures
{
	U16 residuals[4][2];
	I32 errors[4];
};

template<bool kMixed>
ZORT_INLINE Measures measure(const KilnWindowModel& model, int place, const PairLanes& pair)
{
	U16 candidates[2][4];
	mixCandidates<0, kMixed>(model, place, pair, candidates[0]);
	mixCandidates<1, kMixed>(model, place, pair, candidates[1]);
	const U16 scale = loadRow(model.scale, place);
	const U16 targets[2] = {loadRow(model.target[0], place), loadRow(model.target[1], place)};
	Measures measures;
	for (int i = 0; i < 4; ++i)
	{
		measures.residuals[i][0] = targets[0] - candidates[0][i];
		measures.residuals[i][1] = targets[1] - candidates[1][i];
		const I16 first = as<std::int16_t>(measures.residuals[i][0]);
		const I16 second = as<std::int16_t>(measures.residuals[i][1] * scale);
		measures.errors[i] = sumsOfProducts(first, first) + sumsOfProducts(second, second);
	}
	if constexpr (kMixed)
	{
		measures.errors[2] &= ~as<std::int32_t>(loadRow(model.isFree, place));
	}
	return measures;
}

/// The choice of each pixel as masks: candidate 3 of the ends, candidate 1 of the middles, an end of both.
struct Choice
{
	I32 upperEnd;
	I32 lowerMiddle;
	I32 takesEnd;

	template<typename T>
	ZORT_INLINE FullLanes<T> pick(FullLanes<T> zero, FullLanes<T> one, FullLanes<T> two, FullLanes<T> three) const
	{
		const I32 end = select(upperEnd, as<std::int32_t>(three), as<std::int32_t>(zero));
		const I32 middle = select(lowerMiddle, as<std::int32_t>(one), as<std::int32_t>(two));
		return as<T>(select(takesEnd, end, middle));
	}
};

ZORT_INLINE Choice bestOf(const I32 (&errors)[4])
{
	const I32 end = least(errors[3], errors[0]);
	const I32 middle = least(errors[1], errors[2]);
	return {errors[0] > errors[3], errors[2] > errors[1], middle > end};
}

ZORT_INLINE Choice choiceOf(U16 indices)
{
	const I32 index = as<std::int32_t>(indices) & I32::filled(3);
	const I32 upperEnd = index == I32::filled(3);
	return {upperEnd, index == I32::filled(1), upperEnd | (index == I32::filled(0))};
}

/// Notes the chosen candidates for the fit.
template<bool kMixed>
ZORT_INLINE void record(const KilnWindowModel& model, int place, const Choice& choice, const Measures& measures, KilnFittingParams& params)
{
	for (int half = 0; half < 2; ++half)
	{
		storeRow(params.residual[half], place,
		         choice.pick<std::uint16_t>(measures.residuals[0][half], measures.residuals[1][half], measures.residuals[2][half],
		                                    measures.residuals[3][half]));
	}
	const U16 share = loadRow(model.share, place);
	const U16 whole = share << 3;
	const U16 none = U16::filled(0);
	if constexpr (!kMixed)
	{
		const U16 b = share * choice.pick<std::uint16_t>(none, U16::filled(3), U16::filled(5), U16::filled(8));
		storeRow(params.influenceA, place, whole - b);
		storeRow(params.influenceB, place, b);
		return;
	}
	// A punched pixel has no influence; its other mix is half of each.
	const U16 punched = loadRow(model.punched, place);
	const U16 three = share + share + share;
	const U16 low = (punched & (share << 2)) | (~punched & three);
	const U16 high = ~punched & (whole - three);
	U16 a[4] = {whole, whole - low, ~punched & three, none};
	U16 b[4] = {none, low, high, whole};
	if ((model.groupKinds[place / kKilnGroupPlaces] & kKilnPaletteGroup) != 0)
	{
		const U16 palette = loadRow(model.isPalette, place);
		const U16 full = U16::filled(8 * kKilnFullWeight);
		for (int i = 0; i < 4; ++i)
		{
			a[i] = (palette & loadRow(model.showsA[i], place) & full) | (~palette & a[i]);
			b[i] = (palette & loadRow(model.showsB[i], place) & full) | (~palette & b[i]);
		}
	}
	storeRow(params.influenceA, place, choice.pick<std::uint16_t>(a[0], a[1], a[2], a[3]));
	storeRow(params.influenceB, place, choice.pick<std::uint16_t>(b[0], b[1], b[2], b[3]));
}

/// Lets the pixels of a vector choose.
/// @return their errors.
template<KilnDetail kDetail, bool kMixed>
ZORT_INLINE I32 evaluateVector(const KilnWindowModel& model, int place, const PairLanes& pair, KilnFittingParams& params)
{
	const Measures measures = measure<kMixed>(model, place, pair);
	const I32(&errors)[4] = measures.errors;
	if constexpr (kDetail == kKilnErrorsAlone)
	{
		const I32 end = least(errors[0], errors[3]);
		return least(least(errors[1], errors[2]), end);
	}
	const Choice choice = bestOf(errors);
	if constexpr (kDetail == kKilnForFit)
	{
		record<kMixed>(model, place, choice, measures, params);
	}
	else
	{
		storeRow(params.indices, place, choice.pick<std::uint16_t>(U16::filled(0), U16::filled(1), U16::filled(2), U16::filled(3)));
	}
	return choice.pick<std::int32_t>(errors[0], errors[1], errors[2], errors[3]);
}

/// The sum of the errors of places up to `end`, which lies in the last vector.
template<KilnDetail kDetail>
ZORT_INLINE std::uint64_t evaluatePlaces(const KilnWindowModel& model, int first, int end, const PairLanes& pair, KilnFittingParams& params)
{
	I32 sums = I32::filled(0);
	for (int place = first; place < end; place += kPixels)
	{
		sums += model.groupKinds[place / kKilnGroupPlaces] == kKilnStandardGroup
		            ? evaluateVector<kDetail, false>(model, place, pair, params)
		            : evaluateVector<kDetail, true>(model, place, pair, params);
	}
	// No error of a pixel is above 58.8 million, nor that of all of a window above 32 bits.
	std::uint32_t lanes[kPixels];
	sums.store(lanes);
	std::uint32_t sum = 0;
	for (const std::uint32_t lane : lanes)
	{
		sum += lane;
	}
	return sum;
}

template<KilnDetail kDetail>
ZORT_INLINE void evaluate(const KilnWindowModel& model, const KilnPair& pair, std::uint64_t limit, KilnFittingParams& params,
                          KilnErrors& errors)
{
	const PairLanes lanes = lanesOf(pair);
	errors.rim = model.rimError;
	errors.outer = 0;
	errors.own = evaluatePlaces<kDetail>(model, 0, kKilnOwnPlaces, lanes, params);
	errors.total = errors.own + errors.rim;
	if (errors.total < limit)
	{
		errors.outer = evaluatePlaces<kDetail>(model, kKilnOwnPlaces, kKilnInnerPixels, lanes, params);
		errors.total += errors.outer;
	}
}
} // namespace

template<ESimdLevel level>
void KilnKernels<level>::evaluate4Bpp(const KilnWindowModel& model, const KilnPair& pair, std::uint64_t limit, KilnDetail detail,
                                      KilnFittingParams& params, KilnErrors& errors)
{
	switch (detail)
	{
	case kKilnErrorsAlone:
		evaluate<kKilnErrorsAlone>(model, pair, limit, params, errors);
		break;
	case kKilnForFit:
		evaluate<kKilnForFit>(model, pair, limit, params, errors);
		break;
	case kKilnIndices:
		evaluate<kKilnIndices>(model, pair, limit, params, errors);
		break;
	}
}

template<ESimdLevel level>
std::uint64_t KilnKernels<level>::rimError4Bpp(const KilnWindowModel& model)
{
	KilnFittingParams unused;
	std::uint8_t black[sizeof(KilnPair)] = {};
	KilnPair pair;
	std::memcpy(&pair, black, sizeof(pair));
	return evaluatePlaces<kKilnErrorsAlone>(model, kKilnRimPlace, kKilnEndPlace, lanesOf(pair), unused);
}

template<ESimdLevel level>
void KilnKernels<level>::cost4Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnCosts* costs)
{
	const PairLanes lanes = lanesOf(pair);
	for (int place = 0; place < kKilnInnerPixels; place += kPixels)
	{
		const Measures measures = model.groupKinds[place / kKilnGroupPlaces] == kKilnStandardGroup ? measure<false>(model, place, lanes)
		                                                                                           : measure<true>(model, place, lanes);
		const I32(&errors)[4] = measures.errors;
		const auto pairs = [](I32 values)
		{
			return as<std::uint64_t>(values);
		};
		const U64 low01 = pairs(interleaveLow(errors[0], errors[1]));
		const U64 low23 = pairs(interleaveLow(errors[2], errors[3]));
		const U64 high01 = pairs(interleaveHigh(errors[0], errors[1]));
		const U64 high23 = pairs(interleaveHigh(errors[2], errors[3]));
		const U64 rows[4] = {interleaveLow(low01, low23), interleaveHigh(low01, low23), interleaveLow(high01, high23),
		                     interleaveHigh(high01, high23)};
		for (int i = 0; i < 4; ++i)
		{
			if constexpr (kLanesBytes == 16)
			{
				rows[i].store(costs[place + i]);
			}
			else
			{
				lower(rows[i]).store(costs[place + i]);
				upper(rows[i]).store(costs[place + 4 + i]);
			}
		}
	}
}

template<ESimdLevel level>
void KilnKernels<level>::record4Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnFittingParams& params)
{
	const PairLanes lanes = lanesOf(pair);
	for (int place = 0; place < kKilnInnerPixels; place += kPixels)
	{
		const Choice choice = choiceOf(loadRow(params.indices, place));
		if (model.groupKinds[place / kKilnGroupPlaces] == kKilnStandardGroup)
		{
			record<false>(model, place, choice, measure<false>(model, place, lanes), params);
		}
		else
		{
			record<true>(model, place, choice, measure<true>(model, place, lanes), params);
		}
	}
}

template<ESimdLevel level>
void KilnKernels<level>::sumNormalEquations(const KilnFittingParams& params, int first, int end, KilnNormalSums& sums)
{
	// No sum of 118 products of influences up to 512 and residuals up to 255 leaves 32 bits.
	const auto signedRow = [](const KilnRow& row, int place)
	{
		return as<std::int16_t>(loadRow(row, place));
	};
	I32 uu = I32::filled(0);
	I32 uv = uu;
	I32 vv = uu;
	I32 sumsU[2] = {uu, uu};
	I32 sumsV[2] = {uu, uu};
	for (int place = first; place < end; place += 2 * kPixels)
	{
		// A channel of two pixels side by side, so that its products add up alone.
		const I16 u0 = signedRow(params.influenceA, place);
		const I16 u1 = signedRow(params.influenceA, place + kPixels);
		const I16 v0 = signedRow(params.influenceB, place);
		const I16 v1 = signedRow(params.influenceB, place + kPixels);
		const I16 uLow = interleaveLow(u0, u1);
		const I16 uHigh = interleaveHigh(u0, u1);
		const I16 vLow = interleaveLow(v0, v1);
		const I16 vHigh = interleaveHigh(v0, v1);
		uu += sumsOfProducts(u0, u0) + sumsOfProducts(u1, u1);
		uv += sumsOfProducts(u0, v0) + sumsOfProducts(u1, v1);
		vv += sumsOfProducts(v0, v0) + sumsOfProducts(v1, v1);
		for (int half = 0; half < 2; ++half)
		{
			const I16 residual0 = signedRow(params.residual[half], place);
			const I16 residual1 = signedRow(params.residual[half], place + kPixels);
			const I16 low = interleaveLow(residual0, residual1);
			const I16 high = interleaveHigh(residual0, residual1);
			sumsU[half] += sumsOfProducts(uLow, low) + sumsOfProducts(uHigh, high);
			sumsV[half] += sumsOfProducts(vLow, low) + sumsOfProducts(vHigh, high);
		}
	}
	// Lanes in turns are of the first and of the second channel of a half.
	const auto sumInTurns = [](I32 lanes, std::int32_t& even, std::int32_t& odd)
	{
		std::int32_t numbers[kPixels];
		lanes.store(numbers);
		even = 0;
		odd = 0;
		for (int i = 0; i < kPixels; i += 2)
		{
			even += numbers[i];
			odd += numbers[i + 1];
		}
	};
	sumInTurns(sumsU[0], sums.u[0], sums.u[1]);
	sumInTurns(sumsU[1], sums.u[2], sums.u[3]);
	sumInTurns(sumsV[0], sums.v[0], sums.v[1]);
	sumInTurns(sumsV[1], sums.v[2], sums.v[3]);
	// Each influence stands twice.
	const auto half = [&sumInTurns](I32 lanes)
	{
		std::int32_t even = 0;
		std::int32_t odd = 0;
		sumInTurns(lanes, even, odd);
		return (even + odd) / 2;
	};
	sums.uu = half(uu);
	sums.uv = half(uv);
	sums.vv = half(vv);
}

template void KilnKernels<kLanesLevel>::evaluate4Bpp(const KilnWindowModel&, const KilnPair&, std::uint64_t, KilnDetail, KilnFittingParams&,
                                                     KilnErrors&);
template std::uint64_t KilnKernels<kLanesLevel>::rimError4Bpp(const KilnWindowModel&);
template void KilnKernels<kLanesLevel>::cost4Bpp(const KilnWindowModel&, const KilnPair&, KilnCosts*);
template void KilnKernels<kLanesLevel>::record4Bpp(const KilnWindowModel&, const KilnPair&, KilnFittingParams&);
template void KilnKernels<kLanesLevel>::sumNormalEquations(const KilnFittingParams&, int, int, KilnNormalSums&);
