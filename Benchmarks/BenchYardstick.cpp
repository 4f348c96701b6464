// The speed that all others are compared with.

#include <algorithm>
#include <vector>

#include "Pictures.h"

#if defined(ZORT_HAVE_SQUISH)
#include <squish.h>
#endif

namespace
{
#if defined(ZORT_HAVE_SQUISH)
/// libsquish compressing the photograph to DXT1 with its range fit, on one thread (Scripts/bench.sh sets OMP_NUM_THREADS): 1.0.
void yardstick(benchmark::State& state)
{
	const zortexture::CZORTexture picture = bench::photograph();
	const auto* pixels = static_cast<const squish::u8*>(picture.getDataPtr());
	const auto side = static_cast<int>(picture.getWidth());
	constexpr int kFlags = squish::kDxt1 | squish::kColourRangeFit;
	std::vector<unsigned char> blocks(static_cast<std::size_t>(squish::GetStorageRequirements(side, side, kFlags)));
	for (auto _ : state)
	{
		squish::CompressImage(pixels, side, side, blocks.data(), kFlags);
		benchmark::ClobberMemory();
	}
	bench::countPixels(state, picture.getTextureSize(0));
}
BENCHMARK(yardstick)->Name("yardstick")->Unit(benchmark::kMillisecond)->MinTime(2.0);
#endif

void copy(benchmark::State& state)
{
	const zortexture::CZORTexture picture = bench::photograph(256);
	std::vector<unsigned char> pixels(picture.getDataSize());
	for (auto _ : state)
	{
		std::copy_n(static_cast<const unsigned char*>(picture.getDataPtr()), pixels.size(), pixels.data());
		benchmark::ClobberMemory();
	}
	bench::countPixels(state, picture.getTextureSize(0));
}
BENCHMARK(copy)->Name("copy of rgba8 pixels in cache")->Unit(benchmark::kMillisecond);
} // namespace
