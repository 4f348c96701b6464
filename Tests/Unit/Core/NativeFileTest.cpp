#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ZORTexture.h"

using namespace zortexture;

namespace
{
using Bytes = std::vector<unsigned char>;

TEST(NativeFile, KeepsATextureThroughSaveAndLoad)
{
	const std::string path = (std::filesystem::temp_directory_path() / "zort_core_smoke.zor").string();
	CZORTexture texture(CZORTextureHeader(0x0808080861626772ull, 2, 3, 1, 2));
	auto* const pixels = static_cast<unsigned char*>(texture.getDataPtr(0, 0, 0));
	const unsigned int size = texture.getDataSize();
	ASSERT_EQ(size, 28u);
	for (unsigned int i = 0; i < size; ++i)
	{
		pixels[i] = static_cast<unsigned char>(7 * i + 1);
	}
	texture.setBorder(1, 2, 3);
	ASSERT_TRUE(texture.saveFile(path));
	const CZORTexture loaded(path.c_str());
	std::filesystem::remove(path);
	ASSERT_TRUE(loaded.isDataComplete());
	EXPECT_EQ(loaded.getWidth(), 3u);
	EXPECT_EQ(loaded.getMetaDataSize(), 24u);
	EXPECT_EQ(std::memcmp(loaded.getDataPtr(0, 0, 0), pixels, size), 0);
}
} // namespace
