#include "FormatNames.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "FormatCapabilities.h"
#include "Layouts.h"
#include "Text.h"

namespace zortex
{
using namespace zortexture;

static_assert(std::size(kChannelTypeNames) == eVT_NumVarTypes, "every channel type has a name");

namespace
{
/// A decimal number of 1 to 255; 0 for anything else.
unsigned char parseWidth(std::string_view text)
{
	unsigned char width = 0;
	const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), width);
	return error == std::errc() && end == text.data() + text.size() ? width : static_cast<unsigned char>(0);
}

/// Splits the digits into one number of `digits` characters for each channel.
std::vector<unsigned char> splitWidths(std::string_view text, std::size_t digits)
{
	std::vector<unsigned char> widths;
	for (std::size_t i = 0; i + digits <= text.size(); i += digits)
	{
		widths.push_back(parseWidth(text.substr(i, digits)));
	}
	return widths;
}

std::vector<unsigned char> splitDotted(std::string_view text)
{
	std::vector<unsigned char> widths;
	std::size_t start = 0;
	for (std::size_t dot = text.find('.'); dot != std::string_view::npos; dot = text.find('.', start))
	{
		widths.push_back(parseWidth(text.substr(start, dot - start)));
		start = dot + 1;
	}
	widths.push_back(parseWidth(text.substr(start)));
	return widths;
}

bool areUsable(const std::vector<unsigned char>& widths)
{
	unsigned int sum = 0;
	for (const unsigned char width : widths)
	{
		if (width == 0 || width > 32)
		{
			return false;
		}
		sum += width;
	}
	return sum % 8 == 0;
}

/// The widths of `count` channels. Digits such as "16" for two channels read as one number for both, since 1 and 6 bits
/// make no whole bytes.
std::vector<unsigned char> parseWidths(std::string_view text, std::size_t count)
{
	if (text.find('.') != std::string_view::npos)
	{
		return splitDotted(text);
	}
	std::vector<unsigned char> all(count, parseWidth(text));
	if (text.size() == count)
	{
		std::vector<unsigned char> single = splitWidths(text, 1);
		return areUsable(all) && !areUsable(single) ? all : single;
	}
	if (text.size() == 2 * count)
	{
		return splitWidths(text, 2);
	}
	return all;
}

bool isSmallFloatLayout(PixelType layout)
{
	unsigned int tens = 0;
	unsigned int elevens = 0;
	for (unsigned int i = 0; i < 4; ++i)
	{
		tens += layout.channelBits[i] == 10 ? 1 : 0;
		elevens += layout.channelBits[i] == 11 ? 1 : 0;
	}
	return channelCount(layout) == 3 && tens == 1 && elevens == 2;
}
} // namespace

std::optional<NamedFormat> parseFormat(std::string_view name)
{
	const std::string lower = lowerCase(name);
	if (const CompressedFormat* row = findCompressedFormat(std::string_view(lower)))
	{
		return NamedFormat{PixelType(row->id), defaultChannelType(PixelType(row->id)), false};
	}

	const std::size_t letters = lower.find_first_not_of("rgbalix");
	if (letters == std::string::npos || letters < 1 || letters > 4)
	{
		return std::nullopt;
	}
	const bool isFloat = lower.back() == 'f';
	const std::string_view digits = std::string_view(lower).substr(letters, lower.size() - letters - (isFloat ? 1 : 0));
	const std::vector<unsigned char> widths = parseWidths(digits, letters);
	if (widths.size() != letters || std::find(widths.begin(), widths.end(), 0) != widths.end())
	{
		return std::nullopt;
	}

	NamedFormat format;
	for (unsigned int i = 0; i < letters; ++i)
	{
		format.pixelType.channelName[i] = static_cast<unsigned char>(lower[i]);
		format.pixelType.channelBits[i] = widths[i];
	}
	format.type = defaultChannelType(format.pixelType);
	if (isFloat)
	{
		format.type = isSmallFloatLayout(format.pixelType) ? eVT_UnsignedFloat : eVT_SignedFloat;
		format.isTypeFixed = true;
	}
	return format;
}

std::string formatName(PixelType pixelType, EZORTVariableType type)
{
	if (const CompressedFormat* row = findCompressedFormat(pixelType))
	{
		return std::string(row->name);
	}
	std::string name;
	std::string widths;
	const unsigned int count = channelCount(pixelType);
	const bool isSingleDigit = widestChannel(pixelType) <= 9;
	const bool isOneNumber = !isSingleDigit && hasEqualWidths(pixelType);
	for (unsigned int i = 0; i < 4; ++i)
	{
		const bool isNamed = MapCharToEnum(pixelType.channelName[i]) != eCh_None;
		if (isNamed != (i < count) || isNamed != (pixelType.channelBits[i] != 0))
		{
			return "0x" + hexBytes(reinterpret_cast<const unsigned char*>(&pixelType.id), sizeof(pixelType.id));
		}
		if (!isNamed)
		{
			continue;
		}
		name += static_cast<char>(pixelType.channelName[i]);
		if (i == 0 || !isOneNumber)
		{
			widths += (i != 0 && !isSingleDigit ? "." : "") + std::to_string(pixelType.channelBits[i]);
		}
	}
	const bool hasSuffix = isFloatType(type) && !isFloatType(defaultChannelType(pixelType));
	return name + widths + (hasSuffix ? "f" : "");
}

EZORTVariableType defaultChannelType(PixelType pixelType)
{
	if (pixelType.isCompressed())
	{
		switch (pixelType.id)
		{
		case ePF_EAC_R11:
		case ePF_EAC_RG11:
			return eVT_UnsignedShortNorm;
		case ePF_R9G9B9E5:
			return eVT_SignedFloat;
		default:
			return eVT_UnsignedByteNorm;
		}
	}
	if (isSmallFloatLayout(pixelType))
	{
		return eVT_UnsignedFloat;
	}
	const unsigned int width = widestChannel(pixelType);
	if (hasEqualWidths(pixelType) && (width == 8 || width == 16 || width == 32))
	{
		return width == 8 ? eVT_UnsignedByteNorm : width == 16 ? eVT_UnsignedShortNorm : eVT_UnsignedIntegerNorm;
	}
	const unsigned int totalBits = ZORTGetBitsPerPixel(pixelType.id);
	return totalBits <= 8 ? eVT_UnsignedByteNorm : totalBits <= 16 ? eVT_UnsignedShortNorm : eVT_UnsignedIntegerNorm;
}

std::optional<EZORTVariableType> parseChannelType(std::string_view name, PixelType pixelType)
{
	const std::string lower = lowerCase(name);
	const auto find = [](const std::string& text) -> std::optional<EZORTVariableType>
	{
		const auto* const found = std::find(std::begin(kChannelTypeNames), std::end(kChannelTypeNames), text);
		return found != std::end(kChannelTypeNames) ? std::optional(static_cast<EZORTVariableType>(found - std::begin(kChannelTypeNames)))
		                                            : std::nullopt;
	};
	if (const std::optional<EZORTVariableType> type = find(lower))
	{
		return type;
	}
	return lower.find_first_of("0123456789") == std::string::npos
	           ? find(lower + std::to_string(channelTypeBits(defaultChannelType(pixelType))))
	           : std::nullopt;
}

std::string channelTypeName(EZORTVariableType type)
{
	return type < eVT_NumVarTypes ? std::string(kChannelTypeNames[type]) : "unknown (" + std::to_string(type) + ")";
}

std::optional<EZORTColourSpace> parseColourSpace(std::string_view name)
{
	const std::string lower = lowerCase(name);
	return lower == "linear" ? std::optional(eCS_lRGB) : lower == "srgb" ? std::optional(eCS_sRGB) : std::nullopt;
}

std::string colourSpaceName(EZORTColourSpace space)
{
	return space == eCS_sRGB ? "srgb" : "linear";
}
} // namespace zortex
