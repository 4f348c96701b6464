// The DXT codec in both directions, on arbitrary bytes at arbitrary small sizes. Byte 0 selects number and direction, bytes 1 and 2 the
// size, the rest is the source, repeated to its length. The buffers have exactly the documented sizes, so that the sanitizer sees every
// access past them.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "DXTCodec.h"

using namespace zortexture;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
	if (size < 4)
	{
		return 0;
	}
	const unsigned int number = (data[0] >> 1) % 5 + 1;
	const bool isEncoding = (data[0] & 1) != 0;
	const unsigned int width = data[1] % 40;
	const unsigned int height = data[2] % 40;
	const std::size_t blockCount = std::size_t{(width + 3) / 4} * ((height + 3) / 4);

	std::vector<std::uint8_t> blocks(blockCount * (number == 1 ? 8 : 16));
	std::vector<std::uint8_t> pixels(std::size_t{width} * height * 4);
	std::vector<std::uint8_t>& source = isEncoding ? pixels : blocks;
	for (std::size_t i = 0; i < source.size(); ++i)
	{
		source[i] = data[3 + i % (size - 3)];
	}
	if (isEncoding && DXTCompress(pixels.data(), blocks.data(), width, height, number) != blocks.size())
	{
		std::abort();
	}
	// What the encoder made is decoded too.
	if (DXTDecompress(blocks.data(), pixels.data(), width, height, number) != pixels.size())
	{
		std::abort();
	}
	return 0;
}
