// Makes a picture of its own, builds all MIP levels of it, and saves them in one file.
//
//   mip_chain OUT

#include <ZORTexLib.h>
#include <cstdio>
#include <vector>

using namespace zortexture;

int main(int argc, char** argv)
{
	if (argc != 2)
	{
		std::fprintf(stderr, "usage: mip_chain OUT\n");
		return 2;
	}

	// Rings on a colour ramp.
	const unsigned int width = 64;
	const unsigned int height = 32;
	std::vector<Pixel<unsigned char>> pixels;
	for (unsigned int y = 0; y < height; ++y)
	{
		for (unsigned int x = 0; x < width; ++x)
		{
			const unsigned int ring = (x * x + y * y) / 64 % 2;
			pixels.push_back(
			    {static_cast<unsigned char>(4 * x), static_cast<unsigned char>(8 * y), static_cast<unsigned char>(200 * ring), 255});
		}
	}

	// Height stands ahead of width; then depth, levels, array members and faces.
	const CZORTextureHeader header(ZORStandard8PixelType.id, height, width, 1, 1, 1, 1, eCS_sRGB, eVT_UnsignedByteNorm);
	CZORTexture texture(header, pixels.data());

	if (!GenerateMIPMaps(texture, eResizeCubic))
	{
		std::fprintf(stderr, "no MIP levels could be made\n");
		return 1;
	}
	if (!texture.saveFile(argv[1]))
	{
		std::fprintf(stderr, "%s: cannot be written\n", argv[1]);
		return 1;
	}
	std::printf("%u levels, down to %u x %u\n", texture.getNumMIPLevels(), texture.getWidth(texture.getNumMIPLevels() - 1),
	            texture.getHeight(texture.getNumMIPLevels() - 1));
	return 0;
}
