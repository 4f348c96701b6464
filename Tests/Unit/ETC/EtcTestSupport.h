/// @file EtcTestSupport.h
/// Blocks and images that the ETC tests share.
#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace etctest
{
using Bytes = std::vector<unsigned char>;

inline Bytes randomBytes(std::mt19937& random, std::size_t count)
{
	Bytes bytes(count);
	for (unsigned char& byte : bytes)
	{
		byte = static_cast<unsigned char>(random());
	}
	return bytes;
}

/// The words as a file holds them.
inline std::array<unsigned char, 8> storedWords(unsigned int word1, unsigned int word2)
{
	std::array<unsigned char, 8> block;
	for (unsigned int byte = 0; byte < 4; ++byte)
	{
		block[byte] = static_cast<unsigned char>(word1 >> (24 - 8 * byte));
		block[4 + byte] = static_cast<unsigned char>(word2 >> (24 - 8 * byte));
	}
	return block;
}

/// Values that change slowly over the block, with a little noise: what real images hold.
template<typename T>
std::array<T, 16> smoothBlock(std::mt19937& random, int top)
{
	const int base = static_cast<int>(random() % static_cast<unsigned int>(top));
	const int slopeX = static_cast<int>(random() % 64) - 32;
	const int slopeY = static_cast<int>(random() % 64) - 32;
	std::array<T, 16> values;
	for (int i = 0; i < 16; ++i)
	{
		const int value = base + (slopeX * (i % 4) + slopeY * (i / 4)) * top / 512 + static_cast<int>(random() % 5);
		values[static_cast<unsigned int>(i)] = static_cast<T>(value < 0 ? 0 : (value > top ? top : value));
	}
	return values;
}
} // namespace etctest
