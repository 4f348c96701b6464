#include <iostream>

#include "Commands.h"
#include "FormatCapabilities.h"
#include "FormatNames.h"
#include "Layouts.h"
#include "Text.h"
#include "TextureDescription.h"
#include "TextureFile.h"

namespace zortex
{
using namespace zortexture;

namespace
{
/// Layouts that are shown as examples of their kind.
constexpr const char* kExampleLayouts[] = {
    "r8",       "l8",       "a8",  "la88",   "rg88",           "rgb888", "rgba8888", "bgra8888",    "rgb332", "rgb565", "rgba4444",
    "rgba5551", "argb1555", "r16", "rgba16", "abgr2.10.10.10", "r16f",   "rgba16f",  "bgr10.11.11", "r32f",   "rgba32f"};

std::string blockText(const CompressedFormat& format)
{
	unsigned int x = 0;
	unsigned int y = 0;
	unsigned int z = 0;
	blockSize(format, x, y, z);
	return std::to_string(x) + "x" + std::to_string(y) + (z > 1 ? "x" + std::to_string(z) : "");
}

/// Formats without a size cannot be in a file.
bool isStorable(const CompressedFormat& format)
{
	return bitsPerTexel(format) > 0.0;
}

/// "0-1 (fast 0, normal 1, high 1, best 1)"; empty for a codec with one quality.
std::string qualityText(const Codec& codec)
{
	if (!codec.encodes || codec.bestQuality == 0)
	{
		return {};
	}
	std::string text = "0-" + std::to_string(codec.bestQuality) + " (";
	for (std::size_t i = 0; i < std::size(kQualityNames); ++i)
	{
		text += (i != 0 ? ", " : "") + std::string(kQualityNames[i]) + " " + std::to_string(codec.namedQualities[i]);
	}
	return text + ")";
}

Json compressedJson(const CompressedFormat& format)
{
	unsigned int block[3] = {};
	blockSize(format, block[0], block[1], block[2]);
	Json json = {{"name", format.name},
	             {"id", static_cast<unsigned int>(format.id)},
	             {"codec", format.codec->title},
	             {"channels", format.channels},
	             {"bitsPerPixel", bitsPerTexel(format)},
	             {"block", {block[0], block[1], block[2]}},
	             {"defaultType", channelTypeName(defaultChannelType(PixelType(format.id)))},
	             {"read", isStorable(format)},
	             {"written", isStorable(format)},
	             {"decoded", format.codec->decodes},
	             {"encoded", format.codec->encodes}};
	if (format.codec->encodes)
	{
		Json named;
		for (std::size_t i = 0; i < std::size(kQualityNames); ++i)
		{
			named[std::string(kQualityNames[i])] = format.codec->namedQualities[i];
		}
		json["bestQuality"] = format.codec->bestQuality;
		json["namedQualities"] = named;
	}
	return json;
}

Json formatsJson()
{
	Json json;
	for (const CompressedFormat& format : compressedFormats())
	{
		json["compressed"].push_back(compressedJson(format));
	}
	for (const char* name : kExampleLayouts)
	{
		const NamedFormat format = parseFormat(name).value_or(NamedFormat());
		json["exampleLayouts"].push_back({{"name", name},
		                                  {"bitsPerPixel", ZORTGetBitsPerPixel(format.pixelType.id)},
		                                  {"defaultType", channelTypeName(format.type)},
		                                  {"read", true},
		                                  {"written", true},
		                                  {"decoded", true},
		                                  {"encoded", true}});
	}
	json["channelTypes"] = kChannelTypeNames;
	for (const Container& container : containers())
	{
		json["containers"].push_back(
		    {{"extension", container.extension}, {"title", container.title}, {"read", container.reads}, {"written", container.writes}});
	}
	return json;
}

std::string mark(bool value)
{
	return value ? "yes" : "-";
}

std::string formatsText()
{
	std::vector<std::vector<std::string>> rows = {
	    {"FORMAT", "BPP", "BLOCK", "CHANNELS", "READ", "WRITTEN", "DECODED", "ENCODED", "QUALITIES"}};
	for (const CompressedFormat& format : compressedFormats())
	{
		rows.push_back({std::string(format.name), shortNumber(bitsPerTexel(format)), blockText(format), std::string(format.channels),
		                mark(isStorable(format)), mark(isStorable(format)), mark(format.codec->decodes), mark(format.codec->encodes),
		                qualityText(*format.codec)});
	}
	for (const char* name : kExampleLayouts)
	{
		const NamedFormat format = parseFormat(name).value_or(NamedFormat());
		rows.push_back({name, std::to_string(ZORTGetBitsPerPixel(format.pixelType.id)), "1x1", imageChannels(format.pixelType), "yes",
		                "yes", "yes", "yes"});
	}
	std::string text = alignedTable(rows);
	text += "\nREAD and WRITTEN: in texture files. DECODED: converted from. ENCODED: converted to, with --format.\n"
	        "\nThe last rows are examples: an uncompressed format is any one to four of the letters r g b a l i x (luminance,\n"
	        "intensity, unused), followed by their bits: one digit each (rgb565), one number for all (rgba16), or dots between\n"
	        "(bgr10.11.11); a final f makes them floats (r16f).\n"
	        "\nChannel types for --type:";
	for (const std::string_view name : kChannelTypeNames)
	{
		text += " " + std::string(name);
	}
	text += "\nFiles:";
	for (const Container& container : containers())
	{
		text += " ." + std::string(container.extension) + " (" + std::string(container.title) + ")";
	}
	return text + "\n";
}
} // namespace

void runFormats(bool isJson)
{
	std::cout << (isJson ? jsonText(formatsJson()) : formatsText());
}
} // namespace zortex
