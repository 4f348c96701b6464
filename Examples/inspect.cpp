// Loads a texture file and prints what it holds.
//
//   inspect FILE

#include <ZORTexLib.h>
#include <cstdio>

using namespace zortexture;

int main(int argc, char** argv)
{
	if (argc != 2)
	{
		std::fprintf(stderr, "usage: inspect FILE\n");
		return 2;
	}

	const CZORTexture texture(argv[1]);
	if (texture.getDataPtr(0, 0, 0) == nullptr)
	{
		std::fprintf(stderr, "%s: not a texture that can be read\n", argv[1]);
		return 1;
	}

	for (unsigned int level = 0; level < texture.getNumMIPLevels(); ++level)
	{
		std::printf("level %u: %u x %u x %u pixels, %u bytes a face\n", level, texture.getWidth(level), texture.getHeight(level),
		            texture.getDepth(level), texture.getDataSize(static_cast<int>(level), false, false));
	}
	return 0;
}
