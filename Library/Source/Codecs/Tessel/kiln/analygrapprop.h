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
	/// The pixel indices, region by region in order.
	std::array<std::uint8_t, kKilnMaxWindow> order;
};

/// @return the number of regions.
int AnalyseGraphicsProperties(const KilnColour* window, const KilnSettings& settings, KilnRegions& regions);

/// Whether there are fewer than a quarter as many regions as pixels.
bool kilnIsGraphics(const KilnColour* window, const KilnSettings& settings);

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
