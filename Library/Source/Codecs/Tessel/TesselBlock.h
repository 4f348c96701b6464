/// @file TesselBlock.h
/// Reading colours from word 1 of a block, for both generations.
#pragma once

namespace zortexture
{
/// Colour A or B in the working form: 5 bits of red, green and blue, 4 bits of alpha, one a byte with red in byte 0. A translucent
/// colour has an even alpha, so that it never reaches 15.
unsigned expandTesselColourA(unsigned colourWord, bool opaque);
unsigned expandTesselColourB(unsigned colourWord, bool opaque);
} // namespace zortexture
