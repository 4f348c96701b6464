/// @file packing.h
/// Writing the words of a block.
#pragma once

#include "evaluate.h"
#include "kiln.h"

/// The two words of a block, modulation first, as numbers.
struct KilnWords
{
	std::uint32_t modulation = 0;
	std::uint32_t colours = 0;
};

/// The working space of packing, for any number of blocks.
struct KilnPackingSpace
{
	KilnKernelTable kernels;
	KilnWindowModel model;
	KilnFittingParams params;

	explicit KilnPackingSpace(const KilnSettings& settings);
};

/// Evaluates block (blockX, blockY) once more with the final colours around it, and packs it.
/// @param errors  when not null, what that evaluation found (for the tests).
KilnWords PackLocalBlock(KilnPackingSpace& space, const KilnImage& image, const KilnSettings& settings, const KilnBlockRows& blocks,
                         int blockX, int blockY, KilnErrors* errors = nullptr);

/// Thread entry: packs rows of blocks to the record's output.
/// @param threadRecord  a KilnThreadRecord.
void* RunAPackingThread(void* threadRecord);
