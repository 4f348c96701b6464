/// @file TesselPadding.h
/// Padding of images to whole blocks.
#pragma once

#include <vector>

#include "Pixel.h"

namespace zortexture
{
/// A copy of an image with padX columns and padY rows added. An added column repeats the one padX before it, an added row the one
/// padY before it, the added columns included. Where the image is too small for that, its columns (or rows) are repeated from the
/// first.
std::vector<Pixel<unsigned char>> padTesselImage(const void* pixels, unsigned width, unsigned height, unsigned padX, unsigned padY);
} // namespace zortexture
