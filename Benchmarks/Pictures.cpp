#include "Pictures.h"

#include <cmath>
#include <vector>

using namespace zortexture;

namespace bench
{
CZORTexture makePicture(unsigned int width, unsigned int height)
{
	std::vector<Pixel<unsigned char>> pixels(static_cast<std::size_t>(width) * height);
	std::uint32_t noise = 1;
	for (unsigned int y = 0; y < height; ++y)
	{
		for (unsigned int x = 0; x < width; ++x)
		{
			noise = noise * 1664525u + 1013904223u;
			const float u = static_cast<float>(x) / static_cast<float>(width);
			const float v = static_cast<float>(y) / static_cast<float>(height);
			const float wave = 60.0f * std::sin(20.0f * u + 9.0f * v * v);
			const float disc = std::hypot(u - 0.5f, v - 0.5f) < 0.3f ? 50.0f : 0.0f;
			const float grain = static_cast<float>(noise >> 28);
			const auto channel = [&](float base)
			{
				return static_cast<unsigned char>(std::fmin(255.0f, std::fmax(0.0f, base + wave + disc + grain)));
			};
			pixels[static_cast<std::size_t>(y) * width + x] = {channel(60.0f + 90.0f * u), channel(120.0f * v), channel(100.0f), 255};
		}
	}
	return CZORTexture(CZORTextureHeader(ZORStandard8PixelType.id, height, width), pixels.data());
}

CZORTexture makePicture(unsigned int width, unsigned int height, PixelType pixelType, EZORTVariableType channelType)
{
	CZORTexture texture = makePicture(width, height);
	Transcode(texture, pixelType, channelType, eCS_lRGB);
	return texture;
}
} // namespace bench
