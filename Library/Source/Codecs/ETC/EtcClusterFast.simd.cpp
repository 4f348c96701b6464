/// @file EtcClusterFast.simd.cpp
/// The two-colour clustering of EtcClustering.cpp: distances with texels in lanes, means with axes in lanes. All sums are made in the order
/// of the texels, as there.
///
/// What follows an assignment of texels to colours depends on it alone: the means, the next error, and the next assignment. Each is
/// worked out once and looked up when it comes again, which ends every search that has settled without a last iteration, and leaves later
/// seeds little but their first one.
#include "Codecs/ETC/EtcRandom.h"
#include "Codecs/ETC/EtcTexelLanes.h"

namespace zortexture
{
namespace
{
constexpr unsigned int kSeeds = 10;
constexpr unsigned int kIterations = 10;

/// The draws from 0 to 1: by seed, colour and axis.
struct Draws
{
	double at[kSeeds][2][3];
};
constexpr Draws kDraws = []
{
	const auto draws = platformRandomDraws<kSeeds * 6>(10000);
	Draws result{};
	for (unsigned int i = 0; i < kSeeds * 6; ++i)
	{
		result.at[i / 6][i / 3 % 2][i % 3] = draws[i] / 2147483647.0;
	}
	return result;
}();

constexpr double kIntensity = 0.5773502691896258;
constexpr double kRedGreen = 0.7071067811865475;
constexpr double kYellow = 0.4082482904638631;
constexpr double kBlue = 0.8164965809277261;

constexpr bool isInRgb(EtcClustering clustering)
{
	return clustering == EtcClustering::Fast || clustering == EtcClustering::All;
}

/// Whether an error that is met again ends the search, not the seed alone.
constexpr bool stopsOnConvergence(EtcClustering clustering)
{
	return clustering != EtcClustering::NotIntensity && clustering != EtcClustering::All;
}

/// Texels in rows, in the space of the clustering.
struct Texels
{
	alignas(32) double axes[3][16];
	alignas(32) double points[16][4]; ///< The same by texel; the fourth number is 0.
};

using I64 = FullLanes<std::int64_t>;

struct Assignment
{
	double error;
	unsigned int members; ///< Bit i is set if texel i belongs to colour 0.
};

/// The state of a search that stays the same from seed to seed.
struct Search
{
	Texels texels;
	alignas(32) std::int64_t masks[16]; ///< -1 for the members of the last assignment that was worked out.
	unsigned int masksOf;               ///< That assignment.
	unsigned int countKnown;
	unsigned int known[kSeeds * kIterations]; ///< Assignments that were followed by...
	Assignment next[kSeeds * kIterations];    ///< ...these.
};

template<EtcClustering clustering>
ZORT_INLINE void loadTexels(const unsigned char (&colours)[48], Texels& texels)
{
	for (unsigned int i = 0; i < 16; ++i)
	{
		const int red = colours[i * 3];
		const int green = colours[i * 3 + 1];
		const int blue = colours[i * 3 + 2];
		double point[3] = {static_cast<double>(red), static_cast<double>(green), static_cast<double>(blue)};
		if constexpr (!isInRgb(clustering))
		{
			point[0] = kIntensity * (red + green + blue);
			point[1] = kRedGreen * (red - green);
			point[2] = kYellow * (red + green) - kBlue * blue;
		}
		for (unsigned int axis = 0; axis < 3; ++axis)
		{
			texels.axes[axis][i] = point[axis];
			texels.points[i][axis] = point[axis];
		}
		texels.points[i][3] = 0.0;
	}
}

template<EtcClustering clustering>
ZORT_INLINE F64 distance(const Texels& texels, unsigned int texel, const double (&colour)[4])
{
	const F64 second = F64::load(texels.axes[1] + texel) - F64::filled(colour[1]);
	const F64 third = F64::load(texels.axes[2] + texel) - F64::filled(colour[2]);
	if constexpr (clustering == EtcClustering::NotIntensity || clustering == EtcClustering::NotIntensityFast)
	{
		return second * second + third * third;
	}
	else
	{
		const F64 first = F64::load(texels.axes[0] + texel) - F64::filled(colour[0]);
		const F64 weighted = isInRgb(clustering) ? first : F64::filled(0.5) * first;
		return weighted * first + second * second + third * third;
	}
}

/// Assigns the texels to the nearer of two colours, the second on a tie.
template<EtcClustering clustering>
ZORT_INLINE Assignment assign(Search& search, const double (&colours)[2][4])
{
	alignas(32) double lesser[16];
	Assignment assignment{0.0, 0};
	for (unsigned int i = 0; i < 16; i += F64::kCount)
	{
		const F64 distance0 = distance<clustering>(search.texels, i, colours[0]);
		const F64 distance1 = distance<clustering>(search.texels, i, colours[1]);
		const I64 isMember = distance1 > distance0;
		select(isMember, distance0, distance1).store(lesser + i);
		isMember.store(search.masks + i);
		assignment.members |= bitsOfMask(isMember) << i;
	}
	for (const double error : lesser)
	{
		assignment.error += error;
	}
	search.masksOf = assignment.members;
	return assignment;
}

/// The means of both clusters, neither of them empty.
ZORT_INLINE void findMeans(Search& search, unsigned int members, double (&colours)[2][4])
{
	constexpr unsigned int kRegisters = 4 / F64::kCount;
	if (search.masksOf != members)
	{
		for (unsigned int i = 0; i < 16; ++i)
		{
			search.masks[i] = -static_cast<std::int64_t>(members >> i & 1);
		}
		search.masksOf = members;
	}
	I64 sums0[kRegisters];
	I64 sums1[kRegisters];
	for (unsigned int i = 0; i < kRegisters; ++i)
	{
		sums0[i] = I64::filled(0);
		sums1[i] = I64::filled(0);
	}
	for (unsigned int texel = 0; texel < 16; ++texel)
	{
		const I64 isMember = I64::filled(search.masks[texel]);
		for (unsigned int i = 0; i < kRegisters; ++i)
		{
			// Adding 0 for a texel of the other cluster changes no sum: none is a negative zero.
			const I64 point = I64::load(search.texels.points[texel] + i * F64::kCount);
			sums0[i] = as<std::int64_t>(as<double>(sums0[i]) + as<double>(point & isMember));
			sums1[i] = as<std::int64_t>(as<double>(sums1[i]) + as<double>(point & ~isMember));
		}
	}
	const int count0 = __builtin_popcount(members);
	for (unsigned int i = 0; i < kRegisters; ++i)
	{
		(as<double>(sums0[i]) / F64::filled(count0)).store(colours[0] + i * F64::kCount);
		(as<double>(sums1[i]) / F64::filled(16 - count0)).store(colours[1] + i * F64::kCount);
	}
}

/// To the nearest integer, halves up, of numbers that are not negative.
ZORT_INLINE double rounded(double value)
{
	const int whole = static_cast<int>(value);
	return whole + (value - whole >= 0.5 ? 1 : 0);
}

template<EtcClustering clustering>
ZORT_INLINE void roundColours(double (&colours)[2][4])
{
	if constexpr (isInRgb(clustering))
	{
		for (auto& colour : colours)
		{
			for (unsigned int axis = 0; axis < 3; ++axis)
			{
				colour[axis] = rounded(colour[axis]);
			}
		}
	}
}

ZORT_INLINE unsigned char limitedToByte(double value)
{
	const double atLeast = value < 0.0 ? 0.0 : value;
	return static_cast<unsigned char>(rounded(atLeast > 255.0 ? 255.0 : atLeast));
}

template<EtcClustering clustering>
ZORT_INLINE void toBytes(const double (&colour)[4], unsigned char (&bytes)[3])
{
	if constexpr (isInRgb(clustering))
	{
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			bytes[channel] = limitedToByte(colour[channel]);
		}
	}
	else
	{
		const double intensity = kIntensity * colour[0];
		const double redGreen = kRedGreen * colour[1];
		const double yellow = kYellow * colour[2];
		bytes[0] = limitedToByte(intensity + redGreen + yellow);
		bytes[1] = limitedToByte(intensity - redGreen + yellow);
		bytes[2] = limitedToByte(intensity - kBlue * colour[2]);
	}
}

ZORT_INLINE void findRange(const double (&values)[16], double& least16, double& greatest16)
{
	F64 low = F64::load(values);
	F64 high = low;
	for (unsigned int i = F64::kCount; i < 16; i += F64::kCount)
	{
		low = least(F64::load(values + i), low);
		high = greatest(F64::load(values + i), high);
	}
	least16 = low[0];
	greatest16 = high[0];
	for (unsigned int i = 1; i < F64::kCount; ++i)
	{
		least16 = low[i] < least16 ? low[i] : least16;
		greatest16 = high[i] > greatest16 ? high[i] : greatest16;
	}
}
} // namespace

template<ESimdLevel level, EtcClustering clustering>
void clusterColoursFast(const unsigned char (&texels)[48], unsigned char (&pair)[2][3])
{
	Search search;
	search.countKnown = 0;
	loadTexels<clustering>(texels, search.texels);
	double least16[3];
	double greatest16[3];
	for (unsigned int axis = 0; axis < 3; ++axis)
	{
		findRange(search.texels.axes[axis], least16[axis], greatest16[axis]);
	}

	double leastError = 12582912.0;
	double previousError = 12582912.0;
	double best[2][4] = {};
	for (unsigned int seed = 0; seed < kSeeds; ++seed)
	{
		double colours[2][4];
		for (unsigned int i = 0; i < 2; ++i)
		{
			for (unsigned int axis = 0; axis < 3; ++axis)
			{
				colours[i][axis] = kDraws.at[seed][i][axis] * (greatest16[axis] - least16[axis]) + least16[axis];
			}
			colours[i][3] = 0.0;
		}
		roundColours<clustering>(colours);
		Assignment assignment = assign<clustering>(search, colours);
		bool isOver = false;
		for (unsigned int iteration = 1;; ++iteration)
		{
			if (assignment.error == previousError)
			{
				isOver = stopsOnConvergence(clustering);
				break;
			}
			previousError = assignment.error;
			// An assignment that was looked up has been compared before, and cannot be better.
			if (assignment.error < leastError)
			{
				leastError = assignment.error;
				std::memcpy(best, colours, sizeof(best));
			}
			isOver = assignment.error == 0.0;
			const unsigned int members = assignment.members;
			if (isOver || members == 0 || members == 0xFFFF || iteration == kIterations)
			{
				break;
			}
			unsigned int i = 0;
			while (i < search.countKnown && search.known[i] != members)
			{
				++i;
			}
			if (i == search.countKnown)
			{
				findMeans(search, members, colours);
				roundColours<clustering>(colours);
				search.known[i] = members;
				search.next[i] = assign<clustering>(search, colours);
				++search.countKnown;
			}
			assignment = search.next[i];
		}
		if (isOver)
		{
			break;
		}
	}
	toBytes<clustering>(best[0], pair[0]);
	toBytes<clustering>(best[1], pair[1]);
}

#define ZORT_INSTANTIATE_CLUSTERING(clustering)                                                                                            \
	template void clusterColoursFast<kLanesLevel, EtcClustering::clustering>(const unsigned char(&)[48], unsigned char(&)[2][3]);
ZORT_INSTANTIATE_CLUSTERING(HalfIntensityFast)
ZORT_INSTANTIATE_CLUSTERING(NotIntensityFast)
ZORT_INSTANTIATE_CLUSTERING(Fast)
ZORT_INSTANTIATE_CLUSTERING(NotIntensity)
ZORT_INSTANTIATE_CLUSTERING(All)
#undef ZORT_INSTANTIATE_CLUSTERING
} // namespace zortexture
