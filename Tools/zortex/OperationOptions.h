/// @file OperationOptions.h
/// The options of 'convert' that process the image, read into the operations that they stand for.
#ifndef ZORTEX_OPERATION_OPTIONS_H
#define ZORTEX_OPERATION_OPTIONS_H

#include <CLI/CLI.hpp>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "Operations.h"

namespace zortex
{
class OperationOptions
{
public:
	/// Adds the options to a command.
	explicit OperationOptions(CLI::App& command);
	OperationOptions(const OperationOptions&) = delete;
	OperationOptions& operator=(const OperationOptions&) = delete;

	/// The operations in the order of the command line, once it is parsed. Throws a UsageError.
	std::vector<Operation> operations() const;

	/// Gives every --mips that stands without a number its value, since an option cannot do without one.
	static void completeArguments(std::vector<std::string>& arguments);

private:
	using Maker = std::function<Operation(const std::string&)>;

	struct Entry
	{
		const CLI::Option* option;
		/// One for each time that the option was given; empty for a flag.
		std::vector<std::string> values;
		Maker make;
	};

	void add(const std::string& name, const std::string& typeName, const std::string& help, Maker make);
	void addFlag(const std::string& name, const std::string& help, const std::function<Operation()>& make);

	CLI::App& m_app;
	/// In which the addresses of the values stay the same.
	std::deque<Entry> m_entries;
	std::string m_filter = "cubic";
	std::string m_mipFilter = "linear";
};
} // namespace zortex

#endif // ZORTEX_OPERATION_OPTIONS_H
