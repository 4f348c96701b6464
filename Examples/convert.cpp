// Loads a texture, compresses it to ETC2 with alpha, and saves it. The extensions pick the containers: .zor, .ktx, .dds.
//
//   convert IN OUT

#include <ZORTexLib.h>
#include <cstdio>

using namespace zortexture;

int main(int argc, char** argv)
{
	if (argc != 3)
	{
		std::fprintf(stderr, "usage: convert IN OUT\n");
		return 2;
	}

	CZORTexture texture(argv[1]);
	if (texture.getDataPtr(0, 0, 0) == nullptr)
	{
		std::fprintf(stderr, "%s: not a texture that can be read\n", argv[1]);
		return 1;
	}

	// All levels, faces and array members at once, whatever the format was. On failure the texture stays as it was.
	const unsigned int bytesBefore = texture.getDataSize();
	if (!Transcode(texture, ePF_ETC2_RGBA, eVT_UnsignedByteNorm, texture.getColourSpace(), eQuality_0))
	{
		std::fprintf(stderr, "%s: cannot be converted\n", argv[1]);
		return 1;
	}
	if (!texture.saveFile(argv[2]))
	{
		std::fprintf(stderr, "%s: cannot be written\n", argv[2]);
		return 1;
	}
	std::printf("%u bytes of pixels became %u\n", bytesBefore, texture.getDataSize());
	return 0;
}
