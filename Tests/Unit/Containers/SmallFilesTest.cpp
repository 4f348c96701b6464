// ASTC files, C headers, and the pieces of paths that name their arrays.

#include <gtest/gtest.h>
#include <sstream>

#include "FileBytes.h"
#include "StringUtils.h"

using namespace zortexture;

namespace
{
FileBytes astcHeader(unsigned int x, unsigned int y, unsigned int z, const std::string& dimensions)
{
	return FileBytes().word(0x5CA1AB13).text({static_cast<char>(x), static_cast<char>(y), static_cast<char>(z)}).text(dimensions);
}

const std::string k8x8x1("\x08\0\0\x08\0\0\x01\0\0", 9);

TEST(ASTCFile, WritesTheseBytes)
{
	const CZORTexture cube = countingTexture({ePF_ASTC_8x5, 6, 0x10203, 1, 1, 1, 6, eCS_sRGB});
	const TemporaryPath path(".astc");
	ASSERT_TRUE(cube.saveASTCFile(path.str()));
	const unsigned int faceSize = cube.getDataSize(0, false, false);
	EXPECT_EQ(path.read(), astcHeader(8, 5, 1, std::string("\3\2\1\6\0\0\1\0\0", 9)).text(blockOf(cube).substr(0, faceSize)).bytes);

	std::ostringstream stream;
	countingTexture({ZORStandard8PixelType.id, 8, 8}).toASTC(stream);
	EXPECT_EQ(stream.str(), astcHeader(0, 0, 0, k8x8x1).count(1, 256).bytes) << "another format has blocks of 0";
}

TEST(ASTCFile, ReadsEveryBlockSizeAndRefusesOthers)
{
	for (unsigned int id = ePF_ASTC_4x4; id <= ePF_ASTC_6x6x6; ++id)
	{
		const CZORTexture texture = countingTexture({id, 8, 8, id >= ePF_ASTC_3x3x3 ? 8u : 1u});
		const TemporaryPath path(".astc");
		ASSERT_TRUE(texture.saveASTCFile(path.str()));
		const CZORTexture loaded(path.str().c_str());
		EXPECT_EQ(loaded.getPixelType().id, id);
		EXPECT_EQ(blockOf(loaded), blockOf(texture));
	}
	const unsigned int refused[][3] = {{7, 7, 1}, {12, 11, 1}, {3, 3, 1}, {4, 4, 0}, {4, 4, 2}, {0, 0, 0}, {13, 13, 13}};
	for (const auto& block : refused)
	{
		EXPECT_FALSE(loadBytes(astcHeader(block[0], block[1], block[2], k8x8x1).count(1, 64).bytes, ".astc").isDataComplete());
	}
	EXPECT_EQ(loadBytes(astcHeader(4, 4, 1, k8x8x1).bytes.substr(1), ".astc").getPixelType().id, ePF_NumCompressedPFs);
}

TEST(ASTCFile, AStreamGivesATextureWhoseCopiesAreEmpty)
{
	const std::string file = astcHeader(4, 4, 1, k8x8x1).count(1, 64).bytes;
	std::istringstream stream("skipped" + file);
	stream.seekg(7); // it reads from where the stream stands
	const CZORTexture texture = CZORTexture::fromASTC(stream);
	EXPECT_EQ(blockOf(texture), FileBytes().count(1, 64).bytes);
	const CZORTexture copy(texture);
	EXPECT_EQ(copy.getWidth(), 8u);
	EXPECT_FALSE(copy.isDataComplete());

	for (std::size_t length = 0; length < file.size(); ++length)
	{
		std::istringstream cut(file.substr(0, length));
		EXPECT_THROW(CZORTexture::fromASTC(cut), std::ios_base::failure);
		touchAll(loadBytes(file.substr(0, length), ".astc"));
	}
}

TEST(CHeaderFile, HoldsTheBytesOfANativeFile)
{
	CZORTextureHeader shape(PixelType('l', 0, 0, 0, 8, 0, 0, 0).id, 3, 11);
	shape.setOrientation(eOrient_Up);
	const CZORTexture texture = countingTexture(shape);
	const TemporaryPath path(".b.h");
	ASSERT_TRUE(texture.saveFile(path.str()));
	const std::string text = path.read();
	const std::string fileName = StringUtils::getFileName(path.str());
	const std::string arrayName = fileName.substr(0, fileName.find('.'));

	EXPECT_EQ(text.substr(0, text.find("0x")), "/********************************************************** \n"
	                                           " * ZORTexLib\n"
	                                           " **********************************************************/\n\n"
	                                           "#ifndef A8BIT \n"
	                                           " #define A8BIT static const unsigned char\n"
	                                           "#endif\n\n"
	                                           "A8BIT " +
	                                               arrayName + "[] = {\n\n/* Header */\n");
	EXPECT_NE(text.find("0x5a,0x4f,0x52,0x03,\n0x00,0x00,0x00,0x00,\n0x6c,0x00,0x00,0x00,\n0x08,"), std::string::npos);
	EXPECT_NE(text.find("0x0f,0x00,0x00,0x00,\n\n/* Meta Data */\n0x5a,0x4f,0x52,0x03,\n0x03,0x00,0x00,0x00,\n0x03,0x00,0x00,0x00,\n"
	                    "0x00,0x02,0x00,\n\n/* Data */\n0x01,0x02,"),
	          std::string::npos);
	const std::string end = "0x20,\n0x21,};\n";
	EXPECT_EQ(text.substr(text.size() - end.size()), end);

	// The array is a whole native file.
	std::string bytes;
	for (std::size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at + 2))
	{
		bytes.push_back(static_cast<char>(std::stoi(text.substr(at + 2, 2), nullptr, 16)));
	}
	const CZORTexture loaded(static_cast<const void*>(bytes.data()));
	EXPECT_EQ(blockOf(loaded), blockOf(texture));
	EXPECT_EQ(loaded.getOrientation(eAxis_Y), eOrient_Up);
}

/// What a header file holds between two of its comments.
std::string sectionOf(const CZORTexture& texture, const std::string& from, const std::string& to)
{
	const TemporaryPath path(".h");
	EXPECT_TRUE(texture.saveFile(path.str()));
	const std::string text = path.read();
	const std::size_t begin = text.find(from);
	return begin == std::string::npos ? "none" : text.substr(begin + from.size(), text.find(to, begin) - begin - from.size());
}

MetaDataBlock block(unsigned int fourCC, unsigned int key, unsigned int dataSize)
{
	MetaDataBlock made;
	made.fourCC = fourCC;
	made.key = key;
	made.dataSize = dataSize;
	made.data = new unsigned char[dataSize];
	for (unsigned int i = 0; i < dataSize; ++i)
	{
		made.data[i] = static_cast<unsigned char>(0xA0 + i);
	}
	return made;
}

TEST(CHeaderFile, WritesEveryMetaDataBlockInItsGroup)
{
	const std::string kBytes = "0xa0,0xa1,";
	const std::string kTwo = "0x02,0x00,0x00,0x00,\n";
	const CZORTextureHeader shape(PixelType('l', 0, 0, 0, 8, 0, 0, 0).id, 1, 1);
	CZORTextureHeader tagged = shape;
	tagged.addMetaData(block(kZORTextureMagic, 7, 2));
	tagged.addMetaData(block(0x64636261, 9, 1));
	tagged.addMetaData(block(kZORTextureMagic, 8, 2)); // joins its group, ahead of the foreign one
	EXPECT_EQ(sectionOf(countingTexture(tagged), "/* Meta Data */\n", "\n/* Data"),
	          "0x5a,0x4f,0x52,0x03,\n0x07,0x00,0x00,0x00,\n" + kTwo + kBytes + "\n0x5a,0x4f,0x52,0x03,\n0x08,0x00,0x00,0x00,\n" + kTwo +
	              kBytes + "\n0x61,0x62,0x63,0x64,\n0x09,0x00,0x00,0x00,\n0x01,0x00,0x00,0x00,\n0xa0,\n");
	EXPECT_EQ(sectionOf(countingTexture(shape), "/* Meta Data */", "\n/* Data"), "none");

	CZORTextureHeader crowded = shape;
	std::string expected;
	for (unsigned int group = 0; group < 33; ++group)
	{
		crowded.addMetaData(block(0x10 + group, 2, 2));
		std::ostringstream fourCC;
		fourCC << "0x" << std::hex << 0x10 + group << ",0x00,0x00,0x00,\n";
		expected += fourCC.str() + kTwo + kTwo + (group == 31 ? "0xa0,\n0xa1,\n" : kBytes) + "\n";
	}
	EXPECT_EQ(sectionOf(countingTexture(crowded), "/* Meta Data */\n", "\n/* Data"), expected) << "only the 32nd group breaks each byte";
}

TEST(CHeaderFile, NamesItsArrayAfterTheFileAndMayHaveNoData)
{
	EXPECT_EQ(sectionOf(CZORTexture(), "/* Data */\n", "nothing"), "};\n");

	const TemporaryPath folder("");
	std::filesystem::create_directory(folder.str());
	const std::pair<const char*, const char*> names[] = {{"/a.b.h", "a"}, {"/.h", ""}, {"/2-d.h", "2-d"}};
	for (const auto& [file, name] : names)
	{
		const std::string path = folder.str() + file;
		EXPECT_TRUE(CZORTexture().saveFile(path));
		std::ifstream stream(path);
		const std::string text{std::istreambuf_iterator<char>(stream), {}};
		EXPECT_NE(text.find("\nA8BIT " + std::string(name) + "[] = {\n"), std::string::npos) << file;
		std::filesystem::remove(path);
	}
}

TEST(StringUtils, SplitsAtEveryDelimiter)
{
	using Pieces = std::vector<std::string>;
	EXPECT_EQ(StringUtils::splitString("", {','}), Pieces({""}));
	EXPECT_EQ(StringUtils::splitString(",a,,b;c,", {',', ';'}), Pieces({"", "a", "", "b", "c", ""}));
	EXPECT_EQ(StringUtils::splitString(std::string("a,b\0,c", 6), {','}), Pieces({"a", "b"}));
	EXPECT_EQ(StringUtils::getFileName("/one\\two/three.h"), "three.h");
	EXPECT_EQ(StringUtils::getFileName("folder/"), "");
}
} // namespace
