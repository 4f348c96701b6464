/// @file BatchReport.h
/// What became of every file of a batch, for people and for programs.
#ifndef ZORTEX_BATCH_REPORT_H
#define ZORTEX_BATCH_REPORT_H

#include <string>
#include <vector>

#include "../TextureDescription.h"

namespace zortex
{
/// The states of a file.
inline constexpr const char* kConverted = "converted";
inline constexpr const char* kUpToDate = "up to date";
inline constexpr const char* kFailed = "failed";
inline constexpr const char* kNotRun = "not run";

/// The entry of a file that was converted, from the report of its conversion.
Json convertedEntry(const std::string& input, const std::string& output, const Json& report);

/// The entry of any other file; `error` may be empty.
Json entryOf(const std::string& input, const std::string& output, const std::string& status, const std::string& error);

/// Megapixels of all images of the top level of a converted file.
double megapixelsOf(const Json& entry);

/// One line about a converted file.
std::string logText(const Json& entry);

/// The report of a batch: options, counts by state, seconds, files.
Json batchReport(const std::vector<std::string>& options, double seconds, const std::vector<Json>& entries);

std::size_t countOf(const std::vector<Json>& entries, const std::string& status);

/// "3 converted, 1 up to date, 2 failed": the states that occur.
std::string countsText(const std::vector<Json>& entries);

/// Writes a report, whole or not at all. Throws a Refusal.
void saveReport(const Json& report, const std::string& path);
} // namespace zortex

#endif // ZORTEX_BATCH_REPORT_H
