#include "orientedbox.h"

#include <algorithm>

namespace
{
constexpr float kLargest = 3.4028235e38F;
constexpr std::array<std::array<float, 4>, 4> kChannelAxes = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

float projection(const std::array<float, 4>& axis, const std::array<float, 4>& colour)
{
	return axis[0] * colour[0] + axis[1] * colour[1] + axis[2] * colour[2] + axis[3] * colour[3];
}
} // namespace

void InitOrientedBBox(OrientedBBox& box, const std::array<std::array<float, 4>, 4>& axes)
{
	box.axes = axes;
	box.minimum.fill(kLargest);
	box.maximum.fill(-kLargest);
}

void InitOrientedBBoxToSingleColour(OrientedBBox& box, const std::array<std::uint8_t, 4>& colour)
{
	InitOrientedBBox(box, kChannelAxes);
	AddIColourToOrientedBBox(box, colour);
}

bool OrientedBBoxIsEmpty(const OrientedBBox& box)
{
	return box.minimum[0] > box.maximum[0];
}

void AddIColourToOrientedBBox(OrientedBBox& box, const std::array<std::uint8_t, 4>& colour)
{
	AddFColourToOrientedBBox(
	    box, {static_cast<float>(colour[0]), static_cast<float>(colour[1]), static_cast<float>(colour[2]), static_cast<float>(colour[3])});
}

void AddFColourToOrientedBBox(OrientedBBox& box, const std::array<float, 4>& colour)
{
	for (int i = 0; i < 4; ++i)
	{
		const float place = projection(box.axes[i], colour);
		box.minimum[i] = std::min(box.minimum[i], place);
		box.maximum[i] = std::max(box.maximum[i], place);
	}
}

float SizeOfOrientedBBox(const OrientedBBox& box)
{
	float size = 0;
	for (int i = 0; i < 4; ++i)
	{
		size += box.maximum[i] - box.minimum[i];
	}
	return size;
}

std::array<float, 4> ClampToOrientedBBox(const OrientedBBox& box, const std::array<float, 4>& colour)
{
	std::array<float, 4> places;
	bool inside = true;
	for (int i = 0; i < 4; ++i)
	{
		const float place = projection(box.axes[i], colour);
		places[i] = std::min(std::max(place, box.minimum[i]), box.maximum[i]);
		inside = inside && places[i] == place;
	}
	if (inside)
	{
		// Rebuilding would only add rounding.
		return colour;
	}
	std::array<float, 4> clamped = {};
	for (int i = 0; i < 4; ++i)
	{
		for (int c = 0; c < 4; ++c)
		{
			clamped[c] += places[i] * box.axes[i][c];
		}
	}
	return clamped;
}
