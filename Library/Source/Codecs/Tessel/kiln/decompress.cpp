#include "decompress.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../TesselBlock.h"
#include "../TesselTwiddle.h"

using zortexture::TesselColour;
using zortexture::TesselGroup;

// The published table; the first cell is the block's centre, where it is not used.
const unsigned char LocalPaletteMap[4][4][4] = {
    {{0, 0, 0, 0}, {0, 1, 4, 5}, {0, 1, 4, 5}, {0, 1, 4, 5}},
    {{0, 1, 6, 7}, {0, 1, 4, 7}, {0, 1, 4, 5}, {2, 1, 4, 5}},
    {{0, 1, 6, 7}, {0, 1, 6, 7}, {0, 3, 6, 5}, {2, 3, 4, 5}},
    {{0, 1, 6, 7}, {0, 3, 6, 7}, {2, 3, 6, 7}, {2, 3, 6, 5}},
};

namespace
{
constexpr int kBlockHeight = 4;

int blockWidthOf(int bpp)
{
	return bpp == 4 ? 4 : 8;
}

/// The blocks P, Q, R, S around an area.
struct BlockGroup
{
	std::array<unsigned long long, 4> addresses;
	KilnPlane coloursA;
	KilnPlane coloursB;
	/// Whether the area is hard, which P alone decides.
	bool hard;
	TesselGroup values;
	TesselGroup modes;
	KilnPalette palette;
};

/// What does not change from pixel to pixel.
struct Layout
{
	const unsigned char* bytes;
	unsigned numX;
	unsigned numY;
	int bpp;
	bool secondGeneration;
	int linear;
};

void unpackGroup(const Layout& layout, BlockGroup& group)
{
	constexpr unsigned kOpaqueA = 1U << 15;
	constexpr unsigned kHard = 1U << 15;
	constexpr unsigned kOpaqueB = 1U << 31;
	const unsigned blockWidth = static_cast<unsigned>(blockWidthOf(layout.bpp));
	for (unsigned i = 0; i < 4; ++i)
	{
		zortexture::TesselBlockWords block;
		if (group.addresses[i] < static_cast<unsigned long long>(layout.numX) * layout.numY)
		{
			static_assert(sizeof(block) == 8);
			std::memcpy(&block, layout.bytes + group.addresses[i] * sizeof(block), sizeof(block));
		}
		const unsigned word = block.getColourWord();
		const bool opaqueB = (word & kOpaqueB) != 0;
		const bool opaqueA = layout.secondGeneration ? opaqueB : (word & kOpaqueA) != 0;
		group.coloursA[i] = zortexture::unpackTesselColour(zortexture::expandTesselColourA(word, opaqueA));
		group.coloursB[i] = zortexture::unpackTesselColour(zortexture::expandTesselColourB(word, opaqueB));
		if (layout.secondGeneration && !opaqueB)
		{
			// The alpha levels of B are the odd ones, so that it reaches 15.
			group.coloursB[i][3] += 1;
		}
		if (i == 0)
		{
			group.hard = layout.secondGeneration && (word & kHard) != 0;
		}
		zortexture::unpackModulations(block, (i & 1) * blockWidth, (i >> 1) * kBlockHeight, group.values, group.modes,
		                              static_cast<unsigned>(layout.bpp));
	}
	FillLocalPalette(group.coloursA, group.coloursB, group.palette);
}

TesselColour mixColours(const TesselColour& a, const TesselColour& b, unsigned weight)
{
	TesselColour result;
	for (int c = 0; c < 4; ++c)
	{
		result[c] = (a[c] * 8 + (b[c] - a[c]) * static_cast<int>(weight)) >> 3;
	}
	return result;
}

TesselColour smoothPixel(const Layout& layout, const BlockGroup& group, int x, int y)
{
	unsigned mode = 0;
	unsigned weight = 0;
	bool punchThrough = false;
	GetModulationValue(x, y, kKilnWordType, layout.bpp, false, group.values, group.modes, mode, weight, punchThrough);
	TesselColour a;
	TesselColour b;
	InterpolateColours(group.coloursA, kKilnWordType, layout.bpp, x, y, a);
	InterpolateColours(group.coloursB, kKilnWordType, layout.bpp, x, y, b);
	TesselColour result = mixColours(a, b, weight);
	if (punchThrough)
	{
		// Coloured transparency in the first generation, transparent black in the second.
		result = layout.secondGeneration ? TesselColour{} : TesselColour{result[0], result[1], result[2], 0};
	}
	return result;
}

TesselColour hardPixel(const Layout& layout, const BlockGroup& group, int x, int y)
{
	// Positions in the palette of colour A of P, Q, R, S; B follows.
	constexpr std::array<unsigned, 4> kPaletteEntry = {0, 4, 6, 2};
	unsigned mode = 0;
	unsigned weight = 0;
	bool punchThrough = false;
	GetModulationValue(x, y, kKilnWordType, layout.bpp, true, group.values, group.modes, mode, weight, punchThrough);
	const bool onCentre = (x & 3) == 2 && (y & 3) == 2;
	if (layout.bpp == 4 && mode == 1 && !onCentre)
	{
		const unsigned index = group.values[((y + 2) & 3) + 2][((x + 2) & 3) + 2];
		return resultFromLocalPalette(group.palette, x, y, index);
	}
	const bool rightHand = layout.bpp == 4 ? (x & 3) < 2 : (x & 4) == 0;
	const bool lower = (y & 2) == 0;
	const unsigned entry = kPaletteEntry[(rightHand ? 1 : 0) + (lower ? 2 : 0)];
	return mixColours(group.palette[entry], group.palette[entry + 1], weight);
}
} // namespace

unsigned long long TwiddleUV(unsigned numY, unsigned numX, unsigned by, unsigned bx, int linear)
{
	if (linear != 0)
	{
		return static_cast<unsigned long long>(by) * numX + bx;
	}
	return zortexture::twiddledBlockIndex(numX, numY, bx, by);
}

void InterpolateColours(const KilnPlane& colours, int /*wordType*/, int bpp, int x, int y, TesselColour& out)
{
	const int blockWidth = blockWidthOf(bpp);
	const int u = (x + blockWidth / 2) & (blockWidth - 1);
	const int v = (y + kBlockHeight / 2) & (kBlockHeight - 1);
	const int widthShift = bpp == 4 ? 2 : 3;
	const int colourShift = bpp == 4 ? 1 : 2;
	const auto& [p, q, r, s] = colours;
	for (int c = 0; c < 4; ++c)
	{
		const int top = (p[c] << widthShift) + u * (q[c] - p[c]);
		const int bottom = (r[c] << widthShift) + u * (s[c] - r[c]);
		const int scaled = 4 * top + v * (bottom - top);
		// To 5 bits with 3 of fraction, alpha to 4 with 4; the top bits repeated below make full scale 255.
		if (c < 3)
		{
			const int colour = scaled >> colourShift;
			out[c] = colour + (colour >> 5);
		}
		else
		{
			const int alpha = scaled >> (colourShift - 1);
			out[c] = alpha + (alpha >> 4);
		}
	}
}

void GetModulationValue(int x, int y, int /*wordType*/, int bpp, bool ignoreMode, const TesselGroup& values, const TesselGroup& modes,
                        unsigned& modeOut, unsigned& weightOut, bool& punchThroughOut)
{
	const int blockWidth = blockWidthOf(bpp);
	const unsigned column = static_cast<unsigned>(((x + blockWidth / 2) & (blockWidth - 1)) + blockWidth / 2);
	const unsigned row = static_cast<unsigned>(((y + kBlockHeight / 2) & (kBlockHeight - 1)) + kBlockHeight / 2);
	modeOut = modes[row][column];
	punchThroughOut = false;
	if (bpp == 2)
	{
		weightOut = zortexture::weightOf2bppPixel(values, modes, column, row);
		return;
	}
	const unsigned index = values[row][column];
	const unsigned table = ignoreMode ? 0 : modeOut;
	weightOut = zortexture::kTesselWeights[table][index];
	punchThroughOut = table == 1 && index == zortexture::kPunchThroughIndex;
}

void FillLocalPalette(const KilnPlane& coloursA, const KilnPlane& coloursB, KilnPalette& palette)
{
	constexpr std::array<unsigned, 4> kPaletteOrder = {0, 3, 1, 2}; // P, S, Q, R
	const auto expand = [](const TesselColour& colour)
	{
		const auto channel = [](int c)
		{
			return ((c >> 2) | (c << 3)) & 255;
		};
		return TesselColour{channel(colour[0]), channel(colour[1]), channel(colour[2]), colour[3] * 17};
	};
	for (unsigned i = 0; i < 4; ++i)
	{
		palette[2 * i] = expand(coloursA[kPaletteOrder[i]]);
		palette[2 * i + 1] = expand(coloursB[kPaletteOrder[i]]);
	}
}

const TesselColour& resultFromLocalPalette(const KilnPalette& palette, int x, int y, unsigned index)
{
	return palette[LocalPaletteMap[(y + 2) & 3][(x + 2) & 3][index & 3]];
}

void Decompress(const void* compressed, int forceMinimumBlocks, int version, int wordType, int bpp, int width, int height, int wrap,
                int diagnosticView, int linearBlocks, bitmap* image)
{
	int imageWidth = 0;
	int imageHeight = 0;
	bitmap_get_size(image, &imageWidth, &imageHeight);
	if (imageWidth != width || imageHeight != height || wordType != kKilnWordType || diagnosticView != 0)
	{
		return;
	}
	if (bpp == 1)
	{
		std::fputs("EXITING! 1BPP UnpackMods not yet implemented!\n", stderr);
		std::abort();
	}
	if (bpp != 2 && bpp != 4)
	{
		return;
	}

	const int blockWidth = blockWidthOf(bpp);
	const auto blockCount = [forceMinimumBlocks](int size, int blockSize)
	{
		const unsigned count = static_cast<unsigned>(size / blockSize + (size % blockSize != 0 ? 1 : 0));
		return forceMinimumBlocks != 0 ? std::max(count, 2U) : count;
	};
	const Layout layout = {static_cast<const unsigned char*>(compressed),
	                       blockCount(width, blockWidth),
	                       blockCount(height, kBlockHeight),
	                       bpp,
	                       version != 0,
	                       linearBlocks};

	// The first and second block along an axis around a pixel.
	const auto blocksAround = [wrap](int position, int blockSize, int size, unsigned count)
	{
		int shifted = position - blockSize / 2;
		if (shifted < 0)
		{
			// One turn is enough for whole blocks; an image of less than half a block needs more.
			shifted = wrap != 0 ? (shifted % size + size) % size : 0;
		}
		const unsigned first = static_cast<unsigned>(shifted / blockSize);
		const unsigned second = wrap != 0 ? (first + 1) % count : std::min(first + 1, count - 1);
		return std::array<unsigned, 2>{first, second};
	};

	BlockGroup group = {};
	bool unpacked = false;
	// In bands between block centres, column by column as the image is stored: the group changes once per area.
	for (std::int64_t band = -kBlockHeight / 2; band < height; band += kBlockHeight)
	{
		const int firstRow = static_cast<int>(std::max<std::int64_t>(band, 0));
		const int endRow = static_cast<int>(std::min<std::int64_t>(band + kBlockHeight, height));
		for (int x = 0; x < width; ++x)
		{
			const std::array<unsigned, 2> columns = blocksAround(x, blockWidth, width, layout.numX);
			for (int y = firstRow; y < endRow; ++y)
			{
				const std::array<unsigned, 2> rows = blocksAround(y, kBlockHeight, height, layout.numY);
				std::array<unsigned long long, 4> addresses;
				for (unsigned i = 0; i < 4; ++i)
				{
					addresses[i] = TwiddleUV(layout.numY, layout.numX, rows[i >> 1], columns[i & 1], layout.linear);
				}
				if (!unpacked || addresses != group.addresses)
				{
					group.addresses = addresses;
					unpackGroup(layout, group);
					unpacked = true;
				}
				const TesselColour pixel = group.hard ? hardPixel(layout, group, x, y) : smoothPixel(layout, group, x, y);
				const auto byte = [&pixel](unsigned c)
				{
					return static_cast<unsigned char>(pixel[c]);
				};
				bitmap_set_pixel_rgba(image, x, y, byte(0), byte(1), byte(2), byte(3));
			}
		}
	}
}
