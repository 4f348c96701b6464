#include "BatchCommand.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <thread>

#include "../AtomicOutput.h"
#include "../ConvertReport.h"
#include "../Refusal.h"
#include "../Text.h"
#include "../TextureFile.h"
#include "BatchProgress.h"
#include "BatchReport.h"
#include "UpdateRecord.h"
#include "WorkerPool.h"

namespace zortex
{
namespace fs = std::filesystem;

namespace
{
/// How often the line of progress is renewed.
constexpr int kRefreshMilliseconds = 250;

/// Files at most that are looked at between two looks at signals.
constexpr int kFilesPerTurn = 64;

/// A folder for what workers put into the system's temporary folder, so that nothing of a killed one stays there.
class ScratchFolder
{
public:
	ScratchFolder()
	{
		std::error_code error;
		std::string path = (fs::temp_directory_path(error) / "zortex-XXXXXX").string();
		if (!error && mkdtemp(path.data()) != nullptr)
		{
			m_path = path;
			setenv("TMPDIR", path.c_str(), 1);
		}
	}
	ScratchFolder(const ScratchFolder&) = delete;
	ScratchFolder& operator=(const ScratchFolder&) = delete;
	~ScratchFolder()
	{
		std::error_code error;
		if (!m_path.empty())
		{
			fs::remove_all(m_path, error);
		}
	}

private:
	std::string m_path;
};

/// The first line of a text that is not empty.
std::string firstLine(const std::string& text)
{
	const std::size_t start = text.find_first_not_of("\r\n");
	return start == std::string::npos ? "" : text.substr(start, text.find_first_of("\r\n", start) - start);
}

/// Converts one file, in a worker. Returns the conversion's report as JSON, or an object with its error.
std::string convertInWorker(const ConvertOptions& options)
{
	std::string error;
	try
	{
		std::error_code problem;
		const fs::path folder = fs::path(options.output).parent_path();
		fs::create_directories(folder, problem);
		if (problem)
		{
			throw Refusal(options.output, "its folder cannot be made: " + problem.message());
		}
		return reportJson(convertFile(options));
	}
	catch (const std::bad_alloc&)
	{
		error = options.input + ": not enough memory";
	}
	catch (const std::exception& exception)
	{
		error = exception.what();
	}
	// Errors of the file are told with its name in front, those of the options without.
	if (error.find(options.input) == std::string::npos && error.find(options.output) == std::string::npos)
	{
		error = options.input + ": " + error;
	}
	return jsonText(Json{{"error", error}});
}

class Batch
{
public:
	explicit Batch(const BatchOptions& options)
	    : m_options(options), m_files(collectFiles(options.sources)), m_shard(options.shard.empty() ? Shard() : parseShard(options.shard))
	{
		cutToShard(m_files, m_shard);
		unsigned long long bytes = 0;
		for (const BatchFile& file : m_files)
		{
			m_entries.push_back(entryOf(file.input, outputOf(file), kNotRun, ""));
			m_bytes.push_back(sizeOfFile(file.input));
			bytes += m_bytes.back();
		}
		m_progress.emplace(m_files.size(), bytes, options.convert.isQuiet);
	}

	/// Returns the signal that ended it; 0 for none.
	int run()
	{
		const int signal = convertAll();
		m_progress->clearLine();
		return signal;
	}

	const std::vector<Json>& entries() const
	{
		return m_entries;
	}

	const BatchProgress& progress() const
	{
		return *m_progress;
	}

private:
	int convertAll()
	{
		const SignalWatch signals;
		const unsigned int cores = std::max(std::thread::hardware_concurrency(), 1u);
		WorkerPool pool(m_options.jobs != 0 ? m_options.jobs : cores, signals);
		std::size_t next = 0;
		while (signals.received() == 0)
		{
			bool hasRoom = true;
			for (int i = 0; i < kFilesPerTurn && hasRoom && !pool.isFull() && next < m_files.size() && !isStopped(); ++i)
			{
				hasRoom = startFile(pool, next);
				next += hasRoom ? 1 : 0;
			}
			const std::vector<WorkerPool::Outcome> outcomes = pool.collect();
			for (const WorkerPool::Outcome& outcome : outcomes)
			{
				finishFile(outcome);
			}
			if (pool.isEmpty() && (next == m_files.size() || isStopped()))
			{
				return 0;
			}
			m_progress->refresh();
			// Signals arrive in here alone; files that are up to date leave room for more at once.
			const bool canGoOn = !outcomes.empty() || (hasRoom && !pool.isFull() && next < m_files.size() && !isStopped());
			signals.wait(canGoOn ? 0 : kRefreshMilliseconds);
		}
		for (const WorkerPool::Stopped& stopped : pool.stop())
		{
			removeTemporaryOf(outputOf(m_files[stopped.index]), stopped.process);
		}
		return signals.received();
	}

	std::string outputOf(const BatchFile& file) const
	{
		return (fs::path(m_options.sources.outputFolder) / file.relativeOutput).string();
	}

	bool isStopped() const
	{
		return m_hasFailed && !m_options.isKeepGoing;
	}

	UpdateRecord recordOf(const BatchFile& file) const
	{
		std::vector<std::string> inputs = {file.input};
		inputs.insert(inputs.end(), m_options.convert.sideFiles.begin(), m_options.convert.sideFiles.end());
		return UpdateRecord(m_options.sources.outputFolder, file.relativeOutput, m_options.convert.words, inputs);
	}

	/// Returns false when there is no room for another worker at the moment.
	bool startFile(WorkerPool& pool, std::size_t index)
	{
		const BatchFile& file = m_files[index];
		if (!file.problem.empty())
		{
			fail(index, file.input + ": " + file.problem);
			return true;
		}
		const UpdateRecord record = recordOf(file);
		if (m_options.isUpdate && record.isCurrent())
		{
			m_entries[index] = entryOf(file.input, outputOf(file), kUpToDate, "");
			m_progress->addFile(m_bytes[index], 0.0);
			m_progress->log(file.input + " is up to date");
			return true;
		}
		ConvertOptions convert = m_options.convert;
		convert.input = file.input;
		convert.output = outputOf(file);
		convert.isQuiet = true;
		const bool isRecorded = m_options.isUpdate;
		const std::string problem = pool.start(index,
		                                       [convert, record, isRecorded]()
		                                       {
			                                       record.forget();
			                                       std::string report = convertInWorker(convert);
			                                       if (isRecorded && !Json::parse(report).contains("error"))
			                                       {
				                                       record.store();
			                                       }
			                                       return report;
		                                       });
		if (problem.empty())
		{
			return true;
		}
		if (!pool.isEmpty())
		{
			return false;
		}
		fail(index, file.input + ": " + problem);
		return true;
	}

	void finishFile(const WorkerPool::Outcome& outcome)
	{
		const BatchFile& file = m_files[outcome.index];
		const Json report = Json::parse(outcome.text, nullptr, false);
		if (!outcome.death.empty() || !report.is_object())
		{
			removeTemporaryOf(outputOf(file), outcome.process);
			const std::string message = firstLine(outcome.messages);
			fail(outcome.index, file.input + ": " + (outcome.death.empty() ? "its worker told nothing" : outcome.death) +
			                        (message.empty() ? "" : " (" + message + ")"));
			return;
		}
		if (report.contains("error"))
		{
			fail(outcome.index, report.at("error").get<std::string>());
			return;
		}
		Json& entry = m_entries[outcome.index];
		entry = convertedEntry(file.input, outputOf(file), report);
		m_progress->addFile(m_bytes[outcome.index], megapixelsOf(entry));
		m_progress->log(logText(entry));
	}

	void fail(std::size_t index, const std::string& error)
	{
		m_hasFailed = true;
		m_entries[index] = entryOf(m_files[index].input, outputOf(m_files[index]), kFailed, error);
		m_progress->addFile(m_bytes[index], 0.0);
		m_progress->complain(error);
	}

	const BatchOptions& m_options;
	std::vector<BatchFile> m_files;
	Shard m_shard;
	/// The files' entries in the report, and bytes, in their order.
	std::vector<Json> m_entries;
	std::vector<unsigned long long> m_bytes;
	std::optional<BatchProgress> m_progress;
	bool m_hasFailed = false;
};
} // namespace

void runBatch(const BatchOptions& options)
{
	checkConvertOptions(options.convert, options.sources.extension);
	removeStaleTemporaries(options.sources.outputFolder);
	Batch batch(options);
	std::optional<ScratchFolder> scratch(std::in_place);
	const int signal = batch.run();
	scratch.reset();

	const std::vector<Json>& entries = batch.entries();
	const double seconds = batch.progress().seconds();
	const Json report = batchReport(options.convert.words, seconds, entries);
	std::string reportProblem;
	if (!options.report.empty())
	{
		try
		{
			saveReport(report, options.report);
		}
		catch (const Refusal& refusal)
		{
			reportProblem = refusal.what();
			std::cerr << "zortex: " << reportProblem << "\n";
		}
	}
	if (options.convert.isJson)
	{
		std::cout << jsonText(report);
	}
	const std::string counts = countsText(entries) + " of " + std::to_string(entries.size());
	if (signal != 0)
	{
		std::cerr << "zortex: interrupted: " << counts << "\n";
		throw Interrupted{signal};
	}
	if (countOf(entries, kFailed) + countOf(entries, kNotRun) > 0 || !reportProblem.empty())
	{
		throw Refusal(options.sources.outputFolder, counts);
	}
	if (!options.convert.isQuiet)
	{
		const double rate = seconds > 0.0 ? batch.progress().megapixels() / seconds : 0.0;
		std::cerr << "zortex: " << options.sources.outputFolder << ": " << counts << ", in " << clockTime(seconds) << " ("
		          << fixedNumber(rate, 2) << " MP/s)\n";
	}
}
} // namespace zortex
