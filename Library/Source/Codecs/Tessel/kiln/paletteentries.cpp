#include "paletteentries.h"

#include <algorithm>
#include <cstdlib>

#include "KilnNumerics.h"
#include "representable.h"

const std::array<std::uint8_t, kKilnWindow4Bpp> PalettePixels4bpp = {
    0, 0, 0, 0, 0, 0, 0, 0, 0, //
    0, 0, 0, 1, 1, 1, 0, 0, 0, //
    0, 0, 1, 1, 1, 1, 1, 0, 0, //
    0, 1, 1, 1, 1, 1, 1, 1, 0, //
    0, 1, 1, 1, 1, 1, 1, 1, 0, //
    0, 1, 1, 1, 1, 1, 1, 1, 0, //
    0, 0, 1, 1, 1, 1, 1, 0, 0, //
    0, 0, 0, 1, 1, 1, 0, 0, 0, //
    0, 0, 0, 0, 0, 0, 0, 0, 0,
};

namespace
{
/// This pixel counts several times.
constexpr int kEmphasisedPixel = 20;
constexpr int kEmphasis = 8;
constexpr int kDistanceCap = 262144;

struct PaletteEntry
{
	KilnColour colour = {};
	int pixels = 0;
	std::array<int, 4> sums = {};
};

/// Alpha counts 30 times at its extremes, where a deviation shows.
int entryDistance(const KilnColour& pixel, const KilnColour& entry)
{
	const int alphaFactor = pixel[3] == 0 || pixel[3] == 255 ? 30 : 1;
	int sum = 0;
	for (int c = 0; c < 4; ++c)
	{
		const int difference = (pixel[c] - entry[c]) * (c == 3 ? alphaFactor : 1);
		sum += difference * difference;
	}
	return std::min(sum, kDistanceCap);
}

struct WorstPixel
{
	int pixel = -1;
	int distance = -1;
};

/// Counts and sums the pixels of each entry, nearest first, the earlier of equals.
WorstPixel assignPixels(const KilnColour* window, const std::uint8_t* mask, std::vector<PaletteEntry>& entries)
{
	for (PaletteEntry& entry : entries)
	{
		entry.pixels = 0;
		entry.sums = {};
	}
	WorstPixel worst;
	for (int i = 0; i < kKilnWindow4Bpp; ++i)
	{
		if (mask[i] == 0)
		{
			continue;
		}
		std::size_t nearest = 0;
		int distance = entryDistance(window[i], entries[0].colour);
		for (std::size_t k = 1; k < entries.size(); ++k)
		{
			const int other = entryDistance(window[i], entries[k].colour);
			if (other < distance)
			{
				nearest = k;
				distance = other;
			}
		}
		const int count = i == kEmphasisedPixel ? kEmphasis : 1;
		entries[nearest].pixels += count;
		for (int c = 0; c < 4; ++c)
		{
			entries[nearest].sums[c] += count * window[i][c];
		}
		if (distance > worst.distance)
		{
			worst = {i, distance};
		}
	}
	return worst;
}

/// @return whether the colour changed.
bool moveToMean(PaletteEntry& entry)
{
	if (entry.pixels == 0)
	{
		return false;
	}
	KilnColour mean;
	for (int c = 0; c < 4; ++c)
	{
		// Adds a half and truncates.
		mean[c] = static_cast<std::uint8_t>((2 * entry.sums[c] + entry.pixels) / (2 * entry.pixels));
	}
	const KilnColour snapped = SnapToRepresentable(mean);
	const bool changed = snapped != entry.colour;
	entry.colour = snapped;
	return changed;
}

/// The pixels at the ends of their main axis; one entry when they are alike, none when the mask is empty.
std::vector<PaletteEntry> firstEntries(const KilnColour* window, const std::uint8_t* mask)
{
	CovarSum sum;
	for (int i = 0; i < kKilnWindow4Bpp; ++i)
	{
		if (mask[i] != 0)
		{
			UpdateCovarSumI(sum, window[i].data(), 1);
		}
	}
	KilnVector axis;
	CovarSumToPrincipalVector(sum, CovarSumMeans(sum), axis);

	int lowest = -1;
	int highest = -1;
	float minimum = 0;
	float maximum = 0;
	for (int i = 0; i < kKilnWindow4Bpp; ++i)
	{
		if (mask[i] == 0)
		{
			continue;
		}
		float place = 0;
		for (int c = 0; c < 4; ++c)
		{
			place += axis[c] * static_cast<float>(window[i][c]);
		}
		if (lowest < 0 || place < minimum)
		{
			lowest = i;
			minimum = place;
		}
		if (highest < 0 || place > maximum)
		{
			highest = i;
			maximum = place;
		}
	}
	std::vector<PaletteEntry> entries;
	if (lowest >= 0)
	{
		entries.push_back({window[lowest]});
		if (window[highest] != window[lowest])
		{
			entries.push_back({window[highest]});
		}
	}
	return entries;
}
} // namespace

std::vector<KilnColour> GeneratePaletteEntries(const KilnBlock& block, const KilnColour* window, const std::uint8_t* mask, int pixelCount,
                                               int maxEntries, int errorLimit)
{
	if (pixelCount != kKilnWindow4Bpp)
	{
		std::exit(0);
	}
	if (block.singleColour)
	{
		return {SnapToRepresentable(block.colour)};
	}
	std::vector<PaletteEntry> entries = firstEntries(window, mask);
	const int rounds = 2 * maxEntries + 1;
	for (int round = 0; round < rounds && !entries.empty(); ++round)
	{
		const WorstPixel worst = assignPixels(window, mask, entries);
		bool changed = false;
		for (PaletteEntry& entry : entries)
		{
			changed = moveToMean(entry) || changed;
		}
		if (worst.distance > errorLimit && round + 1 < rounds && static_cast<int>(entries.size()) < maxEntries)
		{
			entries.push_back({window[worst.pixel]});
			changed = true;
		}
		if (!changed)
		{
			break;
		}
	}
	entries.erase(std::remove_if(entries.begin(), entries.end(), [](const PaletteEntry& entry) { return entry.pixels == 0; }),
	              entries.end());
	std::stable_sort(entries.begin(), entries.end(), [](const PaletteEntry& a, const PaletteEntry& b) { return a.pixels < b.pixels; });
	std::vector<KilnColour> colours;
	colours.reserve(entries.size());
	for (const PaletteEntry& entry : entries)
	{
		colours.push_back(entry.colour);
	}
	return colours;
}
