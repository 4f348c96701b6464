#include <algorithm>
#include <cmath>
#include <cstddef>

#include "Comparison.h"
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

/// The size of a difference, at most 1. One that is not a number counts as none.
float magnitudeOf(float difference)
{
	return difference == difference ? std::min(std::fabs(difference), 1.0f) : 0.0f;
}

/// Fills an 8-bit texture from the pixels of two textures in storage order: `function(a, b)` on four normalised elements
/// each gives the pixel.
template<typename Function>
void fillInStorageOrder(const CZORTexture& a, const CZORTexture& b, CZORTexture& result, Function&& function)
{
	auto* pixels = pixelsOf<unsigned char>(result, 0, 0, 0);
	if (pixels == nullptr)
	{
		return;
	}
	forEachPixelPair<NormalisedElement>(
	    a.getDataPtr(0, 0, 0), a.getChannelType(), b.getDataPtr(0, 0, 0), b.getChannelType(), result.getTextureSize(),
	    [&](const float* pixelOfA, const float* pixelOfB, std::size_t i) { pixels[i] = function(pixelOfA, pixelOfB); });
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
	             [&](unsigned int level, unsigned int arrayMember, unsigned int face)
	             {
		             auto* pixels = pixelsOf<float>(result, level, arrayMember, face);
		             const std::size_t numPixels = std::size_t{result.getWidth(level)} * result.getHeight(level) * result.getDepth(level);
		             forEachPixelPair<NormalisedElement>(
		                 a.getDataPtr(level, arrayMember, face), a.getChannelType(), b.getDataPtr(level, arrayMember, face),
		                 b.getChannelType(), numPixels,
		                 [&](const float* pixelOfA, const float* pixelOfB, std::size_t i)
		                 {
			                 float magnitude[4];
			                 for (unsigned int c = 0; c < 4; ++c)
			                 {
				                 magnitude[c] = magnitudeOf((pixelOfA[c] - pixelOfB[c]) * multiplier);
			                 }
			                 pixels[i] = {magnitude[0] + 0.5f, magnitude[1] + 0.5f, magnitude[2] + 0.5f, 1.0f - magnitude[3] + 0.5f};
		                 });
	             });
	return result;
}

CZORTexture ToleranceDiff(const CZORTexture& a, const CZORTexture& b, float tolerance)
{
	constexpr Pixel<unsigned char> kBlack = {0, 0, 0, 255};
	constexpr Pixel<unsigned char> kBlue = {0, 0, 255, 255};
	constexpr Pixel<unsigned char> kRed = {255, 0, 0, 255};

	CZORTexture result = createDifferenceTexture(a, b, ZORStandard8PixelType, eVT_UnsignedByteNorm);
	fillInStorageOrder(a, b, result,
	                   [&](const float* pixelOfA, const float* pixelOfB)
	                   {
		                   float largest = 0.0f;
		                   for (unsigned int c = 0; c < 4; ++c)
		                   {
			                   largest = std::max(largest, magnitudeOf(pixelOfA[c] - pixelOfB[c]));
		                   }
		                   if (largest * 255.0f < 1.0f)
		                   {
			                   return kBlack;
		                   }
		                   return tolerance > largest ? kBlue : kRed;
	                   });
	return result;
}

CZORTexture BlendDiff(const CZORTexture& a, const CZORTexture& b, float ratio)
{
	CZORTexture result = createDifferenceTexture(a, b, ZORStandard8PixelType, eVT_UnsignedByteNorm);
	const float shareOfA = std::clamp(ratio, 0.0f, 1.0f);
	const float shareOfB = 1.0f - shareOfA;
	fillInStorageOrder(a, b, result,
	                   [&](const float* pixelOfA, const float* pixelOfB)
	                   {
		                   const auto blend = [&](unsigned int c)
		                   {
			                   return wrapToUnsigned<unsigned char>((pixelOfA[c] * shareOfA + pixelOfB[c] * shareOfB) * 255.0f);
		                   };
		                   return Pixel<unsigned char>{blend(0), blend(1), blend(2), blend(3)};
	                   });
	return result;
}
} // namespace zortexture
