/// @file orientedbox.h
/// A box in colour space along axes of its own, which bounds the colours of a window.
#pragma once

#include <array>
#include <cstdint>

/// Four axes, main axis first, and the range of the projections on each. Empty with the minimum above the maximum.
struct OrientedBBox
{
	std::array<std::array<float, 4>, 4> axes = {};
	std::array<float, 4> minimum = {};
	std::array<float, 4> maximum = {};
};

/// An empty box on the given axes: minimum +3.4028235e38, maximum -3.4028235e38.
void InitOrientedBBox(OrientedBBox& box, const std::array<std::array<float, 4>, 4>& axes);
/// The channels as axes, and one colour.
void InitOrientedBBoxToSingleColour(OrientedBBox& box, const std::array<std::uint8_t, 4>& colour);
bool OrientedBBoxIsEmpty(const OrientedBBox& box);
void AddIColourToOrientedBBox(OrientedBBox& box, const std::array<std::uint8_t, 4>& colour);
void AddFColourToOrientedBBox(OrientedBBox& box, const std::array<float, 4>& colour);
/// The sum of the extents.
float SizeOfOrientedBBox(const OrientedBBox& box);
/// A projection beyond the range of an axis is set to the limit, and the colour rebuilt from its four projections.
std::array<float, 4> ClampToOrientedBBox(const OrientedBBox& box, const std::array<float, 4>& colour);
