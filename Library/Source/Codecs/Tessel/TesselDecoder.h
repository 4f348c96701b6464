/// @file TesselDecoder.h
/// The colour upscale of the first generation's decoder.
#pragma once

#include "Pixel.h"
#include "TesselUpscale.h"

namespace zortexture
{
/// Upscales one colour plane over the area between the centres of P, Q, R and S: working colours in, 8-bit pixels out, a block of
/// them row by row.
/// @param bpp  2 or 4.
void interpolateColours(const TesselColour& p, const TesselColour& q, const TesselColour& r, const TesselColour& s,
                        Pixel<unsigned char>* out, unsigned bpp);
} // namespace zortexture
