#include "OtherContainers.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "AtomicOutput.h"
#include "FormatNames.h"
#include "Layouts.h"
#include "Refusal.h"
#include "Text.h"

namespace zortex
{
using namespace zortexture;

namespace
{
/// D3DFORMAT values that the classic DDS header has no masks for; such textures go into the extended header.
constexpr unsigned int kD3DFormatX8R8G8B8 = 22;
constexpr unsigned int kFourCCRGBG = 0x47424752u;
constexpr unsigned int kFourCCGRGB = 0x42475247u;

constexpr unsigned long long kLegacyHeaderBytes = 52;

struct LegacyApiName
{
	const char* name;
	ELegacyApi api;
};
constexpr LegacyApiName kLegacyApis[] = {
    {"gl", eLegacyApi_GL1},    {"gl1", eLegacyApi_GL1},   {"gl2", eLegacyApi_GL2},
    {"gl3", eLegacyApi_GL3},   {"d3d", eLegacyApi_D3D1},  {"d3d1", eLegacyApi_D3D1},
    {"d3d2", eLegacyApi_D3D2}, {"dxgi", eLegacyApi_DXGI}, {"openvg", eLegacyApi_OpenVG},
};

bool isASTC(PixelType format)
{
	return format.id >= ePF_ASTC_4x4 && format.id <= ePF_ASTC_6x6x6;
}

std::string errorText()
{
	return errno != 0 ? std::strerror(errno) : "the disk may be full";
}

CZORTextureHeader withTarget(const CZORTextureHeader& shape, const Target& target)
{
	CZORTextureHeader header(shape);
	header.setPixelFormat(target.pixelType);
	header.setChannelType(target.type);
	header.setColourSpace(target.space);
	return header;
}

bool isClassicDds(const CZORTextureHeader& header)
{
	const unsigned int format = header.getD3DFormat();
	return header.getNumArrayMembers() == 1 && format != 0 && format != kD3DFormatX8R8G8B8 && format != kFourCCRGBG &&
	       format != kFourCCGRGB;
}

bool canHold(const CZORTextureHeader& header, std::string_view extension)
{
	if (extension == "ktx")
	{
		unsigned int internalFormat = 0;
		unsigned int format = 0;
		unsigned int type = 0;
		return header.getOGLFormat(internalFormat, format, type);
	}
	if (extension == "dds")
	{
		return isClassicDds(header) || header.getDXGIFormat() != 0;
	}
	return extension != "astc" || isASTC(header.getPixelType());
}

/// Whether some level has rows that a KTX file pads to four bytes.
bool hasPaddedRows(const CZORTextureHeader& header)
{
	if (header.getPixelType().isCompressed())
	{
		return false;
	}
	for (unsigned int level = 0; level < header.getNumMIPLevels(); ++level)
	{
		if (header.getWidth(level) * (header.getBitsPerPixel() / 8) % 4 != 0)
		{
			return true;
		}
	}
	return false;
}

/// The layout of four channels that holds what a layout holds.
void widen(Target& target)
{
	const unsigned int bits = widestChannel(target.pixelType);
	if (isFloatType(target.type))
	{
		target.pixelType = makeLayout("rgba", bits <= 16 ? 16 : 32);
		target.type = eVT_SignedFloat;
		return;
	}
	target.pixelType = makeLayout("rgba", bits <= 8 ? 8 : 16);
	target.type = bits <= 8 ? eVT_UnsignedByteNorm : eVT_UnsignedShortNorm;
}

/// Other programs read the channels of the classic header's 8-bit formats as bits of one number. Stored as bytes in the order
/// of their letters, red and blue would change places.
void packForDds(const CZORTextureHeader& shape, bool isFormatAskedFor, Target& target, std::vector<std::string>& notes)
{
	const std::string name = formatName(target.pixelType, target.type);
	if (target.type == eVT_UnsignedByteNorm && target.pixelType.id == makeLayout("la", 8).id && !isFormatAskedFor)
	{
		target.pixelType = makeLayout("al", 8);
		target.type = eVT_UnsignedIntegerNorm;
		notes.push_back("written as al88: a DDS file has no " + name);
	}
	if (target.pixelType.id == makeLayout("xrgb", 8).id)
	{
		target.pixelType = makeLayout("argb", 8);
		target.type = eVT_UnsignedIntegerNorm;
		notes.push_back("written as argb8888: a DDS file has no " + name);
	}
	Target packed = target;
	packed.type = eVT_UnsignedIntegerNorm;
	if (target.type == eVT_UnsignedByteNorm && !target.pixelType.isCompressed() && channelCount(target.pixelType) > 1 &&
	    isClassicDds(withTarget(shape, target)) && isClassicDds(withTarget(shape, packed)))
	{
		target = packed;
		notes.push_back("the channels are packed as the bits of one number (unorm32), which is how other programs read " + name);
	}
}
} // namespace

const ELegacyApi* findLegacyApi(const std::string& name)
{
	for (const LegacyApiName& entry : kLegacyApis)
	{
		if (lowerCase(name) == entry.name)
		{
			return &entry.api;
		}
	}
	return nullptr;
}

void fitTarget(const CZORTextureHeader& shape, std::string_view extension, bool isFormatAskedFor, Target& target,
               std::vector<std::string>& notes)
{
	const std::string asked = formatName(target.pixelType, target.type);
	if (extension == "dds" && !target.pixelType.isCompressed())
	{
		packForDds(shape, isFormatAskedFor, target, notes);
	}
	if (extension != "astc" && !target.pixelType.isCompressed() && !isFormatAskedFor)
	{
		if (!canHold(withTarget(shape, target), extension))
		{
			widen(target);
			notes.push_back("written as " + formatName(target.pixelType, target.type) + ": the container has no " + asked);
		}
		else if (extension == "ktx" && hasPaddedRows(withTarget(shape, target)))
		{
			widen(target);
			notes.push_back("written as " + formatName(target.pixelType, target.type) + ": rows of " + asked +
			                " would be padded, and such a file does not read back whole");
		}
	}

	const CZORTextureHeader header = withTarget(shape, target);
	if (!canHold(header, extension))
	{
		const std::string what = extension == "astc" ? "ASTC formats only" : "no " + formatName(target.pixelType, target.type);
		throw UsageError("--format: a ." + std::string(extension) + " file holds " + what);
	}
	if (extension == "ktx" && isFormatAskedFor && hasPaddedRows(header))
	{
		notes.push_back("rows of " + asked +
		                " are padded to four bytes: other programs read such a KTX file, this one does not read it whole");
	}
	if (extension == "dds" && target.space == eCS_sRGB && isClassicDds(header))
	{
		notes.push_back("the classic DDS header cannot tell sRGB: the file reads as linear");
	}
	if (extension == "astc" && target.space == eCS_sRGB)
	{
		notes.push_back("an .astc file cannot tell sRGB: it reads as linear");
	}
}

CZORTexture loadOther(const std::string& path, std::string_view extension, unsigned long long fileBytes)
{
	CZORTexture texture;
	try
	{
		if (extension == "ktx")
		{
			// The stream's loader tells a file that is cut short, which the path's keeps to itself.
			std::ifstream stream(path, std::ios::binary);
			texture = CZORTexture::fromKTX(stream);
		}
		else
		{
			texture = CZORTexture(path.c_str());
		}
	}
	catch (const std::ios_base::failure&)
	{
		throw Refusal(path, "is cut short, or its header is damaged");
	}
	const ZORTextureHeaderV3 header = texture.getFileHeader();
	if (texture.getPixelType().id == ePF_NumCompressedPFs)
	{
		throw Refusal(path, "is no ." + std::string(extension) + " file, or holds a format that is not known");
	}
	if (!texture.isDataComplete() || texture.getDataSize() == 0)
	{
		throw Refusal(path, header.numMipMaps == 0 ? "holds no images" : "is cut short, or its header is damaged");
	}
	if (texture.getDataSize() > fileBytes)
	{
		throw Refusal(path, "is cut short: " + std::to_string(fileBytes) + " bytes for " + std::to_string(texture.getDataSize()) +
		                        " bytes of pixels");
	}
	return texture;
}

void saveOther(const CZORTexture& texture, const std::string& path, std::string_view extension)
{
	AtomicOutput output(path);
	errno = 0;
	bool isSaved = false;
	if (extension == "ktx")
	{
		// Through a stream of our own, which knows whether all bytes arrived.
		std::ofstream stream(output.path(), std::ios::binary);
		texture.toKTX(stream);
		stream.close();
		isSaved = stream.good();
	}
	else if (extension == "astc")
	{
		isSaved = texture.saveASTCFile(output.path());
	}
	else
	{
		isSaved = texture.saveFile(output.path());
	}
	if (isSaved && extension == "h")
	{
		// Its writer tests nothing, so the end of the text is looked at.
		static constexpr char kEnd[] = "};\n";
		char end[sizeof(kEnd)] = {};
		std::ifstream written(output.path(), std::ios::binary);
		written.seekg(-static_cast<int>(sizeof(kEnd) - 1), std::ios::end);
		written.read(end, sizeof(kEnd) - 1);
		isSaved = std::strcmp(end, kEnd) == 0;
	}
	if (!isSaved)
	{
		throw Refusal(path, "cannot be written: " + errorText());
	}
	output.commit();
}

void saveLegacy(const CZORTexture& texture, const std::string& path, ELegacyApi api)
{
	if (texture.getDepth() > 1)
	{
		throw Refusal(path, "cannot be written: a native file of version 2 holds no volumes");
	}
	if (MapNewFormatToLegacyEnum(texture.getPixelType(), texture.getColourSpace(), texture.getChannelType(), texture.isPreMultiplied(),
	                             api) == eLegacyPixelType_None)
	{
		throw Refusal(path, "cannot be written: version 2 has no number for " +
		                        formatName(texture.getPixelType(), texture.getChannelType()) +
		                        " in this family; choose a --format, a --type or another --legacy");
	}
	AtomicOutput output(path);
	errno = 0;
	if (!texture.saveFileLegacyZOR(output.path(), api) || output.size() != kLegacyHeaderBytes + texture.getDataSize())
	{
		throw Refusal(path, "cannot be written: " + errorText());
	}
	output.commit();
}
} // namespace zortex
