/// @file EtcSearchTestSupport.h
/// Blocks for the search tests, and errors of decoded blocks counted plainly.
#pragma once

#include <array>
#include <random>
#include <vector>

#include "Codecs/ETC/EtcBlock.h"

namespace etctest
{
/// 16 texels R, G, B in raster order: an image 4 texels wide, with nothing around it.
using Rgb16 = std::array<unsigned char, 48>;

/// A random number below the limit.
inline unsigned int below(std::mt19937& random, unsigned int limit)
{
	return static_cast<unsigned int>(random() % limit);
}

/// Noise, ramps, two colours with a little noise, grey noise, black and white, one colour: by turns.
inline Rgb16 mixedBlock(std::mt19937& random, unsigned int turn)
{
	const unsigned int ends[2][3] = {{below(random, 256), below(random, 256), below(random, 256)},
	                                 {below(random, 256), below(random, 256), below(random, 256)}};
	Rgb16 block;
	for (unsigned int i = 0; i < 16; ++i)
	{
		const unsigned int grey = below(random, 256);
		const unsigned int pick = below(random, 2);
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			const unsigned int ramp = (ends[0][channel] * (6 - i % 4 - i / 4) + ends[1][channel] * (i % 4 + i / 4)) / 6;
			const unsigned int choices[] = {below(random, 256), ramp, ends[pick][channel] / 2 + below(random, 8), grey, pick * 255,
			                                ends[0][channel]};
			block[i * 3 + channel] = static_cast<unsigned char>(choices[turn % 6]);
		}
	}
	return block;
}

inline constexpr int kPlainWeights[3] = {1, 1, 1};
inline constexpr int kPerceptualWeights[3] = {299, 587, 114};

/// The summed weighted squares over the texels of the mask (bit i for texel i in raster order).
inline unsigned int weightedError(const Rgb16& a, const Rgb16& b, const int (&weights)[3], unsigned int mask = 0xFFFF)
{
	unsigned int error = 0;
	for (unsigned int i = 0; i < 48; ++i)
	{
		const int difference = a[i] - b[i];
		error += (mask >> (i / 3) & 1) != 0 ? static_cast<unsigned int>(weights[i % 3] * difference * difference) : 0;
	}
	return error;
}

using Decoder = void (*)(unsigned int, unsigned int, unsigned char*, unsigned int, unsigned int, unsigned int);

inline Rgb16 decodeWith(Decoder decoder, unsigned int word1, unsigned int word2)
{
	Rgb16 decoded;
	decoder(word1, word2, decoded.data(), 4, 0, 0);
	return decoded;
}
} // namespace etctest
