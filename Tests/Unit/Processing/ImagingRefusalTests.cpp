#include "ImagingTextures.h"

using namespace imaging;

namespace
{
CZORTexture makeGood()
{
	CZORTexture texture = makeTexture(kShort, {4, 3, 2, 2, 2, 1});
	fillLetters(texture);
	texture.setBorder(1, 2, 3);
	return texture;
}

TEST(ImagingRefusals, UnfitTexturesStayUntouched)
{
	const CZORTexture good = makeGood();
	const std::size_t size = good.getDataSize();
	CZORTexture unfit[7] = {good, good, good, good, good, good, CZORTexture()};
	unfit[0].setChannelType(eVT_SignedShortNorm);
	unfit[1].setPixelFormat(PixelType(ePF_ETC1));
	unfit[2].setWidth(5);
	unfit[3].setWidth(0x10000002u); // 2^32 + 32 pixels of 8 bytes, which is 256 in 32 bits
	unfit[3].setHeight(16);
	unfit[3].setDepth(1);
	unfit[4].setNumMIPLevels(0);
	unfit[5].setNumArrayMembers(0);
	for (CZORTexture& texture : unfit)
	{
		const std::string before = snapshot(texture, size);
		EXPECT_FALSE(GenerateMIPMaps(texture, eResizeLinear));
		EXPECT_FALSE(ColourMIPMaps(texture));
		EXPECT_FALSE(GenerateNormalMap(texture, 1.0f, "xyz"));
		EXPECT_FALSE(GenerateNormalMap(texture, 0.0f, "xyz"));
		EXPECT_FALSE(Flip(texture, eAxis_Y));
		EXPECT_FALSE(Rotate90(texture, eAxis_Z, true));
		EXPECT_FALSE(Rotate90(texture, EZORTAxis(3), true));
		EXPECT_FALSE(ResizeCanvas(texture, 2, 2, 2, 0, 0, 0));
		EXPECT_FALSE(ResizeCanvas(texture, texture.getWidth(), texture.getHeight(), texture.getDepth(), 0, 0, 0));
		EXPECT_FALSE(Border(texture, 1, 1, 1));
		EXPECT_FALSE(Border(texture, 0, 0, 0));
		EXPECT_EQ(snapshot(texture, size), before) << &texture - unfit;
	}
}

TEST(ImagingRefusals, UnfitArgumentsLeaveTheTextureUntouched)
{
	constexpr unsigned int kMax = 0xFFFFFFFFu;
	CZORTexture texture = makeGood();
	EXPECT_FALSE(GenerateMIPMaps(texture, eResizeNearest, 0));
	EXPECT_FALSE(GenerateMIPMaps(texture, eResizeNearest, kMax - 1));
	EXPECT_FALSE(ResizeCanvas(texture, 0, 3, 2, 0, 0, 0));
	EXPECT_FALSE(ResizeCanvas(texture, 4, 0, 2, 0, 0, 0));
	EXPECT_FALSE(ResizeCanvas(texture, 4, 3, 0, 0, 0, 0));
	// Products that come to few bytes in 32 bits.
	EXPECT_FALSE(ResizeCanvas(texture, 65536, 65536, 1, 0, 0, 0));
	EXPECT_FALSE(ResizeCanvas(texture, 65536, 65537, 1, 0, 0, 0));
	EXPECT_FALSE(ResizeCanvas(texture, kMax, kMax, kMax, 0, 0, 0));
	EXPECT_FALSE(Border(texture, 32766, 32767, 0));
	// Sums that come to less than the image in 32 bits: a width of 2, a depth of 0.
	EXPECT_FALSE(Border(texture, 0x7FFFFFFFu, 0, 0));
	EXPECT_FALSE(Border(texture, 0, 0, 0x7FFFFFFFu));
	EXPECT_EQ(snapshot(texture), snapshot(makeGood()));
}
} // namespace
