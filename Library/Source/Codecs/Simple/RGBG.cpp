#include "PixelPairs.h"
#include "SimpleCodecs.h"

namespace zortexture
{
namespace
{
/// Where a word keeps its four values.
struct RGBGLayout
{
	unsigned int red;
	unsigned int firstGreen;
	unsigned int blue;
	unsigned int secondGreen;
};
constexpr RGBGLayout kRGBGLayout{0, 1, 2, 3};
constexpr RGBGLayout kGRGBLayout{1, 0, 3, 2};

/// The layout of a format; null for a format that is not of this kind.
const RGBGLayout* layoutOf(EZORTPixelFormat format)
{
	switch (format)
	{
	case ePF_RGBG8888:
		return &kRGBGLayout;
	case ePF_GRGB8888:
		return &kGRGBLayout;
	default:
		return nullptr;
	}
}
} // namespace

unsigned int RGBGCompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                          const EZORTPixelFormat& format)
{
	const RGBGLayout* layout = layoutOf(format);
	if (layout == nullptr || source == nullptr || destination == nullptr)
	{
		return 0;
	}
	encodePairs(static_cast<const unsigned char*>(source), static_cast<unsigned char*>(destination), width, height,
	            [at = *layout](const BytePixel& first, const BytePixel& second, unsigned char* word)
	            {
		            word[at.red] = first.r;
		            word[at.firstGreen] = first.g;
		            word[at.blue] = first.b;
		            word[at.secondGreen] = second.g;
	            });
	return width * height * 2;
}

unsigned int RGBGDecompress(const void* source, void* destination, const unsigned int& width, const unsigned int& height,
                            const EZORTPixelFormat& format)
{
	const RGBGLayout* layout = layoutOf(format);
	if (layout == nullptr || source == nullptr || destination == nullptr)
	{
		return 0;
	}
	decodePairs(static_cast<const unsigned char*>(source), static_cast<unsigned char*>(destination), width, height,
	            [at = *layout](const unsigned char* word, BytePixel& first, BytePixel& second)
	            {
		            first.r = second.r = word[at.red];
		            first.g = word[at.firstGreen];
		            first.b = second.b = word[at.blue];
		            second.g = word[at.secondGreen];
	            });
	return width * height * 4;
}
} // namespace zortexture
