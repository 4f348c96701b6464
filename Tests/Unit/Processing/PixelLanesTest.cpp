// The fast forms of measures, difference images, channels and alpha give the bytes of the plain ones, at each width.

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

#include "Channels.h"
#include "Comparison.h"
#include "Simd/SimdLevels.h"

using namespace zortexture;

namespace
{
struct Layout
{
	PixelType pixelType;
	EZORTVariableType channelType;
};
const Layout kBytes = {ZORStandard8PixelType, eVT_UnsignedByteNorm};
const Layout kWords = {ZORStandard16PixelType, eVT_UnsignedShortNorm};
const Layout kLayouts[] = {kBytes, kWords, {ZORStandard32PixelType, eVT_UnsignedIntegerNorm}, {ZORStandard32PixelType, eVT_SignedFloat}};

struct Shape
{
	unsigned int width;
	unsigned int height;
	unsigned int depth;
};
/// Less than a register, tails of every length, more than a run; the last one's sums leave the range in which floats are exact.
const Shape kShapes[] = {{1, 1, 1}, {3, 1, 1}, {7, 3, 1}, {13, 5, 3}, {257, 5, 1}, {301, 307, 1}};

std::mt19937& random()
{
	static std::mt19937 generator(1);
	return generator;
}

/// Any bytes: floats are of all sizes then, and no numbers, too. Or small steps of elements, with floats between -2 and 2.
CZORTexture makeTexture(const Layout& layout, const Shape& shape, bool isTame)
{
	CZORTexture texture(
	    CZORTextureHeader(layout.pixelType.id, shape.height, shape.width, shape.depth, 1, 1, 1, eCS_lRGB, layout.channelType));
	auto* const bytes = static_cast<unsigned char*>(texture.getDataPtr());
	for (unsigned int i = 0; i < texture.getDataSize(); ++i)
	{
		bytes[i] = static_cast<unsigned char>(isTame ? random()() % 4 : random()());
	}
	if (isTame && layout.channelType == eVT_SignedFloat)
	{
		for (unsigned int i = 0; i < texture.getDataSize() / 4; ++i)
		{
			reinterpret_cast<float*>(bytes)[i] = static_cast<float>(random()() % 4001) / 1000.0f - 2.0f;
		}
	}
	return texture;
}

std::string bytesOf(const CZORTexture& texture)
{
	return {static_cast<const char*>(texture.getDataPtr()), texture.getDataSize()};
}

/// The bits of the figures; what is no number counts as one value.
std::string bytesOf(const SChannelDifference& figures)
{
	const float values[] = {figures.red, figures.green, figures.blue, figures.alpha, figures.all};
	std::string bytes;
	for (const float value : values)
	{
		const float kept = std::isnan(value) ? std::nanf("") : value;
		bytes.append(reinterpret_cast<const char*>(&kept), sizeof(kept));
	}
	return bytes;
}

/// Runs `function`, whose result bytesOf takes, at every level.
template<typename Function>
void expectSameBytes(Function&& function, const std::string& what)
{
	const std::string plain = bytesOf(atSimdLevel(eSimdPlain, function));
	for (const ESimdLevel level : kVectorLevels)
	{
		EXPECT_TRUE(bytesOf(atSimdLevel(level, function)) == plain) << what << " at level " << level;
	}
}

TEST(PixelLanes, CompareAsPlainNumbersDo)
{
	for (const Layout& layoutOfA : kLayouts)
	{
		for (const Layout& layoutOfB : kLayouts)
		{
			for (const Shape& shape : kShapes)
			{
				// The large one is for the sums of bytes alone.
				if (shape.width > 257 && (layoutOfA.channelType != kBytes.channelType || layoutOfB.channelType != kBytes.channelType))
				{
					continue;
				}
				for (const bool isTame : {false, true})
				{
					const CZORTexture a = makeTexture(layoutOfA, shape, isTame);
					const CZORTexture b = makeTexture(layoutOfB, shape, isTame);
					const std::string what = std::to_string(layoutOfA.channelType) + " and " + std::to_string(layoutOfB.channelType) +
					                         ", width " + std::to_string(shape.width) + (isTame ? ", tame: " : ": ");
					expectSameBytes([&] { return GetMaxDifference(a, b, 0, 0, 0); }, what + "maximum");
					expectSameBytes([&] { return GetMeanErrorValue(a, b, 0, 0, 0); }, what + "mean");
					expectSameBytes([&] { return GetRMSErrorValue(a, b, 0, 0, 0); }, what + "root");
					expectSameBytes([&] { return GetStandardDeviation(a, b, 0, 0, 0); }, what + "deviation");
					expectSameBytes([&] { return ColourDiff(a, b, 1.7f); }, what + "colours");
					expectSameBytes([&] { return ToleranceDiff(a, b, 0.3f); }, what + "tolerance");
					for (const float ratio : {0.0f, 0.3f, 1.0f})
					{
						expectSameBytes([&] { return BlendDiff(a, b, ratio); }, what + "blend");
					}
				}
			}
		}
	}
}

TEST(PixelLanes, BlendsWrapAtTheEndsOfTheIntegers)
{
	const float ends[] = {1e7f,    8421505.0f, 8421504.4f, -8421504.4f, -8421505.0f, 3.6170086e16f, 3.6170088e16f, -3.6170088e16f,
	                      3.7e16f, -3.7e16f,   3e38f,      -3e38f,      INFINITY,    -INFINITY,     NAN,           -0.003f};
	const CZORTextureHeader header(ZORStandard32PixelType.id, 1, 4, 1, 1, 1, 1, eCS_lRGB, eVT_SignedFloat);
	const CZORTexture texture(header, ends);
	expectSameBytes([&] { return BlendDiff(texture, texture, 1.0f); }, "blend");
}

TEST(PixelLanes, MoveChannelsOfBytes)
{
	for (unsigned int round = 0; round < 300; ++round)
	{
		const Shape& shape = kShapes[round % 5];
		const CZORTexture source = makeTexture(kBytes, shape, false);
		const CZORTexture destination = makeTexture(kBytes, shape, false);
		// Names of no channel and greys among them, though most lists are without.
		EChannelName from[5];
		EChannelName to[5];
		const unsigned int count = static_cast<unsigned int>(random()() % 6);
		for (unsigned int i = 0; i < count; ++i)
		{
			from[i] = static_cast<EChannelName>(round % 8 == 0 ? random()() % 9 : random()() % 5);
			to[i] = static_cast<EChannelName>(random()() % 9);
		}
		for (const bool isInPlace : {false, true})
		{
			expectSameBytes(
			    [&]
			    {
				    CZORTexture copy(isInPlace ? source : destination);
				    EXPECT_TRUE(CopyChannels(copy, isInPlace ? copy : source, count, to, from));
				    return copy;
			    },
			    "moves");
		}
	}
}

TEST(PixelLanes, MultiplyEveryByteByEveryAlpha)
{
	for (const unsigned int width : {256u, 253u})
	{
		CZORTexture all = makeTexture(kBytes, {width, 256, 1}, false);
		auto* const pixels = static_cast<Pixel<unsigned char>*>(all.getDataPtr());
		for (unsigned int i = 0; i < width * 256; ++i)
		{
			pixels[i].g = static_cast<unsigned char>(i % width);
			pixels[i].a = static_cast<unsigned char>(i / width);
		}
		expectSameBytes(
		    [&]
		    {
			    CZORTexture copy(all);
			    EXPECT_TRUE(PreMultiplyAlpha(copy));
			    return copy;
		    },
		    "alpha");
	}
}

TEST(PixelLanes, BleedByRunningSums)
{
	const Shape shapes[] = {{1, 1, 1}, {40, 3, 1}, {9, 50, 1}, {61, 37, 1}, {5, 4, 40}, {21, 20, 19}};
	for (const Shape& shape : shapes)
	{
		for (const Layout& layout : {kBytes, kWords})
		{
			for (const unsigned int share : {2u, 50u}) // of the pixels that are opaque, one in so many
			{
				CZORTexture picture = makeTexture(layout, shape, false);
				const auto setAlpha = [&]<typename T>(Pixel<T>* pixels)
				{
					for (unsigned int i = 0; i < shape.width * shape.height * shape.depth; ++i)
					{
						// Bright ones in words, whose sums are no longer exact as floats where many come together.
						pixels[i].r |= static_cast<T>(0xF000);
						pixels[i].a = static_cast<T>(random()() % share == 0 ? 8 + random()() % 200 : random()() % 8);
					}
				};
				layout.channelType == eVT_UnsignedByteNorm ? setAlpha(static_cast<Pixel<unsigned char>*>(picture.getDataPtr()))
				                                           : setAlpha(static_cast<Pixel<unsigned short>*>(picture.getDataPtr()));
				expectSameBytes(
				    [&]
				    {
					    CZORTexture copy(picture);
					    EXPECT_TRUE(Bleed(copy));
					    return copy;
				    },
				    "bleeding at width " + std::to_string(shape.width) + ", layout " + std::to_string(layout.channelType));
			}
		}
	}
}
} // namespace
