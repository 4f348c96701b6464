#include "TesselCodec.h"

#include <climits>
#include <cstdint>
#include <vector>

#include "Pixel.h"
#include "TesselBands.h"
#include "TesselPadding.h"
#include "kiln/wrapper.h"

namespace zortexture
{
namespace
{
/// Encodes an image of whole blocks; false on failure.
using Encoder = bool (*)(const void* in, void* out, unsigned width, unsigned height, bool is2bpp, unsigned quality);

constexpr int kFastIterations[] = {0, 8};
/// From this number on, qualities are those of the high-quality compressor.
constexpr unsigned kFirstKilnQuality = 2;

bool encodeFirstGenerationFast(const void* in, void* out, unsigned width, unsigned height, bool is2bpp, unsigned quality)
{
	// The image is only read: the parameter's type is that of a published function.
	tesselCompressMW(const_cast<void*>(in), out, width, height, false, true, is2bpp, kFastIterations[quality]);
	return true;
}

bool encodeSecondGenerationFast(const void* in, void* out, unsigned width, unsigned height, bool is2bpp, unsigned quality)
{
	tessel2Compress(const_cast<void*>(in), out, width, height, false, true, is2bpp, kFastIterations[quality]);
	return true;
}

bool encodeSections(const void* in, void* out, unsigned width, unsigned height, bool /*is2bpp*/, unsigned /*quality*/)
{
	return Tessel2SectionCompress(in, out, width, height) != 0;
}

template<unsigned Version>
bool encodeKiln(const void* in, void* out, unsigned width, unsigned height, bool is2bpp, unsigned quality)
{
	return tessel_compress(in, out, width, height, Version, quality - kFirstKilnQuality, is2bpp) == 0;
}

/// The encoder that serves a generation (version 0 or 1) and quality; null where there is none.
Encoder encoderFor(unsigned version, bool is2bpp, unsigned quality)
{
	if (version > 1)
	{
		return nullptr;
	}
	if (quality >= kFirstKilnQuality)
	{
		return version == 0 ? encodeKiln<0> : encodeKiln<1>;
	}
	if (version == 0)
	{
		return encodeFirstGenerationFast;
	}
	return quality == 0 && !is2bpp ? encodeSections : encodeSecondGenerationFast;
}

bool decodeSecondGeneration(const void* compressed, void* pixels, unsigned width, unsigned height, bool is2bpp)
{
	constexpr unsigned kSecond = 1;
	const unsigned blockWidth = is2bpp ? 8 : 4;
	// The pixel-by-pixel decoder's own limits, which are refused below as ever.
	if (width != 0 && height != 0 && width <= INT_MAX - 7 && height <= INT_MAX - 3)
	{
		const TesselBandPicture picture = {static_cast<const unsigned char*>(compressed),
		                                   (width + blockWidth - 1) / blockWidth,
		                                   (height + 3) / 4,
		                                   is2bpp,
		                                   true,
		                                   static_cast<unsigned char*>(pixels),
		                                   width,
		                                   height,
		                                   width};
		if (decodeTesselBands(picture))
		{
			return true;
		}
	}
	return tessel_decompress(compressed, pixels, width, height, kSecond, is2bpp) != 0;
}
} // namespace

unsigned int TesselDecompress(const void* compressed, void* pixels, const unsigned int& width, const unsigned int& height, bool is2bpp,
                              const unsigned int& version)
{
	const unsigned size = width * height * 4;
	if (compressed == nullptr || pixels == nullptr)
	{
		return size;
	}
	if (std::uint64_t(width) * height * 4 != size)
	{
		return 0; // more pixels than a size query can tell
	}
	if (version != 0)
	{
		return decodeSecondGeneration(compressed, pixels, width, height, is2bpp) ? size : 0;
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
                            bool is2bpp, unsigned int version, unsigned int quality)
{
	const unsigned padX = (0U - width) & (is2bpp ? 7U : 3U);
	const unsigned padY = (0U - height) & 3U;
	const bool padding = padX != 0 || padY != 0;
	if (padding && version != 1)
	{
		return 0;
	}
	const std::uint64_t bytes = (std::uint64_t(width) + padX) * (std::uint64_t(height) + padY) / (is2bpp ? 4 : 2);
	const unsigned size = static_cast<unsigned>(bytes);
	if (in == nullptr || out == nullptr)
	{
		return size;
	}
	const Encoder encode = encoderFor(version, is2bpp, quality);
	// Sizes are counted in 32 bits: what would be written must not exceed what is reported.
	if (encode == nullptr || bytes == 0 || bytes != size)
	{
		return 0;
	}
	if (!padding)
	{
		return encode(in, out, width, height, is2bpp, quality) ? size : 0;
	}
	const std::vector<Pixel<unsigned char>> padded = padTesselImage(in, width, height, padX, padY);
	return encode(padded.data(), out, width + padX, height + padY, is2bpp, quality) ? size : 0;
}
} // namespace zortexture
