// Resizing, from 512 x 512 pixels; counted in pixels of the result.

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 512;

void resize(benchmark::State& state, EResizeMode mode, unsigned int newSide)
{
	const CZORTexture picture = bench::makePicture(kSide, kSide);
	for (auto _ : state)
	{
		CZORTexture texture(picture);
		benchmark::DoNotOptimize(Resize(texture, newSide, newSide, 1, mode));
	}
	bench::countPixels(state, static_cast<unsigned long long>(newSide) * newSide);
}

BENCHMARK_CAPTURE(resize, nearest_down, eResizeNearest, kSide / 2)->Name("resize/nearest to half")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(resize, linear_down, eResizeLinear, kSide / 2)->Name("resize/linear to half")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(resize, linear_up, eResizeLinear, kSide * 2)->Name("resize/linear to double")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(resize, cubic_down, eResizeCubic, kSide / 2)->Name("resize/cubic to half")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(resize, cubic_up, eResizeCubic, kSide * 2)->Name("resize/cubic to double")->Unit(benchmark::kMillisecond);
} // namespace
