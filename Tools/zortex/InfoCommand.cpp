#include <algorithm>
#include <iostream>

#include "Commands.h"
#include "Text.h"
#include "TextureDescription.h"
#include "TextureFile.h"

namespace zortex
{
namespace
{
using Rows = std::vector<std::vector<std::string>>;

std::string yesNo(bool value)
{
	return value ? "yes" : "no";
}

std::string joined(const Json& array, const std::string& separator)
{
	std::string text;
	for (const Json& element : array)
	{
		text += (text.empty() ? "" : separator) + (element.is_string() ? element.get<std::string>() : element.dump());
	}
	return text;
}

std::string formatText(const Json& json)
{
	std::string text = json["format"].get<std::string>() + ", " + shortNumber(json["bitsPerPixel"].get<double>()) + " bits per pixel";
	if (json.contains("block"))
	{
		const Json& block = json["block"];
		text += ", blocks of " + (block[2] == 1 ? block[0].dump() + "x" + block[1].dump() : joined(block, "x"));
	}
	return text;
}

void addMetaDataRows(const Json& json, Rows& rows)
{
	const Json& orientation = json["orientation"];
	rows.push_back({"orientation", joined(Json::array({orientation["x"], orientation["y"], orientation["z"]}), ", ")});
	if (json.contains("bumpMap"))
	{
		rows.push_back({"bump map", "scale " + joined(Json::array({json["bumpMap"]["scale"]}), "") + ", order \"" +
		                                json["bumpMap"]["order"].get<std::string>() + "\""});
	}
	if (json.contains("atlas"))
	{
		rows.push_back({"atlas", joined(json["atlas"], " ")});
	}
	if (json.contains("cubeOrder"))
	{
		rows.push_back({"cube order", json["cubeOrder"].get<std::string>()});
	}
	rows.push_back({"border", joined(json["border"], ", ")});
	rows.push_back(
	    {"metadata", counted(json["metadata"].size(), "block") + ", " + counted(json["metadataBytes"].get<unsigned int>(), "byte")});
	for (const Json& block : json["metadata"])
	{
		static constexpr std::size_t kShownDigits = 32;
		const std::string data = block.value("data", std::string());
		rows.push_back({"", block["fourCC"].get<std::string>() + " key " + block["key"].dump() +
		                        (block.contains("name") ? " (" + block["name"].get<std::string>() + ")" : "") + ", " +
		                        counted(block["bytes"].get<unsigned int>(), "byte") + (data.empty() ? "" : ": ") +
		                        data.substr(0, kShownDigits) + (data.size() > kShownDigits ? "..." : "")});
	}
}

std::string infoText(const Json& json)
{
	Rows rows;
	rows.push_back({"file", json["file"].get<std::string>() + " (" + json["container"].get<std::string>() + ", " +
	                            counted(json["fileBytes"].get<unsigned long long>(), "byte") + ")"});
	if (json.contains("problem"))
	{
		rows.push_back({"problem", json["problem"].get<std::string>()});
	}
	rows.push_back({"format", formatText(json) + " (" + json["formatId"].get<std::string>() + ")"});
	for (const auto& [key, title] :
	     {std::pair("opengl", "OpenGL"), std::pair("vulkan", "Vulkan"), std::pair("d3d", "Direct3D"), std::pair("dxgi", "DXGI")})
	{
		const Json& name = json["apiFormats"][key];
		rows.push_back({title, name.is_null() ? "-" : name.get<std::string>()});
	}
	rows.push_back({"channel type", json["channelType"].get<std::string>()});
	rows.push_back({"colour space", json["colourSpace"].get<std::string>()});
	rows.push_back({"size", joined(Json::array({json["width"], json["height"], json["depth"]}), "x")});
	rows.push_back({"surfaces", json["surfaces"].dump()});
	rows.push_back({"faces", json["faces"].dump()});
	rows.push_back({"premultiplied", yesNo(json["premultiplied"].get<bool>())});
	rows.push_back({"file compressed", yesNo(json["fileCompressed"].get<bool>())});
	rows.push_back({"pixel data", json["dataBytes"].is_null() ? "unknown" : counted(json["dataBytes"].get<unsigned int>(), "byte")});
	rows.push_back({"MIP levels", json["mipLevels"].dump()});
	unsigned int level = 0;
	for (const Json& entry : json["levels"])
	{
		rows.push_back({"", std::to_string(level++) + ": " + joined(Json::array({entry["width"], entry["height"], entry["depth"]}), "x") +
		                        ", " + counted(entry["imageBytes"].get<unsigned int>(), "byte") + " an image"});
	}
	addMetaDataRows(json, rows);
	return alignedTable(rows);
}
} // namespace

void runInfo(const std::string& path, bool isJson)
{
	const InspectedFile file = inspectTexture(path);
	Json json = {{"file", path}, {"container", file.container->title}, {"fileBytes", file.fileBytes}, {"loadable", file.problem.empty()}};
	if (!file.problem.empty())
	{
		json["problem"] = file.problem;
	}
	json.update(describeTexture(file.header));
	std::cout << (isJson ? jsonText(json) : infoText(json));
}
} // namespace zortex
