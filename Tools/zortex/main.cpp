#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <new>
#include <unistd.h>

#include "Batch/BatchCommand.h"
#include "Batch/CollectCommand.h"
#include "CommandLineDocs.h"
#include "Commands.h"
#include "ConvertCommandLine.h"
#include "HelperPrograms.h"
#include "OperationOptions.h"
#include "Presets.h"
#include "Refusal.h"

namespace
{
using namespace zortex;

constexpr int kExitRefused = 1;
constexpr int kExitUsage = 2;
constexpr int kExitSignal = 128;

constexpr const char* kMainFooter = R"(A first conversion, a look at its result, and back to a picture:
  zortex convert photo.png photo.zor --format tessel1-4bpp-rgb
  zortex info photo.zor
  zortex convert photo.zor decoded.png

'zortex COMMAND --help' explains a command, 'zortex formats' lists the formats.
Exit codes: 0 done, 1 a file stopped the work, 2 wrong command line, 130 or 143 interrupted.)";

constexpr const char* kDiffFooter =
    R"(A and B are textures of any format, or PNG pictures, of one size. Both are decoded to the wider of their two precisions.

Examples:
  zortex diff photo.png photo.zor
  zortex diff a.zor b.zor --mip 2 --face 3 --json
  zortex diff photo.png photo.ktx --image difference.png --mode tolerance --tolerance 0.05
  zortex diff expected.png actual.png --fail-above 2 || echo different)";

void addDiff(CLI::App& program, CLI::App*& diff, DiffOptions& options)
{
	diff = program.add_subcommand("diff", "Measure how far two textures are apart");
	diff->footer(kDiffFooter);
	diff->add_option("A", options.first, "First texture or PNG picture")->required();
	diff->add_option("B", options.second, "Second texture or PNG picture")->required();
	diff->add_option("--mip", options.level, "MIP level, 0 is the largest")->type_name("N");
	diff->add_option("--surface", options.surface, "Array member")->type_name("N");
	diff->add_option("--face", options.face, "Face of a cube map")->type_name("N");
	diff->add_option("--fail-above", options.failAbove, "Exit with code 1 when the largest difference, as printed, is above this")
	    ->type_name("X");
	diff->add_flag("--json", options.isJson, "Print the measures as JSON");
	const std::string picture = "A picture of the difference";
	diff->add_option("--image", options.image, "The file: .png, or .zor with every bit")->type_name("OUT")->group(picture);
	diff->add_option("--mode", options.mode,
	                 "colour: grey plus the difference; tolerance: black, blue within it, red beyond; blend: both in one")
	    ->type_name("MODE")
	    ->capture_default_str()
	    ->group(picture);
	diff->add_option("--multiplier", options.multiplier, "Multiplies differences in mode colour")->capture_default_str()->group(picture);
	diff->add_option("--tolerance", options.tolerance, "Of values from 0 to 1, in mode tolerance")->capture_default_str()->group(picture);
	diff->add_option("--ratio", options.ratio, "Share of A in mode blend, 0 to 1")->capture_default_str()->group(picture);
}

void addCollect(CLI::App& program, CLI::App*& collect, CollectOptions& options)
{
	collect = program.add_subcommand("collect", "Merge the reports of a batch's shares, and list what is still to be converted");
	collect->add_option("REPORT", options.reports, "Report files, folders of them, or patterns")->required();
	collect->add_option("--list", options.list, "The list that the shares were cut from: files that no report tells of are not converted")
	    ->type_name("FILE");
	collect->add_option("--report", options.output, "Write the merged report")->type_name("OUT");
	collect->add_option("--failed", options.failed, "Write the files that are not converted as a list for 'convert --list'")
	    ->type_name("OUT");
	collect->add_flag("--json", options.isJson, "Print the merged report as JSON");
}

/// Runs a command and turns what it throws into an exit code and a line on standard error.
template<typename Command>
int run(const std::string& file, Command command)
{
	try
	{
		command();
		std::cout.flush();
		if (!std::cout)
		{
			throw Refusal("standard output", "cannot be written");
		}
		return 0;
	}
	catch (const UsageError& error)
	{
		std::cerr << "zortex: " << error.what() << "\n";
		return kExitUsage;
	}
	catch (const Interrupted& interruption)
	{
		return kExitSignal + interruption.signal;
	}
	catch (const std::bad_alloc&)
	{
		std::cerr << "zortex: " << file << ": not enough memory\n";
	}
	catch (const Refusal& error)
	{
		std::cerr << "zortex: " << error.what() << "\n";
	}
	catch (const std::exception& error)
	{
		std::cerr << "zortex: " << file << ": " << error.what() << "\n";
	}
	return kExitRefused;
}

/// Reads the command line and runs the command that it names.
int runProgram(int argc, char** argv)
{
	putHelpersOnPath();
	CLI::App program("zortex converts pictures into GPU textures and back.", "zortex");
	program.footer(kMainFooter);
	program.set_version_flag("--version", "zortex " ZORTEXLIB_VERSION_STRING, "Print the version");
	program.require_subcommand(1);

	ConvertCommandLine convertLine(program);
	std::string infoFile; ///< of 'view', too
	bool isJson = false;
	CLI::App* info = program.add_subcommand("info", "Print everything that a texture's header says");
	info->add_option("FILE", infoFile, "Texture file or PNG picture")->required();
	info->add_flag("--json", isJson, "Print it as JSON");
	CLI::App* formats = program.add_subcommand("formats", "List the formats, and what can be done with each");
	formats->add_flag("--json", isJson, "Print the list as JSON");
	std::string presetName;
	CLI::App* presets = program.add_subcommand("presets", "List the presets of 'convert', or print the options of one");
	presets->add_option("NAME", presetName, "A preset");
	presets->add_flag("--json", isJson, "Print them as JSON");
	CLI::App* collect = nullptr;
	CollectOptions collectOptions;
	addCollect(program, collect, collectOptions);
	CLI::App* diff = nullptr;
	DiffOptions diffOptions;
	addDiff(program, diff, diffOptions);
	std::string viewOutput;
	CLI::App* view = program.add_subcommand("view", "Draw all levels, faces, surfaces and slices of a texture into one PNG file");
	view->add_option("FILE", infoFile, "Texture file or PNG picture")->required();
	view->add_option("OUT", viewOutput, "PNG file; transparent areas show a checkerboard")->required();
	GenerateOptions generateOptions;
	const CLI::App* generate = addGenerate(program, generateOptions);

	try
	{
		std::vector<std::string> arguments(argv + 1, argv + argc);
		expandPreset(arguments);
		OperationOptions::completeArguments(arguments);
		// The parser takes them from the last one on.
		std::reverse(arguments.begin(), arguments.end());
		program.parse(arguments);
	}
	catch (const UsageError& error)
	{
		std::cerr << "zortex: " << error.what() << "\n";
		return kExitUsage;
	}
	catch (const CLI::ParseError& error)
	{
		if (error.get_exit_code() == 0)
		{
			return program.exit(error);
		}
		std::cerr << "zortex: " << error.what() << "\nRun 'zortex --help' or 'zortex COMMAND --help' for more.\n";
		return kExitUsage;
	}

	if (convertLine.isChosen())
	{
		return run(convertLine.subject(), [&convertLine]() { convertLine.run(); });
	}
	if (info->parsed())
	{
		return run(infoFile, [&infoFile, isJson]() { runInfo(infoFile, isJson); });
	}
	if (diff->parsed())
	{
		return run(diffOptions.first, [&diffOptions]() { runDiff(diffOptions); });
	}
	if (view->parsed())
	{
		return run(infoFile, [&infoFile, &viewOutput]() { runView(infoFile, viewOutput); });
	}
	if (generate->parsed())
	{
		return run(generateOptions.output, [&program, &generateOptions]() { runGenerate(program, generateOptions); });
	}
	if (presets->parsed())
	{
		return run("presets", [&presetName, isJson]() { runPresets(presetName, isJson); });
	}
	if (collect->parsed())
	{
		return run("collect", [&collectOptions]() { runCollect(collectOptions); });
	}
	return run("formats", [isJson]() { runFormats(isJson); });
}
} // namespace

int main(int argc, char** argv)
{
	// Files must not take the places of standard streams that are closed.
	for (int descriptor = 0; descriptor >= 0 && descriptor <= STDERR_FILENO;)
	{
		descriptor = open("/dev/null", O_RDWR);
		if (descriptor > STDERR_FILENO)
		{
			close(descriptor);
		}
	}
	try
	{
		return runProgram(argc, argv);
	}
	catch (...)
	{
		std::fputs("zortex: not enough memory\n", stderr);
		return kExitRefused;
	}
}
