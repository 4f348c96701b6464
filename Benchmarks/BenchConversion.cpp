// TranscodeTrivial, one row for each road that pixels take, and dithering.

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
const Layout kArgb8{PixelType('a', 'r', 'g', 'b', 8, 8, 8, 8), eVT_UnsignedByteNorm};
const Layout kAbgr8{PixelType('a', 'b', 'g', 'r', 8, 8, 8, 8), eVT_UnsignedByteNorm};
const Layout kBgr8{PixelType('b', 'g', 'r', 0, 8, 8, 8, 0), eVT_UnsignedByteNorm};
const Layout kR8{PixelType('r', 0, 0, 0, 8, 0, 0, 0), eVT_UnsignedByteNorm};
const Layout kLa8{PixelType('l', 'a', 0, 0, 8, 8, 0, 0), eVT_UnsignedByteNorm};
const Layout kRgba4444{PixelType('r', 'g', 'b', 'a', 4, 4, 4, 4), eVT_UnsignedShortNorm};
const Layout kRgba5551{PixelType('r', 'g', 'b', 'a', 5, 5, 5, 1), eVT_UnsignedShortNorm};
const Layout kRgb10a2{PixelType('r', 'g', 'b', 'a', 10, 10, 10, 2), eVT_UnsignedIntegerNorm};
const Layout kBgra16{PixelType('b', 'g', 'r', 'a', 16, 16, 16, 16), eVT_UnsignedShortNorm};
const Layout kRgba16Signed{ZORStandard16PixelType, eVT_SignedShortNorm};
const Layout kL16{PixelType('l', 0, 0, 0, 16, 0, 0, 0), eVT_UnsignedShortNorm};
const Layout kLa32Float{PixelType('l', 'a', 0, 0, 32, 32, 0, 0), eVT_SignedFloat};
const Layout kRgb8{PixelType('r', 'g', 'b', 0, 8, 8, 8, 0), eVT_UnsignedByteNorm};
const Layout kRgb565{PixelType('r', 'g', 'b', 0, 5, 6, 5, 0), eVT_UnsignedShortNorm};
const Layout kL8{PixelType('l', 0, 0, 0, 8, 0, 0, 0), eVT_UnsignedByteNorm};
const Layout kRgba16{ZORStandard16PixelType, eVT_UnsignedShortNorm};
const Layout kRgba8Signed{ZORStandard8PixelType, eVT_SignedByteNorm};
const Layout kRgba16Float{ZORStandard16PixelType, eVT_SignedFloat};
const Layout kRgba32Float{ZORStandard32PixelType, eVT_SignedFloat};
const Layout kBgrPackedFloat{PixelType('b', 'g', 'r', 0, 10, 11, 11, 0), eVT_UnsignedFloat};

/// @param goal  in multiples of the yardstick
void convert(benchmark::State& state, const Layout& from, const Layout& to, double goal, EZORTColourSpace targetSpace)
{
	CZORTexture source = bench::photograph(kSide);
	Transcode(source, from.pixelType, from.channelType, eCS_lRGB);
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
	bench::countPixels(state, kSide * kSide, goal);
}

#define ZORT_BENCH_CONVERT(name, from, to, goal)                                                                                           \
	BENCHMARK_CAPTURE(convert, name, from, to, goal, eCS_lRGB)->Name("convert/" name)->Unit(benchmark::kMicrosecond)
#define ZORT_BENCH_CONVERT_SPACE(name, from, to, goal)                                                                                     \
	BENCHMARK_CAPTURE(convert, name, from, to, goal, eCS_sRGB)->Name("convert/" name ", linear to sRGB")->Unit(benchmark::kMicrosecond)

// Bytes that move.
ZORT_BENCH_CONVERT("rgba8 to bgra8", kRgba8, kBgra8, 100);
ZORT_BENCH_CONVERT("argb8 to rgba8", kArgb8, kRgba8, 100);
ZORT_BENCH_CONVERT("bgra8 to abgr8", kBgra8, kAbgr8, 100);
ZORT_BENCH_CONVERT("rgba8 to rgba8", kRgba8, kRgba8, 100);
ZORT_BENCH_CONVERT("rgb8 to bgr8", kRgb8, kBgr8, 100);

// Pairs in daily use.
ZORT_BENCH_CONVERT("rgba8 to rgb8", kRgba8, kRgb8, 20);
ZORT_BENCH_CONVERT("rgb8 to rgba8", kRgb8, kRgba8, 20);
ZORT_BENCH_CONVERT("rgba8 to rgb565", kRgba8, kRgb565, 20);
ZORT_BENCH_CONVERT("rgb565 to rgba8", kRgb565, kRgba8, 20);
ZORT_BENCH_CONVERT("rgba8 to rgba4444", kRgba8, kRgba4444, 20);
ZORT_BENCH_CONVERT("rgba4444 to rgba8", kRgba4444, kRgba8, 20);
ZORT_BENCH_CONVERT("rgba8 to rgba5551", kRgba8, kRgba5551, 20);
ZORT_BENCH_CONVERT("rgba5551 to rgba8", kRgba5551, kRgba8, 20);
ZORT_BENCH_CONVERT("rgba8 to r8", kRgba8, kR8, 20);
ZORT_BENCH_CONVERT("r8 to rgba8", kR8, kRgba8, 20);
ZORT_BENCH_CONVERT("rgba8 to l8", kRgba8, kL8, 20);
ZORT_BENCH_CONVERT("l8 to rgba8", kL8, kRgba8, 20);
ZORT_BENCH_CONVERT("rgba8 to la8", kRgba8, kLa8, 20);
ZORT_BENCH_CONVERT("la8 to rgba8", kLa8, kRgba8, 20);
ZORT_BENCH_CONVERT("rgba8 to rgba16", kRgba8, kRgba16, 20);
ZORT_BENCH_CONVERT("rgba16 to rgba8", kRgba16, kRgba8, 20);
ZORT_BENCH_CONVERT("rgb8 to rgb565", kRgb8, kRgb565, 20);
ZORT_BENCH_CONVERT("rgb565 to rgba4444", kRgb565, kRgba4444, 20);
ZORT_BENCH_CONVERT("rgb565 to rgba16", kRgb565, kRgba16, 20);
ZORT_BENCH_CONVERT("rgba16 to rgb565", kRgba16, kRgb565, 20);

// Floats.
ZORT_BENCH_CONVERT("rgba8 to rgba16f", kRgba8, kRgba16Float, 8);
ZORT_BENCH_CONVERT("rgba16f to rgba8", kRgba16Float, kRgba8, 8);
ZORT_BENCH_CONVERT("rgba8 to rgba32f", kRgba8, kRgba32Float, 8);
ZORT_BENCH_CONVERT("rgba32f to rgba8", kRgba32Float, kRgba8, 8);
ZORT_BENCH_CONVERT("rgba16f to rgba32f", kRgba16Float, kRgba32Float, 8);
ZORT_BENCH_CONVERT("rgba32f to rgba16f", kRgba32Float, kRgba16Float, 8);
ZORT_BENCH_CONVERT("rgba16 to rgba32f", kRgba16, kRgba32Float, 8);
ZORT_BENCH_CONVERT("rgba32f to rgb565", kRgba32Float, kRgb565, 8);

// Any others.
ZORT_BENCH_CONVERT("rgba8 to rgba8 signed", kRgba8, kRgba8Signed, 1.5);
ZORT_BENCH_CONVERT("rgba16 to rgb10a2", kRgba16, kRgb10a2, 1.5);
ZORT_BENCH_CONVERT("rgb10a2 to rgba16", kRgb10a2, kRgba16, 1.5);
ZORT_BENCH_CONVERT("rgba16 signed to bgra16", kRgba16Signed, kBgra16, 1.5);
ZORT_BENCH_CONVERT("rgba16 to l16", kRgba16, kL16, 1.5);
ZORT_BENCH_CONVERT("rgba32f to packed floats", kRgba32Float, kBgrPackedFloat, 0.7);
ZORT_BENCH_CONVERT("packed floats to rgba16f", kBgrPackedFloat, kRgba16Float, 0.7);
ZORT_BENCH_CONVERT("rgba16f to la32f", kRgba16Float, kLa32Float, 0.7);

// With a change of colour space. The last ones take powers pixel by pixel.
ZORT_BENCH_CONVERT_SPACE("rgba8 to rgba8", kRgba8, kRgba8, 10);
ZORT_BENCH_CONVERT_SPACE("rgba8 to bgra8", kRgba8, kBgra8, 10);
ZORT_BENCH_CONVERT_SPACE("rgba8 to l8", kRgba8, kL8, 10);
ZORT_BENCH_CONVERT_SPACE("rgb565 to rgba8", kRgb565, kRgba8, 10);
ZORT_BENCH_CONVERT_SPACE("rgba8 to rgba32f", kRgba8, kRgba32Float, 0);
ZORT_BENCH_CONVERT_SPACE("rgba16 to rgba8", kRgba16, kRgba8, 0);
ZORT_BENCH_CONVERT_SPACE("rgba16 to rgba16", kRgba16, kRgba16, 0);
ZORT_BENCH_CONVERT_SPACE("rgba16f to rgba32f", kRgba16Float, kRgba32Float, 0);
ZORT_BENCH_CONVERT_SPACE("rgba32f to rgba32f", kRgba32Float, kRgba32Float, 0);

void dither(benchmark::State& state)
{
	const CZORTexture picture = bench::photograph(kSide);
	for (auto _ : state)
	{
		state.PauseTiming();
		const CZORTexture copy(picture);
		state.ResumeTiming();
		Dither(static_cast<unsigned char*>(copy.getDataPtr(0, 0, 0)), kRgb565.pixelType, kSide, kSide, 1);
	}
	bench::countPixels(state, kSide * kSide, 2);
}
BENCHMARK(dither)->Name("dither/to rgb565")->Unit(benchmark::kMillisecond);
} // namespace
