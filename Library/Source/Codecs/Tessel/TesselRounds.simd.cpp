#include "TesselRounds.h"

#include "TesselRoundChoice.h"
#include "TesselRoundFit.h"

namespace zortexture
{
namespace
{
/// All steps for the blocks from `at` on.
template<bool kIs2bpp>
ZORT_INLINE void runBlocks(const TesselRound& round, std::size_t at)
{
	using S = Shape<kIs2bpp>;
	using Channels = typename S::Channels;
	const std::uint32_t* cornersA[S::kBlocks];
	const std::uint32_t* cornersB[S::kBlocks];
	const std::uint8_t* weightsOfBlocks[S::kBlocks];
	std::uint32_t places[S::kBlocks];
	const Pixel<unsigned char>* pixels[S::kBlocks];
	for (unsigned i = 0; i < S::kBlocks; ++i)
	{
		// The last block twice where their number is odd: it comes out the same.
		const std::uint32_t place = round.blocks[at + i < round.count ? at + i : round.count - 1];
		const std::size_t x = place % round.blocksX;
		const std::size_t y = place / round.blocksX;
		places[i] = place;
		cornersA[i] = round.coloursA + y * round.stride + x;
		cornersB[i] = round.coloursB + y * round.stride + x;
		weightsOfBlocks[i] = round.weights + std::size_t(S::kPixels) * place;
		pixels[i] = round.pixels + 4 * y * round.pitch + S::kWidth * x;
	}
	Work<kIs2bpp> work;
	loadPixels<kIs2bpp>(pixels, round.pitch, work.pixels);
	loadPlane<kIs2bpp>(cornersA, round.stride, work.a);
	loadPlane<kIs2bpp>(cornersB, round.stride, work.b);

	const auto choose = [&]() __attribute__((always_inline))
	{
		std::uint8_t chosen[S::kBlocks * S::kPixels];
		std::uint8_t modes[S::kBlocks];
		if constexpr (kIs2bpp)
		{
			modes[0] = choose2bpp(work, chosen);
		}
		else
		{
			const Choice4bpp choice = choose4bpp(work);
			choice.weights.store(chosen);
			for (unsigned i = 0; i < S::kBlocks; ++i)
			{
				modes[i] = choice.isMode1[4 * i] != 0 ? 1 : 0;
			}
		}
		for (unsigned i = 0; i < S::kBlocks; ++i)
		{
			std::uint8_t* weights = round.weights + std::size_t(S::kPixels) * places[i];
			const std::uint8_t* own = chosen + i * S::kPixels;
			bool isNew = round.modes[places[i]] != modes[i];
			for (unsigned k = 0; k < S::kPixels; k += 16)
			{
				using Half = Lanes<std::uint8_t, 16>;
				const Half some = Half::load(own + k);
				isNew = isAny(some != Half::load(weights + k)) || isNew;
				some.store(weights + k);
			}
			round.isModulationNew[at + i] = isNew ? 1 : 0;
			round.modes[places[i]] = modes[i];
		}
	};
	if (round.choosesFirst)
	{
		choose();
	}
	if (round.corrects)
	{
		I16 weights[S::kRegisters];
		loadWeights<kIs2bpp>(weightsOfBlocks, weights);
		const Means<kIs2bpp> means = meansOf<kIs2bpp>(work, weights);
		const Channels squares = means.residual * means.residual;
		const Channels squaredLength =
		    repeatedLane<0>(squares) + repeatedLane<1>(squares) + repeatedLane<2>(squares) + repeatedLane<3>(squares);
		const auto isSettled = squaredLength < Channels::filled(kIs2bpp ? 128.0F : 32.0F);
		if (isAll(isSettled))
		{
			for (unsigned i = 0; i < S::kBlocks; ++i)
			{
				round.newA[at + i] = cornersA[i][round.stride + 1];
				round.newB[at + i] = cornersB[i][round.stride + 1];
			}
		}
		else
		{
			auto colourA = loadColours<kIs2bpp>(cornersA, round.stride);
			auto colourB = loadColours<kIs2bpp>(cornersB, round.stride);
			correct<kIs2bpp>(means, isSettled, colourA, colourB);
			storeColours(colourA, round.newA + at);
			storeColours(colourB, round.newB + at);
		}
	}
	if (round.choosesLast)
	{
		choose();
	}
}

template<bool kIs2bpp>
ZORT_INLINE void runAll(const TesselRound& round)
{
	for (std::size_t at = 0; at < round.count; at += Shape<kIs2bpp>::kBlocks)
	{
		runBlocks<kIs2bpp>(round, at);
	}
}
} // namespace

template<ESimdLevel level>
void runTesselRound(const TesselRound& round, bool is2bpp)
{
	is2bpp ? runAll<true>(round) : runAll<false>(round);
}

template void runTesselRound<kLanesLevel>(const TesselRound&, bool);
} // namespace zortexture
