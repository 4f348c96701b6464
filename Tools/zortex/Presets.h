/// @file Presets.h
/// Bundles of options for the jobs that people have.
#ifndef ZORTEX_PRESETS_H
#define ZORTEX_PRESETS_H

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zortex
{
struct Preset
{
	std::string_view name;
	std::string_view purpose;
	/// The options that it stands for, as they would be typed.
	std::string_view options;
};

std::span<const Preset> presets();

/// Puts a preset's options in the place of '--preset NAME', at the end of the arguments so that its operations run last. An option
/// that stands in the arguments too is left to them. Throws a UsageError for a name that is not known.
void expandPreset(std::vector<std::string>& arguments);
} // namespace zortex

#endif // ZORTEX_PRESETS_H
