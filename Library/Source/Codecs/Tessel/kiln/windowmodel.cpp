#include "windowmodel.h"

#include <cstring>

#include "palettetables.h"

namespace
{
constexpr int kWindowSide4Bpp = 9;

constexpr std::array<std::uint8_t, kKilnWindow4Bpp> makePlaces()
{
	std::array<std::uint8_t, kKilnWindow4Bpp> places = {};
	unsigned own = 0;
	unsigned outer = kKilnOwnPlaces;
	unsigned rim = kKilnRimPlace;
	for (unsigned y = 0; y < kWindowSide4Bpp; ++y)
	{
		for (unsigned x = 0; x < kWindowSide4Bpp; ++x)
		{
			const bool isOwn = x >= 2 && x < 6 && y >= 2 && y < 6;
			const bool isRim = x == 0 || y == 0 || x == 8 || y == 8;
			places[kWindowSide4Bpp * y + x] = static_cast<std::uint8_t>(isOwn ? own++ : isRim ? rim++ : outer++);
		}
	}
	return places;
}

/// Four channels side by side in 16 bits each: sums of shares of them stay apart.
using Channels = std::uint64_t;

Channels workingChannels(const KilnColour& colour)
{
	Channels channels = 0;
	for (int c = 0; c < 4; ++c)
	{
		channels |= static_cast<Channels>(colour[c] & kKilnWorkingMask[c]) << (16 * c);
	}
	return channels;
}

void setChannels(KilnRow* rows, int place, Channels channels)
{
	rows[0].set(place, static_cast<std::uint16_t>(channels), static_cast<std::uint16_t>(channels >> 16));
	rows[1].set(place, static_cast<std::uint16_t>(channels >> 32), static_cast<std::uint16_t>(channels >> 48));
}

/// How a pixel lies among the nine blocks, and its shares of them.
struct PixelGeometry
{
	std::uint8_t pixel;
	std::uint8_t place;
	/// P of its group, and the block in which it lies.
	std::uint8_t blockOfP;
	std::uint8_t ownBlock;
	/// The other blocks of its group.
	std::uint8_t others[3];
	/// Of these and of the block itself, where blocks blend, and where they do not.
	std::uint8_t shares[2][3];
	std::uint8_t ownShares[2];
};

constexpr int kCentre = 4;

/// The pixels of a window of either rate, in the order of their places.
struct Geometry
{
	std::array<PixelGeometry, kKilnMaxWindow> pixels;
	int pixelCount;
	/// Without the rim of 4bpp.
	int innerCount;

	explicit Geometry(int bpp)
	{
		const int blockWidth = bpp == 4 ? 4 : 8;
		const int windowWidth = 2 * blockWidth + 1;
		const int windowHeight = 2 * kKilnBlockHeight + 1;
		pixelCount = windowWidth * windowHeight;
		innerCount = bpp == 4 ? kKilnInnerPixels : pixelCount;
		const std::uint8_t* linear = bpp == 4 ? LinWeights4xU8.data() : LinWeights8xU8.data();
		const std::uint8_t* hem = bpp == 4 ? HemWeights4xU8.data() : HemWeights8xU8.data();
		for (int i = 0; i < pixelCount; ++i)
		{
			const int x = i % windowWidth;
			const int y = i / windowWidth;
			const int place = bpp == 4 ? kKilnPlaceOf4Bpp[i] : i;
			// The rim follows at once.
			PixelGeometry& pixel = pixels[bpp == 4 && place >= kKilnRimPlace ? place - kKilnRimPlace + kKilnInnerPixels : place];
			pixel.pixel = static_cast<std::uint8_t>(i);
			pixel.place = static_cast<std::uint8_t>(place);
			// The last row and column lie on the centres of blocks: their P is that block, while their weights give it all as R or Q.
			pixel.blockOfP = static_cast<std::uint8_t>(3 * (y / kKilnBlockHeight) + x / blockWidth);
			pixel.ownBlock = static_cast<std::uint8_t>(3 * ((y + 2) / kKilnBlockHeight) + (x + blockWidth / 2) / blockWidth);
			const int right = x / blockWidth == 0 ? 0 : 1;
			const int lower = y / kKilnBlockHeight == 0 ? 0 : 1;
			int other = 0;
			for (int k = 0; k < 4; ++k)
			{
				const int block = 3 * (lower + k / 2) + right + k % 2;
				std::array<std::uint8_t, 2> shares;
				for (const int hard : {0, 1})
				{
					const int alongX = (hard != 0 ? hem : linear)[x];
					const int alongY = (hard != 0 ? HemWeights4xU8 : LinWeights4xU8)[y];
					shares[hard] = static_cast<std::uint8_t>((k % 2 != 0 ? alongX : 8 - alongX) * (k / 2 != 0 ? alongY : 8 - alongY));
				}
				if (block == kCentre)
				{
					pixel.ownShares[0] = shares[0];
					pixel.ownShares[1] = shares[1];
					continue;
				}
				pixel.others[other] = static_cast<std::uint8_t>(block);
				pixel.shares[0][other] = shares[0];
				pixel.shares[1][other] = shares[1];
				++other;
			}
		}
	}
};

const Geometry& geometry(int bpp)
{
	static const Geometry k4Bpp(4);
	static const Geometry k2Bpp(2);
	return bpp == 4 ? k4Bpp : k2Bpp;
}

int preparedPixels(const Geometry& shape, const KilnWindowModel& model)
{
	return model.withRim ? shape.pixelCount : shape.innerCount;
}

/// The four candidates of a palette pixel.
void setPalette(int pixel, int place, const KilnNeighbourColours& colours, KilnWindowModel& model)
{
	model.isPalette.setBoth(place, 0xffff);
	// A and B of P, Q, R and S, whose blocks lie so from P.
	constexpr std::array<int, 4> kGroupOffsets = {0, 1, 3, 4};
	const int x = pixel % kWindowSide4Bpp;
	const int y = pixel / kWindowSide4Bpp;
	const int first = (x < 4 ? 0 : 1) + (y < 4 ? 0 : 3);
	for (int k = 0; k < 4; ++k)
	{
		const unsigned slot = PaletteModeSelection[pixel][k];
		const int block = first + kGroupOffsets[slot / 2];
		const bool isB = (slot & 1) != 0;
		const bool isOwn = block == kCentre;
		model.showsA[k].setBoth(place, isOwn && !isB ? 0xffff : 0);
		model.showsB[k].setBoth(place, isOwn && isB ? 0xffff : 0);
		const KilnColour colour = isOwn ? KilnColour{} : isB ? colours[block].b : colours[block].a;
		model.fixed[k][0].set(place, colour[0], colour[1]);
		model.fixed[k][1].set(place, colour[2], colour[3]);
	}
}

void setKinds4Bpp(const KilnColour* window, const KilnNeighbourColours& colours, const KilnNeighbourModes& modes, unsigned hardFlags,
                  KilnWindowModel& model)
{
	for (std::uint8_t& kind : model.groupKinds)
	{
		kind = kKilnStandardGroup;
	}
	const Geometry& shape = geometry(4);
	const int count = preparedPixels(shape, model);
	for (int i = 0; i < count; ++i)
	{
		const PixelGeometry& pixel = shape.pixels[i];
		const int place = pixel.place;
		const bool isHard = ((hardFlags >> pixel.blockOfP) & 1) != 0;
		const bool isModulated = (modes[pixel.ownBlock] & 1) != 0;
		const bool isPunched = isModulated && !isHard;
		const bool isPalette = isModulated && isHard && PaletteModeSelection[pixel.pixel][0] != kKilnNoSlot;
		std::uint8_t& kind = model.groupKinds[place / kKilnGroupPlaces];
		if (isPunched)
		{
			kind |= kKilnPunchThroughGroup;
		}
		if (isPalette)
		{
			kind |= kKilnPaletteGroup;
			setPalette(pixel.pixel, place, colours, model);
		}
		else
		{
			model.isPalette.setBoth(place, 0);
		}
		model.punched.setBoth(place, isPunched ? 0xffff : 0);
		model.isFree.setBoth(place, isPunched && window[pixel.pixel][3] == 0 ? 0xffff : 0);
	}
}

constexpr int kWidth2Bpp = 17;
constexpr int kHeight2Bpp = 9;

/// Neighbours on both sides of an axis as a pixel between them reads them; at an edge of the window the other one stands in.
void setQuarters(int place, int axis, int position, int size, unsigned each, KilnWindowModel& model)
{
	model.quarters[2 * axis].setBoth(place, position == 0 ? 0 : position == size - 1 ? 2 * each : each);
	model.quarters[2 * axis + 1].setBoth(place, position == size - 1 ? 0 : position == 0 ? 2 * each : each);
}

/// Whether a pixel of a class is left out and reads its neighbours along an axis, 0 for x and 1 for y.
bool readsAlong(int storeClass, int axis)
{
	return storeClass == kKilnLeftOut || storeClass == (axis == 0 ? kKilnLeftOutHorizontal : kKilnLeftOutVertical);
}

void setKinds2Bpp(const KilnNeighbourModes& modes, KilnWindowModel& model)
{
	std::array<std::uint8_t, kKilnMaxWindow> classes;
	const Geometry& shape = geometry(2);
	model.hasLeftOut = false;
	for (int i = 0; i < kKilnMaxWindow; ++i)
	{
		const int x = i % kWidth2Bpp;
		const int y = i / kWidth2Bpp;
		const KilnStorage storage = kilnStorageOf(modes[shape.pixels[i].ownBlock], x, y);
		classes[i] = storage.storeClass;
		model.hasLeftOut = model.hasLeftOut || storage.storeClass >= kKilnLeftOut;
		model.endsOnly.setBoth(i, storage.endsOnly ? 0xffff : 0);
		model.isLeftOut.setBoth(i, storage.storeClass >= kKilnLeftOut ? 0xffff : 0);
		const bool both = storage.storeClass == kKilnLeftOut;
		setQuarters(i, 0, x, kWidth2Bpp, readsAlong(storage.storeClass, 0) ? (both ? 1 : 2) : 0, model);
		setQuarters(i, 1, y, kHeight2Bpp, readsAlong(storage.storeClass, 1) ? (both ? 1 : 2) : 0, model);
	}
	struct Division
	{
		std::uint16_t factor;
		std::uint16_t bias;
	};
	// By the number of residuals; without any the mean is 0.
	constexpr std::array<Division, 5> kDivisions = {{{0, 0}, {32768, 768}, {16384, 384}, {10923, 256}, {8192, 192}}};
	for (int i = 0; i < kKilnMaxWindow; ++i)
	{
		const int x = i % kWidth2Bpp;
		const int y = i / kWidth2Bpp;
		const bool isInside[4] = {x != 0, x != kWidth2Bpp - 1, y != 0, y != kHeight2Bpp - 1};
		unsigned readers = 0;
		for (unsigned k = 0; k < 4; ++k)
		{
			const bool reads =
			    classes[i] == kKilnStored && isInside[k] && readsAlong(classes[i + kKilnNeighbourSteps[k]], static_cast<int>(k / 2));
			model.isReader[k].setBoth(i, reads ? 0xffff : 0);
			readers += reads ? 1 : 0;
		}
		model.divisionFactor.setBoth(i, kDivisions[readers].factor);
		model.divisionBias.setBoth(i, kDivisions[readers].bias);
	}
}
} // namespace

const std::array<std::uint8_t, kKilnWindow4Bpp> kKilnPlaceOf4Bpp = makePlaces();

void InitialiseWindowModel(const KilnSettings& settings, KilnWindowModel& model)
{
	std::memset(&model, 0, sizeof(model));
	for (int i = 0; i < kKilnMaxWindow && settings.bpp == 2; ++i)
	{
		const int x = i % kWidth2Bpp;
		const int y = i / kWidth2Bpp;
		const bool isOwn = x >= 4 && x < 12 && y >= 2 && y < 6;
		const bool isRim = x == 0 || y == 0 || x == kWidth2Bpp - 1 || y == kHeight2Bpp - 1;
		model.isOwn.setBoth(i, isOwn ? 0xffff : 0);
		model.isOuter.setBoth(i, isOwn || isRim ? 0 : 0xffff);
	}
}

void kilnSetTargets(const KilnSettings& settings, const KilnColour* window, bool withRim, KilnWindowModel& model)
{
	model.tessel2 = settings.tessel2;
	model.withRim = withRim;
	const Geometry& shape = geometry(settings.bpp);
	const int count = preparedPixels(shape, model);
	for (int i = 0; i < count; ++i)
	{
		const int place = shape.pixels[i].place;
		const KilnColour& colour = window[shape.pixels[i].pixel];
		model.target[0].set(place, colour[0], colour[1]);
		model.target[1].set(place, colour[2], colour[3]);
		model.scale.set(place, 1, static_cast<unsigned>(kilnAlphaFactor(colour)));
	}
}

unsigned kilnHardFlags(const KilnNeighbourModes& modes, int hardVariant, int bpp)
{
	unsigned flags = 0;
	for (unsigned i = 0; i < 9; ++i)
	{
		flags |= (modes[i] & kilnHardBit(bpp)) != 0 ? 1U << i : 0;
	}
	// The blocks that are P of a group in which the block itself stands.
	constexpr std::array<unsigned, 3> kFlipped = {0, 1, 3};
	for (unsigned bit = 0; bit < 3; ++bit)
	{
		flags ^= ((static_cast<unsigned>(hardVariant) >> bit) & 1) << kFlipped[bit];
	}
	return flags;
}

void kilnSetSurroundings(const KilnSettings& settings, const KilnNeighbourColours& colours, unsigned hardFlags, KilnWindowModel& model)
{
	std::array<Channels, 9> a;
	std::array<Channels, 9> b;
	for (int i = 0; i < 9; ++i)
	{
		a[i] = workingChannels(colours[i].a);
		b[i] = workingChannels(colours[i].b);
	}
	const Geometry& shape = geometry(settings.bpp);
	const int count = preparedPixels(shape, model);
	for (int i = 0; i < count; ++i)
	{
		const PixelGeometry& pixel = shape.pixels[i];
		const unsigned hard = (hardFlags >> pixel.blockOfP) & 1;
		const std::uint8_t* shares = pixel.shares[hard];
		const std::uint8_t* others = pixel.others;
		// Of the groups on the rim the block itself may be one without a share.
		setChannels(model.aroundA, pixel.place, shares[0] * a[others[0]] + shares[1] * a[others[1]] + shares[2] * a[others[2]]);
		setChannels(model.aroundB, pixel.place, shares[0] * b[others[0]] + shares[1] * b[others[1]] + shares[2] * b[others[2]]);
		model.share.setBoth(pixel.place, pixel.ownShares[hard]);
	}
}

void kilnSetKinds(const KilnSettings& settings, const KilnColour* window, const KilnNeighbourColours& colours,
                  const KilnNeighbourModes& modes, unsigned hardFlags, KilnWindowModel& model)
{
	if (settings.bpp == 4)
	{
		setKinds4Bpp(window, colours, modes, hardFlags, model);
	}
	else
	{
		setKinds2Bpp(modes, model);
	}
}
