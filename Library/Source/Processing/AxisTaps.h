/// @file AxisTaps.h
/// What a sample of an image touches on one axis.
#pragma once

#include <cstddef>

namespace zortexture
{
/// What a position touches on one axis: `Count` neighbouring pixels, and the fraction between the two middle ones. Pixels
/// outside the image are replaced by the nearest one inside; the fraction is that of the position as given.
template<unsigned int Count>
struct AxisTaps
{
	std::size_t index[Count];
	float fraction;
};
using LinearTaps = AxisTaps<2>;
using CubicTaps = AxisTaps<4>;
} // namespace zortexture
