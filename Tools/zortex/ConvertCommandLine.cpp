#include "ConvertCommandLine.h"

#include <algorithm>

#include "Commands.h"
#include "Refusal.h"

namespace zortex
{
namespace
{
constexpr const char* kConvertFooter =
    R"(IN is a PNG picture or a texture file (.zor, .ktx, .dds, .astc); OUT's extension says what is made: one of these, .png a
picture, .h a C header with the bytes of a .zor file.
Without --format a texture keeps its format, and a PNG file gets the closest of its own kinds. Pixels of PNG files are
taken as sRGB unless the file says that they are linear. Operations run in the order in which they are
given, before the conversion.
With --out-dir every other path is an input: a file, a folder, or a pattern with *, ? and ** that the program expands. The
results keep the structure of folders. A bad file is told of and ends the batch, with --keep-going at its end.

Examples:
  zortex convert photo.png photo.zor --format tessel1-4bpp-rgb --quality best
  zortex convert photo.png small.zor --resize 256x256 --format rgb565 --dither
  zortex convert logo.png logo.zor --bleed --premultiply --format tessel1-4bpp-rgba
  zortex convert light.png light.zor --space linear --format rgba16f
  zortex convert photo.png photo.ktx --mips --mip-filter cubic --format etc2-rgb
  zortex convert height.png normal.zor --normal-map 4:xyz --mips
  zortex convert photo.png cutout.zor --copy-channel a=l:mask.png --bleed --format etc2-rgba
  zortex convert cube.zor face.png --face 3 --mip 1
  zortex convert --preset albedo textures --recursive --out-dir built --to ktx --update
  zortex convert 'art/**/*_n.png' --preset normal --out-dir built --to ktx --report built/normals.json)";
} // namespace

ConvertCommandLine::ConvertCommandLine(CLI::App& program)
    : m_app(*program.add_subcommand("convert", "Convert PNG pictures or textures into other textures or PNG pictures"))
{
	m_app.footer(kConvertFooter);
	m_runOptions.push_back(
	    m_app.add_option("IN...OUT", m_paths, "Input file and output file; with --out-dir input files, folders and patterns")
	        ->type_name(""));
	addFormatOptions();
	m_operations.emplace(m_app);
	addImageOptions();
	addBatchOptions();

	const std::string report = "Report";
	m_runOptions.push_back(m_app.add_flag("--quiet", m_batch.convert.isQuiet, "Print nothing when all went well")->group(report));
	m_runOptions.push_back(m_app.add_flag("--json", m_batch.convert.isJson, "Print the report as JSON")->group(report));
}

void ConvertCommandLine::addFormatOptions()
{
	const std::string group = "Format";
	TargetOptions& target = m_batch.convert.target;
	m_app.add_option("--format", target.format, "Format of the output, such as tessel1-4bpp-rgba or rgb565")
	    ->type_name("NAME")
	    ->group(group);
	m_app.add_option("--alpha-format", m_batch.convert.alphaFormat, "The format instead, for pictures that are not opaque everywhere")
	    ->type_name("NAME")
	    ->group(group);
	m_app.add_option("--type", target.type, "Channel type, such as unorm8, snorm16 or float (default: the format's usual one)")
	    ->type_name("NAME")
	    ->group(group);
	m_app.add_option("--space", target.space, "Colour space of the output: linear or srgb (default: the input's)")
	    ->type_name("SPACE")
	    ->group(group);
	m_app.add_option("--input-space", m_batch.convert.inputSpace, "Colour space of the input, whatever its file says")
	    ->type_name("SPACE")
	    ->group(group);
	m_app
	    .add_option(
	        "--quality", target.quality,
	        "fast, normal, high or best, or a number of the format's own (default: normal); best takes about a minute a megapixel for ETC")
	    ->type_name("Q")
	    ->group(group);
	m_app.add_option("--legacy", m_batch.convert.legacyApi, "Write a .zor file of version 2, with the numbers of gl, d3d, dxgi or openvg")
	    ->type_name("API")
	    ->group(group);
	m_app.add_flag("--dither", target.dither, "Spread the rounding error of formats with few bits")->group(group);
	// Its options have taken its place before the command line is read; here for the help.
	m_app.add_option("--preset", "A bundle of options: albedo, normal, mask, ui or hdr (see 'zortex presets')")
	    ->type_name("NAME")
	    ->group(group);
}

void ConvertCommandLine::addImageOptions()
{
	const std::string group = "One image of a texture";
	ConvertOptions& convert = m_batch.convert;
	m_app.add_option("--mip", convert.level, "MIP level, 0 is the largest")->type_name("N")->group(group);
	m_app.add_option("--surface", convert.surface, "Array member")->type_name("N")->group(group);
	m_app.add_option("--face", convert.face, "Face of a cube map")->type_name("N")->group(group);
	m_app.add_option("--slice", convert.slice, "Depth slice of a volume, for a PNG file")->type_name("N")->group(group);
}

void ConvertCommandLine::addBatchOptions()
{
	FileSources& sources = m_batch.sources;
	const std::vector<CLI::Option*> options = {
	    m_app.add_option("--out-dir", sources.outputFolder, "Convert many files into this folder")->type_name("DIR"),
	    m_app.add_option("--to", sources.extension, "Extension of the results: zor, ktx, dds, astc, png or h (default: zor)")
	        ->type_name("EXT"),
	    m_app.add_option("--list", sources.list, "Also convert the files that a file names, one a line; - is standard input")
	        ->type_name("FILE"),
	    m_app.add_option("--base", sources.base, "Keep the paths of single files from this folder on")->type_name("DIR"),
	    m_app.add_flag("--recursive", sources.isRecursive, "Go into the folders of folders"),
	    m_app.add_option("--jobs", m_batch.jobs, "Worker processes (default: one for each core)")
	        ->type_name("N")
	        ->check(CLI::Range(1, 1024)),
	    m_app.add_flag("--update", m_batch.isUpdate, "Leave results alone whose inputs, options and program are as they were"),
	    m_app.add_option("--shard", m_batch.shard, "One share of all files, such as 2/8")->type_name("I/N"),
	    m_app.add_flag("--keep-going", m_batch.isKeepGoing, "Go on with the other files after a failure"),
	    m_app.add_option("--report", m_batch.report, "Write what became of each file as JSON")->type_name("OUT"),
	};
	for (CLI::Option* option : options)
	{
		option->group("Many files");
		m_runOptions.push_back(option);
	}
}

bool ConvertCommandLine::isChosen() const
{
	return m_app.parsed();
}

std::string ConvertCommandLine::subject() const
{
	return m_batch.sources.outputFolder.empty() && !m_paths.empty() ? m_paths[0] : m_batch.sources.outputFolder;
}

std::vector<std::string> ConvertCommandLine::shapingWords() const
{
	std::vector<std::string> words;
	std::vector<const CLI::Option*> seen;
	for (const CLI::Option* option : m_app.parse_order())
	{
		if (std::find(m_runOptions.begin(), m_runOptions.end(), option) != m_runOptions.end())
		{
			continue;
		}
		// An option that is given several times stands in the order several times, with all of its values in one list.
		const auto times = static_cast<std::size_t>(std::count(seen.begin(), seen.end(), option));
		seen.push_back(option);
		words.push_back(option->get_name());
		if (times < option->results().size() && option->get_items_expected_max() > 0)
		{
			words.push_back(option->results()[times]);
		}
	}
	if (!m_batch.sources.extension.empty())
	{
		words.push_back("." + m_batch.sources.extension);
	}
	return words;
}

void ConvertCommandLine::run()
{
	ConvertOptions& convert = m_batch.convert;
	convert.operations = m_operations->operations();
	for (const Operation& operation : convert.operations)
	{
		if (!operation.file.empty())
		{
			convert.sideFiles.push_back(operation.file);
		}
	}
	if (m_batch.sources.outputFolder.empty())
	{
		for (const CLI::Option* option : m_runOptions)
		{
			if (option->get_group() == "Many files" && option->count() > 0)
			{
				throw UsageError(option->get_name() + ": it needs --out-dir");
			}
		}
		if (m_paths.size() != 2)
		{
			throw UsageError("convert: an input file and an output file are needed, or --out-dir for many files");
		}
		convert.input = m_paths[0];
		convert.output = m_paths[1];
		runConvert(convert);
		return;
	}
	if (m_paths.empty() && m_batch.sources.list.empty())
	{
		throw UsageError("convert: no input files are named");
	}
	if (m_batch.sources.extension.empty())
	{
		m_batch.sources.extension = "zor";
	}
	m_batch.sources.inputs = m_paths;
	convert.words = shapingWords();
	runBatch(m_batch);
}
} // namespace zortex
