#include "CollectCommand.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>

#include "../AtomicOutput.h"
#include "../Refusal.h"
#include "BatchReport.h"
#include "FileList.h"
#include "Glob.h"

namespace zortex
{
namespace fs = std::filesystem;

namespace
{
std::vector<std::string> reportFiles(const std::vector<std::string>& inputs)
{
	std::vector<std::string> files;
	for (const std::string& input : inputs)
	{
		std::error_code error;
		const bool isFolder = fs::is_directory(input, error);
		if (!isFolder && !isPattern(input))
		{
			files.push_back(input);
			continue;
		}
		std::vector<std::string> found = expandPattern(isFolder ? input + "/*.json" : input);
		std::erase_if(found, [](const std::string& path) { return isTemporaryName(fs::path(path).filename().string()); });
		// In the order in which they were written: a repeated share corrects an earlier one.
		std::stable_sort(found.begin(), found.end(),
		                 [](const std::string& a, const std::string& b)
		                 {
			                 std::error_code ignored;
			                 return fs::last_write_time(a, ignored) < fs::last_write_time(b, ignored);
		                 });
		files.insert(files.end(), found.begin(), found.end());
	}
	return files;
}

/// Whether an entry says something of a file that an earlier one must give way to: a file that was not run says nothing.
bool isNews(const Json& entry)
{
	return entry.at("status") != kNotRun;
}

void addReport(const std::string& path, std::map<std::string, Json>& entries, Json& merged)
{
	std::ifstream file(path, std::ios::binary);
	if (!file)
	{
		throw Refusal(path, "cannot be opened");
	}
	const Json report = Json::parse(file, nullptr, false);
	try
	{
		for (const Json& entry : report.at("files"))
		{
			const std::string input = entry.at("input").get<std::string>();
			entry.at("status").get<std::string>();
			if (isNews(entry) || entries.count(input) == 0)
			{
				entries[input] = entry;
			}
		}
		merged["options"] = report.at("options");
		merged["seconds"] = merged.value("seconds", 0.0) + report.at("seconds").get<double>();
	}
	catch (const Json::exception&)
	{
		throw Refusal(path, "is no report of a batch");
	}
}

void saveFailedList(const std::vector<std::string>& inputs, const std::string& path)
{
	AtomicOutput output(path);
	std::ofstream file(output.path(), std::ios::binary);
	for (const std::string& input : inputs)
	{
		file << input << "\n";
	}
	file.close();
	if (!file)
	{
		throw Refusal(path, "cannot be written");
	}
	output.commit();
}
} // namespace

void runCollect(const CollectOptions& options)
{
	std::map<std::string, Json> byInput;
	Json merged;
	for (const std::string& path : reportFiles(options.reports))
	{
		addReport(path, byInput, merged);
	}
	if (!options.list.empty())
	{
		for (const std::string& input : readList(options.list))
		{
			byInput.try_emplace(input, entryOf(input, "", kNotRun, input + ": no report tells of it"));
		}
	}

	std::vector<Json> entries;
	std::vector<std::string> unfinished;
	for (const auto& [input, entry] : byInput)
	{
		entries.push_back(entry);
		if (entry.at("status") == kFailed || entry.at("status") == kNotRun)
		{
			unfinished.push_back(input);
			std::cerr << "zortex: " << entry.value("error", input + ": not run") << "\n";
		}
	}
	const Json report = batchReport(merged.value("options", std::vector<std::string>()), merged.value("seconds", 0.0), entries);
	if (!options.output.empty())
	{
		saveReport(report, options.output);
	}
	if (!options.failed.empty())
	{
		saveFailedList(unfinished, options.failed);
	}
	std::cout << (options.isJson ? jsonText(report) : countsText(entries) + " of " + std::to_string(entries.size()) + "\n");
	if (!unfinished.empty())
	{
		throw Refusal("collect", std::to_string(unfinished.size()) + " of " + std::to_string(entries.size()) + " files are not converted");
	}
}
} // namespace zortex
