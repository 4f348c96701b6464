// The pipeline through codecs: what they are handed, what comes back, and what fails.

#include <cstring>
#include <gtest/gtest.h>
#include <map>

#include "PixelLayouts.h"
#include "TextureTools.h"

using namespace zortexture;

namespace
{
CZORTextureHeader shape(PixelType type, unsigned int width, unsigned int height, unsigned int depth = 1, unsigned int levels = 1,
                        unsigned int surfaces = 1, unsigned int faces = 1)
{
	return CZORTextureHeader(type.id, height, width, depth, levels, surfaces, faces);
}

bool toStandard(CZORTexture& texture)
{
	return Transcode(texture, ZORStandard8PixelType, eVT_UnsignedByteNorm, eCS_lRGB);
}

bool to(CZORTexture& texture, PixelType target, ECompressorQuality quality = eQuality_0)
{
	return Transcode(texture, target, eVT_UnsignedByteNorm, eCS_lRGB, quality);
}
} // namespace

TEST(CodecPipeline, FormatsHaveTheirCodecs)
{
	// One letter a format, in the order of their numbers.
	const std::string letters = "TTTTTTEDDDDDBBBBYY1SRREEEXX";
	const std::map<char, CodecType> codecs = {{'T', eCodecTessel}, {'E', eCodecETC},    {'D', eCodecDXT},
	                                          {'B', eCodecBC},     {'Y', eCodecYUV},    {'R', eCodecRGBG},
	                                          {'X', eCodecEAC},    {'1', eCodecOneBPP}, {'S', eCodecSharedExponent}};
	EXPECT_EQ(formatToCodecMap.size(), 51u);
	for (unsigned int format = 0; format < 60; ++format)
	{
		CodecType expected = format < 51 ? eCodecASTC : eCodecNone;
		if (format < letters.size())
		{
			expected = codecs.at(letters[format]);
		}
		EXPECT_EQ(getCodecType(static_cast<EZORTPixelFormat>(format)), expected) << format;
	}
}

TEST(CodecPipeline, IntermediateForms)
{
	struct
	{
		PixelType format;
		EZORTVariableType type;
		const char* expected;
		EZORTVariableType expectedType;
	} const cases[] = {
	    {ePF_ETC1, eVT_SignedFloat, "rgb8.8.8", eVT_UnsignedByteNorm},
	    {ePF_ETC2_RGB, eVT_UnsignedByteNorm, "rgb8.8.8", eVT_UnsignedByteNorm},
	    {ePF_ETC2_RGBA, eVT_UnsignedByteNorm, "rgba8.8.8.8", eVT_UnsignedByteNorm},
	    {ePF_R9G9B9E5, eVT_UnsignedByteNorm, "rgb32.32.32", eVT_SignedFloat},
	    {ePF_EAC_R11, eVT_UnsignedInteger, "r16", eVT_UnsignedShortNorm},
	    {ePF_EAC_R11, eVT_SignedFloat, "r16", eVT_SignedShortNorm},
	    {ePF_EAC_RG11, eVT_UnsignedFloat, "rg16.16", eVT_UnsignedShortNorm},
	    {ePF_EAC_RG11, eVT_SignedByte, "rg16.16", eVT_SignedShortNorm},
	    {ePF_TesselII_2bpp, eVT_SignedFloat, "rgba8.8.8.8", eVT_UnsignedByteNorm},
	    {ePF_ASTC_6x6x6, eVT_SignedByte, "rgba8.8.8.8", eVT_UnsignedByteNorm},
	    {layout("r8"), eVT_SignedByte, "rgba8.8.8.8", eVT_UnsignedByteNorm},
	};
	for (const auto& test : cases)
	{
		PixelType type = test.format;
		EZORTVariableType channelType = test.type;
		IntermediateTranscodeFormat(type, channelType, type, channelType); // in place too
		EXPECT_EQ(type.id, layout(test.expected).id) << std::hex << test.format.id;
		EXPECT_EQ(channelType, test.expectedType) << std::hex << test.format.id;
	}
}

TEST(CodecPipeline, AnyBlocksDecodeAtAnySize)
{
	for (const unsigned int format : {0, 1, 2, 3, 4, 5, 6, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26})
	{
		for (const unsigned int width : {1, 2, 3, 4, 5, 7, 8, 9, 16, 33})
		{
			for (const unsigned int height : {1, 2, 3, 4, 7, 8, 17})
			{
				CZORTexture texture = randomTexture(shape(format, width, height, 1, 2, 2), width * 100 + height);
				ASSERT_TRUE(toStandard(texture)) << "format " << format << ", " << width << " x " << height;
				ASSERT_TRUE(texture.isDataComplete());
			}
		}
	}
}

// A level below a codec's unit repeats its columns; the rows below it are what follows in the texture.
TEST(CodecPipeline, SmallLevelsArePadded)
{
	const unsigned char w = 255;
	// White black white / black white black, one byte a row: bits 0, 2, 3, 5, 6 and 1, 4, 7.
	CZORTexture bits = textureOf(layout("l8"), eVT_UnsignedByteNorm, 3, 2, {w, 0, w, 0, w, 0});
	EXPECT_TRUE(to(bits, ePF_BW1bpp));
	EXPECT_EQ(bytesOf(bits), (Bytes{0x6D, 0x92}));

	CZORTexture pair = textureOf(ZORStandard8PixelType, eVT_UnsignedByteNorm, 1, 1, {10, 20, 30, 255});
	EXPECT_TRUE(to(pair, ePF_RGBG8888));
	EXPECT_EQ(bytesOf(pair), (Bytes{10, 20, 30, 20}));

	// Six surfaces of one pixel: the first block's rows are the first four of them, those of the last one end the data.
	CZORTexture column(shape(layout("l8"), 1, 1, 1, 1, 6));
	const unsigned char greys[6] = {w, 0, w, 0, 0, w};
	std::memcpy(column.getDataPtr(), greys, sizeof(greys));
	EXPECT_TRUE(to(column, ePF_ETC1));
	const Bytes blocks = bytesOf(column);
	CZORTexture first = textureOf(ePF_ETC1, eVT_UnsignedByteNorm, 4, 4, Bytes(blocks.begin(), blocks.begin() + 8));
	CZORTexture last = textureOf(ePF_ETC1, eVT_UnsignedByteNorm, 4, 4, Bytes(blocks.end() - 8, blocks.end()));
	ASSERT_TRUE(toStandard(first) && toStandard(last));
	for (unsigned int pixel = 0; pixel < 16; ++pixel)
	{
		EXPECT_EQ(bytesOf(first)[pixel * 4] > 127, pixel / 4 % 2 == 0) << pixel;
		EXPECT_EQ(bytesOf(last)[pixel * 4] > 127, pixel < 4) << pixel;
	}
}

TEST(CodecPipeline, OpaqueTesselFormatsForgetAlpha)
{
	for (const unsigned int format : {0, 1, 2, 3})
	{
		Bytes pixels;
		for (unsigned int i = 0; i < 16 * 16; ++i)
		{
			pixels.insert(pixels.end(), {200, 100, 50, 0});
		}
		CZORTexture texture = textureOf(ZORStandard8PixelType, eVT_UnsignedByteNorm, 16, 16, pixels);
		ASSERT_TRUE(to(texture, format));
		ASSERT_TRUE(toStandard(texture));
		EXPECT_EQ(bytesOf(texture)[3], format % 2 == 0 ? 255 : 0) << format;
	}
}

TEST(CodecPipeline, TesselChainsReachOnePixel)
{
	for (const unsigned int format : {0, 1, 2, 3})
	{
		CZORTexture texture = randomTexture(shape(ZORStandard8PixelType, 32, 8, 1, 6, 2), format);
		EXPECT_TRUE(to(texture, format)) << format;
		EXPECT_EQ(texture.getNumMIPLevels(), 6u);
		EXPECT_TRUE(toStandard(texture)) << format;
	}
}

TEST(CodecPipeline, EveryImageKeepsItsPlace)
{
	CZORTexture texture(shape(ZORStandard8PixelType, 8, 4, 1, 3, 2, 6));
	const auto greyOf = [](unsigned int level, unsigned int member, unsigned int face)
	{
		return static_cast<unsigned char>(level * 80 + member * 40 + face * 5 + 1);
	};
	const auto forEach = [&](auto&& function)
	{
		for (unsigned int level = 0; level < 3; ++level)
		{
			for (unsigned int member = 0; member < 2; ++member)
			{
				for (unsigned int face = 0; face < 6; ++face)
				{
					function(static_cast<unsigned char*>(texture.getDataPtr(level, member, face)),
					         texture.getDataSize(static_cast<int>(level), false, false), greyOf(level, member, face));
				}
			}
		}
	};
	forEach([](unsigned char* pixels, unsigned int size, unsigned char grey) { std::memset(pixels, grey, size); });
	ASSERT_TRUE(to(texture, ePF_GRGB8888));
	EXPECT_EQ(texture.getDataSize(), 2u * 6 * (32 + 8 + 2) * 2);
	ASSERT_TRUE(toStandard(texture));
	forEach(
	    [](const unsigned char* pixels, unsigned int size, unsigned char grey)
	    {
		    EXPECT_EQ(pixels[0], grey);
		    EXPECT_EQ(pixels[size - 2], grey);
	    });
}

TEST(CodecPipeline, FormatsWithoutEncoderGiveZeros)
{
	for (const unsigned int format : {7, 12, 13})
	{
		CZORTexture texture = randomTexture(shape(ZORStandard8PixelType, 5, 4), 1);
		EXPECT_FALSE(to(texture, format)) << format;
		EXPECT_EQ(texture.getPixelType().id, format);
		EXPECT_EQ(bytesOf(texture), Bytes(texture.getDataSize()));
	}
	CZORTexture texture = randomTexture(shape(ePF_BC4, 5, 4), 1);
	EXPECT_FALSE(toStandard(texture));
	EXPECT_EQ(texture.getPixelType().id, ZORStandard8PixelType.id);
	// The intermediate form has the wanted layout already, so that its zeros are not converted.
	EXPECT_EQ(bytesOf(texture), Bytes(5 * 4 * 4));

	// A format without storage takes nothing, wholly.
	CZORTexture stored = randomTexture(shape(ZORStandard8PixelType, 4, 4), 1);
	EXPECT_TRUE(to(stored, ePF_BC6));
	EXPECT_EQ(stored.getDataSize(), 0u);
	EXPECT_FALSE(toStandard(stored));
}

TEST(CodecPipeline, FlatCodecsCodeTheFirstSlice)
{
	CZORTexture texture(shape(layout("rgb32.32.32"), 2, 1, 2));
	texture.setChannelType(eVT_SignedFloat);
	const float ones[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
	std::memcpy(texture.getDataPtr(), ones, sizeof(ones));
	EXPECT_FALSE(Transcode(texture, ePF_R9G9B9E5, eVT_SignedFloat, eCS_lRGB));
	ASSERT_EQ(texture.getDataSize(), 16u);
	const Bytes coded = bytesOf(texture);
	EXPECT_NE(coded[3], 0);
	EXPECT_EQ(Bytes(coded.begin() + 8, coded.end()), Bytes(8));

	std::memset(texture.getDataPtr(), coded[3], 16);
	EXPECT_FALSE(Transcode(texture, layout("rgb32.32.32"), eVT_SignedFloat, eCS_lRGB));
	const Bytes decoded = bytesOf(texture);
	EXPECT_NE(Bytes(decoded.begin(), decoded.begin() + 24), Bytes(24));
	EXPECT_EQ(Bytes(decoded.begin() + 24, decoded.end()), Bytes(24));
}

TEST(CodecPipeline, FailingCodecsLeaveZeros)
{
	CZORTexture texture = randomTexture(shape(ZORStandard8PixelType, 4, 4), 1);
	EXPECT_FALSE(to(texture, ePF_ETC1, static_cast<ECompressorQuality>(9)));
	EXPECT_EQ(texture.getPixelType().id, static_cast<unsigned long long>(ePF_ETC1));
	EXPECT_EQ(bytesOf(texture), Bytes(8));
}

TEST(CodecPipeline, SignednessFollowsTheChannelType)
{
	for (const EZORTVariableType type : {eVT_SignedByteNorm, eVT_UnsignedByteNorm})
	{
		CZORTexture texture(shape(layout("r32"), 4, 4));
		texture.setChannelType(eVT_SignedFloat);
		for (unsigned int i = 0; i < 16; ++i)
		{
			const float value = i % 2 == 0 ? 0.5f : 0.25f;
			std::memcpy(static_cast<unsigned char*>(texture.getDataPtr()) + i * 4, &value, 4);
		}
		ASSERT_TRUE(Transcode(texture, ePF_EAC_R11, type, eCS_lRGB));
		EXPECT_EQ(texture.getChannelType(), isSigned(type) ? eVT_SignedShortNorm : eVT_UnsignedShortNorm);
		ASSERT_TRUE(Transcode(texture, layout("r32"), eVT_SignedFloat, eCS_lRGB));
		float values[2];
		std::memcpy(values, texture.getDataPtr(), sizeof(values));
		EXPECT_NEAR(values[0], 0.5f, 0.02f);
		EXPECT_NEAR(values[1], 0.25f, 0.02f);
	}
}

TEST(CodecPipeline, WalksRefuseOtherForms)
{
	const CZORTexture grey = textureOf(layout("r8"), eVT_UnsignedByteNorm, 4, 4, Bytes(16, 7));
	CZORTexture texture(grey);
	EXPECT_EQ(CompressNonTrivial(texture, ePF_ETC1, eQuality_0), 0u);
	EXPECT_EQ(CompressNonTrivial(texture, ZORStandard8PixelType, eQuality_0), 0u);
	EXPECT_EQ(DecompressNonTrivial(texture), 0u);
	EXPECT_EQ(bytesOf(texture), bytesOf(grey));
}
