#include "initialreps.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <new>

#include "analygrapprop.h"
#include "paletteentries.h"
#include "pickreps.h"
#include "representable.h"

namespace
{
using WindowWeights = std::array<float, kKilnMaxWindow>;

constexpr int kPaletteErrorLimit = 36;

/// A block's window, and the weights with which its pixels count in each of the three boxes.
struct BlockWindow
{
	std::array<KilnColour, kKilnMaxWindow> pixels;
	std::array<WindowWeights, 3> weights;
	/// The alpha that stands in for 0 in the second box of the first generation, so that transparent pixels do not turn its axes.
	float meanAlpha = 0;
	/// Some pixel that counts has alpha 0, so that modes with and without transparent pixels differ.
	bool hasAlphaZero = false;
};

/// The weighted mean alpha of the pixels that are not transparent.
float meanVisibleAlpha(const KilnColour* pixels, const float* weights, int count)
{
	float sum = 0;
	float total = 0;
	for (int i = 0; i < count; ++i)
	{
		if (pixels[i][3] != 0)
		{
			sum += weights[i] * static_cast<float>(pixels[i][3]);
			total += weights[i];
		}
	}
	return total > 0 ? sum / total : 0;
}

/// The range of each channel.
struct ChannelRange
{
	KilnColourF minimum = {256, 256, 256, 256};
	KilnColourF maximum = {-1, -1, -1, -1};

	void add(const KilnColourF& colour)
	{
		for (int c = 0; c < 4; ++c)
		{
			minimum[c] = std::min(minimum[c], colour[c]);
			maximum[c] = std::max(maximum[c], colour[c]);
		}
	}

	bool isSingleColour() const
	{
		return minimum == maximum;
	}
};

/// Bounds the pixels of non-zero weight along their own axes.
/// @param alphaForZero  when not null, what alpha 0 is replaced with.
/// @return whether they have one colour.
bool boundPixels(const KilnColour* pixels, const float* weights, int count, const float* alphaForZero, OrientedBBox& box)
{
	const auto isReplaced = [alphaForZero](const KilnColour& pixel)
	{
		return alphaForZero != nullptr && pixel[3] == 0;
	};
	const auto replaced = [alphaForZero](const KilnColour& pixel)
	{
		KilnColourF colour = ConvertIntPixelToFloat(pixel);
		colour[3] = *alphaForZero;
		return colour;
	};

	CovarSum sum;
	ChannelRange range;
	for (int i = 0; i < count; ++i)
	{
		if (weights[i] == 0)
		{
			continue;
		}
		if (isReplaced(pixels[i]))
		{
			const KilnColourF colour = replaced(pixels[i]);
			UpdateCovarSumF(sum, colour.data(), weights[i]);
			range.add(colour);
		}
		else
		{
			UpdateCovarSumI(sum, pixels[i].data(), weights[i]);
			range.add(ConvertIntPixelToFloat(pixels[i]));
		}
	}

	if (range.isSingleColour())
	{
		InitOrientedBBoxToSingleColour(box, {});
		box.minimum = box.maximum = range.minimum;
		return true;
	}
	KilnMatrix axes;
	CovarSumToSortedEigenVecs(sum, CovarSumMeans(sum), axes);
	InitOrientedBBox(box, axes);
	for (int i = 0; i < count; ++i)
	{
		if (weights[i] == 0)
		{
			continue;
		}
		if (isReplaced(pixels[i]))
		{
			AddFColourToOrientedBBox(box, replaced(pixels[i]));
		}
		else
		{
			AddIColourToOrientedBBox(box, pixels[i]);
		}
	}
	if (OrientedBBoxIsEmpty(box))
	{
		AddIColourToOrientedBBox(box, {});
	}
	return false;
}

void copyWindow(const KilnThreadRecord& record, int blockX, int blockY, BlockWindow& window)
{
	const KilnSettings& settings = *record.settings;
	const int count = settings.windowPixels();
	CopyWindow(*record.image, settings, blockX, blockY, window.pixels.data());
	for (int i = 0; i < count; ++i)
	{
		window.weights[0][i] = window.weights[1][i] = record.windowWeights[i];
		window.weights[2][i] = record.centralMask[i] != 0 ? 1.0F : 0.0F;
	}
	window.meanAlpha = meanVisibleAlpha(window.pixels.data(), record.windowWeights, count);
}

/// Counts transparent pixels, and leaves those of the second generation out of the second box.
void countTransparentPixels(const KilnSettings& settings, BlockWindow& window, KilnBlock& block)
{
	for (int i = 0; i < settings.windowPixels(); ++i)
	{
		const KilnColour& pixel = window.pixels[i];
		window.hasAlphaZero = window.hasAlphaZero || pixel[3] == 0;
		if (settings.bpp != 4 || !isTransparentPixel(settings.tessel2, pixel))
		{
			continue;
		}
		block.transparentPixels += window.weights[0][i] != 0 ? 1 : 0;
		if (settings.tessel2)
		{
			window.weights[1][i] = 0;
		}
	}
}

void fillStatistics(const KilnSettings& settings, BlockWindow& window, KilnBlock& block)
{
	const int count = settings.windowPixels();
	const KilnColour* pixels = window.pixels.data();
	countTransparentPixels(settings, window, block);
	block.singleColour = boundPixels(pixels, window.weights[0].data(), count, nullptr, block.boxes[0]);
	if (block.singleColour)
	{
		// The centre always counts.
		block.colour = pixels[count / 2];
	}
	if (block.transparentPixels == 0)
	{
		block.boxes[1] = block.boxes[0];
	}
	else
	{
		const float* alpha = settings.tessel2 ? nullptr : &window.meanAlpha;
		boundPixels(pixels, window.weights[1].data(), count, alpha, block.boxes[1]);
	}
	boundPixels(pixels, window.weights[2].data(), count, nullptr, block.boxes[2]);

	block.isGraphics = kilnIsGraphics(pixels, settings);
}

/// The pair of palette entries that stands for the window with the least error.
KilnPair pickPalettePair(const KilnSettings& settings, const BlockWindow& window, const KilnBlock& block)
{
	const std::vector<KilnColour> entries = GeneratePaletteEntries(block, window.pixels.data(), PalettePixels4bpp.data(),
	                                                               settings.windowPixels(), kKilnPaletteEntries, kPaletteErrorLimit);
	if (entries.size() < 3)
	{
		return MapToRepresentableColoursInt(settings.tessel2, entries.front(), entries.back());
	}
	KilnPair best;
	int bestError = INT_MAX;
	for (std::size_t i = 0; i + 1 < entries.size(); ++i)
	{
		for (std::size_t j = i + 1; j < entries.size(); ++j)
		{
			const KilnPair pair = MapToRepresentableColoursInt(settings.tessel2, entries[i], entries[j]);
			int error = 0;
			for (int k = 0; k < kKilnWindow4Bpp; ++k)
			{
				if (PalettePixels4bpp[k] != 0)
				{
					error += std::min(SQColDist(window.pixels[k], pair.a), SQColDist(window.pixels[k], pair.b));
				}
			}
			if (error < bestError)
			{
				best = pair;
				bestError = error;
			}
		}
	}
	return best;
}

void setSlot(KilnBlock& block, int mode, int box, const KilnPair& pair)
{
	KilnModeSlot& slot = block.slot(mode);
	slot.mode = static_cast<std::uint8_t>(mode);
	slot.count = 1;
	slot.box = static_cast<std::uint8_t>(box);
	slot.kept[0] = {pair, 0};
}

void copySlot(KilnBlock& block, int mode, int from)
{
	block.slot(mode) = block.slot(from);
	block.slot(mode).mode = static_cast<std::uint8_t>(mode);
}

/// The pair of a mode that starts from the pixels of one of the weight sets.
KilnPair pickPair(const KilnSettings& settings, const BlockWindow& window, const KilnBlock& block, const WindowWeights& weights,
                  const OrientedBBox& box)
{
	if (block.singleColour)
	{
		return MapToRepresentableColoursInt(settings.tessel2, block.colour, block.colour);
	}
	return PickRepsByProjectingPixelsOntoAxis(settings, window.pixels.data(), weights.data(), box.axes[0]);
}

void setStart(const KilnSettings& settings, const BlockWindow& window, KilnBlock& block, int mode)
{
	const int larger = SizeOfOrientedBBox(block.boxes[1]) > SizeOfOrientedBBox(block.boxes[0]) ? 1 : 0;
	switch (mode)
	{
	case kKilnStandard:
	case kKilnDirect:
		setSlot(block, mode, larger, pickPair(settings, window, block, window.weights[0], block.boxes[larger]));
		break;
	case kKilnPunchThrough:
		if (!window.hasAlphaZero)
		{
			copySlot(block, mode, kKilnStandard);
		}
		else
		{
			WindowWeights weights = window.weights[0];
			for (int i = 0; i < settings.windowPixels(); ++i)
			{
				weights[i] = window.pixels[i][3] == 0 ? 0 : weights[i];
			}
			// The larger box may owe its size to the transparent pixels.
			setSlot(block, mode, 1, pickPair(settings, window, block, weights, block.boxes[1]));
		}
		break;
	case kKilnHard:
	case kKilnDirectHard:
		setSlot(block, mode, 2, pickPair(settings, window, block, window.weights[2], block.boxes[2]));
		break;
	case kKilnHardPalette:
		setSlot(block, mode, 2, pickPalettePair(settings, window, block));
		break;
	default:
		if (mode > kKilnDirect && mode <= kKilnInterpolatedVertical)
		{
			copySlot(block, mode, kKilnDirect);
		}
		else if (mode > kKilnDirectHard && mode <= kKilnInterpolatedVerticalHard)
		{
			copySlot(block, mode, kKilnDirectHard);
		}
		else
		{
			std::fputs("Error: Unexpected mode in SetUpStandardRepStarts()!\n", stderr);
		}
		break;
	}
}

int startingMode(const KilnSettings& settings, const KilnBlock& block, const std::array<int, kKilnModeSlots>& modes)
{
	if (settings.bpp == 4)
	{
		return block.transparentPixels > 0 && (settings.tessel2 || settings.punchThrough) ? modes[1] : modes[0];
	}
	constexpr std::array<int, 4> kByInterpolation = {kKilnInterpolated, kKilnInterpolated, kKilnInterpolatedHorizontal,
	                                                 kKilnInterpolatedVertical};
	return kByInterpolation[block.preferredInterpolation];
}

void startBlock(const KilnThreadRecord& record, int blockX, int blockY)
{
	const KilnSettings& settings = *record.settings;
	KilnBlock& block = (*record.blocks)[blockY][blockX];
	BlockWindow window;
	copyWindow(record, blockX, blockY, window);
	fillStatistics(settings, window, block);

	std::array<int, kKilnModeSlots> modes;
	const int count = ConstructListOfNeededModes(settings, block, settings.tessel2, modes);
	for (int i = 0; i < count; ++i)
	{
		setStart(settings, window, block, modes[i]);
	}
	block.currentMode = startingMode(settings, block, modes);
}
} // namespace

void* RunAGenerateStatsSetThread(void* threadRecord)
{
	KilnThreadRecord& record = *static_cast<KilnThreadRecord*>(threadRecord);
	try
	{
		const int blocksX = record.settings->blocksX;
		record.forEachRow(
		    [&record, blocksX](int y)
		    {
			    (*record.blocks)[y].resize(static_cast<std::size_t>(blocksX));
			    for (int x = 0; x < blocksX; ++x)
			    {
				    startBlock(record, x, y);
			    }
		    });
	}
	catch (const std::bad_alloc&)
	{
		std::fputs("PANIC!. Failed memory allocation in RunAGenerateStatsSetThread\n", stderr);
		record.failed = true;
	}
	return nullptr;
}
