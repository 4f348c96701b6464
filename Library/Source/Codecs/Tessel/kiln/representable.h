/// @file representable.h
/// From free colours to those that a block can hold.
#pragma once

#include "kiln.h"

/// The nearest pair that a block of the generation can hold. Both opaque or, in the first generation, each by itself; a tie between
/// two levels moves the colours apart.
KilnPair MapToRepresentableColours(bool tessel2, const KilnColourF& a, const KilnColourF& b);
KilnPair MapToRepresentableColoursInt(bool tessel2, const KilnColour& a, const KilnColour& b);
KilnColourF ConvertIntPixelToFloat(const KilnColour& colour);
/// a + (b - a) * weight.
KilnColourF MixPixelF(const KilnColourF& a, const KilnColourF& b, float weight);
