// Makes a picture, compresses it to a Tessel texture, saves it, and decodes it again.
//
//   compress OUT.zor

#include <ZORTexLib.h>
#include <cstdio>
#include <vector>

using namespace zortexture;

int main(int argc, char** argv)
{
	if (argc != 2)
	{
		std::fprintf(stderr, "usage: compress OUT.zor\n");
		return 2;
	}

	const unsigned int size = 64;
	std::vector<Pixel<unsigned char>> pixels;
	for (unsigned int y = 0; y < size; ++y)
	{
		for (unsigned int x = 0; x < size; ++x)
		{
			pixels.push_back({static_cast<unsigned char>(4 * x), static_cast<unsigned char>(4 * y), 128, 255});
		}
	}

	const CZORTextureHeader header(ZORStandard8PixelType.id, size, size, 1, 1, 1, 1, eCS_sRGB, eVT_UnsignedByteNorm);
	CZORTexture texture(header, pixels.data());

	if (!Transcode(texture, ePF_TesselI_4bpp_RGB, eVT_UnsignedByteNorm, eCS_sRGB, eQuality_1) || !texture.saveFile(argv[1]))
	{
		std::fprintf(stderr, "%s: could not be encoded and saved\n", argv[1]);
		return 1;
	}

	CZORTexture decoded(argv[1]);
	if (!Transcode(decoded, ZORStandard8PixelType, eVT_UnsignedByteNorm, eCS_sRGB))
	{
		std::fprintf(stderr, "%s: could not be decoded\n", argv[1]);
		return 1;
	}
	const auto* first = static_cast<const Pixel<unsigned char>*>(decoded.getDataPtr(0, 0, 0));
	std::printf("%u bytes; the first pixel is %u %u %u %u\n", texture.getDataSize(), first->r, first->g, first->b, first->a);
	return 0;
}
