// The EAC encoders: the 11-bit formats through their entry point, the searches of 8-bit alpha by themselves.

#include <vector>

#include "Codecs/ETC/EacBlock.h"
#include "Pictures.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kSide = 256;

/// @param goal  of all channels together.
void encode16(benchmark::State& state, EZORTPixelFormat format, EZORTVariableType channelType, double goal)
{
	CZORTexture picture = bench::photograph(kSide);
	PixelType pixelType;
	EZORTVariableType intermediate = channelType;
	IntermediateTranscodeFormat(format, channelType, pixelType, intermediate);
	Transcode(picture, pixelType, intermediate, eCS_lRGB);
	const bool isSigned = channelType == eVT_SignedShortNorm;
	std::vector<unsigned char> blocks(std::size_t{kSide} * kSide);
	for (auto _ : state)
	{
		benchmark::DoNotOptimize(ETCCompress(picture.getDataPtr(), blocks.data(), kSide, kSide, 0, format, isSigned));
	}
	bench::countPixels(state, std::size_t{kSide} * kSide, goal);
}

/// One channel of the photograph.
void encode8(benchmark::State& state, decltype(&compressBlockAlphaSlow) search)
{
	const CZORTexture picture = bench::photograph(kSide);
	const auto* pixels = static_cast<const Pixel<unsigned char>*>(picture.getDataPtr());
	std::vector<unsigned char> plane;
	for (std::size_t i = 0; i < std::size_t{kSide} * kSide; ++i)
	{
		plane.push_back(pixels[i].g);
	}
	unsigned char block[8];
	for (auto _ : state)
	{
		for (unsigned int y = 0; y < kSide; y += 4)
		{
			for (unsigned int x = 0; x < kSide; x += 4)
			{
				search(plane.data(), x, y, kSide, block, alphaTable);
				benchmark::DoNotOptimize(block);
			}
		}
	}
	bench::countPixels(state, std::size_t{kSide} * kSide, 0.1);
}

BENCHMARK_CAPTURE(encode16, r11, ePF_EAC_R11, eVT_UnsignedShortNorm, 0.1)->Name("eac/encode R11")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode16, signed_r11, ePF_EAC_R11, eVT_SignedShortNorm, 0.1)
    ->Name("eac/encode R11, signed")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode16, rg11, ePF_EAC_RG11, eVT_UnsignedShortNorm, 0.05)->Name("eac/encode RG11")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode8, fast, compressBlockAlphaFast)->Name("eac/encode 8 bits, fast")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode8, slow, compressBlockAlphaSlow)->Name("eac/encode 8 bits, slow")->Unit(benchmark::kMillisecond);
} // namespace
