// The ETC and EAC decoders, through their entry points.

#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 512;

void decode(benchmark::State& state, EZORTPixelFormat format, double goal)
{
	PixelType pixelType;
	EZORTVariableType channelType = eVT_UnsignedByteNorm;
	IntermediateTranscodeFormat(format, eVT_UnsignedByteNorm, pixelType, channelType);
	CZORTexture picture = bench::photograph();
	Transcode(picture, pixelType, channelType, eCS_lRGB);
	std::vector<unsigned char> blocks(std::size_t{kSide} * kSide);
	std::vector<unsigned char> pixels(picture.getDataSize());
	ETCCompress(picture.getDataPtr(), blocks.data(), kSide, kSide, 0, format, false);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(ETCDecompress(blocks.data(), pixels.data(), kSide, kSide, format, false));
	}
	bench::countPixels(state, std::size_t{kSide} * kSide, goal);
}

/// The small decoder of ETC1 alone.
void decodeToRgba(benchmark::State& state)
{
	CZORTexture picture = bench::photograph();
	Transcode(picture, PixelType('r', 'g', 'b', 0, 8, 8, 8, 0), eVT_UnsignedByteNorm, eCS_lRGB);
	std::vector<unsigned char> blocks(std::size_t{kSide} * kSide / 2);
	std::vector<unsigned char> pixels(std::size_t{kSide} * kSide * 4);
	ETCCompress(picture.getDataPtr(), blocks.data(), kSide, kSide, 0, ePF_ETC1, false);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(ZORTDecompressETC(blocks.data(), kSide, kSide, pixels.data(), 0));
	}
	bench::countPixels(state, std::size_t{kSide} * kSide, 20);
}
BENCHMARK(decodeToRgba)->Name("etc/decode ETC1 to R, G, B, A")->Unit(benchmark::kMillisecond);

#define ZORT_BENCH_DECODE(name, format, goal)                                                                                              \
	BENCHMARK_CAPTURE(decode, format, format, goal)->Name("etc/decode " name)->Unit(benchmark::kMillisecond)

ZORT_BENCH_DECODE("ETC1", ePF_ETC1, 20);
ZORT_BENCH_DECODE("ETC2 RGB", ePF_ETC2_RGB, 20);
ZORT_BENCH_DECODE("ETC2 RGB, one-bit alpha", ePF_ETC2_RGB_A1, 15);
ZORT_BENCH_DECODE("ETC2 RGBA", ePF_ETC2_RGBA, 15);
ZORT_BENCH_DECODE("EAC R11", ePF_EAC_R11, 15);
ZORT_BENCH_DECODE("EAC RG11", ePF_EAC_RG11, 15);
} // namespace
