#include "ByteChannels.h"

namespace zortexture
{
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
