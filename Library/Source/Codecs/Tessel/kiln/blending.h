/// @file blending.h
/// How each pixel of a block's window is mixed from the nine blocks around it.
#pragma once

#include "kiln.h"

struct KilnBlendRecord
{
	/// 0 the rim of the window, 1 the block's own area, 2 the rest.
	std::uint8_t pixelClass = 0;
	/// Decoded through the local palette.
	bool localPalette = false;
	/// Decoded without interpolation (the group's P is hard).
	bool hard = false;
	/// The group of four blocks among the nine: 0 to 3, left to right and down.
	std::uint8_t quadrant = 0;
	/// 2bpp: 0 stored, 1 direct, 2 left out with four neighbours, 3 with left and right, 4 with above and below.
	std::uint8_t storeClass = 0;
	/// 2bpp: the stored index has one bit, so that only the two ends can be chosen. Direct pixels too.
	bool endsOnly = false;
	/// Shares of P, Q, R, S, which sum to 64.
	std::array<std::uint8_t, 4> colourWeights = {};
	/// The share of the block itself.
	std::uint8_t blockWeight = 0;
	/// Weights in eighths of the four candidates: 0 3 5 8, or 0 4 4 8 with punch-through.
	std::array<std::uint8_t, 4> candidateWeights = {};
	/// The third candidate is punch-through.
	bool punchThrough = false;
	/// Local palette: the slots 0 to 7 of the group (A and B of P, Q, R, S) that the four indices select.
	std::array<std::uint8_t, 4> paletteSlots = {};
	/// Local palette: 64 where that colour is the block's own, else 128; and its mix, 0 for A and 8 for B.
	std::array<std::uint8_t, 4> paletteWeights = {};
	std::array<std::uint8_t, 4> paletteMixes = {};
};

struct KilnBlendRecords
{
	int bpp = 4;
	bool tessel2 = false;
	std::array<KilnBlendRecord, kKilnMaxWindow> pixels;
};

/// Sets the records of a window.
/// @param modes        of the nine blocks; the entry of the block itself is the mode to try.
/// @param hardVariant  bits 0, 1 and 2 flip the hard flags of the neighbours up-left, up and left.
void CreateBlendingAndUpdateWeights(const KilnNeighbourModes& modes, int hardVariant, const KilnSettings& settings,
                                    KilnBlendRecords& records);

/// The four colours that a pixel can take, exactly as the decoder gives them.
/// @return 1 if they are palette choices, else 0.
int SynthesisePixelColourChoices(const KilnBlendRecords& records, int pixel, const KilnNeighbourColours& colours,
                                 std::array<KilnColour, 4>& candidates);

/// Picks the best index for a pixel.
/// @param target    the colour to approach (the pixel, or a target moved by its neighbours).
/// @return the squared error: channel differences, alpha with factor 30 where the pixel's alpha is 0 or 255.
std::uint32_t SynthCandsAndBestFitPixel(const KilnBlendRecords& records, int pixel, const KilnNeighbourColours& colours,
                                        const KilnColour& target, int& index, KilnColour& decoded);
