#include <cstddef>

#include "ElementDispatch.h"
#include "MIPMaps.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// The plain mean of the colour elements. Integer sums are exact up to 16 bits and wrap in 32-bit layouts.
template<typename T>
T greyOf(const Pixel<T>& pixel)
{
	return toElement<T>(static_cast<float>(pixel.r + pixel.g + pixel.b) / 3.0f);
}

/// Whether a level's tint holds a colour channel (r, g, b: 0, 1, 2): one of the three primaries in turn, then one of
/// the three mixtures, each without a primary.
bool tintHolds(unsigned int level, unsigned int channel)
{
	const bool isMixture = level % 6 > 2;
	return (level % 3 == channel) != isMixture;
}

template<typename T>
void tintImage(Pixel<T>* image, std::size_t numPixels, unsigned int level)
{
	const bool red = tintHolds(level, 0);
	const bool green = tintHolds(level, 1);
	const bool blue = tintHolds(level, 2);
	for (std::size_t i = 0; i < numPixels; ++i)
	{
		const T grey = greyOf(image[i]);
		image[i].r = red ? grey : T{0};
		image[i].g = green ? grey : T{0};
		image[i].b = blue ? grey : T{0};
	}
}
} // namespace

bool ColourMIPMaps(CZORTexture& texture)
{
	if (!isProcessable(texture))
	{
		return false;
	}
	bool result = false;
	forEachImage(texture,
	             [&](unsigned int level, unsigned int arrayMember, unsigned int face)
	             {
		             result = texture.getDataPtr(level, arrayMember, face) != nullptr;
		             if (level == 0 || !result)
		             {
			             return;
		             }
		             const std::size_t numPixels =
		                 std::size_t{texture.getWidth(level)} * texture.getHeight(level) * texture.getDepth(level);
		             withElementType(texture.getChannelType(),
		                             [&](auto tag)
		                             {
			                             using T = typename decltype(tag)::type;
			                             tintImage(pixelsOf<T>(texture, level, arrayMember, face), numPixels, level);
		                             });
	             });
	return result;
}
} // namespace zortexture
