#include "ConvertTarget.h"

#include <algorithm>
#include <charconv>

#include "FormatCapabilities.h"
#include "Layouts.h"
#include "PngFile.h"
#include "Refusal.h"
#include "Text.h"

namespace zortex
{
using namespace zortexture;

namespace
{
std::string quoted(const std::string& text)
{
	return "'" + text + "'";
}

/// The channel types that a compressed format may be tagged with.
bool suitsCompressedFormat(PixelType format, EZORTVariableType type)
{
	switch (format.id)
	{
	case ePF_EAC_R11:
	case ePF_EAC_RG11:
		return type == eVT_UnsignedShortNorm || type == eVT_SignedShortNorm;
	case ePF_R9G9B9E5:
		return type == eVT_SignedFloat;
	default:
		return type == eVT_UnsignedByteNorm;
	}
}

EZORTVariableType chooseType(PixelType format, EZORTVariableType usual, bool isFixed, const std::string& option)
{
	const std::string name = formatName(format, usual);
	EZORTVariableType type = usual;
	if (!option.empty())
	{
		const std::optional<EZORTVariableType> parsed = parseChannelType(option, format);
		if (!parsed)
		{
			throw UsageError("--type: unknown channel type " + quoted(option) + " (see 'zortex formats')");
		}
		if (isFixed && *parsed != usual)
		{
			throw UsageError("--type: " + name + " has the channel type " + channelTypeName(usual));
		}
		type = *parsed;
	}
	if (format.isCompressed())
	{
		if (!option.empty() && !suitsCompressedFormat(format, type))
		{
			throw UsageError("--type: " + name + " cannot have the channel type " + channelTypeName(type));
		}
		return type;
	}
	const std::string problem = layoutProblem(format, type);
	if (!problem.empty())
	{
		throw UsageError((option.empty() ? "--format: " : "--type: ") + name + " as " + channelTypeName(type) +
		                 " cannot be written: " + problem);
	}
	return type;
}

/// The number that the codec gets for the text of --quality.
int chooseQuality(PixelType format, EZORTVariableType type, const std::string& option)
{
	const CompressedFormat* row = findCompressedFormat(format);
	const auto* const named = std::find(std::begin(kQualityNames), std::end(kQualityNames), lowerCase(option));
	if (option.empty() || named != std::end(kQualityNames))
	{
		const auto index = option.empty() ? kDefaultQualityName : static_cast<std::size_t>(named - std::begin(kQualityNames));
		return row != nullptr ? row->codec->namedQualities[index] : 0;
	}
	int number = 0;
	const auto [end, error] = std::from_chars(option.data(), option.data() + option.size(), number);
	if (error != std::errc() || end != option.data() + option.size() || number < 0)
	{
		throw UsageError("--quality: " + quoted(option) + " is neither a number nor fast, normal, high or best");
	}
	if (row == nullptr)
	{
		return 0;
	}
	if (number > row->codec->bestQuality)
	{
		throw UsageError("--quality: " + formatName(format, type) +
		                 (row->codec->bestQuality == 0 ? " has the quality 0 only"
		                                               : " has the qualities 0 to " + std::to_string(row->codec->bestQuality)));
	}
	return number;
}

/// Whether error diffusion does any good: somewhere must be less than 8 bits.
bool profitsFromDithering(PixelType format)
{
	if (ZORTGetBitsPerPixel(format.id) > 31)
	{
		return false;
	}
	if (format.isCompressed())
	{
		switch (getCodecType(static_cast<EZORTPixelFormat>(format.id)))
		{
		case eCodecTessel:
		case eCodecETC:
		case eCodecDXT:
		case eCodecOneBPP:
			return true;
		default:
			return false;
		}
	}
	for (unsigned int i = 0; i < channelCount(format); ++i)
	{
		if (format.channelBits[i] < 8)
		{
			return true;
		}
	}
	return false;
}
} // namespace

TargetRequest::TargetRequest(const TargetOptions& options) : m_options(options)
{
	if (!options.space.empty())
	{
		m_space = parseColourSpace(options.space);
		if (!m_space)
		{
			throw UsageError("--space: " + quoted(options.space) + " is neither linear nor srgb");
		}
	}
	if (options.format.empty())
	{
		return;
	}
	m_format = parseFormat(options.format);
	if (!m_format)
	{
		throw UsageError("--format: unknown format " + quoted(options.format) + " (see 'zortex formats')");
	}
	if (!canEncode(m_format->pixelType))
	{
		throw UsageError("--format: " + formatName(m_format->pixelType, m_format->type) +
		                 " cannot be encoded so far (see 'zortex formats')");
	}
	m_format->type = chooseType(m_format->pixelType, m_format->type, m_format->isTypeFixed, options.type);
	chooseQuality(m_format->pixelType, m_format->type, options.quality);
	if (options.isPng && !isPngLayout(m_format->pixelType, m_format->type))
	{
		throw UsageError("--format: a PNG file holds l8, la88, rgb888 and rgba8888, or l16, la16, rgb16 and rgba16, not " +
		                 formatName(m_format->pixelType, m_format->type));
	}
}

Target TargetRequest::resolve(const CZORTextureHeader& header) const
{
	Target target = {header.getPixelType(), header.getChannelType(), m_space.value_or(header.getColourSpace()), 0, m_options.dither};
	if (m_format)
	{
		target.pixelType = m_format->pixelType;
		target.type = m_format->type;
	}
	else if (m_options.isPng)
	{
		pngLayout(header, target.pixelType, target.type);
	}
	if (!m_format && !m_options.type.empty())
	{
		target.type = chooseType(target.pixelType, target.type, false, m_options.type);
		if (m_options.isPng && !isPngLayout(target.pixelType, target.type))
		{
			throw UsageError("--type: a PNG file holds unorm8 and unorm16, in the width of its layout");
		}
	}
	target.quality = chooseQuality(target.pixelType, target.type, m_options.quality);
	target.dither = m_options.dither && profitsFromDithering(target.pixelType);
	return target;
}

bool TargetRequest::asksForEncoding() const
{
	return m_options.dither || !m_options.quality.empty();
}
} // namespace zortex
