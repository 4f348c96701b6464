#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

#include "Codecs/ETC/EtcFastSearch.h"
#include "Codecs/ETC/EtcRandom.h"
#include "EtcSearchTestSupport.h"

using namespace zortexture;
using namespace etctest;

namespace
{
using Colours = std::array<unsigned char, 6>;
using ClusterFunction = void (*)(const unsigned char*, unsigned int, unsigned int, unsigned int, EtcColourPair&);

Colours cluster(ClusterFunction function, const unsigned char* block)
{
	EtcColourPair pair;
	function(block, 4, 0, 0, pair);
	return {pair[0][0], pair[0][1], pair[0][2], pair[1][0], pair[1][1], pair[1][2]};
}

struct Variant
{
	ClusterFunction function;
	double intensityWeight;
	bool isRgb;
	bool stopsWhenConverged;
};

constexpr Variant kVariants[] = {{computeColorLBG, 1.0, true, false},
                                 {computeColorLBGfast, 1.0, true, true},
                                 {computeColorLBGNotIntensity, 0.0, false, false},
                                 {computeColorLBGNotIntensityFast, 0.0, false, true},
                                 {computeColorLBGHalfIntensityFast, 0.5, false, true}};

#ifdef __GLIBC__
/// The clustering as a textbook loop on the process's own generator.
Colours clusterPlainly(const Variant& variant, const Rgb16& block)
{
	std::srand(10000);
	double texels[16][3];
	double low[3] = {512.0, 512.0, 512.0};
	double high[3] = {-512.0, -512.0, -512.0};
	for (std::size_t i = 0; i < 16; ++i)
	{
		const double r = block[i * 3];
		const double g = block[i * 3 + 1];
		const double b = block[i * 3 + 2];
		const double turned[3] = {0.5773502691896258 * (r + g + b), 0.7071067811865475 * (r - g),
		                          0.4082482904638631 * (r + g) - 0.8164965809277261 * b};
		const double plain[3] = {r, g, b};
		for (int k = 0; k < 3; ++k)
		{
			texels[i][k] = variant.isRgb ? plain[k] : turned[k];
			low[k] = std::fmin(low[k], texels[i][k]);
			high[k] = std::fmax(high[k], texels[i][k]);
		}
	}
	double bestError = 12582912.0;
	double previous = 12582912.0;
	double best[2][3] = {};
	bool isOver = false;
	for (int seed = 0; seed < 10 && !isOver; ++seed)
	{
		double c[2][3];
		for (auto& colour : c)
		{
			for (int k = 0; k < 3; ++k)
			{
				colour[k] = std::rand() / 2147483647.0 * (high[k] - low[k]) + low[k];
			}
		}
		for (int iteration = 0; iteration < 10; ++iteration)
		{
			double error = 0.0;
			double sums[2][3] = {};
			int counts[2] = {};
			for (auto& colour : c)
			{
				for (double& value : colour)
				{
					value = variant.isRgb ? std::round(value) : value;
				}
			}
			for (const auto& texel : texels)
			{
				double distance[2];
				for (int j = 0; j < 2; ++j)
				{
					const double d0 = texel[0] - c[j][0];
					const double d1 = texel[1] - c[j][1];
					const double d2 = texel[2] - c[j][2];
					distance[j] = variant.intensityWeight * d0 * d0 + d1 * d1 + d2 * d2;
				}
				const int owner = distance[1] > distance[0] ? 0 : 1;
				error += distance[owner];
				++counts[owner];
				for (int k = 0; k < 3; ++k)
				{
					sums[owner][k] += texel[k];
				}
			}
			if (error == previous)
			{
				isOver = variant.stopsWhenConverged;
				break;
			}
			previous = error;
			if (error < bestError)
			{
				bestError = error;
				std::copy(&c[0][0], &c[0][0] + 6, &best[0][0]);
			}
			isOver = error == 0.0;
			if (isOver || counts[0] == 0 || counts[1] == 0)
			{
				break;
			}
			for (int j = 0; j < 2; ++j)
			{
				for (int k = 0; k < 3; ++k)
				{
					c[j][k] = sums[j][k] / counts[j];
				}
			}
		}
	}
	Colours result;
	for (std::size_t j = 0; j < 2; ++j)
	{
		const double i = best[j][0];
		const double a = best[j][1];
		const double b = best[j][2];
		const double back[3] = {0.5773502691896258 * i + 0.7071067811865475 * a + 0.4082482904638631 * b,
		                        0.5773502691896258 * i - 0.7071067811865475 * a + 0.4082482904638631 * b,
		                        0.5773502691896258 * i - 0.8164965809277261 * b};
		for (std::size_t k = 0; k < 3; ++k)
		{
			const double value = variant.isRgb ? best[j][k] : back[k];
			result[j * 3 + k] = static_cast<unsigned char>(std::lround(std::fmin(std::fmax(value, 0.0), 255.0)));
		}
	}
	return result;
}

TEST(EtcClustering, EqualsATextbookLoopOnThePlatformsGenerator)
{
	std::mt19937 random(31);
	for (unsigned int turn = 0; turn < 1200; ++turn)
	{
		const Rgb16 block = mixedBlock(random, turn);
		for (std::size_t i = 0; i < std::size(kVariants); ++i)
		{
			ASSERT_EQ(cluster(kVariants[i].function, block.data()), clusterPlainly(kVariants[i], block))
			    << "turn " << turn << " variant " << i;
		}
	}
}

template<std::uint32_t Seed>
void expectPlatformDraws()
{
	std::srand(Seed);
	for (const std::int32_t draw : platformRandomDraws<400>(Seed))
	{
		ASSERT_EQ(draw, std::rand()) << "seed " << Seed;
	}
}

TEST(EtcRandom, DrawsAreThePlatforms)
{
	expectPlatformDraws<10000>();
	expectPlatformDraws<0>();
	expectPlatformDraws<1>();
	expectPlatformDraws<0x80000005>();
}
#endif

TEST(EtcRandom, KnownFirstDraws)
{
	// What any program on the platform prints that never calls srand.
	constexpr auto kDraws = platformRandomDraws<2>(1);
	EXPECT_EQ(kDraws[0], 1804289383);
	EXPECT_EQ(kDraws[1], 846930886);
}

TEST(EtcClustering, LeavesTheProcesssGeneratorAlone)
{
	std::mt19937 random(32);
	const Rgb16 block = mixedBlock(random, 0);
	std::srand(77);
	const int first = std::rand();
	const int second = std::rand();
	std::srand(77);
	EXPECT_EQ(std::rand(), first);
	for (const Variant& variant : kVariants)
	{
		cluster(variant.function, block.data());
	}
	EXPECT_EQ(std::rand(), second);
}

TEST(EtcClustering, ThreadsAtOnceGetTheSameBlocksAsOne)
{
	std::mt19937 random(34);
	std::vector<Rgb16> blocks;
	for (unsigned int i = 0; i < 60; ++i)
	{
		blocks.push_back(mixedBlock(random, i));
	}
	const auto encode = [&blocks]
	{
		std::vector<unsigned int> words;
		for (const Rgb16& block : blocks)
		{
			unsigned int pair[2];
			compressBlockTHUMB59TFast(block.data(), 4, 0, 0, pair[0], pair[1]);
			words.insert(words.end(), pair, pair + 2);
			compressBlockTHUMB58HFast(block.data(), 4, 0, 0, pair[0], pair[1]);
			words.insert(words.end(), pair, pair + 2);
		}
		return words;
	};
	const std::vector<unsigned int> alone = encode();
	std::vector<unsigned int> together[4];
	std::vector<std::thread> threads;
	for (auto& words : together)
	{
		threads.emplace_back([&words, &encode] { words = encode(); });
	}
	for (std::thread& thread : threads)
	{
		thread.join();
	}
	for (const auto& words : together)
	{
		EXPECT_EQ(words, alone);
	}
}
} // namespace
