/// @file Comparison.h
/// Measures of the difference between two textures in standard layouts, and pictures of it.
#ifndef ZORT_COMPARISON_H
#define ZORT_COMPARISON_H

#include "ZORTexture.h"

namespace zortexture
{
/// One figure for each channel and one for all of them together; -1.0 in all five when there was nothing to compare.
struct SChannelDifference
{
	float red;
	float green;
	float blue;
	float alpha;
	float all;
};

/// Whether two textures can be compared at a position: both in a standard layout (not necessarily the same one) with all
/// of their data, equal top-level dimensions, and the position below the counts of both.
ZORT_API bool TexturesAreValidForDiff(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip, const unsigned int& arrayMember,
                                      const unsigned int& face);

// The measures compare one image of each texture on the raw values of the elements, whatever the range of their types.

/// The largest absolute difference; `all` is the largest of the four.
ZORT_API SChannelDifference GetMaxDifference(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip,
                                             const unsigned int& arrayMember, const unsigned int& face);

/// The mean absolute difference; `all` is the mean of the four.
ZORT_API SChannelDifference GetMeanErrorValue(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip,
                                              const unsigned int& arrayMember, const unsigned int& face);

/// The root of the mean square difference; `all` is the root of the sum of the four.
ZORT_API SChannelDifference GetRMSErrorValue(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip,
                                             const unsigned int& arrayMember, const unsigned int& face);

/// The root of the mean square distance of the signed difference from GetMeanErrorValue; `all` is the mean of the four.
ZORT_API SChannelDifference GetStandardDeviation(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip,
                                                 const unsigned int& arrayMember, const unsigned int& face);

/// 20 log10(peak / sqrt(x)) for each figure x of GetRMSErrorValue, -1.0 where x is 0. Mind the root of a root: these are
/// not the customary decibels. The peak is that of the first texture's elements: 1 for float, 0 for 32-bit integers.
ZORT_API SChannelDifference GetPSNRValue(const CZORTexture& a, const CZORTexture& b, const unsigned int& mip,
                                         const unsigned int& arrayMember, const unsigned int& face);

// The pictures compare all levels, array members and faces that both textures have, on values scaled to 0..1, and have
// the header of `b` otherwise. They are empty textures when the two cannot be compared.

/// A float texture of 0.5 plus the absolute difference times `multiplier`, which counts as 1 at most, in r, g and b; 1.5
/// minus that in alpha.
ZORT_API CZORTexture ColourDiff(const CZORTexture& a, const CZORTexture& b, float multiplier);

/// An 8-bit texture: black where all channels agree to less than 1/255, blue where they differ by less than `tolerance`,
/// red elsewhere. Pixels are compared in storage order, which pairs other pixels when the counts of array members or
/// faces differ.
ZORT_API CZORTexture ToleranceDiff(const CZORTexture& a, const CZORTexture& b, float tolerance);

/// An 8-bit texture of `ratio` parts of `a` (0..1) and the rest of `b`, truncated; values beyond 0..1 wrap. Pixels are
/// paired in storage order as in ToleranceDiff.
ZORT_API CZORTexture BlendDiff(const CZORTexture& a, const CZORTexture& b, float ratio);
} // namespace zortexture

#endif // ZORT_COMPARISON_H
