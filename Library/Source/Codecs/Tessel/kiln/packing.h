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

/// Evaluates block (blockX, blockY) once more with the final colours around it, and packs it.
/// @param errors  when not null, what that evaluation found (for the tests).
KilnWords PackLocalBlock(const KilnImage& image, const KilnSettings& settings, const KilnBlockRows& blocks, int blockX, int blockY,
                         KilnErrors* errors = nullptr);
