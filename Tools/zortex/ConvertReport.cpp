#include "ConvertReport.h"

#include "Text.h"
#include "TextureDescription.h"

namespace zortex
{
using namespace zortexture;

namespace
{
double ratioOf(const ConvertReport& report)
{
	return report.bytesAfter != 0 ? static_cast<double>(report.bytesBefore) / static_cast<double>(report.bytesAfter) : 0.0;
}

std::string upperCase(std::string text)
{
	for (char& c : text)
	{
		c = static_cast<char>(c - 'a' + 'A');
	}
	return text;
}

std::string measurementText(const Measurement& measurement)
{
	if (measurement.channels.empty())
	{
		return "PSNR not measurable";
	}
	const std::string channels = " (" + upperCase(measurement.channels) + ")";
	return measurement.error > 0.0 ? "PSNR " + fixedNumber(customaryPSNR(measurement.error), 2) + " dB" + channels
	                               : "PSNR identical" + channels;
}

/// A PSNR in dB, or null where it is infinite or there is none.
Json psnrJson(double error)
{
	return error > 0.0 ? Json(customaryPSNR(error)) : Json();
}

Json measurementJson(const Measurement& measurement)
{
	Json json;
	json["channels"] = measurement.channels;
	json["identical"] = !measurement.channels.empty() && measurement.error == 0.0;
	json["db"] = psnrJson(measurement.error);
	json["meanSquaredError"] = measurement.channels.empty() ? Json() : Json(measurement.error);
	Json perChannel = Json::object();
	for (std::size_t i = 0; i < measurement.channels.size(); ++i)
	{
		perChannel[std::string(1, measurement.channels[i])] = psnrJson(measurement.channelErrors[i]);
	}
	json["dbByChannel"] = perChannel;
	return json;
}

Json fileJson(const std::string& path, const CZORTextureHeader& header, unsigned long long fileBytes)
{
	Json json = {{"file", path}, {"fileBytes", fileBytes}};
	Json description = describeTexture(header);
	for (const char* key : {"levels", "metadata", "formatId", "flags", "orientation", "border"})
	{
		description.erase(key);
	}
	json.update(description);
	return json;
}
} // namespace

std::string reportText(const ConvertReport& report)
{
	std::string text = report.outputPath + ": " + summariseTexture(report.output) + "\n";
	text += "  size " + counted(report.outputFileBytes, "byte") + " (pixels " + std::to_string(report.bytesBefore) + " -> " +
	        std::to_string(report.bytesAfter) + ", ratio " + fixedNumber(ratioOf(report), 2) + ":1), " + fixedNumber(report.seconds, 2) +
	        " s";
	text += report.measurement ? ", " + measurementText(*report.measurement) + "\n" : "\n";
	for (const std::string& note : report.notes)
	{
		text += "  note: " + note + "\n";
	}
	return text;
}

std::string reportJson(const ConvertReport& report)
{
	Json json;
	json["input"] = fileJson(report.inputPath, report.input, report.inputFileBytes);
	json["output"] = fileJson(report.outputPath, report.output, report.outputFileBytes);
	json["quality"] = report.output.getPixelType().isCompressed() ? Json(report.quality) : Json();
	json["dither"] = report.dither;
	json["bytesBefore"] = report.bytesBefore;
	json["bytesAfter"] = report.bytesAfter;
	json["ratio"] = ratioOf(report);
	json["seconds"] = report.seconds;
	json["psnr"] = report.measurement ? measurementJson(*report.measurement) : Json();
	json["notes"] = report.notes;
	return jsonText(json);
}
} // namespace zortex
