#include "Glob.h"

#include <algorithm>
#include <filesystem>

namespace zortex
{
namespace fs = std::filesystem;

namespace
{
std::vector<std::string> componentsOf(const std::string& path)
{
	std::vector<std::string> components;
	std::size_t start = 0;
	while (start < path.size())
	{
		const std::size_t end = std::min(path.find('/', start), path.size());
		if (end > start)
		{
			components.push_back(path.substr(start, end - start));
		}
		start = end + 1;
	}
	return components;
}

std::string joined(const std::string& folder, const std::string& name)
{
	return folder.empty() || folder.back() == '/' ? folder + name : folder + "/" + name;
}

bool isContinuationByte(char c)
{
	return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

class Expansion
{
public:
	explicit Expansion(std::vector<std::string> components) : m_components(std::move(components))
	{
	}

	/// Adds the files below a folder that match the components from one on.
	void addFrom(const std::string& folder, std::size_t component)
	{
		const std::string& pattern = m_components[component];
		const bool isLast = component + 1 == m_components.size();
		const bool isAnyDepth = pattern == "**";
		if (isAnyDepth && !isLast)
		{
			addFrom(folder, component + 1);
		}
		if (!isAnyDepth && !isPattern(pattern))
		{
			addEntry(joined(folder, pattern), component);
			return;
		}
		std::error_code error;
		for (fs::directory_iterator entry(folder.empty() ? "." : folder, fs::directory_options::skip_permission_denied, error), end;
		     !error && entry != end; entry.increment(error))
		{
			const std::string name = entry->path().filename().string();
			if (!matchesComponent(isAnyDepth ? "*" : pattern, name))
			{
				continue;
			}
			if (!isAnyDepth)
			{
				addEntry(joined(folder, name), component);
			}
			else if (isFolder(entry->path()))
			{
				addFrom(joined(folder, name), component);
			}
			else if (isLast)
			{
				m_files.push_back(joined(folder, name));
			}
		}
	}

	std::vector<std::string> sortedFiles()
	{
		std::sort(m_files.begin(), m_files.end());
		m_files.erase(std::unique(m_files.begin(), m_files.end()), m_files.end());
		return m_files;
	}

private:
	static bool isFolder(const fs::path& path)
	{
		std::error_code error;
		return fs::symlink_status(path, error).type() == fs::file_type::directory;
	}

	/// What matched a component: a file when it is the last one, else a folder to go on in.
	void addEntry(const std::string& path, std::size_t component)
	{
		std::error_code error;
		if (component + 1 < m_components.size())
		{
			if (fs::is_directory(path, error))
			{
				addFrom(path, component + 1);
			}
		}
		else if (fs::exists(fs::symlink_status(path, error)) && !fs::is_directory(path, error))
		{
			m_files.push_back(path);
		}
	}

	std::vector<std::string> m_components;
	std::vector<std::string> m_files;
};
} // namespace

bool isPattern(std::string_view text)
{
	return text.find_first_of("*?") != std::string_view::npos;
}

bool matchesComponent(std::string_view pattern, std::string_view name)
{
	if (!name.empty() && name[0] == '.' && (pattern.empty() || pattern[0] != '.'))
	{
		return false;
	}
	// Where to go on after the last '*' when a match fails: one more byte goes to it.
	std::size_t star = std::string_view::npos;
	std::size_t starName = 0;
	std::size_t p = 0;
	std::size_t n = 0;
	while (n < name.size())
	{
		if (p < pattern.size() && pattern[p] == '*')
		{
			star = p++;
			starName = n;
		}
		else if (p < pattern.size() && pattern[p] == '?')
		{
			++p;
			++n;
			while (n < name.size() && isContinuationByte(name[n]))
			{
				++n;
			}
		}
		else if (p < pattern.size() && pattern[p] == name[n])
		{
			++p;
			++n;
		}
		else if (star != std::string_view::npos)
		{
			p = star + 1;
			n = ++starName;
		}
		else
		{
			return false;
		}
	}
	return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

std::string fixedFolder(const std::string& pattern)
{
	const std::size_t wildcard = pattern.find_first_of("*?");
	const std::size_t slash = wildcard == std::string::npos ? std::string::npos : pattern.rfind('/', wildcard);
	if (slash == std::string::npos)
	{
		return "";
	}
	return slash == 0 ? "/" : pattern.substr(0, slash);
}

std::vector<std::string> expandPattern(const std::string& pattern)
{
	const std::string folder = fixedFolder(pattern);
	std::vector<std::string> components = componentsOf(pattern.substr(folder.size()));
	if (components.empty())
	{
		return {};
	}
	Expansion expansion(std::move(components));
	expansion.addFrom(folder, 0);
	return expansion.sortedFiles();
}
} // namespace zortex
