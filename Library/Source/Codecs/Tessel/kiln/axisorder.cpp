#include "axisorder.h"

#include <algorithm>

#include "KilnNumerics.h"

using namespace zortexture;

template<>
void KilnAxisOrder<eSimdPlain>::rank(const KilnAxisValues& values, int count, std::uint8_t* places)
{
	std::array<std::uint8_t, kKilnMaxWindow> order;
	std::array<std::uint8_t, kKilnMaxWindow> scratch;
	for (int i = 0; i < count; ++i)
	{
		order[i] = static_cast<std::uint8_t>(i);
	}
	const auto OrderPixelInfo = [&values](std::uint8_t a, std::uint8_t b)
	{
		return values.values[a] < values.values[b] ? -1 : static_cast<int>(values.values[a] > values.values[b]);
	};
	zormergesort(order.data(), scratch.data(), static_cast<std::size_t>(count), OrderPixelInfo);
	for (int i = 0; i < count; ++i)
	{
		places[order[i]] = static_cast<std::uint8_t>(i);
	}
}

template<>
void KilnAxisOrder<eSimdPlain>::countBelow(const KilnAxisValues& values, int count, const float (&thresholds)[3], int (&counts)[3])
{
	for (int i = 0; i < 3; ++i)
	{
		counts[i] = static_cast<int>(std::lower_bound(values.values, values.values + count, thresholds[i]) - values.values);
	}
}
