/// @file BatchCommand.h
/// 'convert' on many files.
#ifndef ZORTEX_BATCH_COMMAND_H
#define ZORTEX_BATCH_COMMAND_H

#include <optional>
#include <string>

#include "../Commands.h"
#include "FileList.h"

namespace zortex
{
struct BatchOptions
{
	FileSources sources;
	/// Of every file; input and output are the batch's.
	ConvertOptions convert;
	/// Worker processes; 0 is one for each core.
	unsigned int jobs = 0;
	/// "i/n"; empty for everything.
	std::string shard;
	/// Leave outputs alone that are as they would be made.
	bool isUpdate = false;
	/// Go on after a failure.
	bool isKeepGoing = false;
	/// Where the report goes; empty for nowhere.
	std::string report;
};

/// The batch was asked to end by a signal.
struct Interrupted
{
	int signal;
};

/// Converts the files, tells of them, and throws a Refusal when some were not converted, or Interrupted.
void runBatch(const BatchOptions& options);
} // namespace zortex

#endif // ZORTEX_BATCH_COMMAND_H
