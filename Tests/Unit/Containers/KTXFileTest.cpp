#include <gtest/gtest.h>
#include <sstream>

#include "FileBytes.h"
#include "OneShotReadBuf.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kUnsignedByte = 0x1401;
constexpr unsigned int kRGB = 0x1907;
constexpr unsigned int kRGBA = 0x1908;
constexpr unsigned int kRGB8 = 0x8051;
constexpr unsigned int kRGBA8 = 0x8058;

const std::string kIdentifier("\xABKTX 11\xBB\r\n\x1A\n", 12);

/// The fields of a KTX header that tests vary, with those of one rgba8 pixel.
struct Fields
{
	unsigned int type = kUnsignedByte;
	unsigned int typeSize = 1;
	unsigned int format = kRGBA;
	unsigned int internalFormat = kRGBA8;
	unsigned int baseInternalFormat = kRGBA;
	unsigned int width = 1;
	unsigned int height = 0;
	unsigned int depth = 0;
	unsigned int arrayElements = 0;
	unsigned int faces = 1;
	unsigned int levels = 1;
	unsigned int bytesOfKeyValueData = 0;
};

FileBytes header(const Fields& f)
{
	FileBytes file;
	file.text(kIdentifier).word(0x04030201);
	file.words({f.type, f.typeSize, f.format, f.internalFormat, f.baseInternalFormat, f.width, f.height, f.depth, f.arrayElements, f.faces,
	            f.levels, f.bytesOfKeyValueData});
	return file;
}

/// What every written file says of its orientation.
FileBytes& defaultOrientation(FileBytes& file)
{
	return file.word(27).text(std::string("KTXorientation\0S=r,T=d,R=i\0", 27)).zeroes(1);
}

FileBytes writtenHeader(Fields fields)
{
	fields.bytesOfKeyValueData = 32;
	FileBytes file = header(fields);
	return defaultOrientation(file);
}

std::string written(const CZORTextureHeader& shape)
{
	std::ostringstream stream;
	countingTexture(shape).toKTX(stream);
	return stream.str();
}

TEST(KTXFile, WritesTheseBytes)
{
	const unsigned long long rgba8 = ZORStandard8PixelType.id;
	const unsigned long long rgb8 = PixelType('r', 'g', 'b', 0, 8, 8, 8, 0).id;

	Fields flat;
	flat.width = 3;
	flat.height = 2;
	EXPECT_EQ(written({rgba8, 2, 3}), writtenHeader(flat).word(24).count(1, 24).bytes);

	Fields mips = flat;
	mips.levels = 2;
	EXPECT_EQ(written({rgba8, 2, 3, 1, 2}), writtenHeader(mips).word(24).count(1, 24).word(4).count(25, 4).bytes);

	Fields cube;
	cube.faces = 6;
	EXPECT_EQ(written({rgba8, 1, 1, 1, 1, 1, 6}), writtenHeader(cube).word(4).count(1, 24).bytes) << "a cube map counts one face";

	Fields cubeArray = cube;
	cubeArray.arrayElements = 2;
	EXPECT_EQ(written({rgba8, 1, 1, 1, 1, 2, 6}), writtenHeader(cubeArray).word(48).count(1, 48).bytes) << "an array of them counts all";

	Fields array;
	array.arrayElements = 3;
	EXPECT_EQ(written({rgba8, 1, 1, 1, 1, 3}), writtenHeader(array).word(12).count(1, 12).bytes);

	Fields volume;
	volume.width = 2;
	volume.depth = 3;
	EXPECT_EQ(written({rgba8, 1, 2, 3}), writtenHeader(volume).word(24).count(1, 24).bytes);

	Fields padded;
	padded.format = padded.baseInternalFormat = kRGB;
	padded.internalFormat = kRGB8;
	padded.width = 5;
	padded.height = 2;
	EXPECT_EQ(written({rgb8, 2, 5}), writtenHeader(padded).word(32).count(1, 15).zeroes(1).count(16, 15).zeroes(1).bytes);

	Fields paddedCube = padded;
	paddedCube.width = 1;
	paddedCube.height = 0;
	paddedCube.faces = 6;
	FileBytes cubeFile = writtenHeader(paddedCube).word(4);
	for (unsigned int face = 0; face < 6; ++face)
	{
		cubeFile.count(1 + 3 * face, 3).zeroes(1);
	}
	EXPECT_EQ(written({rgb8, 1, 1, 1, 1, 1, 6}), cubeFile.bytes);

	Fields etc1;
	etc1.type = etc1.format = 0;
	etc1.internalFormat = 0x8D64;
	etc1.baseInternalFormat = kRGB;
	etc1.width = etc1.height = 4;
	EXPECT_EQ(written({ePF_ETC1, 4, 4}), writtenHeader(etc1).word(8).count(1, 8).bytes);

	Fields unnamed = etc1;
	unnamed.internalFormat = unnamed.baseInternalFormat = 0;
	EXPECT_EQ(written({ePF_BC4, 4, 4}), writtenHeader(unnamed).word(8).count(1, 8).bytes) << "a format without an OpenGL name";

	Fields shared;
	shared.type = 0x8C3E;
	shared.typeSize = 4;
	shared.format = shared.baseInternalFormat = kRGB;
	shared.internalFormat = 0x8C3D;
	EXPECT_EQ(written({ePF_R9G9B9E5, 1, 1}), writtenHeader(shared).word(4).count(1, 4).bytes);

	std::ostringstream empty;
	CZORTexture().toKTX(empty);
	EXPECT_EQ(empty.str().size(), 96u) << "a texture without data has no images";
}

TEST(KTXFile, KeepsTexturesWhoseRowsNeedNoPadding)
{
	const CZORTextureHeader shapes[] = {
	    {ZORStandard8PixelType.id, 5, 7, 1, 3},
	    {ZORStandard8PixelType.id, 4, 4, 1, 3, 1, 6, eCS_sRGB},
	    {ZORStandard8PixelType.id, 2, 4, 1, 2, 3, 6},
	    {ZORStandard16PixelType.id, 2, 4, 3, 2, 1, 1, eCS_lRGB, eVT_UnsignedShortNorm},
	    {ePF_TesselII_4bpp, 16, 16, 1, 5, 1, 1, eCS_sRGB},
	    {ePF_EAC_RG11, 8, 8, 1, 1, 2, 1, eCS_lRGB, eVT_UnsignedByteNorm},
	    {ePF_ASTC_6x6x6, 8, 8, 8},
	    {ePF_R9G9B9E5, 3, 3, 1, 2, 1, 1, eCS_lRGB, eVT_UnsignedFloat},
	};
	for (CZORTextureHeader shape : shapes)
	{
		shape.setOrientation(static_cast<EZORTOrientation>(eOrient_Left + eOrient_Up));
		const CZORTexture texture = countingTexture(shape);
		const TemporaryPath path(".ktx");
		ASSERT_TRUE(texture.saveFile(path.str()));
		const CZORTexture loaded(path.str().c_str());
		EXPECT_EQ(loaded.getPixelType().id, shape.getPixelType().id);
		EXPECT_EQ(loaded.getChannelType(), shape.getChannelType());
		EXPECT_EQ(loaded.getColourSpace(), shape.getColourSpace());
		EXPECT_EQ(loaded.getDepth(), shape.getDepth());
		EXPECT_EQ(loaded.getNumArrayMembers(), shape.getNumArrayMembers());
		EXPECT_EQ(loaded.getOrientation(eAxis_X), eOrient_Left);
		EXPECT_EQ(loaded.getOrientation(eAxis_Y), eOrient_Up);
		EXPECT_EQ(loaded.getOrientation(eAxis_Z), eOrient_In);
		EXPECT_EQ(blockOf(loaded), blockOf(texture));

		std::istringstream stream(path.read());
		EXPECT_EQ(blockOf(CZORTexture::fromKTX(stream)), blockOf(texture));
	}
}

// Paddings are sought from the start of the file, so that what follows one is read from there.
TEST(KTXFile, ReadsOnFromTheStartAfterPadding)
{
	const CZORTextureHeader shape(PixelType('r', 'g', 'b', 0, 8, 8, 8, 0).id, 2, 5);
	const std::string file = written(shape);
	const std::string block = blockOf(loadBytes(file, ".ktx"));
	ASSERT_EQ(block.size(), 30u);
	EXPECT_EQ(block.substr(0, 15), FileBytes().count(1, 15).bytes);
	EXPECT_EQ(block.substr(15), file.substr(1, 15));

	// The next level's size is read from there too, "KTX " with its three bytes of padding, and its row after it.
	const std::string mips = written({shape.getPixelType().id, 2, 5, 1, 2});
	EXPECT_EQ(blockOf(loadBytes(mips, ".ktx")), FileBytes().count(1, 15).text(mips.substr(1, 15) + mips.substr(5, 6)).bytes);

	// A writer that does not pad rows is known by its image size.
	Fields fields;
	fields.format = kRGB;
	fields.internalFormat = kRGB8;
	fields.width = 5;
	fields.height = 2;
	EXPECT_EQ(blockOf(loadBytes(header(fields).word(30).count(1, 30).bytes, ".ktx")), FileBytes().count(1, 30).bytes);
}

TEST(KTXFile, ReadsOrientationFromKeyValueData)
{
	struct Case
	{
		std::string pair; ///< key and value as stored
		unsigned int orientation;
	};
	const std::string key("KTXorientation\0", 15);
	const Case cases[] = {
	    {key + std::string("S=r,T=d,R=i\0", 12), 0},
	    {key + std::string("S=l,T=u,R=o\0", 12), 7},
	    {key + std::string("S=r,T=d,T=d\0", 12), 2},
	    {key + std::string("\0", 1), 2},
	    {key + "S=l,T=d", 1},
	    {key, 2},
	    {"KTXorientatioN", 0},
	    {"other", 0},
	    {"KTXorientation", 0},
	};
	for (const Case& one : cases)
	{
		Fields fields;
		const auto size = static_cast<unsigned int>(one.pair.size());
		const unsigned int padding = (4 - size % 4) % 4;
		fields.bytesOfKeyValueData = 4 + size + padding;
		const std::string file = header(fields).word(size).text(one.pair).zeroes(padding).word(4).count(1, 4).bytes;
		const CZORTexture texture = loadBytes(file, ".ktx");
		EXPECT_TRUE(texture.hasMetaData(kZORTextureMagic, kMetaKeyOrientation)) << "any pair makes an orientation";
		const unsigned int orientation =
		    texture.getOrientation(eAxis_X) + texture.getOrientation(eAxis_Y) + texture.getOrientation(eAxis_Z);
		EXPECT_EQ(orientation, one.orientation) << one.pair;
		EXPECT_EQ(blockOf(texture), FileBytes().count(1, 4).bytes) << one.pair;
	}
	EXPECT_FALSE(loadBytes(header(Fields()).word(4).count(1, 4).bytes, ".ktx").hasMetaData(kZORTextureMagic, kMetaKeyOrientation));
}

TEST(KTXFile, ReadsOnWithoutAFormatOrLevels)
{
	Fields unknown;
	unknown.width = 7;
	unknown.internalFormat = 0x1234;
	unknown.format = 0x1234;
	Fields noLevels;
	noLevels.width = 7;
	noLevels.levels = 0;
	for (const Fields& fields : {unknown, noLevels})
	{
		const std::string file = header(fields).word(28).count(1, 28).bytes;
		std::istringstream stream(file);
		for (const CZORTexture& texture : {loadBytes(file, ".ktx"), CZORTexture::fromKTX(stream)})
		{
			EXPECT_EQ(texture.getFileHeader().width, 7u);
			EXPECT_EQ(texture.getNumMIPLevels(), fields.levels);
			EXPECT_EQ(texture.getPixelType().id, fields.levels == 0 ? ZORStandard8PixelType.id : PixelType(ePF_NumCompressedPFs).id);
			EXPECT_EQ(texture.getDataSize(), 0u);
			EXPECT_EQ(blockOf(texture), "");
		}
	}
}

TEST(KTXFile, RefusesForeignAndSurvivesLyingFiles)
{
	std::string swapped = written({ZORStandard8PixelType.id, 2, 3});
	std::swap(swapped[12], swapped[15]);
	EXPECT_EQ(loadBytes(swapped, ".ktx").getWidth(), 1u) << "a file of the other byte order changes nothing";

	enum Outcome
	{
		eNoBlock,
		eTooSmall, ///< a block, perhaps of no bytes, but not what the header says
		eWhole
	};
	struct Case
	{
		const char* name;
		void (*lie)(Fields&);
		std::string tail;
		Outcome outcome;
		bool throws = false; ///< from a stream
	};
	const std::string image = FileBytes().word(4).count(1, 4).bytes;
	const Case cases[] = {
	    {"levels beyond any shift", [](Fields& f) { f.levels = 0xFFFFFFFF; }, image, eNoBlock},
	    {"as many levels as a byte counts, and one more", [](Fields& f) { f.levels = 257; }, image, eNoBlock},
	    {"faces times array members wraps to 0", [](Fields& f) { f.faces = f.arrayElements = 0x10000; }, image, eTooSmall},
	    {"faces times array members wraps to a little",
	     [](Fields& f)
	     {
		     f.faces = 0x10001;
		     f.arrayElements = 0xFFFF0001;
	     },
	     image, eTooSmall},
	    {"dimensions wrap to a little", [](Fields& f) { f.width = f.height = 0x10001; }, image, eTooSmall, true},
	    {"rows of a wrapped width",
	     [](Fields& f)
	     {
		     f.width = 0x55555556;
		     f.internalFormat = kRGB8;
		     f.height = 3;
	     },
	     image, eTooSmall},
	    {"no bytes in 2^32 images",
	     [](Fields& f)
	     {
		     f.width = 0x10000;
		     f.height = 0x10000;
		     f.faces = 0xFFFFFFFF;
	     },
	     image, eTooSmall},
	    {"key/value data past the end", [](Fields& f) { f.bytesOfKeyValueData = 0xFFFFFFFC; }, image, eNoBlock, true},
	    {"a pair longer than its block and the file", [](Fields& f) { f.bytesOfKeyValueData = 8; },
	     FileBytes().word(0xFFFFFFFF).bytes + image, eNoBlock, true},
	    {"pairs that never meet the end", [](Fields& f) { f.bytesOfKeyValueData = 9; }, FileBytes().zeroes(64).bytes, eWhole},
	};
	for (const Case& one : cases)
	{
		Fields fields;
		one.lie(fields);
		const std::string bytes = header(fields).text(one.tail).bytes;
		const auto expectOutcome = [&](const CZORTexture& texture)
		{
			EXPECT_EQ(texture.getDataPtr(0, 0, 0) != nullptr, one.outcome != eNoBlock) << one.name;
			EXPECT_EQ(texture.isDataComplete(), one.outcome == eWhole) << one.name;
		};
		expectOutcome(loadBytes(bytes, ".ktx"));
		std::istringstream stream(bytes);
		try
		{
			const CZORTexture texture = CZORTexture::fromKTX(stream);
			EXPECT_FALSE(one.throws) << one.name;
			expectOutcome(texture);
		}
		catch (const std::ios_base::failure&)
		{
			EXPECT_TRUE(one.throws) << one.name;
		}
	}

	const std::string padded = written({PixelType('r', 'g', 'b', 0, 8, 8, 8, 0).id, 3, 5, 1, 2, 1, 6});
	for (std::size_t length = 0; length < padded.size(); ++length)
	{
		touchAll(loadBytes(padded.substr(0, length), ".ktx"));
	}
	const std::string whole = written({ZORStandard8PixelType.id, 3, 5, 1, 2, 1, 6});
	for (std::size_t length = 0; length < whole.size(); ++length)
	{
		touchAll(loadBytes(whole.substr(0, length), ".ktx"));
		std::istringstream stream(whole.substr(0, length));
		EXPECT_THROW(CZORTexture::fromKTX(stream), std::ios_base::failure) << length;
	}
}

TEST(OneShotReadBuf, KeepsPositionsOutsideItsBlockAndReadsNothingThere)
{
	char block[] = {'a', 'b', 'c', 'd'};
	OneShotReadBuf buffer(block, sizeof(block));
	std::istream stream(&buffer);
	stream.seekg(2);
	EXPECT_EQ(stream.get(), 'c');
	stream.seekg(-1, std::ios_base::end);
	EXPECT_EQ(stream.get(), 'd');
	stream.seekg(1000);
	EXPECT_EQ(stream.tellg(), std::streampos(1000));
	stream.seekg(-1000, std::ios_base::cur);
	EXPECT_EQ(stream.get(), 'a');
	stream.seekg((1ll << 32) + 1, std::ios_base::cur);
	EXPECT_EQ(stream.get(), 'c') << "a relative offset has 32 bits";
	stream.seekg(4);
	EXPECT_EQ(stream.get(), std::char_traits<char>::eof());
}
} // namespace
