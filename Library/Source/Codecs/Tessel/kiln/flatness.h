/// @file flatness.h
/// Which pixels of a window are alike, or run straight on.
#pragma once

#include "Simd/SimdLevel.h"
#include "kiln.h"

/// Squared distance, or squared second difference, below which colours count as flat: about 2 levels in each channel.
constexpr int kKilnFlatLimit = 17;

/// A window with room around it, all of which may be read.
struct alignas(32) KilnPaddedWindow
{
	static constexpr int kMargin = 24;
	static constexpr int kCapacity = 160;
	std::uint8_t bytes[4 * (kMargin + kCapacity + kMargin)];
};

/// A bit for each pixel of a window, from the lowest on. Those behind the last pixel are of no use.
struct KilnPixelBits
{
	std::uint32_t words[KilnPaddedWindow::kCapacity / 32];
};

/// In plain form and for every vector unit.
template<zortexture::ESimdLevel level>
struct KilnFlatness
{
	/// The pixels close to one of them over all four channels.
	static void findAlike(const KilnPaddedWindow& window, int pixelCount, int pixel, KilnPixelBits& bits);
	/// The pixels at which colours run straight on between those `step` pixels before and behind; 1 or a row.
	static void findStraight(const KilnPaddedWindow& window, int pixelCount, int step, KilnPixelBits& bits);
};
