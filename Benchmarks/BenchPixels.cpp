// Work on single pixels and sums over them: measures, flips, channels, alpha.

#include "Pictures.h"

using namespace zortexture;

namespace
{
/// The photograph and what a compressor makes of it, with a standard layout of their own each.
struct Pair
{
	Pair(PixelType typeOfA, EZORTVariableType channelsOfA, PixelType typeOfB, EZORTVariableType channelsOfB) : a(bench::photograph()), b(a)
	{
		Transcode(b, ePF_ETC1, eVT_UnsignedByteNorm, eCS_lRGB, eQuality_0);
		Transcode(a, typeOfA, channelsOfA, eCS_lRGB);
		Transcode(b, typeOfB, channelsOfB, eCS_lRGB);
	}

	CZORTexture a;
	CZORTexture b;
};

const Pair& bytePair()
{
	static const Pair pair{ZORStandard8PixelType, eVT_UnsignedByteNorm, ZORStandard8PixelType, eVT_UnsignedByteNorm};
	return pair;
}
const Pair& mixedPair()
{
	static const Pair pair{ZORStandard32PixelType, eVT_SignedFloat, ZORStandard16PixelType, eVT_UnsignedShortNorm};
	return pair;
}

void measure(benchmark::State& state, decltype(&GetMaxDifference) function, const Pair& (*makePair)(), double goal)
{
	const Pair& pair = makePair();
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(function(pair.a, pair.b, 0, 0, 0));
	}
	bench::countPixels(state, pair.a.getTextureSize(), goal);
}
BENCHMARK_CAPTURE(measure, maximum, GetMaxDifference, bytePair, 10)->Name("pixels/GetMaxDifference rgba8")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, mean, GetMeanErrorValue, bytePair, 10)->Name("pixels/GetMeanErrorValue rgba8")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, rms, GetRMSErrorValue, bytePair, 10)->Name("pixels/GetRMSErrorValue rgba8")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, psnr, GetPSNRValue, bytePair, 10)->Name("pixels/GetPSNRValue rgba8")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, deviation, GetStandardDeviation, bytePair, 7)
    ->Name("pixels/GetStandardDeviation rgba8")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(measure, mixed_rms, GetRMSErrorValue, mixedPair, 10)
    ->Name("pixels/GetRMSErrorValue float, rgba16")
    ->Unit(benchmark::kMillisecond);

template<typename Function>
void difference(benchmark::State& state, Function function)
{
	const Pair& pair = bytePair();
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(function(pair.a, pair.b));
	}
	bench::countPixels(state, pair.a.getTextureSize());
}
BENCHMARK_CAPTURE(difference, colour, [](const CZORTexture& a, const CZORTexture& b) { return ColourDiff(a, b, 4.0f); })
    ->Name("pixels/ColourDiff rgba8")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(difference, tolerance, [](const CZORTexture& a, const CZORTexture& b) { return ToleranceDiff(a, b, 0.02f); })
    ->Name("pixels/ToleranceDiff rgba8")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(difference, blend, [](const CZORTexture& a, const CZORTexture& b) { return BlendDiff(a, b, 0.3f); })
    ->Name("pixels/BlendDiff rgba8")
    ->Unit(benchmark::kMillisecond);

/// A change in place that costs the same at every call.
template<typename Function>
void change(benchmark::State& state, Function function, PixelType pixelType, EZORTVariableType channelType, double goal)
{
	CZORTexture texture = bench::photograph();
	Transcode(texture, pixelType, channelType, eCS_lRGB);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(function(texture));
		benchmark::ClobberMemory();
	}
	bench::countPixels(state, texture.getTextureSize(), goal);
}
bool setChannels(CZORTexture& texture)
{
	EChannelName channels[] = {eCh_Blue, eCh_Alpha};
	unsigned int values[] = {77, 255};
	return SetChannels(texture, 2, channels, values);
}
/// Swaps red and blue, and copies green to alpha.
bool permuteChannels(CZORTexture& texture)
{
	EChannelName destination[] = {eCh_Red, eCh_Blue, eCh_Alpha};
	EChannelName source[] = {eCh_Blue, eCh_Red, eCh_Green};
	return CopyChannels(texture, texture, 3, destination, source);
}
bool makeGrey(CZORTexture& texture)
{
	EChannelName colours[] = {eCh_Red, eCh_Green, eCh_Blue};
	EChannelName greys[] = {eCh_Luminance, eCh_Luminance, eCh_Luminance};
	return CopyChannels(texture, texture, 3, colours, greys);
}
#define ZORT_CHANGE_8(label, name, function, goal)                                                                                         \
	BENCHMARK_CAPTURE(change, label, function, ZORStandard8PixelType, eVT_UnsignedByteNorm, goal)                                          \
	    ->Name("pixels/" name " rgba8")                                                                                                    \
	    ->Unit(benchmark::kMillisecond)
#define ZORT_CHANGE_16(label, name, function)                                                                                              \
	BENCHMARK_CAPTURE(change, label, function, ZORStandard16PixelType, eVT_UnsignedShortNorm, 0)                                           \
	    ->Name("pixels/" name " rgba16")                                                                                                   \
	    ->Unit(benchmark::kMillisecond)
ZORT_CHANGE_8(
    flip_x, "Flip x", [](CZORTexture& texture) { return Flip(texture, eAxis_X); }, 60);
ZORT_CHANGE_8(
    flip_y, "Flip y", [](CZORTexture& texture) { return Flip(texture, eAxis_Y); }, 60);
ZORT_CHANGE_16(flip_x16, "Flip x", [](CZORTexture& texture) { return Flip(texture, eAxis_X); });
ZORT_CHANGE_8(
    rotate, "Rotate90 z", [](CZORTexture& texture) { return Rotate90(texture, eAxis_Z, true); }, 0);
void rotateLarge(benchmark::State& state)
{
	CZORTexture texture{CZORTextureHeader(ZORStandard8PixelType.id, 4096, 4096)};
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(Rotate90(texture, eAxis_Z, true));
	}
	bench::countPixels(state, texture.getTextureSize());
}
BENCHMARK(rotateLarge)->Name("pixels/Rotate90 z rgba8, 4096 x 4096")->Unit(benchmark::kMillisecond);
ZORT_CHANGE_8(set, "SetChannels", setChannels, 60);
ZORT_CHANGE_16(set16, "SetChannels", setChannels);
ZORT_CHANGE_8(copy, "CopyChannels", permuteChannels, 60);
ZORT_CHANGE_8(grey, "CopyChannels of luminance", makeGrey, 0);
ZORT_CHANGE_16(copy16, "CopyChannels", permuteChannels);

bool preMultiply(CZORTexture& texture)
{
	texture.setIsPreMultiplied(false);
	return PreMultiplyAlpha(texture);
}
ZORT_CHANGE_8(premultiply, "PreMultiplyAlpha", preMultiply, 20);
ZORT_CHANGE_16(premultiply16, "PreMultiplyAlpha", preMultiply);

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
