// The fit of a block of three or more colours. All arithmetic is single precision in this very order: the indices depend on it.

#include <algorithm>
#include <cmath>

#include "DXTBlock.h"

namespace zortexture
{
namespace
{
/// A colour, or a direction between colours, on the scale of 0 to 255.
struct Vector
{
	float r;
	float g;
	float b;
};

constexpr unsigned int kMaxIterations = 100;
constexpr float kConverged = 1e-5f;

Vector operator-(const Vector& a, const Vector& b)
{
	return {a.r - b.r, a.g - b.g, a.b - b.b};
}

Vector operator/(const Vector& a, float divisor)
{
	return {a.r / divisor, a.g / divisor, a.b / divisor};
}

float dot(const Vector& a, const Vector& b)
{
	return a.r * b.r + a.g * b.g + a.b * b.b;
}

float length(const Vector& a)
{
	return std::sqrt(dot(a, a));
}

Vector toVector(const Pixel<unsigned char>& pixel)
{
	return {static_cast<float>(pixel.r), static_cast<float>(pixel.g), static_cast<float>(pixel.b)};
}

Vector meanOf(const Pixel<unsigned char>* pixels)
{
	Vector sum = {0.0f, 0.0f, 0.0f};
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		const Vector colour = toVector(pixels[texel]);
		sum = {sum.r + colour.r, sum.g + colour.g, sum.b + colour.b};
	}
	return {sum.r * 0.0625f, sum.g * 0.0625f, sum.b * 0.0625f};
}

/// The direction in which colours vary most, by power iteration on their covariance sums.
Vector principalAxis(const Vector (&centred)[kDXTBlockTexels])
{
	Vector rows[3] = {};
	for (const Vector& colour : centred)
	{
		rows[0] = {rows[0].r + colour.r * colour.r, rows[0].g + colour.r * colour.g, rows[0].b + colour.r * colour.b};
		rows[1] = {rows[1].r + colour.g * colour.r, rows[1].g + colour.g * colour.g, rows[1].b + colour.g * colour.b};
		rows[2] = {rows[2].r + colour.b * colour.r, rows[2].g + colour.b * colour.g, rows[2].b + colour.b * colour.b};
	}
	Vector axis = {1.0f, 1.0f, 1.0f};
	for (unsigned int i = 0; i < kMaxIterations; ++i)
	{
		const Vector product = {dot(rows[0], axis), dot(rows[1], axis), dot(rows[2], axis)};
		const float scale = length(product);
		if (scale == 0.0f)
		{
			break; // colours that do not vary along the axis: it stays
		}
		const Vector next = product / scale;
		const float change = length(next - axis);
		axis = next;
		if (change < kConverged)
		{
			break;
		}
	}
	return axis;
}

float clampChannel(float value)
{
	return std::clamp(value, 0.0f, 255.0f);
}

Vector pointOnAxis(const Vector& mean, float projection, const Vector& axis)
{
	return {clampChannel(mean.r + projection * axis.r), clampChannel(mean.g + projection * axis.g),
	        clampChannel(mean.b + projection * axis.b)};
}

std::uint16_t pack(const Vector& colour)
{
	return packDXTColour(static_cast<unsigned int>(colour.r), static_cast<unsigned int>(colour.g), static_cast<unsigned int>(colour.b));
}

/// The number of steps from colour 0 towards colour 1, `steps` of them between the two. Texels can lie beyond the end points where these
/// were clamped; they take the nearer end.
unsigned int stepOf(float t, unsigned int steps)
{
	const auto limit = static_cast<float>(steps);
	return static_cast<unsigned int>(std::clamp(limit * t + 0.5f, 0.0f, limit));
}
} // namespace

DXTColours fitDXTPrincipalAxis(const DXTTexels& texels)
{
	const Vector mean = meanOf(texels.pixels);
	Vector centred[kDXTBlockTexels];
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		centred[texel] = toVector(texels.pixels[texel]) - mean;
	}
	const Vector axis = principalAxis(centred);
	float largest = 0.0f;
	float smallest = 0.0f;
	for (const Vector& colour : centred)
	{
		const float projection = dot(colour, axis);
		largest = std::max(largest, projection);
		smallest = std::min(smallest, projection);
	}

	// The order of the numbers selects the mode.
	Vector end0 = pointOnAxis(mean, largest, axis);
	Vector end1 = pointOnAxis(mean, smallest, axis);
	const bool isOrdered = texels.isPunchThrough ? pack(end0) < pack(end1) : pack(end0) > pack(end1);
	if (!isOrdered)
	{
		std::swap(end0, end1);
	}
	DXTColours colours = {pack(end0), pack(end1), 0};
	if (colours.colour0 == colours.colour1)
	{
		return colours; // one colour for all of the block, even for transparent texels
	}

	// Palette indices by the number of steps, in the three-colour mode and in the four-colour mode.
	constexpr std::uint32_t kIndexOfHalf[] = {0, 2, 1};
	constexpr std::uint32_t kIndexOfThird[] = {0, 2, 3, 1};
	const Vector way = end1 - end0;
	const Vector direction = way / dot(way, way);
	for (unsigned int texel = 0; texel < kDXTBlockTexels; ++texel)
	{
		const float t = dot(toVector(texels.pixels[texel]) - end0, direction);
		std::uint32_t index = 3;
		if (!texels.isPunchThrough)
		{
			index = kIndexOfThird[stepOf(t, 3)];
		}
		else if (!texels.isCutOut(texel))
		{
			index = kIndexOfHalf[stepOf(t, 2)];
		}
		colours.indices |= index << (2 * texel);
	}
	return colours;
}
} // namespace zortexture
