#include "FormatMaps.h"
#include "VulkanFormatTable.h"

namespace zortexture
{
bool getVulkanFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType, const EZORTColourSpace& colourSpace,
                     unsigned int& vulkanFormat)
{
	vulkanFormat = findConstant(kVulkanFormats, pixelFormat, channelType, colourSpace);
	return vulkanFormat != kNoConstant;
}

bool getZorvexFormatVulkan(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace,
                           const unsigned int& vulkanFormat)
{
	const auto found = findFormat(kVulkanReverseExceptions, kVulkanFormats, vulkanFormat);
	if (found)
	{
		found->store(pixelFormat, channelType, colourSpace);
	}
	return found.has_value();
}
} // namespace zortexture
