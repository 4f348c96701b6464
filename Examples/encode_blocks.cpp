// Encodes raw pixels to ETC1 blocks and decodes them again, by the codec's own entry points and without any texture.
//
//   encode_blocks

#include <ZORTexLib.h>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace zortexture;

int main()
{
	// Red, green and blue bytes, row after row: a grey ramp from the top left.
	const unsigned int width = 16;
	const unsigned int height = 8;
	std::vector<unsigned char> pixels;
	for (unsigned int y = 0; y < height; ++y)
	{
		for (unsigned int x = 0; x < width; ++x)
		{
			pixels.insert(pixels.end(), 3, static_cast<unsigned char>(8 * x + 8 * y));
		}
	}

	// A null pointer asks for the size.
	const bool isSigned = false;
	const unsigned int size = ETCCompress(nullptr, nullptr, width, height, 0, ePF_ETC1, isSigned);
	std::vector<unsigned char> blocks(size);
	if (size == 0 || ETCCompress(pixels.data(), blocks.data(), width, height, 0, ePF_ETC1, isSigned) != size)
	{
		std::fprintf(stderr, "the pixels could not be encoded\n");
		return 1;
	}

	std::vector<unsigned char> decoded(pixels.size());
	if (ETCDecompress(blocks.data(), decoded.data(), width, height, ePF_ETC1, isSigned) != decoded.size())
	{
		std::fprintf(stderr, "the blocks could not be decoded\n");
		return 1;
	}

	int largest = 0;
	for (std::size_t i = 0; i < pixels.size(); ++i)
	{
		const int difference = std::abs(pixels[i] - decoded[i]);
		largest = difference > largest ? difference : largest;
	}
	std::printf("%zu bytes of pixels in %u bytes of blocks; the largest difference is %d\n", pixels.size(), size, largest);
	std::printf("the first block:");
	for (unsigned int i = 0; i < 8; ++i)
	{
		std::printf(" %02x", blocks[i]);
	}
	std::printf("\n");
	return 0;
}
