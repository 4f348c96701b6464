// The exhaustive levels of the ETC compressor on one thread: every colour that a block can hold is tried, or shown to be no better.

#include <cstdint>
#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 64;
constexpr unsigned int kNoiseSide = 8;

/// Rows of R, G, B, as the compressor takes them.
std::vector<unsigned char> opaquePixels(const CZORTexture& picture)
{
	const auto* pixels = static_cast<const unsigned char*>(picture.getDataPtr());
	std::vector<unsigned char> opaque;
	for (std::size_t i = 0; i < picture.getTextureSize(0); ++i)
	{
		opaque.insert(opaque.end(), pixels + i * 4, pixels + i * 4 + 3);
	}
	return opaque;
}

/// What fits no block: every search has to look at most of its candidates.
std::vector<unsigned char> noise(unsigned int side)
{
	std::vector<unsigned char> pixels(static_cast<std::size_t>(side) * side * 3);
	std::uint32_t state = 1;
	for (unsigned char& value : pixels)
	{
		state = state * 1664525U + 1013904223U;
		value = static_cast<unsigned char>(state >> 24);
	}
	return pixels;
}

void encode(benchmark::State& state, const std::vector<unsigned char>& pixels, unsigned int side, EZORTPixelFormat format, int quality,
            double goal)
{
	std::vector<unsigned char> blocks(static_cast<std::size_t>(side) * side);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(ETCCompress(pixels.data(), blocks.data(), side, side, quality, format, false));
	}
	bench::countPixels(state, static_cast<unsigned long long>(side) * side, goal);
}

void photograph(benchmark::State& state, EZORTPixelFormat format, int quality, double goal)
{
	encode(state, opaquePixels(bench::photograph(kSide)), kSide, format, quality, goal);
}

void generated(benchmark::State& state, EZORTPixelFormat format, int quality, double goal)
{
	encode(state, opaquePixels(bench::makePicture(kSide, kSide)), kSide, format, quality, goal);
}

void noisy(benchmark::State& state, EZORTPixelFormat format, int quality, double goal)
{
	encode(state, noise(kNoiseSide), kNoiseSide, format, quality, goal);
}

#define ROW(picture, format, formatName, quality, goal)                                                                                    \
	BENCHMARK_CAPTURE(picture, format##_##quality, ePF_##format, quality, goal)                                                            \
	    ->Name("etc exhaustive/" #picture " " formatName " quality " #quality)                                                             \
	    ->Unit(benchmark::kMillisecond)

ROW(photograph, ETC1, "ETC1", 2, 0.0);
ROW(photograph, ETC1, "ETC1", 3, 0.0);
ROW(photograph, ETC2_RGB, "ETC2 RGB", 2, 0.001);
ROW(photograph, ETC2_RGB, "ETC2 RGB", 3, 0.0);
ROW(generated, ETC2_RGB, "ETC2 RGB", 2, 0.0);
ROW(generated, ETC2_RGB, "ETC2 RGB", 3, 0.0);
ROW(noisy, ETC2_RGB, "ETC2 RGB", 2, 0.0);
ROW(noisy, ETC2_RGB, "ETC2 RGB", 3, 0.0);
} // namespace
