#include "Resampling.h"

namespace zortexture
{
bool isStandardPixelType(const PixelType& pixelType, const EZORTVariableType& channelType)
{
	switch (channelType)
	{
	case eVT_UnsignedByteNorm:
		return pixelType.id == ZORStandard8PixelType.id;
	case eVT_UnsignedShortNorm:
		return pixelType.id == ZORStandard16PixelType.id;
	case eVT_UnsignedIntegerNorm:
	case eVT_SignedFloat:
		return pixelType.id == ZORStandard32PixelType.id;
	default:
		return false;
	}
}
} // namespace zortexture
