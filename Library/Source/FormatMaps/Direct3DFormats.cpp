#include <algorithm>

#include "Direct3DFormatTable.h"
#include "FormatMaps.h"

namespace zortexture
{
bool getDirect3DFormat(const unsigned long long& pixelFormat, const EZORTVariableType& channelType, const EZORTColourSpace& colourSpace,
                       unsigned int& d3dFormat)
{
	d3dFormat = findConstant(kDirect3DFormats, pixelFormat, channelType, colourSpace);
	return d3dFormat != kNoConstant;
}

bool getZorvexFormatD3D(unsigned long long& pixelFormat, EZORTVariableType& channelType, EZORTColourSpace& colourSpace, bool& preMultiplied,
                        const unsigned int& d3dFormat)
{
	const auto* row = std::find_if(std::begin(kDirect3DReverse), std::end(kDirect3DReverse),
	                               [&](const Direct3DReverseRow& candidate) { return candidate.constant == d3dFormat; });
	if (row == std::end(kDirect3DReverse))
	{
		return false;
	}
	pixelFormat = row->pixelFormat;
	channelType = row->channelType;
	colourSpace = eCS_lRGB;
	preMultiplied = row->preMultiplied;
	return true;
}
} // namespace zortexture
