/// @file UseTexture.h
/// What a program does with a texture that it has loaded from a file it does not trust.
#pragma once

#include <ZORTexLib.h>

namespace zortexture
{
/// Reads all of a texture's description and every byte of every image. The result keeps the reads from being removed.
inline unsigned int readAll(const CZORTexture& texture)
{
	unsigned int sum = texture.getWidth() + texture.getDepth(3) + texture.getMetaDataSize();
	unsigned int x = 0;
	unsigned int y = 0;
	unsigned int z = 0;
	texture.getBorder(x, y, z);
	sum += x + y + z + static_cast<unsigned int>(texture.getBumpMapOrder().size() + texture.getCubeMapOrder().size());
	sum += texture.getOrientation(eAxis_X) + texture.getOrientation(eAxis_Y) + texture.getOrientation(eAxis_Z);
	const float* const atlas = texture.getTextureAtlasData();
	for (unsigned int i = 0; i < texture.getNumTextureAtlasMembers(); ++i)
	{
		sum += atlas[i] > 0.0f ? 1 : 0;
	}
	if (!texture.isDataComplete())
	{
		return sum;
	}
	for (unsigned int level = 0; level < texture.getNumMIPLevels(); ++level)
	{
		const unsigned int size = texture.getDataSize(static_cast<int>(level), false, false);
		for (unsigned int member = 0; member < texture.getNumArrayMembers() && size != 0; ++member)
		{
			for (unsigned int face = 0; face < texture.getNumFaces(); ++face)
			{
				const auto* const image = static_cast<const unsigned char*>(texture.getDataPtr(level, member, face));
				for (unsigned int i = 0; i < size; ++i)
				{
					sum += image[i];
				}
			}
		}
	}
	return sum;
}
} // namespace zortexture
