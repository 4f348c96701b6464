// The ETC compressors on one thread, through their entry points.

#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
struct Case
{
	EZORTPixelFormat format;
	unsigned int side; ///< small where the search tries everything
};

constexpr Case kEtc1{ePF_ETC1, 512};
constexpr Case kEtc2Rgb{ePF_ETC2_RGB, 512};
constexpr Case kEtc2Rgba{ePF_ETC2_RGBA, 512};
constexpr Case kEtc2RgbA1{ePF_ETC2_RGB_A1, 256};

CZORTexture intermediatePicture(const Case& one)
{
	PixelType pixelType;
	EZORTVariableType channelType = eVT_UnsignedByteNorm;
	IntermediateTranscodeFormat(one.format, eVT_UnsignedByteNorm, pixelType, channelType);
	return bench::makePicture(one.side, one.side, pixelType, channelType);
}

void encode(benchmark::State& state, const Case& one, int quality)
{
	const CZORTexture picture = intermediatePicture(one);
	const unsigned int side = one.side;
	std::vector<unsigned char> blocks(static_cast<std::size_t>(side) * side);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(ETCCompress(picture.getDataPtr(), blocks.data(), side, side, quality, one.format, false));
	}
	bench::countPixels(state, static_cast<unsigned long long>(side) * side);
}

BENCHMARK_CAPTURE(encode, etc1_0, kEtc1, 0)->Name("etc/encode ETC1 quality 0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, etc1_1, kEtc1, 1)->Name("etc/encode ETC1 quality 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, etc2_0, kEtc2Rgb, 0)->Name("etc/encode ETC2 RGB quality 0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, etc2_1, kEtc2Rgb, 1)->Name("etc/encode ETC2 RGB quality 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, rgba_0, kEtc2Rgba, 0)->Name("etc/encode ETC2 RGBA quality 0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, rgba_1, kEtc2Rgba, 1)->Name("etc/encode ETC2 RGBA quality 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, a1, kEtc2RgbA1, 0)->Name("etc/encode ETC2 one-bit alpha")->Unit(benchmark::kMillisecond);
} // namespace
