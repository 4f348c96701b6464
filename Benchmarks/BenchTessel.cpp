// The Tessel codec through its entry points: the fast compressors and the decoders, on one thread.

#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 512;
const unsigned int kWidth = kSide;
const unsigned int kHeight = kSide;

void encode(benchmark::State& state, bool is2bpp, unsigned int version, unsigned int quality)
{
	const CZORTexture picture = bench::makePicture(kSide, kSide);
	std::vector<unsigned char> blocks(kSide * kSide);
	for (auto _ : state)
	{
		if (TesselCompress(picture.getDataPtr(0, 0, 0), blocks.data(), kWidth, kHeight, false, is2bpp, version, quality) == 0)
		{
			state.SkipWithError("not encoded");
			break;
		}
	}
	bench::countPixels(state, kSide * kSide);
}

void decode(benchmark::State& state, bool is2bpp, unsigned int version)
{
	const CZORTexture picture = bench::makePicture(kSide, kSide);
	std::vector<unsigned char> blocks(kSide * kSide);
	std::vector<unsigned char> pixels(kSide * kSide * 4);
	TesselCompress(picture.getDataPtr(0, 0, 0), blocks.data(), kWidth, kHeight, false, is2bpp, 0, 0);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(TesselDecompress(blocks.data(), pixels.data(), kWidth, kHeight, is2bpp, version));
	}
	bench::countPixels(state, kSide * kSide);
}

#define ZORT_BENCH_TESSEL(function, title, ...)                                                                                            \
	BENCHMARK_CAPTURE(function, title, __VA_ARGS__)->Name("tessel/" #function " " #title)->Unit(benchmark::kMillisecond)

ZORT_BENCH_TESSEL(encode, I_2bpp_quality_0, true, 0, 0);
ZORT_BENCH_TESSEL(encode, I_2bpp_quality_1, true, 0, 1);
ZORT_BENCH_TESSEL(encode, I_4bpp_quality_0, false, 0, 0);
ZORT_BENCH_TESSEL(encode, I_4bpp_quality_1, false, 0, 1);
ZORT_BENCH_TESSEL(encode, II_2bpp_quality_0, true, 1, 0);
ZORT_BENCH_TESSEL(encode, II_2bpp_quality_1, true, 1, 1);
ZORT_BENCH_TESSEL(encode, II_4bpp_quality_0, false, 1, 0);
ZORT_BENCH_TESSEL(encode, II_4bpp_quality_1, false, 1, 1);
ZORT_BENCH_TESSEL(decode, I_2bpp, true, 0);
ZORT_BENCH_TESSEL(decode, I_4bpp, false, 0);
ZORT_BENCH_TESSEL(decode, II_2bpp, true, 1);
ZORT_BENCH_TESSEL(decode, II_4bpp, false, 1);
} // namespace
