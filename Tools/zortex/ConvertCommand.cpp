#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>
#include <unistd.h>
#include <utility>

#include "Commands.h"
#include "ConvertReport.h"
#include "FormatCapabilities.h"
#include "HelperPrograms.h"
#include "Layouts.h"
#include "OtherContainers.h"
#include "PngFile.h"
#include "Refusal.h"
#include "StandardForm.h"
#include "StandardOutputGuard.h"
#include "Text.h"
#include "TextureDescription.h"
#include "TextureFile.h"
#include "TranscodeTexture.h"

namespace zortex
{
using namespace zortexture;

namespace
{
/// Says what is being done, to a person who waits.
class Progress
{
public:
	Progress(const std::string& file, bool isQuiet) : m_file(file), m_isShown(!isQuiet && isatty(STDERR_FILENO) != 0)
	{
	}

	void say(const std::string& step) const
	{
		if (m_isShown)
		{
			std::cerr << "zortex: " << m_file << ": " << step << " ..." << std::endl;
		}
	}

private:
	std::string m_file;
	bool m_isShown;
};

/// Cuts the texture down to one image, with its metadata.
void pickImage(CZORTexture& texture, const ConvertOptions& options, OperationContext& context)
{
	const unsigned int level = pickIndex(options.level, texture.getNumMIPLevels(), "level", options.input);
	const unsigned int surface = pickIndex(options.surface, texture.getNumArrayMembers(), "surface", options.input);
	const unsigned int face = pickIndex(options.face, texture.getNumFaces(), "face", options.input);

	const unsigned int images = texture.getNumArrayMembers() * texture.getNumFaces();
	if (images > 1 && !options.surface && !options.face)
	{
		context.notes.push_back("one of " + std::to_string(images) + " images is written: choose it by --surface and --face");
	}
	if (texture.getDepth(level) > 1 && options.target.isPng && !options.slice)
	{
		context.notes.push_back("one of " + std::to_string(texture.getDepth(level)) + " depth slices is written: choose it by --slice");
	}
	cutToImage(texture, level, surface, face);
}

/// Whether some pixel of the largest image is not opaque. A texture that cannot be looked at counts as opaque.
bool hasTranslucentPixels(const CZORTexture& texture)
{
	CZORTexture pixels;
	const StandardOutputGuard guard;
	if (!TranscodeInto(texture, pixels, ZORStandard8PixelType, eVT_UnsignedByteNorm, texture.getColourSpace()))
	{
		return false;
	}
	const auto* bytes = static_cast<const unsigned char*>(pixels.getDataPtr());
	const std::size_t count = pixels.getDataSize(0) / 4;
	for (std::size_t i = 0; i < count; ++i)
	{
		if (bytes[4 * i + 3] != 255)
		{
			return true;
		}
	}
	return false;
}

/// What a reader of the result should know of the target's ways.
void addTargetNotes(const CZORTextureHeader& source, const Target& target, const ConvertOptions& options, OperationContext& context)
{
	PixelType layout;
	EZORTVariableType type = eVT_UnsignedByteNorm;
	workingLayout(source.getPixelType(), source.getChannelType(), layout, type);
	if (options.target.isPng && (isSigned(type) || isFloatType(type)))
	{
		context.notes.push_back("values outside 0 to 1 are clamped: a PNG file cannot hold them");
	}
	if (options.target.isPng && source.isPreMultiplied())
	{
		context.notes.push_back("the colours stay premultiplied by alpha, which a PNG file cannot tell");
	}
	if ((target.pixelType.id == ePF_DXT2 || target.pixelType.id == ePF_DXT4) && !source.isPreMultiplied())
	{
		context.notes.push_back("dxt2 and dxt4 mean colours premultiplied by alpha, which these are not: see --premultiply");
	}
	if (options.target.dither && !target.dither)
	{
		context.notes.push_back("--dither changes nothing: no channel of the format has fewer than 8 bits");
	}
	if (target.pixelType.isCompressed() || channelTypeBits(target.type) != 32 || isFloatType(target.type) || isSigned(target.type))
	{
		return;
	}
	if (widestChannel(target.pixelType) == 32)
	{
		context.notes.push_back("unsigned 32-bit channels store full intensity (1.0) as 0; --type float keeps it");
	}
}

/// The last conversion: into the target's format. Fills the report's figures of it.
void convertPixels(CZORTexture& texture, const Target& target, const ConvertOptions& options, const Progress& progress,
                   ConvertReport& report)
{
	// A decoded texture has nothing lost to measure; otherwise the original must last.
	const PixelType sourceType = texture.getPixelType();
	const bool isMeasured = !sourceType.isCompressed() || target.pixelType.isCompressed();
	CZORTexture measuredResult;
	CZORTexture& result = isMeasured ? measuredResult : texture;
	progress.say((target.pixelType.isCompressed() ? "encoding to " : "converting to ") + formatName(target.pixelType, target.type));

	const auto start = std::chrono::steady_clock::now();
	bool isConverted = false;
	{
		const StandardOutputGuard guard; // some codecs print debug lines there
		isConverted = transcodeInto(texture, result, target.pixelType, target.type, target.space, target.quality, target.dither);
	}
	report.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
	if (!isConverted)
	{
		throw Refusal(options.input,
		              "cannot be converted to " + formatName(target.pixelType, target.type) + helperProblem(sourceType, target.pixelType));
	}
	report.quality = target.quality;
	report.dither = target.dither;
	if (isMeasured)
	{
		progress.say("measuring");
		report.measurement = compareTextures(texture, result);
		texture = std::move(result);
	}
}

/// Whether the array in a C header, which is named after the file up to its first dot, has a name that C takes.
bool hasNameForC(const std::string& path)
{
	const std::string name = StringUtils::getFileName(path);
	const std::string_view stem = std::string_view(name).substr(0, name.find('.'));
	const auto isAllowed = [](char c)
	{
		return c == '_' || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
	};
	return !stem.empty() && (stem[0] < '0' || stem[0] > '9') && std::all_of(stem.begin(), stem.end(), isAllowed);
}

/// Runs the whole conversion and returns the output's header and the report's figures.
void convert(const ConvertOptions& options, const Container& container, ConvertReport& report)
{
	const Progress progress(options.input, options.isQuiet);
	const std::optional<EZORTColourSpace> inputSpace = parseColourSpace(options.inputSpace);
	progress.say("loading");
	LoadedTexture loaded = loadTexture(options.input);
	CZORTexture& texture = loaded.texture;
	TargetOptions targetOptions = options.target;
	if (!options.alphaFormat.empty() && hasTranslucentPixels(texture))
	{
		targetOptions.format = options.alphaFormat;
	}
	const TargetRequest request(targetOptions);
	report.input = texture.getHeader();
	report.inputFileBytes = loaded.fileBytes;
	if (inputSpace)
	{
		texture.setColourSpace(*inputSpace);
	}

	OperationContext context = {options.input, {}};
	const PixelType ownFormat = texture.getPixelType();
	const EZORTVariableType ownType = texture.getChannelType();
	// Without a format of its own, the output's follows from the input's and what the operations make of it.
	CZORTextureHeader natural = texture.getHeader();
	for (const Operation& operation : options.operations)
	{
		if (operation.adapt)
		{
			operation.adapt(natural);
		}
	}
	Target target = request.resolve(natural);
	if (!options.operations.empty())
	{
		if (const std::string problem = sourceProblem(texture); !problem.empty())
		{
			throw Refusal(options.input, problem);
		}
	}
	for (const Operation& operation : options.operations)
	{
		progress.say(operation.description);
		operation.apply(texture, context);
	}
	if (options.target.isPng || container.extension == "astc" || options.level || options.surface || options.face)
	{
		pickImage(texture, options, context);
	}

	fitTarget(texture, container.extension, !options.target.format.empty(), target, context.notes);
	if (container.extension == "h" && !hasNameForC(options.output))
	{
		context.notes.push_back("the array is named after the file, which is no name in C: the header does not compile as it is");
	}
	report.bytesBefore = texture.getDataSize();
	addTargetNotes(texture, target, options, context);
	const bool isSameFormat = texture.getPixelType().id == target.pixelType.id && texture.getChannelType() == target.type &&
	                          texture.getColourSpace() == target.space;
	if (!isSameFormat || request.asksForEncoding())
	{
		if (const std::string problem = sourceProblem(texture); !problem.empty())
		{
			throw Refusal(options.input, problem);
		}
		if (!canEncode(target.pixelType))
		{
			throw Refusal(options.input, "holds " + formatName(ownFormat, ownType) + ", which cannot be encoded anew; choose a --format");
		}
		if (const std::string problem = sizeProblem(texture, target.pixelType); !problem.empty())
		{
			throw Refusal(options.input, problem);
		}
		convertPixels(texture, target, options, progress, report);
	}
	report.bytesAfter = texture.getDataSize();

	progress.say("writing " + options.output);
	if (options.target.isPng)
	{
		savePng(texture, pickIndex(options.slice, texture.getDepth(), "slice", options.input), options.output);
	}
	else if (container.extension != "zor")
	{
		saveOther(texture, options.output, container.extension);
	}
	else if (!options.legacyApi.empty())
	{
		saveLegacy(texture, options.output, *findLegacyApi(options.legacyApi));
	}
	else
	{
		saveNative(texture, options.output);
	}
	report.output = texture.getHeader();
	report.notes = context.notes;
}

constexpr const char* kWrongExtension = ": the output's extension must be one of ";

std::string knownExtensions()
{
	std::string text;
	for (const Container& container : containers())
	{
		text += (text.empty() ? "." : ", .") + std::string(container.extension);
	}
	return text;
}
} // namespace

void checkConvertOptions(const ConvertOptions& options, const std::string& extension)
{
	const Container* container = containerOf("x." + extension);
	if (container == nullptr || !container->writes)
	{
		throw UsageError("." + extension + kWrongExtension + knownExtensions());
	}
	if (options.slice && container->extension != "png")
	{
		throw UsageError("--slice: only a PNG file is one slice of a volume");
	}
	if (!options.legacyApi.empty() && findLegacyApi(options.legacyApi) == nullptr)
	{
		throw UsageError("--legacy: '" + options.legacyApi + "' is none of gl, gl1, gl2, gl3, d3d, d3d1, d3d2, dxgi, openvg");
	}
	if (!options.legacyApi.empty() && container->extension != "zor")
	{
		throw UsageError("--legacy: only a .zor file has old versions");
	}
	if (!options.inputSpace.empty() && !parseColourSpace(options.inputSpace))
	{
		throw UsageError("--input-space: '" + options.inputSpace + "' is neither linear nor srgb");
	}
	if (!options.alphaFormat.empty() && options.target.format.empty())
	{
		throw UsageError("--alpha-format: it needs a --format for pictures without alpha");
	}
	TargetOptions target = options.target;
	target.isPng = container->extension == "png";
	const TargetRequest request(target);
	if (!options.alphaFormat.empty())
	{
		target.format = options.alphaFormat;
		const TargetRequest alphaRequest(target);
	}
}

ConvertReport convertFile(const ConvertOptions& options)
{
	const Container* const known = containerOf(options.output);
	if (known == nullptr || !known->writes)
	{
		throw UsageError(options.output + kWrongExtension + knownExtensions());
	}
	const Container& container = *known;
	checkConvertOptions(options, std::string(container.extension));
	ConvertOptions checked = options;
	checked.target.isPng = container.extension == "png";

	ConvertReport report;
	report.inputPath = options.input;
	report.outputPath = options.output;
	convert(checked, container, report);
	report.outputFileBytes = sizeOfFile(options.output);
	return report;
}

void runConvert(const ConvertOptions& options)
{
	const ConvertReport report = convertFile(options);
	if (options.isJson)
	{
		std::cout << reportJson(report);
	}
	else if (!options.isQuiet)
	{
		std::cout << reportText(report);
	}
}
} // namespace zortex
