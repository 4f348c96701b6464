#include "Transcode.h"

namespace zortexture
{
void IntermediateTranscodeFormat(const PixelType& format, const EZORTVariableType& channelType, PixelType& intermediate,
                                 EZORTVariableType& intermediateChannelType)
{
	// The arguments may be one and the same object.
	const EZORTVariableType shortType = isSigned(channelType) ? eVT_SignedShortNorm : eVT_UnsignedShortNorm;
	switch (format.id)
	{
	case ePF_ETC1:
	case ePF_ETC2_RGB:
		intermediate = PixelType('r', 'g', 'b', 0, 8, 8, 8, 0);
		intermediateChannelType = eVT_UnsignedByteNorm;
		break;
	case ePF_R9G9B9E5:
		intermediate = PixelType('r', 'g', 'b', 0, 32, 32, 32, 0);
		intermediateChannelType = eVT_SignedFloat;
		break;
	case ePF_EAC_R11:
		intermediate = PixelType('r', 0, 0, 0, 16, 0, 0, 0);
		intermediateChannelType = shortType;
		break;
	case ePF_EAC_RG11:
		intermediate = PixelType('r', 'g', 0, 0, 16, 16, 0, 0);
		intermediateChannelType = shortType;
		break;
	default:
		intermediate = ZORStandard8PixelType;
		intermediateChannelType = eVT_UnsignedByteNorm;
		break;
	}
}
} // namespace zortexture
