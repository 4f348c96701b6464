#include <cstddef>
#include <cstdint>
#include <span>

#include "ByteChannels.h"
#include "ChannelAccess.h"
#include "Channels.h"
#include "ElementDispatch.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// Alpha as the factor 0 to 1; the range of a float is its largest number.
template<typename T>
float alphaFactor(T alpha)
{
	if constexpr (std::is_same_v<T, unsigned int>)
	{
		return static_cast<float>(alpha) * kUnsignedIntReciprocal;
	}
	else
	{
		return static_cast<float>(alpha) / kElementCeiling<T>;
	}
}

/// The low 8 bits of the truncated product, whatever the width of T.
template<typename T>
T multiply(T element, float factor)
{
	return static_cast<T>(wrapToUnsigned<std::uint8_t>(static_cast<float>(element) * factor));
}
template<typename T>
void multiplyAll(Pixel<T>* pixels, std::size_t numPixels)
{
	if constexpr (sizeof(T) == 1)
	{
		withSimdLevel([&](auto level) { preMultiplyBytes<level()>(&pixels->r, numPixels); });
	}
	else
	{
		for (Pixel<T>& pixel : std::span(pixels, numPixels))
		{
			const float factor = alphaFactor(pixel.a);
			pixel.r = multiply(pixel.r, factor);
			pixel.g = multiply(pixel.g, factor);
			pixel.b = multiply(pixel.b, factor);
		}
	}
}
} // namespace

bool PreMultiplyAlpha(CZORTexture& texture)
{
	if (!isProcessable(texture) || texture.isPreMultiplied())
	{
		return false;
	}
	withElementType(texture.getChannelType(),
	                [&]<typename T>(std::type_identity<T>)
	                {
		                forEachImage(texture, [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
		                             { multiplyAll(pixelsOf<T>(texture, mipLevel, arrayMember, face), pixelCount(texture, mipLevel)); });
	                });
	texture.setIsPreMultiplied(true);
	return true;
}
} // namespace zortexture
