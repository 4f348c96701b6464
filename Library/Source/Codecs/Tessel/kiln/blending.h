/// @file blending.h
/// How each pixel of a block's window is mixed from the nine blocks around it.
#pragma once

#include "kiln.h"

/// Blend weights along one axis of a window, in eighths of the block to the right or below: 8 or 4 pixels between the centres.
extern const std::array<std::uint8_t, 17> LinWeights8xU8;
extern const std::array<std::uint8_t, 9> LinWeights4xU8;
/// The same where blocks do not blend.
extern const std::array<std::uint8_t, 17> HemWeights8xU8;
extern const std::array<std::uint8_t, 9> HemWeights4xU8;

/// Pixel classes: the rim of the window, the block's own area, the rest.
enum KilnPixelClass : std::uint8_t
{
	kKilnRim = 0,
	kKilnOwn = 1,
	kKilnOuter = 2
};

/// How a 2bpp pixel is stored: by an index of two bits, by one bit, or left out between its neighbours.
enum KilnStoreClass : std::uint8_t
{
	kKilnStored = 0,
	kKilnDirectPixel = 1,
	kKilnLeftOut = 2,
	kKilnLeftOutHorizontal = 3,
	kKilnLeftOutVertical = 4
};

/// The bits of a channel that take part in blending: 5 of R, G and B, 4 of alpha.
constexpr std::array<std::uint8_t, 4> kKilnWorkingMask = {0xf8, 0xf8, 0xf8, 0xf0};

/// All the shares of a pixel.
constexpr std::uint8_t kKilnFullWeight = 64;
/// The candidate that is transparent in punch-through blocks.
constexpr int kKilnPunchThroughIndex = 2;

struct alignas(32) KilnBlendRecord
{
	/// A KilnPixelClass.
	std::uint8_t pixelClass = kKilnRim;
	/// Decoded through the local palette.
	bool localPalette = false;
	/// Decoded without interpolation (the group's P is hard).
	bool hard = false;
	/// The group of four blocks among the nine: 0 to 3, left to right and down.
	std::uint8_t quadrant = 0;
	/// 2bpp: a KilnStoreClass.
	std::uint8_t storeClass = kKilnStored;
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

/// How a 2bpp pixel is stored.
struct KilnStorage
{
	KilnStoreClass storeClass;
	bool endsOnly;
};

/// @param mode  of the block in which the pixel at (x, y) of the window lies.
KilnStorage kilnStorageOf(int mode, int x, int y);

/// Sets the records of a window.
/// @param modes        of the nine blocks; the entry of the block itself is the mode to try.
/// @param hardVariant  bits 0, 1 and 2 flip the hard flags of the neighbours up-left, up and left.
void CreateBlendingAndUpdateWeights(const KilnNeighbourModes& modes, int hardVariant, const KilnSettings& settings,
                                    KilnBlendRecords& records);

/// The colour that a choice shows at a palette pixel.
KilnColour kilnPaletteColour(const KilnBlendRecord& record, int choice, const KilnNeighbourColours& colours);

/// The four colours that a pixel can take, exactly as the decoder gives them.
/// @return 1 if they are palette choices, else 0.
int SynthesisePixelColourChoices(const KilnBlendRecords& records, int pixel, const KilnNeighbourColours& colours,
                                 std::array<KilnColour, 4>& candidates);

/// How much a difference in alpha counts: 30 where the pixel is fully transparent or opaque, else 1.
int kilnAlphaFactor(const KilnColour& pixel);

/// The choice from the errors of the four candidates: the better of the middle two, unless an end is better still.
/// @param endsOnly  the pixel can only be 0 or 3.
int kilnChooseCandidate(const std::array<std::uint64_t, 4>& errors, bool endsOnly);

/// Picks the best index for a pixel. The evaluation of a window does the same for all its pixels at once (evaluate.h); this is the
/// plain form.
/// @return the squared error: channel differences, alpha with its factor. A transparent pixel costs nothing when punched through.
std::uint32_t SynthCandsAndBestFitPixel(const KilnBlendRecords& records, int pixel, const KilnNeighbourColours& colours,
                                        const KilnColour& target, int& index, KilnColour& decoded);
