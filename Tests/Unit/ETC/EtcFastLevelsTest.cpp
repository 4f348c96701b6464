// The fast levels on every vector unit against their plain form, block for block.

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <vector>

#include "Codecs/ETC/EtcFastKernels.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "ETCCodec.h"
#include "Simd/SimdLevels.h"

namespace zortexture
{
namespace
{
/// What the texels of a block are made of; alphas go along for the formats that take them.
struct Picture
{
	unsigned int blocks;
	std::vector<unsigned char> rgba; ///< One block beside the other: 4 rows.

	explicit Picture(unsigned int count) : blocks(count), rgba(count * std::size_t{64})
	{
	}

	unsigned char& at(unsigned int block, unsigned int texel, unsigned int channel)
	{
		return rgba[((texel / 4) * std::size_t{4} * blocks + block * std::size_t{4} + texel % 4) * 4 + channel];
	}
};

unsigned char limited(int value)
{
	return static_cast<unsigned char>(value < 0 ? 0 : (value > 255 ? 255 : value));
}

/// Blocks of every sort: one colour, slopes, grain of every strength around colours up to the ends of the range, two and four colours
/// with and without grain, steps of brightness, noise, and extremes.
Picture makePicture(unsigned int blocks, unsigned int seed)
{
	Picture picture(blocks);
	std::mt19937 random(seed);
	const auto below = [&](unsigned int end)
	{
		return static_cast<int>(random() % end);
	};
	for (unsigned int block = 0; block < blocks; ++block)
	{
		int colours[4][3];
		int slopes[2][3];
		for (int channel = 0; channel < 3; ++channel)
		{
			for (auto& colour : colours)
			{
				colour[channel] = below(300) - 22;
			}
			slopes[0][channel] = below(61) - 30;
			slopes[1][channel] = below(61) - 30;
		}
		const int kind = below(9);
		const int grain = 1 << below(7);
		const bool isGrainy = below(3) != 0;
		const unsigned int pattern = random();
		const unsigned int pattern2 = below(2) == 0 ? 0 : static_cast<unsigned int>(random());
		const int alphas = below(5);
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			const int x = static_cast<int>(texel % 4);
			const int y = static_cast<int>(texel / 4);
			const unsigned int cluster = (pattern >> texel & 1) + (pattern2 >> texel & 1) * 2;
			const int step = ((static_cast<int>(pattern >> (texel + 7)) & 3) - 1) * grain;
			for (int channel = 0; channel < 3; ++channel)
			{
				int value = colours[0][channel];
				switch (kind)
				{
				case 0:
					break;
				case 1:
					value += slopes[0][channel] * x / 2 + slopes[1][channel] * y / 2;
					break;
				case 2:
				case 3:
					value = colours[cluster][channel];
					break;
				case 4: // brightness alone
					value += step;
					break;
				case 5: // two hues with steps of brightness
					value = colours[cluster & 1][channel] + step;
					break;
				case 6:
					value = below(256);
					break;
				case 7:
					value = below(2) * 255;
					break;
				default: // halves
					value = colours[(pattern & 1) != 0 ? x / 2 : y / 2][channel];
					break;
				}
				picture.at(block, texel, static_cast<unsigned int>(channel)) =
				    limited(value + (isGrainy ? below(static_cast<unsigned int>(grain)) - grain / 2 : 0));
			}
			const int alphaOfKind[5] = {255, 255, (pattern2 >> texel & 1) != 0 ? 0 : 255, below(256), 126 + below(4)};
			picture.at(block, texel, 3) = limited(alphaOfKind[alphas]);
		}
	}
	return picture;
}

/// Pairs of halves whose sums of eight texels take every value, in every channel.
Picture everySum()
{
	constexpr unsigned int kSums = 2041;
	Picture picture(kSums);
	for (unsigned int sum = 0; sum < kSums; ++sum)
	{
		for (unsigned int texel = 0; texel < 16; ++texel)
		{
			for (unsigned int channel = 0; channel < 3; ++channel)
			{
				const unsigned int half = (sum & 1) != 0 ? texel % 4 / 2 : texel / 8;
				const unsigned int number = (sum & 1) != 0 ? texel / 4 * 2 + texel % 2 : texel % 8;
				const unsigned int wanted = (sum * (channel * 2 + 1) + half * 13 * channel) % kSums;
				picture.at(sum, texel, channel) = static_cast<unsigned char>((wanted + number) / 8);
			}
			picture.at(sum, texel, 3) = 255;
		}
	}
	return picture;
}

std::vector<unsigned char> compress(const Picture& picture, unsigned int format, int quality)
{
	std::vector<unsigned char> source;
	const bool hasAlphas = format == ePF_ETC2_RGBA || format == ePF_ETC2_RGB_A1;
	for (std::size_t i = 0; i < picture.rgba.size(); ++i)
	{
		if (hasAlphas || i % 4 != 3)
		{
			source.push_back(picture.rgba[i]);
		}
	}
	std::vector<unsigned char> result(picture.blocks * std::size_t{16});
	result.resize(ETCCompress(source.data(), result.data(), picture.blocks * 4, 4, quality, format, false));
	return result;
}

TEST(EtcFastLevels, EveryVectorUnitGivesThePlainBlocks)
{
	const struct
	{
		const char* name;
		unsigned int format;
		int quality;
	} searches[] = {{"ETC1", ePF_ETC1, 0},           {"ETC1 perceptual", ePF_ETC1, 1},
	                {"ETC2 RGB", ePF_ETC2_RGB, 0},   {"ETC2 RGB perceptual", ePF_ETC2_RGB, 1},
	                {"ETC2 RGBA", ePF_ETC2_RGBA, 1}, {"ETC2 one-bit alpha", ePF_ETC2_RGB_A1, 0}};
	const Picture pictures[] = {makePicture(6000, 1), everySum()};
	testing::internal::CaptureStdout(); // alphas between the ends are reported
	for (const auto& search : searches)
	{
		for (const Picture& picture : pictures)
		{
			const auto run = [&]
			{
				return compress(picture, search.format, search.quality);
			};
			const std::vector<unsigned char> plain = atSimdLevel(eSimdPlain, run);
			for (const ESimdLevel level : kVectorLevels)
			{
				const std::vector<unsigned char> found = atSimdLevel(level, run);
				ASSERT_EQ(found.size(), plain.size());
				const std::size_t blockBytes = plain.size() / picture.blocks;
				const auto differs = std::mismatch(plain.begin(), plain.end(), found.begin());
				ASSERT_TRUE(differs.first == plain.end())
				    << search.name << " at level " << level << ", block " << (differs.first - plain.begin()) / blockBytes;
			}
		}
	}
	testing::internal::GetCapturedStdout();
}

#if ZORT_HAS_SIMD

using Clustering = void (*)(const unsigned char (&colours)[48], unsigned char (&pair)[2][3]);

template<ESimdLevel level>
constexpr Clustering kClusterings[] = {
    clusterColoursFast<level, EtcClustering::HalfIntensityFast>, clusterColoursFast<level, EtcClustering::NotIntensityFast>,
    clusterColoursFast<level, EtcClustering::Fast>, clusterColoursFast<level, EtcClustering::NotIntensity>,
    clusterColoursFast<level, EtcClustering::All>};

/// Blocks that the ladder seldom clusters: texels as far from one colour as from the other, and lines of texels, along which the colours
/// creep for many iterations.
TEST(EtcFastLevels, ClusteringsBreakTiesAndEndAsThePlainOnes)
{
	constexpr decltype(&computeColorLBG) kPlain[] = {computeColorLBGHalfIntensityFast, computeColorLBGNotIntensityFast, computeColorLBGfast,
	                                                 computeColorLBGNotIntensity, computeColorLBG};
	std::mt19937 random(2);
	for (unsigned int turn = 0; turn < 6000; ++turn)
	{
		unsigned char colours[48];
		const auto range = static_cast<unsigned int>(random() % 5 + 2);
		const auto step = static_cast<unsigned int>(random() % 30 + 1);
		for (unsigned int i = 0; i < 48; ++i)
		{
			const auto onLine = static_cast<unsigned int>(
			    ((turn % 4 == 1 ? i / 3 * (i / 3) * (i / 3) / 13 : i / 3 * (i / 3)) + random() % range) * (i % 3 + 1) / 3);
			colours[i] = static_cast<unsigned char>(turn % 2 == 0 ? random() % range * step : onLine % 256);
		}
		for (unsigned int i = 0; i < std::size(kPlain); ++i)
		{
			EtcColourPair expected;
			EtcColourPair found;
			kPlain[i](colours, 4, 0, 0, expected);
			kClusterings<eSimdSse2>[i](colours, found);
			ASSERT_EQ(std::memcmp(found, expected, sizeof(found)), 0) << "turn " << turn << ", clustering " << i;
			if (bestSimdLevel() >= eSimdAvx2)
			{
				kClusterings<eSimdAvx2>[i](colours, found);
				ASSERT_EQ(std::memcmp(found, expected, sizeof(found)), 0) << "turn " << turn << ", clustering " << i;
			}
		}
	}
}

#endif
} // namespace
} // namespace zortexture
