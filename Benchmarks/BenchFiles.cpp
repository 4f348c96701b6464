// Native files of 64 MB, in the page cache, beside a plain C program's way with the same file.

#include <cstdio>
#include <filesystem>
#include <memory>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 4096;

std::string scratchPath()
{
	return (std::filesystem::temp_directory_path() / "zort_benchmark.zor").string();
}

constexpr std::size_t kPixelBytes = std::size_t{4} * kSide * kSide;
constexpr std::size_t kFileBytes = sizeof(ZORTextureHeaderV3) + kPixelBytes;

void writePlainly(benchmark::State& state)
{
	const std::unique_ptr<unsigned char[]> block(new unsigned char[kFileBytes]());
	for (auto _ : state)
	{
		std::FILE* const file = std::fopen(scratchPath().c_str(), "wb");
		if (file == nullptr || std::fwrite(block.get(), 1, kFileBytes, file) != kFileBytes || std::fclose(file) != 0)
		{
			state.SkipWithError("the scratch file cannot be written");
			break;
		}
	}
	bench::countPixels(state, kSide * kSide);
	std::remove(scratchPath().c_str());
}
BENCHMARK(writePlainly)->Name("native file/64 MB by fwrite")->Unit(benchmark::kMillisecond);

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

void readPlainly(benchmark::State& state)
{
	if (!CZORTexture(CZORTextureHeader(ZORStandard8PixelType.id, kSide, kSide)).saveFile(scratchPath()))
	{
		state.SkipWithError("the scratch file cannot be written");
	}
	for (auto _ : state)
	{
		const std::unique_ptr<unsigned char[]> block(new unsigned char[kFileBytes]);
		std::FILE* const file = std::fopen(scratchPath().c_str(), "rb");
		if (file == nullptr || std::fread(block.get(), 1, kFileBytes, file) != kFileBytes)
		{
			state.SkipWithError("the scratch file cannot be read");
			break;
		}
		benchmark::DoNotOptimize(block.get());
		std::fclose(file);
	}
	bench::countPixels(state, kSide * kSide);
	std::remove(scratchPath().c_str());
}
BENCHMARK(readPlainly)->Name("native file/64 MB by fread")->Unit(benchmark::kMillisecond);

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
