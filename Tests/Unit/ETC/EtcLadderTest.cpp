#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "Codecs/ETC/EacBlock.h"
#include "Codecs/ETC/EtcBlock.h"
#include "Codecs/ETC/EtcFastSearch.h"
#include "ETCCodec.h"
#include "EtcTestSupport.h"

namespace zortexture
{
namespace
{
using etctest::Bytes;
using Block = std::array<unsigned char, 8>;

/// Texels with R, G, B, A.
using Texels = std::array<unsigned char, 64>;

TexelBlock splitTexels(const Texels& texels)
{
	TexelBlock split;
	for (unsigned int i = 0; i < 16; ++i)
	{
		std::copy_n(&texels[i * 4], 3, &split.colours[i * 3]);
		split.alphas[i] = texels[i * 4 + 3];
	}
	return split;
}

/// A candidate as a file would hold it, so that the full decoder measures it.
struct Candidate
{
	std::string name;
	Block stored{};
	double error = 0.0;
};

/// The plain error over the texels whose alpha is at least `leastAlpha`, or the perceptual one (in thousandths) over all.
double measure(const Block& stored, const TexelBlock& texels, unsigned int format, int leastAlpha, bool perceptual)
{
	unsigned char decoded[64];
	ETCDecompress(stored.data(), decoded, 4, 4, format, false);
	const unsigned int step = format == ePF_ETC2_RGB_A1 ? 4 : 3;
	unsigned char colours[48];
	double sum = 0.0;
	for (unsigned int i = 0; i < 48; ++i)
	{
		colours[i] = decoded[i / 3 * step + i % 3];
		const double difference = colours[i] - texels.colours[i];
		sum += texels.alphas[i / 3] >= leastAlpha ? difference * difference : 0.0;
	}
	return perceptual ? calcBlockPerceptualErrorRGB(texels.colours, colours, 4, 0, 0) * 1000.0 : sum;
}

/// Recomputes the ladder for one block from the searches.
class CLadder
{
public:
	CLadder(const TexelBlock& texels, unsigned int format, bool perceptual) : m_texels(texels), m_format(format), m_perceptual(perceptual)
	{
	}

	Candidate etc1() const
	{
		const Candidate average = run("average", m_perceptual ? compressBlockDiffFlipAveragePerceptual : compressBlockDiffFlipAverage);
		const Candidate combined = run("combined", m_perceptual ? compressBlockDiffFlipCombinedPerceptual : compressBlockDiffFlipCombined);
		return average.error > combined.error ? combined : average;
	}

	Candidate etc2(const Candidate& start) const
	{
		const std::vector<Candidate> candidates = {start, run("planar", compressBlockPlanar57, stuff57bits),
		                                           m_perceptual ? run("T", compressBlockTHUMB59TFastestPerceptual1000, stuff59bits)
		                                                        : run("T", compressBlockTHUMB59TFastest, stuff59bits),
		                                           m_perceptual ? run("H", compressBlockTHUMB58HFastestPerceptual1000, stuff58bits)
		                                                        : run("H", compressBlockTHUMB58HFastest, stuff58bits)};
		// The first of the least errors.
		const Candidate best = *std::min_element(candidates.begin(), candidates.end(),
		                                         [](const Candidate& a, const Candidate& b) { return a.error < b.error; });
		Candidate refined = best;
		if (best.name == "H")
		{
			refined = run("refined H", compressBlockTHUMB58HFast, stuff58bits);
		}
		else if (best.name == "T")
		{
			refined = run("refined T", compressBlockTHUMB59TFast, stuff59bits);
		}
		refined.error = measure(refined.stored, m_texels, m_format, 0, false); // in plain squares, for both twins
		return refined.error < best.error ? refined : best;
	}

	Candidate oneBitAlpha() const
	{
		std::vector<Candidate> candidates;
		candidates.push_back(runAlpha(
		    "punch-through", [](auto&&... arguments) { compressBlockDifferentialWithAlpha(true, arguments...); }, nullptr));
		candidates.push_back(runAlpha("T alpha", compressBlockTHUMB59TAlpha, stuff59bitsDiffFalse));
		candidates.push_back(runAlpha("H alpha", compressBlockTHUMB58HAlpha, stuff58bitsDiffFalse));
		const bool transparent = std::any_of(m_texels.alphas, m_texels.alphas + 16, [](int alpha) { return alpha < 128; });
		if (!transparent)
		{
			candidates.push_back(runAlpha(
			    "opaque", [](auto&&... arguments) { compressBlockDifferentialWithAlpha(false, arguments...); }, nullptr));
			candidates.back().error = measure(candidates.back().stored, m_texels, m_format, 0, false);
		}
		const Candidate best = *std::min_element(candidates.begin(), candidates.end(),
		                                         [](const Candidate& a, const Candidate& b) { return a.error < b.error; });
		return transparent ? best : etc2(best);
	}

private:
	template<typename Search>
	Candidate run(const char* name, Search search, void (*stuff)(unsigned int, unsigned int, unsigned int&, unsigned int&) = nullptr) const
	{
		unsigned int word1 = 0;
		unsigned int word2 = 0;
		search(m_texels.colours, 4, 0, 0, word1, word2);
		return finish(name, word1, word2, stuff, 0);
	}

	template<typename Search>
	Candidate runAlpha(const char* name, Search search, void (*stuff)(unsigned int, unsigned int, unsigned int&, unsigned int&)) const
	{
		unsigned int word1 = 0;
		unsigned int word2 = 0;
		search(m_texels.colours, m_texels.alphas, 4, 0, 0, word1, word2);
		return finish(name, word1, word2, stuff, 129);
	}

	Candidate finish(const char* name, unsigned int word1, unsigned int word2,
	                 void (*stuff)(unsigned int, unsigned int, unsigned int&, unsigned int&), int leastAlpha) const
	{
		if (stuff != nullptr)
		{
			stuff(word1, word2, word1, word2);
		}
		Candidate candidate{name, etctest::storedWords(word1, word2), 0.0};
		candidate.error = measure(candidate.stored, m_texels, m_format, leastAlpha, m_perceptual);
		return candidate;
	}

	const TexelBlock& m_texels;
	unsigned int m_format;
	bool m_perceptual;
};

/// Blocks that each mode is good at: slopes, two hues with brightness around them, noise, and one colour.
Texels makeTexels(std::mt19937& random, unsigned int kind)
{
	Texels texels;
	const Bytes colours = etctest::randomBytes(random, 12);
	const unsigned int pattern = static_cast<unsigned int>(random());
	for (unsigned int i = 0; i < 16; ++i)
	{
		for (unsigned int channel = 0; channel < 3; ++channel)
		{
			const int x = static_cast<int>(i % 4);
			const int y = static_cast<int>(i / 4);
			int value = colours[channel];
			switch (kind % 5)
			{
			case 0:
				value += (colours[3 + channel] - value) * x / 8 + (colours[6 + channel] - value) * y / 8;
				break;
			case 1: // hues of equal brightness steps
				value = colours[((pattern >> i) & 1) * 3 + channel] + (static_cast<int>((pattern >> (16 + i)) & 1) * 40 - 20);
				break;
			case 2: // one hue and a second with three steps of brightness
				value = (i & 3) == 0 ? colours[3 + channel] : value + (static_cast<int>(i % 3) - 1) * 32;
				break;
			case 3:
				value = static_cast<int>(random() & 255);
				break;
			default:
				break;
			}
			texels[i * 4 + channel] = clamp(value);
		}
		texels[i * 4 + 3] = 255;
	}
	return texels;
}

TEST(EtcLadder, Etc1AndEtc2TakeTheBlockThatTheStepsGive)
{
	std::mt19937 random(21);
	std::map<std::string, int> winners;
	for (unsigned int round = 0; round < 300; ++round)
	{
		const Texels texels = makeTexels(random, round);
		const TexelBlock split = splitTexels(texels);
		const bool perceptual = (round / 5) % 2 == 1;
		const int quality = perceptual ? 1 : 0;
		const CLadder ladder(split, ePF_ETC2_RGB, perceptual);
		const Candidate etc1 = ladder.etc1();
		const Candidate etc2 = ladder.etc2(etc1);
		winners[(perceptual ? "perceptual " : "") + etc2.name]++;

		Block block;
		ASSERT_EQ(ETCCompress(split.colours, block.data(), 4, 4, quality, ePF_ETC1, false), 8U);
		ASSERT_EQ(block, etc1.stored) << "round " << round << ", " << etc1.name;
		ASSERT_EQ(ETCCompress(split.colours, block.data(), 4, 4, quality, ePF_ETC2_RGB, false), 8U);
		ASSERT_EQ(block, etc2.stored) << "round " << round << ", " << etc2.name;

		std::array<unsigned char, 16> both;
		Block alpha;
		ASSERT_EQ(ETCCompress(texels.data(), both.data(), 4, 4, quality, ePF_ETC2_RGBA, false), 16U);
		compressBlockAlphaFast(split.alphas, 0, 0, 4, alpha.data(), alphaTable);
		ASSERT_TRUE(std::equal(alpha.begin(), alpha.end(), both.begin()));
		ASSERT_TRUE(std::equal(etc2.stored.begin(), etc2.stored.end(), both.begin() + 8));
	}
	// The blocks reach every branch.
	for (const char* name :
	     {"average", "combined", "planar", "refined T", "refined H", "perceptual planar", "perceptual refined T", "perceptual refined H"})
	{
		EXPECT_GT(winners[name], 0) << name;
	}
}

TEST(EtcLadder, OneBitAlphaTakesTheBlockThatTheStepsGive)
{
	std::mt19937 random(22);
	std::map<std::string, int> winners;
	testing::internal::CaptureStdout(); // searches report alphas between the ends
	for (unsigned int round = 0; round < 400; ++round)
	{
		Texels texels = makeTexels(random, round);
		const unsigned int cut = static_cast<unsigned int>(random());
		for (unsigned int i = 0; i < 16; ++i)
		{
			const unsigned char alphas[4] = {255,                                                         // opaque
			                                 static_cast<unsigned char>((cut >> i) & 1 ? 255 : 0),        // a cut-out
			                                 static_cast<unsigned char>(cut % 256 / 4 * (i % 4) + i * 4), // a smooth edge
			                                 static_cast<unsigned char>(i == cut % 16 ? 127 + (cut >> 8) % 3 : 255)};
			texels[i * 4 + 3] = alphas[round / 5 % 4];
		}
		if (round % 50 == 0)
		{
			// One black texel in a quarter of blue ones, the rest white and all of them transparent: the deltas of the punch-through block
			// do not reach down from white, T's colours are white and blue, and only the black of H's transparent index is exact.
			for (unsigned int i = 0; i < 16; ++i)
			{
				const bool quarter = i % 4 > 1 && i > 7;
				const auto others = static_cast<unsigned char>(quarter ? 0 : 255);
				const auto last = static_cast<unsigned char>(i == 15 ? 0 : 255);
				const Texels texel{others, others, last, static_cast<unsigned char>(255 - last)};
				std::copy_n(texel.data(), 4, &texels[i * 4]);
			}
		}
		const Candidate expected = CLadder(splitTexels(texels), ePF_ETC2_RGB_A1, false).oneBitAlpha();
		winners[expected.name]++;
		Block block;
		const int quality = static_cast<int>(round % 7) - 1; // plays no part
		ASSERT_EQ(ETCCompress(texels.data(), block.data(), 4, 4, quality, ePF_ETC2_RGB_A1, false), 8U);
		ASSERT_EQ(block, expected.stored) << "round " << round << ", " << expected.name;
	}
	testing::internal::GetCapturedStdout();
	for (const char* name : {"punch-through", "T alpha", "H alpha", "opaque", "planar", "refined T", "refined H"})
	{
		EXPECT_GT(winners[name], 0) << name;
	}
}

TEST(EtcLadder, OneBitAlphaReportsTexelsThatOnlyTheSearchCounts)
{
	std::mt19937 random(23);
	Texels texels = makeTexels(random, 3);
	Block block;
	testing::internal::CaptureStdout();
	ETCCompress(texels.data(), block.data(), 4, 4, 0, ePF_ETC2_RGB_A1, false);
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
	texels[3] = 128; // opaque to the search, not to the measure
	testing::internal::CaptureStdout();
	ETCCompress(texels.data(), block.data(), 4, 4, 0, ePF_ETC2_RGB_A1, false);
	EXPECT_EQ(testing::internal::GetCapturedStdout().substr(0, 9), "testerr: ");
}
} // namespace
} // namespace zortexture
