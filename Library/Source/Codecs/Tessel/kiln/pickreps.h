/// @file pickreps.h
/// The pair of colours that best splits the pixels of a window along an axis.
#pragma once

#include "KilnNumerics.h"
#include "kiln.h"

/// A pixel on an axis.
struct KilnPixelInfo
{
	float projection;
	float weight;
	int pixel;
	/// Over the pixels up to and with this one in order: the weights, and their products with the projection and its square.
	double weightSum;
	double momentSum;
	double squareSum;
};

/// Moves two ends until the four levels between them, at 0, 3/8, 5/8 and 1, stand for the projections with the least squared error
/// that is to be had from here.
/// @param pixels  at least one and at most kKilnMaxWindow, sorted by projection, sums filled in.
/// @param low     not above high, both within the projections, as they are left.
/// @return the mean squared error; 0 for one pixel or equal ends, which stay.
double ImprovePartition(const KilnPixelInfo* pixels, int count, float& low, float& high);

/// A pair that the block can hold, the darker and more transparent colour first: the mean colours at both ends of the best partition.
/// Both are the same pixel if there is one only, and 0 if there is none.
/// @param weights  of the window's pixels; those of 0 do not count, nor do transparent pixels at 4bpp.
KilnPair PickRepsByProjectingPixelsOntoAxis(const KilnSettings& settings, const KilnColour* window, const float* weights,
                                            const KilnVector& axis);

/// Whether a pixel counts as transparent: alpha 0, in the second generation with R, G and B 0.
bool isTransparentPixel(bool tessel2, const KilnColour& pixel);
