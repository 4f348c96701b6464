/// @file decompress.h
/// The per-pixel block decoder: both generations, hard transitions with their local palette, twiddled and linear block order,
/// wrapped and clamped edges.
#pragma once

#include <array>

#include "../TesselModulation.h"
#include "../TesselUpscale.h"
#include "bitmap.h"

/// The colours of four blocks: A and B of P, then of S, Q and R.
using KilnPalette = std::array<zortexture::TesselColour, 8>;
/// One colour plane of the blocks P, Q, R, S, in this order: P at the top left, Q right of it, R below.
using KilnPlane = std::array<zortexture::TesselColour, 4>;

/// The word type of 64-bit blocks, the only one there is.
inline constexpr int kKilnWordType = 4;

/// For a pixel of a palette block at offset (u, v) from P's centre: which palette entries its indices 0 to 3 select, as
/// [v][u][index]. The pixel on the centre itself never comes here.
extern const unsigned char LocalPaletteMap[4][4][4];

/// The place of a block in the data: by * numX + bx when linear, else twiddled.
unsigned long long TwiddleUV(unsigned numY, unsigned numX, unsigned by, unsigned bx, int linear);

/// The upscaled 8-bit colour of pixel (x, y) from one plane of the blocks around it.
void InterpolateColours(const KilnPlane& colours, int wordType, int bpp, int x, int y, zortexture::TesselColour& out);

/// Mode and weight (in eighths) of pixel (x, y), and whether it is punch-through.
/// @param ignoreMode  weigh a 4bpp index as mode 0 does.
void GetModulationValue(int x, int y, int wordType, int bpp, bool ignoreMode, const zortexture::TesselGroup& values,
                        const zortexture::TesselGroup& modes, unsigned& modeOut, unsigned& weightOut, bool& punchThroughOut);

/// The eight colours of four blocks at 8 bits a channel.
void FillLocalPalette(const KilnPlane& coloursA, const KilnPlane& coloursB, KilnPalette& palette);

/// The colour that an index selects at pixel (x, y) of a palette block.
const zortexture::TesselColour& resultFromLocalPalette(const KilnPalette& palette, int x, int y, unsigned index);

/// Decodes into `image`. Writes nothing if the image's size is not width by height, the word type is not 4, or the diagnostic view
/// is not 0, the picture. Block counts are rounded up; places past the end of the data, which twiddled counts that are not powers of
/// two have, read as zero words.
/// @param forceMinimumBlocks  count at least two blocks in each direction.
/// @param version             0 is the first generation, any other value the second.
/// @param bpp                 2 or 4; 1 ends the process with a message.
/// @param wrap                wrap at the edges, else clamp.
void Decompress(const void* compressed, int forceMinimumBlocks, int version, int wordType, int bpp, int width, int height, int wrap,
                int diagnosticView, int linearBlocks, bitmap* image);
