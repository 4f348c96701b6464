// The Tessel codec through its entry points: the fast compressors and the decoders, on one thread.

#include <algorithm>
#include <random>
#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 512;
const unsigned int kWidth = kSide;
const unsigned int kHeight = kSide;

void encode(benchmark::State& state, bool is2bpp, unsigned int version, unsigned int quality, double goal = 0)
{
	const CZORTexture picture = bench::photograph(kSide);
	std::vector<unsigned char> blocks(kSide * kSide);
	for (auto _ : state)
	{
		if (TesselCompress(picture.getDataPtr(0, 0, 0), blocks.data(), kWidth, kHeight, false, is2bpp, version, quality) == 0)
		{
			state.SkipWithError("not encoded");
			break;
		}
	}
	bench::countPixels(state, kSide * kSide, goal);
}

void decodeBlocks(benchmark::State& state, const std::vector<unsigned char>& blocks, bool is2bpp, unsigned int version, double goal)
{
	std::vector<unsigned char> pixels(kSide * kSide * 4);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(TesselDecompress(blocks.data(), pixels.data(), kWidth, kHeight, is2bpp, version));
	}
	bench::countPixels(state, kSide * kSide, goal);
}

void decode(benchmark::State& state, bool is2bpp, unsigned int version, double goal)
{
	const CZORTexture picture = bench::photograph(kSide);
	std::vector<unsigned char> blocks(kSide * kSide);
	TesselCompress(picture.getDataPtr(0, 0, 0), blocks.data(), kWidth, kHeight, false, is2bpp, version, 1);
	decodeBlocks(state, blocks, is2bpp, version, goal);
}

/// Random bits: every mode and flag by turns.
void decodeNoise(benchmark::State& state, bool is2bpp, unsigned int version, double goal)
{
	std::vector<unsigned char> blocks(kSide * kSide);
	std::mt19937 random(1);
	std::generate(blocks.begin(), blocks.end(), [&random]() { return static_cast<unsigned char>(random() >> 24); });
	decodeBlocks(state, blocks, is2bpp, version, goal);
}

#define ZORT_BENCH_TESSEL(work, function, title, ...)                                                                                      \
	BENCHMARK_CAPTURE(function, title, __VA_ARGS__)->Name("tessel/" work " " #title)->Unit(benchmark::kMillisecond)

ZORT_BENCH_TESSEL("encode", encode, I_2bpp_quality_0, true, 0, 0);
ZORT_BENCH_TESSEL("encode", encode, I_2bpp_quality_1, true, 0, 1);
ZORT_BENCH_TESSEL("encode", encode, I_4bpp_quality_0, false, 0, 0);
ZORT_BENCH_TESSEL("encode", encode, I_4bpp_quality_1, false, 0, 1, 0.5);
ZORT_BENCH_TESSEL("encode", encode, II_2bpp_quality_0, true, 1, 0);
ZORT_BENCH_TESSEL("encode", encode, II_2bpp_quality_1, true, 1, 1);
ZORT_BENCH_TESSEL("encode", encode, II_4bpp_quality_0, false, 1, 0);
ZORT_BENCH_TESSEL("encode", encode, II_4bpp_quality_1, false, 1, 1, 0.5);
ZORT_BENCH_TESSEL("decode", decode, I_2bpp, true, 0, 11);
ZORT_BENCH_TESSEL("decode", decode, I_4bpp, false, 0, 11);
ZORT_BENCH_TESSEL("decode", decode, II_2bpp, true, 1, 6);
ZORT_BENCH_TESSEL("decode", decode, II_4bpp, false, 1, 6);
ZORT_BENCH_TESSEL("decode noise", decodeNoise, I_2bpp, true, 0, 11);
ZORT_BENCH_TESSEL("decode noise", decodeNoise, I_4bpp, false, 0, 11);
ZORT_BENCH_TESSEL("decode noise", decodeNoise, II_2bpp, true, 1, 6);
ZORT_BENCH_TESSEL("decode noise", decodeNoise, II_4bpp, false, 1, 6);
} // namespace
