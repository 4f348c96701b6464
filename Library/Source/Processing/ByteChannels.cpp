#include "ByteChannels.h"

namespace zortexture
{
template<>
void moveBytes<eSimdPlain>(const unsigned char* source, unsigned char* destination, std::size_t numPixels, const ByteMoves& moves)
{
	for (std::size_t i = 0; i < numPixels; ++i, source += 4, destination += 4)
	{
		const unsigned char values[] = {source[0], source[1], source[2], source[3], 0};
		for (unsigned int c = 0; c < 4; ++c)
		{
			if (moves.from[c] != ByteMoves::eKept)
			{
				destination[c] = values[moves.from[c]];
			}
		}
	}
}

template<>
void preMultiplyBytes<eSimdPlain>(unsigned char* pixels, std::size_t numPixels)
{
	for (std::size_t i = 0; i < numPixels; ++i, pixels += 4)
	{
		const float factor = static_cast<float>(pixels[3]) / 255.0f;
		for (unsigned int c = 0; c < 3; ++c)
		{
			pixels[c] = static_cast<unsigned char>(static_cast<float>(pixels[c]) * factor);
		}
	}
}
} // namespace zortexture
