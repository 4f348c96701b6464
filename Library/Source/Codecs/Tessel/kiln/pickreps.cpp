#include "pickreps.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>
#include <utility>

#include "axisorder.h"
#include "representable.h"

using namespace zortexture;

namespace
{
using PixelInfos = std::array<KilnPixelInfo, kKilnMaxWindow>;

/// Steps into which the range of projections is divided for further starts.
constexpr int kStartSteps = 7;

/// Weight, moment and second moment of a run of pixels.
struct RunSums
{
	double weight = 0;
	double moment = 0;
	double square = 0;
};

RunSums sumsBefore(const KilnPixelInfo* pixels, int end)
{
	if (end == 0)
	{
		return {};
	}
	const KilnPixelInfo& last = pixels[end - 1];
	return {last.weightSum, last.momentSum, last.squareSum};
}

RunSums difference(const RunSums& a, const RunSums& b)
{
	return {a.weight - b.weight, a.moment - b.moment, a.square - b.square};
}

struct Ends
{
	float low;
	float high;
};

/// Where the second, third and fourth run of a partition begin.
using Boundaries = std::array<int, 3>;

/// The sorted projections, and how they are counted.
struct SortedProjections
{
	KilnAxisValues values;
	int count;
	decltype(&KilnAxisOrder<eSimdPlain>::countBelow) countBelow;
};

void padValues(KilnAxisValues& values, int count)
{
	std::fill(values.values + count, values.values + KilnAxisValues::kCapacity, std::numeric_limits<float>::infinity());
}

/// Where the nearest of the four levels between two ends changes.
Boundaries boundariesOf(const SortedProjections& projections, const Ends& ends)
{
	// Midway between the levels.
	constexpr std::array<float, 3> kThresholds = {0.1875F, 0.5F, 0.8125F};
	float thresholds[3];
	for (unsigned i = 0; i < 3; ++i)
	{
		thresholds[i] = ends.low + (ends.high - ends.low) * kThresholds[i];
	}
	int counts[3];
	projections.countBelow(projections.values, projections.count, thresholds, counts);
	return {counts[0], counts[1], counts[2]};
}

/// The pixels nearest to each of the four levels between two ends.
struct Partition
{
	std::array<RunSums, 4> runs;

	Partition(const KilnPixelInfo* pixels, int count, const Boundaries& boundaries)
	{
		RunSums before;
		for (int i = 0; i < 3; ++i)
		{
			const RunSums sums = sumsBefore(pixels, boundaries[i]);
			runs[i] = difference(sums, before);
			before = sums;
		}
		runs[3] = difference(sumsBefore(pixels, count), before);
	}

	/// The sum of weighted squared distances from the levels.
	double error(const Ends& ends) const
	{
		constexpr std::array<double, 4> kLevels = {0, 0.375, 0.625, 1};
		double sum = 0;
		for (int i = 0; i < 4; ++i)
		{
			const double level = ends.low + (static_cast<double>(ends.high) - ends.low) * kLevels[i];
			sum += runs[i].square - 2 * level * runs[i].moment + level * level * runs[i].weight;
		}
		return std::max(sum, 0.0);
	}

	/// The ends within limits that have the least error for these runs, or close to it; unchanged where they are not determined.
	Ends fitEnds(const Ends& ends, float minimum, float maximum) const
	{
		// Squares and product of 0.375 and 0.625.
		constexpr double kNear = 0.390625;
		constexpr double kFar = 0.140625;
		constexpr double kProduct = 0.234375;
		const double lowLow = runs[0].weight + kNear * runs[1].weight + kFar * runs[2].weight;
		const double highHigh = runs[3].weight + kNear * runs[2].weight + kFar * runs[1].weight;
		const double lowHigh = kProduct * (runs[1].weight + runs[2].weight);
		const double determinant = lowLow * highHigh - lowHigh * lowHigh;
		if (!(determinant > 0))
		{
			return ends;
		}
		const double lowSide = runs[0].moment + 0.625 * runs[1].moment + 0.375 * runs[2].moment;
		const double highSide = runs[3].moment + 0.625 * runs[2].moment + 0.375 * runs[1].moment;
		double low = (highHigh * lowSide - lowHigh * highSide) / determinant;
		double high = (lowLow * highSide - lowHigh * lowSide) / determinant;
		// An end at its limit, so that it keeps a pixel, leaves the other a fit of its own.
		if (low < minimum)
		{
			low = minimum;
			high = (highSide - lowHigh * low) / highHigh;
		}
		else if (high > maximum)
		{
			high = maximum;
			low = (lowSide - lowHigh * high) / lowLow;
		}
		const auto clamped = [minimum, maximum](double end)
		{
			return std::clamp(static_cast<float>(end), minimum, maximum);
		};
		const auto [lower, upper] = std::minmax({clamped(low), clamped(high)});
		return {lower, upper};
	}
};

/// The partitions that were met so far. One of them leads where it led before, so that a start that comes upon it is given up.
class VisitedPartitions
{
public:
	/// @return whether this is the first time (or there is no more room to tell).
	bool insert(const Boundaries& boundaries)
	{
		constexpr std::size_t kMask = kSlots - 1;
		// No boundary is above 153; never 0.
		const std::uint32_t key = 1 + static_cast<std::uint32_t>(boundaries[0] | (boundaries[1] << 8) | (boundaries[2] << 16));
		std::size_t slot = (key * 2654435761U) >> 24;
		for (; m_keys[slot & kMask] != 0; ++slot)
		{
			if (m_keys[slot & kMask] == key)
			{
				return false;
			}
		}
		if (m_count < kSlots / 2)
		{
			m_keys[slot & kMask] = key;
			++m_count;
		}
		return true;
	}

private:
	static constexpr std::size_t kSlots = 256;
	std::array<std::uint32_t, kSlots> m_keys = {};
	std::size_t m_count = 0;
};

/// @param visited  when not null, gives the start up with an error beyond all others once it comes upon a partition in there.
double improvePartition(const KilnPixelInfo* pixels, const SortedProjections& projections, Ends& ends, VisitedPartitions* visited)
{
	const int count = projections.count;
	Boundaries last = {-1, -1, -1};
	for (;;)
	{
		const Boundaries boundaries = boundariesOf(projections, ends);
		if (visited != nullptr && boundaries != last && !visited->insert(boundaries))
		{
			return DBL_MAX;
		}
		last = boundaries;
		const Partition partition(pixels, count, boundaries);
		const double error = partition.error(ends);
		const Ends fitted = partition.fitEnds(ends, pixels[0].projection, pixels[count - 1].projection);
		// The error falls with every round, so that rounds end.
		if (!(partition.error(fitted) < error))
		{
			return error / pixels[count - 1].weightSum;
		}
		ends = fitted;
	}
}

/// Lists the pixels that count, sorted along the axis, with their sums.
template<ESimdLevel level>
int listPixels(const KilnSettings& settings, const KilnColour* window, const float* weights, const KilnVector& axis, PixelInfos& pixels,
               SortedProjections& projections)
{
	KilnAxisValues places;
	std::array<int, kKilnMaxWindow> counted;
	int count = 0;
	for (int i = 0; i < settings.windowPixels(); ++i)
	{
		if (weights[i] == 0 || (settings.bpp == 4 && isTransparentPixel(settings.tessel2, window[i])))
		{
			continue;
		}
		float projection = 0;
		for (std::size_t c = 0; c < 4; ++c)
		{
			projection += axis[c] * static_cast<float>(window[i][c]);
		}
		places.values[count] = projection;
		counted[count++] = i;
	}
	padValues(places, count);
	std::array<std::uint8_t, kKilnMaxWindow> ranks;
	KilnAxisOrder<level>::rank(places, count, ranks.data());
	std::array<int, kKilnMaxWindow> order;
	for (int i = 0; i < count; ++i)
	{
		order[ranks[i]] = counted[i];
		projections.values.values[ranks[i]] = places.values[i];
	}
	padValues(projections.values, count);
	projections.count = count;
	projections.countBelow = KilnAxisOrder<level>::countBelow;

	RunSums sums;
	for (int i = 0; i < count; ++i)
	{
		const int pixel = order[i];
		const float projection = projections.values.values[i];
		const float size = std::fabs(weights[pixel]);
		const double weight = size;
		sums.weight += weight;
		sums.moment += weight * projection;
		sums.square += weight * projection * projection;
		pixels[i] = {projection, size, pixel, sums.weight, sums.moment, sums.square};
	}
	return count;
}

/// The means of the outer eighths of the weight at both ends of at least two pixels.
Ends outerMeans(const PixelInfos& pixels, int count)
{
	const RunSums total = sumsBefore(pixels.data(), count);
	const double share = total.weight / 8;
	int lowEnd = 1;
	while (lowEnd < count - 1 && pixels[lowEnd - 1].weightSum < share)
	{
		++lowEnd;
	}
	int highBegin = count - 1;
	while (highBegin > 1 && total.weight - pixels[highBegin - 1].weightSum < share)
	{
		--highBegin;
	}
	const RunSums low = sumsBefore(pixels.data(), lowEnd);
	const RunSums high = difference(total, sumsBefore(pixels.data(), highBegin));
	const float minimum = pixels[0].projection;
	const float maximum = pixels[count - 1].projection;
	const auto mean = [minimum, maximum](const RunSums& run)
	{
		return std::clamp(static_cast<float>(run.moment / run.weight), minimum, maximum);
	};
	const auto [lower, upper] = std::minmax({mean(low), mean(high)});
	return {lower, upper};
}

/// The ends with the least error, from the outer means and from a grid of starts; the earlier of equals.
Ends findEnds(const PixelInfos& pixels, const SortedProjections& projections)
{
	const int count = projections.count;
	VisitedPartitions visited;
	const auto improve = [&](Ends& ends)
	{
		return improvePartition(pixels.data(), projections, ends, &visited);
	};
	Ends best = outerMeans(pixels, count);
	if (best.low == best.high)
	{
		return best;
	}
	double bestError = improve(best);
	const float minimum = pixels[0].projection;
	const float maximum = pixels[count - 1].projection;
	const auto start = [minimum, maximum](int step)
	{
		return (static_cast<float>(step) * maximum + static_cast<float>(kStartSteps - step) * minimum) / static_cast<float>(kStartSteps);
	};
	for (int lowStep = 1; lowStep < kStartSteps - 1; ++lowStep)
	{
		for (int highStep = lowStep + 1; highStep < kStartSteps; ++highStep)
		{
			Ends ends = {start(lowStep), start(highStep)};
			const double error = improve(ends);
			if (error < bestError)
			{
				best = ends;
				bestError = error;
			}
		}
	}
	return best;
}

/// The weighted mean of a run of pixels.
KilnColourF meanColour(const KilnPixelInfo* begin, const KilnPixelInfo* end, const KilnColour* window)
{
	std::array<double, 4> sums = {};
	double weight = 0;
	for (; begin != end; ++begin)
	{
		weight += begin->weight;
		for (std::size_t c = 0; c < 4; ++c)
		{
			sums[c] += static_cast<double>(begin->weight) * window[begin->pixel][c];
		}
	}
	KilnColourF mean;
	for (std::size_t c = 0; c < 4; ++c)
	{
		mean[c] = static_cast<float>(sums[c] / weight);
	}
	return mean;
}

/// Negative when b is darker than a, alpha counting most.
float brightnessDifference(const KilnColourF& a, const KilnColourF& b)
{
	float difference = 4 * (b[3] * b[3] - a[3] * a[3]);
	for (std::size_t c = 0; c < 3; ++c)
	{
		difference += b[c] * b[c] - a[c] * a[c];
	}
	return difference;
}
} // namespace

bool isTransparentPixel(bool tessel2, const KilnColour& pixel)
{
	return pixel[3] == 0 && !(tessel2 && (pixel[0] != 0 || pixel[1] != 0 || pixel[2] != 0));
}

double ImprovePartition(const KilnPixelInfo* pixels, int count, float& low, float& high)
{
	if (count == 1 || low == high)
	{
		return 0;
	}
	Ends ends = {low, high};
	SortedProjections projections;
	projections.count = count;
	projections.countBelow = KilnAxisOrder<eSimdPlain>::countBelow;
	for (int i = 0; i < count; ++i)
	{
		projections.values.values[i] = pixels[i].projection;
	}
	padValues(projections.values, count);
	const double error = improvePartition(pixels, projections, ends, nullptr);
	low = ends.low;
	high = ends.high;
	return error;
}

KilnPair PickRepsByProjectingPixelsOntoAxis(const KilnSettings& settings, const KilnColour* window, const float* weights,
                                            const KilnVector& axis)
{
	PixelInfos pixels;
	SortedProjections projections;
	const int count = withSimdLevel([&](auto level) { return listPixels<level>(settings, window, weights, axis, pixels, projections); });
	KilnColourF a = {};
	KilnColourF b = {};
	if (count > 0)
	{
		const KilnPixelInfo* begin = pixels.data();
		const KilnPixelInfo* end = begin + count;
		if (begin->projection == end[-1].projection)
		{
			a = ConvertIntPixelToFloat(window[begin->pixel]);
			b = ConvertIntPixelToFloat(window[end[-1].pixel]);
		}
		else
		{
			const Ends ends = findEnds(pixels, projections);
			const float cutA = std::clamp(0.8125F * ends.low + 0.1875F * ends.high, ends.low, ends.high);
			const float cutB = std::clamp(0.1875F * ends.low + 0.8125F * ends.high, ends.low, ends.high);
			a = meanColour(begin, std::partition_point(begin, end, [cutA](const KilnPixelInfo& p) { return p.projection <= cutA; }),
			               window);
			b = meanColour(std::partition_point(begin, end, [cutB](const KilnPixelInfo& p) { return p.projection < cutB; }), end, window);
		}
	}
	if (brightnessDifference(a, b) < 0)
	{
		std::swap(a, b);
	}
	return MapToRepresentableColours(settings.tessel2, a, b);
}
