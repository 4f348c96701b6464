#include <algorithm>
#include <cmath>
#include <cstddef>

#include "Comparison.h"
#include "DifferenceSums.h"
#include "PixelPairs.h"
#include "Simd/SimdLevel.h"
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

/// As many pixels from the start as integers can sum up with the result of floats, added to the sums, which begin with 0 (with -1 for the
/// largest difference). A sum of floats is exact, and so the same in any order, as long as it is an integer of at most 2^24; since nothing
/// that is added is negative, it is that all along if it is in the end.
/// @return the pixels added.
template<ESimdLevel level, EDifferenceSum kind>
std::size_t addWholeNumbers(const ImageElements& a, const ImageElements& b, std::size_t numPixels, ChannelSums& sums)
{
	constexpr float kLargestExact = 16777216.0f;
	for (std::size_t first = 0; first < numPixels; first += kMaxBytePixels)
	{
		unsigned int run[4];
		sumByteDifferences<level, kind>(static_cast<const unsigned char*>(a.from(first)), static_cast<const unsigned char*>(b.from(first)),
		                                std::min(kMaxBytePixels, numPixels - first), run);
		ChannelSums next = sums;
		for (unsigned int c = 0; c < 4; ++c)
		{
			const auto term = static_cast<float>(run[c]);
			next.channel[c] = kind == eLargestDifference ? std::max(sums.channel[c], term) : sums.channel[c] + term;
			if (term > kLargestExact || next.channel[c] > kLargestExact)
			{
				return first;
			}
		}
		sums = next;
	}
	return numPixels;
}

/// The sums of one kind over the differences of an image of two textures.
template<EDifferenceSum kind>
ChannelSums sumDifferences(const CZORTexture& a, const CZORTexture& b, const ImagePosition& position, const ChannelSums& means = {})
{
	const float start = kind == eLargestDifference ? -1.0f : 0.0f;
	ChannelSums sums = {{start, start, start, start}};
	const ImageElements imageOfA = {a.getDataPtr(position.mip, position.arrayMember, position.face), a.getChannelType()};
	const ImageElements imageOfB = {b.getDataPtr(position.mip, position.arrayMember, position.face), b.getChannelType()};
	const std::size_t numPixels = countPixels(a, position.mip);
	withSimdLevel(
	    [&](auto level)
	    {
		    std::size_t first = 0;
		    if constexpr (level() != eSimdPlain && kind != eSumOfDeviations)
		    {
			    if (imageOfA.isBytes() && imageOfB.isBytes())
			    {
				    first = addWholeNumbers<level(), kind>(imageOfA, imageOfB, numPixels, sums);
			    }
		    }
		    forEachRunOfPairs<level()>(eReadRaw, imageOfA, imageOfB, first, numPixels,
		                               [&](const float* pixelsOfA, const float* pixelsOfB, std::size_t, std::size_t count)
		                               { addDifferences<level(), kind>(pixelsOfA, pixelsOfB, count, means.channel, sums.channel); });
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
	const ChannelSums largest = sumDifferences<eLargestDifference>(a, b, {mip, arrayMember, face});
	return makeDifference(largest, *std::max_element(largest.channel, largest.channel + 4));
}

SChannelDifference GetMeanErrorValue(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip, const unsigned int& arrayMember,
                                     const unsigned int& face)
{
	if (!TexturesAreValidForDiff(a, b, mip, arrayMember, face))
	{
		return kNothingToCompare;
	}
	ChannelSums means = sumDifferences<eSumOfDifferences>(a, b, {mip, arrayMember, face});
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
	ChannelSums roots = sumDifferences<eSumOfSquares>(a, b, {mip, arrayMember, face});
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
	ChannelSums deviations =
	    sumDifferences<eSumOfDeviations>(a, b, {mip, arrayMember, face}, {{mean.red, mean.green, mean.blue, mean.alpha}});
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
