#include <algorithm>
#include <cstddef>

#include "Comparison.h"
#include "DifferencePixels.h"
#include "ElementDispatch.h"
#include "PixelPairs.h"
#include "StandardTexture.h"

namespace zortexture
{
namespace
{
/// A zeroed texture for the difference of two that can be compared: the header of `b` with another layout, and the array
/// members, faces and levels that both have. Empty when the two cannot be compared.
CZORTexture createDifferenceTexture(const CZORTexture& a, const CZORTexture& b, const PixelType& pixelType, EZORTVariableType channelType)
{
	if (!TexturesAreValidForDiff(a, b, 0, 0, 0))
	{
		return CZORTexture();
	}
	CZORTextureHeader header(b.getHeader());
	header.setPixelFormat(pixelType);
	header.setChannelType(channelType);
	header.setNumArrayMembers(std::min(a.getNumArrayMembers(), b.getNumArrayMembers()));
	header.setNumMIPLevels(std::min(a.getNumMIPLevels(), b.getNumMIPLevels()));
	header.setNumFaces(std::min(a.getNumFaces(), b.getNumFaces()));
	const unsigned int numPixels = header.getTextureSize();
	if (numPixels > a.getTextureSize() || numPixels > b.getTextureSize())
	{
		return CZORTexture();
	}
	return createTexture(header);
}

/// Calls `draw(level, a, b, first, count)` for runs of normalised pixels of two images.
template<typename Draw>
void drawInRuns(const ImageElements& a, const ImageElements& b, std::size_t numPixels, Draw&& draw)
{
	withSimdLevel(
	    [&](auto level)
	    {
		    forEachRunOfPairs<level()>(eReadNormalised, a, b, 0, numPixels,
		                               [&](const float* pixelsOfA, const float* pixelsOfB, std::size_t first, std::size_t count)
		                               { draw(level, pixelsOfA, pixelsOfB, first, count); });
	    });
}

/// An 8-bit texture that is drawn from the pixels of two textures in storage order, by `draw(level, a, b, count, pixels)`.
template<typename Draw>
CZORTexture drawInStorageOrder(const CZORTexture& a, const CZORTexture& b, Draw&& draw)
{
	CZORTexture result = createDifferenceTexture(a, b, ZORStandard8PixelType, eVT_UnsignedByteNorm);
	auto* const pixels = static_cast<unsigned char*>(result.getDataPtr(0, 0, 0));
	if (pixels != nullptr)
	{
		drawInRuns({a.getDataPtr(0, 0, 0), a.getChannelType()}, {b.getDataPtr(0, 0, 0), b.getChannelType()}, result.getTextureSize(),
		           [&](auto level, const float* pixelsOfA, const float* pixelsOfB, std::size_t first, std::size_t count)
		           { draw(level, pixelsOfA, pixelsOfB, count, pixels + 4 * first); });
	}
	return result;
}
} // namespace

CZORTexture ColourDiff(const CZORTexture& a, const CZORTexture& b, float multiplier)
{
	CZORTexture result = createDifferenceTexture(a, b, ZORStandard32PixelType, eVT_SignedFloat);
	if (result.getDataPtr(0, 0, 0) == nullptr)
	{
		return result;
	}
	forEachImage(result,
	             [&](unsigned int mipLevel, unsigned int arrayMember, unsigned int face)
	             {
		             auto* const pixels = static_cast<float*>(result.getDataPtr(mipLevel, arrayMember, face));
		             const std::size_t numPixels =
		                 std::size_t{result.getWidth(mipLevel)} * result.getHeight(mipLevel) * result.getDepth(mipLevel);
		             drawInRuns({a.getDataPtr(mipLevel, arrayMember, face), a.getChannelType()},
		                        {b.getDataPtr(mipLevel, arrayMember, face), b.getChannelType()}, numPixels,
		                        [&](auto level, const float* pixelsOfA, const float* pixelsOfB, std::size_t first, std::size_t count)
		                        { drawColours<level()>(pixelsOfA, pixelsOfB, count, multiplier, pixels + 4 * first); });
	             });
	return result;
}

CZORTexture ToleranceDiff(const CZORTexture& a, const CZORTexture& b, float tolerance)
{
	return drawInStorageOrder(
	    a, b,
	    [tolerance](auto level, const float* pixelsOfA, const float* pixelsOfB, std::size_t count, unsigned char* pixels)
	    { drawTolerance<level()>(pixelsOfA, pixelsOfB, count, tolerance, pixels); });
}

CZORTexture BlendDiff(const CZORTexture& a, const CZORTexture& b, float ratio)
{
	const float shareOfA = std::clamp(ratio, 0.0f, 1.0f);
	return drawInStorageOrder(a, b,
	                          [shareOfA](auto level, const float* pixelsOfA, const float* pixelsOfB, std::size_t count,
	                                     unsigned char* pixels) { drawBlend<level()>(pixelsOfA, pixelsOfB, count, shareOfA, pixels); });
}
} // namespace zortexture
