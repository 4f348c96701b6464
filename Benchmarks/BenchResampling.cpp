// Resizing and MIP chains, from the photograph of 512 x 512 pixels, and what else reads the neighbours of a pixel.

#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 512;
constexpr unsigned int kAll = 0xFFFFFFFFu;

/// The photograph in a standard layout.
CZORTexture photographIn(EZORTVariableType channelType)
{
	CZORTexture picture = bench::photograph(kSide);
	const PixelType layout = channelType == eVT_UnsignedByteNorm    ? ZORStandard8PixelType
	                         : channelType == eVT_UnsignedShortNorm ? ZORStandard16PixelType
	                                                                : ZORStandard32PixelType;
	Transcode(picture, layout, channelType, eCS_lRGB);
	return picture;
}

/// Counted in pixels of the result.
void resize(benchmark::State& state, EZORTVariableType channelType, EResizeMode mode, unsigned int newSide, double goal)
{
	const CZORTexture picture = photographIn(channelType);
	for (auto _ : state)
	{
		CZORTexture texture(picture);
		benchmark::DoNotOptimize(Resize(texture, newSide, newSide, 1, mode));
	}
	bench::countPixels(state, static_cast<unsigned long long>(newSide) * newSide, goal);
}

/// The full chain, counted in pixels of the top level.
void mipChain(benchmark::State& state, EZORTVariableType channelType, EResizeMode mode, double goal)
{
	CZORTexture texture = photographIn(channelType);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(GenerateMIPMaps(texture, mode, kAll));
	}
	bench::countPixels(state, kSide * kSide, goal);
}

/// The chain of a volume of 64 slices, counted as above.
void mipVolume(benchmark::State& state, EResizeMode mode)
{
	constexpr unsigned int kVolume = 64;
	const CZORTexture picture = bench::photograph(kSide);
	CZORTexture volume(CZORTextureHeader(ZORStandard8PixelType.id, kVolume, kVolume, kVolume), picture.getDataPtr());
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(GenerateMIPMaps(volume, mode, kAll));
	}
	bench::countPixels(state, kVolume * kVolume * kVolume);
}

void convolution(benchmark::State& state)
{
	const CZORTexture picture = bench::photograph(kSide);
	std::vector<Pixel<unsigned char>> result(kSide * kSide);
	const float kernel[25] = {1, 2, 3, 2, 1, 2, 4, 6, 4, 2, 3, 6, 9, 6, 3, 2, 4, 6, 4, 2, 1, 2, 3, 2, 1};
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(ConvolutionKernel(static_cast<Pixel<unsigned char>*>(picture.getDataPtr()), result.data(), kSide, kSide, 1,
		                                           kernel, 81.0f, 5, 5, 1));
	}
	bench::countPixels(state, kSide * kSide);
}

void normalMap(benchmark::State& state)
{
	const CZORTexture picture = bench::photograph(kSide);
	for (auto _ : state)
	{
		CZORTexture texture(picture);
		benchmark::DoNotOptimize(GenerateNormalMap(texture, 6.0f, "xyz"));
	}
	bench::countPixels(state, kSide * kSide);
}

void rotate(benchmark::State& state)
{
	CZORTexture texture = bench::photograph(kSide);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(Rotate90(texture, eAxis_Z, true));
	}
	bench::countPixels(state, kSide * kSide);
}

#define ZORT_BENCH(name, function, ...) BENCHMARK_CAPTURE(function, name, __VA_ARGS__)->Name(name)->Unit(benchmark::kMillisecond)

ZORT_BENCH("mips/linear", mipChain, eVT_UnsignedByteNorm, eResizeLinear, 6);
ZORT_BENCH("mips/cubic", mipChain, eVT_UnsignedByteNorm, eResizeCubic, 2);
ZORT_BENCH("mips/linear rgba16", mipChain, eVT_UnsignedShortNorm, eResizeLinear, 0);
ZORT_BENCH("mips/cubic rgba16", mipChain, eVT_UnsignedShortNorm, eResizeCubic, 0);
ZORT_BENCH("mips/linear float", mipChain, eVT_SignedFloat, eResizeLinear, 0);
ZORT_BENCH("mips/cubic float", mipChain, eVT_SignedFloat, eResizeCubic, 0);
ZORT_BENCH("mips/linear volume", mipVolume, eResizeLinear);
ZORT_BENCH("mips/cubic volume", mipVolume, eResizeCubic);
ZORT_BENCH("resize/nearest to half", resize, eVT_UnsignedByteNorm, eResizeNearest, kSide / 2, 0);
ZORT_BENCH("resize/linear to half", resize, eVT_UnsignedByteNorm, eResizeLinear, kSide / 2, 2);
ZORT_BENCH("resize/linear to double", resize, eVT_UnsignedByteNorm, eResizeLinear, kSide * 2, 2);
ZORT_BENCH("resize/linear to 300", resize, eVT_UnsignedByteNorm, eResizeLinear, 300, 0);
ZORT_BENCH("resize/cubic to half", resize, eVT_UnsignedByteNorm, eResizeCubic, kSide / 2, 1);
ZORT_BENCH("resize/cubic to double", resize, eVT_UnsignedByteNorm, eResizeCubic, kSide * 2, 1);
ZORT_BENCH("resize/cubic to 300", resize, eVT_UnsignedByteNorm, eResizeCubic, 300, 0);
BENCHMARK(convolution)->Name("convolution 5x5")->Unit(benchmark::kMillisecond);
BENCHMARK(normalMap)->Name("normal map")->Unit(benchmark::kMillisecond);
BENCHMARK(rotate)->Name("rotate by 90 degrees")->Unit(benchmark::kMillisecond);
} // namespace
