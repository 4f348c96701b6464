#include <cstddef>
#include <cstring>
#include <vector>

#include "ChannelAccess.h"
#include "Channels.h"
#include "ElementDispatch.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// An integer as an element: cut to the element's width; a float takes over the bits.
template<typename T>
T elementOf(unsigned int value)
{
	if constexpr (std::is_same_v<T, float>)
	{
		float element = 0.0f;
		std::memcpy(&element, &value, sizeof(element));
		return element;
	}
	else
	{
		return static_cast<T>(value);
	}
}

/// A float as an element, unscaled.
template<typename T>
T elementOf(float value)
{
	return toElement<T>(value);
}

/// Sets channels to integers or to floats.
template<typename Value>
bool setChannelsTo(CZORTexture& texture, unsigned int numChannels, const EChannelName* channels, const Value* values)
{
	if (!isProcessable(texture) || !isChannelList(channels, numChannels) || !isChannelList(values, numChannels))
	{
		return false;
	}
	return withElementType(texture.getChannelType(),
	                       [&]<typename T>(std::type_identity<T>)
	                       {
		                       std::vector<T> elements;
		                       elements.reserve(numChannels);
		                       for (unsigned int c = 0; c < numChannels; ++c)
		                       {
			                       elements.push_back(elementOf<T>(values[c]));
		                       }
		                       forEachImage(texture,
		                                    [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
		                                    {
			                                    auto* pixels = pixelsOf<T>(texture, mipLevel, arrayMember, face);
			                                    const std::size_t numPixels = pixelCount(texture, mipLevel);
			                                    for (std::size_t i = 0; i < numPixels; ++i)
			                                    {
				                                    for (unsigned int c = 0; c < numChannels; ++c)
				                                    {
					                                    writeChannel(pixels[i], channels[c], elements[c]);
				                                    }
			                                    }
		                                    });
		                       return true;
	                       });
}
} // namespace

bool SetChannels(CZORTexture& texture, unsigned int numChannels, EChannelName* channels, unsigned int* values)
{
	return setChannelsTo(texture, numChannels, channels, values);
}

bool SetChannelsFloat(CZORTexture& texture, unsigned int numChannels, EChannelName* channels, float* values)
{
	return setChannelsTo(texture, numChannels, channels, values);
}
} // namespace zortexture
