#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <utility>

#include "Containers/FileBytes.h"
#include "ZORTexture.h"

using namespace zortexture;

namespace
{
constexpr unsigned long long kRgb8 = PixelType('r', 'g', 'b', 0, 8, 8, 8, 0).id;
constexpr unsigned long long kR8 = PixelType('r', 0, 0, 0, 8, 0, 0, 0).id;

TEST(Texture, LaysOutLevelsMembersAndFaces)
{
	const CZORTexture cube(CZORTextureHeader(kRgb8, 4, 4, 1, 3, 3, 6));
	const auto* const first = static_cast<const unsigned char*>(cube.getDataPtr(0, 0, 0));
	ASSERT_NE(first, nullptr);
	const auto offsetOf = [&](unsigned int level, unsigned int member, unsigned int face)
	{
		return static_cast<const unsigned char*>(cube.getDataPtr(level, member, face)) - first;
	};
	EXPECT_EQ(offsetOf(0, 0, 1), 48);
	EXPECT_EQ(offsetOf(0, 1, 0), 288);
	EXPECT_EQ(offsetOf(1, 2, 3), 864 + 2 * 72 + 3 * 12);
	EXPECT_EQ(offsetOf(2, 2, 5), 864 + 216 + 54 - 3);
	EXPECT_EQ(cube.getDataPtr(3, 0, 0), nullptr);
	EXPECT_EQ(cube.getDataPtr(0, 3, 0), nullptr);
	EXPECT_EQ(cube.getDataPtr(0, 0, 6), nullptr);
	EXPECT_EQ(cube.getDataPtr(0xFFFFFFFFu, 0, 0), nullptr);

	CZORTexture endless(CZORTextureHeader(kR8, 1, 2, 1, 34));
	EXPECT_EQ(static_cast<unsigned char*>(endless.getDataPtr(33, 0, 0)) - static_cast<unsigned char*>(endless.getDataPtr(0, 0, 0)), 35);
	endless.setNumMIPLevels(0xFFFFFFFFu);
	EXPECT_NE(endless.getDataPtr(0xFFFFFFFEu, 0, 0), nullptr) << "and takes no time";
	EXPECT_FALSE(endless.isDataComplete());
}

TEST(Texture, CopiesDeeply)
{
	const CZORTexture empty;
	EXPECT_EQ(empty.getDataPtr(0, 0, 0), nullptr);
	EXPECT_EQ(CZORTexture(empty).getDataPtr(0, 0, 0), nullptr);
	EXPECT_NE(CZORTexture(CZORTextureHeader()).getDataPtr(0, 0, 0), nullptr) << "a block of no bytes";

	CZORTexture texture = countingTexture(CZORTextureHeader(kRgb8, 2, 2));
	texture.setBorder(1, 1, 1);
	CZORTexture copy(texture);
	CZORTexture assigned;
	assigned = texture;
	*static_cast<unsigned char*>(texture.getDataPtr(0, 0, 0)) = 99;
	EXPECT_EQ(blockOf(copy), FileBytes().count(1, 12).bytes);
	EXPECT_EQ(blockOf(assigned), FileBytes().count(1, 12).bytes);
	EXPECT_EQ(assigned.getMetaDataSize(), 24u);
	CZORTexture& alias = copy;
	copy = alias;
	EXPECT_EQ(blockOf(copy), FileBytes().count(1, 12).bytes);
	copy = empty;
	EXPECT_EQ(copy.getDataPtr(0, 0, 0), nullptr);
	EXPECT_EQ(blockOf(CZORTexture(CZORTextureHeader(kRgb8, 2, 2))), std::string(12, '\0'));
}

TEST(Texture, MovesItsBlock)
{
	CZORTexture texture = countingTexture(CZORTextureHeader(kRgb8, 2, 2));
	const void* const block = texture.getDataPtr(0, 0, 0);
	CZORTexture moved(std::move(texture));
	CZORTexture assigned(CZORTextureHeader(kR8, 9, 9));
	assigned = std::move(moved);
	EXPECT_EQ(assigned.getDataPtr(0, 0, 0), block);
	EXPECT_EQ(assigned.getWidth(), 2u);
	EXPECT_TRUE(assigned.isDataComplete());
	for (const CZORTexture* const left : {&texture, &moved})
	{
		EXPECT_EQ(left->getDataPtr(0, 0, 0), nullptr);
		EXPECT_FALSE(left->isDataComplete());
	}
}

/// The bytes that a header describes, in a type that does not wrap; exact below 2^53.
double describedBytes(const CZORTextureHeader& header)
{
	unsigned int unit[3];
	ZORTGetFormatMinDims(header.getPixelType().id, unit[0], unit[1], unit[2]);
	const bool isASTC = header.getPixelType().id >= ePF_ASTC_4x4 && header.getPixelType().id <= ePF_ASTC_6x6x6;
	double bits = 0;
	for (unsigned int level = 0; level < header.getNumMIPLevels(); ++level)
	{
		double units = 1;
		double unitPixels = 1;
		const unsigned int size[3] = {header.getWidth(level), header.getHeight(level), header.getDepth(level)};
		for (unsigned int axis = 0; axis < 3; ++axis)
		{
			units *= std::ceil(static_cast<double>(size[axis]) / unit[axis]);
			unitPixels *= unit[axis];
		}
		bits += units * (isASTC ? 128.0 : unitPixels * header.getBitsPerPixel());
	}
	return std::floor(bits / 8) * header.getNumArrayMembers() * header.getNumFaces();
}

TEST(Texture, KnowsWhetherEveryPositionIsInItsBlock)
{
	constexpr unsigned int kBlockSize = 16384;
	const unsigned long long formats[] = {kR8,
	                                      kRgb8,
	                                      PixelType('r', 'g', 'b', 0, 1, 1, 1, 0).id,
	                                      ePF_ETC1,
	                                      ePF_ASTC_6x6x6,
	                                      ePF_TesselI_2bpp_RGB,
	                                      ePF_ASTC_4x4,
	                                      0xFFFFFFFF00000000ull};
	std::mt19937 random(7);
	const auto wild = [&random]
	{
		// Small numbers, and some whose products wrap.
		const unsigned int value = random() >> (random() % 32);
		return random() % 3 == 0 ? value : value % 24;
	};
	unsigned int numComplete = 0;
	for (unsigned int i = 0; i < 5000; ++i)
	{
		CZORTexture texture(CZORTextureHeader(kR8, 1, kBlockSize));
		texture.setPixelFormat(formats[random() % std::size(formats)]);
		texture.setWidth(wild());
		texture.setHeight(wild());
		texture.setDepth(wild() % 9);
		texture.setNumMIPLevels(random() % 70);
		texture.setNumArrayMembers(wild() % 7);
		texture.setNumFaces(random() % 16 == 0 ? wild() : 1);
		const bool hasPositions = texture.getNumMIPLevels() > 0 && texture.getNumArrayMembers() > 0 && texture.getNumFaces() > 0;
		const bool isComplete = texture.isDataComplete();
		ASSERT_EQ(isComplete, hasPositions && describedBytes(texture) <= kBlockSize) << "round " << i;
		if (!isComplete)
		{
			continue;
		}
		++numComplete;
		const auto* const block = static_cast<const unsigned char*>(std::as_const(texture).getDataPtr(0, 0, 0));
		for (unsigned int level = 0; level < texture.getNumMIPLevels(); ++level)
		{
			const auto* const last =
			    static_cast<const unsigned char*>(texture.getDataPtr(level, texture.getNumArrayMembers() - 1, texture.getNumFaces() - 1));
			ASSERT_LE(last - block + texture.getDataSize(static_cast<int>(level), false, false), kBlockSize);
		}
	}
	EXPECT_GT(numComplete, 500u);
	EXPECT_LT(numComplete, 4500u);

	// An ASTC level's size wraps long before its bytes fill 32 bits.
	CZORTexture wrapped(CZORTextureHeader(ePF_ASTC_4x4, 16384, 32772));
	EXPECT_EQ(wrapped.getDataSize(), 65536u);
	EXPECT_FALSE(wrapped.isDataComplete());
}

TEST(Texture, PadsItsFilesToAnAlignment)
{
	const struct
	{
		unsigned int alignment, border, metaDataSize;
	} cases[] = {{0, 0, 0}, {1, 0, 0}, {16, 0, 12}, {24, 0, 20}, {100, 0, 48}, {64, 1, 24 + 12 + 40}, {7, 1, 24 + 12 + 3}};
	for (const auto& c : cases)
	{
		CZORTexture texture = countingTexture(CZORTextureHeader(kRgb8, 2, 2));
		if (c.border != 0)
		{
			texture.setBorder(c.border, c.border, c.border);
		}
		texture.addPaddingMetaData(c.alignment);
		EXPECT_EQ(texture.getMetaDataSize(), c.metaDataSize) << c.alignment;
		EXPECT_TRUE(c.alignment < 2 || (52 + texture.getMetaDataSize()) % c.alignment == 0) << c.alignment;
	}
}

TEST(Texture, PicksTheContainerByTheExtension)
{
	const CZORTexture texture = countingTexture(CZORTextureHeader(kRgb8, 2, 2));
	const TemporaryPath native(".zor");
	ASSERT_TRUE(texture.saveFile(native.str()));
	for (const char* extension : {"", ".", ".Zor", ".png", ".d/file"})
	{
		const bool isFolder = std::strchr(extension, '/') != nullptr;
		const TemporaryPath folder(isFolder ? ".d" : extension);
		if (isFolder)
		{
			std::filesystem::create_directory(folder.str());
		}
		const std::string path = isFolder ? folder.str() + "/file" : folder.str();
		std::filesystem::copy_file(native.str(), path);
		EXPECT_EQ(blockOf(CZORTexture(path.c_str())), blockOf(texture)) << extension;
		if (isFolder)
		{
			std::filesystem::remove(path);
		}
	}
	for (const char* extension : {".ktx", ".KtX", ".dds", ".astc"})
	{
		EXPECT_EQ(loadBytes(native.read(), extension).getDataPtr(0, 0, 0), nullptr) << extension;
	}
	EXPECT_EQ(CZORTexture("/nowhere/at/all.zor").getDataPtr(0, 0, 0), nullptr);
	EXPECT_EQ(CZORTexture(std::filesystem::temp_directory_path().c_str()).getDataPtr(0, 0, 0), nullptr) << "a folder";
	const struct
	{
		const char* asked;
		const char* written;
	} names[] = {{"", ".zor"}, {".", "..zor"}, {".astc", ".astc.zor"}, {".ZOR", ".ZOR"}};
	for (const auto& name : names)
	{
		const TemporaryPath base("");
		EXPECT_TRUE(texture.saveFile(base.str() + name.asked));
		EXPECT_TRUE(std::filesystem::remove(base.str() + name.written)) << name.asked;
	}
}
} // namespace
