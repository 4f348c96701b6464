// The vector forms of the fast compressors against the compressor classes, which are the plain form.

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "Simd/SimdLevels.h"
#include "TesselCodec.h"

using namespace zortexture;

namespace
{
struct Picture
{
	std::string what;
	unsigned width;
	unsigned height;
	std::vector<unsigned char> pixels;
};

/// Random pictures of several kinds: what a fit does depends on how colours lie, and which blocks a round can skip on how fast they settle.
std::vector<Picture> pictures()
{
	std::mt19937 random(42);
	std::vector<Picture> all;
	const auto below = [&random](unsigned end)
	{
		return static_cast<unsigned>(random() % end);
	};
	for (unsigned i = 0; i < 72; ++i)
	{
		Picture picture = {"", 1 + below(90), 4 + below(60), {}};
		const unsigned kind = i % 6;
		picture.what = std::to_string(picture.width) + "x" + std::to_string(picture.height) + " of kind " + std::to_string(kind);
		const int base[4] = {int(below(256)), int(below(256)), int(below(256)), int(below(256))};
		const int slope[4] = {int(below(9)) - 4, int(below(9)) - 4, int(below(9)) - 4, int(below(5)) - 2};
		for (unsigned y = 0; y < picture.height; ++y)
		{
			for (unsigned x = 0; x < picture.width; ++x)
			{
				for (int c = 0; c < 4; ++c)
				{
					int value = 0;
					switch (kind)
					{
					case 0: // noise
						value = int(below(256));
						break;
					case 1: // a ramp with a little noise, opaque
						value = c == 3 ? 255 : base[c] + slope[c] * int(x + y) + int(below(12));
						break;
					case 2: // the ends of the range by turns, clear pixels too
						value = below(2) != 0 ? 255 : 0;
						break;
					case 3: // areas of one colour: flat modulation, nothing to correct
						value = base[c] + 60 * slope[c] * int((x / 11 + y / 7) % 2);
						break;
					case 4: // smooth, with a few pixels that stand out
						value = below(40) == 0 ? int(below(256)) : base[c] + slope[c] * int(x) / 2;
						break;
					default: // cut-out
						value = c == 3 ? ((x / 5 + y / 6) % 2 != 0 ? 255 : 0) : base[c] + int(below(50));
						break;
					}
					picture.pixels.push_back(static_cast<unsigned char>(std::clamp(value, 0, 255)));
				}
			}
		}
		all.push_back(picture);
	}
	return all;
}

using Encode = unsigned int (*)(void*, void*, unsigned int, unsigned int, bool, bool, bool, int);

std::vector<unsigned char> encoded(Encode encode, const Picture& picture, bool is2bpp, bool overlapWindow, int iterations)
{
	std::vector<unsigned char> in = picture.pixels;
	std::vector<unsigned char> blocks(in.size(), 0xCD);
	encode(in.data(), blocks.data(), picture.width, picture.height, false, overlapWindow, is2bpp, iterations);
	return blocks;
}
} // namespace

TEST(TesselFastPath, CompressorsGiveThePlainBytes)
{
	for (const Picture& picture : pictures())
	{
		for (const Encode encode : {tesselCompressMW, tessel2Compress})
		{
			for (const bool is2bpp : {false, true})
			{
				for (const int iterations : {0, 1, 2, 8})
				{
					const bool overlapWindow = iterations != 2;
					const auto run = [&]()
					{
						return encoded(encode, picture, is2bpp, overlapWindow, iterations);
					};
					const std::vector<unsigned char> expected = atSimdLevel(eSimdPlain, run);
					for (const ESimdLevel level : kVectorLevels)
					{
						ASSERT_EQ(atSimdLevel(level, run), expected)
						    << picture.what << ", " << (encode == tesselCompressMW ? "first" : "second") << " generation, "
						    << (is2bpp ? 2 : 4) << "bpp, " << iterations << " iterations, level " << level;
					}
				}
			}
		}
	}
}

TEST(TesselFastPath, SectionsGiveThePlainBytes)
{
	for (const Picture& picture : pictures())
	{
		const auto run = [&picture]()
		{
			std::vector<unsigned char> blocks(picture.pixels.size(), 0xCD);
			Tessel2SectionCompress(picture.pixels.data(), blocks.data(), picture.width, picture.height);
			return blocks;
		};
		const std::vector<unsigned char> expected = atSimdLevel(eSimdPlain, run);
		for (const ESimdLevel level : kVectorLevels)
		{
			ASSERT_EQ(atSimdLevel(level, run), expected) << picture.what << ", level " << level;
		}
	}
}
