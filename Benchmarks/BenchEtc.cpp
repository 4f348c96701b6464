// The ETC compressors on one thread, through their entry points.

#include <vector>

#include "Pictures.h"

using namespace zortexture;

namespace
{
struct Case
{
	EZORTPixelFormat format;
	double goals[2]; ///< of qualities 0 and 1; a perceptual search may take one and a half times as long as the plain one
};

constexpr Case kEtc1{ePF_ETC1, {1.0, 0.67}};
constexpr Case kEtc2Rgb{ePF_ETC2_RGB, {0.25, 0.17}};
constexpr Case kEtc2Rgba{ePF_ETC2_RGBA, {0.25, 0.17}};
constexpr Case kEtc2RgbA1{ePF_ETC2_RGB_A1, {0, 0}};

/// The photograph in the layout that the codec takes.
CZORTexture intermediatePicture(EZORTPixelFormat format)
{
	PixelType pixelType;
	EZORTVariableType channelType = eVT_UnsignedByteNorm;
	IntermediateTranscodeFormat(format, eVT_UnsignedByteNorm, pixelType, channelType);
	CZORTexture picture = bench::photograph();
	Transcode(picture, pixelType, channelType, eCS_lRGB);
	return picture;
}

void encode(benchmark::State& state, const Case& one, int quality)
{
	const CZORTexture picture = intermediatePicture(one.format);
	const unsigned int side = picture.getWidth();
	std::vector<unsigned char> blocks(static_cast<std::size_t>(side) * side);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(ETCCompress(picture.getDataPtr(), blocks.data(), side, side, quality, one.format, false));
	}
	bench::countPixels(state, static_cast<unsigned long long>(side) * side, one.goals[quality]);
}

BENCHMARK_CAPTURE(encode, etc1_0, kEtc1, 0)->Name("etc/encode ETC1 quality 0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, etc1_1, kEtc1, 1)->Name("etc/encode ETC1 quality 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, etc2_0, kEtc2Rgb, 0)->Name("etc/encode ETC2 RGB quality 0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, etc2_1, kEtc2Rgb, 1)->Name("etc/encode ETC2 RGB quality 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, rgba_0, kEtc2Rgba, 0)->Name("etc/encode ETC2 RGBA quality 0")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, rgba_1, kEtc2Rgba, 1)->Name("etc/encode ETC2 RGBA quality 1")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, a1, kEtc2RgbA1, 0)->Name("etc/encode ETC2 one-bit alpha")->Unit(benchmark::kMillisecond);
} // namespace
