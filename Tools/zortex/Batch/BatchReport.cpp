#include "BatchReport.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "../AtomicOutput.h"
#include "../Refusal.h"
#include "../Text.h"

namespace zortex
{
namespace fs = std::filesystem;

Json entryOf(const std::string& input, const std::string& output, const std::string& status, const std::string& error)
{
	Json entry = {{"input", input}, {"output", output}, {"status", status}};
	if (!error.empty())
	{
		entry["error"] = error;
	}
	return entry;
}

Json convertedEntry(const std::string& input, const std::string& output, const Json& report)
{
	Json entry = entryOf(input, output, kConverted, "");
	const Json& texture = report.at("output");
	for (const char* key : {"format", "colourSpace", "width", "height", "depth", "mipLevels", "surfaces", "faces"})
	{
		entry[key] = texture.at(key);
	}
	entry["bytes"] = texture.at("fileBytes");
	entry["quality"] = report.at("quality");
	entry["seconds"] = report.at("seconds");
	entry["psnr"] = report.at("psnr");
	entry["notes"] = report.at("notes");
	return entry;
}

double megapixelsOf(const Json& entry)
{
	double pixels = 1.0;
	for (const char* key : {"width", "height", "depth", "surfaces", "faces"})
	{
		pixels *= entry.at(key).get<double>();
	}
	return pixels / 1e6;
}

std::string logText(const Json& entry)
{
	std::string text = entry.at("input").get<std::string>() + " -> " + entry.at("output").get<std::string>() + ": " +
	                   entry.at("format").get<std::string>() + ", " + std::to_string(entry.at("width").get<unsigned int>()) + "x" +
	                   std::to_string(entry.at("height").get<unsigned int>());
	const Json& psnr = entry.at("psnr");
	if (psnr.is_object() && psnr.at("db").is_number())
	{
		text += ", PSNR " + fixedNumber(psnr.at("db").get<double>(), 2) + " dB";
	}
	return text + ", " + fixedNumber(entry.at("seconds").get<double>(), 2) + " s";
}

std::size_t countOf(const std::vector<Json>& entries, const std::string& status)
{
	return static_cast<std::size_t>(
	    std::count_if(entries.begin(), entries.end(), [&status](const Json& entry) { return entry.at("status") == status; }));
}

Json batchReport(const std::vector<std::string>& options, double seconds, const std::vector<Json>& entries)
{
	Json report = {{"program", "zortex " ZORTEXLIB_VERSION_STRING}, {"options", options}, {"seconds", seconds}};
	for (const char* status : {kConverted, kUpToDate, kFailed, kNotRun})
	{
		report["counts"][status] = countOf(entries, status);
	}
	report["files"] = entries;
	return report;
}

std::string countsText(const std::vector<Json>& entries)
{
	std::string text;
	for (const char* status : {kConverted, kUpToDate, kFailed, kNotRun})
	{
		if (const std::size_t count = countOf(entries, status); count > 0)
		{
			text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + status;
		}
	}
	return text.empty() ? "no files" : text;
}

void saveReport(const Json& report, const std::string& path)
{
	std::error_code error;
	if (const fs::path folder = fs::path(path).parent_path(); !folder.empty())
	{
		fs::create_directories(folder, error);
	}
	AtomicOutput output(path);
	std::ofstream file(output.path(), std::ios::binary);
	file << jsonText(report);
	file.close();
	if (!file)
	{
		throw Refusal(path, "cannot be written");
	}
	output.commit();
}
} // namespace zortex
