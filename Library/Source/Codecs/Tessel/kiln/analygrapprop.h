/// @file analygrapprop.h
/// Dividing a window into flat regions.
#pragma once

#include "kiln.h"

/// The flat regions of a window.
struct KilnRegions
{
	int count = 0;
	/// The region of each pixel.
	std::array<std::uint8_t, kKilnMaxWindow> map;
	/// The pixel indices, region by region.
	std::array<std::uint8_t, kKilnMaxWindow> order;
};

/// @return the number of regions.
int AnalyseGraphicsProperties(const KilnColour* window, const KilnSettings& settings, KilnRegions& regions);

/// The squared distance of two colours over all four channels.
inline int SQColDist(const KilnColour& a, const KilnColour& b)
{
	int sum = 0;
	for (int c = 0; c < 4; ++c)
	{
		const int difference = a[c] - b[c];
		sum += difference * difference;
	}
	return sum;
}
