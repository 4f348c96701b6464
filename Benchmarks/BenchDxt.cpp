// The DXT codec through its entry points.

#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 512;

void encode(benchmark::State& state, unsigned int number, double goal)
{
	const CZORTexture picture = bench::photograph();
	std::vector<unsigned char> blocks(std::size_t{kSide} * kSide);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(DXTCompress(picture.getDataPtr(), blocks.data(), kSide, kSide, number));
	}
	bench::countPixels(state, std::size_t{kSide} * kSide, goal);
}

void decode(benchmark::State& state, unsigned int number, double goal)
{
	const CZORTexture picture = bench::photograph();
	std::vector<unsigned char> blocks(std::size_t{kSide} * kSide);
	std::vector<unsigned char> pixels(std::size_t{kSide} * kSide * 4);
	DXTCompress(picture.getDataPtr(), blocks.data(), kSide, kSide, number);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(DXTDecompress(blocks.data(), pixels.data(), kSide, kSide, number));
	}
	bench::countPixels(state, std::size_t{kSide} * kSide, goal);
}

BENCHMARK_CAPTURE(encode, dxt1, 1, 1.5)->Name("dxt/encode DXT1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, dxt3, 3, 1.5)->Name("dxt/encode DXT3")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, dxt5, 5, 1.5)->Name("dxt/encode DXT5")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, d1, 1, 60)->Name("dxt/decode DXT1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, d3, 3, 60)->Name("dxt/decode DXT3")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, d5, 5, 60)->Name("dxt/decode DXT5")->Unit(benchmark::kMillisecond);
} // namespace
