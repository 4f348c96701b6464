/// @file ChannelAccess.h
/// What the channel operations share: the write of a channel by its name, and the checks of their arguments.
#pragma once

#include <cstddef>

#include "ElementDispatch.h"

namespace zortexture
{
/// 1 / 2^32, by which the operations on channels divide 32-bit elements.
inline constexpr float kUnsignedIntReciprocal = 2.3283064e-10f;

/// Stores an element under a channel name: luminance and intensity address the three colours, an unused channel alpha. A
/// name that is no channel stores nothing.
template<typename T>
inline void writeChannel(Pixel<T>& pixel, EChannelName channel, T element)
{
	switch (channel)
	{
	case eCh_Red:
		pixel.r = element;
		break;
	case eCh_Green:
		pixel.g = element;
		break;
	case eCh_Blue:
		pixel.b = element;
		break;
	case eCh_Alpha:
	case eCh_Unused:
		pixel.a = element;
		break;
	case eCh_Luminance:
	case eCh_Intensity:
		pixel.r = pixel.g = pixel.b = element;
		break;
	default:
		break;
	}
}

/// Whether a list of `count` entries can be read; a list of none may be null.
template<typename Entry>
inline bool isChannelList(const Entry* list, unsigned int count)
{
	return list != nullptr || count == 0;
}

/// Pixels of one image of a level.
inline std::size_t pixelCount(const CZORTextureHeader& header, unsigned int mipLevel)
{
	return static_cast<std::size_t>(header.getWidth(mipLevel)) * header.getHeight(mipLevel) * header.getDepth(mipLevel);
}
} // namespace zortexture
