/// @file CollectCommand.h
/// 'collect': one report from the reports of a batch's shares.
#ifndef ZORTEX_COLLECT_COMMAND_H
#define ZORTEX_COLLECT_COMMAND_H

#include <string>
#include <vector>

namespace zortex
{
struct CollectOptions
{
	/// Files, folders of .json files, and patterns; a later one has the last word on a file.
	std::vector<std::string> reports;
	/// The list that the shares were cut from, to see what no report tells of; empty for none.
	std::string list;
	/// Where the merged report goes; empty for nowhere.
	std::string output;
	/// Where a list of the files goes that are still to be converted; empty for nowhere.
	std::string failed;
	bool isJson = false;
};

/// Throws a Refusal, after it has told of them, when some files are not converted.
void runCollect(const CollectOptions& options);
} // namespace zortex

#endif // ZORTEX_COLLECT_COMMAND_H
