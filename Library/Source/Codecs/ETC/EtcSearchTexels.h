/// @file EtcSearchTexels.h
/// What the block searches share: the texels of a block at hand, and the error scales as template parameters.
#pragma once

#include <cstring>

#include "Codecs/ETC/EtcBlock.h"
#include "Codecs/ETC/EtcTables.h"

namespace zortexture
{
/// Plain squares.
struct PlainScale
{
	using Error = unsigned int;
	static constexpr unsigned int kWeights[3] = {1, 1, 1};
	static constexpr unsigned int kBlockCeiling = kBlockErrorCeiling;

	static Error square(int red, int green, int blue)
	{
		return static_cast<Error>(red * red + green * green + blue * blue);
	}
};

/// Squares weighted by the channels' share in brightness, in single precision.
struct PerceptualScale
{
	using Error = float;

	static Error square(int red, int green, int blue)
	{
		const auto r = static_cast<float>(red);
		const auto g = static_cast<float>(green);
		const auto b = static_cast<float>(blue);
		return 0.299F * r * r + 0.587F * g * g + 0.114F * b * b;
	}
};

/// The same times 1000, in integers.
struct Perceptual1000Scale
{
	using Error = unsigned int;
	static constexpr unsigned int kWeights[3] = {299, 587, 114};
	static constexpr unsigned int kBlockCeiling = kBlockErrorCeilingPerceptual1000;

	static Error square(int red, int green, int blue)
	{
		return static_cast<Error>(299 * red * red + 587 * green * green + 114 * blue * blue);
	}
};

/// The error of one colour against another.
template<typename Scale>
typename Scale::Error colourError(const unsigned char (&a)[3], const unsigned char (&b)[3])
{
	return Scale::square(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

/// Texels copied out of an image, so that the loops over candidates read a dense array.
template<unsigned int Count>
struct SearchTexels
{
	unsigned char rgb[Count][3];
};

/// The 16 texels of a block in raster order.
inline SearchTexels<16> loadBlockTexels(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY)
{
	SearchTexels<16> texels;
	for (unsigned int y = 0; y < 4; ++y)
	{
		std::memcpy(texels.rgb[y * 4], source + texelIndex(width, startX, startY + y) * 3, sizeof(texels.rgb[0]) * 4);
	}
	return texels;
}

/// The 16 texels of a block column by column, the order of the stored index bits.
inline SearchTexels<16> loadBlockColumns(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY)
{
	SearchTexels<16> texels;
	for (unsigned int number = 0; number < 16; ++number)
	{
		std::memcpy(texels.rgb[number], source + texelIndex(width, startX + number / 4, startY + number % 4) * 3, 3);
	}
	return texels;
}

/// Which half of a block: beside each other (2 x 4 texels) or, in a flipped block, on top of each other (4 x 2).
enum class HalfShape
{
	Upright,
	Flipped
};

template<HalfShape Shape>
inline constexpr unsigned int kHalfWidth = Shape == HalfShape::Flipped ? 4 : 2;
template<HalfShape Shape>
inline constexpr unsigned int kHalfHeight = Shape == HalfShape::Flipped ? 2 : 4;

/// The 8 texels of a half block column by column, the order of their index bits.
template<HalfShape Shape>
SearchTexels<8> loadHalfTexels(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY)
{
	SearchTexels<8> texels;
	unsigned int number = 0;
	for (unsigned int x = 0; x < kHalfWidth<Shape>; ++x)
	{
		for (unsigned int y = 0; y < kHalfHeight<Shape>; ++y)
		{
			std::memcpy(texels.rgb[number++], source + texelIndex(width, startX + x, startY + y) * 3, 3);
		}
	}
	return texels;
}

/// The mean of a half's texels.
inline void meanOfTexels(const SearchTexels<8>& texels, float (&mean)[3])
{
	unsigned int sums[3] = {};
	for (const auto& texel : texels.rgb)
	{
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			sums[channel] += texel[channel];
		}
	}
	for (unsigned int channel = 0; channel < 3; ++channel)
	{
		mean[channel] = static_cast<float>(sums[channel]) * 0.125F;
	}
}

/// The index bit of a half's texel, by its number in loadHalfTexels.
template<HalfShape Shape>
constexpr unsigned int halfTexelBit(unsigned int number)
{
	return number / kHalfHeight<Shape> * 4 + number % kHalfHeight<Shape>;
}
} // namespace zortexture
