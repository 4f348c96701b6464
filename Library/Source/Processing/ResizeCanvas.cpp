#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "ElementDispatch.h"
#include "Geometry.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// The part of one axis that the old image covers on the new canvas.
struct Overlap
{
	std::size_t first;  ///< first covered position on the canvas
	std::size_t source; ///< the position of the old image that lands there
	std::size_t count;  ///< 0 when the image lies outside
};

Overlap overlapOf(unsigned int oldSize, unsigned int newSize, int offset)
{
	const std::int64_t first = std::max<std::int64_t>(0, offset);
	const std::int64_t end = std::min<std::int64_t>(newSize, std::int64_t{oldSize} + offset);
	if (first >= end)
	{
		return {0, 0, 0};
	}
	return {static_cast<std::size_t>(first), static_cast<std::size_t>(first - offset), static_cast<std::size_t>(end - first)};
}
} // namespace

bool ResizeCanvas(CZORTexture& texture, const unsigned int& width, const unsigned int& height, const unsigned int& depth,
                  const int& xOffset, const int& yOffset, const int& zOffset)
{
	if (width == 0 || height == 0 || depth == 0 || !isProcessable(texture))
	{
		return false;
	}
	const std::size_t oldWidth = texture.getWidth(0);
	const std::size_t oldHeight = texture.getHeight(0);
	if (width == oldWidth && height == oldHeight && depth == texture.getDepth(0) && xOffset == 0 && yOffset == 0 && zOffset == 0)
	{
		return true;
	}

	CZORTextureHeader newHeader(texture.getHeader());
	newHeader.setWidth(width);
	newHeader.setHeight(height);
	newHeader.setDepth(depth);
	newHeader.setNumMIPLevels(1);
	setScaledBorder(newHeader, texture);
	CZORTexture newTexture = createTexture(newHeader);
	if (!newTexture.isDataComplete())
	{
		return false;
	}

	const Overlap columns = overlapOf(texture.getWidth(0), width, xOffset);
	const Overlap rows = overlapOf(texture.getHeight(0), height, yOffset);
	const Overlap slices = overlapOf(texture.getDepth(0), depth, zOffset);
	const std::size_t pixelSize = texture.getBitsPerPixel() / 8;
	for (unsigned int arrayMember = 0; arrayMember < texture.getNumArrayMembers(); ++arrayMember)
	{
		for (unsigned int face = 0; face < texture.getNumFaces(); ++face)
		{
			const auto* source = static_cast<const unsigned char*>(texture.getDataPtr(0, arrayMember, face));
			auto* destination = static_cast<unsigned char*>(newTexture.getDataPtr(0, arrayMember, face));
			for (std::size_t z = 0; z < slices.count; ++z)
			{
				for (std::size_t y = 0; y < rows.count; ++y)
				{
					const std::size_t oldRow = (slices.source + z) * oldHeight + rows.source + y;
					const std::size_t newRow = (slices.first + z) * height + rows.first + y;
					std::memcpy(destination + (newRow * width + columns.first) * pixelSize,
					            source + (oldRow * oldWidth + columns.source) * pixelSize, columns.count * pixelSize);
				}
			}
		}
	}
	texture = std::move(newTexture);
	return true;
}
} // namespace zortexture
