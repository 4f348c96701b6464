/// @file Commands.h
/// The commands of the program. Each prints its result to standard output and throws Refusal or UsageError when it
/// cannot do what it is asked for.
#ifndef ZORTEX_COMMANDS_H
#define ZORTEX_COMMANDS_H

#include <optional>
#include <string>
#include <vector>

#include "ConvertReport.h"
#include "ConvertTarget.h"
#include "Operations.h"

namespace zortex
{
struct ConvertOptions
{
	std::string input;
	std::string output;
	TargetOptions target;
	/// The colour space that the input's pixels are taken to be in; empty trusts the file.
	std::string inputSpace;
	/// The format instead when some pixel is not opaque; empty for the same.
	std::string alphaFormat;
	/// In the order in which they run.
	std::vector<Operation> operations;
	/// The files that operations read.
	std::vector<std::string> sideFiles;
	/// The options that shape the output, as words: two equal lists make equal outputs of equal inputs.
	std::vector<std::string> words;
	/// One image of the texture instead of all of it; a PNG file takes the first unless told.
	std::optional<unsigned int> level;
	std::optional<unsigned int> surface;
	std::optional<unsigned int> face;
	std::optional<unsigned int> slice;
	/// The API whose format numbers a native file of version 2 is written with; empty for version 3.
	std::string legacyApi;
	bool isQuiet = false;
	bool isJson = false;
};

struct DiffOptions
{
	std::string first;
	std::string second;
	/// The image that is compared; the first of each unless told.
	std::optional<unsigned int> level;
	std::optional<unsigned int> surface;
	std::optional<unsigned int> face;
	/// Where a picture of the difference goes; empty for none.
	std::string image;
	/// colour, tolerance or blend.
	std::string mode = "colour";
	float multiplier = 1.0f;
	/// Of values from 0 to 1.
	float tolerance = 0.02f;
	/// The share of the first image in a blend.
	float ratio = 0.5f;
	/// The largest difference that is no failure.
	std::optional<double> failAbove;
	bool isJson = false;
};

/// Converts one file, and prints its report.
void runConvert(const ConvertOptions& options);
/// Converts one file. Throws as the commands do.
ConvertReport convertFile(const ConvertOptions& options);
/// Throws a UsageError for options that suit no output with an extension, whatever the input is.
void checkConvertOptions(const ConvertOptions& options, const std::string& extension);
void runInfo(const std::string& path, bool isJson);
void runFormats(bool isJson);
/// All presets, or the options of one for use on a command line.
void runPresets(const std::string& name, bool isJson);
/// Refuses, after it has printed the measures, when they are above the limit.
void runDiff(const DiffOptions& options);
/// Draws all images of a texture into one PNG file.
void runView(const std::string& input, const std::string& output);
} // namespace zortex

#endif // ZORTEX_COMMANDS_H
