/// @file kiln_localised.h
/// The driver of the high-quality compressor: a small set of candidate encodings a block, fitted again in passes against all the
/// pixels that a block and its neighbours share.
#pragma once

#include "kiln.h"

struct KilnProgress;

/// Compresses one image.
/// @param linear    blocks in rows instead of twiddled; block counts that are not powers of two are in rows in any case.
/// @param out       block words, little-endian; 8 bytes a block, no alignment needed.
/// @param progress  may be null; advanced by the image's pixels.
/// @return 0, and 1 on failure: out is null, the size is no whole number of blocks, or memory fails.
int KILNNewMethod(const KilnImage& image, int wordType, int bpp, int version, bool linear, int quality, bool punchThrough, void* out,
                  KilnProgress* progress);

/// The stages of KILNNewMethod, on an image that is whole blocks.
/// @return 0 on failure.
int SearchForImageRepresentatives(const KilnImage& image, int wordType, int bpp, bool tessel2, unsigned char* out, bool linear, int quality,
                                  bool punchThrough, KilnProgress* progress);

/// Weights of the pixels of a block's window, which sum to 1, and the mask of its central ones: the middle area of a block's size, and
/// the middle row and column.
struct KilnFilterWindow
{
	std::array<float, kKilnMaxWindow> weights;
	std::array<std::uint8_t, kKilnMaxWindow> centralMask;
};
KilnFilterWindow kilnFilterWindow(const KilnSettings& settings);

/// Exchanges the colours of all candidates of the blocks that `exchange` names, and maps them to representable ones.
void kilnExchangeColours(KilnBlockRows& blocks, bool tessel2, const std::vector<bool>& exchange);

/// One phase of a pass over the rows of a parity. The bytes of a run do not depend on `threads`.
bool kilnRunPhase(const KilnThreadRecord& common, int threads, int parity, int tag);
