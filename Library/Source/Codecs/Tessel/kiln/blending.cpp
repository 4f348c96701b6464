#include "blending.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "palettetables.h"

const std::array<std::uint8_t, 17> LinWeights8xU8 = {0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3, 4, 5, 6, 7, 8};
const std::array<std::uint8_t, 9> LinWeights4xU8 = {0, 2, 4, 6, 0, 2, 4, 6, 8};
const std::array<std::uint8_t, 17> HemWeights8xU8 = {0, 0, 0, 0, 8, 8, 8, 8, 0, 0, 0, 0, 8, 8, 8, 8, 8};
const std::array<std::uint8_t, 9> HemWeights4xU8 = {0, 0, 8, 8, 0, 0, 8, 8, 8};

namespace
{
constexpr std::array<std::uint8_t, 4> kStandardWeights = {0, 3, 5, 8};
constexpr std::array<std::uint8_t, 4> kPunchThroughWeights = {0, 4, 4, 8};

constexpr int kWindowHeight = 2 * kKilnBlockHeight + 1;

/// The class of a pixel by its place in the window.
std::uint8_t pixelClassAt(int x, int y, int blockWidth)
{
	if (x == 0 || y == 0 || x == 2 * blockWidth || y == kWindowHeight - 1)
	{
		return kKilnRim;
	}
	const int left = blockWidth / 2;
	const int top = kKilnBlockHeight / 2;
	const bool own = x >= left && x < left + blockWidth && y >= top && y < top + kKilnBlockHeight;
	return own ? kKilnOwn : kKilnOuter;
}

void setPalette(KilnBlendRecord& record, int pixel)
{
	record.localPalette = true;
	record.paletteSlots = PaletteModeSelection[pixel];
	record.paletteWeights = {128, 128, 128, 128};
	for (int colour = 0; colour < 2; ++colour)
	{
		const unsigned place = PaletteModeCentralOptions[pixel][colour];
		if (place != kKilnNoSlot)
		{
			record.paletteWeights[place] = kKilnFullWeight;
			record.paletteMixes[place] = colour == 0 ? 0 : 8;
		}
	}
}

/// The record of a pixel whose P is hard or not, and whose own block has the given mode.
KilnBlendRecord makeRecord(int bpp, int x, int y, bool hard, int mode)
{
	const bool is2Bpp = bpp == 2;
	const int blockWidth = is2Bpp ? 8 : 4;
	const int quadrant = 2 * std::min(y / kKilnBlockHeight, 1) + std::min(x / blockWidth, 1);
	KilnBlendRecord record;
	record.pixelClass = pixelClassAt(x, y, blockWidth);
	record.hard = hard;
	record.quadrant = static_cast<std::uint8_t>(quadrant);

	const std::uint8_t* linear = is2Bpp ? LinWeights8xU8.data() : LinWeights4xU8.data();
	const std::uint8_t* hem = is2Bpp ? HemWeights8xU8.data() : HemWeights4xU8.data();
	const unsigned a = (hard ? hem : linear)[x];
	const unsigned b = (hard ? HemWeights4xU8 : LinWeights4xU8)[y];
	record.colourWeights = {static_cast<std::uint8_t>((8 - a) * (8 - b)), static_cast<std::uint8_t>(a * (8 - b)),
	                        static_cast<std::uint8_t>((8 - a) * b), static_cast<std::uint8_t>(a * b)};
	record.blockWeight = record.colourWeights[3 - quadrant];

	record.candidateWeights = kStandardWeights;
	if (is2Bpp)
	{
		const KilnStorage storage = kilnStorageOf(mode, x, y);
		record.storeClass = storage.storeClass;
		record.endsOnly = storage.endsOnly;
	}
	else if ((mode & 1) != 0 && !hard)
	{
		record.punchThrough = true;
		record.candidateWeights = kPunchThroughWeights;
	}
	else if ((mode & 1) != 0 && ((x & 3) != 0 || (y & 3) != 0))
	{
		setPalette(record, 9 * y + x);
	}
	return record;
}

/// Every record that a rate has: by the pixel, by whether its P is hard, and by the modulation of its block.
struct RecordTable
{
	int windowWidth;
	/// Among the nine blocks, P of the pixel's group and the block in which it lies.
	std::array<std::uint8_t, kKilnMaxWindow> blockOfP;
	std::array<std::uint8_t, kKilnMaxWindow> ownBlock;
	std::array<std::array<std::array<KilnBlendRecord, 4>, 2>, kKilnMaxWindow> records;

	explicit RecordTable(int bpp)
	{
		const int blockWidth = bpp == 4 ? 4 : 8;
		windowWidth = 2 * blockWidth + 1;
		int pixel = 0;
		for (int y = 0; y < kWindowHeight; ++y)
		{
			for (int x = 0; x < windowWidth; ++x, ++pixel)
			{
				// The last row and column lie on the centres of blocks: their P is that block, while their weights give it all as R
				// or Q.
				blockOfP[pixel] = static_cast<std::uint8_t>(3 * (y / kKilnBlockHeight) + x / blockWidth);
				ownBlock[pixel] =
				    static_cast<std::uint8_t>(3 * ((y + kKilnBlockHeight / 2) / kKilnBlockHeight) + (x + blockWidth / 2) / blockWidth);
				for (int mode = 0; mode < 4; ++mode)
				{
					records[pixel][0][mode] = makeRecord(bpp, x, y, false, mode);
					records[pixel][1][mode] = makeRecord(bpp, x, y, true, mode);
				}
			}
		}
	}
};

const RecordTable& recordTable(int bpp)
{
	static const RecordTable kTable4Bpp(4);
	static const RecordTable kTable2Bpp(2);
	return bpp == 4 ? kTable4Bpp : kTable2Bpp;
}
} // namespace

KilnStorage kilnStorageOf(int mode, int x, int y)
{
	const int interpolation = mode & 3;
	if (interpolation == 0)
	{
		return {kKilnDirectPixel, true};
	}
	if (((x ^ y) & 1) != 0)
	{
		return {static_cast<KilnStoreClass>(kKilnLeftOut + interpolation - 1), false};
	}
	// The first pixel of a block always lends a bit of its index to the interpolation, the pixel on the centre if that has a direction.
	const bool isFirst = (x & 7) == 4 && (y & 3) == 2;
	const bool isOnCentre = (x & 7) == 0 && (y & 3) == 0;
	return {kKilnStored, isFirst || (isOnCentre && interpolation != 1)};
}

void CreateBlendingAndUpdateWeights(const KilnNeighbourModes& modes, int hardVariant, const KilnSettings& settings,
                                    KilnBlendRecords& records)
{
	if (settings.bpp != 2 && settings.bpp != 4)
	{
		std::fputs("Exiting! 1bpp not yet implemented (CreateBlendingAndUpdateWeights)\n", stderr);
		std::abort();
	}
	records.bpp = settings.bpp;
	records.tessel2 = settings.tessel2;

	std::array<bool, 9> hardBlocks;
	for (int i = 0; i < 9; ++i)
	{
		hardBlocks[i] = (modes[i] & kilnHardBit(settings.bpp)) != 0;
	}
	// The blocks that are P of a group in which the block itself stands.
	constexpr std::array<int, 3> kFlipped = {0, 1, 3};
	for (int bit = 0; bit < 3; ++bit)
	{
		hardBlocks[kFlipped[bit]] ^= ((hardVariant >> bit) & 1) != 0;
	}

	const RecordTable& table = recordTable(settings.bpp);
	const int pixelCount = table.windowWidth * kWindowHeight;
	for (int pixel = 0; pixel < pixelCount; ++pixel)
	{
		records.pixels[pixel] = table.records[pixel][hardBlocks[table.blockOfP[pixel]] ? 1 : 0][modes[table.ownBlock[pixel]] & 3];
	}
}
