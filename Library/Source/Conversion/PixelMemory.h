/// @file PixelMemory.h
/// Loads and stores in the 16 bytes of one pixel: whole elements by number, and bit fields of the first 64 bits. The
/// layouts of files are arbitrary, so every form is bounded: an element past the end and a shift past the word read as
/// zero and store nothing.
#pragma once

#include <cstdint>
#include <cstring>

namespace zortexture
{
inline constexpr unsigned int kPixelBytes = 16;

template<typename T>
inline T loadElement(const unsigned char (&pixel)[kPixelBytes], std::uint64_t element)
{
	T value{};
	if (element < kPixelBytes / sizeof(T))
	{
		std::memcpy(&value, pixel + element * sizeof(T), sizeof(T));
	}
	return value;
}

template<typename T>
inline void storeElement(unsigned char (&pixel)[kPixelBytes], std::uint64_t element, T value)
{
	if (element < kPixelBytes / sizeof(T))
	{
		std::memcpy(pixel + element * sizeof(T), &value, sizeof(T));
	}
}

/// The word that holds the bit fields of a packed pixel.
inline std::uint64_t loadWord(const unsigned char (&pixel)[kPixelBytes])
{
	return loadElement<std::uint64_t>(pixel, 0);
}

/// The bits under `mask`, moved down to bit 0.
inline std::uint64_t loadField(const unsigned char (&pixel)[kPixelBytes], std::uint64_t mask, unsigned int shift)
{
	return shift < 64 ? (loadWord(pixel) & mask) >> shift : 0;
}

/// Clears the bits under `mask`, then sets those of the shifted value. Bits of a value too wide for its field reach into
/// the field above.
inline void storeField(unsigned char (&pixel)[kPixelBytes], std::uint64_t mask, unsigned int shift, std::uint32_t value)
{
	const std::uint64_t bits = shift < 64 ? static_cast<std::uint64_t>(value) << shift : 0;
	storeElement<std::uint64_t>(pixel, 0, (loadWord(pixel) & ~mask) | bits);
}
} // namespace zortexture
