#include "FormatRows.h"

#include <algorithm>

namespace zortexture
{
unsigned int findConstant(std::span<const ForwardRow> table, unsigned long long pixelFormat, EZORTVariableType channelType,
                          EZORTColourSpace colourSpace)
{
	const bool isSignedType = isSigned(channelType);
	const auto row =
	    std::find_if(table.begin(), table.end(),
	                 [&](const ForwardRow& candidate)
	                 { return candidate.pixelFormat == pixelFormat && rowServes(candidate.channelType, channelType, isSignedType); });
	if (row == table.end())
	{
		return kNoConstant;
	}
	return colourSpace == eCS_sRGB && row->sRGB != kNoConstant ? row->sRGB : row->linear;
}

const ReverseRow* findException(std::span<const ReverseRow> exceptions, unsigned int constant)
{
	const auto row =
	    std::find_if(exceptions.begin(), exceptions.end(), [&](const ReverseRow& candidate) { return candidate.constant == constant; });
	return row == exceptions.end() ? nullptr : &*row;
}

std::optional<FormatDescription> findFormat(std::span<const ReverseRow> exceptions, std::span<const ForwardRow> table,
                                            unsigned int constant)
{
	if (constant == kNoConstant)
	{
		return std::nullopt;
	}
	if (const ReverseRow* exception = findException(exceptions, constant))
	{
		if (exception->pixelFormat == kNoFormat)
		{
			return std::nullopt;
		}
		return FormatDescription{exception->pixelFormat, exception->channelType, exception->colourSpace};
	}
	for (const ForwardRow& row : table)
	{
		if (row.linear == constant || row.sRGB == constant)
		{
			return FormatDescription{row.pixelFormat, reverseType(row.channelType), row.linear == constant ? eCS_lRGB : eCS_sRGB};
		}
	}
	return std::nullopt;
}
} // namespace zortexture
