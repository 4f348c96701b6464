/// @file TesselSectionCompressor.h
/// The pieces of the compressor that encodes each 4 x 4 block by itself.
#pragma once

#include "TesselPlanes.h"

namespace zortexture
{
/// Lists up to two colours of a block of 16 pixels in `palette`, in the order met. A quick classification: only the top left pixel
/// and the second column are looked at, and of equal red, green and blue, transparent and opaque count as one colour.
/// @return their number; 3 if there are more.
unsigned countColours(const TesselPixel* pixels, TesselPixel* palette);

/// The ends of a block's 16 pixels along their principal axis, in the order of orderTesselColours.
void selectColoursOnPrincipalAxis(const TesselPixel* pixels, unsigned& colourA, unsigned& colourB);
} // namespace zortexture
