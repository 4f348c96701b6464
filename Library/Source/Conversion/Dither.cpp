#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "DitherSlice.h"
#include "Transcode.h"

namespace zortexture
{
namespace
{
/// Bits of red, green, blue and alpha.
using Depths = std::array<unsigned char, 4>;

bool isReduced(unsigned char depth)
{
	return depth > 0 && depth < 8;
}

/// By format number; formats above the last one are not dithered.
constexpr Depths kCompressedDepths[] = {
    {5, 5, 5, 0},    // Tessel I 2bpp RGB
    {4, 4, 4, 3},    // Tessel I 2bpp RGBA
    {5, 5, 5, 0},    // Tessel I 4bpp RGB
    {4, 4, 4, 3},    // Tessel I 4bpp RGBA
    {4, 4, 4, 3},    // Tessel II 2bpp
    {4, 4, 4, 3},    // Tessel II 4bpp
    {4, 4, 4, 4},    // ETC1
    {5, 6, 5, 1},    // DXT1
    {5, 6, 5, 8},    // DXT2
    {5, 6, 5, 8},    // DXT3
    {5, 6, 5, 8},    // DXT4
    {5, 6, 5, 8},    // DXT5
    {8, 0, 0, 0},    // BC4
    {8, 8, 0, 0},    // BC5
    {16, 16, 16, 0}, // BC6
    {8, 8, 8, 0},    // BC7
    {8, 8, 8, 0},    // UYVY
    {8, 8, 8, 0},    // YUY2
    {1, 1, 1, 0},    // one bit per pixel
    {14, 14, 14, 0}, // shared exponent
    {8, 8, 8, 0},    // RGBG
    {8, 8, 8, 0},    // GRGB
    {4, 4, 4, 0},    // ETC2 RGB
    {4, 4, 4, 4},    // ETC2 RGBA
    {5, 5, 5, 1},    // ETC2 RGB, one-bit alpha
    {11, 0, 0, 0},   // EAC R11
    {11, 11, 0, 0},  // EAC RG11
};

Depths depthsOf(PixelType target)
{
	if (target.isCompressed())
	{
		return target.id < std::size(kCompressedDepths) ? kCompressedDepths[target.id] : Depths{};
	}
	Depths depths{};
	for (unsigned int position = 0; position < 4; ++position)
	{
		const unsigned char bits = target.channelBits[position];
		switch (MapCharToEnum(target.channelName[position]))
		{
		case eCh_Red:
			depths[0] = bits;
			break;
		case eCh_Green:
			depths[1] = bits;
			break;
		case eCh_Blue:
			depths[2] = bits;
			break;
		case eCh_Alpha:
		case eCh_Unused:
			depths[3] = bits;
			break;
		case eCh_Luminance:
		case eCh_Intensity:
			depths[0] = depths[1] = depths[2] = bits;
			break;
		default:
			break;
		}
	}
	return depths;
}

void addError(unsigned char& value, int error)
{
	value = static_cast<unsigned char>(std::clamp(value + error, 0, 255));
}

/// One channel, whose values lie four bytes apart.
void ditherChannel(unsigned char* channel, unsigned int depth, std::size_t width, std::size_t height)
{
	constexpr std::size_t kStep = 4;
	const int mask = 0xFF << (8 - depth) & 0xFF;
	const std::size_t row = width * kStep;
	for (std::size_t x = 0; x < width; ++x)
	{
		const bool hasRight = x + 1 < width;
		for (std::size_t y = 0; y < height; ++y)
		{
			const bool hasBelow = y + 1 < height;
			unsigned char* const pixel = channel + (y * width + x) * kStep;
			const int value = *pixel;
			const int reduced = std::min((value & mask) + (value >> depth), 255);
			*pixel = static_cast<unsigned char>(reduced);
			const int error = value - reduced;
			if (hasRight)
			{
				addError(pixel[kStep], error / 2);
			}
			if (hasRight && hasBelow)
			{
				addError(pixel[row + kStep], error / 4);
			}
			if (hasBelow)
			{
				addError(pixel[row], error / 4);
			}
		}
	}
}
} // namespace

template<>
void ditherSlice<eSimdPlain>(unsigned char* pixels, const unsigned char* depths, std::size_t width, std::size_t height, std::int16_t*)
{
	for (unsigned int channel = 0; channel < 4; ++channel)
	{
		if (isReduced(depths[channel]))
		{
			ditherChannel(pixels + channel, depths[channel], width, height);
		}
	}
}

void Dither(unsigned char* data, PixelType target, unsigned int width, unsigned int height, unsigned int depth)
{
	const Depths depths = depthsOf(target);
	if (data == nullptr || width == 0 || height == 0 || depth == 0 || std::none_of(depths.begin(), depths.end(), isReduced))
	{
		return;
	}
	const std::size_t sliceBytes = static_cast<std::size_t>(width) * height * 4;
	std::vector<std::int16_t> carried(static_cast<std::size_t>(width) * 4);
	for (std::size_t slice = 0; slice < depth; ++slice)
	{
		withSimdLevel([&](auto level) { ditherSlice<level>(data + slice * sliceBytes, depths.data(), width, height, carried.data()); });
	}
}
} // namespace zortexture
