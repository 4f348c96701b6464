// Native files of 64 MB, in the page cache.

#include <cstdio>
#include <filesystem>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 4096;

std::string scratchPath()
{
	return (std::filesystem::temp_directory_path() / "zort_benchmark.zor").string();
}

void saveNative(benchmark::State& state)
{
	const CZORTexture texture{CZORTextureHeader(ZORStandard8PixelType.id, kSide, kSide)};
	for (auto _ : state)
	{
		if (!texture.saveFile(scratchPath()))
		{
			state.SkipWithError("the scratch file cannot be written");
			break;
		}
	}
	bench::countPixels(state, kSide * kSide);
	std::remove(scratchPath().c_str());
}
BENCHMARK(saveNative)->Name("native file/save 64 MB")->Unit(benchmark::kMillisecond);

void loadNative(benchmark::State& state)
{
	if (!CZORTexture(CZORTextureHeader(ZORStandard8PixelType.id, kSide, kSide)).saveFile(scratchPath()))
	{
		state.SkipWithError("the scratch file cannot be written");
	}
	for (auto _ : state)
	{
		const CZORTexture texture(scratchPath().c_str());
		benchmark::DoNotOptimize(texture.getDataPtr(0, 0, 0));
	}
	bench::countPixels(state, kSide * kSide);
	std::remove(scratchPath().c_str());
}
BENCHMARK(loadNative)->Name("native file/load 64 MB")->Unit(benchmark::kMillisecond);
} // namespace
