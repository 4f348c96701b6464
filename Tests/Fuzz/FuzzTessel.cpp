// Both Tessel decoders on arbitrary blocks at arbitrary small sizes. Byte 0 selects bit rate and generation, bytes 1 and 2 the size,
// the rest are blocks, zero where they end. The buffers have exactly the documented sizes, so that the sanitizer sees every access
// past them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "TesselCodec.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
	if (size < 3)
	{
		return 0;
	}
	const bool is2bpp = (data[0] & 1) != 0;
	const unsigned version = (data[0] >> 1) & 1;
	const unsigned width = data[1] % 80 + 1U;
	const unsigned height = data[2] % 80 + 1U;
	const auto roundUp = [](unsigned value, unsigned unit)
	{
		return (value + unit - 1) / unit * unit;
	};
	// The first generation needs two by two blocks.
	const unsigned unitX = (is2bpp ? 8 : 4) * (version == 0 ? 2 : 1);
	const unsigned unitY = version == 0 ? 8 : 4;
	std::vector<std::uint8_t> blocks(std::size_t(roundUp(width, unitX)) * roundUp(height, unitY) / (is2bpp ? 4 : 2));
	std::copy_n(data + 3, std::min(size - 3, blocks.size()), blocks.begin());
	std::vector<std::uint8_t> pixels(std::size_t(4) * width * height);
	if (zortexture::TesselDecompress(blocks.data(), pixels.data(), width, height, is2bpp, version) != pixels.size())
	{
		std::abort();
	}
	return 0;
}
