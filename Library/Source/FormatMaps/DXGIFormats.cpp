#include "DXGIFormatTable.h"
#include "FormatMaps.h"

namespace zortexture
{
bool getDirectXGIFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType, const EZORTColourSpace& colourSpace,
                        unsigned int& dxgiFormat)
{
	dxgiFormat = findConstant(kDXGIFormats, pixelFormat, channelType, colourSpace);
	return dxgiFormat != kNoConstant;
}

bool getZorvexFormatDXGI(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace,
                         const unsigned int& dxgiFormat)
{
	const auto found = findFormat(kDXGIReverseExceptions, kDXGIFormats, dxgiFormat);
	if (found)
	{
		found->store(pixelFormat, channelType, colourSpace);
	}
	return found.has_value();
}
} // namespace zortexture
