#include <cstddef>

#include "ChannelAccess.h"
#include "Channels.h"
#include "ElementDispatch.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// A channel value for every EChannelName.
struct ChannelSlots
{
	float values[eCh_Unused + 1] = {};
};

/// Scales an element from the range of S to that of D. The product comes first, so that it overflows for large values of a
/// float destination; both ranges of float are its largest number.
template<typename S, typename D>
float convertElement(S element)
{
	const float scaled = static_cast<float>(element) * kElementCeiling<D>;
	if constexpr (std::is_same_v<S, unsigned int>)
	{
		return scaled * kUnsignedIntReciprocal;
	}
	else
	{
		return scaled / kElementCeiling<S>;
	}
}

/// Reads one channel of a pixel in the range of D; luminance and intensity weigh the converted colours. A name that is no
/// channel reads 0.
template<typename D, typename S>
float readChannel(const Pixel<S>& pixel, EChannelName channel)
{
	switch (channel)
	{
	case eCh_Red:
		return convertElement<S, D>(pixel.r);
	case eCh_Green:
		return convertElement<S, D>(pixel.g);
	case eCh_Blue:
		return convertElement<S, D>(pixel.b);
	case eCh_Alpha:
	case eCh_Unused:
		return convertElement<S, D>(pixel.a);
	case eCh_Luminance:
		return 0.2126f * convertElement<S, D>(pixel.r) + 0.7152f * convertElement<S, D>(pixel.g) + 0.0722f * convertElement<S, D>(pixel.b);
	case eCh_Intensity:
		return (convertElement<S, D>(pixel.r) + convertElement<S, D>(pixel.g) + convertElement<S, D>(pixel.b)) / 3.0f;
	default:
		return 0.0f;
	}
}

/// The slot of a channel name; names that are no channel share that of eCh_None, which is never read from a pixel.
unsigned int slotOf(EChannelName channel)
{
	return channel <= eCh_Unused ? channel : eCh_None;
}

bool haveSameShape(const CZORTextureHeader& a, const CZORTextureHeader& b)
{
	return a.getWidth() == b.getWidth() && a.getHeight() == b.getHeight() && a.getDepth() == b.getDepth() &&
	       a.getNumArrayMembers() == b.getNumArrayMembers() && a.getNumMIPLevels() == b.getNumMIPLevels() &&
	       a.getNumFaces() == b.getNumFaces();
}
} // namespace

template<typename S, typename D>
bool CopyChannels(Pixel<S>* source, Pixel<D>* destination, const unsigned int& width, const unsigned int& height, const unsigned int& depth,
                  const unsigned int& numChannels, EChannelName* destinationChannels, EChannelName* sourceChannels)
{
	if (source == nullptr || destination == nullptr || !isChannelList(destinationChannels, numChannels) ||
	    !isChannelList(sourceChannels, numChannels))
	{
		return false;
	}
	const std::size_t numPixels = static_cast<std::size_t>(width) * height * depth;
	for (std::size_t i = 0; i < numPixels; ++i)
	{
		// All reads come before all writes, so that channels of one texture can be permuted.
		ChannelSlots slots;
		for (unsigned int c = 0; c < numChannels; ++c)
		{
			slots.values[slotOf(sourceChannels[c])] = readChannel<D>(source[i], sourceChannels[c]);
		}
		for (unsigned int c = 0; c < numChannels; ++c)
		{
			writeChannel(destination[i], destinationChannels[c], toElement<D>(slots.values[slotOf(sourceChannels[c])]));
		}
	}
	return true;
}

bool CopyChannels(CZORTexture& destination, const CZORTexture& source, unsigned int numChannels, EChannelName* destinationChannels,
                  EChannelName* sourceChannels)
{
	if (!isProcessable(destination) || !isProcessable(source) || !haveSameShape(destination, source) ||
	    !isChannelList(destinationChannels, numChannels) || !isChannelList(sourceChannels, numChannels))
	{
		return false;
	}
	return withElementType(source.getChannelType(),
	                       [&]<typename S>(std::type_identity<S>)
	                       {
		                       return withElementType(
		                           destination.getChannelType(),
		                           [&]<typename D>(std::type_identity<D>)
		                           {
			                           bool result = true;
			                           forEachImage(source,
			                                        [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
			                                        {
				                                        result &= CopyChannels(pixelsOf<S>(source, mipLevel, arrayMember, face),
				                                                               pixelsOf<D>(destination, mipLevel, arrayMember, face),
				                                                               source.getWidth(mipLevel), source.getHeight(mipLevel),
				                                                               source.getDepth(mipLevel), numChannels, destinationChannels,
				                                                               sourceChannels);
			                                        });
			                           return result;
		                           });
	                       });
}

// Every pair of element types.
#define ZORT_COPY_CHANNELS(S, D)                                                                                                           \
	template ZORT_API bool CopyChannels(Pixel<S>*, Pixel<D>*, const unsigned int&, const unsigned int&, const unsigned int&,               \
	                                    const unsigned int&, EChannelName*, EChannelName*);
#define ZORT_COPY_CHANNELS_FROM(S)                                                                                                         \
	ZORT_COPY_CHANNELS(S, unsigned char)                                                                                                   \
	ZORT_COPY_CHANNELS(S, unsigned short)                                                                                                  \
	ZORT_COPY_CHANNELS(S, unsigned int)                                                                                                    \
	ZORT_COPY_CHANNELS(S, float)
ZORT_COPY_CHANNELS_FROM(unsigned char)
ZORT_COPY_CHANNELS_FROM(unsigned short)
ZORT_COPY_CHANNELS_FROM(unsigned int)
ZORT_COPY_CHANNELS_FROM(float)
#undef ZORT_COPY_CHANNELS_FROM
#undef ZORT_COPY_CHANNELS
} // namespace zortexture
