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

	// The extension picks the loader. Loading reports nothing: a texture without data is one that could not be read.
	const CZORTexture texture(argv[1]);
	if (texture.getDataPtr(0, 0, 0) == nullptr)
	{
		std::fprintf(stderr, "%s: not a texture that can be read\n", argv[1]);
		return 1;
	}

	// A compressed format is a number; an uncompressed layout is its channels and their widths.
	const PixelType format = texture.getPixelType();
	if (format.isCompressed())
	{
		std::printf("compressed format %llu, %u bits a pixel\n", format.id, texture.getBitsPerPixel());
	}
	else
	{
		for (unsigned int i = 0; i < 4 && format.channelName[i] != 0; ++i)
		{
			std::printf("%c: %u bits  ", format.channelName[i], static_cast<unsigned int>(format.channelBits[i]));
		}
		std::printf("%u bits a pixel\n", texture.getBitsPerPixel());
	}
	std::printf("%s, %u array members, %u faces\n", texture.getColourSpace() == eCS_sRGB ? "sRGB" : "linear", texture.getNumArrayMembers(),
	            texture.getNumFaces());
	const unsigned int vulkanFormat = texture.getVulkanFormat();
	const char* vulkanName = getFormatConstantName(eApi_Vulkan, vulkanFormat);
	std::printf("for Vulkan: %s\n", vulkanFormat != 0 && vulkanName != nullptr ? vulkanName : "no format");

	for (unsigned int level = 0; level < texture.getNumMIPLevels(); ++level)
	{
		std::printf("level %u: %u x %u x %u pixels, %u bytes a face\n", level, texture.getWidth(level), texture.getHeight(level),
		            texture.getDepth(level), texture.getDataSize(static_cast<int>(level), false, false));
	}
	return 0;
}
