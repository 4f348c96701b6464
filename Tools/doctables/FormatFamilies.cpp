#include <algorithm>

#include "DocTables.h"
#include "FormatCapabilities.h"
#include "Text.h"

namespace doctables
{
using namespace zortex;

namespace
{
/// Formats of one codec that can be in files, or that cannot.
struct Family
{
	const Codec* codec;
	bool isStorable;
	std::vector<const CompressedFormat*> members;
};

/// More members than these are told by the first and the last.
constexpr std::size_t kMostNames = 6;

std::vector<Family> families()
{
	std::vector<Family> all;
	for (const CompressedFormat& format : compressedFormats())
	{
		const bool isStorable = bitsPerTexel(format) > 0.0;
		auto family =
		    std::find_if(all.begin(), all.end(),
		                 [&](const Family& candidate) { return candidate.codec == format.codec && candidate.isStorable == isStorable; });
		if (family == all.end())
		{
			family = all.insert(all.end(), Family{format.codec, isStorable, {}});
		}
		family->members.push_back(&format);
	}
	return all;
}

std::string namesText(const Family& family)
{
	std::string text;
	for (const CompressedFormat* format : family.members)
	{
		const bool isShown = family.members.size() <= kMostNames || format == family.members.front() || format == family.members.back();
		if (isShown)
		{
			text += (text.empty() ? "`" : family.members.size() > kMostNames ? " to `" : ", `") + std::string(format->name) + "`";
		}
	}
	return text;
}

/// Different texts of a family's members in one line; `summary` where they are too many. Nothing for what no file holds.
template<typename Text>
std::string differentTexts(const Family& family, const std::string& summary, Text text)
{
	std::vector<std::string> different;
	for (const CompressedFormat* format : family.members)
	{
		const std::string next = text(*format);
		if (std::find(different.begin(), different.end(), next) == different.end())
		{
			different.push_back(next);
		}
	}
	if (!family.isStorable || different.size() > kMostNames)
	{
		return family.isStorable ? summary : "";
	}
	std::string joined;
	for (const std::string& next : different)
	{
		joined += (joined.empty() ? "" : ", ") + next;
	}
	return joined;
}

std::string bitsText(const Family& family)
{
	const auto [least, most] = std::minmax_element(family.members.begin(), family.members.end(),
	                                               [](const CompressedFormat* first, const CompressedFormat* second)
	                                               { return bitsPerTexel(*first) < bitsPerTexel(*second); });
	return differentTexts(family, shortNumber(bitsPerTexel(**least)) + " to " + shortNumber(bitsPerTexel(**most)),
	                      [](const CompressedFormat& format) { return shortNumber(bitsPerTexel(format)); });
}

std::string blocksText(const Family& family)
{
	return differentTexts(family, std::to_string(family.members.size()) + " sizes",
	                      [](const CompressedFormat& format)
	                      {
		                      unsigned int x = 0;
		                      unsigned int y = 0;
		                      unsigned int z = 0;
		                      blockSize(format, x, y, z);
		                      return std::to_string(x) + "x" + std::to_string(y) + (z > 1 ? "x" + std::to_string(z) : "");
	                      });
}

std::string encodeText(const Codec& codec)
{
	if (!codec.encodes)
	{
		return {};
	}
	return codec.bestQuality == 0 ? "yes" : "qualities 0 to " + std::to_string(codec.bestQuality);
}
} // namespace

std::string formatFamiliesTable()
{
	std::vector<Row> rows = {{"family", "formats", "bits a pixel", "block", "in files", "decode", "encode"}};
	for (const Family& family : families())
	{
		rows.push_back({std::string(family.codec->title), namesText(family), bitsText(family), blocksText(family),
		                family.isStorable ? "yes" : "", family.codec->decodes ? "yes" : "", encodeText(*family.codec)});
	}
	rows.push_back(
	    {"uncompressed", "`rgba8888`, `rgb565`, `r16f`: one to four channels of any widths", "8 to 128", "1x1", "yes", "yes", "yes"});
	return markdownTable(rows);
}
} // namespace doctables
