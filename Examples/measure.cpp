// Tells how far two textures of one size are apart, whatever their formats.
//
//   measure A B

#include <ZORTexLib.h>
#include <cmath>
#include <cstdio>

using namespace zortexture;

namespace
{
/// A texture file in the layout that the measures take: red, green, blue and alpha of 8 bits each.
bool load(const char* path, CZORTexture& texture)
{
	texture = CZORTexture(path);
	if (texture.getDataPtr(0, 0, 0) == nullptr ||
	    !Transcode(texture, ZORStandard8PixelType, eVT_UnsignedByteNorm, texture.getColourSpace()))
	{
		std::fprintf(stderr, "%s: not a texture that can be read and decoded\n", path);
		return false;
	}
	return true;
}
} // namespace

int main(int argc, char** argv)
{
	if (argc != 3)
	{
		std::fprintf(stderr, "usage: measure A B\n");
		return 2;
	}

	CZORTexture first;
	CZORTexture second;
	if (!load(argv[1], first) || !load(argv[2], second))
	{
		return 1;
	}

	// One face of one array member of one level at a time.
	const SChannelDifference largest = GetMaxDifference(first, second, 0, 0, 0);
	const SChannelDifference rootMeanSquare = GetRMSErrorValue(first, second, 0, 0, 0);
	if (largest.all < 0.0f)
	{
		std::fprintf(stderr, "the two cannot be compared: their sizes differ\n");
		return 1;
	}
	std::printf("largest difference: %g\n", largest.all);
	std::printf("root mean square: red %.3f, green %.3f, blue %.3f, alpha %.3f\n", rootMeanSquare.red, rootMeanSquare.green,
	            rootMeanSquare.blue, rootMeanSquare.alpha);

	// Decibels over all channels. The measure's own `all` is another sum, so it is not used.
	double meanSquare = 0.0;
	for (const float channel : {rootMeanSquare.red, rootMeanSquare.green, rootMeanSquare.blue, rootMeanSquare.alpha})
	{
		meanSquare += static_cast<double>(channel) * channel / 4;
	}
	if (meanSquare > 0.0)
	{
		std::printf("PSNR: %.2f dB\n", 10.0 * std::log10(255.0 * 255.0 / meanSquare));
	}
	return 0;
}
