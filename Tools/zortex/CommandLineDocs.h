/// @file CommandLineDocs.h
/// The command line described for others to read: as a manual page, as a page of the documentation, and as the completions
/// of shells. All of it comes from the parser's own tables.
#ifndef ZORTEX_COMMAND_LINE_DOCS_H
#define ZORTEX_COMMAND_LINE_DOCS_H

#include <iosfwd>
#include <string>

namespace CLI
{
class App;
}

namespace zortex
{
/// What `zortex generate` was asked for.
struct GenerateOptions
{
	/// man, markdown, bash or zsh.
	std::string kind;
	/// Where it goes; empty for standard output.
	std::string output;
};

/// Adds the command `generate`, which --help does not list: packages are made with it.
CLI::App* addGenerate(CLI::App& program, GenerateOptions& options);

/// Writes the description of a program's command line. Throws a UsageError for an unknown kind and a Refusal for a file that
/// cannot be written.
void runGenerate(const CLI::App& program, const GenerateOptions& options);
} // namespace zortex

#endif // ZORTEX_COMMAND_LINE_DOCS_H
