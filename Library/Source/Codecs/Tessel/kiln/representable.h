/// @file representable.h
/// From free colours to those that a block can hold.
#pragma once

#include "kiln.h"

/// The nearest pair that a block of the generation can hold. Both opaque or, in the first generation, each by itself; a tie between
/// two levels moves the colours apart.
KilnPair MapToRepresentableColours(bool tessel2, const KilnColourF& a, const KilnColourF& b);
KilnPair MapToRepresentableColoursInt(bool tessel2, const KilnColour& a, const KilnColour& b);
/// The nearest colour that may stand in a block on its own: opaque above alpha 249, with 5 bits a channel, else with 4 bits and an
/// even alpha level or 255. A tie takes the lower level of a channel.
KilnColour SnapToRepresentable(const KilnColour& colour);

inline KilnColourF ConvertIntPixelToFloat(const KilnColour& colour)
{
	return {static_cast<float>(colour[0]), static_cast<float>(colour[1]), static_cast<float>(colour[2]), static_cast<float>(colour[3])};
}

/// a + (b - a) * weight.
inline KilnColourF MixPixelF(const KilnColourF& a, const KilnColourF& b, float weight)
{
	KilnColourF mix;
	for (int c = 0; c < 4; ++c)
	{
		mix[c] = a[c] + (b[c] - a[c]) * weight;
	}
	return mix;
}
