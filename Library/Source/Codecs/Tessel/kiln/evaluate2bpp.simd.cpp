#include "rowlanes.h"

using namespace zortexture;

namespace
{
/// Pixels of a vector, and places that have any, in whole vectors of either unit.
constexpr int kPixels = static_cast<int>(U16::kCount) / 2;
constexpr int kEnd = kKilnPlaces;
static_assert(kKilnMaxWindow <= kEnd && kEnd % kPixels == 0);

/// A row whose neighbours before the first and behind the last place may be read; what is read there counts for nothing.
struct alignas(32) WideRow
{
	static constexpr int kMargin = 24;
	std::uint16_t lanes[2 * (kMargin + kEnd + kMargin)];

	ZORT_INLINE void clearMargins()
	{
		std::memset(lanes, 0, 2 * kMargin * sizeof(lanes[0]));
		std::memset(lanes + 2 * (kMargin + kEnd), 0, 2 * kMargin * sizeof(lanes[0]));
	}
	ZORT_INLINE U16 at(int place) const
	{
		return U16::load(lanes + 2 * (kMargin + place));
	}
	ZORT_INLINE void set(int place, U16 values)
	{
		values.store(lanes + 2 * (kMargin + place));
	}
};

struct Scratch
{
	/// A and B at 8 bits, R and G, then B and alpha.
	WideRow planesA[2];
	WideRow planesB[2];
	/// Weights of B in eighths, twice.
	WideRow weights;
	/// What the pixels that are left out lack.
	WideRow lacking[2];
};

ZORT_INLINE U16 residualAt(const Scratch& scratch, const KilnWindowModel& model, int half, int place, U16 weight)
{
	const U16 mix = (scratch.planesA[half].at(place) * (U16::filled(8) - weight) + scratch.planesB[half].at(place) * weight) >> 3;
	return loadRow(model.target[half], place) - mix;
}

/// Lets the pixels of a vector choose against their targets.
template<bool kIndices>
ZORT_INLINE void choose(const KilnWindowModel& model, int place, const U16 (&targets)[2], Scratch& scratch, KilnFittingParams& params)
{
	const U16 scale = loadRow(model.scale, place);
	I32 errors[4];
	for (int half = 0; half < 2; ++half)
	{
		const U16 a = scratch.planesA[half].at(place);
		const U16 b = scratch.planesB[half].at(place);
		const U16 sum = a + b;
		const U16 three = sum + sum + sum;
		const U16 candidates[4] = {a, (three + a + a) >> 3, (three + b + b) >> 3, b};
		for (int i = 0; i < 4; ++i)
		{
			const U16 residual = targets[half] - candidates[i];
			const I16 scaled = as<std::int16_t>(half == 0 ? residual : residual * scale);
			errors[i] = half == 0 ? sumsOfProducts(scaled, scaled) : errors[i] + sumsOfProducts(scaled, scaled);
		}
	}
	const I32 upperEnd = errors[0] > errors[3];
	const I32 lowerMiddle = errors[1] < errors[2];
	const I32 takesEnd = (least(errors[1], errors[2]) > least(errors[3], errors[0])) | as<std::int32_t>(loadRow(model.endsOnly, place));
	const auto pick = [&](unsigned zero, unsigned one, unsigned two, unsigned three)
	{
		const auto filled = [](unsigned number)
		{
			return I32::filled(static_cast<std::int32_t>(number | number << 16));
		};
		const I32 end = select(upperEnd, filled(three), filled(zero));
		const I32 middle = select(lowerMiddle, filled(one), filled(two));
		return as<std::uint16_t>(select(takesEnd, end, middle));
	};
	scratch.weights.set(place, pick(0, 3, 5, 8));
	if constexpr (kIndices)
	{
		storeRow(params.indices, place, pick(0, 1, 2, 3) & ~loadRow(model.isLeftOut, place));
	}
}

ZORT_INLINE U16 leftOutWeight(const KilnWindowModel& model, int place, const Scratch& scratch)
{
	U16 quarters = U16::filled(2);
	for (int k = 0; k < 4; ++k)
	{
		quarters += loadRow(model.quarters[k], place) * scratch.weights.at(place + kKilnNeighbourSteps[k]);
	}
	return quarters >> 2;
}

/// Chooses again for stored pixels, against targets that make up for what the pixels between them lack.
template<bool kIndices>
ZORT_INLINE void feedBack(const KilnWindowModel& model, Scratch& scratch, KilnFittingParams& params)
{
	for (int place = 0; place < kEnd; place += kPixels)
	{
		const U16 weight = leftOutWeight(model, place, scratch);
		for (int half = 0; half < 2; ++half)
		{
			scratch.lacking[half].set(place, residualAt(scratch, model, half, place, weight) & loadRow(model.isLeftOut, place));
		}
	}
	const I16 black = I16::filled(0);
	const I16 white = I16::filled(255);
	for (int place = 0; place < kEnd; place += kPixels)
	{
		U16 targets[2];
		for (int half = 0; half < 2; ++half)
		{
			U16 sum = U16::filled(kKilnDivisionBias);
			for (int k = 0; k < 4; ++k)
			{
				sum += loadRow(model.isReader[k], place) & scratch.lacking[half].at(place + kKilnNeighbourSteps[k]);
			}
			const U16 mean = multiplyHigh(sum, loadRow(model.divisionFactor, place)) - loadRow(model.divisionBias, place);
			const I16 moved = as<std::int16_t>(loadRow(model.target[half], place) + mean);
			targets[half] = as<std::uint16_t>(least(greatest(moved, black), white));
		}
		choose<kIndices>(model, place, targets, scratch, params);
	}
}

ZORT_INLINE std::uint32_t sumOf(I32 lanes)
{
	std::uint32_t numbers[kPixels];
	lanes.store(numbers);
	std::uint32_t sum = 0;
	for (const std::uint32_t number : numbers)
	{
		sum += number;
	}
	return sum;
}

template<KilnDetail kDetail>
ZORT_INLINE void evaluate(const KilnWindowModel& model, const KilnPair& pair, KilnFittingParams& params, KilnErrors& errors)
{
	constexpr bool kIndices = kDetail == kKilnIndices;
	std::uint8_t bytes[8];
	static_assert(sizeof(pair) == sizeof(bytes));
	std::memcpy(bytes, &pair, sizeof(bytes));
	const U16 a[2] = {inTurns(bytes[0] & 0xf8U, bytes[1] & 0xf8U), inTurns(bytes[2] & 0xf8U, bytes[3] & 0xf0U)};
	const U16 b[2] = {inTurns(bytes[4] & 0xf8U, bytes[5] & 0xf8U), inTurns(bytes[6] & 0xf8U, bytes[7] & 0xf0U)};

	Scratch scratch;
	scratch.weights.clearMargins();
	scratch.lacking[0].clearMargins();
	scratch.lacking[1].clearMargins();
	for (int place = 0; place < kEnd; place += kPixels)
	{
		const U16 share = loadRow(model.share, place);
		scratch.planesA[0].set(place, upscaled<0>(loadRow(model.aroundA[0], place), share, a[0]));
		scratch.planesB[0].set(place, upscaled<0>(loadRow(model.aroundB[0], place), share, b[0]));
		scratch.planesA[1].set(place, upscaled<1>(loadRow(model.aroundA[1], place), share, a[1]));
		scratch.planesB[1].set(place, upscaled<1>(loadRow(model.aroundB[1], place), share, b[1]));
		choose<kIndices>(model, place, {loadRow(model.target[0], place), loadRow(model.target[1], place)}, scratch, params);
	}
	if (model.hasLeftOut)
	{
		feedBack<kIndices>(model, scratch, params);
	}

	I32 own = I32::filled(0);
	I32 outer = I32::filled(0);
	for (int place = 0; place < kEnd; place += kPixels)
	{
		const U16 isLeftOut = loadRow(model.isLeftOut, place);
		const U16 weight = (isLeftOut & leftOutWeight(model, place, scratch)) | (~isLeftOut & scratch.weights.at(place));
		const U16 residual[2] = {residualAt(scratch, model, 0, place, weight), residualAt(scratch, model, 1, place, weight)};
		const I16 first = as<std::int16_t>(residual[0]);
		const I16 second = as<std::int16_t>(residual[1] * loadRow(model.scale, place));
		const I32 error = sumsOfProducts(first, first) + sumsOfProducts(second, second);
		own += error & as<std::int32_t>(loadRow(model.isOwn, place));
		outer += error & as<std::int32_t>(loadRow(model.isOuter, place));
		if constexpr (kDetail != kKilnErrorsAlone)
		{
			storeRow(params.residual[0], place, residual[0]);
			storeRow(params.residual[1], place, residual[1]);
			const U16 share = loadRow(model.share, place);
			storeRow(params.influenceA, place, share * (U16::filled(8) - weight));
			storeRow(params.influenceB, place, share * weight);
			storeRow(params.weights, place, weight);
		}
	}
	errors.rim = 0;
	// The outer pixels of a window are 73, and no pixel's error is above 3 * 255^2 + (30 * 255)^2: their sum just stays below 2^32.
	errors.own = sumOf(own);
	errors.outer = sumOf(outer);
	errors.total = errors.own + errors.outer;
}
} // namespace

template<ESimdLevel level>
void KilnKernels<level>::evaluate2Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnDetail detail, KilnFittingParams& params,
                                      KilnErrors& errors)
{
	switch (detail)
	{
	case kKilnErrorsAlone:
		evaluate<kKilnErrorsAlone>(model, pair, params, errors);
		break;
	case kKilnForFit:
		evaluate<kKilnForFit>(model, pair, params, errors);
		break;
	case kKilnIndices:
		evaluate<kKilnIndices>(model, pair, params, errors);
		break;
	}
}

template void KilnKernels<kLanesLevel>::evaluate2Bpp(const KilnWindowModel&, const KilnPair&, KilnDetail, KilnFittingParams&, KilnErrors&);
