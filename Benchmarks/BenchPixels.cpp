// Work on single pixels and sums over them: measures, flips, channels, alpha.

#include "Pictures.h"

using namespace zortexture;

namespace
{
/// The neighbourhood of a pixel is 17 pixels wide on each axis that the texture has: 289 pixels of a plane, 4913 of a volume.
void bleed(benchmark::State& state, unsigned int depth)
{
	constexpr unsigned int kSide = 512;
	const CZORTexture plane = bench::makeCutOut(kSide, kSide);
	const CZORTexture picture(CZORTextureHeader(ZORStandard8PixelType.id, kSide / depth, kSide, depth), plane.getDataPtr());
	for (auto _ : state)
	{
		state.PauseTiming();
		CZORTexture texture(picture);
		state.ResumeTiming();
		benchmark::DoNotOptimize(Bleed(texture));
	}
	bench::countPixels(state, static_cast<unsigned long long>(kSide) * kSide);
}
BENCHMARK_CAPTURE(bleed, plane, 1)->Name("pixels/bleed in a plane")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bleed, volume, 32)->Name("pixels/bleed in a volume")->Unit(benchmark::kMillisecond);
} // namespace
