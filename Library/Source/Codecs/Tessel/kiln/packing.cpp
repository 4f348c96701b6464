#include "packing.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include "decompress.h"
#include "palettetables.h"

namespace
{
constexpr std::uint32_t kModulationFlag = 1;
constexpr std::uint32_t kHardFlag = 1U << 15;
constexpr std::uint32_t kOpaqueA = 1U << 15;
constexpr std::uint32_t kOpaqueB = 1U << 31;
/// Bits of the modulation word of a 2bpp block: interpolation in one direction, and that direction vertical.
constexpr std::uint32_t kOneDirection = 1;
constexpr std::uint32_t kVertical = 1U << 20;

/// The top bits of a channel.
std::uint32_t top(std::uint8_t channel, int bits)
{
	return static_cast<std::uint32_t>(channel >> (8 - bits));
}

std::uint32_t packColourA(const KilnColour& a, bool opaque)
{
	if (opaque)
	{
		return top(a[0], 5) << 10 | top(a[1], 5) << 5 | top(a[2], 4) << 1;
	}
	return top(a[3], 3) << 12 | top(a[0], 4) << 8 | top(a[1], 4) << 4 | top(a[2], 3) << 1;
}

std::uint32_t packColourB(const KilnColour& b, bool opaque)
{
	if (opaque)
	{
		return kOpaqueB | top(b[0], 5) << 26 | top(b[1], 5) << 21 | top(b[2], 5) << 16;
	}
	return top(b[3], 3) << 28 | top(b[0], 4) << 24 | top(b[1], 4) << 20 | top(b[2], 4) << 16;
}

std::uint32_t packColours(const KilnPair& pair, int mode, const KilnSettings& settings)
{
	const bool flag = settings.bpp == 4 ? (mode & 1) != 0 : (mode & 3) != 0;
	const std::uint32_t flagBit = flag ? kModulationFlag : 0;
	if (settings.tessel2)
	{
		const bool opaque = pair.a[3] == 255 && pair.b[3] == 255;
		const bool hard = (mode & kilnHardBit(settings.bpp)) != 0;
		return packColourA(pair.a, opaque) | packColourB(pair.b, opaque) | flagBit | (hard ? kHardFlag : 0);
	}
	const bool opaqueA = pair.a[3] == 255;
	return packColourA(pair.a, opaqueA) | (opaqueA ? kOpaqueA : 0) | packColourB(pair.b, pair.b[3] == 255) | flagBit;
}

/// The modulation word, from the last pixel down to the first.
std::uint32_t packModulation(const KilnWindowModel& model, const KilnFittingParams& params, const KilnNeighbourModes& modes,
                             const KilnSettings& settings)
{
	std::uint32_t word = 0;
	for (int y = settings.blockHeight - 1; y >= 0; --y)
	{
		for (int x = settings.blockWidth - 1; x >= 0; --x)
		{
			const int windowX = x + settings.blockWidth / 2;
			const int windowY = y + settings.blockHeight / 2;
			const int pixel = settings.windowWidth * windowY + windowX;
			if (settings.bpp == 4)
			{
				const int place = kKilnPlaceOf4Bpp[pixel];
				const std::uint32_t index = params.indices.at(place);
				word = word << 2 | (model.isPalette.at(place) != 0 ? PalModRemapper4Col[4 * y + x][index] : index);
				continue;
			}
			constexpr int kCentre = 4;
			const std::uint32_t index = params.indices.at(pixel);
			const KilnStoreClass storeClass = kilnStorageOf(modes[kCentre], windowX, windowY).storeClass;
			if (storeClass == kKilnDirectPixel)
			{
				word = word << 1 | index >> 1;
			}
			else if (storeClass == kKilnStored)
			{
				word = word << 2 | index;
			}
		}
	}
	return word;
}

/// The bits in which a 2bpp block keeps its interpolation. The pixels that lend them can only be 0 or 3, and have their other bit.
std::uint32_t setInterpolation(std::uint32_t word, int mode)
{
	switch (mode & 3)
	{
	case 1:
		return word & ~kOneDirection;
	case 2:
		return (word | kOneDirection) & ~kVertical;
	case 3:
		return word | kOneDirection | kVertical;
	default:
		return word;
	}
}

void writeLittleEndian(unsigned char* out, std::uint32_t word)
{
	for (int i = 0; i < 4; ++i)
	{
		out[i] = static_cast<unsigned char>(word >> (8 * i));
	}
}
} // namespace

KilnPackingSpace::KilnPackingSpace(const KilnSettings& settings) : kernels(kilnKernels())
{
	InitialiseWindowModel(settings, model);
	InitialisePackedFittingParams(params);
}

KilnWords PackLocalBlock(KilnPackingSpace& space, const KilnImage& image, const KilnSettings& settings, const KilnBlockRows& blocks,
                         int blockX, int blockY, KilnErrors* errors)
{
	if (settings.bpp != 2 && settings.bpp != 4)
	{
		std::fputs("Exiting! 1BPP mode not yet implemented (PackLocalBlock)\n", stderr);
		std::abort();
	}
	std::array<KilnColour, kKilnMaxWindow> window;
	CopyWindow(image, settings, blockX, blockY, window.data());
	KilnNeighbourColours colours;
	KilnNeighbourModes modes;
	GatherNeighbours(blocks, settings, blockX, blockY, colours, modes);

	const unsigned hardFlags = kilnHardFlags(modes, 0, settings.bpp);
	kilnSetTargets(settings, window.data(), errors != nullptr && settings.bpp == 4, space.model);
	kilnSetSurroundings(settings, colours, hardFlags, space.model);
	kilnSetKinds(settings, window.data(), colours, modes, hardFlags, space.model);
	const KilnBlock& block = blocks[blockY][blockX];
	const KilnPair& pair = block.current().pair;
	KilnErrors found;
	if (settings.bpp == 4)
	{
		space.model.rimError = errors != nullptr ? space.kernels.rimError4Bpp(space.model) : 0;
		// The block's own area comes first, and more is not needed.
		const std::uint64_t limit = errors != nullptr ? UINT64_MAX : 0;
		space.kernels.evaluate4Bpp(space.model, pair, limit, kKilnIndices, space.params, found);
	}
	else
	{
		space.kernels.evaluate2Bpp(space.model, pair, kKilnIndices, space.params, found);
	}
	if (errors != nullptr)
	{
		*errors = found;
	}

	KilnWords words;
	words.modulation = packModulation(space.model, space.params, modes, settings);
	if (settings.bpp == 2)
	{
		words.modulation = setInterpolation(words.modulation, block.currentMode);
	}
	words.colours = packColours(pair, block.currentMode, settings);
	return words;
}

void* RunAPackingThread(void* threadRecord)
{
	auto& record = *static_cast<KilnThreadRecord*>(threadRecord);
	const KilnSettings& settings = *record.settings;
	const auto numX = static_cast<unsigned>(settings.blocksX);
	const auto numY = static_cast<unsigned>(settings.blocksY);
	try
	{
		const auto space = std::make_unique<KilnPackingSpace>(settings);
		record.forEachRow(
		    [&](int y)
		    {
			    for (int x = 0; x < settings.blocksX; ++x)
			    {
				    const KilnWords words = PackLocalBlock(*space, *record.image, settings, *record.blocks, x, y);
				    const auto place = TwiddleUV(numY, numX, static_cast<unsigned>(y), static_cast<unsigned>(x), record.linear ? 1 : 0);
				    unsigned char* out = record.out + std::size_t{8} * place;
				    writeLittleEndian(out, words.modulation);
				    writeLittleEndian(out + 4, words.colours);
			    }
		    });
	}
	catch (const std::bad_alloc&)
	{
		std::fputs("Err: Failed to allocate packing working space!!\n", stderr);
		record.failed = true;
	}
	return nullptr;
}
