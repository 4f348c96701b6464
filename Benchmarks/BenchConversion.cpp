// TranscodeTrivial, one row for each road through the pixel encoder.

#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 512;

struct Layout
{
	PixelType pixelType;
	EZORTVariableType channelType;
};

const Layout kRgba8{ZORStandard8PixelType, eVT_UnsignedByteNorm};
const Layout kBgra8{PixelType('b', 'g', 'r', 'a', 8, 8, 8, 8), eVT_UnsignedByteNorm};
const Layout kRgb8{PixelType('r', 'g', 'b', 0, 8, 8, 8, 0), eVT_UnsignedByteNorm};
const Layout kRgb565{PixelType('r', 'g', 'b', 0, 5, 6, 5, 0), eVT_UnsignedShortNorm};
const Layout kL8{PixelType('l', 0, 0, 0, 8, 0, 0, 0), eVT_UnsignedByteNorm};
const Layout kRgba16{ZORStandard16PixelType, eVT_UnsignedShortNorm};
const Layout kRgba8Signed{ZORStandard8PixelType, eVT_SignedByteNorm};
const Layout kRgba16Float{ZORStandard16PixelType, eVT_SignedFloat};
const Layout kRgba32Float{ZORStandard32PixelType, eVT_SignedFloat};
const Layout kBgrPackedFloat{PixelType('b', 'g', 'r', 0, 10, 11, 11, 0), eVT_UnsignedFloat};

void convert(benchmark::State& state, const Layout& from, const Layout& to, EZORTColourSpace targetSpace)
{
	CZORTexture source = bench::makePicture(kSide, kSide, from.pixelType, from.channelType);
	CZORTextureHeader header(source.getHeader());
	header.setPixelFormat(to.pixelType);
	header.setChannelType(to.channelType);
	CZORTexture destination(header);
	CPixelEncoder sourceEncoder(from.pixelType, from.channelType);
	CPixelEncoder destinationEncoder(to.pixelType, to.channelType);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(TranscodeTrivial(source, destination, sourceEncoder, destinationEncoder, targetSpace, eCS_lRGB));
	}
	bench::countPixels(state, kSide * kSide);
}

#define ZORT_BENCH_CONVERT(name, from, to, space)                                                                                          \
	BENCHMARK_CAPTURE(convert, name, from, to, space)->Name("convert/" #name)->Unit(benchmark::kMillisecond)

ZORT_BENCH_CONVERT(rgba8_to_bgra8, kRgba8, kBgra8, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba8_to_rgb8, kRgba8, kRgb8, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba8_to_rgb565, kRgba8, kRgb565, eCS_lRGB);
ZORT_BENCH_CONVERT(rgb565_to_rgba8, kRgb565, kRgba8, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba8_to_l8, kRgba8, kL8, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba8_to_rgba16, kRgba8, kRgba16, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba8_to_rgba8_signed, kRgba8, kRgba8Signed, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba8_to_rgba16f, kRgba8, kRgba16Float, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba32f_to_rgba8, kRgba32Float, kRgba8, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba32f_to_packed_float, kRgba32Float, kBgrPackedFloat, eCS_lRGB);
ZORT_BENCH_CONVERT(rgba8_to_rgba8_srgb, kRgba8, kRgba8, eCS_sRGB);

void dither(benchmark::State& state)
{
	const CZORTexture picture = bench::makePicture(kSide, kSide);
	for (auto _ : state)
	{
		state.PauseTiming();
		const CZORTexture copy(picture);
		state.ResumeTiming();
		Dither(static_cast<unsigned char*>(copy.getDataPtr(0, 0, 0)), kRgb565.pixelType, kSide, kSide, 1);
	}
	bench::countPixels(state, kSide * kSide);
}
BENCHMARK(dither)->Name("convert/dither to 565")->Unit(benchmark::kMillisecond);
} // namespace
