// Runs a fuzz target over the files of a corpus, for builds without libFuzzer.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
	if (argc != 2 || !std::filesystem::is_directory(argv[1]))
	{
		std::fprintf(stderr, "usage: %s CORPUS_FOLDER\n", argv[0]);
		return 2;
	}
	unsigned int count = 0;
	for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
	{
		std::ifstream file(entry.path(), std::ios::binary);
		const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
		LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
		++count;
	}
	std::printf("%u files replayed\n", count);
	return count == 0 ? 1 : 0;
}
