#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "ElementDispatch.h"
#include "MIPMaps.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
unsigned int fullChainLength(const CZORTextureHeader& header)
{
	const auto bits = std::bit_width(header.getWidth(0) | header.getHeight(0) | header.getDepth(0));
	return std::max(1u, static_cast<unsigned int>(bits));
}

/// Fills the levels below the top one, each from the level before it. The dimensions are counted down here, since the
/// header's own start over at level 32; they are never larger than these.
template<typename T>
bool generateLevels(CZORTexture& texture, EResizeMode mode, unsigned int arrayMember, unsigned int face)
{
	unsigned int width = texture.getWidth(0);
	unsigned int height = texture.getHeight(0);
	unsigned int depth = texture.getDepth(0);
	Pixel<T>* previous = pixelsOf<T>(texture, 0, arrayMember, face);
	for (unsigned int level = 1; level < texture.getNumMIPLevels(); ++level)
	{
		const unsigned int newWidth = std::max(1u, width >> 1);
		const unsigned int newHeight = std::max(1u, height >> 1);
		const unsigned int newDepth = std::max(1u, depth >> 1);
		Pixel<T>* current = pixelsOf<T>(texture, level, arrayMember, face);
		if (!StretchImage(previous, current, width, height, depth, newWidth, newHeight, newDepth, mode))
		{
			return false;
		}
		previous = current;
		width = newWidth;
		height = newHeight;
		depth = newDepth;
	}
	return true;
}
} // namespace

bool GenerateMIPMaps(CZORTexture& texture, EResizeMode mode, unsigned int mipLevels)
{
	if (mipLevels == 0 || !isProcessable(texture))
	{
		return false;
	}
	if (mipLevels == kFullMIPChain)
	{
		mipLevels = fullChainLength(texture);
	}

	CZORTextureHeader newHeader(texture.getHeader());
	newHeader.setNumMIPLevels(mipLevels);
	CZORTexture newTexture = createTexture(newHeader);
	if (!newTexture.isDataComplete())
	{
		return false;
	}

	const unsigned int topLevelSize = texture.getDataSize(0, false, false);
	for (unsigned int arrayMember = 0; arrayMember < newTexture.getNumArrayMembers(); ++arrayMember)
	{
		for (unsigned int face = 0; face < newTexture.getNumFaces(); ++face)
		{
			std::memcpy(newTexture.getDataPtr(0, arrayMember, face), texture.getDataPtr(0, arrayMember, face), topLevelSize);
			const bool generated =
			    withElementType(newTexture.getChannelType(), [&](auto tag)
			                    { return generateLevels<typename decltype(tag)::type>(newTexture, mode, arrayMember, face); });
			if (!generated)
			{
				return false;
			}
		}
	}
	texture = std::move(newTexture);
	return true;
}
} // namespace zortexture
