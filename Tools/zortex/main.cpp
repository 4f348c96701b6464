#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <new>

#include "CommandLineDocs.h"
#include "Commands.h"
#include "HelperPrograms.h"
#include "OperationOptions.h"
#include "Refusal.h"

namespace
{
using namespace zortex;

constexpr int kExitRefused = 1;
constexpr int kExitUsage = 2;

constexpr const char* kMainFooter = R"(A first conversion, a look at its result, and back to a picture:
  zortex convert photo.png photo.zor --format tessel1-4bpp-rgb
  zortex info photo.zor
  zortex convert photo.zor decoded.png

'zortex COMMAND --help' explains a command, 'zortex formats' lists the formats.
Exit codes: 0 done, 1 a file stopped the work, 2 wrong command line.)";

constexpr const char* kConvertFooter =
    R"(IN is a PNG picture or a texture file (.zor, .ktx, .dds, .astc); OUT's extension says what is made: one of these, .png a
picture, .h a C header with the bytes of a .zor file.
Without --format a texture keeps its format, and a PNG file gets the closest of its own kinds. Pixels of PNG files are
taken as sRGB unless the file says that they are linear. Operations run in the order in which they are
given, before the conversion.

Examples:
  zortex convert photo.png photo.zor --format tessel1-4bpp-rgb --quality best
  zortex convert photo.png small.zor --resize 256x256 --format rgb565 --dither
  zortex convert logo.png logo.zor --bleed --premultiply --format tessel1-4bpp-rgba
  zortex convert light.png light.zor --space linear --format rgba16f
  zortex convert photo.png photo.ktx --mips --mip-filter cubic --format etc2-rgb
  zortex convert height.png normal.zor --normal-map 4:xyz --mips
  zortex convert photo.png cutout.zor --copy-channel a=l:mask.png --bleed --format etc2-rgba
  zortex convert cube.zor face.png --face 3 --mip 1)";

/// The command line of 'convert'. Operations are collected in the order in which they stand there.
class ConvertCommandLine
{
public:
	explicit ConvertCommandLine(CLI::App& program)
	    : m_app(*program.add_subcommand("convert", "Convert a PNG picture or a texture into another texture or a PNG picture"))
	{
		m_app.footer(kConvertFooter);
		m_app.add_option("IN", m_options.input, "Input file")->required();
		m_app.add_option("OUT", m_options.output, "Output file")->required();

		TargetOptions& target = m_options.target;
		const std::string format = "Format";
		m_app.add_option("--format", target.format, "Format of the output, such as tessel1-4bpp-rgba or rgb565")
		    ->type_name("NAME")
		    ->group(format);
		m_app.add_option("--type", target.type, "Channel type, such as unorm8, snorm16 or float (default: the format's usual one)")
		    ->type_name("NAME")
		    ->group(format);
		m_app.add_option("--space", target.space, "Colour space of the output: linear or srgb (default: the input's)")
		    ->type_name("SPACE")
		    ->group(format);
		m_app.add_option("--input-space", m_options.inputSpace, "Colour space of the input, whatever its file says")
		    ->type_name("SPACE")
		    ->group(format);
		m_app
		    .add_option("--quality", target.quality,
		                "fast, normal, high or best, or a number of the format's own (default: normal); best takes minutes for ETC")
		    ->type_name("Q")
		    ->group(format);
		m_app.add_option("--legacy", m_options.legacyApi, "Write a .zor file of version 2, with the numbers of gl, d3d, dxgi or openvg")
		    ->type_name("API")
		    ->group(format);
		m_app.add_flag("--dither", target.dither, "Spread the rounding error of formats with few bits")->group(format);

		m_operations.emplace(m_app);

		const std::string image = "One image of a texture";
		m_app.add_option("--mip", m_options.level, "MIP level, 0 is the largest")->type_name("N")->group(image);
		m_app.add_option("--surface", m_options.surface, "Array member")->type_name("N")->group(image);
		m_app.add_option("--face", m_options.face, "Face of a cube map")->type_name("N")->group(image);
		m_app.add_option("--slice", m_options.slice, "Depth slice of a volume, for a PNG file")->type_name("N")->group(image);

		const std::string report = "Report";
		m_app.add_flag("--quiet", m_options.isQuiet, "Print nothing when all went well")->group(report);
		m_app.add_flag("--json", m_options.isJson, "Print the report as JSON")->group(report);
	}

	bool isChosen() const
	{
		return m_app.parsed();
	}

	const std::string& inputPath() const
	{
		return m_options.input;
	}

	/// What was asked for. Throws a UsageError.
	const ConvertOptions& options()
	{
		m_options.operations = m_operations->operations();
		return m_options;
	}

private:
	CLI::App& m_app;
	ConvertOptions m_options;
	/// Made in the middle of the other options, for the order of the help text.
	std::optional<OperationOptions> m_operations;
};

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
		OperationOptions::completeArguments(arguments);
		// The parser takes them from the last one on.
		std::reverse(arguments.begin(), arguments.end());
		program.parse(arguments);
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
		return run(convertLine.inputPath(), [&convertLine]() { runConvert(convertLine.options()); });
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
	return run("formats", [isJson]() { runFormats(isJson); });
}
} // namespace

int main(int argc, char** argv)
{
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
