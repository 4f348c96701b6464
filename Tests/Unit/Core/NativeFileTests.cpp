#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "../../Fuzz/MemoryLimit.h"
#include "Containers/FileBytes.h"
#include "ZORTexture.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kRgb8Letters = 0x00626772;
constexpr unsigned int kRgb8Widths = 0x00080808;

/// The first 52 bytes of a file with `rgb` 8.8.8 pixels.
FileBytes header(unsigned int height, unsigned int width, unsigned int levels, unsigned int metaDataSize, unsigned int surfaces = 1,
                 unsigned int faces = 1)
{
	return FileBytes().text("ZOR\3").words(
	    {2, kRgb8Letters, kRgb8Widths, eCS_sRGB, eVT_UnsignedByteNorm, height, width, 1, surfaces, faces, levels, metaDataSize});
}

/// Two pixels by one with two levels, and three blocks of metadata under two namespaces, which lie interleaved in order of
/// insertion but by namespace in the file.
FileBytes wholeFile()
{
	FileBytes file = header(1, 2, 2, 15 + 15 + 14);
	file.words({kZORTextureMagic, kMetaKeyOrientation, 3}).text(std::string("\1\2\0", 3));
	file.words({kZORTextureMagic, 77, 3}).text("abc");
	file.words({0x11223344, 5, 2}).text("de");
	return file.count(1, 9);
}

TEST(NativeFile, WritesTheseBytes)
{
	CZORTexture texture = countingTexture(
	    CZORTextureHeader(PixelType('r', 'g', 'b', 0, 8, 8, 8, 0).id, 1, 2, 1, 2, 1, 1, eCS_sRGB, eVT_UnsignedByteNorm, true));
	texture.setOrientation(static_cast<EZORTOrientation>(eOrient_Left + eOrient_Up));
	const struct
	{
		unsigned int fourCC, key;
		const char* text;
	} blocks[] = {{0x11223344, 5, "de"}, {kZORTextureMagic, 77, "abc"}};
	for (const auto& b : blocks)
	{
		MetaDataBlock block;
		block.fourCC = b.fourCC;
		block.key = b.key;
		block.dataSize = static_cast<unsigned int>(std::strlen(b.text));
		block.data = new unsigned char[block.dataSize];
		std::memcpy(block.data, b.text, block.dataSize);
		texture.addMetaData(block);
	}
	const TemporaryPath path(".zor");
	ASSERT_TRUE(texture.saveFile(path.str()));
	EXPECT_EQ(path.read(), wholeFile().bytes);

	// Back again, from the file and from its image in memory.
	const TemporaryPath again(".zor");
	for (const CZORTexture& loaded : {CZORTexture(path.str().c_str()), CZORTexture(static_cast<const void*>(path.read().data()))})
	{
		ASSERT_TRUE(loaded.saveFile(again.str()));
		EXPECT_EQ(again.read(), path.read());
		EXPECT_TRUE(loaded.isPreMultiplied());
	}
}

TEST(NativeFile, SurvivesACutAtEveryLength)
{
	const std::string whole = wholeFile().bytes;
	const unsigned int blockEnds[] = {52 + 15, 52 + 30, 52 + 44};
	for (std::size_t length = 0; length < whole.size(); ++length)
	{
		const CZORTexture texture = loadBytes(whole.substr(0, length), ".zor");
		if (length < 52)
		{
			ASSERT_EQ(texture.getPixelType().id, 51u) << length;
			ASSERT_EQ(texture.getDataPtr(0, 0, 0), nullptr) << length;
			continue;
		}
		ASSERT_EQ(texture.getWidth(), 2u) << length;
		unsigned int metaDataSize = 0;
		for (const unsigned int end : blockEnds)
		{
			metaDataSize = length >= end ? end - 52 : metaDataSize;
		}
		ASSERT_EQ(texture.getMetaDataSize(), metaDataSize) << length;
		if (length < blockEnds[2])
		{
			ASSERT_EQ(texture.getDataPtr(0, 0, 0), nullptr) << length;
			continue;
		}
		std::string pixels = whole.substr(blockEnds[2], length - blockEnds[2]);
		pixels.resize(9, '\0');
		ASSERT_EQ(blockOf(texture), pixels) << length;
	}
}

TEST(NativeFile, RefusesOtherFirstWordsAndTooManyLevels)
{
	for (const std::string& start : {std::string("\3ROZ"), std::string("ZOR\2"), std::string(4, '\0'), std::string("\x35\0\0\0", 4)})
	{
		const std::string file = start + wholeFile().bytes.substr(4);
		EXPECT_EQ(loadBytes(file, ".zor").getPixelType().id, 51u);
		EXPECT_EQ(CZORTexture(static_cast<const void*>(file.data())).getDataPtr(0, 0, 0), nullptr);
	}
	EXPECT_EQ(CZORTexture(static_cast<const void*>(nullptr)).getPixelType().id, 51u);
	EXPECT_EQ(loadBytes(header(1, 2, 257, 0).zeroes(1000).bytes, ".zor").getPixelType().id, 51u);
	EXPECT_TRUE(loadBytes(header(1, 2, 256, 0).zeroes(1000).bytes, ".zor").isDataComplete());
	EXPECT_EQ(loadBytes(header(1, 2, 0, 0).zeroes(1000).bytes, ".zor").isDataComplete(), false);
}

TEST(NativeFile, SurvivesLyingMetaData)
{
	// Runs past the declared size: dropped, and its bytes are the first pixels.
	const CZORTexture overrun =
	    loadBytes(header(1, 2, 1, 13 + 12).words({9, 1, 1}).text("x").words({8, 0x61626364, 2}).text("yz").bytes, ".zor");
	EXPECT_EQ(overrun.getMetaDataSize(), 13u);
	EXPECT_EQ(blockOf(overrun), FileBytes().words({8, 0x61626364}).bytes.substr(0, 6));

	// A size that the file does not hold fails without taking the memory; so does metadata without an end.
	constexpr unsigned int kHuge = std::numeric_limits<unsigned int>::max();
	// The limit turns every large request into an exception.
	for (const unsigned int dataSize : {9u, 0x7FFFFFFFu, 0x80000000u, kHuge - 11, kHuge})
	{
		const CMemoryLimit limit;
		const CZORTexture texture = loadBytes(header(1, 2, 1, kHuge).words({9, 1, dataSize}).zeroes(8).bytes, ".zor");
		EXPECT_EQ(texture.getDataPtr(0, 0, 0), nullptr);
		EXPECT_EQ(texture.getMetaDataSize(), 0u);
	}
	EXPECT_EQ(loadBytes(header(1, 2, 1, kHuge).zeroes(120).bytes, ".zor").getMetaDataSize(), 120u);

	// Blocks without bytes load, though they cannot be saved.
	const CZORTexture hollow = loadBytes(header(1, 2, 1, 12).words({9, 1, 0}).count(1, 6).bytes, ".zor");
	EXPECT_EQ(blockOf(hollow), FileBytes().count(1, 6).bytes);
	const TemporaryPath path(".zor");
	EXPECT_FALSE(hollow.saveFile(path.str()));
	EXPECT_FALSE(CZORTexture().saveFile(path.str()));
	EXPECT_FALSE(CZORTexture(CZORTextureHeader()).saveFile(path.str()));
	EXPECT_FALSE(path.exists());
	EXPECT_FALSE(hollow.saveFile("/nowhere/at/all.zor"));

	const auto withBlocks = [](unsigned int count)
	{
		return loadBytes(header(1, 2, 1, 12 * count).zeroes(12 * std::size_t{count}).count(1, 6).bytes, ".zor");
	};
	EXPECT_TRUE(withBlocks(65536).isDataComplete());
	EXPECT_EQ(withBlocks(65537).getDataPtr(0, 0, 0), nullptr);
}

TEST(NativeFile, SurvivesSizesThatWrap)
{
	const struct
	{
		unsigned int height, width, surfaces, faces, size;
	} cases[] = {{65536, 65536, 1, 1, 0},
	             {65536, 65537, 1, 1, 196608},
	             {1, 1, 65536, 65536, 0},
	             {1, 0x55555556, 1, 1, 2},
	             {0x55555556, 1, 1, 1, 2},
	             {1, 1, 0, 1, 0},
	             {1, 1, 0x80000001u, 0x80000001u, 3}};
	for (const auto& c : cases)
	{
		const CZORTexture texture = loadBytes(header(c.height, c.width, 1, 0, c.surfaces, c.faces).count(1, 100).bytes, ".zor");
		EXPECT_EQ(texture.getDataSize(), c.size);
		EXPECT_EQ(texture.getWidth(), c.width);
		EXPECT_FALSE(texture.isDataComplete());
		CZORTexture copy;
		copy = texture;
		EXPECT_FALSE(copy.isDataComplete());
		// What is there can be saved again.
		const TemporaryPath path(".zor");
		EXPECT_EQ(copy.saveFile(path.str()), c.size != 0);
		EXPECT_EQ(path.exists() ? path.read().size() : 0, c.size == 0 ? 0 : 52 + c.size);
	}
	// A header that setters have made larger than the block.
	CZORTexture texture(CZORTextureHeader(PixelType('r', 0, 0, 0, 8, 0, 0, 0).id, 1, 100));
	texture.setWidth(101);
	const TemporaryPath path(".zor");
	EXPECT_FALSE(texture.saveFile(path.str()));
	EXPECT_FALSE(path.exists());
}
} // namespace
