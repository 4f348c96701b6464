// The format maps against tables of plain numbers, over every format, channel type and colour space that the tables know,
// and back from every constant near those in use.

#include <array>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <set>
#include <sstream>

#include "FormatMapTables.h"
#include "FormatMaps.h"
#include "FormatText.h"
#include "ZORTextureHeader.h"

using namespace zortexture;

namespace
{
constexpr unsigned int kNumTypes = 16; // two past the last one

unsigned int parseNumber(const std::string& text, int base)
{
	if (text[0] == '\'')
	{
		unsigned int value = 0;
		for (unsigned int i = 0; i < 4; ++i)
		{
			value |= static_cast<unsigned int>(text[i + 1]) << (8 * i);
		}
		return value;
	}
	return static_cast<unsigned int>(std::stoul(text, nullptr, base));
}

using Key = std::tuple<unsigned long long, unsigned int, unsigned int>; // format, channel type, colour space
using Values = std::vector<unsigned int>;

bool isSignedType(unsigned int type)
{
	return std::set<unsigned int>{1, 3, 5, 7, 9, 11, 12}.count(type) != 0;
}

/// Every combination that a text gives values for.
std::map<Key, Values> parseForward(const char* text, int base)
{
	std::map<Key, Values> result;
	std::istringstream lines(text);
	std::string line;
	while (std::getline(lines, line))
	{
		std::istringstream words(line);
		std::string format;
		std::string item;
		if (!(words >> format))
		{
			continue;
		}
		while (words >> item)
		{
			const std::size_t colon = item.find(':');
			const std::string types = item.substr(0, colon);
			for (unsigned int type = 0; type < kNumTypes; ++type)
			{
				const bool serves = types == "any" || (types == "signed" && isSignedType(type)) ||
				                    (types == "unsigned" && !isSignedType(type)) || types == std::to_string(type);
				for (unsigned int space = 0; serves && space < 3; ++space)
				{
					Values values;
					std::istringstream columns(item.substr(colon + 1));
					std::string column;
					while (std::getline(columns, column, ','))
					{
						const std::size_t slash = column.find('/');
						const bool second = slash != std::string::npos && space == 1;
						values.push_back(parseNumber(second ? column.substr(slash + 1) : column.substr(0, slash), base));
					}
					result[{parseFormat(format), type, space}] = values;
				}
			}
		}
	}
	return result;
}

/// What constants come back as; no value where they are refused.
using Back = std::map<unsigned int, std::optional<Key>>;

void addBack(Back& back, const char* text, int base)
{
	std::istringstream lines(text);
	std::string constant;
	std::string format;
	unsigned int type = 0;
	unsigned int space = 0;
	while (lines >> constant >> format >> type >> space)
	{
		back[parseNumber(constant, base)] = format == "-" ? std::nullopt : std::optional(Key{parseFormat(format), type, space});
	}
}

/// The inverse of a forward table: a constant's linear form is linear, its second form sRGB; compressed formats come
/// back with 8-bit channels unless they go out with another type only.
Back inverse(const std::map<Key, Values>& forward, std::size_t column)
{
	Back back;
	for (unsigned int space : {1u, 0u}) // the linear entries stay where both are the same
	{
		for (auto entry = forward.rbegin(); entry != forward.rend(); ++entry) // the lowest type stays
		{
			const auto& [format, type, entrySpace] = entry->first;
			if (entrySpace == space)
			{
				back[entry->second[column]] = Key{format, type, space};
			}
		}
	}
	return back;
}

std::set<unsigned long long> everyFormat()
{
	std::set<unsigned long long> formats;
	for (unsigned long long id = 0; id < 60; ++id)
	{
		formats.insert(id);
	}
	for (const char* text : {kOpenGLUncompressedText, kVulkanText, kDirect3DText, kDXGIText})
	{
		for (const auto& entry : parseForward(text, 16))
		{
			formats.insert(std::get<0>(entry.first));
		}
	}
	formats.insert(parseFormat("i8"));
	formats.insert(parseFormat("rgbx8.8.8.8"));
	return formats;
}

/// Calls a forward map with every combination and compares; `call` returns the values, none for false.
template<typename Call>
void expectForward(const std::map<Key, Values>& expected, Call call)
{
	for (const unsigned long long format : everyFormat())
	{
		for (unsigned int type = 0; type < kNumTypes; ++type)
		{
			for (unsigned int space = 0; space < 3; ++space)
			{
				const auto entry = expected.find({format, type, space});
				const Values values = call(format, static_cast<EZORTVariableType>(type), static_cast<EZORTColourSpace>(space));
				EXPECT_EQ(values, entry == expected.end() ? Values() : entry->second) << std::hex << format << " " << type << " " << space;
			}
		}
	}
}

/// Calls a reverse map with every constant near those that exist.
template<typename Call>
void expectBack(const Back& expected, Call call)
{
	std::set<unsigned int> constants;
	for (unsigned int i = 0; i < 0x9500; ++i)
	{
		constants.insert(i);
	}
	for (const auto& entry : expected)
	{
		for (unsigned int near = entry.first - 2; near != entry.first + 3; ++near)
		{
			constants.insert(near);
		}
	}
	for (const unsigned int constant : constants)
	{
		unsigned long long format = 0xABCDEF;
		EZORTVariableType type = eVT_NumVarTypes;
		auto space = static_cast<EZORTColourSpace>(7);
		const bool found = call(format, type, space, constant);
		const auto entry = expected.find(constant);
		const std::optional<Key> wanted = entry == expected.end() ? std::nullopt : entry->second;
		EXPECT_EQ(found, wanted.has_value()) << constant;
		// Refused constants leave the outputs alone.
		EXPECT_EQ(Key(format, type, space), wanted.value_or(Key{0xABCDEF, eVT_NumVarTypes, 7})) << constant;
	}
}

TEST(FormatMaps, OpenGLForward)
{
	auto uncompressed = parseForward(kOpenGLUncompressedText, 16);
	std::map<Key, Values> expected;
	for (const auto& [key, v] : uncompressed)
	{
		expected[key] = {v[0], v[1], v[0], v[2], v[3]};
	}
	for (const auto& [key, v] : parseForward(kOpenGLCompressedText, 16))
	{
		expected[key] = {v[0], v[1], 0, 0, 1};
	}
	for (unsigned int type = 0; type < kNumTypes; ++type)
	{
		for (unsigned int space = 0; space < 3; ++space)
		{
			expected[{19, type, space}] = {0x1907, 0x8C3D, 0x1907, 0x8C3E, 4};
			for (unsigned int i = 0; i < 14; ++i)
			{
				expected[{27 + i, type, space}] = {0x1908, (space == 1 ? 37840 : 37808) + i, 0, 0, 1};
			}
			for (unsigned int i = 0; i < 10; ++i)
			{
				expected[{41 + i, type, space}] = {0x1908, (space == 1 ? 37856 : 37824) + i, 0, 0, 1};
			}
		}
	}
	expectForward(expected,
	              [](unsigned long long id, EZORTVariableType channelType, EZORTColourSpace space) -> Values
	              {
		              unsigned int internalFormat = 91;
		              unsigned int baseInternalFormat = 92;
		              unsigned int format = 93;
		              unsigned int type = 94;
		              unsigned int typeSize = 95;
		              if (getOpenGLFormat(id, channelType, space, internalFormat, baseInternalFormat, format, type, typeSize))
		              {
			              return {baseInternalFormat, internalFormat, format, type, typeSize};
		              }
		              const Values left{internalFormat, baseInternalFormat, format, type, typeSize};
		              EXPECT_EQ(left, id <= 51 ? Values({91, 92, 0, 0, 1}) : Values(5, 0)) << id;
		              return {};
	              });
}

TEST(FormatMaps, OpenGLBack)
{
	Back expected = inverse(parseForward(kOpenGLUncompressedText, 16), 1);
	expected.merge(inverse(parseForward(kOpenGLCompressedText, 16), 1));
	for (unsigned int i = 0; i < 14; ++i)
	{
		expected[37808 + i] = Key{27 + i, 0, 0};
		expected[37840 + i] = Key{27 + i, 0, 1};
	}
	for (unsigned int i = 0; i < 10; ++i)
	{
		expected[37824 + i] = Key{41 + i, 0, 0};
		expected[37856 + i] = Key{41 + i, 0, 1};
	}
	addBack(expected, kOpenGLAsymmetriesText, 16);
	expected[0x80E1] = std::nullopt; // unsized: without a type it means nothing
	const auto withType = [](unsigned int glType)
	{
		return [glType](unsigned long long& id, EZORTVariableType& type, EZORTColourSpace& space, unsigned int constant)
		{
			return getZorvexFormatOGL(id, type, space, constant, 0x1234, glType);
		};
	};
	expectBack(expected, withType(0));

	// Unsized formats take their widths from the type.
	const std::pair<unsigned int, const char*> unsizedFormats[] = {{0x1903, "r"},    {0x1906, "a"},  {0x1909, "l"}, {0x1907, "rgb"},
	                                                               {0x1908, "rgba"}, {0x8227, "rg"}, {0x190A, "la"}};
	const std::array<unsigned int, 3> types[] = {{0x1400, 8, 1},  {0x1401, 8, 0},  {0x1402, 16, 5},
	                                             {0x1403, 16, 4}, {0x1404, 32, 9}, {0x1405, 32, 8}};
	for (const auto& [glType, width, channelType] : types)
	{
		Back sized = expected;
		for (const auto& [constant, letters] : unsizedFormats)
		{
			std::string layout = letters;
			for (std::size_t i = 0; i < std::string(letters).size(); ++i)
			{
				layout += (i == 0 ? "" : ".") + std::to_string(width);
			}
			sized[constant] = Key{parseFormat(layout), channelType, 0};
		}
		if (glType == 0x1401)
		{
			sized[0x80E1] = Key{parseFormat("bgra8.8.8.8"), 0, 0};
		}
		expectBack(sized, withType(glType));
	}
	const std::tuple<unsigned int, unsigned int, const char*, unsigned int> pairs[] = {{0x8363, 0x1907, "rgb5.6.5", 4},
	                                                                                   {0x8032, 0x1907, "rgb3.3.2", 0},
	                                                                                   {0x8033, 0x1908, "rgba4.4.4.4", 4},
	                                                                                   {0x8034, 0x1908, "rgba5.5.5.1", 4}};
	for (const auto& [glType, constant, layout, channelType] : pairs)
	{
		Back paired = expected;
		paired[constant] = Key{parseFormat(layout), channelType, 0};
		expectBack(paired, withType(glType));
	}
	expectBack(expected, withType(0x1406)); // floats have no unsized form
}

/// The values of a map of one number.
template<bool (*map)(const unsigned long long&, const EZORTVariableType&, const EZORTColourSpace&, unsigned int&)>
Values oneNumber(unsigned long long id, EZORTVariableType type, EZORTColourSpace space)
{
	unsigned int value = 99;
	if (map(id, type, space, value))
	{
		return {value};
	}
	EXPECT_EQ(value, 0u);
	return {};
}

TEST(FormatMaps, Vulkan)
{
	auto expected = parseForward(kVulkanText, 10);
	for (unsigned int type = 0; type < kNumTypes; ++type)
	{
		for (unsigned int i = 0; i < 14; ++i)
		{
			expected[{27 + i, type, 0}] = expected[{27 + i, type, 2}] = {157 + 2 * i};
			expected[{27 + i, type, 1}] = {158 + 2 * i};
		}
	}
	expectForward(expected, oneNumber<getVulkanFormat>);
	Back back = inverse(expected, 0);
	addBack(back, kVulkanAsymmetriesText, 10);
	expectBack(back, getZorvexFormatVulkan);
}

TEST(FormatMaps, Direct3D)
{
	expectForward(parseForward(kDirect3DText, 10), oneNumber<getDirect3DFormat>);
	Back back;
	addBack(back, kDirect3DBackText, 10);
	expectBack(back,
	           [](unsigned long long& id, EZORTVariableType& type, EZORTColourSpace& space, unsigned int constant)
	           {
		           bool preMultiplied = true;
		           const bool found = getZorvexFormatD3D(id, type, space, preMultiplied, constant);
		           const bool isPreMultiplied = constant == parseNumber("'DXT2'", 10) || constant == parseNumber("'DXT4'", 10);
		           EXPECT_EQ(preMultiplied, !found || isPreMultiplied) << constant;
		           return found;
	           });
}

TEST(FormatMaps, DXGI)
{
	const auto expected = parseForward(kDXGIText, 10);
	expectForward(expected, oneNumber<getDirectXGIFormat>);
	Back back = inverse(expected, 0);
	addBack(back, kDXGIAsymmetriesText, 10);
	expectBack(back, getZorvexFormatDXGI);
}

TEST(FormatMaps, NamesOfConstants)
{
	EXPECT_STREQ(getFormatConstantName(eApi_OpenGL, 0x8C43), "GL_SRGB8_ALPHA8");
	EXPECT_STREQ(getFormatConstantName(eApi_Vulkan, 37), "VK_FORMAT_R8G8B8A8_UNORM");
	EXPECT_STREQ(getFormatConstantName(eApi_Direct3D, 21), "D3DFMT_A8R8G8B8");
	EXPECT_STREQ(getFormatConstantName(eApi_DXGI, 28), "DXGI_FORMAT_R8G8B8A8_UNORM");
	EXPECT_EQ(getFormatConstantName(eApi_DXGI, 12345), nullptr);
	EXPECT_STREQ(getFormatConstantName(eApi_Vulkan, 0), "VK_FORMAT_UNDEFINED");
	EXPECT_EQ(getFormatConstantName(static_cast<EGraphicsApi>(4), 28), nullptr);
}

TEST(FormatMaps, HeaderAccessors)
{
	CZORTextureHeader header(ZORStandard8PixelType.id, 4, 4, 1, 1, 1, 1, eCS_sRGB);
	unsigned int internalFormat = 0;
	unsigned int format = 0;
	unsigned int type = 0;
	EXPECT_TRUE(header.getOGLFormat(internalFormat, format, type));
	EXPECT_EQ(internalFormat, 0x8C43u);
	EXPECT_TRUE(header.getOGLESFormat(internalFormat, format, type));
	EXPECT_EQ(internalFormat, 0x1908u);
	EXPECT_EQ(header.getVulkanFormat(), 43u);
	EXPECT_EQ(header.getD3DFormat(), 0u);
	EXPECT_EQ(header.getDXGIFormat(), 29u);

	EXPECT_FALSE(header.setOGLFormat(0, 0, 0));
	EXPECT_FALSE(header.setDXGIFormat(1));
	EXPECT_EQ(header.getPixelType().id, ZORStandard8PixelType.id);
	EXPECT_EQ(header.getColourSpace(), eCS_sRGB);
	EXPECT_TRUE(header.setDXGIFormat(61));
	EXPECT_EQ(header.getPixelType().id, parseFormat("r8"));
	EXPECT_EQ(header.getColourSpace(), eCS_lRGB);

	// The flags are written in every case: a format that is not premultiplied, and an unknown one, lose the other flag.
	header.setIsFileCompressed(true);
	EXPECT_TRUE(header.setD3DFormat(parseNumber("'DXT2'", 10)));
	EXPECT_TRUE(header.isPreMultiplied());
	EXPECT_FALSE(header.setD3DFormat(0));
	EXPECT_TRUE(header.isPreMultiplied());
	EXPECT_TRUE(header.isFileCompressed());
	EXPECT_TRUE(header.setD3DFormat(parseNumber("'DXT3'", 10)));
	EXPECT_EQ(header.getFileHeader().flags, 0u);
}
} // namespace
