#include "Presets.h"

#include <algorithm>
#include <sstream>

#include "Refusal.h"

namespace zortex
{
namespace
{
constexpr Preset kPresets[] = {
    {"albedo", "Base colour, lit by a shader: sRGB with MIP levels, and alpha where the picture has some",
     "--format etc2-rgb --alpha-format etc2-rgba --space srgb --mips"},
    {"normal", "Normal maps with two channels: linear values as they stand, MIP levels",
     "--input-space linear --format eac-rg11 --space linear --mips"},
    {"mask", "One channel of values (roughness, occlusion, height): linear as they stand, MIP levels",
     "--input-space linear --format eac-r11 --space linear --mips"},
    {"ui", "Interface pictures, shown pixel by pixel: premultiplied alpha, no MIP levels, best quality",
     "--format etc2-rgba --quality best --premultiply"},
    {"hdr", "Light: linear values beyond white with a shared exponent, MIP levels", "--format r9g9b9e5 --space linear --mips"},
};

constexpr std::string_view kOption = "--preset";

/// The name of the option that an argument gives, without a value after '='.
std::string optionName(const std::string& argument)
{
	return argument.rfind("--", 0) == 0 ? argument.substr(0, argument.find('=')) : "";
}

const Preset& findPreset(const std::string& name)
{
	std::string names;
	for (const Preset& preset : kPresets)
	{
		if (preset.name == name)
		{
			return preset;
		}
		names += (names.empty() ? "" : ", ") + std::string(preset.name);
	}
	throw UsageError("--preset: '" + name + "' is none of " + names);
}

/// The options of a preset, each with its values.
std::vector<std::vector<std::string>> optionsOf(const Preset& preset)
{
	std::vector<std::vector<std::string>> options;
	std::istringstream words{std::string(preset.options)};
	for (std::string word; words >> word;)
	{
		if (!optionName(word).empty())
		{
			options.emplace_back();
		}
		options.back().push_back(word);
	}
	return options;
}
} // namespace

std::span<const Preset> presets()
{
	return kPresets;
}

void expandPreset(std::vector<std::string>& arguments)
{
	const auto isPreset = [](const std::string& argument)
	{
		return optionName(argument) == kOption;
	};
	// What stands behind "--" are file names.
	const auto optionsEnd = [&arguments]()
	{
		return std::find(arguments.begin(), arguments.end(), "--");
	};
	const auto place = std::find_if(arguments.begin(), optionsEnd(), isPreset);
	if (place == optionsEnd())
	{
		return;
	}
	std::string name;
	if (place->size() > kOption.size())
	{
		name = place->substr(kOption.size() + 1);
		arguments.erase(place);
	}
	else
	{
		if (place + 1 == optionsEnd())
		{
			throw UsageError("--preset: a name is missing");
		}
		name = *(place + 1);
		arguments.erase(place, place + 2);
	}
	if (std::find_if(arguments.begin(), optionsEnd(), isPreset) != optionsEnd())
	{
		throw UsageError("--preset: there can be one only");
	}

	const std::vector<std::string> given(arguments.begin(), optionsEnd());
	const auto isGiven = [&given](const std::string& option)
	{
		return std::any_of(given.begin(), given.end(), [&option](const std::string& word) { return optionName(word) == option; });
	};
	for (const std::vector<std::string>& option : optionsOf(findPreset(name)))
	{
		// Who names a format has no use for another one for alpha.
		if (!isGiven(option[0]) && !(option[0] == "--alpha-format" && isGiven("--format")))
		{
			arguments.insert(optionsEnd(), option.begin(), option.end());
		}
	}
}
} // namespace zortex
