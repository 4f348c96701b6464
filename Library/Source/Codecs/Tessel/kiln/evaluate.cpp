#include "evaluate.h"

#include <cstring>

using namespace zortexture;

KilnKernelTable kilnKernels()
{
	return withSimdLevel(
	    [](auto level)
	    {
		    using Kernels = KilnKernels<level>;
		    return KilnKernelTable{Kernels::evaluate4Bpp, Kernels::rimError4Bpp, Kernels::cost4Bpp,
		                           Kernels::record4Bpp,   Kernels::evaluate2Bpp, Kernels::sumNormalEquations};
	    });
}

void InitialisePackedFittingParams(KilnFittingParams& params)
{
	std::memset(&params, 0, sizeof(params));
}

KilnRegionPlaces kilnRegionPlaces(const KilnRegions& regions)
{
	KilnRegionPlaces result;
	int listed = 0;
	int first = 0;
	for (int i = 0; i < kKilnWindow4Bpp; ++i)
	{
		const std::uint8_t pixel = regions.order[i];
		const std::uint8_t place = kKilnPlaceOf4Bpp[pixel];
		if (place < kKilnRimPlace)
		{
			result.places[listed++] = place;
		}
		const bool isLast = i + 1 == kKilnWindow4Bpp || regions.map[regions.order[i + 1]] != regions.map[pixel];
		if (isLast && listed > first)
		{
			result.ends[result.count++] = static_cast<std::uint8_t>(listed);
			first = listed;
		}
	}
	return result;
}

void EvalAllCandsAndGetErrors4BPP(const KilnKernelTable& kernels, const KilnWindowModel& model, const KilnPair& pair,
                                  const KilnRegionPlaces* regions, std::uint64_t limit, KilnDetail detail, KilnFittingParams& params,
                                  KilnErrors& errors)
{
	if (regions == nullptr)
	{
		kernels.evaluate4Bpp(model, pair, limit, detail, params, errors);
		return;
	}
	errors = {};
	errors.rim = model.rimError;
	alignas(16) KilnCosts costs[kKilnRimPlace];
	kernels.cost4Bpp(model, pair, costs);
	int first = 0;
	for (int region = 0; region < regions->count; ++region)
	{
		const int end = regions->ends[region];
		std::array<std::uint64_t, 4> sums = {};
		for (int i = first; i < end; ++i)
		{
			for (unsigned k = 0; k < 4; ++k)
			{
				sums[k] += costs[regions->places[i]][k];
			}
		}
		const int index = kilnChooseCandidate(sums, false);
		for (; first < end; ++first)
		{
			const int place = regions->places[first];
			(place < kKilnOwnPlaces ? errors.own : errors.outer) += costs[place][index];
			params.indices.setBoth(place, static_cast<unsigned>(index));
		}
	}
	errors.total = errors.own + errors.outer + errors.rim;
	if (detail == kKilnForFit)
	{
		kernels.record4Bpp(model, pair, params);
	}
}
