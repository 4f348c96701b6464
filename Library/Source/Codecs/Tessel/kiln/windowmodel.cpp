#include "evaluate.h"
#include "pixelkernel.h"

namespace
{
constexpr int kWidth2Bpp = 17;
constexpr int kHeight2Bpp = 9;

KilnPixelKind kindOf(const KilnBlendRecord& record, const KilnColour& pixel)
{
	if (record.localPalette)
	{
		return kKilnPalettePixel;
	}
	if (!record.punchThrough)
	{
		return kKilnStandardPixel;
	}
	return pixel[3] == 0 ? kKilnFreePunchThroughPixel : kKilnPunchThroughPixel;
}

KilnPaletteModel paletteOf(const KilnBlendRecord& record, const KilnNeighbourColours& colours)
{
	KilnPaletteModel palette = {};
	for (int i = 0; i < 4; ++i)
	{
		const unsigned place = kKilnLanePlace[i];
		const KilnColour colour = kilnPaletteColour(record, i, colours);
		for (unsigned c = 0; c < 4; ++c)
		{
			const unsigned lane = 4 * (place & 1) + c;
			if (record.paletteWeights[i] != kKilnFullWeight)
			{
				palette.fixed[place / 2][lane] = colour[c];
			}
			else
			{
				(record.paletteMixes[i] == 0 ? palette.maskA : palette.maskB)[place / 2][lane] = 0xffff;
			}
		}
	}
	return palette;
}

/// The neighbours of a pixel that is left out; outside the window the one opposite stands in.
constexpr KilnLeftOutPixel leftOutAt(int row, int column, int storeClass)
{
	const int pixel = kWidth2Bpp * row + column;
	const int left = column > 0 ? pixel - 1 : pixel + 1;
	const int right = column < kWidth2Bpp - 1 ? pixel + 1 : pixel - 1;
	const int above = row > 0 ? pixel - kWidth2Bpp : pixel + kWidth2Bpp;
	const int below = row < kHeight2Bpp - 1 ? pixel + kWidth2Bpp : pixel - kWidth2Bpp;
	std::array<int, 4> reads = {left, right, above, below};
	if (storeClass == kKilnLeftOutHorizontal)
	{
		reads = {left, right, left, right};
	}
	else if (storeClass == kKilnLeftOutVertical)
	{
		reads = {above, below, above, below};
	}
	KilnLeftOutPixel result = {};
	result.pixel = static_cast<std::uint8_t>(pixel);
	for (unsigned i = 0; i < 4; ++i)
	{
		result.reads[i] = static_cast<std::uint8_t>(reads[i]);
	}
	return result;
}

/// For the three classes of pixels that are left out, each pixel of the window.
using LeftOutTable = std::array<std::array<KilnLeftOutPixel, kKilnMaxWindow>, 3>;
constexpr LeftOutTable makeLeftOutTable()
{
	LeftOutTable table = {};
	for (int i = 0; i < 3; ++i)
	{
		for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
		{
			table[i][pixel] = leftOutAt(pixel / kWidth2Bpp, pixel % kWidth2Bpp, kKilnLeftOut + i);
		}
	}
	return table;
}
constexpr LeftOutTable kLeftOutTable = makeLeftOutTable();

/// Notes that a pixel is read by one that is left out, once.
void addReader(KilnStoredPixel& stored, std::uint8_t reader)
{
	if (stored.readerCount == 0 || stored.readers[stored.readerCount - 1] != reader)
	{
		stored.readers[stored.readerCount++] = reader;
	}
}

void listPixels2Bpp(const KilnBlendRecords& records, KilnWindowModel& model)
{
	constexpr std::uint8_t kNo = kKilnNoPixel;
	// Of each pixel, its place in the list of stored pixels.
	std::array<std::uint8_t, kKilnMaxWindow> places;
	model.storedCount = 0;
	for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
	{
		const KilnBlendRecord& record = records.pixels[pixel];
		if (record.storeClass < kKilnLeftOut)
		{
			places[pixel] = static_cast<std::uint8_t>(model.storedCount);
			model.stored[model.storedCount++] = {static_cast<std::uint8_t>(pixel), record.endsOnly, 0, {kNo, kNo, kNo, kNo}};
		}
	}
	model.leftOutCount = 0;
	for (int pixel = 0; pixel < kKilnMaxWindow; ++pixel)
	{
		const int storeClass = records.pixels[pixel].storeClass;
		if (storeClass >= kKilnLeftOut)
		{
			const KilnLeftOutPixel& entry = kLeftOutTable[storeClass - kKilnLeftOut][pixel];
			model.leftOut[model.leftOutCount++] = entry;
			for (const std::uint8_t neighbour : entry.reads)
			{
				if (records.pixels[neighbour].storeClass == kKilnStored)
				{
					addReader(model.stored[places[neighbour]], static_cast<std::uint8_t>(pixel));
				}
			}
		}
	}
	// The last one again, to a multiple of 4.
	for (; model.storedCount % 4 != 0; ++model.storedCount)
	{
		model.stored[model.storedCount] = model.stored[model.storedCount - 1];
	}
}
} // namespace

void PrepareWindowModel(const KilnBlendRecords& records, const KilnColour* window, const KilnNeighbourColours& colours, bool withRim,
                        KilnWindowModel& model)
{
	model.records = &records;
	// Without the block itself the sums are those of the others.
	constexpr int kCentre = 4;
	std::array<Lanes16, 9> pairs;
	for (int i = 0; i < 9; ++i)
	{
		pairs[i] = i == kCentre ? broadcastLanes(0) : kilnPairLanes(colours[i]);
	}
	constexpr std::array<int, 4> kGroupOffsets = {0, 1, 3, 4};
	const int pixelCount = records.bpp == 4 ? kKilnWindow4Bpp : kKilnMaxWindow;
	for (int pixel = 0; pixel < pixelCount; ++pixel)
	{
		const KilnBlendRecord& record = records.pixels[pixel];
		KilnPixelModel& entry = model.pixels[pixel];
		Lanes16 around = broadcastLanes(0);
		for (int i = 0; i < 4; ++i)
		{
			around = around + broadcastLanes(record.colourWeights[i]) * pairs[kGroupOffsets[record.quadrant] + kGroupOffsets[i]];
		}
		storeLanes(entry.around.data(), around);
		storeLanes(entry.blockWeight.data(), broadcastLanes(record.blockWeight));
		const std::uint16_t factor = static_cast<std::uint16_t>(kilnAlphaFactor(window[pixel]));
		const KilnColour& colour = window[pixel];
		entry.target = {colour[0], colour[1], colour[2], colour[3], colour[0], colour[1], colour[2], colour[3]};
		entry.scale = {1, 1, 1, factor, 1, 1, 1, factor};
	}

	model.rimError = 0;
	if (records.bpp != 4)
	{
		listPixels2Bpp(records, model);
		return;
	}
	for (int pixel = 0; pixel < kKilnWindow4Bpp; ++pixel)
	{
		const KilnBlendRecord& record = records.pixels[pixel];
		model.kinds[pixel] = kindOf(record, window[pixel]);
		if (record.localPalette)
		{
			model.palette[pixel] = paletteOf(record, colours);
		}
	}
	model.pixels[kKilnWindow4Bpp] = {};
	model.kinds[kKilnWindow4Bpp] = kKilnStandardPixel;
	if (withRim)
	{
		model.rimError = kilnRimError4Bpp(model);
	}
}
