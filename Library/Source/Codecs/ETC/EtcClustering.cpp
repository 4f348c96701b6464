/// @file EtcClustering.cpp
/// The two representative colours of a block: a Linde-Buzo-Gray loop from up to ten random seeds.
///
/// T and H blocks can express differences in intensity through their distance table, so colours that are found with intensity ignored
/// or halved, separating the block by hue, often serve them better than the plain means of two clusters.
#include <algorithm>
#include <cmath>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcRandom.h"
#include "Codecs/ETC/EtcSearchTexels.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kSeeds = 10;
constexpr unsigned int kIterations = 10;
constexpr unsigned int kDrawsPerSeed = 6;
constexpr auto kDraws = platformRandomDraws<kSeeds * kDrawsPerSeed>(10000);

struct Vector
{
	double axis[3];
};

/// R, G, B with plain distances; colours are rounded to integers before texels are assigned to them.
struct RgbSpace
{
	static constexpr bool kRoundsColours = true;

	static Vector fromTexel(const unsigned char (&rgb)[3])
	{
		return {{static_cast<double>(rgb[0]), static_cast<double>(rgb[1]), static_cast<double>(rgb[2])}};
	}

	static Vector toRgb(const Vector& colour)
	{
		return colour;
	}

	static double distance(const Vector& a, const Vector& b)
	{
		const double red = a.axis[0] - b.axis[0];
		const double green = a.axis[1] - b.axis[1];
		const double blue = a.axis[2] - b.axis[2];
		return red * red + green * green + blue * blue;
	}
};

/// R, G, B turned so that axis 0 is intensity and axes 1 and 2 are hue.
struct HueSpace
{
	static constexpr bool kRoundsColours = false;
	static constexpr double kIntensity = 0.5773502691896258; // 1 / sqrt(3)
	static constexpr double kRedGreen = 0.7071067811865475;  // 1 / sqrt(2)
	static constexpr double kYellow = 0.4082482904638631;    // 1 / sqrt(6)
	static constexpr double kBlue = 0.8164965809277261;      // 2 / sqrt(6)

	static Vector fromTexel(const unsigned char (&rgb)[3])
	{
		const int red = rgb[0];
		const int green = rgb[1];
		const int blue = rgb[2];
		return {{kIntensity * (red + green + blue), kRedGreen * (red - green), kYellow * (red + green) - kBlue * blue}};
	}

	static Vector toRgb(const Vector& colour)
	{
		const double intensity = kIntensity * colour.axis[0];
		const double redGreen = kRedGreen * colour.axis[1];
		const double yellow = kYellow * colour.axis[2];
		return {{intensity + redGreen + yellow, intensity - redGreen + yellow, intensity - kBlue * colour.axis[2]}};
	}
};

struct HueOnlySpace : HueSpace
{
	static double distance(const Vector& a, const Vector& b)
	{
		const double hue1 = a.axis[1] - b.axis[1];
		const double hue2 = a.axis[2] - b.axis[2];
		return hue1 * hue1 + hue2 * hue2;
	}
};

struct HalfIntensitySpace : HueSpace
{
	static double distance(const Vector& a, const Vector& b)
	{
		const double intensity = a.axis[0] - b.axis[0];
		const double hue1 = a.axis[1] - b.axis[1];
		const double hue2 = a.axis[2] - b.axis[2];
		return 0.5 * intensity * intensity + hue1 * hue1 + hue2 * hue2;
	}
};

/// When the error of an iteration equals that of the one before.
enum class OnConvergence
{
	NextSeed,
	Stop
};

/// Replaces each colour by the mean of its texels. `members` has the bit of every texel of colour 0.
void moveToMeans(const Vector (&texels)[16], unsigned int members, unsigned int count0, Vector (&colours)[2])
{
	Vector sums[2] = {};
	for (unsigned int i = 0; i < 16; ++i)
	{
		Vector& sum = sums[(members >> i & 1) != 0 ? 0 : 1];
		for (unsigned int axis = 0; axis < 3; ++axis)
		{
			sum.axis[axis] += texels[i].axis[axis];
		}
	}
	for (unsigned int axis = 0; axis < 3; ++axis)
	{
		colours[0].axis[axis] = sums[0].axis[axis] / count0;
		colours[1].axis[axis] = sums[1].axis[axis] / (16 - count0);
	}
}

/// The state that goes from seed to seed.
struct Search
{
	double leastError = 12582912.0; // 16 * 3 * 512 * 512, more than any block can reach
	double previousError = 12582912.0;
	Vector best[2] = {};
};

/// Refines one seed. Returns true if the whole search is over.
template<typename Space, OnConvergence Convergence>
bool refineSeed(const Vector (&texels)[16], Vector (&colours)[2], Search& search)
{
	for (unsigned int iteration = 0; iteration < kIterations; ++iteration)
	{
		if constexpr (Space::kRoundsColours)
		{
			for (Vector& colour : colours)
			{
				for (double& value : colour.axis)
				{
					value = std::round(value);
				}
			}
		}

		double error = 0.0;
		unsigned int members = 0;
		unsigned int count0 = 0;
		for (unsigned int i = 0; i < 16; ++i)
		{
			const double distance0 = Space::distance(texels[i], colours[0]);
			const double distance1 = Space::distance(texels[i], colours[1]);
			const bool isMember = distance1 > distance0;
			error += isMember ? distance0 : distance1;
			members |= static_cast<unsigned int>(isMember) << i;
			count0 += static_cast<unsigned int>(isMember);
		}

		// An error that is met again has been compared with the least one before.
		if (error == search.previousError)
		{
			return Convergence == OnConvergence::Stop;
		}
		search.previousError = error;
		if (error < search.leastError)
		{
			search.leastError = error;
			search.best[0] = colours[0];
			search.best[1] = colours[1];
		}
		if (error == 0.0)
		{
			return true;
		}
		if (count0 == 0 || count0 == 16)
		{
			return false;
		}
		moveToMeans(texels, members, count0, colours);
	}
	return false;
}

template<typename Space, OnConvergence Convergence>
void findTwoColours(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, EtcColourPair& result)
{
	const SearchTexels<16> block = loadBlockTexels(source, width, startX, startY);
	Vector texels[16];
	Vector least = {{512.0, 512.0, 512.0}};
	Vector greatest = {{-512.0, -512.0, -512.0}};
	for (unsigned int i = 0; i < 16; ++i)
	{
		texels[i] = Space::fromTexel(block.rgb[i]);
		for (unsigned int axis = 0; axis < 3; ++axis)
		{
			least.axis[axis] = std::min(least.axis[axis], texels[i].axis[axis]);
			greatest.axis[axis] = std::max(greatest.axis[axis], texels[i].axis[axis]);
		}
	}

	Search search;
	for (unsigned int seed = 0; seed < kSeeds; ++seed)
	{
		Vector colours[2];
		for (unsigned int i = 0; i < kDrawsPerSeed; ++i)
		{
			const unsigned int axis = i % 3;
			const double draw = kDraws[seed * kDrawsPerSeed + i] / 2147483647.0;
			colours[i / 3].axis[axis] = draw * (greatest.axis[axis] - least.axis[axis]) + least.axis[axis];
		}
		if (refineSeed<Space, Convergence>(texels, colours, search))
		{
			break;
		}
	}

	for (unsigned int i = 0; i < 2; ++i)
	{
		const Vector rgb = Space::toRgb(search.best[i]);
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			result[i][channel] = static_cast<unsigned char>(std::round(std::clamp(rgb.axis[channel], 0.0, 255.0)));
		}
	}
}
} // namespace

void computeColorLBG(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, EtcColourPair& colours)
{
	findTwoColours<RgbSpace, OnConvergence::NextSeed>(source, width, startX, startY, colours);
}

void computeColorLBGfast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY, EtcColourPair& colours)
{
	findTwoColours<RgbSpace, OnConvergence::Stop>(source, width, startX, startY, colours);
}

void computeColorLBGNotIntensity(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                 EtcColourPair& colours)
{
	findTwoColours<HueOnlySpace, OnConvergence::NextSeed>(source, width, startX, startY, colours);
}

void computeColorLBGNotIntensityFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                     EtcColourPair& colours)
{
	findTwoColours<HueOnlySpace, OnConvergence::Stop>(source, width, startX, startY, colours);
}

void computeColorLBGHalfIntensityFast(const unsigned char* source, unsigned int width, unsigned int startX, unsigned int startY,
                                      EtcColourPair& colours)
{
	findTwoColours<HalfIntensitySpace, OnConvergence::Stop>(source, width, startX, startY, colours);
}
} // namespace zortexture
