#include "UpdateRecord.h"

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "../AtomicOutput.h"
#include "../TextureFile.h"

namespace zortex
{
namespace fs = std::filesystem;

namespace
{
Json fileState(const std::string& path)
{
	struct stat state = {};
	if (stat(path.c_str(), &state) != 0)
	{
		return {{"file", path}, {"bytes", nullptr}};
	}
	return {{"file", path},
	        {"bytes", static_cast<unsigned long long>(state.st_size)},
	        {"seconds", static_cast<long long>(state.st_mtim.tv_sec)},
	        {"nanoseconds", static_cast<long long>(state.st_mtim.tv_nsec)}};
}
} // namespace

UpdateRecord::UpdateRecord(const std::string& outputFolder, const std::string& relativeOutput, const std::vector<std::string>& options,
                           const std::vector<std::string>& inputs)
    : m_output((fs::path(outputFolder) / relativeOutput).string()),
      m_path((fs::path(outputFolder) / kRecordFolder / "made" / (relativeOutput + ".json")).string())
{
	m_made = {{"program", ZORTEXLIB_VERSION_STRING}, {"options", options}};
	for (const std::string& input : inputs)
	{
		m_made["inputs"].push_back(fileState(input));
	}
}

Json UpdateRecord::describe() const
{
	Json record = m_made;
	record["output"] = fileState(m_output);
	return record;
}

bool UpdateRecord::isCurrent() const
{
	std::ifstream file(m_path, std::ios::binary);
	std::error_code error;
	if (!file || !fs::is_regular_file(m_output, error))
	{
		return false;
	}
	const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
	return text == jsonText(describe());
}

void UpdateRecord::store() const
{
	try
	{
		fs::create_directories(fs::path(m_path).parent_path());
		AtomicOutput output(m_path);
		std::ofstream file(output.path(), std::ios::binary);
		file << jsonText(describe());
		file.close();
		if (file)
		{
			output.commit();
		}
	}
	catch (const std::exception&)
	{
		forget();
	}
}

void UpdateRecord::forget() const
{
	std::error_code error;
	fs::remove(m_path, error);
}
} // namespace zortex
