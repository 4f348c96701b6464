#include "flatness.h"

using namespace zortexture;

template<>
void KilnFlatness<eSimdPlain>::findAlike(const KilnPaddedWindow& window, int pixelCount, int pixel, KilnPixelBits& bits)
{
	const std::uint8_t* pixels = window.bytes + 4 * KilnPaddedWindow::kMargin;
	bits = {};
	for (int i = 0; i < pixelCount; ++i)
	{
		int sum = 0;
		for (int c = 0; c < 4; ++c)
		{
			const int difference = pixels[4 * i + c] - pixels[4 * pixel + c];
			sum += difference * difference;
		}
		bits.words[i / 32] |= sum < kKilnFlatLimit ? 1U << i % 32 : 0;
	}
}

template<>
void KilnFlatness<eSimdPlain>::findStraight(const KilnPaddedWindow& window, int pixelCount, int step, KilnPixelBits& bits)
{
	const std::uint8_t* pixels = window.bytes + 4 * KilnPaddedWindow::kMargin;
	bits = {};
	for (int i = 0; i < pixelCount; ++i)
	{
		int sum = 0;
		for (int c = 0; c < 4; ++c)
		{
			const std::uint8_t* here = pixels + 4 * i + c;
			const int difference = here[-4 * step] + here[4 * step] - 2 * here[0];
			sum += difference * difference;
		}
		bits.words[i / 32] |= sum < kKilnFlatLimit ? 1U << i % 32 : 0;
	}
}
