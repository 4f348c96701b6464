#include "TesselCodec.h"

#include <climits>

#include "kiln/wrapper.h"

namespace zortexture
{
unsigned int TesselDecompress(const void* compressed, void* pixels, const unsigned int& width, const unsigned int& height, bool is2bpp,
                              const unsigned int& version)
{
	const unsigned size = width * height * 4;
	if (compressed == nullptr || pixels == nullptr)
	{
		return size;
	}
	if (version != 0)
	{
		return tessel_decompress(compressed, pixels, width, height, version, is2bpp) != 0 ? size : 0;
	}
	if (width > INT_MAX || height > INT_MAX)
	{
		return 0;
	}
	ZORTDecompressTessel(compressed, is2bpp ? 1 : 0, static_cast<int>(width), static_cast<int>(height),
	                     static_cast<unsigned char*>(pixels));
	return size;
}

unsigned int TesselCompress(const void* in, void* out, const unsigned int& width, const unsigned int& height, bool /*hasAlpha*/,
                            bool is2bpp, unsigned int version, unsigned int /*quality*/)
{
	const unsigned padX = (0U - width) & (is2bpp ? 7U : 3U);
	const unsigned padY = (0U - height) & 3U;
	if ((padX != 0 || padY != 0) && version != 1)
	{
		return 0;
	}
	const unsigned size = (width + padX) * (height + padY) * (is2bpp ? 2 : 4) / 8;
	if (in == nullptr || out == nullptr)
	{
		return size;
	}
	return 0;
}
} // namespace zortexture
