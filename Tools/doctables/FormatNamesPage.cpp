#include <algorithm>
#include <set>

#include "DXGIFormatTable.h"
#include "Direct3DFormatTable.h"
#include "DocTables.h"
#include "FormatCapabilities.h"
#include "FormatMaps.h"
#include "FormatNames.h"
#include "OpenGLFormatTable.h"
#include "VulkanFormatTable.h"

namespace doctables
{
using namespace zortexture;

namespace
{
constexpr const char* kPageHead = R"(# Names of formats in the graphics APIs

<!-- Written by the build target doc_tables from the tables in Library/Source/FormatMaps. Not edited by hand. -->

What the functions `getOpenGLFormat`, `getVulkanFormat`, `getDirect3DFormat` and `getDirectXGIFormat` (FormatMaps.h) give for a
format, a channel type and a colour space. Cases that all of them refuse have no row. Channel type *any* is
each one, *signed* and *unsigned* are all of the kind, *other* is each one without a row of its own in the same colour space. *Both*
colour spaces have the same names.

The OpenGL column is the sized internal format, the OpenGL ES column the base internal format, which is the pixel format too, with the
type of uncompressed pixels. Names in quotes are FourCC codes.
)";

constexpr const char* kPageTail = R"(
## Constants that come back as something else

The functions `getZorvexFormatOGL`, `getZorvexFormatVulkan`, `getZorvexFormatD3D` and `getZorvexFormatDXGI` go the other way. For most
constants they give a format that goes out as the same constant. These are the exceptions: constants whose format goes out as
another one or as none, and constants that go out and are refused when they come back. OpenGL's unsized internal formats, such as
`GL_RGB`, take their widths from the type and are left out here.
)";

/// A format as the maps take it.
struct Case
{
	unsigned long long pixelFormat;
	EZORTVariableType channelType;
	EZORTColourSpace colourSpace;
};

/// A constant by its published name; the characters of a FourCC code; empty for none.
std::string constantText(EGraphicsApi api, unsigned int value)
{
	if (value == kNoConstant)
	{
		return {};
	}
	if (const char* name = getFormatConstantName(api, value))
	{
		return std::string("`") + name + "`";
	}
	std::string code;
	for (unsigned int shift = 0; shift < 32; shift += 8)
	{
		code += static_cast<char>(value >> shift);
	}
	return "\"" + code + "\"";
}

/// The constant that a format goes out as; kNoConstant for none.
unsigned int outgoing(EGraphicsApi api, const Case& format)
{
	unsigned int constant = kNoConstant;
	unsigned int unused[4] = {};
	bool isKnown = false;
	switch (api)
	{
	case eApi_OpenGL:
		isKnown = getOpenGLFormat(format.pixelFormat, format.channelType, format.colourSpace, constant, unused[0], unused[1], unused[2],
		                          unused[3]);
		break;
	case eApi_Vulkan:
		isKnown = getVulkanFormat(format.pixelFormat, format.channelType, format.colourSpace, constant);
		break;
	case eApi_Direct3D:
		isKnown = getDirect3DFormat(format.pixelFormat, format.channelType, format.colourSpace, constant);
		break;
	case eApi_DXGI:
		isKnown = getDirectXGIFormat(format.pixelFormat, format.channelType, format.colourSpace, constant);
		break;
	}
	return isKnown ? constant : kNoConstant;
}

/// The format that a constant comes back as.
std::optional<Case> incoming(EGraphicsApi api, unsigned int constant)
{
	Case format = {};
	bool isPreMultiplied = false;
	bool isKnown = false;
	switch (api)
	{
	case eApi_OpenGL:
		isKnown = getZorvexFormatOGL(format.pixelFormat, format.channelType, format.colourSpace, constant, 0, 0);
		break;
	case eApi_Vulkan:
		isKnown = getZorvexFormatVulkan(format.pixelFormat, format.channelType, format.colourSpace, constant);
		break;
	case eApi_Direct3D:
		isKnown = getZorvexFormatD3D(format.pixelFormat, format.channelType, format.colourSpace, isPreMultiplied, constant);
		break;
	case eApi_DXGI:
		isKnown = getZorvexFormatDXGI(format.pixelFormat, format.channelType, format.colourSpace, constant);
		break;
	}
	return isKnown ? std::optional(format) : std::nullopt;
}

/// The names of a format: OpenGL, OpenGL ES, Vulkan, Direct3D 9, DXGI.
Row apiNames(const Case& format)
{
	unsigned int constants[5] = {};
	const bool isKnown = getOpenGLFormat(format.pixelFormat, format.channelType, format.colourSpace, constants[0], constants[1],
	                                     constants[2], constants[3], constants[4]);
	std::string embedded;
	if (isKnown)
	{
		embedded = constantText(eApi_OpenGL, constants[1]);
		embedded += constants[3] != 0 ? ", " + constantText(eApi_OpenGL, constants[3]) : "";
	}
	return {isKnown ? constantText(eApi_OpenGL, constants[0]) : "", embedded, constantText(eApi_Vulkan, outgoing(eApi_Vulkan, format)),
	        constantText(eApi_Direct3D, outgoing(eApi_Direct3D, format)), constantText(eApi_DXGI, outgoing(eApi_DXGI, format))};
}

bool isNameless(const Row& names)
{
	return std::all_of(names.begin(), names.end(), [](const std::string& name) { return name.empty(); });
}

/// Channel types with the same names for a format.
struct TypeGroup
{
	Row names;
	std::vector<EZORTVariableType> types;
};

std::string typesText(const TypeGroup& group)
{
	if (group.types.size() == eVT_NumVarTypes)
	{
		return "any";
	}
	if (group.types.size() > eVT_NumVarTypes / 2)
	{
		return "other";
	}
	const auto count = std::count_if(group.types.begin(), group.types.end(), [](EZORTVariableType type) { return isSigned(type); });
	if (group.types.size() == eVT_NumVarTypes / 2 && (count == 0 || count == eVT_NumVarTypes / 2))
	{
		return count == 0 ? "unsigned" : "signed";
	}
	std::string text;
	for (const EZORTVariableType type : group.types)
	{
		text += (text.empty() ? "" : ", ") + zortex::channelTypeName(type);
	}
	return text;
}

/// The channel types of a format in one colour space, those with the same names together; "other" ones last.
std::vector<TypeGroup> typeGroups(unsigned long long pixelFormat, EZORTColourSpace colourSpace)
{
	std::vector<TypeGroup> groups;
	for (unsigned int type = 0; type < eVT_NumVarTypes; ++type)
	{
		const auto channelType = static_cast<EZORTVariableType>(type);
		const Row names = apiNames({pixelFormat, channelType, colourSpace});
		auto group = std::find_if(groups.begin(), groups.end(), [&names](const TypeGroup& candidate) { return candidate.names == names; });
		if (group == groups.end())
		{
			group = groups.insert(groups.end(), TypeGroup{names, {}});
		}
		group->types.push_back(channelType);
	}
	std::stable_partition(groups.begin(), groups.end(), [](const TypeGroup& group) { return group.types.size() <= eVT_NumVarTypes / 2; });
	return groups;
}

void addRows(std::vector<Row>& rows, unsigned long long pixelFormat)
{
	const std::string name = "`" + zortex::formatName(PixelType(pixelFormat), eVT_UnsignedByteNorm) + "`";
	const auto linear = typeGroups(pixelFormat, eCS_lRGB);
	const auto sRGB = typeGroups(pixelFormat, eCS_sRGB);
	const auto add = [&](const TypeGroup& group, const std::string& space)
	{
		if (!isNameless(group.names))
		{
			Row row = {name, typesText(group), space};
			row.insert(row.end(), group.names.begin(), group.names.end());
			rows.push_back(row);
		}
	};
	const auto contains = [](const std::vector<TypeGroup>& groups, const TypeGroup& group)
	{
		return std::any_of(groups.begin(), groups.end(),
		                   [&group](const TypeGroup& other) { return other.names == group.names && other.types == group.types; });
	};
	for (const TypeGroup& group : linear)
	{
		add(group, contains(sRGB, group) ? "both" : "linear");
	}
	for (const TypeGroup& group : sRGB)
	{
		if (!contains(linear, group))
		{
			add(group, "sRGB");
		}
	}
}

/// Every uncompressed layout that has a name in some API: by channels, then by widths.
std::vector<unsigned long long> namedLayouts()
{
	std::set<unsigned long long> found;
	const auto collect = [&found](const auto& table)
	{
		for (const auto& row : table)
		{
			if (!PixelType(row.pixelFormat).isCompressed())
			{
				found.insert(row.pixelFormat);
			}
		}
	};
	collect(kOpenGLUncompressed);
	collect(kVulkanFormats);
	collect(kDirect3DFormats);
	collect(kDXGIFormats);
	std::vector<unsigned long long> layouts(found.begin(), found.end());
	const auto key = [](unsigned long long id)
	{
		const PixelType layout(id);
		const std::string letters(layout.channelName, std::find(layout.channelName, layout.channelName + 4, 0));
		return std::tuple(letters.size(), letters, ZORTGetBitsPerPixel(id), id);
	};
	std::sort(layouts.begin(), layouts.end(), [&key](auto first, auto second) { return key(first) < key(second); });
	return layouts;
}

std::vector<Row> head()
{
	return {{"format", "channel type", "colour space", "OpenGL", "OpenGL ES", "Vulkan", "Direct3D 9", "DXGI"}};
}

std::string caseText(const std::optional<Case>& format)
{
	return !format ? "refused"
	               : "`" + zortex::formatName(PixelType(format->pixelFormat), eVT_UnsignedByteNorm) + "`, " +
	                     zortex::channelTypeName(format->channelType) + (format->colourSpace == eCS_sRGB ? ", sRGB" : ", linear");
}

/// Every constant that a table names, of either direction.
template<typename Forward, typename Reverse>
std::vector<unsigned int> constantsOf(const Forward& forward, const Reverse& reverse)
{
	std::set<unsigned int> constants;
	for (const auto& row : forward)
	{
		if constexpr (requires { row.internalFormat; })
		{
			constants.insert({row.internalFormat, row.internalFormatSRGB});
		}
		else
		{
			constants.insert({row.linear, row.sRGB});
		}
	}
	for (const auto& row : reverse)
	{
		constants.insert(row.constant);
	}
	constants.erase(kNoConstant);
	return {constants.begin(), constants.end()};
}

void addExceptions(std::vector<Row>& rows, EGraphicsApi api, const char* title, const std::vector<unsigned int>& constants)
{
	for (const unsigned int constant : constants)
	{
		const auto format = incoming(api, constant);
		const unsigned int again = format ? outgoing(api, *format) : kNoConstant;
		if (!format || again != constant)
		{
			rows.push_back({title, constantText(api, constant), caseText(format), constantText(api, again)});
		}
	}
}
} // namespace

std::string formatNamesPage()
{
	std::vector<Row> compressed = head();
	for (const zortex::CompressedFormat& format : zortex::compressedFormats())
	{
		addRows(compressed, format.id);
	}
	std::vector<Row> uncompressed = head();
	for (const unsigned long long layout : namedLayouts())
	{
		addRows(uncompressed, layout);
	}
	std::vector<Row> exceptions = {{"API", "constant", "comes back as", "which goes out as"}};
	auto openGL = constantsOf(kOpenGLUncompressed, kOpenGLReverseExceptions);
	const auto openGLCompressed = constantsOf(kOpenGLCompressed, kOpenGLReverseExceptions);
	openGL.insert(openGL.end(), openGLCompressed.begin(), openGLCompressed.end());
	std::sort(openGL.begin(), openGL.end());
	openGL.erase(std::unique(openGL.begin(), openGL.end()), openGL.end());
	std::erase(openGL, static_cast<unsigned int>(GL_BGRA)); // unsized
	addExceptions(exceptions, eApi_OpenGL, "OpenGL", openGL);
	addExceptions(exceptions, eApi_Vulkan, "Vulkan", constantsOf(kVulkanFormats, kVulkanReverseExceptions));
	addExceptions(exceptions, eApi_Direct3D, "Direct3D 9", constantsOf(kDirect3DFormats, kDirect3DReverse));
	addExceptions(exceptions, eApi_DXGI, "DXGI", constantsOf(kDXGIFormats, kDXGIReverseExceptions));
	return std::string(kPageHead) + "\n## Compressed formats\n\n" + markdownTable(compressed) + "\n## Uncompressed layouts\n\n" +
	       markdownTable(uncompressed) + kPageTail + "\n" + markdownTable(exceptions);
}
} // namespace doctables
