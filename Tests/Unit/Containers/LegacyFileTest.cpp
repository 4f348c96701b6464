#include <gtest/gtest.h>

#include "FileBytes.h"
#include "LegacyTexture.h"

using namespace zortexture;

namespace
{
/// A version-1 header of one word a field; version 2 adds two words.
FileBytes header(unsigned int size, unsigned int height, unsigned int width, unsigned int mipMapCount, unsigned int formatAndFlags,
                 unsigned int numSurfaces = 1)
{
	FileBytes file;
	file.words({size, height, width, mipMapCount, formatAndFlags, 0, 0, 0, 0, 0, 0});
	if (size == 52)
	{
		file.text("ZOR!").word(numSurfaces);
	}
	return file;
}

constexpr unsigned int kRgba8Number = 18;
constexpr unsigned int kL8Number = 22;

TEST(LegacyFile, WritesTheseBytes)
{
	// In the file each member's faces and levels lie together: 6 bytes of member and face, then the next.
	CZORTextureHeader shape(PixelType('i', 0, 0, 0, 8, 0, 0, 0).id, 1, 2, 1, 2, 2, 6);
	shape.setBumpMap(3.0f, "xyz");
	shape.setOrientation(eOrient_Up);
	const CZORTexture texture = countingTexture(shape);
	const TemporaryPath path(".old");
	ASSERT_TRUE(texture.saveFileLegacyZOR(path.str(), eLegacyApi_GL2));

	FileBytes expected;
	expected.words({52, 1, 2, 1, 22 | 0x100 | 0x1000 | 0x400 | 0x10000, 36, 8, 0, 0, 0, 0}).text("ZOR!").word(12);
	for (unsigned int image = 0; image < 12; ++image)
	{
		expected.count(1 + 2 * image, 2).count(25 + image, 1);
	}
	EXPECT_EQ(path.read(), expected.bytes);

	const CZORTexture loaded = loadBytes(path.read(), ".zor");
	EXPECT_EQ(blockOf(loaded), blockOf(texture));
	EXPECT_EQ(loaded.getPixelType().id, PixelType('l', 0, 0, 0, 8, 0, 0, 0).id) << "intensity comes back as luminance";
	EXPECT_EQ(loaded.getNumArrayMembers(), 2u);
	EXPECT_EQ(loaded.getNumFaces(), 6u);
	EXPECT_EQ(loaded.getBumpMapScale(), 1.0f);
	EXPECT_EQ(loaded.getBumpMapOrder(), "xyz");
	EXPECT_EQ(loaded.getOrientation(eAxis_Y), eOrient_Up);
	EXPECT_EQ(loaded.getMetaDataSize(), 35u);

	const TemporaryPath tessel(".zor");
	ASSERT_TRUE(countingTexture({ePF_TesselI_4bpp_RGBA, 8, 8}).saveFileLegacyZOR(tessel.str(), eLegacyApi_D3D1));
	EXPECT_EQ(tessel.read().substr(16, 28), FileBytes().words({13 | 0x8000, 32, 4, 0, 0, 0, 1}).bytes);
}

TEST(LegacyFile, RefusesWhatItCannotHold)
{
	struct Case
	{
		CZORTextureHeader shape;
		ELegacyApi api;
	};
	const Case cases[] = {
	    {{ePF_ETC1, 4, 4}, eLegacyApi_D3D1},
	    {{ZORStandard8PixelType.id, 4, 4, 2}, eLegacyApi_GL1},
	    {{ZORStandard8PixelType.id, 4, 4}, static_cast<ELegacyApi>(0)},
	    {{ZORStandard8PixelType.id, 4, 4}, static_cast<ELegacyApi>(8)},
	    {{ZORStandard8PixelType.id, 4, 4, 1, 1, 1, 1, static_cast<EZORTColourSpace>(2)}, eLegacyApi_OpenVG},
	};
	for (const Case& one : cases)
	{
		const TemporaryPath path(".zor");
		EXPECT_FALSE(countingTexture(one.shape).saveFileLegacyZOR(path.str(), one.api));
		EXPECT_FALSE(path.exists());
	}
}

TEST(LegacyFile, ReadsBothVersions)
{
	struct Case
	{
		unsigned int size;
		unsigned int mipMapCount;
		unsigned int flags;
		unsigned int numSurfaces;
		unsigned int levels;
		unsigned int faces;
		unsigned int members;
	};
	const Case cases[] = {
	    {44, 0, 0, 0, 1, 1, 1},      {44, 2, 0, 0, 3, 1, 1},       {44, 0, 0x1000, 0, 1, 6, 1}, {52, 1, 0x100, 1, 2, 1, 1},
	    {52, 0, 0x1000, 6, 1, 6, 1}, {52, 0, 0x1000, 12, 1, 6, 2}, {52, 0, 0x1000, 3, 1, 6, 1}, {52, 0, 0, 0, 1, 1, 1},
	};
	for (const Case& one : cases)
	{
		const FileBytes file = header(one.size, 4, 4, one.mipMapCount, kL8Number | one.flags, one.numSurfaces);
		const std::string bytes = FileBytes(file).count(1, 16 * 12).bytes;
		const CZORTexture texture = loadBytes(bytes, ".zor");
		EXPECT_EQ(texture.getNumMIPLevels(), one.levels);
		EXPECT_EQ(texture.getNumFaces(), one.faces);
		EXPECT_EQ(texture.getNumArrayMembers(), one.members);
		EXPECT_EQ(blockOf(texture).substr(0, 16), FileBytes().count(1, 16).bytes);

		// From memory, only the first member has its pixels.
		const CZORTexture memory(static_cast<const void*>(bytes.data()));
		EXPECT_EQ(blockOf(memory).substr(0, 16 * one.faces), blockOf(texture).substr(0, 16 * one.faces));
		EXPECT_EQ(blockOf(memory).substr(blockOf(memory).size() / one.members).find_first_not_of('\0'), std::string::npos);
	}
	EXPECT_EQ(loadBytes(header(52, 4, 4, 0, 32).count(1, 64).bytes, ".zor").getPixelType().id, ePF_NumCompressedPFs)
	    << "a number without a format";
}

TEST(LegacyFile, TheExportedConversionCountsDifferently)
{
	ZOR_Texture_Header old{};
	old.headerSize = 52;
	old.mipMapCount = 3;
	old.pixelFormatAndFlags = kRgba8Number | kLegacyFlagCubeMap | kLegacyFlagVerticalFlip;
	old.numSurfaces = 5;
	ZORTextureHeaderV3 converted{};
	MetaDataMap table;
	table[1][2].dataSize = 9;
	ZORTConvertOldTextureHeaderToV3(&old, converted, &table);
	EXPECT_EQ(converted.numMipMaps, 1u) << "levels count only with their flag";
	EXPECT_EQ(converted.numSurfaces, 0u);
	EXPECT_EQ(table.size, 1u) << "the table is emptied first";
	EXPECT_EQ(converted.metaDataSize, 15u);
	ZORTConvertOldTextureHeaderToV3(&old, converted, nullptr);
	EXPECT_EQ(converted.metaDataSize, 0u);
	old.headerSize = 44;
	old.pixelFormatAndFlags |= kLegacyFlagMIPMaps;
	ZORTConvertOldTextureHeaderToV3(&old, converted, nullptr);
	EXPECT_EQ(converted.numMipMaps, 4u);
	EXPECT_EQ(converted.numSurfaces, 1u);
}

TEST(LegacyFile, SurvivesCutAndLyingFiles)
{
	const std::string whole = header(52, 4, 4, 2, kRgba8Number | 0x1000, 12).count(1, 84 * 12).bytes;
	for (std::size_t length = 0; length < whole.size(); ++length)
	{
		touchAll(loadBytes(whole.substr(0, length), ".zor"));
	}
	// The last column: whether there is a block, too small for what the header says, perhaps of no bytes.
	const unsigned int lies[][5] = {{0x10001, 0x10001, 0, 1, 1},
	                                {1, 1, 0xFFFFFFFF, 1, 0},
	                                {1, 1, 256, 1, 0},
	                                {0x10000, 0x10000, 0, 0xFFFFFFFF, 1},
	                                {1, 1, 0, 0x40000001, 1}};
	for (const auto& lie : lies)
	{
		const std::string bytes = header(52, lie[0], lie[1], lie[2], kRgba8Number, lie[3]).count(1, 64).bytes;
		const CZORTexture textures[] = {loadBytes(bytes, ".zor"), CZORTexture(static_cast<const void*>(bytes.data()))};
		EXPECT_FALSE(textures[0].isDataComplete()) << lie[0] << " " << lie[2];
		EXPECT_EQ(textures[0].getDataPtr(0, 0, 0) != nullptr, lie[4] != 0) << lie[0] << " " << lie[2];
		EXPECT_FALSE(textures[1].isDataComplete()) << lie[0] << " " << lie[2];
	}
}
} // namespace
