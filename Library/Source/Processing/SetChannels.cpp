#include <cstddef>
#include <cstdint>
#include <cstring>

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

/// A change of every pixel of an image, on 16 bytes at a time: whole pixels in all layouts.
class PixelPattern
{
public:
	template<typename T>
	PixelPattern(const Pixel<T>& written, const Pixel<T>& values)
	{
		static_assert(sizeof(m_written) % sizeof(written) == 0);
		for (std::size_t offset = 0; offset < sizeof(m_written); offset += sizeof(written))
		{
			std::memcpy(reinterpret_cast<char*>(m_written) + offset, &written, sizeof(written));
			std::memcpy(reinterpret_cast<char*>(m_values) + offset, &values, sizeof(values));
		}
	}

	void write(unsigned char* bytes, std::size_t count) const
	{
		const std::size_t whole = count - count % sizeof(m_values);
		for (std::size_t i = 0; i < whole; i += sizeof(m_values))
		{
			writeWords(bytes + i, sizeof(m_values));
		}
		writeWords(bytes + whole, count - whole);
	}

private:
	void writeWords(unsigned char* bytes, std::size_t count) const
	{
		std::uint64_t words[2] = {};
		std::memcpy(words, bytes, count);
		words[0] = (words[0] & ~m_written[0]) | m_values[0];
		words[1] = (words[1] & ~m_written[1]) | m_values[1];
		std::memcpy(bytes, words, count);
	}

	std::uint64_t m_written[2]; ///< all bits of the elements that are set
	std::uint64_t m_values[2];
};

/// The pattern of a list of channels; of two that name one element the later one holds.
template<typename T, typename Value>
PixelPattern patternOf(unsigned int numChannels, const EChannelName* channels, const Value* values)
{
	const T allBits = elementOf<T>(0xFFFFFFFFu);
	Pixel<T> written{};
	Pixel<T> elements{};
	for (unsigned int c = 0; c < numChannels; ++c)
	{
		writeChannel(written, channels[c], allBits);
		writeChannel(elements, channels[c], elementOf<T>(values[c]));
	}
	return PixelPattern(written, elements);
}

/// Sets channels to integers or to floats.
template<typename Value>
bool setChannelsTo(CZORTexture& texture, unsigned int numChannels, const EChannelName* channels, const Value* values)
{
	if (!isProcessable(texture) || !isChannelList(channels, numChannels) || !isChannelList(values, numChannels))
	{
		return false;
	}
	const PixelPattern pattern = withElementType(texture.getChannelType(), [&]<typename T>(std::type_identity<T>)
	                                             { return patternOf<T>(numChannels, channels, values); });
	forEachImage(texture,
	             [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
	             {
		             auto* const image = static_cast<unsigned char*>(texture.getDataPtr(mipLevel, arrayMember, face));
		             pattern.write(image, texture.getDataSize(static_cast<int>(mipLevel), false, false));
	             });
	return true;
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
