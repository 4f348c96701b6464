// Small textures with known content.
#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "Transcode.h"

namespace zortexture
{
using Bytes = std::vector<unsigned char>;

inline Bytes bytesOf(const CZORTexture& texture)
{
	const auto* data = static_cast<const unsigned char*>(texture.getDataPtr(0, 0, 0));
	return Bytes(data, data + texture.getDataSize());
}

inline CZORTexture textureOf(PixelType type, EZORTVariableType channelType, unsigned int width, unsigned int height, const Bytes& data)
{
	CZORTexture texture(CZORTextureHeader(type.id, height, width, 1, 1, 1, 1, eCS_lRGB, channelType));
	std::copy_n(data.begin(), std::min<std::size_t>(data.size(), texture.getDataSize()),
	            static_cast<unsigned char*>(texture.getDataPtr(0, 0, 0)));
	return texture;
}

inline CZORTexture randomTexture(const CZORTextureHeader& header, unsigned int seed)
{
	CZORTexture texture(header);
	std::mt19937 random(seed);
	auto* data = static_cast<unsigned char*>(texture.getDataPtr(0, 0, 0));
	for (unsigned int i = 0; i < texture.getDataSize(); ++i)
	{
		data[i] = static_cast<unsigned char>(random());
	}
	return texture;
}
} // namespace zortexture
