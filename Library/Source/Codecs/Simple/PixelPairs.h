/// @file PixelPairs.h
/// The frame of the packed formats that hold two neighbouring pixels of a row in one four-byte word.
#pragma once

#include <cstddef>

#include "Pixel.h"

namespace zortexture
{
using BytePixel = Pixel<unsigned char>;
inline constexpr std::size_t kPairPixelBytes = 4;
inline constexpr std::size_t kPairWordBytes = 4;

/// Calls `encode(first, second, word)` for every pair of the image, `word` being the four bytes to fill. An odd last column has no pair.
template<typename Encode>
inline void encodePairs(const unsigned char* source, unsigned char* destination, std::size_t width, std::size_t height, Encode&& encode)
{
	const auto load = [](const unsigned char* bytes)
	{
		return BytePixel{bytes[0], bytes[1], bytes[2], bytes[3]};
	};
	for (std::size_t y = 0; y < height; ++y)
	{
		const unsigned char* pixel = source + y * width * kPairPixelBytes;
		for (std::size_t pair = 0; pair < width / 2; ++pair)
		{
			encode(load(pixel), load(pixel + kPairPixelBytes), destination);
			pixel += 2 * kPairPixelBytes;
			destination += kPairWordBytes;
		}
	}
}

/// Calls `decode(word, first, second)` for every word that covers a pixel of the image, and stores the two pixels. With an odd
/// width a row's last word is the next row's first one, and its second pixel falls outside the row and is dropped.
template<typename Decode>
inline void decodePairs(const unsigned char* source, unsigned char* destination, std::size_t width, std::size_t height, Decode&& decode)
{
	const auto store = [](unsigned char* bytes, const BytePixel& pixel)
	{
		bytes[0] = pixel.r;
		bytes[1] = pixel.g;
		bytes[2] = pixel.b;
		bytes[3] = pixel.a;
	};
	for (std::size_t y = 0; y < height; ++y)
	{
		const unsigned char* word = source + y * (width / 2) * kPairWordBytes;
		for (std::size_t x = 0; x < width; x += 2, word += kPairWordBytes)
		{
			BytePixel first{0, 0, 0, 255};
			BytePixel second{0, 0, 0, 255};
			decode(word, first, second);
			store(destination, first);
			destination += kPairPixelBytes;
			if (x + 1 < width)
			{
				store(destination, second);
				destination += kPairPixelBytes;
			}
		}
	}
}
} // namespace zortexture
