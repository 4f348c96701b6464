// A stream of any bytes, loaded, read through, and written and loaded again.

#include <cstdint>
#include <new>
#include <sstream>

#include "MemoryLimit.h"
#include "UseTexture.h"

using namespace zortexture;

namespace
{
volatile unsigned int g_sink;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
	const CMemoryLimit limit;
	try
	{
		std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
		const CZORTexture texture = CZORTexture::ZORT_FUZZ_LOADER(stream);
		g_sink = readAll(texture);
		if (texture.getDataSize() < 65536)
		{
			std::stringstream again;
			texture.ZORT_FUZZ_WRITER(again);
			g_sink = readAll(CZORTexture::ZORT_FUZZ_LOADER(again));
		}
	}
	catch (const std::ios_base::failure&)
	{
	}
	catch (const std::bad_alloc&)
	{
	}
	return 0;
}
