// The pipeline between uncompressed forms: refusals, short cuts, dithering, sizes.

#include <cstring>
#include <gtest/gtest.h>

#include "PixelLayouts.h"
#include "TextureTools.h"

using namespace zortexture;

namespace
{
bool isUnchanged(const CZORTexture& texture, const CZORTexture& before)
{
	return texture.getPixelType().id == before.getPixelType().id && texture.getChannelType() == before.getChannelType() &&
	       bytesOf(texture) == bytesOf(before);
}
} // namespace

TEST(Transcode, RefusedTexturesStayAsTheyAre)
{
	const CZORTexture pixels = textureOf(ZORStandard8PixelType, eVT_UnsignedByteNorm, 2, 1, {1, 2, 3, 4, 5, 6, 7, 8});
	CZORTexture texture(pixels);
	EXPECT_FALSE(Transcode(texture, ePF_NumCompressedPFs, eVT_UnsignedByteNorm, eCS_lRGB));
	EXPECT_TRUE(isUnchanged(texture, pixels));

	CZORTexture empty;
	EXPECT_FALSE(Transcode(empty, ZORStandard8PixelType, eVT_UnsignedByteNorm, eCS_lRGB));

	// A header that promises more than there is.
	texture.setHeight(1000);
	EXPECT_FALSE(Transcode(texture, layout("r8"), eVT_UnsignedByteNorm, eCS_lRGB));
	EXPECT_FALSE(Transcode(texture, ePF_ETC1, eVT_UnsignedByteNorm, eCS_lRGB));
	EXPECT_EQ(CompressNonTrivial(texture, ePF_RGBG8888, eQuality_0), 0u);
	texture.setPixelFormat(ePF_RGBG8888);
	EXPECT_EQ(DecompressNonTrivial(texture), 0u);
	EXPECT_EQ(texture.getPixelType().id, static_cast<unsigned long long>(ePF_RGBG8888));

	// A target whose size wraps.
	CZORTexture wide(CZORTextureHeader(layout("r1").id, 6000, 6000));
	EXPECT_FALSE(Transcode(wide, layout("rgba255.255.255.255"), eVT_UnsignedByteNorm, eCS_lRGB));
	EXPECT_EQ(wide.getPixelType().id, layout("r1").id);
	EXPECT_EQ(wide.getWidth(), 6000u);
}

TEST(Transcode, SameFormIsLeftAlone)
{
	const CZORTexture pixels = textureOf(layout("r16"), eVT_UnsignedShortNorm, 1, 1, {0x34, 0x12});
	CZORTexture texture(pixels);
	EXPECT_TRUE(Transcode(texture, layout("r16"), eVT_UnsignedShortNorm, eCS_lRGB));
	EXPECT_TRUE(isUnchanged(texture, pixels));
	// With dithering it passes through eight bits all the same: 0x1234 is 18 of 255.
	EXPECT_TRUE(Transcode(texture, layout("r16"), eVT_UnsignedShortNorm, eCS_lRGB, eQuality_0, true));
	EXPECT_EQ(bytesOf(texture), (Bytes{0x12, 0x12}));

	// Any difference converts.
	texture = textureOf(layout("r8"), eVT_UnsignedByteNorm, 1, 1, {128});
	EXPECT_TRUE(Transcode(texture, layout("r8"), eVT_SignedByteNorm, eCS_lRGB));
	EXPECT_EQ(bytesOf(texture), Bytes{64});
	texture = textureOf(layout("r8"), eVT_UnsignedByteNorm, 1, 1, {55});
	EXPECT_TRUE(Transcode(texture, layout("r8"), eVT_UnsignedByteNorm, eCS_sRGB));
	EXPECT_EQ(texture.getColourSpace(), eCS_sRGB);
	EXPECT_EQ(bytesOf(texture), Bytes{128});
}

TEST(Transcode, TheSourceOfACopyStays)
{
	const CZORTexture source = randomTexture(CZORTextureHeader(ZORStandard8PixelType.id, 3, 5), 1);
	CZORTexture blocks(source);
	ASSERT_TRUE(Transcode(blocks, ePF_ETC2_RGBA, eVT_UnsignedByteNorm, eCS_lRGB));
	for (const CZORTexture& original : {source, blocks})
	{
		for (const PixelType target : {ZORStandard8PixelType, layout("rgb565"), PixelType(ePF_ETC1), PixelType(ePF_ETC2_RGBA),
		                               PixelType(ePF_TesselI_4bpp_RGB), PixelType(ePF_NumCompressedPFs)})
		{
			for (const bool dither : {false, true})
			{
				const CZORTexture before(original);
				CZORTexture inPlace(original);
				CZORTexture result(source);
				const bool isConverted = Transcode(inPlace, target, eVT_UnsignedByteNorm, eCS_lRGB, eQuality_0, dither);
				EXPECT_EQ(TranscodeInto(original, result, target, eVT_UnsignedByteNorm, eCS_lRGB, eQuality_0, dither), isConverted);
				EXPECT_TRUE(isUnchanged(original, before));
				EXPECT_TRUE(isUnchanged(result, isConverted ? inPlace : source));
			}
		}
	}
}

TEST(Transcode, DitheringDependsOnTheTarget)
{
	struct
	{
		const char* target;
		Bytes expected;
	} const cases[] = {
	    // Never at 32 bits a pixel or more.
	    {"bgra8.8.8.8", {94, 94, 94, 94, 94, 94, 94, 94}},
	    // 94 becomes 85 and its neighbour 94 + 4 = 98, which becomes 102: 5 and 6 of 15.
	    {"rgba4.4.4.4", {0x55, 0x55, 0x66, 0x66}},
	    // Eight bits have nothing to spread.
	    {"rgb8.8.8", {94, 94, 94, 94, 94, 94}},
	};
	for (const auto& test : cases)
	{
		CZORTexture texture = textureOf(ZORStandard8PixelType, eVT_UnsignedByteNorm, 2, 1, Bytes(8, 94));
		EXPECT_TRUE(Transcode(texture, layout(test.target), eVT_UnsignedByteNorm, eCS_lRGB, eQuality_0, true));
		EXPECT_EQ(bytesOf(texture), test.expected) << test.target;
	}
}

TEST(Transcode, GreyTargetsAreDitheredAsGrey)
{
	struct
	{
		const char* target;
		Bytes expected;
	} const cases[] = {
	    // Red (240, 0, 0) has the luminance 51 and the intensity 80; at four bits 51 stays 51 (3 of 15), 80 becomes 85 (5 of 15).
	    {"al4.4", {0xF3}},
	    {"ia4.4", {0x5F}},
	    // Where both are, luminance takes the grey and intensity stays 0.
	    {"il4.4", {0x05}},
	    // Luminance beside two colours keeps the colours: red has 5 bits of which 240 takes 30 (247 is 30 of 31), green is 0; luminance
	    // is 0.2126 x 247 = 52.5 of 255, 13 of 63.
	    {"lgr6.5.5", {0x1E, 0x34}},
	};
	for (const auto& test : cases)
	{
		CZORTexture texture = textureOf(ZORStandard8PixelType, eVT_UnsignedByteNorm, 1, 1, {240, 0, 0, 255});
		EXPECT_TRUE(Transcode(texture, layout(test.target), eVT_UnsignedByteNorm, eCS_lRGB, eQuality_0, true));
		EXPECT_EQ(bytesOf(texture), test.expected) << test.target;
	}
}

TEST(Transcode, InvalidLayoutsGiveZeros)
{
	CZORTexture texture = textureOf(layout("r8"), eVT_UnsignedByteNorm, 2, 1, {1, 2});
	EXPECT_TRUE(Transcode(texture, layout("rr8.8"), eVT_UnsignedByteNorm, eCS_lRGB));
	EXPECT_EQ(bytesOf(texture), Bytes(4));
}

TEST(Transcode, EveryImageIsConvertedAndTheHeaderKept)
{
	CZORTextureHeader header(layout("rg8.8").id, 5, 7, 2, 3, 2, 6, eCS_sRGB, eVT_UnsignedByteNorm, true);
	header.setBorder(1, 2, 3);
	header.setOrientation(eOrient_Up);
	const CZORTexture before = randomTexture(header, 3);
	CZORTexture texture(before);
	ASSERT_TRUE(Transcode(texture, layout("gr16.16"), eVT_UnsignedShortNorm, eCS_sRGB));
	EXPECT_TRUE(texture.isPreMultiplied());
	EXPECT_EQ(texture.getOrientation(eAxis_Y), eOrient_Up);
	EXPECT_EQ(texture.getMetaDataSize(), header.getMetaDataSize());
	const Bytes from = bytesOf(before);
	const Bytes to = bytesOf(texture);
	ASSERT_EQ(to.size(), from.size() * 2);
	for (std::size_t i = 0; i < from.size(); ++i)
	{
		// Swapped channels, each byte repeated.
		EXPECT_EQ(to[i * 2], from[i ^ 1]);
		EXPECT_EQ(to[i * 2 + 1], from[i ^ 1]);
	}
}

TEST(TranscodeTrivial, StaysWithinBothTextures)
{
	struct
	{
		unsigned int sourceSide;
		unsigned int destinationSide;
		const char* sourceEncoder;
		const char* destinationEncoder;
		unsigned int expected; ///< bytes
	} const cases[] = {
	    {4, 4, "r8", "r8", 16},
	    {4, 2, "r8", "r8", 4},
	    {2, 4, "r8", "r8", 4},
	    {4, 4, "rgba32.32.32.32", "r8", 1},
	    {4, 4, "r8", "rgba32.32.32.32", 16},
	    {4, 4, "r8", "rgba48.48.48.48", 0},
	    {4, 4, "r1", "r8", 16},
	    {4, 4, "r8", "r1", 0},
	};
	for (const auto& test : cases)
	{
		CZORTexture source(CZORTextureHeader(layout("r8").id, test.sourceSide, test.sourceSide, 1, 1, 2));
		CZORTexture destination(CZORTextureHeader(layout("r8").id, test.destinationSide, test.destinationSide));
		CPixelEncoder sourceEncoder(layout(test.sourceEncoder), eVT_UnsignedByteNorm);
		CPixelEncoder destinationEncoder(layout(test.destinationEncoder), eVT_UnsignedByteNorm);
		EXPECT_EQ(TranscodeTrivial(source, destination, sourceEncoder, destinationEncoder, eCS_lRGB, eCS_lRGB), test.expected)
		    << test.sourceEncoder << " to " << test.destinationEncoder;
	}

	CZORTexture texture = textureOf(layout("r8"), eVT_UnsignedByteNorm, 2, 1, {1, 2});
	CPixelEncoder encoder(layout("r8"), eVT_UnsignedByteNorm);
	CPixelEncoder other(encoder);
	CZORTexture none(texture);
	none.setNumArrayMembers(0);
	EXPECT_EQ(TranscodeTrivial(none, texture, encoder, other, eCS_lRGB, eCS_lRGB), 0u);
	none.setNumArrayMembers(100);
	EXPECT_EQ(TranscodeTrivial(texture, none, encoder, other, eCS_lRGB, eCS_lRGB), 0u);
	EXPECT_EQ(bytesOf(texture), (Bytes{1, 2}));
}
