#include "PixelType.h"
#include "ZORTUtilities.h"

namespace zortexture
{
namespace
{
constexpr unsigned char kChannelLetters[] = "rgbalix";
constexpr unsigned int kNumChannelLetters = sizeof(kChannelLetters) - 1;
} // namespace

EChannelName MapCharToEnum(unsigned char letter)
{
	for (unsigned int i = 0; i < kNumChannelLetters; ++i)
	{
		if (kChannelLetters[i] == letter)
		{
			return static_cast<EChannelName>(i + 1);
		}
	}
	return eCh_None;
}

unsigned char MapEnumToChar(EChannelName channel)
{
	return channel >= eCh_Red && channel <= eCh_Unused ? kChannelLetters[channel - 1] : static_cast<unsigned char>(0);
}

bool channel_type::isSigned(const EZORTVariableType& channelType)
{
	switch (channelType)
	{
	case eVT_SignedByteNorm:
	case eVT_SignedByte:
	case eVT_SignedShortNorm:
	case eVT_SignedShort:
	case eVT_SignedIntegerNorm:
	case eVT_SignedInteger:
	case eVT_SignedFloat:
		return true;
	default:
		return false;
	}
}
} // namespace zortexture
