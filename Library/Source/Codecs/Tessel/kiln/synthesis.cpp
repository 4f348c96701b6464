#include "blending.h"

namespace
{
/// Among the nine blocks, the P of each quadrant; and the offsets of P, Q, R and S from P.
constexpr std::array<int, 4> kGroupOffsets = {0, 1, 3, 4};

/// The weighted sum of one plane at a pixel, expanded to 8 bits as the decoder does.
KilnColour upscale(const KilnBlendRecord& record, const KilnNeighbourColours& colours, KilnColour KilnPair::*plane)
{
	std::array<unsigned, 4> sums = {};
	for (int i = 0; i < 4; ++i)
	{
		const KilnColour& colour = colours[kGroupOffsets[record.quadrant] + kGroupOffsets[i]].*plane;
		for (int c = 0; c < 4; ++c)
		{
			sums[c] += record.colourWeights[i] * (colour[c] & kKilnWorkingMask[c]);
		}
	}
	KilnColour result;
	for (int c = 0; c < 4; ++c)
	{
		const unsigned scaled = sums[c] >> 6;
		result[c] = static_cast<std::uint8_t>(scaled + (scaled >> (c < 3 ? 5 : 4)));
	}
	return result;
}
} // namespace

KilnColour kilnPaletteColour(const KilnBlendRecord& record, int choice, const KilnNeighbourColours& colours)
{
	const unsigned slot = record.paletteSlots[choice];
	const KilnPair& pair = colours[kGroupOffsets[record.quadrant] + kGroupOffsets[slot / 2]];
	return (slot & 1) == 0 ? pair.a : pair.b;
}

int SynthesisePixelColourChoices(const KilnBlendRecords& records, int pixel, const KilnNeighbourColours& colours,
                                 std::array<KilnColour, 4>& candidates)
{
	const KilnBlendRecord& record = records.pixels[pixel];
	if (record.localPalette)
	{
		for (int i = 0; i < 4; ++i)
		{
			candidates[i] = kilnPaletteColour(record, i, colours);
		}
		return 1;
	}
	const KilnColour a = upscale(record, colours, &KilnPair::a);
	const KilnColour b = upscale(record, colours, &KilnPair::b);
	for (int i = 0; i < 4; ++i)
	{
		const int weight = record.candidateWeights[i];
		for (int c = 0; c < 4; ++c)
		{
			candidates[i][c] = static_cast<std::uint8_t>((a[c] * (8 - weight) + b[c] * weight) >> 3);
		}
	}
	if (record.punchThrough)
	{
		// Coloured transparency in the first generation, transparent black in the second.
		KilnColour& punched = candidates[kKilnPunchThroughIndex];
		punched = records.tessel2 ? KilnColour{} : KilnColour{punched[0], punched[1], punched[2], 0};
	}
	return 0;
}

int kilnAlphaFactor(const KilnColour& pixel)
{
	return pixel[3] == 0 || pixel[3] == 255 ? 30 : 1;
}

int kilnChooseCandidate(const std::array<std::uint64_t, 4>& errors, bool endsOnly)
{
	const int end = errors[0] > errors[3] ? 3 : 0;
	const int middle = errors[1] < errors[2] ? 1 : 2;
	return endsOnly || errors[middle] > errors[end] ? end : middle;
}

std::uint32_t SynthCandsAndBestFitPixel(const KilnBlendRecords& records, int pixel, const KilnNeighbourColours& colours,
                                        const KilnColour& target, int& index, KilnColour& decoded)
{
	const KilnBlendRecord& record = records.pixels[pixel];
	std::array<KilnColour, 4> candidates;
	SynthesisePixelColourChoices(records, pixel, colours, candidates);
	const int factor = kilnAlphaFactor(target);
	std::array<std::uint64_t, 4> errors = {};
	for (int i = 0; i < 4; ++i)
	{
		for (int c = 0; c < 4; ++c)
		{
			const int difference = (candidates[i][c] - target[c]) * (c == 3 ? factor : 1);
			errors[i] += static_cast<std::uint64_t>(difference) * difference;
		}
	}
	if (record.punchThrough && target[3] == 0)
	{
		// Nobody sees the colour of a transparent pixel.
		errors[kKilnPunchThroughIndex] = 0;
	}
	index = kilnChooseCandidate(errors, record.endsOnly);
	decoded = candidates[index];
	return static_cast<std::uint32_t>(errors[index]);
}
