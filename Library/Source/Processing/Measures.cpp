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
constexpr SChannelDifference kNothingToCompare = {-1.0f, -1.0f, -1.0f, -1.0f, -1.0f};

/// One running figure for each channel.
struct ChannelSums
{
	float channel[4];
};

float sumOf(const ChannelSums& sums)
{
	return sums.channel[0] + sums.channel[1] + sums.channel[2] + sums.channel[3];
}

SChannelDifference makeDifference(const ChannelSums& sums, float all)
{
	return {sums.channel[0], sums.channel[1], sums.channel[2], sums.channel[3], all};
}

/// The position of an image in both textures.
struct ImagePosition
{
	unsigned int mip;
	unsigned int arrayMember;
	unsigned int face;
};

std::size_t countPixels(const CZORTexture& texture, unsigned int mip)
{
	return std::size_t{texture.getWidth(mip)} * texture.getHeight(mip) * texture.getDepth(mip);
}

/// Calls `accumulate(sum, difference, c)` with the signed difference of channel c = 0..3, for every channel of every
/// pixel, and returns the sums, which begin with `start`.
template<typename Accumulate>
ChannelSums accumulateDifferences(const CZORTexture& a, const CZORTexture& b, const ImagePosition& position, float start,
                                  Accumulate&& accumulate)
{
	ChannelSums sums = {{start, start, start, start}};
	const void* imageOfA = a.getDataPtr(position.mip, position.arrayMember, position.face);
	const void* imageOfB = b.getDataPtr(position.mip, position.arrayMember, position.face);
	forEachPixelPair<RawElement>(imageOfA, a.getChannelType(), imageOfB, b.getChannelType(), countPixels(a, position.mip),
	                             [&](const float* pixelOfA, const float* pixelOfB, std::size_t)
	                             {
		                             for (unsigned int c = 0; c < 4; ++c)
		                             {
			                             accumulate(sums.channel[c], pixelOfA[c] - pixelOfB[c], c);
		                             }
	                             });
	return sums;
}
} // namespace

bool TexturesAreValidForDiff(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip, const unsigned int& arrayMember,
                             const unsigned int& face)
{
	const auto hasPosition = [&](const CZORTexture& texture)
	{
		return mip < texture.getNumMIPLevels() && arrayMember < texture.getNumArrayMembers() && face < texture.getNumFaces();
	};
	return isProcessable(a) && isProcessable(b) && a.getWidth(0) == b.getWidth(0) && a.getHeight(0) == b.getHeight(0) &&
	       a.getDepth(0) == b.getDepth(0) && hasPosition(a) && hasPosition(b);
}

SChannelDifference GetMaxDifference(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip, const unsigned int& arrayMember,
                                    const unsigned int& face)
{
	if (!TexturesAreValidForDiff(a, b, mip, arrayMember, face))
	{
		return kNothingToCompare;
	}
	const ChannelSums largest =
	    accumulateDifferences(a, b, {mip, arrayMember, face}, -1.0f,
	                          [](float& maximum, float difference, unsigned int) { maximum = std::max(maximum, std::fabs(difference)); });
	return makeDifference(largest, *std::max_element(largest.channel, largest.channel + 4));
}

SChannelDifference GetMeanErrorValue(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip, const unsigned int& arrayMember,
                                     const unsigned int& face)
{
	if (!TexturesAreValidForDiff(a, b, mip, arrayMember, face))
	{
		return kNothingToCompare;
	}
	ChannelSums means = accumulateDifferences(a, b, {mip, arrayMember, face}, 0.0f,
	                                          [](float& sum, float difference, unsigned int) { sum += std::fabs(difference); });
	const float numPixels = static_cast<float>(countPixels(a, mip));
	for (float& mean : means.channel)
	{
		mean /= numPixels;
	}
	return makeDifference(means, 0.25f * sumOf(means));
}

SChannelDifference GetRMSErrorValue(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip, const unsigned int& arrayMember,
                                    const unsigned int& face)
{
	if (!TexturesAreValidForDiff(a, b, mip, arrayMember, face))
	{
		return kNothingToCompare;
	}
	ChannelSums roots = accumulateDifferences(a, b, {mip, arrayMember, face}, 0.0f,
	                                          [](float& sum, float difference, unsigned int) { sum += difference * difference; });
	const float numPixels = static_cast<float>(countPixels(a, mip));
	for (float& root : roots.channel)
	{
		root = std::sqrt(root / numPixels);
	}
	return makeDifference(roots, std::sqrt(sumOf(roots)));
}

SChannelDifference GetStandardDeviation(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip,
                                        const unsigned int& arrayMember, const unsigned int& face)
{
	if (!TexturesAreValidForDiff(a, b, mip, arrayMember, face))
	{
		return kNothingToCompare;
	}
	// The mean is that of the absolute differences, the distances from it are those of the signed ones.
	const SChannelDifference mean = GetMeanErrorValue(a, b, mip, arrayMember, face);
	const float means[4] = {mean.red, mean.green, mean.blue, mean.alpha};
	ChannelSums deviations = accumulateDifferences(a, b, {mip, arrayMember, face}, 0.0f,
	                                               [&means](float& sum, float difference, unsigned int c)
	                                               {
		                                               const double distance = difference - means[c];
		                                               sum = static_cast<float>(sum + distance * distance);
	                                               });
	const float numPixels = static_cast<float>(countPixels(a, mip));
	for (float& deviation : deviations.channel)
	{
		deviation = std::sqrt(deviation / numPixels);
	}
	return makeDifference(deviations, 0.25f * sumOf(deviations));
}

SChannelDifference GetPSNRValue(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip, const unsigned int& arrayMember,
                                const unsigned int& face)
{
	const SChannelDifference errors = GetRMSErrorValue(a, b, mip, arrayMember, face);
	if (errors.red < 0.0f)
	{
		return errors;
	}
	const bool isFloat = a.getChannelType() == eVT_SignedFloat || a.getChannelType() == eVT_UnsignedFloat;
	// The exponent is taken modulo 32, so that 32-bit integers have a peak of 0.
	const float peak = isFloat ? 1.0f : std::ldexp(1.0f, static_cast<int>(a.getBitsPerPixel() / 4 % 32)) - 1.0f;
	const auto psnr = [peak](float error)
	{
		return error != 0.0f ? 20.0f * std::log10(peak / std::sqrt(error)) : -1.0f;
	};
	return {psnr(errors.red), psnr(errors.green), psnr(errors.blue), psnr(errors.alpha), psnr(errors.all)};
}
} // namespace zortexture
