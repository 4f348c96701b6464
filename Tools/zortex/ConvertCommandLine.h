/// @file ConvertCommandLine.h
/// The options of 'convert', for one file and for many.
#ifndef ZORTEX_CONVERT_COMMAND_LINE_H
#define ZORTEX_CONVERT_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "Batch/BatchCommand.h"
#include "OperationOptions.h"

namespace zortex
{
class ConvertCommandLine
{
public:
	/// Adds the command to the program.
	explicit ConvertCommandLine(CLI::App& program);
	ConvertCommandLine(const ConvertCommandLine&) = delete;
	ConvertCommandLine& operator=(const ConvertCommandLine&) = delete;

	bool isChosen() const;

	/// The file or folder that a failure without a name of its own is about.
	std::string subject() const;

	/// Does what was asked for. Throws as the commands do.
	void run();

private:
	void addFormatOptions();
	void addImageOptions();
	void addBatchOptions();
	/// The options that shape the output, in the order of the command line.
	std::vector<std::string> shapingWords() const;

	CLI::App& m_app;
	std::vector<std::string> m_paths;
	BatchOptions m_batch;
	/// Made in the middle of the other options, for the order of the help text.
	std::optional<OperationOptions> m_operations;
	/// The options that say how a batch runs, not what it makes.
	std::vector<const CLI::Option*> m_runOptions;
};
} // namespace zortex

#endif // ZORTEX_CONVERT_COMMAND_LINE_H
