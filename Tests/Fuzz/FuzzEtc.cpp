// Both ETC decoders on arbitrary blocks at arbitrary small sizes. Byte 0 selects format and signedness, bytes 1 and 2 the size, the rest
// are blocks, zero where they end. The buffers have exactly the documented sizes, so that the sanitizer sees every access past them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "ETCCodec.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
	if (size < 3)
	{
		return 0;
	}
	constexpr unsigned kFormats[] = {ePF_ETC1, ePF_ETC2_RGB, ePF_ETC2_RGBA, ePF_ETC2_RGB_A1, ePF_EAC_R11, ePF_EAC_RG11};
	const unsigned format = kFormats[(data[0] & 127) % 6];
	const bool isSigned = data[0] > 127;
	const unsigned width = data[1] % 40;
	const unsigned height = data[2] % 40;
	const std::size_t blockCount = std::size_t((width + 3) / 4) * ((height + 3) / 4);
	const unsigned blockBytes = format == ePF_ETC2_RGBA || format == ePF_EAC_RG11 ? 16 : 8;
	std::vector<std::uint8_t> blocks(blockCount * blockBytes);
	std::copy_n(data + 3, std::min(size - 3, blocks.size()), blocks.begin());

	std::vector<std::uint8_t> pixels(zortexture::ETCDecompress(nullptr, nullptr, width, height, format, isSigned));
	if (zortexture::ETCDecompress(blocks.data(), pixels.data(), width, height, format, isSigned) != pixels.size())
	{
		std::abort();
	}
	if (blockBytes == 8 && width != 0 && height != 0)
	{
		// Whole blocks are written unless a side is below 4.
		const bool small = width < 4 || height < 4;
		std::vector<std::uint8_t> rgba(small ? std::size_t(width) * height * 4 : blockCount * 64);
		zortexture::ZORTDecompressETC(blocks.data(), width, height, rgba.data(), 0);
	}
	return 0;
}
