#include "FileList.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <unordered_map>

#include "../AtomicOutput.h"
#include "../Refusal.h"
#include "../TextureFile.h"
#include "Glob.h"

namespace zortex
{
namespace fs = std::filesystem;

namespace
{
/// A path without the steps that lead out of a folder: neither a root nor dots.
fs::path insidePath(const fs::path& path)
{
	fs::path inside;
	for (const fs::path& component : path.lexically_normal().relative_path())
	{
		if (component != ".." && component != ".")
		{
			inside /= component;
		}
	}
	return inside;
}

bool isBelow(const fs::path& path, const fs::path& folder)
{
	const fs::path relative = path.lexically_relative(folder);
	return !relative.empty() && *relative.begin() != "..";
}

class Collector
{
public:
	explicit Collector(const FileSources& sources) : m_sources(sources)
	{
		std::error_code error;
		m_outputFolder = fs::weakly_canonical(sources.outputFolder, error);
	}

	void addInput(const std::string& input)
	{
		std::error_code error;
		if (fs::is_directory(input, error))
		{
			addFolder(input);
		}
		else if (isPattern(input) && !fs::exists(fs::symlink_status(input, error)))
		{
			addPattern(input);
		}
		else
		{
			addFile(input);
		}
	}

	/// A single file, below the output folder as it was given.
	void addFile(const std::string& input)
	{
		fs::path relative(input);
		if (!m_sources.base.empty())
		{
			relative = relative.lexically_normal().lexically_relative(fs::path(m_sources.base).lexically_normal());
			if (relative.empty() || *relative.begin() == "..")
			{
				throw UsageError("--base: '" + input + "' is not below '" + m_sources.base + "'");
			}
		}
		else if (relative.is_absolute())
		{
			relative = relative.filename();
		}
		add(input, relative, true);
	}

	std::vector<BatchFile> files()
	{
		std::vector<BatchFile> files;
		files.reserve(m_files.size());
		std::unordered_map<std::string, std::string> makers;
		for (const auto& [input, relative] : m_files)
		{
			BatchFile file = {input, relative, ""};
			if (const auto problem = m_problems.find(input); problem != m_problems.end())
			{
				file.problem = problem->second;
				files.push_back(std::move(file));
				continue;
			}
			const auto [maker, isNew] = makers.try_emplace(relative, input);
			if (!isNew)
			{
				file.problem = "its output " + relative + " is made from " + maker->second + " already";
			}
			files.push_back(std::move(file));
		}
		return files;
	}

private:
	/// @param isNamed  the file itself was asked for; else it was found.
	void add(const std::string& input, const fs::path& relative, bool isNamed)
	{
		fs::path output = insidePath(relative);
		output.replace_extension(m_sources.extension);
		std::error_code error;
		if (fs::path(input).filename() == output.filename() && fs::equivalent(input, fs::path(m_sources.outputFolder) / output, error))
		{
			// The result of an earlier run, or a source that its result would replace.
			if (!isNamed)
			{
				return;
			}
			m_problems[input] = "its result would replace it";
		}
		m_files.try_emplace(input, output.string());
	}

	void addPattern(const std::string& pattern)
	{
		const std::vector<std::string> matches = expandPattern(pattern);
		if (matches.empty())
		{
			throw Refusal(pattern, "names no file");
		}
		const fs::path folder(fixedFolder(pattern));
		std::error_code error;
		const fs::path top = fs::weakly_canonical(folder.empty() ? fs::path(".") : folder, error);
		const bool isOutputBelow = m_outputFolder != top && isBelow(m_outputFolder, top);
		for (const std::string& match : matches)
		{
			// The results of an earlier run are no inputs.
			const bool isResult = isOutputBelow && isBelow(fs::weakly_canonical(match, error), m_outputFolder);
			if (!isResult && !isTemporaryName(fs::path(match).filename().string()))
			{
				add(match, folder.empty() ? fs::path(match) : fs::path(match).lexically_relative(folder), false);
			}
		}
	}

	void addFolder(const std::string& folder)
	{
		const std::size_t before = m_files.size();
		addFilesBelow(folder, folder);
		if (m_files.size() == before)
		{
			throw Refusal(folder, m_sources.isRecursive ? "holds no texture and no picture"
			                                            : "holds no texture and no picture itself (--recursive goes into its folders)");
		}
	}

	void addFilesBelow(const fs::path& top, const fs::path& folder)
	{
		std::error_code error;
		fs::directory_iterator entry(folder, error);
		if (error && folder == top)
		{
			throw Refusal(folder.string(), "cannot be read: " + error.message());
		}
		for (; !error && entry != fs::directory_iterator(); entry.increment(error))
		{
			const fs::path& path = entry->path();
			const std::string name = path.filename().string();
			std::error_code ignored;
			if (name[0] == '.' || isTemporaryName(name))
			{
				continue;
			}
			if (entry->symlink_status(ignored).type() == fs::file_type::directory)
			{
				// The results of an earlier run are no inputs.
				if (m_sources.isRecursive && fs::weakly_canonical(path, ignored) != m_outputFolder)
				{
					addFilesBelow(top, path);
				}
				continue;
			}
			const Container* container = containerOf(name);
			if (container != nullptr && container->reads && !fs::is_directory(path, ignored))
			{
				add(path.string(), path.lexically_relative(top), false);
			}
		}
		if (error)
		{
			m_problems[folder.string()] = "cannot be read: " + error.message();
			m_files.try_emplace(folder.string(), insidePath(folder.lexically_relative(top)).string());
		}
	}

	const FileSources& m_sources;
	fs::path m_outputFolder;
	/// Results by input; the order of the keys is that of the list.
	std::map<std::string, std::string> m_files;
	/// Why some of them cannot be converted.
	std::map<std::string, std::string> m_problems;
};
} // namespace

std::vector<std::string> readList(const std::string& path)
{
	std::ifstream file;
	if (path != "-")
	{
		std::error_code error;
		if (fs::is_directory(path, error))
		{
			throw Refusal(path, "is a directory");
		}
		file.open(path, std::ios::binary);
		if (!file)
		{
			throw Refusal(path, "cannot be opened");
		}
	}
	std::istream& stream = path == "-" ? std::cin : file;
	std::vector<std::string> paths;
	std::string line;
	while (std::getline(stream, line))
	{
		if (!line.empty() && line.back() == '\r')
		{
			line.pop_back();
		}
		if (!line.empty())
		{
			paths.push_back(line);
		}
	}
	if (stream.bad())
	{
		throw Refusal(path, "cannot be read");
	}
	return paths;
}

std::vector<BatchFile> collectFiles(const FileSources& sources)
{
	Collector collector(sources);
	for (const std::string& input : sources.inputs)
	{
		collector.addInput(input);
	}
	if (!sources.list.empty())
	{
		for (const std::string& path : readList(sources.list))
		{
			collector.addFile(path);
		}
	}
	return collector.files();
}

Shard parseShard(const std::string& text)
{
	Shard shard;
	const char* const end = text.data() + text.size();
	const auto [slash, firstError] = std::from_chars(text.data(), end, shard.index);
	bool isGood = firstError == std::errc() && slash != end && *slash == '/';
	if (isGood)
	{
		const auto [last, secondError] = std::from_chars(slash + 1, end, shard.count);
		isGood = secondError == std::errc() && last == end && shard.index >= 1 && shard.index <= shard.count;
	}
	if (!isGood)
	{
		throw UsageError("--shard: '" + text + "' is no share such as 1/3, 2/3 or 3/3");
	}
	return shard;
}

void cutToShard(std::vector<BatchFile>& files, const Shard& shard)
{
	std::vector<BatchFile> kept;
	for (std::size_t k = 0; k < files.size(); ++k)
	{
		if (k % shard.count + 1 == shard.index)
		{
			kept.push_back(std::move(files[k]));
		}
	}
	files = std::move(kept);
}
} // namespace zortex
