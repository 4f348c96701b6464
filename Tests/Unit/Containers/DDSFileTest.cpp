#include <cstring>
#include <gtest/gtest.h>

#include "FileBytes.h"
#include "FormatText.h"

using namespace zortexture;

namespace
{
const PixelType kRgb8('r', 'g', 'b', 0, 8, 8, 8, 0);
const PixelType kArgb8('a', 'r', 'g', 'b', 8, 8, 8, 8);
const PixelType kRgb565('r', 'g', 'b', 0, 5, 6, 5, 0);

/// The fields of a DDS header that tests vary.
struct Fields
{
	unsigned int flags = 0x1007;
	unsigned int height = 1;
	unsigned int width = 1;
	unsigned int pitch = 0;
	unsigned int depth = 1;
	unsigned int levels = 1;
	unsigned int pixelFlags = 0;
	std::string fourCC = std::string(4, '\0');
	unsigned int bitCount = 0;
	unsigned int red = 0;
	unsigned int green = 0;
	unsigned int blue = 0;
	unsigned int alpha = 0;
	unsigned int caps = 0x1000;
	unsigned int caps2 = 0;
};

FileBytes header(const Fields& f)
{
	FileBytes file;
	file.text("DDS ").words({124, f.flags, f.height, f.width, f.pitch, f.depth, f.levels}).zeroes(44);
	file.words({32, f.pixelFlags}).text(f.fourCC).words({f.bitCount, f.red, f.green, f.blue, f.alpha, f.caps, f.caps2, 0, 0, 0});
	return file;
}

Fields extended(Fields fields)
{
	fields.pixelFlags = 4;
	fields.fourCC = "DX10";
	return fields;
}

std::string written(const CZORTextureHeader& shape)
{
	const TemporaryPath path(".dds");
	EXPECT_TRUE(countingTexture(shape).saveFile(path.str()));
	return path.read();
}

TEST(DDSFile, WritesTheseBytes)
{
	Fields rgb;
	rgb.flags = 0x100F;
	rgb.width = 3;
	rgb.height = 2;
	rgb.pitch = 9;
	rgb.pixelFlags = 0x40;
	rgb.fourCC = "DX10"; // without its flag
	rgb.bitCount = 24;
	rgb.red = 0xFF0000;
	rgb.green = 0xFF00;
	rgb.blue = 0xFF;
	EXPECT_EQ(written({kRgb8.id, 2, 3}), header(rgb).count(1, 18).bytes);

	Fields dxt1;
	dxt1.flags = 0x81007 | 0x20000;
	dxt1.width = dxt1.height = 8;
	dxt1.levels = 2;
	dxt1.pitch = 40; // of all data
	dxt1.pixelFlags = 4;
	dxt1.fourCC = "DXT1";
	dxt1.caps = 0x401008;
	EXPECT_EQ(written({ePF_DXT1, 8, 8, 1, 2}), header(dxt1).count(1, 40).bytes);

	Fields cube = extended(Fields());
	cube.flags = 0x100F;
	cube.pitch = 4;
	cube.caps = 0x1008;
	cube.caps2 = 0xFE00;
	EXPECT_EQ(written({ZORStandard8PixelType.id, 1, 1, 1, 1, 1, 6}), header(cube).words({28, 2, 4, 1, 0}).count(1, 24).bytes);

	Fields volume = extended(Fields());
	volume.flags = 0x80100F;
	volume.width = volume.height = volume.depth = 2;
	volume.pitch = 8;
	volume.caps2 = 0x200000;
	EXPECT_EQ(written({ZORStandard8PixelType.id, 2, 2, 2, 1, 1, 1, eCS_sRGB}), header(volume).words({29, 4, 0, 1, 0}).count(1, 32).bytes);

	Fields array = extended(Fields());
	array.flags = 0x81007;
	array.width = array.height = 4;
	array.pitch = 24;
	EXPECT_EQ(written({ePF_DXT1, 4, 4, 1, 1, 3}), header(array).words({0, 3, 0, 3, 0}).count(1, 24).bytes)
	    << "no DXGI value with 8-bit types";

	// In the file each member's levels lie together; in memory each level's members do.
	Fields mipArray = extended(Fields());
	mipArray.flags = 0x2100F;
	mipArray.width = 2;
	mipArray.levels = 2;
	mipArray.pitch = 2;
	mipArray.caps = 0x401008;
	EXPECT_EQ(written({PixelType('r', 0, 0, 0, 8, 0, 0, 0).id, 1, 2, 1, 2, 2}),
	          header(mipArray).words({61, 2, 0, 2, 0}).text(std::string("\1\2\5\3\4\6", 6)).bytes);
}

TEST(DDSFile, KeepsTexturesThroughSaveAndLoad)
{
	const CZORTextureHeader shapes[] = {
	    {kRgb565.id, 4, 6, 1, 3, 1, 1, eCS_lRGB, eVT_UnsignedIntegerNorm},
	    {kArgb8.id, 4, 4, 1, 3, 1, 6, eCS_lRGB, eVT_UnsignedIntegerNorm},
	    {ZORStandard8PixelType.id, 4, 4, 1, 3, 3, 6, eCS_sRGB},
	    {ZORStandard16PixelType.id, 2, 4, 3, 2, 1, 1, eCS_lRGB, eVT_SignedFloat},
	    {ePF_DXT5, 8, 8, 1, 4},
	    {ePF_TesselI_4bpp_RGBA, 16, 16, 1, 5},
	    {ePF_RGBG8888, 4, 4},
	};
	for (const CZORTextureHeader& shape : shapes)
	{
		const CZORTexture texture = countingTexture(shape);
		const TemporaryPath path(".dds");
		ASSERT_TRUE(texture.saveFile(path.str()));
		const CZORTexture loaded(path.str().c_str());
		EXPECT_EQ(loaded.getPixelType().id, shape.getPixelType().id);
		EXPECT_EQ(loaded.getChannelType(), shape.getChannelType());
		EXPECT_EQ(loaded.getColourSpace(), shape.getColourSpace());
		EXPECT_EQ(loaded.getNumFaces(), shape.getNumFaces());
		EXPECT_EQ(loaded.getNumArrayMembers(), shape.getNumArrayMembers());
		EXPECT_EQ(loaded.getDepth(), shape.getDepth());
		EXPECT_EQ(blockOf(loaded), blockOf(texture));
	}
}

// The flag alone picks the group of masks; within it every mask counts that the format has.
TEST(DDSFile, RecognisesFormatsByTheirMasks)
{
	struct Case
	{
		unsigned int flags;
		unsigned int bits;
		unsigned int red;
		unsigned int green;
		unsigned int blue;
		unsigned int alpha;
		const char* layout; ///< letters and widths; null for a refusal
	};
	const Case cases[] = {
	    {0x40, 8, 0xE0, 0x1C, 3, 77, "r3g3b2"},
	    {0x41, 16, 0x7C00, 0x3E0, 0x1F, 0x8000, "a1r5g5b5"},
	    {0x41, 16, 0xE0, 0x1C, 3, 0xFF00, "a8r3g3b2"},
	    {0x41, 16, 0xF00, 0xF0, 0xF, 0xF000, "a4r4g4b4"},
	    {0x40, 16, 0x7C00, 0x3E0, 0x1F, 0x8000, "x1r5g5b5"},
	    {0x40, 16, 0xF800, 0x7E0, 0x1F, 0, "r5g6b5"},
	    {0x41, 16, 0xF800, 0x7E0, 0x1F, 0, nullptr},
	    {0x41, 24, 0xFF0000, 0xFF00, 0xFF, 5, "r8g8b8"},
	    {0x40, 24, 0xFF, 0xFF00, 0xFF0000, 0, nullptr},
	    {0x41, 32, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000, "a2b10g10r10"},
	    {0x41, 32, 0x3FF, 0xFFC00, 0x3FF00000, 0xC0000000, "a2r10g10b10"},
	    {0x41, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000, "a8r8g8b8"},
	    {0x40, 32, 0xFF0000, 0xFF00, 0xFF, 0, nullptr},
	    {0x40, 32, 0xFFFF, 0xFFFF0000, 9, 9, "g16r16"},
	    {0x40000, 16, 0x1F, 0x3E0, 0xFC00, 0, "l6g5r5"},
	    {0x40000, 32, 0xFF, 0xFF00, 0xFF0000, 0, "x8l8g8r8"},
	    {0x80000, 16, 0xFF, 0xFF00, 0, 0, "g8r8"},
	    {0x80000, 32, 0x3FF00000, 0xFFC00, 0x3FF, 0xC0000000, "a2b10g10r10"},
	    {0x80000, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000, "a8b8g8r8"},
	    {0x80000, 32, 0xFFFF, 0xFFFF0000, 0, 0xFF, "g16r16"},
	    {0x20000, 8, 0xFF, 0, 0, 0, "l8"},
	    {0x20001, 8, 0xF, 0, 0, 0xF0, "a4l4"},
	    {0x20000, 8, 0xF, 0, 0, 0xF0, nullptr},
	    {0x20001, 16, 0xFF, 0, 0, 0xFF00, "a8l8"},
	    {0x20001, 16, 0xFFFF, 0, 0, 0, "l16"},
	    {2, 8, 0, 0, 0, 0xFF, "a8"},
	    {0x40 | 0x20000, 8, 0xFF, 0, 0, 0, nullptr}, // the first group does not match, and no other is asked
	    {0, 24, 0xFF0000, 0xFF00, 0xFF, 0, nullptr},
	};
	for (const Case& one : cases)
	{
		Fields fields;
		fields.pixelFlags = one.flags;
		fields.bitCount = one.bits;
		fields.red = one.red;
		fields.green = one.green;
		fields.blue = one.blue;
		fields.alpha = one.alpha;
		const CZORTexture texture = loadBytes(header(fields).count(1, one.bits / 8).bytes, ".dds");
		std::string layout;
		for (unsigned int i = 0; i < 4 && texture.getPixelType().channelName[i] != 0; ++i)
		{
			layout += static_cast<char>(texture.getPixelType().channelName[i]) + std::to_string(texture.getPixelType().channelBits[i]);
		}
		if (one.layout == nullptr)
		{
			EXPECT_FALSE(texture.isDataComplete()) << std::hex << one.flags << " " << one.red;
			continue;
		}
		EXPECT_EQ(layout, std::string(one.layout)) << std::hex << one.flags << " " << one.red;
		EXPECT_EQ(blockOf(texture), FileBytes().count(1, one.bits / 8).bytes);
	}
}

TEST(DDSFile, ReadsShapesFromBothHeaders)
{
	Fields cube;
	cube.pixelFlags = 0x20000;
	cube.bitCount = 8;
	cube.red = 0xFF;
	cube.caps2 = 0x200;
	EXPECT_EQ(loadBytes(header(cube).count(1, 6).bytes, ".dds").getNumFaces(), 6u);
	cube.caps2 = 0x1FF;
	EXPECT_EQ(loadBytes(header(cube).count(1, 6).bytes, ".dds").getNumFaces(), 1u) << "the low byte does not matter";

	Fields unflagged = cube;
	unflagged.depth = unflagged.levels = 9;
	const CZORTexture plain = loadBytes(header(unflagged).count(1, 1).bytes, ".dds");
	EXPECT_EQ(plain.getDepth() + plain.getNumMIPLevels(), 2u) << "without their flags depth and levels are 1";

	Fields maskedDX10 = cube;
	maskedDX10.fourCC = "DX10";
	EXPECT_EQ(blockOf(loadBytes(header(maskedDX10).count(1, 1).bytes, ".dds")), "\1") << "without its flag the FourCC means nothing";

	struct Case
	{
		unsigned int dimension;
		unsigned int width;
		unsigned int height;
		unsigned int depth;
		unsigned int misc;
		unsigned int arraySize;
		std::size_t bytes; ///< 0: refused
	};
	const Case cases[] = {{4, 2, 2, 2, 0, 1, 8},  {3, 2, 2, 2, 0, 0, 4}, {2, 2, 2, 2, 0, 1, 2},
	                      {3, 1, 1, 1, 4, 2, 12}, {1, 2, 2, 2, 0, 1, 0}, {0, 2, 2, 2, 0, 1, 0}};
	for (const Case& one : cases)
	{
		Fields fields = extended(Fields());
		fields.flags |= 0x800000;
		fields.width = one.width;
		fields.height = one.height;
		fields.depth = one.depth;
		const std::string file = header(fields).words({61, one.dimension, one.misc, one.arraySize, 0}).count(1, 12).bytes;
		EXPECT_EQ(blockOf(loadBytes(file, ".dds")), FileBytes().count(1, one.bytes).bytes) << one.dimension;
	}

	Fields premultiplied;
	premultiplied.width = premultiplied.height = 4;
	premultiplied.pixelFlags = 4;
	premultiplied.fourCC = "DXT2";
	EXPECT_TRUE(loadBytes(header(premultiplied).count(1, 16).bytes, ".dds").isPreMultiplied());
}

// Of a format's description in the file: flags, FourCC, bit count, masks.
TEST(DDSFile, DescribesEachFormatByItsMasks)
{
	struct Case
	{
		const char* format;
		unsigned int type;
		const char* description; ///< flags, FourCC (- for DX10), bits, red, green, blue, alpha; hexadecimal but for the bits
	};
	const Case cases[] = {
	    {"rgb8.8.8", 8, "40 - 24 ff0000 ff00 ff 0"},
	    {"argb8.8.8.8", 8, "41 - 32 ff0000 ff00 ff ff000000"},
	    {"rgb5.6.5", 4, "40 - 16 f800 7e0 1f 0"},
	    {"xrgb1.5.5.5", 4, "40 - 16 7c00 3e0 1f 0"},
	    {"argb1.5.5.5", 8, "41 - 16 7c00 3e0 1f 8000"},
	    {"argb4.4.4.4", 8, "41 - 16 f00 f0 f f000"},
	    {"rgb3.3.2", 8, "40 - 8 e0 1c 3 0"},
	    {"a8", 0, "2 - 8 0 0 0 ff"},
	    {"argb8.3.3.2", 8, "41 - 16 e0 1c 3 ff00"},
	    {"abgr2.10.10.10", 8, "41 - 32 3ff00000 ffc00 3ff c0000000"},
	    {"gr16.16", 4, "40 - 32 ffff ffff0000 0 0"},
	    {"argb2.10.10.10", 8, "41 - 32 3ff ffc00 3ff00000 c0000000"},
	    {"l8", 0, "20000 - 8 ff 0 0 0"},
	    {"al8.8", 0, "20001 - 16 ff 0 0 ff00"},
	    {"al4.4", 8, "20001 - 8 f 0 0 f0"},
	    {"gr8.8", 9, "80000 - 16 ff ff00 0 0"},
	    {"lgr6.5.5", 9, "40000 - 16 1f 3e0 fc00 0"},
	    {"xlgr8.8.8.8", 9, "40000 - 32 ff ff00 ff0000 0"},
	    {"abgr8.8.8.8", 9, "80000 - 32 ff ff00 ff0000 ff000000"},
	    {"gr16.16", 9, "80000 - 32 ffff ffff0000 0 0"},
	    {"abgr2.10.10.10", 9, "80001 - 32 3ff00000 ffc00 3ff c0000000"},
	    {"l16", 4, "20000 - 16 ffff 0 0 0"},
	    {"abgr16.16.16.16", 8, "4 24 0 0 0 0 0"},
	    {"r16", 12, "4 6f 0 0 0 0 0"},
	    {"gr16.16", 12, "4 70 0 0 0 0 0"},
	    {"rgba16.16.16.16", 12, "4 71 0 0 0 0 0"},
	    {"r32", 12, "4 72 0 0 0 0 0"},
	    {"rg32.32", 12, "4 73 0 0 0 0 0"},
	    {"abgr32.32.32.32", 12, "4 74 0 0 0 0 0"},
	    {"#1", 0, "4 324c5354 0 0 0 0 0"}, // TSL2
	    {"#3", 0, "4 344c5354 0 0 0 0 0"}, // TSL4
	    {"#7", 0, "4 31545844 0 0 0 0 0"}, // DXT1 to DXT5
	    {"#8", 0, "4 32545844 0 0 0 0 0"},
	    {"#9", 0, "4 33545844 0 0 0 0 0"},
	    {"#10", 0, "4 34545844 0 0 0 0 0"},
	    {"#11", 0, "4 35545844 0 0 0 0 0"},
	    {"#16", 0, "4 59565955 0 0 0 0 0"}, // UYVY
	    {"#17", 0, "4 32595559 0 0 0 0 0"}, // YUY2
	    // The extended header, by its DXGI number.
	    {"xrgb8.8.8.8", 8, "4 - 0 0 0 0 0 dxgi 0"},
	    {"#20", 0, "4 - 0 0 0 0 0 dxgi 68"},
	    {"#21", 0, "4 - 0 0 0 0 0 dxgi 69"},
	    {"bgra8.8.8.8", 0, "4 - 0 0 0 0 0 dxgi 87"},
	};
	for (const Case& one : cases)
	{
		const CZORTextureHeader shape(parseFormat(one.format), 4, 4, 1, 1, 1, 1, eCS_lRGB, static_cast<EZORTVariableType>(one.type));
		const std::string file = written(shape);
		ASSERT_GE(file.size(), 128u) << one.format;
		const auto wordAt = [&](std::size_t position)
		{
			unsigned int value = 0;
			std::memcpy(&value, file.data() + position, sizeof(value));
			return value;
		};
		std::ostringstream description;
		description << std::hex << wordAt(80) << " ";
		wordAt(84) == 0x30315844 ? description << "-" : description << wordAt(84);
		description << " " << std::dec << wordAt(88) << std::hex;
		for (std::size_t mask = 92; mask < 108; mask += 4)
		{
			description << " " << wordAt(mask);
		}
		const bool isExtended = file.size() == 148 + shape.getDataSize();
		EXPECT_TRUE(isExtended || file.size() == 128 + shape.getDataSize()) << one.format;
		if (isExtended)
		{
			description << " dxgi " << std::dec << wordAt(128);
		}
		EXPECT_EQ(description.str(), one.description) << one.format << " " << one.type;
	}
}

TEST(DDSFile, ReadsOddExtendedHeaders)
{
	Fields fields = extended(Fields());
	fields.width = fields.height = 4;
	const auto load = [&](unsigned int dxgi, unsigned int misc)
	{
		return loadBytes(header(fields).words({dxgi, 3, misc, 0, 0}).count(1, 96).bytes, ".dds");
	};
	const CZORTexture bc4 = load(80, 0);
	EXPECT_EQ(bc4.getPixelType().id, ePF_BC4);
	EXPECT_EQ(bc4.getColourSpace(), eCS_sRGB);
	EXPECT_EQ(bc4.getChannelType(), eVT_UnsignedIntegerNorm);
	EXPECT_EQ(blockOf(bc4), FileBytes().count(1, 8).bytes);

	const CZORTexture bc6h = load(96, 0);
	EXPECT_EQ(bc6h.getPixelType().id, ePF_BC7);
	EXPECT_EQ(bc6h.getDataSize(), 0u) << "a format without storage";

	const CZORTexture unknown = load(999, 0);
	EXPECT_EQ(unknown.getPixelType().id, ePF_NumCompressedPFs);
	EXPECT_EQ(unknown.getWidth(), 4u);
	EXPECT_EQ(unknown.getDataSize(), 0u);

	const CZORTexture cube = load(61, 4);
	EXPECT_EQ(cube.getNumFaces(), 6u);
	EXPECT_EQ(cube.getNumArrayMembers(), 1u);
	EXPECT_EQ(blockOf(cube), FileBytes().count(1, 96).bytes);
}

TEST(DDSFile, SurvivesCutAndLyingFiles)
{
	const std::string whole = written({ZORStandard8PixelType.id, 4, 4, 1, 3, 2, 6});
	for (std::size_t length = 0; length < whole.size(); ++length)
	{
		touchAll(loadBytes(whole.substr(0, length), ".dds"));
	}
	EXPECT_EQ(loadBytes(whole.substr(0, 127), ".dds").getWidth(), 1u);
	EXPECT_EQ(loadBytes(whole.substr(0, 147), ".dds").getDataPtr(0, 0, 0), nullptr);

	struct Case
	{
		unsigned int width;
		unsigned int height;
		unsigned int depth;
		unsigned int levels;
		unsigned int arraySize;
		unsigned int misc;
		bool hasBlock; ///< one too small for what the header says, perhaps of no bytes
	};
	const Case lies[] = {
	    {0x10000, 0x10000, 1, 1, 1, 0, true},
	    {0x10001, 0x10001, 1, 1, 1, 0, true},
	    {0x10000, 0x8000, 6, 1, 1, 0, true},
	    {1, 1, 1, 0xFFFFFFFF, 1, 0, false},
	    {1, 1, 1, 257, 1, 0, false},
	    {1, 1, 1, 1, 0x2AAAAAAB, 4, true},
	    {0x10000, 0x10000, 1, 1, 0xFFFFFFFF, 4, true},
	    {1, 1, 1, 33, 0x2AAAAAAB, 4, true},
	    {0, 0, 0, 0, 0, 0, false},
	};
	for (const Case& lie : lies)
	{
		Fields fields = extended(Fields());
		fields.flags |= 0x820000;
		fields.width = lie.width;
		fields.height = lie.height;
		fields.depth = lie.depth;
		fields.levels = lie.levels;
		const CZORTexture texture = loadBytes(header(fields).words({61, 4, lie.misc, lie.arraySize, 0}).count(1, 64).bytes, ".dds");
		EXPECT_FALSE(texture.isDataComplete()) << lie.width << " " << lie.levels;
		EXPECT_EQ(texture.getDataPtr(0, 0, 0) != nullptr, lie.hasBlock) << lie.width << " " << lie.levels;
	}
}
} // namespace
