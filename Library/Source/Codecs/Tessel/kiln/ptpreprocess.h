/// @file ptpreprocess.h
/// Preparing an image for punch-through blocks.
#pragma once

#include "kiln.h"

/// Pixels of alpha below 5 become transparent: in the second generation (version 1) black as well, since it decodes them so; in the
/// first of the mean colour around them, so that they do not disturb the colours of visible neighbours. When memory fails, the image
/// stays as it is, with a message.
void PTPreprocess(KilnImage& image, int version);
