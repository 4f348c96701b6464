// A file of any bytes, loaded by its extension, read through and saved again in every container.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <unistd.h>

#include "MemoryLimit.h"
#include "UseTexture.h"

using namespace zortexture;

namespace
{
volatile unsigned int g_sink;

/// A path of this process in the temporary folder.
std::string scratchPath(const char* extension)
{
	static const std::string base = (std::filesystem::temp_directory_path() / ("zort_fuzz_" + std::to_string(getpid()))).string();
	return base + extension;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
	const std::string path = scratchPath(ZORT_FUZZ_EXTENSION);
	std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
	const CMemoryLimit limit;
	try
	{
		const CZORTexture texture(path.c_str());
		g_sink = readAll(texture);
		// Small ones only: what is written is as large as the header says.
		if (texture.getDataSize() < 65536 && texture.getMetaDataSize() < 65536)
		{
			for (const char* extension : {".out.zor", ".out.ktx", ".out.dds", ".out.h"})
			{
				texture.saveFile(scratchPath(extension));
				std::remove(scratchPath(extension).c_str());
			}
			texture.saveASTCFile(scratchPath(".out.astc"));
			std::remove(scratchPath(".out.astc").c_str());
			for (unsigned int api = eLegacyApi_GL1; api <= eLegacyApi_OpenVG; ++api)
			{
				texture.saveFileLegacyZOR(scratchPath(".out.old"), static_cast<ELegacyApi>(api));
			}
			std::remove(scratchPath(".out.old").c_str());
		}
	}
	catch (const std::bad_alloc&)
	{
	}
	std::remove(path.c_str());
	return 0;
}
