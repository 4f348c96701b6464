#include "HelperPrograms.h"

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace zortex
{
using namespace zortexture;
namespace fs = std::filesystem;

namespace
{
/// From the folder of this program: where they are installed, and where they are built.
constexpr const char* kHelperFolders[] = {ZORTEX_HELPER_PATH, "../astcenc"};

/// Where programs are looked for without a search path.
constexpr const char* kDefaultPath = "/bin:/usr/bin";

bool isASTC(PixelType format)
{
	return format.isCompressed() && getCodecType(static_cast<EZORTPixelFormat>(format.id)) == eCodecASTC;
}
} // namespace

void putHelpersOnPath()
{
	std::error_code error;
	const fs::path program = fs::read_symlink("/proc/self/exe", error);
	if (error)
	{
		return;
	}
	for (const char* relative : kHelperFolders)
	{
		const fs::path folder = (program.parent_path() / relative).lexically_normal();
		if (access((folder / "astcenc").c_str(), X_OK) == 0)
		{
			const char* const path = std::getenv("PATH");
			setenv("PATH", (folder.string() + ":" + (path != nullptr ? path : kDefaultPath)).c_str(), 1);
			return;
		}
	}
}

std::string helperProblem(PixelType source, PixelType target)
{
	if (!isASTC(source) && !isASTC(target))
	{
		return {};
	}
	return isASTCEncAvailable()
	           ? ": the program astcenc, which does it, failed; it may be another program than the one that comes with zortex"
	           : ": the program astcenc, which does it, is not on the search path";
}
} // namespace zortex
