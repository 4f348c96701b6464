/// @file FileList.h
/// Which files a batch converts, and where their results go.
#ifndef ZORTEX_FILE_LIST_H
#define ZORTEX_FILE_LIST_H

#include <string>
#include <vector>

namespace zortex
{
/// Where the files of a batch come from.
struct FileSources
{
	/// Files, folders and patterns.
	std::vector<std::string> inputs;
	/// A file with one path a line, "-" for standard input; empty for none.
	std::string list;
	/// Go into the folders of folders.
	bool isRecursive = false;
	/// The folder to which the paths of single files are relative; empty for the paths as they are given.
	std::string base;
	std::string outputFolder;
	/// The extension of the results, without the dot.
	std::string extension;
};

struct BatchFile
{
	std::string input;
	/// The result's path below the output folder.
	std::string relativeOutput;
	/// Why the file cannot be converted whatever it holds; empty for none.
	std::string problem;
};

/// All files, bytewise sorted by input, each once. Folders give the files whose extensions the program reads. The structure of
/// folders is kept: below a folder that was given, below the folder in front of a pattern's first wildcard, and for single files as
/// they were given, from the base on. Of two files with one result the later one has a problem. Throws a Refusal for a folder
/// without --recursive that holds no such file, for a pattern that names none, and for a list that cannot be read.
std::vector<BatchFile> collectFiles(const FileSources& sources);

/// A share of a batch, "i/n": file k of the list (from 0) belongs to share i (from 1) when k mod n + 1 is i.
struct Shard
{
	unsigned long long index = 1;
	unsigned long long count = 1;
};

/// Throws a UsageError.
Shard parseShard(const std::string& text);

void cutToShard(std::vector<BatchFile>& files, const Shard& shard);

/// The paths in a list: one a line, without empty lines.
std::vector<std::string> readList(const std::string& path);
} // namespace zortex

#endif // ZORTEX_FILE_LIST_H
