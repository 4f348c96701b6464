// Writes the documentation's tables from the code's own.
//
//   zort_doctables ROOT            writes README.md and Docs/format-names.md below ROOT anew
//   zort_doctables --check ROOT    changes nothing; exit code 1 when one of them is not what would be written

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "DocTables.h"

namespace
{
constexpr const char* kTableStart = "<!-- formats: written by the build target doc_tables, not by hand -->\n";
constexpr const char* kTableEnd = "<!-- end of formats -->";

std::optional<std::string> readFile(const std::filesystem::path& path)
{
	std::ifstream file(path, std::ios::binary);
	std::string content((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
	return file ? std::optional(content) : std::nullopt;
}

/// The front page with its table of formats made anew; nothing when the lines around the table are missing.
std::optional<std::string> withTable(std::string page)
{
	const std::size_t start = page.find(kTableStart);
	const std::size_t end = page.find(kTableEnd);
	if (start == std::string::npos || end == std::string::npos || end < start)
	{
		return std::nullopt;
	}
	const std::size_t first = start + std::string(kTableStart).size();
	return page.replace(first, end - first, doctables::formatFamiliesTable());
}

/// Writes a file, or compares it. Returns whether it is as it should be.
bool settle(const std::filesystem::path& path, const std::string& content, bool isCheck)
{
	if (readFile(path) == content)
	{
		return true;
	}
	if (isCheck)
	{
		std::fprintf(stderr, "%s does not agree with the code's tables; 'cmake --build BUILD --target doc_tables' writes it anew\n",
		             path.c_str());
		return false;
	}
	std::ofstream file(path, std::ios::binary);
	file << content << std::flush;
	if (!file)
	{
		std::fprintf(stderr, "%s cannot be written\n", path.c_str());
	}
	return static_cast<bool>(file);
}
} // namespace

int main(int argc, char** argv)
{
	const bool isCheck = argc == 3 && std::string(argv[1]) == "--check";
	if (argc != (isCheck ? 3 : 2))
	{
		std::fprintf(stderr, "usage: zort_doctables [--check] ROOT\n");
		return 2;
	}
	const std::filesystem::path root(argv[argc - 1]);
	const auto page = readFile(root / "README.md");
	const auto frontPage = page ? withTable(*page) : std::nullopt;
	if (!frontPage)
	{
		std::fprintf(stderr, "README.md has no place for the table of formats\n");
		return 1;
	}
	const bool isFrontPageRight = settle(root / "README.md", *frontPage, isCheck);
	const bool areNamesRight = settle(root / "Docs" / "format-names.md", doctables::formatNamesPage(), isCheck);
	return isFrontPageRight && areNamesRight ? 0 : 1;
}
