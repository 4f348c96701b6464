#include "ASTCCodec.h"
#include "ZORTUtilities.h"

namespace zortexture
{
namespace
{
std::map<EZORTPixelFormat, std::array<unsigned char, 3>> makeBlockSizes()
{
	std::map<EZORTPixelFormat, std::array<unsigned char, 3>> sizes;
	for (unsigned int format = ePF_ASTC_4x4; format <= ePF_ASTC_6x6x6; ++format)
	{
		unsigned int x = 0;
		unsigned int y = 0;
		unsigned int z = 0;
		ZORTGetFormatMinDims(format, x, y, z);
		sizes[static_cast<EZORTPixelFormat>(format)] = {static_cast<unsigned char>(x), static_cast<unsigned char>(y),
		                                                static_cast<unsigned char>(z)};
	}
	return sizes;
}
} // namespace

const std::map<EZORTPixelFormat, std::array<unsigned char, 3>> astcBlockSizes = makeBlockSizes();

unsigned int getASTCBlockSizes(EZORTPixelFormat format)
{
	const auto entry = astcBlockSizes.find(format);
	if (entry == astcBlockSizes.end())
	{
		return 0x010101u;
	}
	const auto& [width, height, depth] = entry->second;
	return width | static_cast<unsigned int>(height) << 8 | static_cast<unsigned int>(depth) << 16;
}
} // namespace zortexture
