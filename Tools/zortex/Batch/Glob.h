/// @file Glob.h
/// Patterns of file names, expanded by the program so that they work the same in every shell and in none.
#ifndef ZORTEX_GLOB_H
#define ZORTEX_GLOB_H

#include <string>
#include <string_view>
#include <vector>

namespace zortex
{
/// Whether a text holds '*' or '?'.
bool isPattern(std::string_view text);

/// Whether one component of a path matches: '*' is any text, '?' any one character of UTF-8. A dot at the front of a name must be
/// met by a dot.
bool matchesComponent(std::string_view pattern, std::string_view name);

/// The folder in front of the first component with a wildcard, without a slash at its end unless it is the root; empty for none.
std::string fixedFolder(const std::string& pattern);

/// The files that a pattern names, bytewise sorted, each once. The component '**' is any number of folders, none included; links to
/// folders are not followed. A link to nowhere counts as a file, so that it is told of.
std::vector<std::string> expandPattern(const std::string& pattern);
} // namespace zortex

#endif // ZORTEX_GLOB_H
