#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>
#include <iterator>

#include "Commands.h"
#include "Layouts.h"
#include "Measure.h"
#include "PngFile.h"
#include "Refusal.h"
#include "StandardForm.h"
#include "Text.h"
#include "TextureDescription.h"
#include "TextureFile.h"

namespace zortex
{
using namespace zortexture;

namespace
{
constexpr std::string_view kChannels = "rgba";
constexpr const char* kColumnKeys[] = {"red", "green", "blue", "alpha", "all"};

struct Measures
{
	SChannelDifference largest;
	SChannelDifference mean;
	SChannelDifference rootMeanSquare;
	SChannelDifference deviation;
	SChannelDifference libraryPSNR;
	/// Mean squares of r, g, b and a, summed up in double precision.
	double meanSquares[4] = {};
	/// Over the channels that one of the two formats has.
	double meanSquare = 0.0;
};

/// The pair of images, both in one standard layout.
struct ImagePair
{
	CZORTexture first;
	CZORTexture second;
	/// What full intensity is.
	double peak = 1.0;
	/// The channels that one of the two formats has.
	std::string channels;
	std::vector<std::string> notes;
};

CZORTexture loadImage(const std::string& path, const DiffOptions& options, std::vector<std::string>& notes)
{
	CZORTexture texture = loadTexture(path).texture;
	if (const std::string problem = sourceProblem(texture); !problem.empty())
	{
		throw Refusal(path, problem);
	}
	const unsigned int level = pickIndex(options.level, texture.getNumMIPLevels(), "level", path);
	const unsigned int surface = pickIndex(options.surface, texture.getNumArrayMembers(), "surface", path);
	const unsigned int face = pickIndex(options.face, texture.getNumFaces(), "face", path);
	const double images = 1.0 * texture.getNumMIPLevels() * texture.getNumArrayMembers() * texture.getNumFaces();
	if (images > 1.0 && !options.level && !options.surface && !options.face)
	{
		notes.push_back(path + " has " + fixedNumber(images, 0) +
		                " images, of which one is compared: choose it by --mip, --surface and --face");
	}
	cutToImage(texture, level, surface, face);
	return texture;
}

std::string sizeText(const CZORTextureHeader& header)
{
	return std::to_string(header.getWidth()) + "x" + std::to_string(header.getHeight()) +
	       (header.getDepth() != 1 ? "x" + std::to_string(header.getDepth()) : "");
}

ImagePair loadPair(const DiffOptions& options)
{
	ImagePair pair;
	pair.first = loadImage(options.first, options, pair.notes);
	pair.second = loadImage(options.second, options, pair.notes);
	if (sizeText(pair.first) != sizeText(pair.second))
	{
		throw Refusal(options.second, "is " + sizeText(pair.second) + ", and " + options.first + " is " + sizeText(pair.first));
	}
	const std::string channels = imageChannels(pair.first.getPixelType()) + imageChannels(pair.second.getPixelType());
	std::copy_if(kChannels.begin(), kChannels.end(), std::back_inserter(pair.channels),
	             [&channels](char letter) { return channels.find(letter) != std::string::npos; });

	EZORTVariableType type = std::max(standardType(pair.first.getPixelType(), pair.first.getChannelType()),
	                                  standardType(pair.second.getPixelType(), pair.second.getChannelType()));
	if (pair.first.getColourSpace() != pair.second.getColourSpace())
	{
		// Rounding after the conversion would add to what is measured.
		type = eVT_SignedFloat;
		pair.notes.push_back("the colour spaces differ: both are compared in that of " + options.first);
	}
	const EZORTColourSpace space = pair.first.getColourSpace();
	makeStandard(pair.first, type, space, options.first);
	makeStandard(pair.second, type, space, options.second);
	pair.peak = type == eVT_UnsignedByteNorm ? 255.0 : type == eVT_UnsignedShortNorm ? 65535.0 : 1.0;
	return pair;
}

template<typename T>
void sumSquares(const CZORTexture& a, const CZORTexture& b, double (&sums)[4])
{
	const auto* first = static_cast<const T*>(a.getDataPtr());
	const auto* second = static_cast<const T*>(b.getDataPtr());
	const std::size_t elements = static_cast<std::size_t>(a.getWidth()) * a.getHeight() * a.getDepth() * 4;
	for (std::size_t i = 0; i < elements; ++i)
	{
		const auto x = static_cast<double>(first[i]);
		const auto y = static_cast<double>(second[i]);
		// Two equal infinities do not differ, nor do two values that are both no numbers.
		if (x != y && !(std::isnan(x) && std::isnan(y)))
		{
			sums[i % 4] += (x - y) * (x - y);
		}
	}
}

Measures measure(const ImagePair& pair)
{
	const CZORTexture& a = pair.first;
	const CZORTexture& b = pair.second;
	Measures measures;
	measures.largest = GetMaxDifference(a, b, 0, 0, 0);
	measures.mean = GetMeanErrorValue(a, b, 0, 0, 0);
	measures.rootMeanSquare = GetRMSErrorValue(a, b, 0, 0, 0);
	measures.deviation = GetStandardDeviation(a, b, 0, 0, 0);
	measures.libraryPSNR = GetPSNRValue(a, b, 0, 0, 0);

	switch (a.getChannelType())
	{
	case eVT_UnsignedByteNorm:
		sumSquares<unsigned char>(a, b, measures.meanSquares);
		break;
	case eVT_UnsignedShortNorm:
		sumSquares<unsigned short>(a, b, measures.meanSquares);
		break;
	default:
		sumSquares<float>(a, b, measures.meanSquares);
		break;
	}
	const double texels = static_cast<double>(a.getWidth()) * a.getHeight() * a.getDepth();
	for (std::size_t channel = 0; channel < kChannels.size(); ++channel)
	{
		measures.meanSquares[channel] /= texels;
		if (pair.channels.find(kChannels[channel]) != std::string::npos)
		{
			measures.meanSquare += measures.meanSquares[channel] / static_cast<double>(pair.channels.size());
		}
	}
	return measures;
}

/// The customary PSNR in dB.
double decibels(double meanSquare, double peak)
{
	return customaryPSNR(meanSquare / (peak * peak) * 255.0 * 255.0);
}

using Columns = std::array<double, 5>;

Columns columnsOf(const SChannelDifference& figures)
{
	return {figures.red, figures.green, figures.blue, figures.alpha, figures.all};
}

Columns decibelColumns(const Measures& measures, double peak)
{
	Columns columns = {};
	for (std::size_t channel = 0; channel < kChannels.size(); ++channel)
	{
		columns[channel] = decibels(measures.meanSquares[channel], peak);
	}
	columns[4] = decibels(measures.meanSquare, peak);
	return columns;
}

std::vector<std::string> tableRow(const std::string& title, const Columns& columns, int digits)
{
	std::vector<std::string> row = {title};
	for (const double value : columns)
	{
		row.push_back(std::isinf(value) ? "equal" : fixedNumber(value, digits));
	}
	return row;
}

std::string upperCase(std::string text)
{
	for (char& letter : text)
	{
		letter = static_cast<char>(letter - 'a' + 'A');
	}
	return text;
}

std::string diffText(const DiffOptions& options, const ImagePair& pair, const Measures& measures)
{
	const int digits = pair.peak == 1.0 ? 6 : 3;
	std::string text =
	    options.first + " and " + options.second + ": " + sizeText(pair.first) + ", values of 0 to " + fixedNumber(pair.peak, 0);
	text += "\n" + alignedTable({
	                   {"", "red", "green", "blue", "alpha", "all"},
	                   tableRow("largest difference", columnsOf(measures.largest), digits),
	                   tableRow("mean difference", columnsOf(measures.mean), digits),
	                   tableRow("root mean square", columnsOf(measures.rootMeanSquare), digits),
	                   tableRow("standard deviation", columnsOf(measures.deviation), digits),
	                   tableRow("library PSNR", columnsOf(measures.libraryPSNR), 2),
	                   tableRow("PSNR in dB", decibelColumns(measures, pair.peak), 2),
	               });
	text += "PSNR in dB is the customary one, over " + upperCase(pair.channels) +
	        "; library PSNR is GetPSNRValue's own figure, -1 where nothing differs.\n";
	for (const std::string& note : pair.notes)
	{
		text += "note: " + note + "\n";
	}
	return text;
}

Json columnsJson(const Columns& columns)
{
	Json json;
	for (std::size_t i = 0; i < columns.size(); ++i)
	{
		json[kColumnKeys[i]] = std::isfinite(columns[i]) ? Json(columns[i]) : Json();
	}
	return json;
}

std::string diffJson(const DiffOptions& options, const ImagePair& pair, const Measures& measures)
{
	Json json = {{"first", options.first}, {"second", options.second}, {"peak", pair.peak}, {"channels", pair.channels}};
	json["width"] = pair.first.getWidth();
	json["height"] = pair.first.getHeight();
	json["depth"] = pair.first.getDepth();
	json["identical"] =
	    std::all_of(std::begin(measures.meanSquares), std::end(measures.meanSquares), [](double square) { return square == 0.0; });
	json["largest"] = columnsJson(columnsOf(measures.largest));
	json["mean"] = columnsJson(columnsOf(measures.mean));
	json["rootMeanSquare"] = columnsJson(columnsOf(measures.rootMeanSquare));
	json["standardDeviation"] = columnsJson(columnsOf(measures.deviation));
	json["libraryPsnr"] = columnsJson(columnsOf(measures.libraryPSNR));
	json["psnr"] = columnsJson(decibelColumns(measures, pair.peak));
	json["notes"] = pair.notes;
	return jsonText(json);
}

/// Writes the picture of the difference. A PNG file has its first depth slice, without what its mode puts into alpha.
void saveDifference(const DiffOptions& options, const ImagePair& pair)
{
	CZORTexture image = options.mode == "colour"      ? ColourDiff(pair.first, pair.second, options.multiplier)
	                    : options.mode == "tolerance" ? ToleranceDiff(pair.first, pair.second, options.tolerance)
	                                                  : BlendDiff(pair.first, pair.second, options.ratio);
	if (image.getDataPtr() == nullptr || !image.isDataComplete())
	{
		throw Refusal(options.second, "cannot be drawn as a difference from " + options.first);
	}
	if (containerOf(options.image)->extension != "png")
	{
		saveNative(image, options.image);
		return;
	}
	const bool hasAlpha = options.mode == "blend" && pair.channels.find('a') != std::string::npos;
	if (!Transcode(image, makeLayout(hasAlpha ? "rgba" : "rgb", 8), eVT_UnsignedByteNorm, image.getColourSpace()))
	{
		throw Refusal(options.image, "cannot be made into a picture");
	}
	savePng(image, 0, options.image);
}

void checkOptions(const DiffOptions& options)
{
	if (options.mode != "colour" && options.mode != "tolerance" && options.mode != "blend")
	{
		throw UsageError("--mode: '" + options.mode + "' is none of colour, tolerance and blend");
	}
	const Container* container = options.image.empty() ? nullptr : containerOf(options.image);
	if (!options.image.empty() && (container == nullptr || (container->extension != "png" && container->extension != "zor")))
	{
		throw UsageError("--image: " + options.image + ": the extension must be .png or .zor");
	}
	for (const float value : {options.multiplier, options.tolerance, options.ratio})
	{
		if (!std::isfinite(value))
		{
			throw UsageError("--multiplier, --tolerance and --ratio are finite numbers");
		}
	}
	if (options.failAbove && !(*options.failAbove >= 0.0))
	{
		throw UsageError("--fail-above: the limit is a number from 0 on");
	}
}
} // namespace

void runDiff(const DiffOptions& options)
{
	checkOptions(options);
	const ImagePair pair = loadPair(options);
	const Measures measures = measure(pair);
	if (!options.image.empty())
	{
		saveDifference(options, pair);
	}
	std::cout << (options.isJson ? diffJson(options, pair, measures) : diffText(options, pair, measures));
	// A NaN hides from the largest difference, but not from the squares.
	const bool isUnknown =
	    std::isnan(measures.meanSquares[0] + measures.meanSquares[1] + measures.meanSquares[2] + measures.meanSquares[3]);
	if (options.failAbove && (isUnknown || !(measures.largest.all <= *options.failAbove)))
	{
		const std::string difference = isUnknown ? "values that are no numbers" : "up to " + shortNumber(measures.largest.all);
		throw Refusal(options.second,
		              "differs from " + options.first + " by " + difference + ", the limit is " + shortNumber(*options.failAbove));
	}
}
} // namespace zortex
