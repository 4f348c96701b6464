// The external encoder that the library starts: exactly the command lines that the library sends, over the installed codec library.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <string>

#include "Codec.h"

namespace
{
using namespace zortexture;
using namespace astcenc;

constexpr int kExitRefused = 1;
constexpr int kExitUsage = 2;

constexpr const char* kUsage = "usage: astcenc -c IN.ktx OUT.astc BLOCK -veryfast|-fast|-medium|-thorough|-exhaustive\n"
                               "       astcenc -dl|-ds IN.astc OUT.ktx\n"
                               "BLOCK is the width, the height and, of a volume's, the depth of a block: 6x5 or 4x4x3\n";

/// A command line that is none of the program's.
struct UsageError : std::runtime_error
{
	using std::runtime_error::runtime_error;
};

[[noreturn]] void refuse(const std::string& path, const std::string& reason)
{
	throw std::runtime_error(path + ": " + reason);
}

bool endsWith(const std::string& text, const std::string& end)
{
	return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

void checkExtension(const std::string& path, const std::string& extension)
{
	if (!endsWith(path, extension))
	{
		throw UsageError(path + ": the name of a " + extension + " file is expected");
	}
}

EZORTPixelFormat parseBlock(const std::string& text)
{
	for (const auto& [format, block] : astcBlockSizes)
	{
		const std::string flat = std::to_string(block[0]) + "x" + std::to_string(block[1]);
		if (text == (block[2] == 1 ? flat : flat + "x" + std::to_string(block[2])))
		{
			return format;
		}
	}
	throw UsageError(text + ": no ASTC format has such blocks");
}

float parseQuality(const std::string& text)
{
	const auto* const found = std::find_if(std::begin(kQualitySwitches), std::end(kQualitySwitches),
	                                       [&text](const QualitySwitch& row) { return text == row.name; });
	if (found == std::end(kQualitySwitches))
	{
		throw UsageError(text + ": no such quality");
	}
	return found->effort;
}

void compress(const std::string& input, const std::string& output, const std::string& block, const std::string& quality)
{
	checkExtension(input, ".ktx");
	checkExtension(output, ".astc");
	const EZORTPixelFormat format = parseBlock(block);
	const float effort = parseQuality(quality);

	std::ifstream stream(input, std::ios_base::binary);
	const CZORTexture pixels = CZORTexture::fromKTX(stream);
	if (pixels.getPixelType().id != ZORStandard8PixelType.id || pixels.getChannelType() != eVT_UnsignedByteNorm ||
	    pixels.getNumMIPLevels() != 1 || pixels.getNumArrayMembers() != 1 || pixels.getNumFaces() != 1 || !pixels.isDataComplete())
	{
		refuse(input, "is no KTX file of one image with four 8-bit channels");
	}
	if (!encode(pixels, format, effort).saveASTCFile(output))
	{
		refuse(output, "cannot be written");
	}
}

void decompress(const std::string& input, const std::string& output, bool isSRGB)
{
	checkExtension(input, ".astc");
	checkExtension(output, ".ktx");
	std::ifstream in(input, std::ios_base::binary);
	const CZORTexture blocks = CZORTexture::fromASTC(in);
	if (!blocks.isDataComplete())
	{
		refuse(input, "is no .astc file");
	}
	const CZORTexture pixels = decode(blocks, isSRGB); // a file that is refused leaves the output as it was
	std::ofstream out(output, std::ios_base::binary);
	pixels.toKTX(out);
	out.close();
	if (!out)
	{
		std::remove(output.c_str()); // what came of it is of no use
		refuse(output, "cannot be written");
	}
}

void run(int argc, char** argv)
{
	const std::string mode = argc > 1 ? argv[1] : "";
	if (mode == "-c" && argc == 6)
	{
		compress(argv[2], argv[3], argv[4], argv[5]);
	}
	else if ((mode == "-dl" || mode == "-ds") && argc == 4)
	{
		decompress(argv[2], argv[3], mode == "-ds");
	}
	else
	{
		throw UsageError("no such command line");
	}
}
} // namespace

int main(int argc, char** argv)
{
	try
	{
		run(argc, argv);
		return 0;
	}
	catch (const UsageError& error)
	{
		std::fprintf(stderr, "astcenc: %s\n%s", error.what(), kUsage);
		return kExitUsage;
	}
	catch (const std::ios_base::failure&)
	{
		std::fprintf(stderr, "astcenc: %s: cannot be read to its end\n", argv[2]);
	}
	catch (const std::bad_alloc&)
	{
		std::fputs("astcenc: not enough memory\n", stderr);
	}
	catch (const std::exception& error)
	{
		std::fprintf(stderr, "astcenc: %s\n", error.what());
	}
	return kExitRefused;
}
