#include "Pictures.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <png.h>
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

CZORTexture photograph(unsigned int side)
{
	static const CZORTexture whole = []
	{
		png_image image{};
		image.version = PNG_IMAGE_VERSION;
		if (png_image_begin_read_from_file(&image, ZORT_SAMPLES "/astronaut.png") == 0)
		{
			std::fprintf(stderr, "%s: %s\n", ZORT_SAMPLES "/astronaut.png", image.message);
			std::exit(1);
		}
		image.format = PNG_FORMAT_RGBA;
		std::vector<unsigned char> pixels(PNG_IMAGE_SIZE(image));
		png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr);
		return CZORTexture(CZORTextureHeader(ZORStandard8PixelType.id, image.height, image.width), pixels.data());
	}();
	CZORTexture square(whole);
	if (side < whole.getWidth())
	{
		const int cut = static_cast<int>(whole.getWidth() - side) / 2;
		ResizeCanvas(square, side, side, 1, -cut, -cut, 0);
	}
	return square;
}

CZORTexture makeCutOut(unsigned int width, unsigned int height)
{
	CZORTexture texture = makePicture(width, height);
	auto* pixels = static_cast<unsigned char*>(texture.getDataPtr());
	for (unsigned int y = 0; y < height; ++y)
	{
		for (unsigned int x = 0; x < width; ++x)
		{
			const bool isLeaf = std::sin(0.05f * static_cast<float>(x)) * std::sin(0.07f * static_cast<float>(y)) > 0.0f;
			pixels[(static_cast<std::size_t>(y) * width + x) * 4 + 3] = isLeaf ? 255 : 0;
		}
	}
	return texture;
}
} // namespace bench
