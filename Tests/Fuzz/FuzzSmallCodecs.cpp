// The codecs without a search, in both directions, on arbitrary bytes at arbitrary small sizes. Byte 0 selects codec and direction,
// bytes 1 and 2 the size, the rest is the source, zero where it ends. The buffers have exactly the documented sizes, so that the
// sanitizer sees every access past them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "SimpleCodecs.h"

using namespace zortexture;

namespace
{
/// One direction of one codec, without its format argument.
using Code = unsigned int (*)(const void* source, void* destination, const unsigned int& width, const unsigned int& height);

template<auto function, EZORTPixelFormat format>
unsigned int withFormat(const void* source, void* destination, const unsigned int& width, const unsigned int& height)
{
	return function(source, destination, width, height, format);
}

struct SmallCodec
{
	Code compress;
	Code decompress;
	unsigned int pixelBytes;
	unsigned int bitsPerPixel;
	unsigned int widthUnit; ///< levels are stored in rows of a multiple of this
};

const SmallCodec kCodecs[] = {
    {OneBPPCompress, OneBPPDecompress, 4, 1, 8},
    {RGB9E5Compress, RGB9E5Decompress, 12, 32, 1},
    {withFormat<RGBGCompress, ePF_RGBG8888>, withFormat<RGBGDecompress, ePF_RGBG8888>, 4, 16, 2},
    {withFormat<RGBGCompress, ePF_GRGB8888>, withFormat<RGBGDecompress, ePF_GRGB8888>, 4, 16, 2},
    {withFormat<YUVCompress, ePF_UYVY>, withFormat<YUVDecompress, ePF_UYVY>, 4, 16, 2},
    {withFormat<YUVCompress, ePF_YUY2>, withFormat<YUVDecompress, ePF_YUY2>, 4, 16, 2},
};
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
	if (size < 3)
	{
		return 0;
	}
	const SmallCodec& codec = kCodecs[(data[0] >> 1) % std::size(kCodecs)];
	const bool isEncoding = (data[0] & 1) != 0;
	const unsigned int width = data[1] % 40;
	const unsigned int height = data[2] % 40;
	const unsigned int storedWidth = (width + codec.widthUnit - 1) / codec.widthUnit * codec.widthUnit;
	const std::size_t codedBytes = std::size_t{storedWidth} * height * codec.bitsPerPixel / 8;
	const std::size_t pixelBytes = std::size_t{width} * height * codec.pixelBytes;

	std::vector<std::uint8_t> source(isEncoding ? pixelBytes : codedBytes);
	std::copy_n(data + 3, std::min(size - 3, source.size()), source.begin());
	std::vector<std::uint8_t> destination(isEncoding ? codedBytes : pixelBytes);
	const std::size_t expected = isEncoding ? std::size_t{width} * height * codec.bitsPerPixel / 8 : pixelBytes;
	if ((isEncoding ? codec.compress : codec.decompress)(source.data(), destination.data(), width, height) != expected)
	{
		std::abort();
	}
	return 0;
}
