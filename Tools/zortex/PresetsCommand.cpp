#include <algorithm>
#include <iostream>

#include "Commands.h"
#include "Presets.h"
#include "Refusal.h"
#include "Text.h"
#include "TextureDescription.h"

namespace zortex
{
void runPresets(const std::string& name, bool isJson)
{
	Json json = Json::array();
	std::vector<std::vector<std::string>> rows;
	for (const Preset& preset : presets())
	{
		if (!name.empty() && preset.name != name)
		{
			continue;
		}
		json.push_back({{"name", preset.name}, {"purpose", preset.purpose}, {"options", preset.options}});
		rows.push_back({std::string(preset.name), std::string(preset.options), std::string(preset.purpose)});
	}
	if (rows.empty())
	{
		throw UsageError("'" + name + "' is no preset (see 'zortex presets')");
	}
	if (isJson)
	{
		std::cout << jsonText(name.empty() ? json : json[0]);
		return;
	}
	if (!name.empty())
	{
		std::cout << rows[0][1] << "\n";
		return;
	}
	rows.insert(rows.begin(), {"PRESET", "OPTIONS", "FOR"});
	std::cout << alignedTable(rows)
	          << "\nA preset's options stand at the end of the command line: its operations run last. Options that are given beside "
	             "--preset\nare used in place of its own.\n";
}
} // namespace zortex
