/// @file evaluate.h
/// What a block's window costs under a pair of colours, and the data from which the pair is fitted.
#pragma once

#include "Simd/SimdLevel.h"
#include "windowmodel.h"

/// Errors by the class of the pixel.
struct KilnErrors
{
	/// Everything that was asked for.
	std::uint64_t total = 0;
	/// The block's own area.
	std::uint64_t own = 0;
	/// The rest of the window without its rim.
	std::uint64_t outer = 0;
	/// The rim, 0 unless asked for.
	std::uint64_t rim = 0;
};

/// What an evaluation tells of each place besides its errors.
enum KilnDetail
{
	/// Nothing.
	kKilnErrorsAlone,
	/// The data of a fit.
	kKilnForFit,
	/// The indices.
	kKilnIndices
};

/// How the places of a window are encoded, and the data of a fit. The block's colours enter a pixel by multiples of 1/512, so that all sums
/// of a fit are whole numbers. Influences and residuals of the places behind those of the window are 0.
struct KilnFittingParams
{
	/// By how many 512ths a step of A, or of B, moves the pixel, twice. 0 for a palette pixel that shows a colour of another block and for
	/// one that is decoded as punch-through.
	KilnRow influenceA;
	KilnRow influenceB;
	/// Pixel less decoded colour.
	KilnRow residual[2];
	/// The index 0 to 3 of the candidate (a place among the palette choices for a palette pixel; 0 for a pixel that is left out), twice.
	KilnRow indices;
	/// At 2bpp, the weight of B in eighths, twice.
	KilnRow weights;
};

/// Everything to 0.
void InitialisePackedFittingParams(KilnFittingParams& params);

/// The sums over a window of influences and their products with one another and with the residuals, by channel.
struct KilnNormalSums
{
	std::int32_t uu;
	std::int32_t uv;
	std::int32_t vv;
	std::int32_t u[4];
	std::int32_t v[4];
};

/// What the four candidates of a pixel cost.
using KilnCosts = std::uint32_t[4];

/// The work on all places of a window, in plain form and for every vector unit.
template<zortexture::ESimdLevel level>
struct KilnKernels
{
	/// Every pixel of a 4bpp window takes its best candidate.
	/// @param limit  the evaluation may stop once the total reaches it; what it tells besides is then not to be used.
	static void evaluate4Bpp(const KilnWindowModel& model, const KilnPair& pair, std::uint64_t limit, KilnDetail detail,
	                         KilnFittingParams& params, KilnErrors& errors);
	/// The least error of the rim of a 4bpp window.
	static std::uint64_t rimError4Bpp(const KilnWindowModel& model);
	/// The costs of all places of a 4bpp window but the rim.
	static void cost4Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnCosts* costs);
	/// The data of a fit for given indices.
	static void record4Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnFittingParams& params);
	/// Every pixel of a 2bpp window takes its best candidate: stored and direct pixels first, then those left out, whose residuals move
	/// the targets of the stored ones for a second choice. The rim is not counted.
	static void evaluate2Bpp(const KilnWindowModel& model, const KilnPair& pair, KilnDetail detail, KilnFittingParams& params,
	                         KilnErrors& errors);
	/// @param first, end  places, multiples of 16.
	static void sumNormalEquations(const KilnFittingParams& params, int first, int end, KilnNormalSums& sums);
};

/// The kernels of the vector unit in use.
struct KilnKernelTable
{
	decltype(&KilnKernels<zortexture::eSimdPlain>::evaluate4Bpp) evaluate4Bpp;
	decltype(&KilnKernels<zortexture::eSimdPlain>::rimError4Bpp) rimError4Bpp;
	decltype(&KilnKernels<zortexture::eSimdPlain>::cost4Bpp) cost4Bpp;
	decltype(&KilnKernels<zortexture::eSimdPlain>::record4Bpp) record4Bpp;
	decltype(&KilnKernels<zortexture::eSimdPlain>::evaluate2Bpp) evaluate2Bpp;
	decltype(&KilnKernels<zortexture::eSimdPlain>::sumNormalEquations) sumNormalEquations;
};
KilnKernelTable kilnKernels();

/// The flat regions of a 4bpp window, less its rim: the places region by region, and where each region ends.
struct KilnRegionPlaces
{
	int count = 0;
	std::array<std::uint8_t, kKilnInnerPixels> places;
	std::array<std::uint8_t, kKilnInnerPixels> ends;
};
KilnRegionPlaces kilnRegionPlaces(const KilnRegions& regions);

/// Evaluates the window of a 4bpp block under a pair of its own.
/// @param regions  when not null, the pixels of a flat region take one index together (see analygrapprop.h), and there is no limit.
void EvalAllCandsAndGetErrors4BPP(const KilnKernelTable& kernels, const KilnWindowModel& model, const KilnPair& pair,
                                  const KilnRegionPlaces* regions, std::uint64_t limit, KilnDetail detail, KilnFittingParams& params,
                                  KilnErrors& errors);

/// The weight of a 2bpp pixel that is left out, from its neighbours' weights in the window of 17 by 9.
/// @param storeClass  2 four neighbours, 3 left and right, 4 above and below.
/// @param weights     17 by 9 weights of 0 to 8. One above 8 ends the process with a message.
int ComputeInterpolatedModVal(int storeClass, int row, int column, const std::uint8_t* weights);
