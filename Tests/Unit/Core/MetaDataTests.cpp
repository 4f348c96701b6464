#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ZORTextureHeader.h"

using namespace zortexture;

namespace
{
MetaDataBlock blockOf(unsigned int fourCC, unsigned int key, const std::string& bytes)
{
	MetaDataBlock block;
	block.fourCC = fourCC;
	block.key = key;
	block.dataSize = static_cast<unsigned int>(bytes.size());
	block.data = new unsigned char[bytes.size()];
	std::memcpy(block.data, bytes.data(), bytes.size());
	return block;
}

std::string bytesOf(const MetaDataBlock& block)
{
	return {reinterpret_cast<const char*>(block.data), block.dataSize};
}

template<typename T>
std::vector<T> contentOf(const CZORTArray<T>& array)
{
	return std::vector<T>(array.data, array.data + array.size);
}

TEST(Array, GrowsAndShrinks)
{
	CZORTArray<std::string> array;
	EXPECT_EQ(array.capacity, 16u);
	EXPECT_EQ(array.Remove(0), 1u);
	EXPECT_EQ(array.RemoveLast(), 1u);
	for (unsigned int i = 0; i < 16; ++i)
	{
		EXPECT_EQ(array.Append(std::string(40, static_cast<char>('a' + i))), i);
	}
	EXPECT_EQ(array.Append(array[0]), 16u) << "an element of the array itself, while the array moves";
	EXPECT_EQ(array[16], std::string(40, 'a'));
	EXPECT_EQ(array.capacity, 32u);
	array.SetCapacity(20);
	EXPECT_EQ(array.capacity, 32u);
	array.SetCapacity(100);
	EXPECT_EQ(array.capacity, 100u);

	CZORTArray<unsigned int> numbers;
	for (const unsigned int number : {10u, 11u, 12u, 13u})
	{
		numbers.Append(number);
	}
	EXPECT_EQ(numbers.Remove(1), 0u);
	EXPECT_EQ(contentOf(numbers), (std::vector<unsigned int>{10, 12, 13}));
	EXPECT_EQ(numbers.Remove(77), 0u);
	EXPECT_EQ(contentOf(numbers), (std::vector<unsigned int>{10, 12}));
	const CZORTArray<unsigned int> copy(numbers);
	numbers[0] = 99;
	EXPECT_EQ(copy[0], 10u);
}

TEST(Map, KeepsTheOrderOfInsertionUntilARemoval)
{
	CZORTMap<unsigned int, std::string> map;
	for (const unsigned int key : {0u, 1u, 2u})
	{
		map[key] = "value " + std::to_string(key);
	}
	EXPECT_EQ(map.Remove(7), 1u);
	EXPECT_EQ(map.Remove(0), 0u);
	EXPECT_EQ(contentOf(map.keys), (std::vector<unsigned int>{2, 1}));
	EXPECT_EQ(contentOf(map.values), (std::vector<std::string>{"value 2", "value 1"}));
	EXPECT_EQ(map.Remove(1), 0u);
	EXPECT_EQ(map[1], "") << "nothing of the removed value comes back";
	EXPECT_EQ(map.size, 2u);
	for (unsigned int key = 100; key < 140; ++key)
	{
		map[key] = std::to_string(key);
	}
	CZORTMap<unsigned int, std::string> copy;
	copy = map;
	map[117] = "changed";
	EXPECT_EQ(copy[117], "117");
	EXPECT_EQ(copy.size, 42u);
	EXPECT_EQ(copy.keys.capacity, map.keys.capacity);
}

TEST(MetaData, CountsItsSizeWithEveryOddity)
{
	CZORTextureHeader header;
	header.setOrientation(static_cast<EZORTOrientation>(eOrient_Left + eOrient_Up));
	EXPECT_EQ(header.getMetaDataSize(), 15u);
	header.setOrientation(static_cast<EZORTOrientation>(eOrient_Up + eOrient_Out));
	EXPECT_EQ(header.getMetaDataSize(), 15u) << "set again";
	EXPECT_EQ(bytesOf(header.getMetaData(kZORTextureMagic, kMetaKeyOrientation)), std::string("\0\2\4", 3));
	EXPECT_EQ(header.getOrientation(eAxis_X), eOrient_Right);
	EXPECT_EQ(header.getOrientation(eAxis_Y), eOrient_Up);
	EXPECT_EQ(header.getOrientation(eAxis_Z), eOrient_Out);
	EXPECT_EQ(header.getOrientation(static_cast<EZORTAxis>(3)), 0u) << "past the block";

	header.addMetaData(blockOf(5, 6, "seven"));
	header.addMetaData(blockOf(5, 6, "nine"));
	EXPECT_EQ(header.getMetaDataSize(), 15u + 17u + 16u) << "a replaced block counts twice";
	EXPECT_EQ(bytesOf(header.getMetaData(5, 6)), "nine");
	EXPECT_EQ(header.removeMetaData(5, 6), 0u);
	EXPECT_EQ(header.getMetaDataSize(), 15u + 17u);
	EXPECT_EQ(header.removeMetaData(5, 6), 1u);
	EXPECT_EQ(header.removeMetaData(8, 9), 1u);
	EXPECT_EQ(header.getMetaDataSize(), 15u + 17u - 24u) << "removing nothing takes 12 off";
	const MetaDataMap& table = *header.getMetaDataMap();
	EXPECT_EQ(contentOf(table.keys), (std::vector<unsigned int>{kZORTextureMagic, 5, 8}));
	EXPECT_EQ(table.values[2].size, 0u);

	// The block's own fields as arguments, and a block of the table itself.
	header.addMetaData(blockOf(5, 6, "again"));
	const MetaDataBlock& stored = header.getMetaDataMap()->values[1].values[0];
	header.addMetaData(stored);
	EXPECT_EQ(bytesOf(header.getMetaData(5, 6)), "again");
	EXPECT_EQ(header.removeMetaData(stored.fourCC, stored.key), 0u);

	// Only getMetaData looks at the namespace.
	header.addMetaData(blockOf(5, 70, "x"));
	EXPECT_FALSE(header.hasMetaData(5, 70));
	EXPECT_TRUE(header.hasMetaData(5, kMetaKeyOrientation));
	EXPECT_EQ(header.getMetaData(kZORTextureMagic, 70).data, nullptr);

	MetaDataBlock blocks[2] = {blockOf(1, 1, "abc"), blockOf(1, 2, "")};
	ZORTextureHeaderV3 fileHeader = CZORTextureHeader().getFileHeader();
	fileHeader.metaDataSize = 100;
	EXPECT_EQ(CZORTextureHeader(fileHeader, 2, blocks).getMetaDataSize(), 100u + 15u + 12u);
	EXPECT_EQ(CZORTextureHeader(fileHeader, 2, nullptr).getMetaDataSize(), 100u);
}

TEST(MetaData, StoresTheWellKnownKeys)
{
	CZORTextureHeader header(ePF_ETC1, 4, 4, 1, 1, 1, 6);
	header.setBumpMap(-1.5f, "xyzhq");
	EXPECT_EQ(bytesOf(header.getMetaData(kZORTextureMagic, kMetaKeyBumpMap)), std::string("\0\0\xC0\xBFxyzh", 8));
	EXPECT_EQ(header.getBumpMapScale(), -1.5f);
	EXPECT_EQ(header.getBumpMapOrder(), "xyzh");
	header.setBumpMap(2.0f, "xy");
	EXPECT_EQ(bytesOf(header.getMetaData(kZORTextureMagic, kMetaKeyBumpMap)), std::string("\0\0\0\x40xy\0\0", 8));
	EXPECT_EQ(header.getBumpMapOrder(), "xy");
	header.setCubeMapOrder("XxYyZz!!");
	EXPECT_EQ(header.getCubeMapOrder(), "XxYyZz");
	header.setBorder(1, 2, 0x04030201);
	EXPECT_EQ(bytesOf(header.getMetaData(kZORTextureMagic, kMetaKeyBorder)), std::string("\1\0\0\0\2\0\0\0\1\2\3\4", 12));
	const float atlas[3] = {1.0f, 2.0f, 4.0f};
	header.setTextureAtlas(atlas, 3);
	EXPECT_EQ(header.getNumTextureAtlasMembers(), 3u);
	EXPECT_EQ(header.getTextureAtlasData()[2], 4.0f);
	EXPECT_EQ(header.getMetaDataSize(), 20u + 18u + 24u + 24u);

	const CZORTextureHeader copy(header);
	header.setBorder(0, 0, 0);
	unsigned int x = 0;
	unsigned int y = 0;
	unsigned int z = 0;
	copy.getBorder(x, y, z);
	EXPECT_EQ(z, 0x04030201u);

	header.setNumFaces(1);
	EXPECT_EQ(header.getCubeMapOrder(), "");
	header.setCubeMapOrder("");
	EXPECT_NE(header.getMetaData(kZORTextureMagic, kMetaKeyCubeOrder).data, nullptr);
	header.setHeight(1);
	header.setWidth(1);
	EXPECT_EQ(header.getNumTextureAtlasMembers(), 0u);
	header.setDepth(2);
	header.setNumMIPLevels(0);
	EXPECT_EQ(header.getNumTextureAtlasMembers(), 0u);
}

TEST(MetaData, ReadsBlocksOfAnySize)
{
	CZORTextureHeader header(ePF_ETC1, 4, 4, 1, 1, 1, 6);
	for (unsigned int size = 0; size < 14; ++size)
	{
		for (unsigned int key = kMetaKeyAtlas; key <= kMetaKeyPadding; ++key)
		{
			header.addMetaData(blockOf(kZORTextureMagic, key, std::string(size, '\1')));
		}
		unsigned int border[3] = {9, 9, 9};
		header.getBorder(border[0], border[1], border[2]);
		char expected[12] = {};
		std::memset(expected, 1, std::min<std::size_t>(size, 12));
		EXPECT_EQ(std::memcmp(border, expected, 12), 0) << size;
		EXPECT_EQ(header.getOrientation(eAxis_Z), size > 2 ? 1u : 0u);
		EXPECT_EQ(header.getBumpMapOrder().size(), size < 4 ? 0u : std::min(size - 4, 4u));
		EXPECT_EQ(header.getCubeMapOrder().size(), std::min(size, 6u));
		EXPECT_EQ(header.getNumTextureAtlasMembers(), size / 4);
		EXPECT_TRUE(header.isBumpMap());
	}
	// A block without data but with a size, which only a caller can make.
	MetaDataBlock hollow;
	hollow.fourCC = kZORTextureMagic;
	hollow.key = kMetaKeyBumpMap;
	hollow.dataSize = 8;
	header.addMetaData(hollow);
	EXPECT_EQ(header.getBumpMapScale(), 0.0f);
	EXPECT_EQ(header.getMetaData(kZORTextureMagic, kMetaKeyBumpMap).dataSize, 8u);
}

TEST(Header, KeepsItsFields)
{
	const CZORTextureHeader plain;
	EXPECT_EQ(plain.getPixelType().id, 51u);
	EXPECT_EQ(plain.getDataSize(), 0u);
	EXPECT_EQ(plain.getFileHeader().version, kZORTextureMagic);
	EXPECT_EQ(plain.getWidth(0), 1u);
	EXPECT_EQ(plain.getWidth(1), 0u);

	CZORTextureHeader header(ePF_ETC1, 5, 9, 3, 40, 7, 6, eCS_sRGB, eVT_SignedFloat, true);
	EXPECT_EQ(header.getHeight(1), 2u);
	EXPECT_EQ(header.getWidth(1), 4u);
	EXPECT_EQ(header.getDepth(2), 1u);
	EXPECT_EQ(header.getWidth(33), 4u) << "level 33 shifts as level 1 does";
	EXPECT_EQ(header.getWidth(40), 0u);
	EXPECT_EQ(header.getNumArrayMembers(), 7u);
	EXPECT_EQ(header.getNumFaces(), 6u);
	EXPECT_TRUE(header.isPreMultiplied());
	header.setIsFileCompressed(true);
	EXPECT_TRUE(header.isPreMultiplied());
	header.setIsPreMultiplied(false);
	EXPECT_FALSE(header.isFileCompressed()) << "clearing one flag clears both";
	header.setIsPreMultiplied(true);
	header.setIsFileCompressed(false);
	EXPECT_EQ(header.getFileHeader().flags, 0u);
}
} // namespace
