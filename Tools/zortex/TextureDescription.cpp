#include "TextureDescription.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "FormatCapabilities.h"
#include "FormatNames.h"
#include "Layouts.h"
#include "Text.h"

namespace zortex
{
using namespace zortexture;

namespace
{
/// Levels that are listed; a header may claim any number.
constexpr unsigned int kMaxListedLevels = 256;

Json jsonNumber(float value)
{
	return std::isfinite(value) ? Json(static_cast<double>(value)) : Json(std::isnan(value) ? "nan" : value > 0 ? "inf" : "-inf");
}

std::string hexNumber(unsigned long long value, unsigned int digits)
{
	static constexpr char kDigits[] = "0123456789abcdef";
	std::string text(digits, '0');
	for (unsigned int i = 0; i < digits; ++i)
	{
		text[digits - 1 - i] = kDigits[(value >> (4 * i)) & 15];
	}
	return "0x" + text;
}

Json describeLevels(const CZORTextureHeader& header)
{
	Json levels = Json::array();
	const unsigned int count = std::min(header.getNumMIPLevels(), kMaxListedLevels);
	for (unsigned int level = 0; level < count; ++level)
	{
		levels.push_back({{"width", header.getWidth(level)},
		                  {"height", header.getHeight(level)},
		                  {"depth", header.getDepth(level)},
		                  {"imageBytes", header.getDataSize(static_cast<int>(level), false, false)}});
	}
	return levels;
}

Json describeOrientation(const CZORTextureHeader& header)
{
	return {{"x", (header.getOrientation(eAxis_X) & eOrient_Left) != 0 ? "left" : "right"},
	        {"y", (header.getOrientation(eAxis_Y) & eOrient_Up) != 0 ? "up" : "down"},
	        {"z", (header.getOrientation(eAxis_Z) & eOrient_Out) != 0 ? "out" : "in"}};
}

const char* ownKeyName(unsigned int key)
{
	static constexpr const char* kNames[] = {"atlas", "bump map", "cube order", "orientation", "border", "padding"};
	return key < std::size(kNames) ? kNames[key] : nullptr;
}

/// Every block as it is stored.
Json describeBlocks(const CZORTextureHeader& header)
{
	Json blocks = Json::array();
	const MetaDataMap& table = *header.getMetaDataMap();
	for (unsigned int i = 0; i < table.size; ++i)
	{
		for (unsigned int j = 0; j < table.values[i].size; ++j)
		{
			const MetaDataBlock& block = table.values[i].values[j];
			const char* name = block.fourCC == kZORTextureMagic ? ownKeyName(block.key) : nullptr;
			Json entry = {{"fourCC", hexNumber(block.fourCC, 8)}, {"key", block.key}, {"bytes", block.dataSize}};
			if (name != nullptr)
			{
				entry["name"] = name;
			}
			if (block.fourCC != kZORTextureMagic || block.key != kMetaKeyPadding)
			{
				entry["data"] = block.data != nullptr ? hexBytes(block.data, block.dataSize) : "";
			}
			blocks.push_back(entry);
		}
	}
	return blocks;
}

/// The name of an API's constant; the characters of a FourCC code; null where the format has none.
Json constantName(EGraphicsApi api, unsigned int value)
{
	if (value == 0)
	{
		return nullptr;
	}
	if (const char* name = getFormatConstantName(api, value))
	{
		return name;
	}
	const char characters[] = {static_cast<char>(value), static_cast<char>(value >> 8), static_cast<char>(value >> 16),
	                           static_cast<char>(value >> 24)};
	return printable(std::string(characters, sizeof(characters)));
}

/// The format in the terms of the graphics APIs.
Json describeApis(const CZORTextureHeader& header)
{
	unsigned int internalFormat = 0;
	unsigned int format = 0;
	unsigned int type = 0;
	const bool isKnown = header.getOGLFormat(internalFormat, format, type);
	return {{"opengl", constantName(eApi_OpenGL, isKnown ? internalFormat : 0)},
	        {"vulkan", constantName(eApi_Vulkan, header.getVulkanFormat())},
	        {"d3d", constantName(eApi_Direct3D, header.getD3DFormat())},
	        {"dxgi", constantName(eApi_DXGI, header.getDXGIFormat())}};
}

void describeMetaData(const CZORTextureHeader& header, Json& json)
{
	json["orientation"] = describeOrientation(header);
	if (header.isBumpMap())
	{
		json["bumpMap"] = {{"scale", jsonNumber(header.getBumpMapScale())}, {"order", printable(header.getBumpMapOrder())}};
	}
	if (const unsigned int members = header.getNumTextureAtlasMembers(); members != 0 && header.getTextureAtlasData() != nullptr)
	{
		Json atlas = Json::array();
		for (unsigned int i = 0; i < members; ++i)
		{
			float value = 0.0f;
			std::memcpy(&value, reinterpret_cast<const unsigned char*>(header.getTextureAtlasData()) + i * sizeof(value), sizeof(value));
			atlas.push_back(jsonNumber(value));
		}
		json["atlas"] = atlas;
	}
	if (const std::string order = header.getCubeMapOrder(); !order.empty())
	{
		json["cubeOrder"] = printable(order);
	}
	unsigned int border[3] = {};
	header.getBorder(border[0], border[1], border[2]);
	json["border"] = {border[0], border[1], border[2]};
	json["metadataBytes"] = header.getMetaDataSize();
	json["metadata"] = describeBlocks(header);
}
} // namespace

Json describeTexture(const CZORTextureHeader& header)
{
	const PixelType pixelType = header.getPixelType();
	const CompressedFormat* row = findCompressedFormat(pixelType);
	const ZORTextureHeaderV3 raw = header.getFileHeader();

	Json json;
	json["format"] = formatName(pixelType, header.getChannelType());
	json["formatId"] = hexNumber(pixelType.id, 16);
	json["compressed"] = pixelType.isCompressed();
	json["channelType"] = channelTypeName(header.getChannelType());
	json["colourSpace"] = colourSpaceName(header.getColourSpace());
	json["bitsPerPixel"] = row != nullptr ? bitsPerTexel(*row) : header.getBitsPerPixel();
	if (row != nullptr)
	{
		unsigned int block[3] = {};
		blockSize(*row, block[0], block[1], block[2]);
		json["block"] = {block[0], block[1], block[2]};
	}
	json["apiFormats"] = describeApis(header);
	json["width"] = raw.width;
	json["height"] = raw.height;
	json["depth"] = raw.depth;
	json["mipLevels"] = raw.numMipMaps;
	json["surfaces"] = raw.numSurfaces;
	json["faces"] = raw.numFaces;
	json["premultiplied"] = header.isPreMultiplied();
	json["fileCompressed"] = header.isFileCompressed();
	json["flags"] = raw.flags;
	json["dataBytes"] = raw.numMipMaps <= kMaxListedLevels ? Json(header.getDataSize()) : Json();
	json["levels"] = describeLevels(header);
	describeMetaData(header, json);
	return json;
}

std::string summariseTexture(const CZORTextureHeader& header)
{
	std::string text = formatName(header.getPixelType(), header.getChannelType()) + ", " + std::to_string(header.getWidth()) + "x" +
	                   std::to_string(header.getHeight());
	text += header.getDepth() != 1 ? "x" + std::to_string(header.getDepth()) : "";
	text += header.getNumMIPLevels() != 1 ? ", " + counted(header.getNumMIPLevels(), "level") : "";
	text += header.getNumArrayMembers() != 1 ? ", " + counted(header.getNumArrayMembers(), "surface") : "";
	text += header.getNumFaces() != 1 ? ", " + counted(header.getNumFaces(), "face") : "";
	text += ", " + channelTypeName(header.getChannelType()) + ", " + colourSpaceName(header.getColourSpace());
	return text + (header.isPreMultiplied() ? ", premultiplied" : "");
}

std::string jsonText(const Json& json)
{
	return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}
} // namespace zortex
