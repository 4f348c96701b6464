#include "DifferenceSums.h"

#include <algorithm>
#include <cmath>

namespace zortexture
{
namespace
{
template<EDifferenceSum kind>
void addDifference(float& sum, float difference, float mean)
{
	if constexpr (kind == eLargestDifference)
	{
		sum = std::max(sum, std::fabs(difference));
	}
	else if constexpr (kind == eSumOfDifferences)
	{
		sum += std::fabs(difference);
	}
	else if constexpr (kind == eSumOfSquares)
	{
		sum += difference * difference;
	}
	else
	{
		const double distance = difference - mean;
		sum = static_cast<float>(sum + distance * distance);
	}
}
} // namespace

#define ZORT_DIFFERENCES(kind)                                                                                                             \
	template<>                                                                                                                             \
	void addDifferences<eSimdPlain, kind>(const float* a, const float* b, std::size_t numPixels, const float* means, float* sums)          \
	{                                                                                                                                      \
		for (std::size_t i = 0; i < 4 * numPixels; ++i)                                                                                    \
		{                                                                                                                                  \
			addDifference<kind>(sums[i % 4], a[i] - b[i], means[i % 4]);                                                                   \
		}                                                                                                                                  \
	}
ZORT_DIFFERENCES(eLargestDifference)
ZORT_DIFFERENCES(eSumOfDifferences)
ZORT_DIFFERENCES(eSumOfSquares)
ZORT_DIFFERENCES(eSumOfDeviations)
#undef ZORT_DIFFERENCES
} // namespace zortexture
