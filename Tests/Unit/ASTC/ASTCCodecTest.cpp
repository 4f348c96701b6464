#include "ASTCCodec.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "FakeEncoder.h"
#include "Platform/Platform.h"
#include "ZORTexture.h"

using namespace zortexture;

namespace
{
using Bytes = std::vector<unsigned char>;

constexpr unsigned char kUntouched = 0xCD;

Bytes someBytes(std::size_t size, unsigned int seed = 0)
{
	Bytes bytes(size);
	for (std::size_t i = 0; i < size; ++i)
	{
		bytes[i] = static_cast<unsigned char>(i * 7 + seed + 1);
	}
	return bytes;
}

CZORTexture makeTexture(PixelType format, unsigned int width, unsigned int height, unsigned int depth = 1, unsigned int levels = 1,
                        unsigned int surfaces = 1, unsigned int faces = 1, EZORTColourSpace space = eCS_lRGB)
{
	CZORTexture texture(CZORTextureHeader(format.id, height, width, depth, levels, surfaces, faces, space));
	const Bytes bytes = someBytes(texture.getDataSize());
	if (!bytes.empty())
	{
		std::memcpy(texture.getDataPtr(), bytes.data(), bytes.size());
	}
	return texture;
}

/// What a call returned, and what it left in a buffer with room for more than its result.
struct Outcome
{
	unsigned int size;
	Bytes buffer;

	/// Nothing was returned and nothing written.
	bool isRefusal() const
	{
		return size == 0 && std::all_of(buffer.begin(), buffer.end(), [](unsigned char byte) { return byte == kUntouched; });
	}

	Bytes result() const
	{
		return {buffer.begin(), buffer.begin() + size};
	}
};

Outcome compress(unsigned int width, unsigned int height, unsigned int depth, unsigned int block, int quality = 0)
{
	const Bytes pixels = someBytes(std::size_t{4} * width * height * depth);
	Outcome outcome = {0, Bytes(1000, kUntouched)};
	outcome.size =
	    ASTCCompress(pixels.data(), outcome.buffer.data(), width, height, depth, block & 0xFF, block >> 8 & 0xFF, block >> 16, quality);
	return outcome;
}

Outcome decompress(unsigned int width, unsigned int height, unsigned int depth, unsigned int format, EZORTColourSpace space = eCS_lRGB)
{
	const Bytes blocks = someBytes(1000);
	Outcome outcome = {0, Bytes(1000, kUntouched)};
	outcome.size = ASTCDecompress(blocks.data(), outcome.buffer.data(), width, height, depth, 0, 0, format, space);
	return outcome;
}

class ASTCCodec : public FakeEncoder
{
protected:
	/// Puts a file where scripts find it.
	void saveKTX(const CZORTexture& texture, const std::string& name) const
	{
		ASSERT_TRUE(texture.saveFile(path(name)));
	}

	void saveASTC(const CZORTexture& texture, const std::string& name) const
	{
		ASSERT_TRUE(texture.saveASTCFile(path(name)));
	}
};
} // namespace

TEST(ASTCBlocks, Sizes)
{
	EXPECT_EQ(astcBlockSizes.size(), 24u);
	EXPECT_EQ(getASTCBlockSizes(ePF_ASTC_4x4), 0x010404u);
	EXPECT_EQ(getASTCBlockSizes(ePF_ASTC_12x10), 0x010A0Cu);
	EXPECT_EQ(getASTCBlockSizes(ePF_ASTC_6x5x5), 0x050506u);
	EXPECT_EQ(getASTCBlockSizes(ePF_ETC1), 0x010101u);
	EXPECT_EQ(getASTCBlockSizes(ePF_NumCompressedPFs), 0x010101u);
}

TEST_F(ASTCCodec, Compression)
{
	install("cp \"$2\" in.ktx; echo \"$1 ${2##*.} ${3##*.} $4 $5\" >arguments; cp out.astc \"$3\"");
	struct
	{
		EZORTPixelFormat format;
		int quality;
		const char* arguments;
	} const cases[] = {{ePF_ASTC_6x5, 0, "-c ktx astc 6x5 -veryfast\n"},   {ePF_ASTC_4x4x3, 1, "-c ktx astc 4x4x3 -fast\n"},
	                   {ePF_ASTC_12x12, 2, "-c ktx astc 12x12 -medium\n"}, {ePF_ASTC_4x4, 3, "-c ktx astc 4x4 -thorough\n"},
	                   {ePF_ASTC_4x4, 4, "-c ktx astc 4x4 -exhaustive\n"}, {ePF_ASTC_4x4, 7, "-c ktx astc 4x4 -medium\n"},
	                   {ePF_ASTC_4x4, -1, "-c ktx astc 4x4 -medium\n"}};
	for (const auto& test : cases)
	{
		const CZORTexture expected = makeTexture(test.format, 7, 6, 2);
		saveASTC(expected, "out.astc");
		const Outcome outcome = compress(7, 6, 2, getASTCBlockSizes(test.format), test.quality);
		ASSERT_EQ(outcome.size, expected.getDataSize());
		EXPECT_EQ(outcome.result(), someBytes(outcome.size));
		EXPECT_EQ(outcome.buffer[outcome.size], kUntouched);
		EXPECT_EQ(read(path("arguments")), test.arguments);
		saveKTX(makeTexture(ZORStandard8PixelType, 7, 6, 2), "expected.ktx");
		EXPECT_EQ(read(path("in.ktx")), read(path("expected.ktx")));
		EXPECT_EQ(leftOver().size(), 0u);
	}
}

TEST_F(ASTCCodec, Decompression)
{
	install("cp \"$2\" in.astc; echo \"$1 ${2##*.} ${3##*.} $#\" >arguments; cp out.ktx \"$3\"");
	saveASTC(makeTexture(ePF_ASTC_4x4x3, 4, 6, 2), "expected.astc");
	for (const EZORTColourSpace space : {eCS_lRGB, eCS_sRGB})
	{
		saveKTX(makeTexture(ZORStandard8PixelType, 4, 6, 2), "out.ktx");
		const Outcome outcome = decompress(4, 6, 2, ePF_ASTC_4x4x3, space);
		ASSERT_EQ(outcome.size, 4u * 4 * 6 * 2);
		EXPECT_EQ(outcome.result(), someBytes(outcome.size));
		EXPECT_EQ(outcome.buffer[outcome.size], kUntouched);
		EXPECT_EQ(read(path("arguments")), space == eCS_sRGB ? "-ds astc ktx 3\n" : "-dl astc ktx 3\n");
		EXPECT_EQ(read(path("in.astc")), read(path("expected.astc")));
	}
	// Other layouts and spaces are converted: 52 of 255 in sRGB is 9 in linear light.
	CZORTexture grey(CZORTextureHeader(PixelType('r', 'g', 'b', 0, 8, 8, 8, 0).id, 6, 4, 2, 1, 1, 1, eCS_sRGB));
	std::memset(grey.getDataPtr(), 52, grey.getDataSize());
	saveKTX(grey, "out.ktx");
	const Bytes pixels = decompress(4, 6, 2, ePF_ASTC_4x4x3).result();
	ASSERT_EQ(pixels.size(), 4u * 4 * 6 * 2);
	EXPECT_EQ(Bytes(pixels.end() - 4, pixels.end()), (Bytes{9, 9, 9, 255}));
	EXPECT_EQ(leftOver().size(), 0u);
}

TEST_F(ASTCCodec, FailingPrograms)
{
	// As large as the right ones, but for the last four.
	saveASTC(makeTexture(ePF_ASTC_4x4, 8, 4), "right.astc");
	saveASTC(makeTexture(ePF_ASTC_4x4, 4, 8), "turned.astc");
	saveASTC(makeTexture(ePF_ASTC_5x4, 8, 4), "wide.astc");
	saveKTX(makeTexture(ZORStandard8PixelType, 8, 4), "right.ktx");
	saveKTX(makeTexture(ZORStandard8PixelType, 4, 8), "turned.ktx");
	saveKTX(makeTexture(ePF_ASTC_4x4, 8, 4), "blocks.ktx");
	saveKTX(makeTexture(ZORStandard8PixelType, 8, 4, 2), "deep.ktx");
	saveKTX(makeTexture(ZORStandard8PixelType, 8, 4, 1, 2), "chain.ktx");
	saveKTX(makeTexture(ZORStandard8PixelType, 8, 4, 1, 1, 2), "array.ktx");
	saveKTX(makeTexture(ZORStandard8PixelType, 8, 4, 1, 1, 1, 6), "cube.ktx");
	const std::multiset<std::string> nothing;
	const std::multiset<std::string> blocks = {".astc"};
	struct
	{
		std::string script;
		const std::multiset<std::string>& leftByCompression;
	} const cases[] = {
	    {"exit 1", nothing},
	    {"exit 127", nothing},
	    {"kill -KILL $$", nothing},
	    {"cp right.* \"$3\"; exit 1", blocks},
	    {"cp right.* \"$3\"; kill -SEGV $$", blocks},
	    {":", nothing},
	    {"rm \"$3\"", nothing},
	    {"rm \"$3\"; mkdir \"$3\"; rmdir \"$3\"", nothing},
	    {"head -c 400 /bin/sh >\"$3\"", nothing},
	    {"head -c 150 right.* >\"$3\"; truncate -s -1 \"$3\"", nothing},
	    {"cp turned.* \"$3\"", nothing},
	    {"cp wide.* \"$3\"", nothing},
	    {"cp blocks.* \"$3\"", nothing},
	    {"cp deep.* \"$3\"", nothing},
	    {"cp chain.* \"$3\"", nothing},
	    {"cp array.* \"$3\"", nothing},
	    {"cp cube.* \"$3\"", nothing},
	};
	for (const auto& test : cases)
	{
		std::string script = test.script;
		const std::size_t star = script.find(".*");
		const auto withExtension = [&](const char* extension)
		{
			return star == std::string::npos ? script : script.substr(0, star) + extension + script.substr(star + 2);
		};
		install(withExtension(".astc"));
		EXPECT_TRUE(compress(8, 4, 1, 0x010404).isRefusal()) << test.script;
		EXPECT_EQ(leftOver(), test.leftByCompression) << test.script;
		install("cp right.astc \"$3\"");
		EXPECT_EQ(compress(8, 4, 1, 0x010404).size, 32u) << "after " << test.script;
		EXPECT_EQ(leftOver(), nothing) << "after " << test.script;
		install(withExtension(".ktx"));
		EXPECT_TRUE(decompress(8, 4, 1, ePF_ASTC_4x4).isRefusal()) << test.script;
		EXPECT_EQ(leftOver(), nothing) << test.script;
	}
	install("exit 1");
	EXPECT_TRUE(isASTCEncAvailable());
	fs::remove(path("bin/astcenc"));
	const CEnvironmentValue nowhere("PATH", path("bin").c_str());
	EXPECT_FALSE(isASTCEncAvailable());
	EXPECT_TRUE(compress(8, 4, 1, 0x010404).isRefusal());
	EXPECT_TRUE(decompress(8, 4, 1, ePF_ASTC_4x4).isRefusal());
	EXPECT_EQ(leftOver(), nothing);
}

TEST_F(ASTCCodec, RefusedBeforeTheProgramRuns)
{
	install("echo $@ >>started");
	unsigned char byte = kUntouched;
	EXPECT_EQ(ASTCCompress(nullptr, &byte, 4, 4, 1, 4, 4, 1, 0), 0u);
	EXPECT_EQ(ASTCCompress(&byte, nullptr, 4, 4, 1, 4, 4, 1, 0), 0u);
	EXPECT_EQ(ASTCCompress(&byte, &byte, 4, 4, 1, 7, 7, 1, 0), 0u);
	EXPECT_EQ(ASTCCompress(&byte, &byte, 4, 0, 1, 4, 4, 1, 0), 0u);
	EXPECT_EQ(ASTCCompress(&byte, &byte, 65536, 16384, 1, 4, 4, 1, 0), 0u);
	EXPECT_EQ(ASTCDecompress(nullptr, &byte, 4, 4, 1, 4, 4, ePF_ASTC_4x4, eCS_lRGB), 0u);
	EXPECT_EQ(ASTCDecompress(&byte, nullptr, 4, 4, 1, 4, 4, ePF_ASTC_4x4, eCS_lRGB), 0u);
	EXPECT_EQ(ASTCDecompress(&byte, &byte, 4, 4, 1, 4, 4, ePF_ETC1, eCS_lRGB), 0u);
	EXPECT_EQ(ASTCDecompress(&byte, &byte, 65536, 16384, 1, 4, 4, ePF_ASTC_4x4, eCS_lRGB), 0u);

	for (const std::string& folder : {std::string(1100, 'a'), path("missing")})
	{
		const CEnvironmentValue variable("TMPDIR", folder.c_str());
		EXPECT_TRUE(compress(8, 4, 1, 0x010404).isRefusal());
		EXPECT_TRUE(decompress(8, 4, 1, ePF_ASTC_4x4).isRefusal());
	}

	// Files that cannot grow stand for a full disk.
	const auto handler = std::signal(SIGXFSZ, SIG_IGN);
	rlimit limit = {};
	getrlimit(RLIMIT_FSIZE, &limit);
	const rlimit full = {40, limit.rlim_max};
	setrlimit(RLIMIT_FSIZE, &full);
	const Outcome compressed = compress(8, 4, 1, 0x010404);
	const Outcome decompressed = decompress(8, 4, 1, ePF_ASTC_4x4);
	setrlimit(RLIMIT_FSIZE, &limit);
	std::signal(SIGXFSZ, handler);
	EXPECT_TRUE(compressed.isRefusal());
	EXPECT_TRUE(decompressed.isRefusal());
	EXPECT_EQ(leftOver().size(), 0u);
	EXPECT_EQ(read(path("started")), "");
}

TEST_F(ASTCCodec, LinksAndFilesOfOthersAreLeftAlone)
{
	saveASTC(makeTexture(ePF_ASTC_4x4, 8, 4), "out.astc");
	saveKTX(makeTexture(ZORStandard8PixelType, 8, 4), "out.ktx");
	install("cp out.\"${3##*.}\" \"$3\"");
	for (const char* extension : {"ktx", "astc"})
	{
		char name[1024];
		platform::getTempFile(name, extension);
		for (const char* target : {"victim", "nobody_yet"})
		{
			std::ofstream(path("victim")) << "precious";
			for (const bool isCompression : {true, false})
			{
				fs::create_symlink(path(target), name);
				EXPECT_NE((isCompression ? compress(8, 4, 1, 0x010404) : decompress(8, 4, 1, ePF_ASTC_4x4)).size, 0u);
				EXPECT_EQ(read(path("victim")), "precious");
				EXPECT_FALSE(fs::exists(path("nobody_yet")));
				EXPECT_EQ(leftOver().size(), 0u);
			}
		}
		std::ofstream(name) << "of another user";
		if (chown(name, 65534, 65534) == 0) // as root only
		{
			EXPECT_TRUE(compress(8, 4, 1, 0x010404).isRefusal());
			EXPECT_TRUE(decompress(8, 4, 1, ePF_ASTC_4x4).isRefusal());
			EXPECT_EQ(read(name), "of another user");
		}
		fs::remove(name);
	}
}

TEST_F(ASTCCodec, ThreadsDoNotMeet)
{
	// One block, which is the end of the pixels: each thread gets its own back.
	saveASTC(makeTexture(ePF_ASTC_4x4, 4, 4), "head.astc");
	install("{ head -c 16 head.astc; tail -c 16 \"$2\"; } >\"$3\"");
	const auto run = [](unsigned int seed)
	{
		for (unsigned int i = 0; i < 10; ++i)
		{
			const Bytes pixels = someBytes(64, seed + i);
			Bytes block(16);
			ASSERT_EQ(ASTCCompress(pixels.data(), block.data(), 4, 4, 1, 4, 4, 1, 0), 16u);
			ASSERT_EQ(block, Bytes(pixels.end() - 16, pixels.end()));
		}
	};
	std::thread other(run, 0);
	run(100);
	other.join();
	EXPECT_EQ(leftOver().size(), 0u);
}
