#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "ByteChannels.h"
#include "ChannelAccess.h"
#include "Channels.h"
#include "ElementDispatch.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// Scales an element from the range of S to that of D. The product comes first, so that it overflows for large values of a
/// float destination; both ranges of float are its largest number.
template<typename S, typename D>
float convertElement(S element)
{
	const float scaled = static_cast<float>(element) * kElementCeiling<D>;
	if constexpr (sizeof(S) == 1 && sizeof(D) == 1)
	{
		return static_cast<float>(element); // of 255 * element the quotient is exact
	}
	else if constexpr (std::is_same_v<S, unsigned int>)
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

/// The pixels on their way at a time.
constexpr std::size_t kPixelsInRun = 128;

/// Reads one channel of `count` pixels as elements of the destination.
template<typename S, typename D>
void readRun(const Pixel<S>* pixels, std::size_t count, EChannelName channel, D* elements)
{
	const auto readAll = [&](auto name)
	{
		for (std::size_t i = 0; i < count; ++i)
		{
			const float value = readChannel<D>(pixels[i], name());
			if constexpr (std::is_same_v<S, float> || std::is_same_v<D, float>)
			{
				elements[i] = toElement<D>(value);
			}
			else
			{
				elements[i] = static_cast<D>(static_cast<std::int64_t>(value)); // within 0 to 2^33, and so without a test of the range
			}
		}
	};
	switch (channel)
	{
#define ZORT_READ(name)                                                                                                                    \
	case name:                                                                                                                             \
		readAll(std::integral_constant<EChannelName, name>{});                                                                             \
		break
		ZORT_READ(eCh_Red);
		ZORT_READ(eCh_Green);
		ZORT_READ(eCh_Blue);
		ZORT_READ(eCh_Alpha);
		ZORT_READ(eCh_Unused);
		ZORT_READ(eCh_Luminance);
		ZORT_READ(eCh_Intensity);
#undef ZORT_READ
	default:
		std::fill_n(elements, count, D{});
		break;
	}
}

/// Writes one channel of `count` pixels.
template<typename D>
void writeRun(Pixel<D>* pixels, std::size_t count, EChannelName channel, const D* elements)
{
	const auto writeAll = [&](auto... members)
	{
		for (std::size_t i = 0; i < count; ++i)
		{
			((pixels[i].*members = elements[i]), ...);
		}
	};
	switch (channel)
	{
	case eCh_Red:
		return writeAll(&Pixel<D>::r);
	case eCh_Green:
		return writeAll(&Pixel<D>::g);
	case eCh_Blue:
		return writeAll(&Pixel<D>::b);
	case eCh_Alpha:
	case eCh_Unused:
		return writeAll(&Pixel<D>::a);
	case eCh_Luminance:
	case eCh_Intensity:
		return writeAll(&Pixel<D>::r, &Pixel<D>::g, &Pixel<D>::b);
	default:
		break;
	}
}

/// The moves that a list of channels makes on pixels of bytes, where 255 * v / 255 is v. False for greys, which are computed.
bool findByteMoves(unsigned int numChannels, const EChannelName* destinationChannels, const EChannelName* sourceChannels, ByteMoves& moves)
{
	Pixel<unsigned char> from = {moves.from[0], moves.from[1], moves.from[2], moves.from[3]};
	for (unsigned int c = 0; c < numChannels; ++c)
	{
		const EChannelName source = sourceChannels[c];
		if (source == eCh_Luminance || source == eCh_Intensity)
		{
			return false;
		}
		const bool isAlpha = source == eCh_Alpha || source == eCh_Unused;
		const bool isColour = source == eCh_Red || source == eCh_Green || source == eCh_Blue;
		writeChannel(from, destinationChannels[c],
		             static_cast<unsigned char>(isAlpha    ? 3u
		                                        : isColour ? source - eCh_Red
		                                                   : unsigned{ByteMoves::eZero}));
	}
	moves = {{from.r, from.g, from.b, from.a}};
	return true;
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
	if constexpr (sizeof(S) == 1 && sizeof(D) == 1)
	{
		ByteMoves moves;
		if (simdLevel() != eSimdPlain && findByteMoves(numChannels, destinationChannels, sourceChannels, moves))
		{
			withSimdLevel(
			    [&](auto level)
			    {
				    if constexpr (level() != eSimdPlain)
				    {
					    moveBytes<level()>(&source->r, &destination->r, numPixels, moves);
				    }
			    });
			return true;
		}
	}
	D slots[eCh_Unused + 1][kPixelsInRun];
	for (std::size_t first = 0; first < numPixels; first += kPixelsInRun)
	{
		// All reads of a pixel come before all writes, so that channels of one texture can be permuted.
		const std::size_t count = std::min(kPixelsInRun, numPixels - first);
		unsigned int slotsRead = 0;
		for (unsigned int c = 0; c < numChannels; ++c)
		{
			const unsigned int slot = slotOf(sourceChannels[c]);
			if ((slotsRead >> slot & 1) == 0)
			{
				readRun(source + first, count, sourceChannels[c], slots[slot]);
				slotsRead |= 1u << slot;
			}
		}
		for (unsigned int c = 0; c < numChannels; ++c)
		{
			writeRun(destination + first, count, destinationChannels[c], slots[slotOf(sourceChannels[c])]);
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
